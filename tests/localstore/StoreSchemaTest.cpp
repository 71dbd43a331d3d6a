#include "localstore/StoreSchema.h"

#include "localstore/StoredProperties.h"
#include "tests/localstore/LocalStoreSupport.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

namespace
{

DatabaseFailure FailureOf(const std::function<void()>& action)
{
    try
    {
        action();
    }
    catch (const DatabaseError& error)
    {
        return error.Failure();
    }
    ADD_FAILURE() << "no failure";
    return DatabaseFailure::Other;
}

constexpr SchemaStep kFirst[] = {{"CREATE TABLE a (v); INSERT INTO a VALUES (1)", nullptr}};
constexpr SchemaStep kSecond[] = {
    kFirst[0], {"ALTER TABLE a ADD COLUMN w; UPDATE a SET w = v + 1", [](Database& database) {
                    database.Execute("INSERT INTO a VALUES (5, 6)");
                }}};
constexpr SchemaStep kBrokenSecond[] = {kFirst[0],
                                        {"UPDATE a SET v = 9; UPDATE none SET v = 1", nullptr}};

} // namespace

TEST(StoreSchemaTest, ANewStoreHasTheCurrentVersionAndOurMark)
{
    Database database = OpenStore(L":memory:");
    EXPECT_EQ(static_cast<std::int64_t>(StoreSchemaSteps().size()),
              database.QueryInteger("PRAGMA user_version"));
    EXPECT_EQ(0x50494D53, database.QueryInteger("PRAGMA application_id"));
    EXPECT_EQ(16, database.QueryInteger("SELECT length(value) FROM meta WHERE name = 'store_uid'"));
}

TEST(StoreSchemaTest, ANewStoreHasRootAndPersonalContainer)
{
    Database database = OpenStore(L":memory:");
    Statement rows =
        database.Prepare("SELECT id, entry_id, role FROM book_container ORDER BY role");
    ASSERT_TRUE(rows.Step());
    EXPECT_EQ(0, rows.Integer(2));
    EXPECT_TRUE(IsOwnEntryId(rows.Blob(1)));
    ASSERT_TRUE(rows.Step());
    EXPECT_EQ(1, rows.Integer(2));
    // 0x3001 is the display name's property ID.
    const auto name = ReadProperty(database, {OwnerKind::BookContainer, rows.Integer(0)}, 0x3001);
    ASSERT_TRUE(name.has_value());
    EXPECT_EQ((PropertyValue{0x001F, std::wstring(L"Contacts")}), *name);
    EXPECT_FALSE(rows.Step());
}

TEST(StoreSchemaTest, EntryIdsStayOverOpenings)
{
    const TempFolder folder;
    const std::wstring path = folder.File(L"store.db");
    const auto read = [&] {
        Database database = OpenStore(path);
        Statement row = database.Prepare("SELECT entry_id FROM book_container WHERE role = 1");
        EXPECT_TRUE(row.Step());
        const auto blob = row.Blob(0);
        return Bytes(blob.begin(), blob.end());
    };
    const Bytes first = read();
    EXPECT_EQ(kEntryIdBytes, first.size());
    EXPECT_EQ(first, read());
}

TEST(StoreSchemaTest, BringsAnOlderStoreToTheNewVersionAndKeepsItsData)
{
    Database database = Database::Open(L":memory:", true);
    ApplySchema(database, kFirst);
    EXPECT_EQ(1, database.QueryInteger("PRAGMA user_version"));
    ApplySchema(database, kSecond);
    EXPECT_EQ(2, database.QueryInteger("PRAGMA user_version"));
    EXPECT_EQ(2, database.QueryInteger("SELECT w FROM a WHERE v = 1"));
    EXPECT_EQ(6, database.QueryInteger("SELECT w FROM a WHERE v = 5"));
    ApplySchema(database, kSecond);
    EXPECT_EQ(2, database.QueryInteger("SELECT count(*) FROM a")) << "a step runs once";
}

TEST(StoreSchemaTest, AStepThatFailsLeavesTheOlderStoreWhole)
{
    Database database = Database::Open(L":memory:", true);
    ApplySchema(database, kFirst);
    FailureOf([&] { ApplySchema(database, kBrokenSecond); });
    EXPECT_EQ(1, database.QueryInteger("PRAGMA user_version"));
    EXPECT_EQ(1, database.QueryInteger("SELECT v FROM a"));
    ApplySchema(database, kSecond);
    EXPECT_EQ(2, database.QueryInteger("PRAGMA user_version"));
}

TEST(StoreSchemaTest, RefusesAStoreOfANewerVersionAndLeavesItAlone)
{
    const TempFolder folder;
    const std::wstring path = folder.File(L"store.db");
    {
        Database database = Database::Open(path, true);
        ApplySchema(database, StoreSchemaSteps());
        database.Execute("PRAGMA user_version = 1000");
    }
    const std::string before = ReadWholeFile(path);
    try
    {
        OpenStore(path);
        ADD_FAILURE() << "opened";
    }
    catch (const DatabaseError& error)
    {
        EXPECT_EQ(DatabaseFailure::NewerStore, error.Failure());
        EXPECT_NE(std::string::npos, std::string(error.what()).find("1000"));
        EXPECT_NE(std::string::npos, std::string(error.what()).find("update"));
    }
    EXPECT_EQ(before, ReadWholeFile(path));
}

