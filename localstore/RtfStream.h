// The plain side of a stream of compressed RTF.
#pragma once

#include "platform/WindowsHeaders.h"

// Wraps a stream of compressed RTF. The text is unpacked at once and read from memory.
//   flags: 0 to read; MAPI_MODIFY to write as well: the packed text goes to the wrapped stream, and
//          is committed there, at Commit and when the last reference goes. STORE_UNCOMPRESSED_RTF
//          stores the text under the header for text that is not packed.
// An empty stream holds an empty text.
// Ownership: the new stream holds a reference to the wrapped one.
// Returns: S_OK; MAPI_E_INVALID_PARAMETER; MAPI_E_UNKNOWN_FLAGS; MAPI_E_CORRUPT_DATA;
// MAPI_E_TOO_BIG; MAPI_E_NOT_ENOUGH_MEMORY; the wrapped stream's failures.
HRESULT WrapRtfStream(IStream* compressed, ULONG flags, IStream** text) noexcept;
