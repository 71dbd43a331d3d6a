#include "localstore/Database.h"

#include "localstore/Snapshot.h"
#include "localstore/StoreSchema.h"
#include "tests/localstore/LocalStoreSupport.h"
#include "tests/localstore/StoreWriter.h"

#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <random>
#include <set>

namespace
{

std::span<const std::byte> BytesOf(const char* text)
{
    return std::as_bytes(std::span(text, std::strlen(text)));
}

DatabaseFailure FailureOf(const std::function<void()>& action)
{
    try
    {
        action();
    }
    catch (const DatabaseError& error)
    {
        EXPECT_STRNE("", error.what());
        return error.Failure();
    }
    ADD_FAILURE() << "no failure";
    return DatabaseFailure::Other;
}

Database MemoryDatabase()
{
    Database database = Database::Open(L":memory:", true);
    database.Execute("CREATE TABLE t (id INTEGER PRIMARY KEY, v)");
    return database;
}

// Reads every row of every table, so that damaged pages are met.
void ReadEverything(Database& database)
{
    for (const char* table : {"meta",
                              "folder",
                              "message",
                              "attachment",
                              "receive_folder",
                              "identity",
                              "book_container",
                              "book_entry",
                              "named_property",
                              "large_value",
                              "property"})
    {
        Statement rows = database.Prepare(std::string("SELECT * FROM ") + table);
        while (rows.Step())
        {
        }
    }
}

} // namespace

TEST(DatabaseTest, KeepsIntegersTextsAndBytes)
{
    Database database = MemoryDatabase();
    Statement insert = database.Prepare("INSERT INTO t (v) VALUES (?1)");
    insert.Bind(1, std::int64_t{-5}).Run();
    insert.Bind(1, std::string_view("text")).Run();
    insert.Bind(1, BytesOf("bytes")).Run();
    insert.Bind(1, std::span<const std::byte>()).Run();
    insert.BindNull(1).Run();

    Statement rows = database.Prepare("SELECT v FROM t ORDER BY id");
    ASSERT_TRUE(rows.Step());
    EXPECT_TRUE(rows.IsInteger(0));
    EXPECT_EQ(-5, rows.Integer(0));
    ASSERT_TRUE(rows.Step());
    EXPECT_EQ("text", rows.Text(0));
    ASSERT_TRUE(rows.Step());
    EXPECT_TRUE(rows.IsBlob(0));
    EXPECT_EQ(5u, rows.Blob(0).size());
    ASSERT_TRUE(rows.Step());
    EXPECT_TRUE(rows.IsBlob(0)) << "an empty value is a value";
    EXPECT_TRUE(rows.Blob(0).empty());
    ASSERT_TRUE(rows.Step());
    EXPECT_TRUE(rows.IsNull(0));
    EXPECT_FALSE(rows.Step());
}

TEST(DatabaseTest, GivesTheSameStatementTwiceAtOnce)
{
    Database database = MemoryDatabase();
    database.Execute("INSERT INTO t (v) VALUES (1), (2)");
    Statement outer = database.Prepare("SELECT v FROM t ORDER BY id");
    ASSERT_TRUE(outer.Step());
    {
        Statement inner = database.Prepare("SELECT v FROM t ORDER BY id");
        ASSERT_TRUE(inner.Step());
        EXPECT_EQ(1, inner.Integer(0));
    }
    ASSERT_TRUE(outer.Step());
    EXPECT_EQ(2, outer.Integer(0));
}

TEST(DatabaseTest, ForgetsParametersBetweenUses)
{
    Database database = MemoryDatabase();
    database.Prepare("INSERT INTO t (v) VALUES (?1)").Bind(1, std::int64_t{7}).Run();
    database.Prepare("INSERT INTO t (v) VALUES (?1)").Run();
    EXPECT_EQ(1, database.QueryInteger("SELECT count(*) FROM t WHERE v IS NULL"));
}

