// The tables of the store, their versions and the way from one version to the next.
// Format notes: docs/formats/store_database.md
#pragma once

#include "localstore/Database.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

using Bytes = std::vector<std::byte>;

// What a property belongs to. The numbers stand in the database.
enum class OwnerKind : std::int64_t
{
    Store = 1,
    MessageFolder = 2,
    Message = 3,
    Attachment = 4,
    Identity = 5,
    BookContainer = 6,
    BookEntry = 7
};

// The numbers of book_container.role.
enum class BookRole : std::int64_t
{
    Root = 0,
    Personal = 1
};

// One step brings a store from the version that equals the step's index to the next one.
struct SchemaStep
{
    const char* sql;
    // Fills in what SQL cannot make; null where there is nothing.
    void (*seed)(Database& database);
};

inline constexpr std::int64_t kStoreApplicationId = 0x50494D53; // "PIMS"

// From the oldest to the newest; the number of steps is the version.
std::span<const SchemaStep> StoreSchemaSteps();

// Brings an empty database or an older store to the newest of the steps, in one transaction; one
// of that version is left alone. Fails with NewerStore, NotAStore (a database of another program),
// or ReadOnly where something had to be written.
void ApplySchema(Database& database, std::span<const SchemaStep> steps);

// Opens the store of that path, of the current schema, with the write-ahead log on. A path of
// ":memory:" is a store of this connection alone.
Database OpenStore(const std::wstring& path);

// A new entry ID: four flag bytes of zero, "PS", the object's MAPI type, a version, 16 random
// bytes; 24 bytes in all.
Bytes NewEntryId(std::uint8_t objectType);
inline constexpr size_t kEntryIdBytes = 24;
// Where the object's MAPI type stands in it.
inline constexpr size_t kEntryIdTypeAt = 6;
// A caller may pass any count, and entries of the book have IDs of any form; no ID has more bytes.
inline constexpr size_t kLongestEntryId = 4096;

// Whether the bytes have the form that NewEntryId gives.
bool IsOwnEntryId(std::span<const std::byte> entryId);
