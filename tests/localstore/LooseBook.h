// Takes the rules away that the schema has for the entries of the address book, so that a test can
// put there what a damaged file may hold.
#pragma once

#include "localstore/Database.h"

inline void DropEntryRules(Database& database)
{
    database.Execute("PRAGMA foreign_keys = OFF");
    database.Execute("CREATE TABLE loose (id INTEGER PRIMARY KEY AUTOINCREMENT, entry_id, "
                     "container, object_type, created, modified)");
    database.Execute("INSERT INTO loose SELECT id, entry_id, container, object_type, created, "
                     "modified FROM book_entry");
    database.Execute("DROP TABLE book_entry");
    database.Execute("ALTER TABLE loose RENAME TO book_entry");
}