TEST(DatabaseTest, RollsBackWhatWasNotCommitted)
{
    Database database = MemoryDatabase();
    {
        Transaction transaction(database);
        database.Execute("INSERT INTO t (v) VALUES (1)");
    }
    EXPECT_EQ(0, database.QueryInteger("SELECT count(*) FROM t"));
    {
        Transaction transaction(database);
        database.Execute("INSERT INTO t (v) VALUES (1)");
        transaction.Commit();
    }
    EXPECT_EQ(1, database.QueryInteger("SELECT count(*) FROM t"));
}

TEST(DatabaseTest, RollsBackWhenAnExceptionLeavesTheTransaction)
{
    Database database = MemoryDatabase();
    EXPECT_EQ(DatabaseFailure::Constraint, FailureOf([&] {
                  Transaction transaction(database);
                  database.Execute("INSERT INTO t (id) VALUES (1)");
                  database.Execute("INSERT INTO t (id) VALUES (1)");
                  transaction.Commit();
              }));
    EXPECT_EQ(0, database.QueryInteger("SELECT count(*) FROM t"));
}

TEST(DatabaseTest, ReportsBrokenStatements)
{
    Database database = MemoryDatabase();
    EXPECT_EQ(DatabaseFailure::Other, FailureOf([&] { database.Execute("SELEC 1"); }));
    EXPECT_EQ(DatabaseFailure::Other, FailureOf([&] { database.Prepare("SELECT x FROM none"); }));
    EXPECT_EQ(DatabaseFailure::Other,
              FailureOf([&] { database.Prepare("SELECT ?1").Bind(9, std::int64_t{1}); }));
}

TEST(DatabaseTest, MakesTheFoldersOfItsFile)
{
    const TempFolder folder;
    const std::wstring path = folder.File(L"new\\deeper\\\u00E4\u6F22 store.db");
    Database database = Database::Open(path, true);
    database.Execute("CREATE TABLE t (v)");
    EXPECT_NE(INVALID_FILE_ATTRIBUTES, GetFileAttributesW(path.c_str()));
}

TEST(DatabaseTest, RefusesAMissingFileWhereItMayNotMakeOne)
{
    const TempFolder folder;
    EXPECT_EQ(DatabaseFailure::CannotOpen,
              FailureOf([&] { Database::Open(folder.File(L"none.db"), false); }));
    EXPECT_EQ(INVALID_FILE_ATTRIBUTES, GetFileAttributesW(folder.File(L"none.db").c_str()));
}

TEST(DatabaseTest, RefusesPathsThatCannotBeAFile)
{
    const TempFolder folder;
    EXPECT_EQ(DatabaseFailure::CannotOpen, FailureOf([&] { Database::Open(L"", true); }));
    EXPECT_EQ(DatabaseFailure::CannotOpen, FailureOf([&] { OpenStore(folder.Path()); }));
    EXPECT_EQ(DatabaseFailure::CannotOpen,
              FailureOf([&] { Database::Open(std::wstring(L"a\0b", 3), true); }));
}

TEST(DatabaseTest, RefusesAFileThatIsNoDatabaseAndLeavesItAlone)
{
    const TempFolder folder;
    const std::wstring path = folder.File(L"text.db");
    const std::string text(5000, 'x');
    WriteWholeFile(path, text);
    EXPECT_EQ(DatabaseFailure::Corrupt, FailureOf([&] { OpenStore(path); }));
    EXPECT_EQ(text, ReadWholeFile(path));
}

TEST(DatabaseTest, TakesAnEmptyFileAsANewStore)
{
    const TempFolder folder;
    const std::wstring path = folder.File(L"empty.db");
    WriteWholeFile(path, "");
    Database database = OpenStore(path);
    EXPECT_EQ(2, database.QueryInteger("SELECT count(*) FROM book_container"));
}

