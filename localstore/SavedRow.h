// The rows that messages and entries of the book have in the database: what they have in common,
// and what is done to them alike.
#pragma once

#include "localstore/StoredProperties.h"
#include "platform/WindowsHeaders.h"

// A row of a table with the columns id, entry_id, created and modified.
struct SavedRow
{
    std::int64_t id = 0; // 0 before the first save
    Bytes entryId;
    std::int64_t created = 0;
    std::int64_t modified = 0;
};

// One kind of such rows.
struct RowKind
{
    OwnerKind owner;  // of their properties
    const char* name; // of the table, and of one object in texts of failures
    bool (*isComputed)(std::uint16_t id);
};

// Entry ID and times, in a row that was saved; properties it has neither of before.
void PutRowProperties(const SavedRow& row, PropertyMap& properties);

// All inside StoreConnection::Run:

// The stored properties of the selection; none for a row that was never saved. Throws DatabaseError
// (Gone).
PropertyMap ReadRow(Database& database,
                    const RowKind& kind,
                    std::int64_t id,
                    const PropertySelection& selection);

// Gives a saved row the time of a further save, later than the one before. Without force, a row
// that others changed since it was read is refused. Throws DatabaseError (Gone, Changed). Inside a
// transaction.
void TouchRow(Database& database, const RowKind& kind, SavedRow& row, bool force);

// The list of a call that deletes. MAPI_E_INVALID_PARAMETER for one that is none.
HRESULT CheckList(const SBinaryArray* entries);

// Deletes the rows that the list names, in one transaction.
//   sql      deletes the row of the entry ID ?1 in the parent ?2
// Returns: S_OK; MAPI_W_PARTIAL_COMPLETION where some, or all, are none of the parent's rows.
HRESULT DeleteRows(Database& database,
                   const char* sql,
                   std::int64_t parent,
                   const SBinaryArray& entries);
