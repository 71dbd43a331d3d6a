#include "localstore/BookContainer.h"

#include "localstore/BookEntries.h"
#include "localstore/StoreTable.h"

namespace
{

// Containers of the local book hold recipients that may be changed.
constexpr std::uint64_t kContainerFlags = AB_RECIPIENTS | AB_MODIFIABLE;
// The address book's own flag for "the containers of this machine", which are all there are.
constexpr ULONG kLocalContainers = 0x00100000;
constexpr ULONG kContentsFlags = MAPI_UNICODE | MAPI_DEFERRED_ERRORS | kLocalContainers;

} // namespace

BookContainer::BookContainer(std::shared_ptr<BookSession> session, std::int64_t id)
    : PropObject(std::move(session)), m_id(id)
{
}

PropertyMap BookContainer::Properties()
{
    PropertyMap properties = ReadProperties(Session().Store(), {OwnerKind::BookContainer, m_id});
    properties[PROP_ID(PR_ENTRYID)] = {PT_BINARY, Session().EntryIdOfContainer(m_id)};
    properties[PROP_ID(PR_OBJECT_TYPE)] = {PT_LONG, std::uint64_t{MAPI_ABCONT}};
    properties[PROP_ID(PR_DISPLAY_TYPE)] = {PT_LONG, std::uint64_t{DT_LOCAL}};
    properties[PROP_ID(PR_CONTAINER_FLAGS)] = {PT_LONG, kContainerFlags};
    return properties;
}

STDMETHODIMP BookContainer::GetContentsTable(ULONG flags, LPMAPITABLE* table)
{
    if (!table)
        return MAPI_E_INVALID_PARAMETER;
    *table = nullptr;
    if (flags & ~kContentsFlags)
        return MAPI_E_UNKNOWN_FLAGS;
    return Session().Run([&] {
        *table =
            MakeObject<StoreTable>(SharedSession(), MakeBookEntriesSource(SharedSession(), m_id))
                .Detach();
        return S_OK;
    });
}

STDMETHODIMP BookContainer::GetHierarchyTable(ULONG, LPMAPITABLE* table)
{
    return Refuse(table);
}

STDMETHODIMP BookContainer::OpenEntry(ULONG entryIdBytes,
                                      LPENTRYID entryId,
                                      LPCIID iid,
                                      ULONG flags,
                                      ULONG* objectType,
                                      LPUNKNOWN* object)
{
    return BookSession::OpenEntry(
        SharedSession(), entryIdBytes, entryId, iid, flags, objectType, object);
}

STDMETHODIMP BookContainer::SetSearchCriteria(LPSRestriction, LPENTRYLIST, ULONG)
{
    return MAPI_E_NO_SUPPORT;
}

STDMETHODIMP BookContainer::GetSearchCriteria(ULONG,
                                              LPSRestriction* restriction,
                                              LPENTRYLIST* containers,
                                              ULONG* state)
{
    if (restriction)
        *restriction = nullptr;
    if (containers)
        *containers = nullptr;
    return RefuseWithOptional(state);
}

STDMETHODIMP BookContainer::CreateEntry(ULONG, LPENTRYID, ULONG, LPMAPIPROP* entry)
{
    return Refuse(entry);
}

STDMETHODIMP BookContainer::CopyEntries(LPENTRYLIST, ULONG, LPMAPIPROGRESS, ULONG)
{
    return MAPI_E_NO_SUPPORT;
}

STDMETHODIMP BookContainer::DeleteEntries(LPENTRYLIST, ULONG)
{
    return MAPI_E_NO_SUPPORT;
}

STDMETHODIMP BookContainer::ResolveNames(LPSPropTagArray, ULONG, LPADRLIST, LPFlagList)
{
    return MAPI_E_NO_SUPPORT;
}
