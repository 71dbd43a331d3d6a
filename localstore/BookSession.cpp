#include "localstore/BookSession.h"

#include "localstore/BookContainer.h"
#include "localstore/ChainedMemory.h"
#include "localstore/StoreSchema.h"
#include "service/TextConversions.h"

#include <cstring>

namespace
{

struct ResultRow
{
    DatabaseFailure failure;
    HRESULT result;
};

constexpr ResultRow kResults[] = {
    {DatabaseFailure::CannotOpen, MAPI_E_NOT_FOUND},
    {DatabaseFailure::NotAStore, MAPI_E_CORRUPT_STORE},
    {DatabaseFailure::NewerStore, MAPI_E_VERSION},
    {DatabaseFailure::Corrupt, MAPI_E_CORRUPT_STORE},
    {DatabaseFailure::ReadOnly, MAPI_E_NO_ACCESS},
    {DatabaseFailure::Busy, MAPI_E_BUSY},
    {DatabaseFailure::Full, MAPI_E_NOT_ENOUGH_DISK},
    {DatabaseFailure::Disk, MAPI_E_DISK_ERROR},
    {DatabaseFailure::Constraint, MAPI_E_BAD_VALUE},
    {DatabaseFailure::Other, MAPI_E_CALL_FAILED},
};

// An address may come with any count; IDs of the book are far shorter than this.
constexpr ULONG kLongestEntryId = 4096;

// A text in the form that the caller asked for, hanging on the record.
LPTSTR CopyMessage(ChainedBuffer& buffer, const std::wstring& text, bool unicode)
{
    if (unicode)
    {
        const size_t bytes = (text.size() + 1) * sizeof(wchar_t);
        void* copy = buffer.More(bytes);
        std::memcpy(copy, text.c_str(), bytes);
        return static_cast<LPTSTR>(copy);
    }
    const int size = WideCharToMultiByte(CP_ACP, 0, text.c_str(), -1, nullptr, 0, nullptr, nullptr);
    auto* copy = static_cast<char*>(buffer.More(static_cast<size_t>(size)));
    WideCharToMultiByte(CP_ACP, 0, text.c_str(), -1, copy, size, nullptr, nullptr);
    return reinterpret_cast<LPTSTR>(copy);
}

} // namespace

HRESULT ResultOf(DatabaseFailure failure) noexcept
{
    for (const ResultRow& row : kResults)
    {
        if (row.failure == failure)
            return row.result;
    }
    return MAPI_E_CALL_FAILED;
}

HRESULT BookSession::LastError(HRESULT result, ULONG flags, LPMAPIERROR* error) noexcept
{
    if (!error)
        return MAPI_E_INVALID_PARAMETER;
    *error = nullptr;
    if (flags & ~MAPI_UNICODE)
        return MAPI_E_UNKNOWN_FLAGS;
    return Guarded([&] {
        const std::lock_guard lock(m_mutex);
        if (SUCCEEDED(result) || result != m_lastResult)
            return S_OK;
        const bool unicode = (flags & MAPI_UNICODE) != 0;
        ChainedBuffer buffer(ChainedMemory::OfLibrary(), sizeof(MAPIERROR));
        auto* record = static_cast<MAPIERROR*>(buffer.Get());
        record->ulVersion = MAPI_ERROR_VERSION;
        record->lpszError = CopyMessage(buffer, WideFromUtf8(m_lastText), unicode);
        record->lpszComponent = CopyMessage(buffer, L"PimLocalBook", unicode);
        *error = static_cast<MAPIERROR*>(buffer.Detach());
        return S_OK;
    });
}

Bytes BookSession::EntryIdOfContainer(std::int64_t id)
{
    Statement row = m_database.Prepare("SELECT entry_id FROM book_container WHERE id = ?1");
    row.Bind(1, id);
    if (!row.Step())
        throw DatabaseError(DatabaseFailure::Corrupt, "a container of the address book is gone");
    const auto bytes = row.Blob(0);
    return Bytes(bytes.begin(), bytes.end());
}

std::int64_t BookSession::ContainerOfRole(BookRole role)
{
    Statement row = m_database.Prepare("SELECT id FROM book_container WHERE role = ?1");
    row.Bind(1, static_cast<std::int64_t>(role));
    if (!row.Step())
        throw DatabaseError(DatabaseFailure::Corrupt, "a container of the address book is gone");
    return row.Integer(0);
}

HRESULT BookSession::Find(std::span<const std::byte> entryId, BookObject& found)
{
    Statement container = m_database.Prepare("SELECT id FROM book_container WHERE entry_id = ?1");
    container.Bind(1, entryId);
    if (container.Step())
    {
        found = {OwnerKind::BookContainer, container.Integer(0), MAPI_ABCONT};
        return S_OK;
    }
    Statement entry =
        m_database.Prepare("SELECT id, object_type FROM book_entry WHERE entry_id = ?1");
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
