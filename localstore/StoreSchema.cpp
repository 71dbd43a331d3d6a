#include "localstore/StoreSchema.h"

#include "localstore/Snapshot.h"
#include "localstore/StoredProperties.h"
#include "platform/WindowsHeaders.h"

#include <cstring>
#include <string>

namespace
{

// Structure stands in columns, everything else in property. AUTOINCREMENT keeps a number from
// being used again, so that properties and IDs of a deleted object can never meet a new one.
constexpr char kVersion1[] = R"sql(
CREATE TABLE meta (
    name TEXT PRIMARY KEY NOT NULL,
    value BLOB NOT NULL
) WITHOUT ROWID;

CREATE TABLE folder (
    id INTEGER PRIMARY KEY AUTOINCREMENT,
    entry_id BLOB NOT NULL UNIQUE,
    parent INTEGER REFERENCES folder (id) ON DELETE CASCADE,
    created INTEGER NOT NULL,
    modified INTEGER NOT NULL
);
CREATE INDEX folder_parent ON folder (parent);

CREATE TABLE message (
    id INTEGER PRIMARY KEY AUTOINCREMENT,
    entry_id BLOB NOT NULL UNIQUE,
    folder INTEGER NOT NULL REFERENCES folder (id) ON DELETE CASCADE,
    associated INTEGER NOT NULL DEFAULT 0 CHECK (associated IN (0, 1)),
    created INTEGER NOT NULL,
    modified INTEGER NOT NULL
);
CREATE INDEX message_folder ON message (folder, associated);

CREATE TABLE attachment (
    id INTEGER PRIMARY KEY AUTOINCREMENT,
    message INTEGER NOT NULL REFERENCES message (id) ON DELETE CASCADE,
    number INTEGER NOT NULL,
    UNIQUE (message, number)
);

CREATE TABLE receive_folder (
    message_class TEXT PRIMARY KEY NOT NULL COLLATE NOCASE,
    folder INTEGER NOT NULL REFERENCES folder (id) ON DELETE CASCADE
) WITHOUT ROWID;

CREATE TABLE identity (
    id INTEGER PRIMARY KEY CHECK (id = 1),
    entry_id BLOB NOT NULL UNIQUE
);

CREATE TABLE book_container (
    id INTEGER PRIMARY KEY AUTOINCREMENT,
    entry_id BLOB NOT NULL UNIQUE,
    role INTEGER NOT NULL UNIQUE
);

CREATE TABLE book_entry (
    id INTEGER PRIMARY KEY AUTOINCREMENT,
    entry_id BLOB NOT NULL UNIQUE,
    container INTEGER NOT NULL REFERENCES book_container (id) ON DELETE CASCADE,
    object_type INTEGER NOT NULL CHECK (object_type IN (6, 8)),
    created INTEGER NOT NULL,
    modified INTEGER NOT NULL
);
CREATE INDEX book_entry_container ON book_entry (container);

CREATE TABLE named_property (
    property_id INTEGER PRIMARY KEY CHECK (property_id BETWEEN 32768 AND 65534),
    property_set BLOB NOT NULL CHECK (length(property_set) = 16),
    number INTEGER,
    name BLOB,
    CHECK ((number IS NULL) <> (name IS NULL))
);
CREATE UNIQUE INDEX named_property_number ON named_property (property_set, number)
    WHERE number IS NOT NULL;
CREATE UNIQUE INDEX named_property_name ON named_property (property_set, name)
    WHERE name IS NOT NULL;

CREATE TABLE large_value (
    id INTEGER PRIMARY KEY AUTOINCREMENT,
    bytes BLOB NOT NULL
);

CREATE TABLE property (
    owner_kind INTEGER NOT NULL CHECK (owner_kind BETWEEN 1 AND 7),
    owner INTEGER NOT NULL,
    property_id INTEGER NOT NULL CHECK (property_id BETWEEN 1 AND 65534),
    type INTEGER NOT NULL CHECK (type BETWEEN 0 AND 65535),
    value,
    large INTEGER REFERENCES large_value (id),
    PRIMARY KEY (owner_kind, owner, property_id)
) WITHOUT ROWID;
CREATE INDEX property_large ON property (large) WHERE large IS NOT NULL;

CREATE TRIGGER property_deleted AFTER DELETE ON property WHEN old.large IS NOT NULL
BEGIN DELETE FROM large_value WHERE id = old.large; END;

CREATE TRIGGER folder_deleted AFTER DELETE ON folder
BEGIN DELETE FROM property WHERE owner_kind = 2 AND owner = old.id; END;
CREATE TRIGGER message_deleted AFTER DELETE ON message
BEGIN DELETE FROM property WHERE owner_kind = 3 AND owner = old.id; END;
CREATE TRIGGER attachment_deleted AFTER DELETE ON attachment
BEGIN DELETE FROM property WHERE owner_kind = 4 AND owner = old.id; END;
CREATE TRIGGER identity_deleted AFTER DELETE ON identity
BEGIN DELETE FROM property WHERE owner_kind = 5 AND owner = old.id; END;
CREATE TRIGGER book_container_deleted AFTER DELETE ON book_container
BEGIN DELETE FROM property WHERE owner_kind = 6 AND owner = old.id; END;
CREATE TRIGGER book_entry_deleted AFTER DELETE ON book_entry
BEGIN DELETE FROM property WHERE owner_kind = 7 AND owner = old.id; END;
)sql";

