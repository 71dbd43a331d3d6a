// What the objects of one WABOpen share: the connection to the store and the ways into the book.
#pragma once

#include "localstore/StoreSession.h"

class BookSession : public StoreSession
{
  public:
    explicit BookSession(Database database) : StoreSession(std::move(database), L"PimLocalBook") {}

    // Only inside Run:
    Bytes EntryIdOfContainer(std::int64_t id);
    std::int64_t ContainerOfRole(BookRole role);

  protected:
    // Entries may have IDs of any form.
    HRESULT CheckEntryId(ULONG size,
                         const void* bytes,
                         std::span<const std::byte>& entryId) const override;
    std::optional<Bytes> RootEntryId() override;
    // MAPI_E_UNKNOWN_ENTRYID for an ID that is none of a book's, MAPI_E_NOT_FOUND for one whose
    // object is gone.
    HRESULT Open(std::span<const std::byte> entryId,
                 const IID* iid,
                 bool writable,
                 bool mayWrite,
                 ULONG& objectType,
                 IUnknown** object) override;
};
