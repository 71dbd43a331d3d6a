// Kills writers of address book entries at chosen and at random moments, and looks for what they
// had saved, changed and deleted.
#include "localstore/StoredProperties.h"
#include "tests/localstore/EntryWriter.h"
#include "tests/localstore/KilledWriter.h"

#include <map>
#include <optional>

namespace
{

// What is stopped is a save, a change and a deletion in turn.
constexpr KillPlan kPlan = {.inCommit = 12,
                            .atFlush = 3,
                            .inCheckpoint = 6,
                            .atRandom = 8,
                            .mostLogWrites = 7,
                            .mostPageWrites = 4,
                            .randomSeed = 20240301};

class BookKillTest : public KilledWriterTest
{
  protected:
    BookKillTest() : KilledWriterTest(L"--write-entries") {}

    struct Written
    {
        std::string hexId;
        EntryWork done = EntryWork::Save; // the last work on it that is known to be done
    };

    void Note(const std::string& work, int number, const std::string& hexId) override
    {
        ++m_promises;
        Written& entry = m_written[number];
        EXPECT_TRUE(entry.hexId.empty() || entry.hexId == hexId);
        entry.hexId = hexId;
        entry.done = work == NameOf(EntryWork::Save) ? EntryWork::Save : WorkOfWritten(number);
        EXPECT_EQ(NameOf(entry.done), work);
    }

    // The book holds every entry as its last work left it, and nothing else. The work during which
    // the writer ended is done whole or not at all.
    void Check(Database& database) override
    {
        ASSERT_EQ(0,
                  database.QueryInteger("SELECT count(*) FROM property p WHERE p.owner_kind = 7 "
                                        "AND p.owner NOT IN (SELECT id FROM book_entry)"));
        ASSERT_EQ(0,
                  database.QueryInteger("SELECT count(*) FROM large_value WHERE id NOT IN (SELECT "
                                        "large FROM property WHERE large IS NOT NULL)"));
        NoteUntold(database);
        std::int64_t kept = 0;
        for (auto& [number, entry] : m_written)
        {
            if (number >= m_checkedUpTo)
            {
                ASSERT_NO_FATAL_FAILURE(CheckEntry(database, number, entry));
            }
            kept += entry.done != EntryWork::Delete;
        }
        ASSERT_EQ(kept, database.QueryInteger("SELECT count(*) FROM book_entry"));
        m_checkedUpTo = m_next;
    }

    // The entry whose save was done and not told any more.
    void NoteUntold(Database& database)
    {
        std::map<std::string, int> numbers;
        for (const auto& [number, entry] : m_written)
            numbers[entry.hexId] = number;
        Statement rows = database.Prepare("SELECT hex(entry_id) FROM book_entry ORDER BY id");
        int untold = 0;
        while (rows.Step())
        {
            const std::string hexId(rows.Text(0));
            if (numbers.contains(hexId))
                continue;
            ++untold;
            m_written[m_next - 1] = {hexId, EntryWork::Save};
        }
        EXPECT_LE(untold, 1);
    }

    void CheckEntry(Database& database, int number, Written& entry)
    {
        const std::optional<PropertyMap> found = Read(database, entry.hexId);
        const EntryWork next = WorkOfWritten(number);
        if (entry.done == next || found != Expected(number, entry.done))
        {
            ASSERT_TRUE(found == Expected(number, next)) << "entry " << number;
            entry.done = next;
        }
    }

    static std::optional<PropertyMap> Expected(int number, EntryWork done)
    {
        if (done == EntryWork::Delete)
            return std::nullopt;
        return PropertiesOfWritten(number, done == EntryWork::Change);
    }

    static std::optional<PropertyMap> Read(Database& database, const std::string& hexId)
    {
        Statement row = database.Prepare("SELECT id FROM book_entry WHERE hex(entry_id) = ?1");
        row.Bind(1, std::string_view(hexId));
        if (!row.Step())
            return std::nullopt;
        return ReadProperties(database, {OwnerKind::BookEntry, row.Integer(0)});
    }

    int m_checkedUpTo = 1;
    int m_promises = 0;
    std::map<int, Written> m_written;
};

} // namespace

TEST_F(BookKillTest, KeepsEveryEntryThatWasSavedWhenTheWriterIsKilled)
{
    ASSERT_NO_FATAL_FAILURE(KillAsPlanned(kPlan));

    // Everything once more, now that all the others were written over it.
    Database database = OpenStore(m_path);
    m_checkedUpTo = 1;
    ASSERT_NO_FATAL_FAILURE(Check(database));
    int changed = 0, deleted = 0;
    for (const auto& [number, entry] : m_written)
    {
        changed += entry.done == EntryWork::Change;
        deleted += entry.done == EntryWork::Delete;
    }
    EXPECT_GT(m_promises, 60);
    EXPECT_GT(changed, 10);
    EXPECT_GT(deleted, 10);
    std::printf(
        "%zu entries written, %d of them changed and %d deleted, every one as it was told.\n",
        m_written.size(),
        changed,
        deleted);
}
