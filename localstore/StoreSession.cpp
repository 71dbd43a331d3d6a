#include "localstore/StoreSession.h"

#include "localstore/StoreFolder.h"
#include "localstore/StoreIdentity.h"
#include "localstore/StoreMessage.h"
#include "localstore/StoreProfile.h"

#include <cstring>

namespace
{

// Flags of OpenEntry. 0x2 shows also what is deleted but kept, of which this store has nothing; the
// last two are about copies of a server's store.
constexpr ULONG kShowKeptDeletions = 0x00000002;
constexpr ULONG kCacheFlags = 0x00000100 | 0x00000200;
constexpr ULONG kOpenFlags =
    MAPI_MODIFY | kShowKeptDeletions | MAPI_DEFERRED_ERRORS | MAPI_BEST_ACCESS | kCacheFlags;

Bytes ReadStoreUid(Database& database)
{
    Statement row = database.Prepare("SELECT value FROM meta WHERE name = 'store_uid'");
    if (!row.Step() || row.Blob(0).size() != sizeof(GUID))
        throw DatabaseError(DatabaseFailure::Corrupt, "the store has no unique number");
    const auto bytes = row.Blob(0);
    return Bytes(bytes.begin(), bytes.end());
}

// The store's entry ID has the common form with the store's own number in it.
Bytes MakeStoreEntryId(const Bytes& uid)
{
    Bytes entryId = NewEntryId(MAPI_STORE);
    std::copy(uid.begin(), uid.end(), entryId.end() - static_cast<std::ptrdiff_t>(uid.size()));
    return entryId;
}

} // namespace

StoreSession::StoreSession(Database database, const wchar_t* component)
    : StoreConnection(std::move(database), component), m_readOnly(Store().IsReadOnly()),
      m_names(Store()), m_storeUid(ReadStoreUid(Store())),
      m_storeEntryId(MakeStoreEntryId(m_storeUid))
{
}

HRESULT ReadEntryId(ULONG size, const void* bytes, std::span<const std::byte>& entryId)
{
    if (size != 0 && !bytes)
        return MAPI_E_INVALID_PARAMETER;
    if (size != kEntryIdBytes)
        return size < sizeof(MAPIUID) + 4 || size > kLongestEntryId ? MAPI_E_INVALID_ENTRYID
                                                                    : MAPI_E_UNKNOWN_ENTRYID;
    entryId = {static_cast<const std::byte*>(bytes), size};
    return IsOwnEntryId(entryId) ? S_OK : MAPI_E_UNKNOWN_ENTRYID;
}

HRESULT CompareEntryIdBytes(
    ULONG firstBytes, const ENTRYID* first, ULONG secondBytes, const ENTRYID* second, ULONG* same)
{
    if (!same)
        return MAPI_E_INVALID_PARAMETER;
    *same = 0;
    if ((firstBytes && !first) || (secondBytes && !second))
        return MAPI_E_INVALID_PARAMETER;
    const bool equal = firstBytes == secondBytes &&
                       (firstBytes == 0 || std::memcmp(first, second, firstBytes) == 0);
    *same = equal ? 1 : 0;
    return S_OK;
}

HRESULT StoreSession::OpenEntry(ULONG entryIdBytes,
                                const ENTRYID* entryId,
                                const IID* iid,
                                ULONG flags,
                                bool emptyIsRoot,
                                bool writable,
                                ULONG* objectType,
                                IUnknown** object) noexcept
{
    if (objectType)
        *objectType = 0;
    if (!object)
        return MAPI_E_INVALID_PARAMETER;
    *object = nullptr;
    if (flags & ~kOpenFlags)
        return MAPI_E_UNKNOWN_FLAGS;
    const bool mayWrite = writable && !m_readOnly;
    std::span<const std::byte> bytes;
    const bool openRoot = entryIdBytes == 0 && emptyIsRoot;
    if (!openRoot)
    {
        if (const HRESULT result = CheckEntryId(entryIdBytes, entryId, bytes); FAILED(result))
            return result;
    }
    return Run([&]() -> HRESULT {
        std::optional<Bytes> root;
        if (openRoot)
        {
            root = RootEntryId();
            if (!root)
                return MAPI_E_NOT_FOUND;
            bytes = *root;
        }
        const bool writes = (flags & (MAPI_MODIFY | MAPI_BEST_ACCESS)) && mayWrite;
        ULONG type = 0;
        if (const HRESULT result = Open(bytes, iid, writes, mayWrite, type, object); FAILED(result))
            return result;
        if ((flags & MAPI_MODIFY) && !(flags & MAPI_BEST_ACCESS) && !mayWrite)
        {
            std::exchange(*object, nullptr)->Release();
            return MAPI_E_NO_ACCESS;
        }
        if (objectType)
            *objectType = type;
        return S_OK;
    });
}

HRESULT StoreSession::CheckEntryId(ULONG size,
                                   const void* bytes,
                                   std::span<const std::byte>& entryId) const
{
    return ReadEntryId(size, bytes, entryId);
}

std::optional<Bytes> StoreSession::RootEntryId()
{
    const auto folder = RootFolder(Store());
    return folder ? EntryIdOfFolder(Store(), *folder) : std::nullopt;
}

HRESULT StoreSession::Open(std::span<const std::byte> entryId,
                           const IID* iid,
                           bool writable,
                           bool mayWrite,
                           ULONG& objectType,
                           IUnknown** object)
{
    objectType = static_cast<ULONG>(entryId[kEntryIdTypeAt]);
    switch (objectType)
    {
    case MAPI_FOLDER:
        return StoreFolder::Open(shared_from_this(), entryId, iid, writable, mayWrite, object);
    case MAPI_MESSAGE:
        return StoreMessage::Open(shared_from_this(), entryId, iid, writable, object);
    case MAPI_MAILUSER:
        return StoreIdentity::Open(shared_from_this(), entryId, iid, object);
    default:
        return MAPI_E_NOT_FOUND;
    }
}
