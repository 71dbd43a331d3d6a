#include "localstore/StoreConnection.h"

#include "localstore/ChainedMemory.h"
#include "localstore/MapiValues.h"
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
    {DatabaseFailure::Gone, MAPI_E_OBJECT_DELETED},
    {DatabaseFailure::Changed, MAPI_E_OBJECT_CHANGED},
    {DatabaseFailure::Other, MAPI_E_CALL_FAILED},
};

// A text in the form that the caller asked for, hanging on the record.
LPTSTR CopyMessage(ChainedBuffer& buffer, const std::wstring& text, ULONG flags)
{
    const Bytes bytes = TextForCaller(text, flags);
    void* const copy = buffer.More(bytes.size());
    std::memcpy(copy, bytes.data(), bytes.size());
    return static_cast<LPTSTR>(copy);
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

HRESULT StoreConnection::LastError(HRESULT result, ULONG flags, LPMAPIERROR* error) noexcept
{
    if (!error)
        return MAPI_E_INVALID_PARAMETER;
    *error = nullptr;
    if (flags & ~MAPI_UNICODE)
        return MAPI_E_UNKNOWN_FLAGS;
    return Guarded([&] {
        const ScopedLock lock(m_lock);
        if (SUCCEEDED(result) || result != m_lastResult)
            return S_OK;
        ChainedBuffer buffer(ChainedMemory::OfLibrary(), sizeof(MAPIERROR));
        auto* record = static_cast<MAPIERROR*>(buffer.Get());
        record->ulVersion = MAPI_ERROR_VERSION;
        record->lpszError = CopyMessage(buffer, WideFromUtf8(m_lastText), flags);
        record->lpszComponent = CopyMessage(buffer, m_component, flags);
        *error = static_cast<MAPIERROR*>(buffer.Detach());
        return S_OK;
    });
}
