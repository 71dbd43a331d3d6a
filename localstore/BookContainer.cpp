#include "localstore/BookContainer.h"

#include "localstore/BookEntries.h"
#include "localstore/BookEntry.h"
#include "localstore/BookEntryId.h"
#include "localstore/StoreProperties.h"
#include "localstore/StoreTable.h"

namespace
{

// Containers of the local book hold recipients that may be changed.
constexpr ULONG kContainerFlags = AB_RECIPIENTS | AB_MODIFIABLE;
// The address book's own flag for "the containers of this machine", which are all there are.
constexpr ULONG kLocalContainers = 0x00100000;
constexpr ULONG kContentsFlags = MAPI_UNICODE | MAPI_DEFERRED_ERRORS | kLocalContainers;
constexpr ULONG kMergeEntry = 0x00000008; // CREATE_MERGE of the address book
constexpr ULONG kCreateFlags =
    CREATE_CHECK_DUP_STRICT | CREATE_CHECK_DUP_LOOSE | CREATE_REPLACE | kMergeEntry;

} // namespace

PropertyMap BookContainerState::Read(const PropertySelection& selection)
{
    PropertyMap properties = ReadStored(
        Session().Store(), {OwnerKind::BookContainer, m_id}, selection, IsComputedOfBookContainer);
    PutBinary(properties, PR_ENTRYID, m_session->EntryIdOfContainer(m_id));
    PutLong(properties, PR_OBJECT_TYPE, MAPI_ABCONT);
    PutLong(properties, PR_DISPLAY_TYPE, DT_LOCAL);
    PutLong(properties, PR_CONTAINER_FLAGS, kContainerFlags);
    if (m_role == BookRole::Personal)
    {
        PutBinary(properties, PR_DEF_CREATE_MAILUSER, TemplateEntryId(MAPI_MAILUSER));
        PutBinary(properties, PR_DEF_CREATE_DL, TemplateEntryId(MAPI_DISTLIST));
    }
    return properties;
}

bool BookContainerState::IsComputed(std::uint16_t id) const
{
    return IsComputedOfBookContainer(id);
}

HRESULT BookContainer::Open(const std::shared_ptr<BookSession>& session,
                            std::span<const std::byte> entryId,
                            const IID* iid,
                            bool mayWrite,
                            ULONG& objectType,
                            IUnknown** object)
{
    Statement found =
        session->Store().Prepare("SELECT id, role FROM book_container WHERE entry_id = ?1");
    found.Bind(1, entryId);
    if (!found.Step())
        return MAPI_E_NOT_FOUND;
    if (iid && !Answers(*iid))
        return MAPI_E_INTERFACE_NOT_SUPPORTED;
    auto state = std::make_shared<BookContainerState>(
        session, found.Integer(0), static_cast<BookRole>(found.Integer(1)), mayWrite);
    *object = MakeObject<BookContainer>(std::move(state)).Detach();
    objectType = MAPI_ABCONT;
    return S_OK;
}

STDMETHODIMP BookContainer::GetContentsTable(ULONG flags, LPMAPITABLE* table)
{
    if (!table)
        return MAPI_E_INVALID_PARAMETER;
    *table = nullptr;
    if (flags & ~kContentsFlags)
        return MAPI_E_UNKNOWN_FLAGS;
    return Session().Run([&] {
        auto source = MakeBookEntriesSource(State().SharedBook(), State().Id());
        *table = MakeObject<StoreTable>(State().SharedBook(), std::move(source)).Detach();
        return S_OK;
    });
}

STDMETHODIMP
BookContainer::CreateEntry(ULONG templateBytes,
                           LPENTRYID templateId,
                           ULONG flags,
                           LPMAPIPROP* entry)
{
    if (!entry)
        return MAPI_E_INVALID_PARAMETER;
    *entry = nullptr;
    if (!templateId || templateBytes == 0)
        return MAPI_E_INVALID_PARAMETER;
    if (flags & ~kCreateFlags)
        return MAPI_E_UNKNOWN_FLAGS;
    return Session().Run([&]() -> HRESULT {
        if (!State().MayWrite() || State().Role() != BookRole::Personal)
            return MAPI_E_NO_ACCESS;
        const std::span bytes(reinterpret_cast<const std::byte*>(templateId), templateBytes);
        return NewBookEntry(State().SharedBook(), State().Id(), bytes, entry);
    });
}

STDMETHODIMP BookContainer::DeleteEntries(LPENTRYLIST entries, ULONG flags)
{
    if (const HRESULT result = CheckList(entries); FAILED(result))
        return result;
    if (flags != 0)
        return MAPI_E_UNKNOWN_FLAGS;
    return Session().Run([&]() -> HRESULT {
        if (!State().MayWrite())
            return MAPI_E_NO_ACCESS;
        return DeleteRows(Session().Store(),
                          "DELETE FROM book_entry WHERE entry_id = ?1 AND container = ?2",
                          State().Id(),
                          *entries);
    });
}
