// Loads a JSON file into the store: the form that StoreDump.h writes, and shorter ones
// written by hand.
// Format notes: docs/formats/store_json.md
//
// The file is read twice as a stream. The first time everything in it is checked, so that a wrong
// file costs nobody the store's write lock; the second time all of it is written in one
// transaction.
#pragma once

#include "localstore/Database.h"
#include "localstore/JsonStream.h"

#include <cstddef>
#include <cstdint>

enum class LoadMode
{
    Merge,  // what the file names is added to the store, or written over what is there
    Replace // the store is emptied first
};

struct LoadCounts
{
    std::size_t folders = 0;
    std::size_t messages = 0;
    std::size_t attachments = 0;
    std::size_t bookEntries = 0;
    std::size_t properties = 0;
};

// Throws JsonProblem for what is wrong in the file, DatabaseError for what fails in the store; in
// either case nothing was changed.
LoadCounts LoadStore(Database& database, const JsonFile& file, LoadMode mode);
