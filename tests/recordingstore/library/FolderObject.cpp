#include "tests/recordingstore/library/FolderObject.h"

#include "tests/recordingstore/library/MessageObject.h"

namespace
{
std::vector<ULONG> DefaultColumns()
{
    return {PR_ENTRYID, PR_DISPLAY_NAME_W, PR_MESSAGE_CLASS_W, PR_LAST_MODIFICATION_TIME};
}

// The folders below, level by level downwards where all levels are wanted.
void AddFolderRows(const Node& folder, bool allLevels, LONG depth, std::vector<Properties>& rows)
{
    for (const NodePtr& child : folder.children)
    {
        if (child->kind != NodeKind::MessageFolder)
            continue;
        Properties& row = rows.emplace_back(RowOf(*child));
        row[PROP_ID(PR_DEPTH)] = NumberValue(PT_LONG, static_cast<ULONG>(depth));
        if (allLevels)
            AddFolderRows(*child, allLevels, depth + 1, rows);
    }
}

// Twice the folders below the subtree, whatever the folder.
void AddEndlessRows(const Node& folder, std::vector<Properties>& rows)
{
    Content& content = TheLibrary().content;
    for (int i = 0; i < 2; ++i)
        AddFolderRows(*content.RootOf(folder)->children.front(), false, 1, rows);
    for (Properties& row : rows)
    {
        Value& entryId = row[PROP_ID(PR_ENTRYID)];
        entryId = BinaryValue(content.Freshened(entryId.bytes));
    }
}
} // namespace

FolderObject::FolderObject(NodePtr node, bool isWritable)
    : PropObject("IMAPIFolder", node->name, std::make_shared<DirectBag>(node, isWritable)),
      m_node(std::move(node))
{
}

HRESULT FolderObject::GetContentsTable(ULONG flags, LPMAPITABLE* table)
{
    return RunCall(
        Begin("GetContentsTable(" + FlagsText(flags) + ")"),
        [&](StoreFault) -> HRESULT {
            if (!table)
                return MAPI_E_INVALID_PARAMETER;
            if (flags & ~(MAPI_UNICODE | MAPI_ASSOCIATED | MAPI_DEFERRED_ERRORS))
                return MAPI_E_UNKNOWN_FLAGS;
            const bool isAssociated = (flags & MAPI_ASSOCIATED) != 0;
            const auto rows = [node = m_node, isAssociated] {
                std::vector<Properties> all;
                for (const NodePtr& child : node->children)
                    if (child->kind == NodeKind::Message && child->isAssociated == isAssociated)
                        all.push_back(RowOf(*child));
                return all;
            };
            *table = NewObject<TableObject>(
                Name() + (isAssociated ? " associated contents" : " contents"),
                DefaultColumns(),
                (flags & MAPI_UNICODE) != 0,
                rows);
            return S_OK;
        },
        table);
}

HRESULT FolderObject::GetHierarchyTable(ULONG flags, LPMAPITABLE* table)
{
    return RunCall(
        Begin("GetHierarchyTable(" + FlagsText(flags) + ")"),
        [&](StoreFault) -> HRESULT {
            if (!table)
                return MAPI_E_INVALID_PARAMETER;
            if (flags & ~(MAPI_UNICODE | CONVENIENT_DEPTH | MAPI_DEFERRED_ERRORS))
                return MAPI_E_UNKNOWN_FLAGS;
            const bool allLevels = (flags & CONVENIENT_DEPTH) != 0;
            const auto rows = [node = m_node, allLevels] {
                std::vector<Properties> all;
                if (TheLibrary().content.hasEndlessFolders)
                    AddEndlessRows(*node, all);
                else
                    AddFolderRows(*node, allLevels, 1, all);
                return all;
            };
            *table = NewObject<TableObject>(
                Name() + " hierarchy", DefaultColumns(), (flags & MAPI_UNICODE) != 0, rows);
            return S_OK;
        },
        table);
}

HRESULT FolderObject::OpenEntry(
    ULONG size, LPENTRYID entryId, LPCIID interfaceId, ULONG flags, ULONG* type, LPUNKNOWN* object)
{
    return RunCall(
        Begin(OpenEntryText(size, entryId, interfaceId, flags, type)),
        [&](StoreFault fault) {
            const NodePtr root = TheLibrary().content.RootOf(*m_node);
            return OpenNode(root, size, entryId, interfaceId, flags, fault, type, object);
        },
        object);
}

HRESULT FolderObject::CreateMessage(LPCIID interfaceId, ULONG flags, LPMESSAGE* message)
{
    return RunCall(
        Begin("CreateMessage(" + InterfaceText(interfaceId) + ", " + FlagsText(flags) + ")"),
        [&](StoreFault) -> HRESULT {
            if (!message)
                return MAPI_E_INVALID_PARAMETER;
            if (flags & ~(MAPI_ASSOCIATED | MAPI_DEFERRED_ERRORS))
                return MAPI_E_UNKNOWN_FLAGS;
            if (interfaceId && !MessageObject::Answers(*interfaceId))
                return MAPI_E_INTERFACE_NOT_SUPPORTED;
            const std::string name = TheLibrary().content.NextName();
            *message = NewObject<MessageObject>(
                name, std::make_shared<MessageBag>(*m_node, name, (flags & MAPI_ASSOCIATED) != 0));
            return S_OK;
        },
        message);
}

HRESULT FolderObject::DeleteMessages(LPENTRYLIST messages,
                                     ULONG uiParam,
                                     LPMAPIPROGRESS progress,
                                     ULONG flags)
{
    return RunCall(
        Begin("DeleteMessages(" + EntriesText(messages) + ", " + std::to_string(uiParam) + ", " +
              (progress ? "progress, " : "null, ") + FlagsText(flags) + ")"),
        [&](StoreFault) {
            return TheLibrary().content.RemoveListed(messages, NodeKind::Message, *m_node);
        });
}
