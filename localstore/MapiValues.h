// Stored property values as MAPI hands them out.
#pragma once

#include "localstore/ChainedMemory.h"
#include "localstore/StoredProperties.h"
#include "platform/WindowsHeaders.h"

#include <optional>
#include <span>
#include <vector>

// The IDs of the tags.
PropertySelection SelectionOf(const std::vector<ULONG>& tags);

// More tags than there are property IDs can only be a broken count.
inline constexpr ULONG kMaxTags = 0xFFFF;

// What a tag of PT_UNSPECIFIED gives for text.
enum class UntypedText
{
    AsStored,
    Unicode,
    Ansi
};

// The value of each tag in its order, in a new buffer of that many SPropValue records that also
// holds what they point to. A tag of PT_UNSPECIFIED takes the stored type; text is converted
// between PT_UNICODE and PT_STRING8 (the system's ANSI code page); a missing value, and one of
// another type, comes as PT_ERROR with MAPI_E_NOT_FOUND in the tag's place.
// Ownership: the caller frees *values with one Free.
// Returns:   S_OK; MAPI_W_ERRORS_RETURNED where a value is missing. Throws std::bad_alloc.
HRESULT CopyValues(const PropertyMap& properties,
                   const std::vector<ULONG>& tags,
                   ChainedMemory& memory,
                   SPropValue** values,
                   UntypedText untyped = UntypedText::AsStored);

// Takes a caller's value over. The pointers in it have to be valid; null pointers and sizes beyond
// what can be stored are told.
// Returns: S_OK; MAPI_E_INVALID_PARAMETER (a null pointer, a property ID of 0 or 0xFFFF),
//          MAPI_E_INVALID_TYPE (a type that cannot be stored), MAPI_E_TOO_BIG. Throws
//          std::bad_alloc.
HRESULT ReadValue(const SPropValue& source, PropertyValue& value);

// The stored value in another type of the same kind, text in the other form: nothing where that
// cannot be. PT_UNSPECIFIED is any type.
std::optional<PropertyValue> ConvertValue(const PropertyValue& stored, std::uint16_t type);

// Text in the system's ANSI code page.
Bytes AnsiFromWide(const std::wstring& text);
std::wstring WideFromAnsi(const Bytes& text);

// A caller's text, which its flags tell the form of: UTF-16 with MAPI_UNICODE, else of the ANSI
// code page. Null is an empty one.
std::wstring WideFromCaller(const TCHAR* text, ULONG flags);
// The bytes of a text in that form, terminator included.
Bytes TextForCaller(const std::wstring& text, ULONG flags);

// An entry ID in a new buffer, which the caller frees. Throws std::bad_alloc.
void HandOutEntryId(std::span<const std::byte> entryId, ULONG* entryIdBytes, LPENTRYID* copy);

// One value may have this many bytes; what is larger does not fit the database.
inline constexpr size_t kMaxValueBytes = 512u * 1024 * 1024;

// The tags of all properties; text as PT_UNICODE or PT_STRING8.
std::vector<ULONG> TagsOf(const PropertyMap& properties, bool unicode);

// The tags of a caller's array. MAPI_E_INVALID_PARAMETER for a count of 0 or beyond kMaxTags.
HRESULT ReadTags(const SPropTagArray* array, std::vector<ULONG>& tags);

// A tag array in a new buffer.
SPropTagArray* CopyTags(const std::vector<ULONG>& tags, ChainedMemory& memory);
