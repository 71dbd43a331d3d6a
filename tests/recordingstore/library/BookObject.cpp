#include "tests/recordingstore/library/BookObject.h"

#include "tests/recordingstore/library/HostileAnswers.h"

namespace
{
// The type of the entries that a template of the container stands for; 0 for no template of its.
ULONG TypeOfTemplate(const Node& container, ULONG size, const void* templateId)
{
    constexpr struct
    {
        ULONG tag;
        ULONG objectType;
    } kTemplates[] = {{PR_DEF_CREATE_MAILUSER, MAPI_MAILUSER}, {PR_DEF_CREATE_DL, MAPI_DISTLIST}};
    const auto* const bytes = static_cast<const BYTE*>(templateId);
    for (const auto& row : kTemplates)
    {
        const std::optional<Value> value =
            GetStored(container, static_cast<USHORT>(PROP_ID(row.tag)));
        if (value && bytes && value->bytes == ByteString(bytes, bytes + size))
            return row.objectType;
    }
    return 0;
}
} // namespace

HRESULT AddressBookObject::OpenEntry(
    ULONG size, LPENTRYID entryId, LPCIID interfaceId, ULONG flags, ULONG* type, LPUNKNOWN* object)
{
    return RunCall(
        Begin(OpenEntryText(size, entryId, interfaceId, flags, type)),
        [&](StoreFault fault) {
            return OpenNode(TheLibrary().content.Book(),
                            size,
                            entryId,
                            interfaceId,
                            flags,
                            fault,
                            type,
                            object);
        },
        object);
}

HRESULT AddressBookObject::GetPAB(ULONG* size, LPENTRYID* entryId)
{
    return RunCall(
        Begin("GetPAB()"),
        [&](StoreFault fault) -> HRESULT {
            if (!size || !entryId)
                return MAPI_E_INVALID_PARAMETER;
            const NodePtr book = TheLibrary().content.Book();
            if (!book)
                return MAPI_E_NOT_FOUND;
            DeliverEntryId(book->entryId, book->name, size, entryId);
            SpoilEntryId(fault, *size, *entryId);
            return S_OK;
        },
        size,
        entryId);
}

BookContainerObject::BookContainerObject(NodePtr node)
    : PropObject("IABContainer", node->name, std::make_shared<DirectBag>(node, false)),
      m_node(std::move(node))
{
}

HRESULT BookContainerObject::GetContentsTable(ULONG flags, LPMAPITABLE* table)
{
    return RunCall(
        Begin("GetContentsTable(" + FlagsText(flags) + ")"),
        [&](StoreFault) -> HRESULT {
            if (!table)
                return MAPI_E_INVALID_PARAMETER;
            if (flags & ~(MAPI_UNICODE | MAPI_DEFERRED_ERRORS))
                return MAPI_E_UNKNOWN_FLAGS;
            const auto rows = [node = m_node] {
                std::vector<Properties> all;
                for (const NodePtr& child : node->children)
                    all.push_back(RowOf(*child));
                return all;
            };
            *table = NewObject<TableObject>(
                Name() + " contents",
                std::vector<ULONG>{PR_ENTRYID, PR_OBJECT_TYPE, PR_DISPLAY_NAME_W},
                (flags & MAPI_UNICODE) != 0,
                rows);
            return S_OK;
        },
        table);
}

HRESULT BookContainerObject::OpenEntry(
    ULONG size, LPENTRYID entryId, LPCIID interfaceId, ULONG flags, ULONG* type, LPUNKNOWN* object)
{
    return RunCall(
        Begin(OpenEntryText(size, entryId, interfaceId, flags, type)),
        [&](StoreFault fault) {
            return OpenNode(m_node, size, entryId, interfaceId, flags, fault, type, object);
        },
        object);
}

HRESULT BookContainerObject::CreateEntry(ULONG templateSize,
                                         LPENTRYID templateId,
                                         ULONG flags,
                                         LPMAPIPROP* entry)
{
    return RunCall(
        Begin("CreateEntry(" + EntryText(templateSize, templateId) + ", " + FlagsText(flags) + ")"),
        [&](StoreFault) -> HRESULT {
            if (!entry || IsNullEntry(templateSize, templateId))
                return MAPI_E_INVALID_PARAMETER;
            const ULONG objectType = TypeOfTemplate(*m_node, templateSize, templateId);
            if (!objectType)
                return MAPI_E_UNKNOWN_ENTRYID;
            const std::string name = TheLibrary().content.NextName();
            auto bag = std::make_shared<MessageBag>(*m_node, name, objectType);
            if (objectType == MAPI_DISTLIST)
                *entry = NewObject<DistListObject>(name, std::move(bag));
            else
                *entry = NewObject<BookUserObject>(name, std::move(bag));
            return S_OK;
        },
        entry);
}

HRESULT BookContainerObject::DeleteEntries(LPENTRYLIST entries, ULONG flags)
{
    return RunCall(Begin("DeleteEntries(" + EntriesText(entries) + ", " + FlagsText(flags) + ")"),
                   [&](StoreFault) {
                       return TheLibrary().content.RemoveListed(
                           entries, NodeKind::BookEntry, *m_node);
                   });
}

ULONG WabLibraryObject::Release()
{
    const ULONG left = RecordedObject::Release();
    if (left == 0)
        TheLibrary().recorder.Uninitialised("release IWABObject(wab)");
    return left;
}

HRESULT WabLibraryObject::FreeBuffer(LPVOID buffer)
{
    const std::string line =
        "IWABObject(wab).FreeBuffer(" + TheLibrary().memory.NameOf(buffer) + ")";
    TheLibrary().recorder.Note(line, kStoreMemory);
    TheLibrary().recorder.CheckTime(line);
    return FreeOne(buffer, line);
}

HRESULT WabLibraryObject::GetLastError(HRESULT, ULONG, LPMAPIERROR*)
{
    return NotOffered(__func__);
}
HRESULT WabLibraryObject::AllocateBuffer(ULONG, LPVOID*)
{
    return NotOffered(__func__);
}
HRESULT WabLibraryObject::AllocateMore(ULONG, LPVOID, LPVOID*)
{
    return NotOffered(__func__);
}
HRESULT WabLibraryObject::Backup(LPSTR)
{
    return NotOffered(__func__);
}
HRESULT WabLibraryObject::Import(LPSTR)
{
    return NotOffered(__func__);
}
HRESULT WabLibraryObject::Find(LPADRBOOK, HWND)
{
    return NotOffered(__func__);
}
HRESULT WabLibraryObject::VCardDisplay(LPADRBOOK, HWND, LPSTR)
{
    return NotOffered(__func__);
}
HRESULT WabLibraryObject::LDAPUrl(LPADRBOOK, HWND, ULONG, LPSTR, LPMAILUSER*)
{
    return NotOffered(__func__);
}
HRESULT WabLibraryObject::VCardCreate(LPADRBOOK, ULONG, LPSTR, LPMAILUSER)
{
    return NotOffered(__func__);
}
HRESULT WabLibraryObject::VCardRetrieve(LPADRBOOK, ULONG, LPSTR, LPMAILUSER*)
{
    return NotOffered(__func__);
}
HRESULT WabLibraryObject::GetMe(LPADRBOOK, ULONG, DWORD*, SBinary*, ULONG)
{
    return NotOffered(__func__);
}
HRESULT WabLibraryObject::SetMe(LPADRBOOK, ULONG, SBinary, ULONG)
{
    return NotOffered(__func__);
}
