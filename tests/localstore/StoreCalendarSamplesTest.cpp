// Appointments of real mail clients, loaded into the embedded store and read by the server. The
// expected values were worked out from the messages' properties by hand: times with a calendar,
// series from the bytes by the published format ([MS-OXOCAL]).
#include "support/SharedData.h"
#include "tests/localstore/SampleMessages.h"
#include "tests/localstore/StoreProviderFixture.h"
#include "tests/outlook/calendar/AppointmentLines.h"

#include <map>

namespace
{
using StoreCalendarSamplesTest = StoreProviderTest;

// By the names of the messages, what TextOfAppointment gives but for the lines that
// WithoutWhatVaries leaves out.
const std::map<std::string, std::string> kExpected = {
    {"aspose-net_SampleOstFile_214304",
     "Subject 05 - test email - single meeting request\nReminder 15\nPlace meeting request\n"
     "TimeZone Pakistan Standard Time\nStartTime 2011-09-19 21:54:25\n"
     "EndTime 2011-09-19 22:24:25\n"},
    {"aspose-net_SampleOstFile_2145a4",
     "Subject 05 - test email - single meeting request\nReminder 15\nPlace meeting request\n"
     "TimeZone Pakistan Standard Time\nStartTime 2011-09-19 21:55:11\n"
     "EndTime 2011-09-19 22:25:11\n"},
    // Minutes of a reminder that is not set; no zone.
    {"aspose-net_Test_part1_200544",
     "Subject Weekly meeting\nReminder -1\nStartTime 2011-06-22 05:30:00\n"
     "EndTime 2011-06-22 06:00:00\nIsBusy -1\n"
     "Description The usual weekly meeting{000D}{000A}\n"},
    {"aspose-py_out", "Subject \nReminder -1\nDescription \n"},
    // The 12th of a month, once, the whole day nine hours east of UTC.
    {"hiraoka-msg_A_monthly_1",
     "Subject A monthly 1\nReminder 1080\nPlace \nkind 3\nmonthly.byMonthDay -1\n"
     "monthly.interval 1\nmonthly.day 12\nend.kind 1\nend.times 1\nAllDay 1\n"
     "StartTime 2022-12-12 00:00:00\nEndTime 2022-12-13 00:00:00\nDescription {000D}{000A}\n"},
    {"hiraoka-msg_A_schedule",
     "Subject A schedule\nReminder 15\nPlace A place\nTimeZone Tokyo Standard Time\n"
     "StartTime 2021-10-13 09:30:00\nEndTime 2021-10-13 10:00:00\nIsBusy -1\n"
     "Description A message body.{000D}{000A}\n"},
    {"hiraoka-msg_A_weekly_1",
     "Subject A weekly 1\nReminder 15\nPlace \nkind 2\nweekly.interval 1\n"
     "weekly.days -M-----\nend.kind 1\nend.times 1\nStartTime 2022-12-12 07:00:00\n"
     "EndTime 2022-12-12 07:30:00\nIsBusy -1\nDescription {000D}{000A}\n"},
    {"hiraoka-msg_Appointment_sample_EST",
     "Subject Appointment sample EST\nReminder 15\nPlace \nTimeZone Eastern Standard Time\n"
     "StartTime 2022-12-04 13:00:00\nEndTime 2022-12-04 13:30:00\nIsBusy -1\n"
     "Description {000D}{000A}\n"},
    {"hiraoka-msg_Lanch_time_every_friday_in_2023_org",
     "Subject Lanch time, every friday, in 2023\nReminder 15\nPlace \nkind 2\n"
     "weekly.interval 1\nweekly.days -----F-\nend.kind 2\nend.date 2023-12-31 00:00\n"
     "StartTime 2023-01-06 03:00:00\nEndTime 2023-01-06 04:00:00\nIsBusy -1\n"
     "Description {000D}{000A}\n"},
};

// What the store makes, and which of the system's zones have the rules of a structure, vary.
std::string WithoutWhatVaries(const std::string& text, bool withoutZone)
{
    std::string kept;
    for (std::size_t at = 0; at < text.size();)
    {
        const std::size_t end = text.find('\n', at) + 1;
        const std::string line = text.substr(at, end - at);
        if (!line.starts_with("PersistID ") && !line.starts_with("LastModificationTime ") &&
            !(withoutZone && line.starts_with("TimeZone ")))
            kept += line;
        at = end;
    }
    return kept;
}
} // namespace

TEST_F(StoreCalendarSamplesTest, ReadsWhatMailClientsWrote)
{
    std::vector<SampleMessage> messages;
    const auto paths = SharedSamples("msg/appointments", ".jsonl");
    for (const auto& path : paths)
    {
        SampleMessage message = ReadSampleMessage(path);
        // Without what belongs to recipients and attachments.
        std::erase_if(message.properties,
                      [](const nlohmann::json& line) { return line.value("obj", "/") != "/"; });
        if (kExpected.contains(message.name))
            messages.push_back(std::move(message));
    }
    ASSERT_EQ(paths.empty() ? 0u : 9u, messages.size());
    nlohmann::json folders = nlohmann::json::array();
    folders.push_back(SampleFolder("calendar", "messages", messages));
    folders.push_back(SampleFolder("contacts", "messages", {}));
    ASSERT_EQ(messages.size(), LoadFolders(m_path, std::move(folders)));
    ASSERT_NO_FATAL_FAILURE(LogOnProvider());
    const auto table = LoadTable(Calendar);
    for (const SampleMessage& message : messages)
    {
        table->GetNextItem();
        const std::string& expected = kExpected.at(message.name);
        EXPECT_EQ(expected,
                  WithoutWhatVaries(TextOfAppointment(CurrentItem(*table).Get()),
                                    expected.find("TimeZone ") == std::string::npos))
            << message.name;
    }
}
