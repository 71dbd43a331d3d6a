// pim.exe on the calendar of the message store, from the command line through the server and the
// provider into the store. What the store holds are the samples: times in UTC, series and zones as
// mail clients write them. The tests' own zone is an hour east of UTC, two in summer.
#include "endtoend/MessageStore.h"
#include "endtoend/PimProgram.h"
#include "endtoend/StoreClient.h"
#include "support/TestPaths.h"

#include <gmock/gmock.h>

#include <memory>

using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace
{
const std::string kIds = "00000000505305017C0DE5A1B2C34D5E8F90A1B2C3D400";

class PimStoreCalendarTest : public testing::Test
{
  protected:
    static void SetUpTestSuite() { s_store = std::make_unique<MessageStore>(); }
    static void TearDownTestSuite() { s_store.reset(); }
    void SetUp() override { s_store->LoadFile(Samples() / "store.json"); }

    static std::string Show(const std::string& id)
    {
        return PimDone(L"calendar show " + std::wstring(id.begin(), id.end()));
    }
    // The new ID that a command printed.
    static std::string Added(const std::wstring& options)
    {
        const std::string output = PimDone(L"calendar add " + options);
        EXPECT_THAT(output, StartsWith("Added "));
        return output.substr(6, output.find('\n') - 6);
    }

    static inline std::unique_ptr<MessageStore> s_store;
    const ServerKeeper keeper;
};
} // namespace

TEST_F(PimStoreCalendarTest, ListsTheCalendar)
{
    const std::string head = "START             END      SUBJECT                          PLACE    "
                             "     REPEATS                                           ID\n";
    EXPECT_EQ(PimDone(L"calendar list"),
              head +
                  "2026-02-02 11:00  11:45    Call with the test lab in Delhi               "
                  " every month on the first Monday                   " +
                  kIds +
                  "0C\n"
                  "2026-02-03 14:30  15:15    Dentist                          Storgatan 12 "
                  "                                                   " +
                  kIds +
                  "04\n"
                  "2026-02-05 10:00  11:30    Review of the sensor board       Room 214     "
                  " every 2 weeks on Thursday, 10 times, 1 day left\xE2\x80\xA6  " +
                  kIds +
                  "05\n"
                  "2026-05-04        all day  Nordlys founded                               "
                  " every year on May 4                               " +
                  kIds +
                  "0D\n"
                  "2026-06-19        all day  Midsummer Eve                                 "
                  "                                                   " +
                  kIds + "06\n");
}

TEST_F(PimStoreCalendarTest, TellsSeriesExceptionsAndZonesInWords)
{
    EXPECT_EQ(
        Show(kIds + "05"),
        "Subject:     Review of the sensor board\n"
        "Place:       Room 214\n"
        "Start:       2026-02-05 10:00 (2026-02-05 09:00 UTC)\n"
        "End:         2026-02-05 11:30 (2026-02-05 10:30 UTC)\n"
        "Time zone:   W. Europe Standard Time, (UTC+01:00) Amsterdam, Berlin, Bern, Rome, "
        "Stockholm, Vienna\n"
        "Repeats:     every 2 weeks on Thursday, 10 times, 1 day left out, 1 day changed\n"
        "Left out:    2026-03-05\n"
        "Changed day: 2026-02-19 10:00 is 2026-02-20 13:00 to 14:00, Review with the supplier, "
        "Room 3\n"
        "Reminder:    15 minutes before\n"
        "Shown as:    busy\n"
        "Changed:     2026-01-02 09:05 (2026-01-02 08:05 UTC)\n"
        "ID:          " +
            kIds +
            "05\n"
            "\n"
            "Agenda:\n1. noise figures\n2. enclosure\n");
    EXPECT_EQ(Show(kIds + "0C"),
              "Subject:    Call with the test lab in Delhi\n"
              "Start:      2026-02-02 11:00 (2026-02-02 10:00 UTC)\n"
              "End:        2026-02-02 11:45 (2026-02-02 10:45 UTC)\n"
              "Time zone:  India Standard Time, (UTC+05:30) Chennai, Kolkata, Mumbai, New Delhi\n"
              "Repeats:    every month on the first Monday\n"
              "Reminder:   10 minutes before\n"
              "Shown as:   busy\n"
              "Changed:    2026-01-02 09:15 (2026-01-02 08:15 UTC)\n"
              "ID:         " +
                  kIds +
                  "0C\n"
                  "\n"
                  "Dial in by 15:25 their time.\n");
    EXPECT_THAT(Show(kIds + "06"),
                StartsWith("Subject:    Midsummer Eve\nAll day:    2026-06-19\n"));
}

TEST_F(PimStoreCalendarTest, AddsChangesAndDeletesASeries)
{
    const std::string id =
        Added(L"--subject Planning --place \"Room 1\" --start \"2026-03-05 10:00\" --end "
              L"\"2026-03-05 11:30\" --repeat weekly --interval 2 --days MO,TH --until 2026-06-30 "
              L"--reminder 15 --description Agenda");
    EXPECT_EQ(id.size(), 48u);
    const std::string shown = Show(id);
    EXPECT_THAT(shown,
                StartsWith("Subject:    Planning\n"
                           "Place:      Room 1\n"
                           "Start:      2026-03-05 10:00 (2026-03-05 09:00 UTC)\n"
                           "End:        2026-03-05 11:30 (2026-03-05 10:30 UTC)\n"));
    EXPECT_THAT(shown,
                HasSubstr("Repeats:    every 2 weeks on Monday and Thursday, until 2026-06-30\n"
                          "Reminder:   15 minutes before\n"));
    EXPECT_THAT(shown, EndsWith("\n\nAgenda\n"));

    const std::wstring wideId(id.begin(), id.end());
    EXPECT_EQ(PimDone(L"calendar update " + wideId + L" --place \"Room 2\""),
              "Updated " + id + "\n");
    const std::string changed = Show(id);
    EXPECT_THAT(changed, HasSubstr("Place:      Room 2\n"));
    EXPECT_THAT(changed, HasSubstr("until 2026-06-30\n"));

    EXPECT_EQ(PimDone(L"calendar delete " + wideId), "Deleted " + id + "\n");
    EXPECT_THAT(PimDone(L"calendar list"), Not(HasSubstr("Planning")));
}

TEST_F(PimStoreCalendarTest, KeepsWholeDaysAndYearlySeries)
{
    const std::string id = Added(L"--subject Fair --all-day --start 2026-05-04 --end 2026-05-05 "
                                 L"--repeat yearly --month 5 --month-day 4 --reminder none");
    EXPECT_THAT(Show(id), StartsWith("Subject:    Fair\nAll day:    2026-05-04 to 2026-05-05\n"));
    EXPECT_THAT(Show(id), HasSubstr("Repeats:    every year on May 4\nReminder:   none\n"));
}

// A store that was just set up knows the names that appointments are kept under.
TEST_F(PimStoreCalendarTest, KeepsAppointmentsInANewStore)
{
    s_store->Load(R"({"format": "PimStoreBridge store", "version": 1, "identity": {}, "root": {
                   "folders": [{"name": "Calendar", "class": "IPF.Appointment",
                   "roles": ["calendar"]}, {"name": "Contacts", "class": "IPF.Contact",
                   "roles": ["contacts"]}]}})");
    const std::string id = Added(L"--subject First --start \"2026-03-05 10:00\" --end "
                                 L"\"2026-03-05 11:00\" --repeat daily --count 3");
    EXPECT_THAT(Show(id), HasSubstr("Repeats:    every day, 3 times\n"));
}
