// What the objects of one opening share: the connection, the named properties and the ways from an
// entry ID to an object. Lives as long as any of them. The message store has this one, the address
// book one that is derived from it.
#pragma once

#include "localstore/NameCache.h"
#include "localstore/StoreConnection.h"
#include "platform/WindowsHeaders.h"

#include <memory>
#include <optional>
#include <span>

class StoreSession : public StoreConnection, public std::enable_shared_from_this<StoreSession>
{
  public:
    explicit StoreSession(Database database) : StoreSession(std::move(database), L"PimLocalStore")
    {
    }
    virtual ~StoreSession() = default;

    bool IsReadOnly() const noexcept { return m_readOnly; }
    const Bytes& StoreUid() const noexcept { return m_storeUid; }
    const Bytes& StoreEntryId() const noexcept { return m_storeEntryId; }

    // Only inside Run:
    NameCache& Names() noexcept { return m_names; }

    // Opens what an entry ID names. Serves every OpenEntry of the store and its folders.
    //   emptyIsRoot   an empty ID opens the root folder, else it is refused
    //   writable      whether the store was opened for writing
    // Returns: MAPI_E_INVALID_ENTRYID (no entry ID at all), MAPI_E_UNKNOWN_ENTRYID (of another
    //          store), MAPI_E_NOT_FOUND (the object is gone), MAPI_E_INTERFACE_NOT_SUPPORTED,
    //          MAPI_E_UNKNOWN_FLAGS, MAPI_E_NO_ACCESS (MAPI_MODIFY where nothing may change).
    // Takes the lock itself.
    HRESULT OpenEntry(ULONG entryIdBytes,
                      const ENTRYID* entryId,
                      const IID* iid,
                      ULONG flags,
                      bool emptyIsRoot,
                      bool writable,
                      ULONG* objectType,
                      IUnknown** object) noexcept;

  protected:
    // component: the library's name in the records of LastError.
    StoreSession(Database database, const wchar_t* component);

    // The bytes of an entry ID that a caller passed; fails for what can be none.
    virtual HRESULT CheckEntryId(ULONG size,
                                 const void* bytes,
                                 std::span<const std::byte>& entryId) const;
    // Inside Run:

    // The root that an empty entry ID stands for; nothing where there is none.
    virtual std::optional<Bytes> RootEntryId();
    // Opens what an entry ID names.
    //   writable   whether that object may change
    //   mayWrite   whether anything may
    virtual HRESULT Open(std::span<const std::byte> entryId,
                         const IID* iid,
                         bool writable,
                         bool mayWrite,
                         ULONG& objectType,
                         IUnknown** object);

  private:
    bool m_readOnly;
    NameCache m_names;
    Bytes m_storeUid;
    Bytes m_storeEntryId;
};

// The bytes of an entry ID that a caller passed. MAPI_E_INVALID_PARAMETER for a null address,
// MAPI_E_INVALID_ENTRYID for a size that none has, MAPI_E_UNKNOWN_ENTRYID for one of another store.
HRESULT ReadEntryId(ULONG size, const void* bytes, std::span<const std::byte>& entryId);

// IMAPISession, IMsgStore and IAddrBook share it: *same is 1 where both are the same bytes, else 0.
HRESULT CompareEntryIdBytes(
    ULONG firstBytes, const ENTRYID* first, ULONG secondBytes, const ENTRYID* second, ULONG* same);

// The answer of an operation that the store does not offer; outputs are cleared.
template <typename... Outputs> HRESULT RefuseWith(Outputs*... outputs) noexcept
{
    ((outputs ? void(*outputs = {}) : void()), ...);
    return MAPI_E_NO_SUPPORT;
}
