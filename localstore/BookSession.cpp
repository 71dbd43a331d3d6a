#include "localstore/BookSession.h"

#include "localstore/BookContainer.h"
#include "localstore/StoreSchema.h"

namespace
{

// An address may come with any count; IDs of the book are far shorter than this.
constexpr ULONG kLongestEntryId = 4096;

} // namespace

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

HRESULT BookSession::Find(std::span<const std::byte> entryId, BookObject& found)
{
    Statement container = Store().Prepare("SELECT id FROM book_container WHERE entry_id = ?1");
    container.Bind(1, entryId);
    if (container.Step())
    {
        found = {OwnerKind::BookContainer, container.Integer(0), MAPI_ABCONT};
        return S_OK;
    }
    Statement entry = Store().Prepare("SELECT id, object_type FROM book_entry WHERE entry_id = ?1");
    entry.Bind(1, entryId);
    if (entry.Step())
    {
        found = {OwnerKind::BookEntry, entry.Integer(0), static_cast<ULONG>(entry.Integer(1))};
        return S_OK;
    }
    return IsOwnEntryId(entryId) ? MAPI_E_NOT_FOUND : MAPI_E_UNKNOWN_ENTRYID;
}

HRESULT BookSession::OpenEntry(const std::shared_ptr<BookSession>& session,
                               ULONG entryIdBytes,
                               const ENTRYID* entryId,
                               const IID* iid,
                               ULONG flags,
                               ULONG* objectType,
                               IUnknown** object) noexcept
{
    if (objectType)
        *objectType = 0;
    if (!object)
        return MAPI_E_INVALID_PARAMETER;
    *object = nullptr;
    if (entryIdBytes != 0 && !entryId)
        return MAPI_E_INVALID_PARAMETER;
    if (entryIdBytes > kLongestEntryId)
        return MAPI_E_INVALID_ENTRYID;
    return session->Run([&]() -> HRESULT {
        BookObject found{};
        if (entryIdBytes == 0)
        {
            found = {
                OwnerKind::BookContainer, session->ContainerOfRole(BookRole::Root), MAPI_ABCONT};
        }
        else
        {
            const std::span bytes(reinterpret_cast<const std::byte*>(entryId), entryIdBytes);
            if (const HRESULT result = session->Find(bytes, found); FAILED(result))
                return result;
        }
        if (found.kind != OwnerKind::BookContainer)
            return MAPI_E_NO_SUPPORT;
        if (iid && !BookContainer::Answers(*iid))
            return MAPI_E_INTERFACE_NOT_SUPPORTED;
        if ((flags & MAPI_MODIFY) && session->Store().IsReadOnly())
            return MAPI_E_NO_ACCESS;
        *object = MakeObject<BookContainer>(session, found.id).Detach();
        if (objectType)
            *objectType = found.objectType;
        return S_OK;
    });
}
