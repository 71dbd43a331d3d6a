// The personal container of the embedded address book in a store of that path, over a connection
// that the test holds too.
#pragma once

#include "localstore/BookContainer.h"
#include "platform/WindowsHeaders.h"

#include <memory>
#include <string>

class OwnBook
{
  public:
    // Makes what the store lacks. Throws DatabaseError.
    explicit OwnBook(const std::wstring& path);

    Database& Store() { return m_session->Store(); }
    BookContainer& Container() { return *m_container.Get(); }

    // An unsaved entry; null where the container refuses.
    Microsoft::WRL::ComPtr<IMAPIProp> NewEntry();
    // As the book opens it by its ID, to be changed.
    HRESULT Open(const Bytes& entryId, ULONG& objectType, IUnknown** object);
    HRESULT Delete(Bytes entryId);

  private:
    std::shared_ptr<BookSession> m_session;
    Microsoft::WRL::ComPtr<BookContainer> m_container;
};

// The ID of a saved entry; empty for another.
Bytes EntryIdOf(IMAPIProp* entry);