void AddContainer(Database& database, BookRole role, const wchar_t* displayName)
{
    database.Prepare("INSERT INTO book_container (entry_id, role) VALUES (?1, ?2)")
        .Bind(1, NewEntryId(static_cast<std::uint8_t>(MAPI_ABCONT)))
        .Bind(2, static_cast<std::int64_t>(role))
        .Run();
    const PropertyOwner container{OwnerKind::BookContainer, database.LastInsertId()};
    WriteProperty(database,
                  container,
                  PROP_ID(PR_DISPLAY_NAME_W),
                  PropertyValue{PT_UNICODE, std::wstring(displayName)});
}

void SeedVersion1(Database& database)
{
    GUID uid{};
    if (FAILED(CoCreateGuid(&uid)))
        throw DatabaseError(DatabaseFailure::Other, "no unique number for the new store");
    database.Prepare("INSERT INTO meta (name, value) VALUES ('store_uid', ?1)")
        .Bind(1, std::as_bytes(std::span(&uid, 1)))
        .Run();
    AddContainer(database, BookRole::Root, L"Address Book");
    AddContainer(database, BookRole::Personal, L"Contacts");
}

constexpr SchemaStep kSteps[] = {{kVersion1, SeedVersion1}};

bool IsEmpty(Database& database)
{
    return database.QueryInteger("SELECT count(*) FROM sqlite_schema") == 0;
}

// The store's version, 0 for an empty database. Throws for what is not ours or not for us. Inside a
// transaction: another process may be making the store.
std::int64_t ReadVersion(Database& database, std::int64_t newest)
{
    const std::int64_t version = database.QueryInteger("PRAGMA user_version");
    const std::int64_t application = database.QueryInteger("PRAGMA application_id");
    if (application == 0 && version == 0 && IsEmpty(database))
        return 0;
    if (application != kStoreApplicationId || version < 1)
        throw DatabaseError(DatabaseFailure::NotAStore,
                            "the file is a database of another program, not a store");
    if (version > newest)
        throw DatabaseError(DatabaseFailure::NewerStore,
                            "the store was written by a newer version of this software (schema " +
                                std::to_string(version) + ", known up to " +
                                std::to_string(newest) + "); update this software to use it");
    return version;
}

std::int64_t VersionNow(Database& database, std::int64_t newest)
{
    const Snapshot snapshot(database);
    return ReadVersion(database, newest);
}

} // namespace

std::span<const SchemaStep> StoreSchemaSteps()
{
    return kSteps;
}

void ApplySchema(Database& database, std::span<const SchemaStep> steps)
{
    const auto newest = static_cast<std::int64_t>(steps.size());
    if (VersionNow(database, newest) == newest)
        return;
    if (database.IsReadOnly())
        throw DatabaseError(DatabaseFailure::ReadOnly,
                            "the store has to be brought to a newer schema, but its file refuses "
                            "writing");
    Transaction transaction(database);
    // Another process may have been faster; inside the transaction the answer holds.
    for (std::int64_t version = ReadVersion(database, newest); version < newest; ++version)
    {
        const SchemaStep& step = steps[static_cast<size_t>(version)];
        database.Execute(step.sql);
        if (step.seed)
            step.seed(database);
    }
    database.Execute("PRAGMA application_id = " + std::to_string(kStoreApplicationId));
    database.Execute("PRAGMA user_version = " + std::to_string(newest));
    transaction.Commit();
}

Database OpenStore(const std::wstring& path)
{
    Database database = Database::Open(path, true);
    // The version comes before the log mode: what is not for us stays as it is.
    VersionNow(database, static_cast<std::int64_t>(std::size(kSteps)));
    if (path != L":memory:")
        database.UseWriteAheadLog();
    ApplySchema(database, kSteps);
    return database;
}

Bytes NewEntryId(std::uint8_t objectType)
{
    GUID uid{};
    if (FAILED(CoCreateGuid(&uid)))
        throw DatabaseError(DatabaseFailure::Other, "no unique number for a new entry ID");
    const std::byte head[] = {std::byte{0},
                              std::byte{0},
                              std::byte{0},
                              std::byte{0},
                              std::byte{'P'},
                              std::byte{'S'},
                              std::byte{objectType},
                              std::byte{1}};
    static_assert(sizeof head + sizeof uid == kEntryIdBytes);
    Bytes entryId(kEntryIdBytes);
    std::memcpy(entryId.data(), head, sizeof head);
    std::memcpy(entryId.data() + sizeof head, &uid, sizeof uid);
    return entryId;
}

bool IsOwnEntryId(std::span<const std::byte> entryId)
{
    constexpr std::byte kStart[] = {
        std::byte{0}, std::byte{0}, std::byte{0}, std::byte{0}, std::byte{'P'}, std::byte{'S'}};
    return entryId.size() == kEntryIdBytes &&
           std::memcmp(entryId.data(), kStart, sizeof kStart) == 0 && entryId[7] == std::byte{1};
}
