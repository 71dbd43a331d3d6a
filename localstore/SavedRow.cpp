#include "localstore/SavedRow.h"

#include "localstore/StoreProfile.h"
#include "localstore/StoreProperties.h"
#include "localstore/StoredObject.h"

#include <algorithm>
#include <limits>
#include <string>

namespace
{

constexpr ULONG kMaxListEntries = 0x00FFFFFF;

DatabaseError GoneError(const RowKind& kind)
{
    return {DatabaseFailure::Gone, std::string("the ") + kind.name + " was deleted"};
}

} // namespace

void PutRowProperties(const SavedRow& row, PropertyMap& properties)
{
    if (row.id == 0)
        return;
    PutBinary(properties, PR_ENTRYID, row.entryId);
    PutBinary(properties, PR_RECORD_KEY, row.entryId);
    PutTime(properties, PR_CREATION_TIME, row.created);
    PutTime(properties, PR_LAST_MODIFICATION_TIME, row.modified);
}

PropertyMap ReadRow(Database& database,
                    const RowKind& kind,
                    std::int64_t id,
                    const PropertySelection& selection)
{
    if (id == 0)
        return {};
    PropertyMap properties = ReadStored(database, {kind.owner, id}, selection, kind.isComputed);
    if (!properties.empty())
        return properties;
    // One without any of them is looked at twice: it may be gone.
    Statement row = database.Prepare(std::string("SELECT 1 FROM ") + kind.name + " WHERE id = ?1");
    row.Bind(1, id);
    if (!row.Step())
        throw GoneError(kind);
    return properties;
}

void TouchRow(Database& database, const RowKind& kind, SavedRow& row, bool force)
{
    const std::string table = kind.name;
    Statement stored = database.Prepare("SELECT modified FROM " + table + " WHERE id = ?1");
    stored.Bind(1, row.id);
    if (!stored.Step())
        throw GoneError(kind);
    const std::int64_t modified = stored.Integer(0);
    stored.Reset();
    if (modified != row.modified && !force)
        throw DatabaseError(DatabaseFailure::Changed, "the " + table + " was changed meanwhile");
    // Strictly later than before, so that every save shows, but for the last time there is.
    constexpr std::int64_t kLastTime = std::numeric_limits<std::int64_t>::max();
    row.modified = std::max(CurrentFileTime(), std::min(modified, kLastTime - 1) + 1);
    database.Prepare("UPDATE " + table + " SET modified = ?2 WHERE id = ?1")
        .Bind(1, row.id)
        .Bind(2, row.modified)
        .Run();
}

HRESULT CheckList(const SBinaryArray* entries)
{
    const bool isList =
        entries && entries->cValues <= kMaxListEntries && (entries->cValues == 0 || entries->lpbin);
    return isList ? S_OK : MAPI_E_INVALID_PARAMETER;
}

HRESULT DeleteRows(Database& database,
                   const char* sql,
                   std::int64_t parent,
                   const SBinaryArray& entries)
{
    Transaction transaction(database);
    HRESULT outcome = S_OK;
    for (ULONG i = 0; i < entries.cValues; ++i)
    {
        const SBinary& entryId = entries.lpbin[i];
        const bool isEntryId = entryId.lpb && entryId.cb != 0 && entryId.cb <= kLongestEntryId;
        if (isEntryId)
            database.Prepare(sql)
                .Bind(1, std::as_bytes(std::span(entryId.lpb, entryId.cb)))
                .Bind(2, parent)
                .Run();
        if (!isEntryId || database.Changes() == 0)
            outcome = MAPI_W_PARTIAL_COMPLETION;
    }
    transaction.Commit();
    return outcome;
}
