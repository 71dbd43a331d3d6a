// Writes the contents of the message store as JSON: identity, folders, messages, attachments and
// every property of them, and the address book.
// Format notes: docs/formats/store_json.md
//
// The text depends on the contents alone, not on the numbers that the database gave: a dump loaded
// into an empty store dumps the same again.
#pragma once

#include "localstore/Database.h"

#include <functional>
#include <string_view>

// Hands the UTF-8 text out piece by piece, in one read transaction: what other processes write
// meanwhile is not in it. Throws DatabaseError and what the sink throws.
void DumpStore(Database& database, const std::function<void(std::string_view)>& sink);
