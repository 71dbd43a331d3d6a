// The exported entry point of the embedded address book.
#include "localstore/AddressBook.h"
#include "localstore/BookSession.h"
#include "localstore/StayLoaded.h"
#include "localstore/StorePath.h"
#include "localstore/StoreSchema.h"
#include "localstore/WabObject.h"

#include <cstddef>
#include <memory>
#include <string>

namespace
{

// Both outputs get one reference, or stay null.
HRESULT OpenBook(const std::wstring& storePath, LPADRBOOK* book, LPWABOBJECT* library)
{
    const auto session = std::make_shared<BookSession>(OpenStore(storePath));
    auto newBook = MakeObject<AddressBook>(session);
    *library = MakeObject<WabObject>(session).Detach();
    *book = newBook.Detach();
    return S_OK;
}

} // namespace

// Opens the book on the user's store.
//   parameter   may be null. A file name in it asks for a book of its own, and there is only the
//               one of the store.
// Returns: S_OK; MAPI_E_INVALID_PARAMETER; MAPI_E_NO_SUPPORT for a file name; MAPI_E_VERSION,
//          MAPI_E_CORRUPT_STORE, MAPI_E_NO_ACCESS, MAPI_E_BUSY, MAPI_E_NOT_FOUND and the disk's
//          failures where the store does not open. pimstore status tells the reason in words.
// Thread:  any. The objects may be used from any thread; one operation runs at a time per opening.
STDMETHODIMP WABOpen(LPADRBOOK* book, LPWABOBJECT* library, LPWAB_PARAM parameter, DWORD reserved)
{
    if (book)
        *book = nullptr;
    if (library)
        *library = nullptr;
    if (!book || !library || reserved != 0)
        return MAPI_E_INVALID_PARAMETER;
    if (parameter)
    {
        // Earlier forms of the record end before the last field, later ones may go on.
        if (parameter->cbSize < offsetof(WAB_PARAM, guidPSExt))
            return MAPI_E_INVALID_PARAMETER;
        if (parameter->szFileName && *parameter->szFileName)
            return MAPI_E_NO_SUPPORT;
    }
    StayLoaded();
    return Guarded([&] { return OpenBook(StorePath(), book, library); });
}
