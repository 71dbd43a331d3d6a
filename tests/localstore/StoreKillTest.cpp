// Kills writers of messages at chosen and at random moments, and looks for what they had saved.
#include "localstore/StoreProfile.h"
#include "localstore/StoredProperties.h"
#include "tests/localstore/KilledWriter.h"
#include "tests/localstore/MessageWriter.h"

#include <map>

namespace
{

constexpr KillPlan kPlan = {.inCommit = 22,
                            .atFlush = 4,
                            .inCheckpoint = 12,
                            .atRandom = 14,
                            .mostLogWrites = 11,
                            .mostPageWrites = 6,
                            .randomSeed = 20240229};

class StoreKillTest : public KilledWriterTest
{
  protected:
    StoreKillTest() : KilledWriterTest(L"--write-messages") {}

    void Note(const std::string& work, int number, const std::string& hexId) override
    {
        EXPECT_EQ("saved", work);
        m_saved[number] = hexId;
    }

    // The database holds every message that was saved.
    void Check(Database& database) override
    {
        ASSERT_EQ(0,
                  database.QueryInteger("SELECT count(*) FROM property p WHERE p.owner_kind = 3 "
                                        "AND p.owner NOT IN (SELECT id FROM message)"));
        // A message is there whole or not at all.
        ASSERT_EQ(database.QueryInteger("SELECT count(*) FROM message"),
                  database.QueryInteger("SELECT count(*) FROM attachment"));
        for (const auto& [number, id] : m_saved)
        {
            if (number >= m_checkedUpTo)
            {
                ASSERT_TRUE(IsWhole(database, number, id)) << "message " << number;
            }
        }
        m_checkedUpTo = m_next;
    }

    static bool IsWhole(Database& database, int number, const std::string& hex)
    {
        Statement row = database.Prepare(
            "SELECT m.id, a.id FROM message m JOIN attachment a ON a.message = m.id "
            "WHERE hex(m.entry_id) = ?1");
        row.Bind(1, std::string_view(hex));
        if (!row.Step())
            return false;
        const PropertyOwner message{OwnerKind::Message, row.Integer(0)};
        const PropertyOwner attachment{OwnerKind::Attachment, row.Integer(1)};
        const auto subject = ReadProperty(database, message, PROP_ID(PR_SUBJECT_W));
        const auto body = ReadProperty(database, message, PROP_ID(PR_BODY_W));
        const auto data = ReadProperty(database, attachment, PROP_ID(PR_ATTACH_DATA_BIN));
        const std::string bytes = AttachmentOfWritten(number);
        const auto raw = std::as_bytes(std::span(bytes));
        return subject == PropertyValue{PT_UNICODE, SubjectOfWritten(number)} &&
               body == PropertyValue{PT_UNICODE, BodyOfWritten(number)} &&
               data == PropertyValue{PT_BINARY, Bytes(raw.begin(), raw.end())};
    }

    int m_checkedUpTo = 1;
    std::map<int, std::string> m_saved;
};

} // namespace

TEST_F(StoreKillTest, KeepsEverythingThatWasSavedWhenTheWriterIsKilled)
{
    ASSERT_NO_FATAL_FAILURE(KillAsPlanned(kPlan));

    // Everything once more, now that all the others were written over it.
    Database database = OpenStore(m_path);
    for (const auto& [number, id] : m_saved)
        EXPECT_TRUE(IsWhole(database, number, id)) << "message " << number;
    EXPECT_GT(m_saved.size(), 100u);
    std::printf("%zu messages saved, every one found.\n", m_saved.size());
}