TEST(StoreSchemaTest, RefusesADatabaseOfAnotherProgram)
{
    const TempFolder folder;
    const std::wstring path = folder.File(L"other.db");
    {
        Database database = Database::Open(path, true);
        database.Execute("CREATE TABLE theirs (v); INSERT INTO theirs VALUES (1)");
    }
    const std::string before = ReadWholeFile(path);
    EXPECT_EQ(DatabaseFailure::NotAStore, FailureOf([&] { OpenStore(path); }));
    EXPECT_EQ(before, ReadWholeFile(path));
    {
        Database database = Database::Open(path, false);
        database.Execute("PRAGMA user_version = 1; PRAGMA application_id = 12345");
    }
    EXPECT_EQ(DatabaseFailure::NotAStore, FailureOf([&] { OpenStore(path); }));
}

TEST(StoreSchemaTest, DeletingAFolderTakesAllThatIsInIt)
{
    Database database = OpenStore(L":memory:");
    database.Execute("INSERT INTO folder VALUES (1, x'01', NULL, 0, 0), (2, x'02', 1, 0, 0)");
    database.Execute("INSERT INTO message VALUES (1, x'03', 2, 0, 0, 0)");
    database.Execute("INSERT INTO attachment VALUES (1, 1, 0)");
    const PropertyValue large{0x0102, Bytes(kLargestInlineBytes + 1)};
    WriteProperty(database, {OwnerKind::MessageFolder, 2}, 0x3001, large);
    WriteProperty(database, {OwnerKind::Message, 1}, 0x37, large);
    WriteProperty(database, {OwnerKind::Attachment, 1}, 0x3701, large);
    ASSERT_EQ(3, database.QueryInteger("SELECT count(*) FROM large_value"));

    database.Execute("DELETE FROM folder WHERE id = 1");
    for (const char* count : {"SELECT count(*) FROM folder",
                              "SELECT count(*) FROM message",
                              "SELECT count(*) FROM attachment",
                              "SELECT count(*) FROM property WHERE owner_kind < 6",
                              "SELECT count(*) FROM large_value"})
        EXPECT_EQ(0, database.QueryInteger(count)) << count;
}

TEST(StoreSchemaTest, NumbersOfDeletedMessagesAreNotUsedAgain)
{
    Database database = OpenStore(L":memory:");
    database.Execute("INSERT INTO folder VALUES (1, x'01', NULL, 0, 0)");
    const char* insert = "INSERT INTO message (entry_id, folder, created, modified) "
                         "VALUES (randomblob(24), 1, 0, 0)";
    database.Execute(insert);
    const std::int64_t first = database.LastInsertId();
    database.Execute("DELETE FROM message");
    database.Execute(insert);
    EXPECT_GT(database.LastInsertId(), first);
}

TEST(StoreSchemaTest, NamedPropertiesAreOnePerNameAndInTheirRange)
{
    Database database = OpenStore(L":memory:");
    database.Execute("INSERT INTO named_property VALUES (32768, zeroblob(16), 7, NULL)");
    database.Execute("INSERT INTO named_property VALUES (32769, zeroblob(16), NULL, x'4100')");
    for (const char* wrong :
         {"INSERT INTO named_property VALUES (32770, zeroblob(16), 7, NULL)",
          "INSERT INTO named_property VALUES (32770, zeroblob(16), NULL, x'4100')",
          "INSERT INTO named_property VALUES (32767, zeroblob(16), 8, NULL)",
          "INSERT INTO named_property VALUES (65535, zeroblob(16), 8, NULL)",
          "INSERT INTO named_property VALUES (32770, zeroblob(15), 8, NULL)",
          "INSERT INTO named_property VALUES (32770, zeroblob(16), NULL, NULL)",
          "INSERT INTO named_property VALUES (32770, zeroblob(16), 8, x'4200')"})
        EXPECT_EQ(DatabaseFailure::Constraint, FailureOf([&] { database.Execute(wrong); }))
            << wrong;
}

TEST(StoreSchemaTest, EntryIdsAreDistinctAndKnownAsOurs)
{
    const Bytes first = NewEntryId(5);
    const Bytes second = NewEntryId(5);
    EXPECT_EQ(24u, first.size());
    EXPECT_NE(first, second);
    EXPECT_TRUE(IsOwnEntryId(first));
    EXPECT_FALSE(IsOwnEntryId(std::span(first).first(23)));
    Bytes foreign = first;
    foreign[4] = std::byte{'X'};
    EXPECT_FALSE(IsOwnEntryId(foreign));
    EXPECT_FALSE(IsOwnEntryId({}));
    // The four flag bytes of a long-term ID that any session may use.
    EXPECT_TRUE(std::all_of(
        first.begin(), first.begin() + 4, [](std::byte value) { return value == std::byte{0}; }));
}