// Damage of every kind gives a failure or, where it hit nothing that is read, values; never a
// crash.
TEST(DatabaseTest, SurvivesDamagedFiles)
{
    const TempFolder folder;
    const std::wstring good = folder.File(L"good.db");
    ASSERT_EQ(0, RunStoreWriter(good, 5));
    {
        Database database = OpenStore(good);
        database.Checkpoint();
    }
    const std::string bytes = ReadWholeFile(good);
    ASSERT_GT(bytes.size(), 40000u);

    std::mt19937 random(20240607);
    int failures = 0;
    for (int round = 0; round < 60; ++round)
    {
        std::string damaged = bytes;
        if (round % 3 == 0)
            damaged.resize(random() % damaged.size());
        else
        {
            for (int i = 0; i < 40; ++i)
                damaged[random() % (round % 3 == 1 ? damaged.size() : 4096)] =
                    static_cast<char>(random());
        }
        const std::wstring path = folder.File(L"damaged" + std::to_wstring(round) + L".db");
        WriteWholeFile(path, damaged);
        try
        {
            Database database = OpenStore(path);
            ReadEverything(database);
        }
        catch (const DatabaseError&)
        {
            ++failures;
        }
    }
    EXPECT_GT(failures, 20) << "damage must be noticed where it is met";
}

TEST(DatabaseTest, ReadsAStoreWhoseFileRefusesWriting)
{
    const TempFolder folder;
    const std::wstring path = folder.File(L"store.db");
    {
        Database database = OpenStore(path);
    }
    ASSERT_TRUE(SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_READONLY));
    {
        Database database = OpenStore(path);
        EXPECT_TRUE(database.IsReadOnly());
        EXPECT_EQ(2, database.QueryInteger("SELECT count(*) FROM book_container"));
        EXPECT_EQ(DatabaseFailure::ReadOnly,
                  FailureOf([&] { database.Execute("DELETE FROM book_container"); }));
    }
    SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_NORMAL);
}

TEST(DatabaseTest, RefusesToMakeAStoreInAFileThatRefusesWriting)
{
    const TempFolder folder;
    const std::wstring path = folder.File(L"store.db");
    WriteWholeFile(path, "");
    ASSERT_TRUE(SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_READONLY));
    EXPECT_EQ(DatabaseFailure::ReadOnly, FailureOf([&] { OpenStore(path); }));
    SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_NORMAL);
}

TEST(DatabaseTest, WritesThroughTheLogWithFullFlushing)
{
    const TempFolder folder;
    Database database = OpenStore(folder.File(L"store.db"));
    Statement mode = database.Prepare("PRAGMA journal_mode");
    ASSERT_TRUE(mode.Step());
    EXPECT_EQ("wal", mode.Text(0));
    EXPECT_EQ(2, database.QueryInteger("PRAGMA synchronous")) << "2 is FULL";
    EXPECT_EQ(Database::kBusyTimeoutMs, database.QueryInteger("PRAGMA busy_timeout"));
    EXPECT_EQ(1, database.QueryInteger("PRAGMA foreign_keys"));
}

TEST(DatabaseTest, ReadsWhileAnotherConnectionWrites)
{
    const TempFolder folder;
    const std::wstring path = folder.File(L"store.db");
    Database writer = OpenStore(path);
    Database reader = OpenStore(path);
    Transaction transaction(writer);
    writer.Execute("UPDATE meta SET value = x'00' WHERE name = 'store_uid'");
    EXPECT_EQ(16, reader.QueryInteger("SELECT length(value) FROM meta WHERE name = 'store_uid'"));
    transaction.Commit();
    EXPECT_EQ(1, reader.QueryInteger("SELECT length(value) FROM meta WHERE name = 'store_uid'"));
}

