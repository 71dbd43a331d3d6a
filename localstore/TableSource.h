// What a table shows: rows with a key each, in their natural order, and the properties of a row.
#pragma once

#include "localstore/StoredObject.h"

#include <functional>
#include <memory>
#include <span>
#include <vector>

// Gets a row; false ends the reading.
using RowVisitor = std::function<bool(std::int64_t key, const PropertyMap& row)>;

class TableSource
{
  public:
    virtual ~TableSource() = default;

    // All inside StoreConnection::Run:

    // The keys of the rows as they are now, ascending.
    virtual std::vector<std::int64_t> Keys() = 0;
    // Visits the rows of the keys in their order; those that are gone by now are left out.
    //   wholeRun: the keys are all the rows between the first and the last of them, ascending.
    virtual void Read(std::span<const std::int64_t> keys,
                      bool wholeRun,
                      const PropertySelection& selection,
                      const RowVisitor& visit) = 0;
    virtual std::vector<ULONG> DefaultColumns() const = 0;
};

// The messages of a folder, or its associated ones. Rows of a whole run come from one statement.
std::unique_ptr<TableSource> MakeContentsSource(std::shared_ptr<StoreSession> session,
                                                std::int64_t folder,
                                                bool associated);

// The folders directly below a folder.
std::unique_ptr<TableSource> MakeHierarchySource(std::shared_ptr<StoreSession> session,
                                                 std::int64_t folder);

// Rows that never change.
std::unique_ptr<TableSource> MakeFixedSource(std::vector<PropertyMap> rows,
                                             std::vector<ULONG> columns);
