// What the objects of one WABOpen share: the connection to the store and the ways into the book.
#pragma once

#include "localstore/StoreConnection.h"
#include "platform/WindowsHeaders.h"

#include <memory>
#include <span>

// What an entry ID leads to.
struct BookObject
{
    OwnerKind kind;
    std::int64_t id;
    ULONG objectType;
};

class BookSession : public StoreConnection
{
  public:
    explicit BookSession(Database database) : StoreConnection(std::move(database), L"PimLocalBook")
    {
    }

    // Only inside Run:
    Bytes EntryIdOfContainer(std::int64_t id);
    std::int64_t ContainerOfRole(BookRole role);
    // MAPI_E_UNKNOWN_ENTRYID for an ID that is none of a book's, MAPI_E_NOT_FOUND for one whose
    // object is gone.
    HRESULT Find(std::span<const std::byte> entryId, BookObject& found);

    // Opens what an entry ID names, the root container for an empty one. Serves every OpenEntry.
    // Takes the lock itself.
    static HRESULT OpenEntry(const std::shared_ptr<BookSession>& session,
                             ULONG entryIdBytes,
                             const ENTRYID* entryId,
                             const IID* iid,
                             ULONG flags,
                             ULONG* objectType,
                             IUnknown** object) noexcept;
};
