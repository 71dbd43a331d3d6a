#include "tests/recordingstore/library/Entries.h"

#include "tests/recordingstore/library/BookObject.h"
#include "tests/recordingstore/library/FolderObject.h"
#include "tests/recordingstore/library/HostileAnswers.h"
#include "tests/recordingstore/library/MessageObject.h"

#include <algorithm>
#include <cstring>

namespace
{
// Writing is allowed where it was asked for, or where the best access was.
bool IsWriting(ULONG flags)
{
    return (flags & (MAPI_MODIFY | MAPI_BEST_ACCESS)) != 0;
}

template <typename Object> HRESULT Give(Object* made, ULONG objectType, ULONG* type, IUnknown** out)
{
    if (type)
        *type = objectType;
    *out = made;
    return S_OK;
}

bool IsContainer(const Node& node)
{
    return node.kind == NodeKind::MessageFolder || node.kind == NodeKind::BookContainer;
}

// The first item that lies in a node or below; null where there is none.
NodePtr FirstItemIn(const Node& node)
{
    for (const NodePtr& child : node.children)
    {
        if (!IsContainer(*child))
            return child;
        if (NodePtr item = FirstItemIn(*child))
            return item;
    }
    return nullptr;
}

// An item for a container and a container for all else; the node itself where there is none.
NodePtr OtherThan(const NodePtr& node)
{
    const Content& content = TheLibrary().content;
    const NodePtr store = content.Stores().front();
    NodePtr other;
    if (IsContainer(*node))
    {
        other = FirstItemIn(*node);
        if (!other)
            other = FirstItemIn(*store);
    }
    else
        other = node->parent ? content.Find(node->parent->name) : content.RootOf(*store);
    if (!other)
        return node;
    CountSpoiled();
    return other;
}
} // namespace

bool IsNullEntry(ULONG size, const void* entryId)
{
    const bool isNull = size != 0 && !entryId;
    if (isNull)
        TheLibrary().recorder.AddViolation("an ID of " + std::to_string(size) + " bytes at null");
    return isNull;
}

std::string OpenEntryText(
    ULONG size, const void* entryId, LPCIID interfaceId, ULONG flags, const ULONG* type)
{
    return "OpenEntry(" + EntryText(size, entryId) + ", " + InterfaceText(interfaceId) + ", " +
           FlagsText(flags) + (type ? ", type)" : ")");
}

HRESULT OpenNode(const NodePtr& root,
                 ULONG size,
                 const void* entryId,
                 LPCIID interfaceId,
                 ULONG flags,
                 StoreFault fault,
                 ULONG* type,
                 IUnknown** object)
{
    if (!object || IsNullEntry(size, entryId))
        return MAPI_E_INVALID_PARAMETER;
    *object = nullptr;
    NodePtr node = size == 0 ? root : TheLibrary().content.FindEntry(entryId, size).first;
    if (!node)
        return size == kEntryIdBytes ? MAPI_E_NOT_FOUND : MAPI_E_INVALID_ENTRYID;
    if (fault == StoreFault::OtherObject)
        node = OtherThan(node);
    const auto isFor = [&](auto answers) { return !interfaceId || answers(*interfaceId); };
    switch (node->kind)
    {
    case NodeKind::MessageFolder:
        if (!isFor(FolderObject::Answers))
            return MAPI_E_INTERFACE_NOT_SUPPORTED;
        return Give(NewObject<FolderObject>(node, IsWriting(flags)), MAPI_FOLDER, type, object);
    case NodeKind::Message:
        if (!isFor(MessageObject::Answers))
            return MAPI_E_INTERFACE_NOT_SUPPORTED;
        return Give(NewObject<MessageObject>(node->name,
                                             std::make_shared<MessageBag>(node, IsWriting(flags))),
                    MAPI_MESSAGE,
                    type,
                    object);
    case NodeKind::Identity:
        if (!isFor(UserObject::Answers))
            return MAPI_E_INTERFACE_NOT_SUPPORTED;
        return Give(NewObject<UserObject>(node), MAPI_MAILUSER, type, object);
    case NodeKind::BookContainer:
        if (!isFor(BookContainerObject::Answers))
            return MAPI_E_INTERFACE_NOT_SUPPORTED;
        return Give(NewObject<BookContainerObject>(node), MAPI_ABCONT, type, object);
    case NodeKind::BookEntry: {
        const bool isList = node->objectType == MAPI_DISTLIST;
        if (!isFor(isList ? DistListObject::Answers : BookUserObject::Answers))
            return MAPI_E_INTERFACE_NOT_SUPPORTED;
        auto bag = std::make_shared<MessageBag>(node, IsWriting(flags));
        if (isList)
            return Give(
                NewObject<DistListObject>(node->name, std::move(bag)), MAPI_DISTLIST, type, object);
        return Give(
            NewObject<BookUserObject>(node->name, std::move(bag)), node->objectType, type, object);
    }
    default:
        return MAPI_E_INVALID_ENTRYID;
    }
}

Properties RowOf(const Node& node)
{
    Properties row;
    for (const USHORT id : StoredIds(node))
        row[id] = *GetStored(node, id);
    if (!node.rowEntryId.empty() && row.contains(PROP_ID(PR_ENTRYID)))
        row[PROP_ID(PR_ENTRYID)] = BinaryValue(node.rowEntryId);
    // What cannot be read, a row does not hold either.
    std::erase_if(row, [](const auto& entry) { return entry.second.type == PT_ERROR; });
    return row;
}

void DeliverEntryId(const ByteString& entryId, const std::string& name, ULONG* size, ENTRYID** out)
{
    void* const copy = TheLibrary().memory.Allocate(entryId.size(), "entry ID of " + name);
    std::memcpy(copy, entryId.data(), entryId.size());
    *size = static_cast<ULONG>(entryId.size());
    *out = static_cast<ENTRYID*>(copy);
}
