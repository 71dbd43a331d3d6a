// Values and rows as the library hands them out, with what a hostile store makes of them.
#pragma once

#include "tests/recordingstore/library/Library.h"

// The values of the tags, each found by the function; a tag of PT_UNSPECIFIED takes the stored
// type, text then as PT_UNICODE or PT_STRING8. A missing value is PT_ERROR with MAPI_E_NOT_FOUND.
// Returns whether one is missing. Throws std::bad_alloc.
using FindValue = std::function<std::optional<Value>(USHORT id)>;
bool DeliverValues(const std::vector<ULONG>& tags,
                   const FindValue& find,
                   bool isUnicode,
                   const Allocator& allocate,
                   SPropValue* out);

// Gives each value another type than it has.
void SpoilTypes(SPropValue* values, ULONG count);

// Blocks chained to a buffer.
Allocator ChainedTo(void* buffer);
