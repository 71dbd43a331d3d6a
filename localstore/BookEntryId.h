// Entry IDs of the embedded address book, whose entries carry their identity as text, as the
// contacts of the Windows Address Book do.
#pragma once

#include "localstore/StoreSchema.h"

#include <cstdint>
#include <span>

// The ID of a new entry: the UTF-16LE text  /GUID:"{...}"  with a number of its own in braces.
Bytes NewBookEntryId();

// Whether the bytes begin as NewBookEntryId's do.
bool IsBookEntryId(std::span<const std::byte> entryId);

// What a container names as the template of new entries of an object type; no object of its own.
Bytes TemplateEntryId(std::uint8_t objectType);
