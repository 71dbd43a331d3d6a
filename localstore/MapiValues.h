// Stored property values as MAPI hands them out.
#pragma once

#include "localstore/ChainedMemory.h"
#include "localstore/StoredProperties.h"
#include "platform/WindowsHeaders.h"

#include <functional>
#include <map>
#include <vector>

using PropertyMap = std::map<std::uint16_t, PropertyValue>;

// More tags than there are property IDs can only be a broken count.
inline constexpr ULONG kMaxTags = 0xFFFF;

// The value of each tag in its order, in a new buffer of that many SPropValue records. A tag of
// PT_UNSPECIFIED takes the stored type; text is converted between PT_UNICODE and PT_STRING8 (the
// system's ANSI code page); a missing value, and one of another type, comes as PT_ERROR with
// MAPI_E_NOT_FOUND in the tag's place.
// Ownership: the caller frees *values with one Free.
// Returns:   S_OK; MAPI_W_ERRORS_RETURNED where a value is missing. Throws std::bad_alloc.
HRESULT CopyValues(const PropertyMap& properties,
                   const std::vector<ULONG>& tags,
                   ChainedMemory& memory,
                   SPropValue** values);

// The tags of all properties; text as PT_UNICODE or PT_STRING8.
std::vector<ULONG> TagsOf(const PropertyMap& properties, bool unicode);

// The tags of a caller's array. MAPI_E_INVALID_PARAMETER for a count of 0 or beyond kMaxTags.
HRESULT ReadTags(const SPropTagArray* array, std::vector<ULONG>& tags);

// A tag array in a new buffer.
SPropTagArray* CopyTags(const std::vector<ULONG>& tags, ChainedMemory& memory);