TEST(DatabaseTest, ASnapshotReadsOneStateWhileAnotherConnectionWrites)
{
    const TempFolder folder;
    const std::wstring path = folder.File(L"store.db");
    constexpr char kLength[] = "SELECT length(value) FROM meta WHERE name = 'store_uid'";
    Database writer = OpenStore(path);
    Database reader = OpenStore(path);
    {
        const Snapshot snapshot(reader);
        EXPECT_EQ(16, reader.QueryInteger(kLength));
        writer.Execute("UPDATE meta SET value = x'00' WHERE name = 'store_uid'");
        EXPECT_EQ(16, reader.QueryInteger(kLength));
    }
    EXPECT_EQ(1, reader.QueryInteger(kLength));
    {
        // A failure within does no harm.
        const Snapshot snapshot(reader);
        EXPECT_THROW(reader.QueryInteger("SELECT nothing FROM meta"), DatabaseError);
    }
    Transaction transaction(reader);
    transaction.Commit();
}

TEST(DatabaseTest, TwoProcessesWriteAtOnceAndLoseNothing)
{
    const TempFolder folder;
    const std::wstring path = folder.File(L"store.db");
    const std::wstring command =
        L"\"" + ProgramFolder() + L"localstore_tests.exe\" --write-store \"" + path + L"\" 40";
    // Both also race for making the store.
    ChildProcess first(command);
    ChildProcess second(command);
    const std::string firstOutput = first.ReadAll();
    const std::string secondOutput = second.ReadAll();
    EXPECT_EQ(0, first.Wait()) << firstOutput;
    EXPECT_EQ(0, second.Wait()) << secondOutput;

    Database database = OpenStore(path);
    EXPECT_EQ(80, database.QueryInteger("SELECT count(*) FROM book_entry"));
    EXPECT_EQ(80 * kPropertiesPerEntry,
              database.QueryInteger("SELECT count(*) FROM property WHERE owner_kind = 7"));
    EXPECT_EQ(2, database.QueryInteger("SELECT count(*) FROM book_container"));
}

TEST(DatabaseTest, AKilledWriterLosesNothingThatItsCommitReturnedFrom)
{
    const TempFolder folder;
    const std::wstring path = folder.File(L"store.db");
    const std::wstring command =
        L"\"" + ProgramFolder() + L"localstore_tests.exe\" --write-store \"" + path + L"\" 0";
    std::mt19937 random(7);
    std::set<std::int64_t> told;
    const int kKills = 8;
    for (int kill = 0; kill < kKills; ++kill)
    {
        ChildProcess writer(command);
        const unsigned lines = 1 + random() % 40;
        for (unsigned i = 0; i < lines; ++i)
        {
            const std::optional<std::string> line = writer.ReadLine();
            ASSERT_TRUE(line.has_value());
            told.insert(std::stoll(*line));
        }
        // Somewhere inside one of the transactions that follow.
        Sleep(random() % 7);
        writer.Kill();
        while (const std::optional<std::string> line = writer.ReadLine())
            told.insert(std::stoll(*line));

        Database database = OpenStore(path);
        Statement check = database.Prepare("PRAGMA integrity_check");
        ASSERT_TRUE(check.Step());
        EXPECT_EQ("ok", check.Text(0));
        for (const std::int64_t entry : told)
        {
            Statement row = database.Prepare(
                "SELECT count(*) FROM property WHERE owner_kind = 7 AND owner = ?1");
            row.Bind(1, entry);
            ASSERT_TRUE(row.Step());
            EXPECT_EQ(kPropertiesPerEntry, row.Integer(0)) << entry;
        }
        // What was not told is there as a whole or not at all.
        EXPECT_EQ(database.QueryInteger("SELECT count(*) FROM book_entry") * kPropertiesPerEntry,
                  database.QueryInteger("SELECT count(*) FROM property WHERE owner_kind = 7"));
        EXPECT_EQ(database.QueryInteger("SELECT count(*) FROM large_value"),
                  database.QueryInteger("SELECT count(*) FROM property WHERE large IS NOT NULL"));
    }
    std::printf("%d writers killed, %zu commits told and found\n", kKills, told.size());
}
