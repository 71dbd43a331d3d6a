#include "localstore/BookSession.h"

#include "localstore/BookContainer.h"
#include "localstore/BookEntry.h"
#include "localstore/BookEntryId.h"

Bytes BookSession::EntryIdOfContainer(std::int64_t id)
{
    Statement row = Store().Prepare("SELECT entry_id FROM book_container WHERE id = ?1");
    row.Bind(1, id);
    if (!row.Step())
        throw DatabaseError(DatabaseFailure::Corrupt, "a container of the address book is gone");
    const auto bytes = row.Blob(0);
    return Bytes(bytes.begin(), bytes.end());
}

std::int64_t BookSession::ContainerOfRole(BookRole role)
{
    Statement row = Store().Prepare("SELECT id FROM book_container WHERE role = ?1");
    row.Bind(1, static_cast<std::int64_t>(role));
    if (!row.Step())
        throw DatabaseError(DatabaseFailure::Corrupt, "a container of the address book is gone");
    return row.Integer(0);
}

HRESULT BookSession::CheckEntryId(ULONG size,
                                  const void* bytes,
                                  std::span<const std::byte>& entryId) const
{
    if (size != 0 && !bytes)
        return MAPI_E_INVALID_PARAMETER;
    if (size == 0 || size > kLongestEntryId)
        return MAPI_E_INVALID_ENTRYID;
    entryId = {static_cast<const std::byte*>(bytes), size};
    return S_OK;
}

std::optional<Bytes> BookSession::RootEntryId()
{
    return EntryIdOfContainer(ContainerOfRole(BookRole::Root));
}

HRESULT BookSession::Open(std::span<const std::byte> entryId,
                          const IID* iid,
                          bool writable,
                          bool mayWrite,
                          ULONG& objectType,
                          IUnknown** object)
{
    const auto self = std::static_pointer_cast<BookSession>(shared_from_this());
    HRESULT result = BookContainer::Open(self, entryId, iid, mayWrite, objectType, object);
    if (result == MAPI_E_NOT_FOUND)
        result = OpenBookEntry(self, entryId, iid, writable, objectType, object);
    if (result == MAPI_E_NOT_FOUND && !IsOwnEntryId(entryId) && !IsBookEntryId(entryId))
        return MAPI_E_UNKNOWN_ENTRYID;
    return result;
}
