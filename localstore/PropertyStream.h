// Streams on one property of an open object: binary values as they are, text as its UTF-16 code
// units or its ANSI bytes, without terminator. What is written goes to the object at Commit and
// when the last reference goes; STGM_TRANSACTED in the interface options leaves Commit alone. The
// object keeps it until it is saved itself.
#pragma once

#include "localstore/StoredObject.h"

#include <memory>

namespace PropertyStream
{

// flags: MAPI_MODIFY to write; MAPI_CREATE to begin with an empty value, also where there is none.
// Returns: S_OK; MAPI_E_NOT_FOUND for a missing value and one of another type; MAPI_E_NO_ACCESS;
//          MAPI_E_COMPUTED; MAPI_E_NO_SUPPORT for types without a stream. Takes the lock.
HRESULT Open(const std::shared_ptr<StoredObject>& object,
             ULONG tag,
             ULONG interfaceOptions,
             ULONG flags,
             IUnknown** stream);

} // namespace PropertyStream
