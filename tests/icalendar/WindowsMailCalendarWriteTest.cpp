// Adding, updating and deleting items of a calendar folder: the files that result, the order of
// the calls on the item, saves that fail and clients that call back.
#include "icalendar/CalendarFolder.h"
#include "icalendar/RecordingAppointment.h"
#include "platform/FileIo.h"
#include "platform/UniqueHandle.h"
#include "support/DebugOutputCapture.h"

#include <gmock/gmock.h>

#include <set>

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

namespace
{
using Recording = Microsoft::WRL::ComPtr<RecordingAppointment>;

constexpr int kKilled = 7;
SaveStep g_step = SaveStep::OpenTarget;

// Saves that fail, or end the process, from one step on.
bool RefuseAt(SaveStep step)
{
    return step != g_step;
}

bool RefuseAllWrites(SaveStep step)
{
    return step == SaveStep::OpenTarget;
}

bool DieAt(SaveStep step)
{
    if (step == g_step)
        TerminateProcess(GetCurrentProcess(), kKilled);
    return true;
}

std::string NewCalendar(const std::string& zone, const std::string& event)
{
    return Lines({"BEGIN:VCALENDAR",
                  "VERSION:2.0",
                  "PRODID:-//Surezut//Windows Calendar 1.0//EN",
                  "CALSCALE:GREGORIAN",
                  "METHOD:PUBLISH",
                  "BEGIN:VTIMEZONE",
                  "TZID:Machine Zone",
                  "BEGIN:STANDARD",
                  "DTSTART:20000101T000000",
                  "TZNAME:Machine Zone"}) +
           zone + Lines({"END:STANDARD", "END:VTIMEZONE", "BEGIN:VEVENT"}) + event +
           Lines({"END:VEVENT", "END:VCALENDAR"});
}
} // namespace

class WindowsMailCalendarWriteTest : public CalendarFolderTest
{
  protected:
    // Settings that name a default calendar.
    void WriteSettings(const std::string& name) const
    {
        Write(L"Settings.xml",
              "<?xml version=\"1.0\"?>\r\n<CalendarSettings><X-Root><VCalendar><Name>" + name +
                  "</Name></VCalendar></X-Root></CalendarSettings>");
    }
    // Gives the event "a" the subject "new".
    static BOOL UpdateSubject(IEnumerator& calendar)
    {
        const Recording item = RecordingAppointment::Make();
        item->texts = {{"EntityID", L"a"}, {"Subject", L"new"}};
        return calendar.UpdateItem(item.Get());
    }
    Item AnyItem() const { return NewItem(L"New", kThirdOfJune + 10 * kHour, kThirdOfJune + 0.5); }
};

// --- Adding ------------------------------------------------------------------------------------

TEST_F(WindowsMailCalendarWriteTest, MakesADefaultFileWithTheFirstItem)
{
    const auto calendar = LoadedCalendar();
    const Item item = NewItem(L"Lunch", kThirdOfJune + 10 * kHour, kThirdOfJune + 11 * kHour);
    Appointment appointment;
    ASSERT_EQ(S_OK, item.As(&appointment));
    appointment->put_Place(Bstr(L"Caf\u00E9").Get());
    appointment->put_Description(Bstr(L"a, b; c\\n").Get());
    appointment->put_Reminder(15);
    _tagRecurringInfo weekly{};
    weekly.eRecurType = Weekly;
    weekly.tWeekly.ulIntervalWeek = 2;
    weekly.tWeekly.bValidWeekday[1] = -1;
    weekly.tWeekly.bValidWeekday[5] = 1;
    weekly.tEndInfo.eEndType = EndByCount;
    weekly.tEndInfo.ulTimesAfter = 8;
    appointment->put_RecurringInfo(&weekly);

    EXPECT_EQ(L"{GUID-1}", Add(*calendar, item.Get()));
    EXPECT_EQ(L"{GUID-1}", IdOf(item.Get()));
    // 10:00 UTC is 12:00 at two hours east; one hour more stands in TZOFFSETFROM.
    EXPECT_EQ(NewCalendar(Lines({"TZOFFSETFROM:+0300", "TZOFFSETTO:+0200"}),
                          Lines({"DESCRIPTION:a, b; c\\n",
                                 "DTSTAMP:20240305T060708",
                                 "DTSTART;TZID=\"Machine Zone\":20240603T120000",
                                 "DTEND;TZID=\"Machine Zone\":20240603T130000",
                                 "SUMMARY:Lunch",
                                 "LOCATION:Caf\xC3\xA9",
                                 "UID:{GUID-1}",
                                 "RRULE:FREQ=WEEKLY;BYDAY=MO,FR;INTERVAL=2;COUNT=8",
                                 "BEGIN:VALARM",
                                 "ACTION:DISPLAY",
                                 "DESCRIPTION:Reminder",
                                 "TRIGGER:-PT15M",
                                 "X-WR-ALARMUID:{GUID-2}",
                                 "END:VALARM"})),
              Read(L"default.ics"));
    // 2024-03-05 06:07:08 is day 45,356 and 22,028 seconds.
    DATE modified = 0.0;
    EXPECT_EQ(S_OK, item->get_LastModificationTime(&modified));
    EXPECT_NEAR(45356.0 + 22028.0 / 86400.0, modified, 1e-6);

    // The list shows it from the next load on.
    EXPECT_TRUE(Walk(*calendar).empty());
    calendar->GetItemIDs();
    calendar->ResetItem();
    const Appointment read = Next(*calendar);
    ASSERT_TRUE(read);
    EXPECT_EQ(L"{GUID-1}", IdOf(read));
    EXPECT_EQ(L"{GUID-1}", Text(read.Get(), &INAppointment::get_PersistID));
    EXPECT_EQ(L"Caf\u00E9", Text(read.Get(), &INAppointment::get_Place));
    EXPECT_EQ(L"Machine Zone", Text(read.Get(), &INAppointment::get_TimeZone));
    EXPECT_NEAR(kThirdOfJune + 10 * kHour, Value(read.Get(), &INAppointment::get_StartTime), 1e-6);
    EXPECT_EQ(15u, Value(read.Get(), &INAppointment::get_Reminder));
}

TEST_F(WindowsMailCalendarWriteTest, GivesNewItemsARealGuidInBraces)
{
    const ScopedGuidSource fresh([] {
        GUID guid{};
        CoCreateGuid(&guid);
        wchar_t text[64] = {};
        StringFromGUID2(guid, text, 64);
        return std::wstring(text);
    });
    const std::wstring id = Add(*LoadedCalendar(), AnyItem().Get());
    ASSERT_EQ(38u, id.size());
    EXPECT_EQ(L'{', id.front());
    EXPECT_EQ(L'}', id.back());
}

TEST_F(WindowsMailCalendarWriteTest, ReplacesTheIdThatAClientGaveToANewItem)
{
    const auto calendar = LoadedCalendar();
    const Item item = AnyItem();
    item->put_EntityID(Bstr(L"own").Get());
    EXPECT_EQ(L"{GUID-1}", Add(*calendar, item.Get()));
    EXPECT_EQ(L"{GUID-1}", IdOf(item.Get()));
    EXPECT_THAT(Read(L"default.ics"), HasSubstr("UID:{GUID-1}\r\n"));
    // Also where the save fails.
    const ScopedSaveHook noFile([](SaveStep) { return false; });
    item->put_EntityID(Bstr(L"own").Get());
    EXPECT_EQ(L"", Add(*calendar, item.Get()));
    EXPECT_EQ(L"{GUID-3}", IdOf(item.Get())); // the second went into an alarm
}

TEST_F(WindowsMailCalendarWriteTest, AddsNothingWithoutAGuid)
{
    const ScopedGuidSource none([] { return std::wstring(); });
    const Item item = AnyItem();
    EXPECT_EQ(L"", Add(*LoadedCalendar(), item.Get()));
    EXPECT_EQ(L"", IdOf(item.Get()));
    EXPECT_FALSE(Exists(L"default.ics"));
}

TEST_F(WindowsMailCalendarWriteTest, TakesNoNullItem)
{
    const auto calendar = LoadedCalendar();
    EXPECT_EQ(L"", Add(*calendar, nullptr));
    EXPECT_EQ(0, calendar->UpdateItem(nullptr));
    EXPECT_FALSE(Exists(L"default.ics"));
}

TEST_F(WindowsMailCalendarWriteTest, AddsAnEmptyEventForAnItemThatIsNoAppointment)
{
    const auto calendar = LoadedCalendar();
    const Recording item = RecordingAppointment::Make();
    item->isAppointment = false;
    EXPECT_EQ(L"{GUID-1}", Add(*calendar, item.Get()));
    EXPECT_THAT(item->calls, ElementsAre("put EntityID [{GUID-1}]"));
    EXPECT_EQ(Lines({"BEGIN:VCALENDAR",
                     "VERSION:2.0",
                     "PRODID:-//Surezut//Windows Calendar 1.0//EN",
                     "CALSCALE:GREGORIAN",
                     "METHOD:PUBLISH",
                     "BEGIN:VEVENT",
                     "DTSTAMP:20000000T000000",
                     "DTSTART;TZID=\"\":20000000T000000",
                     "DTEND;TZID=\"\":20000000T000000",
                     "END:VEVENT",
                     "END:VCALENDAR"}),
              Read(L"default.ics"));
}

TEST_F(WindowsMailCalendarWriteTest, AddsToADefaultFileThatAppearedSinceTheLoad)
{
    const auto first = LoadedCalendar();
    const auto second = LoadedCalendar();
    const std::wstring firstId = Add(*first, AnyItem().Get());
    const std::wstring secondId = Add(*second, AnyItem().Get());
    EXPECT_THAT(Walk(*LoadedCalendar()), ElementsAre(firstId, secondId));
}

// Files that the reader takes nothing from: none, other text, other bytes, a calendar that nothing
// closes. What the tree does not hold goes with the first write, as in every file, and not before.
TEST_F(WindowsMailCalendarWriteTest, AddsToADefaultFileThatHoldsNoCalendar)
{
    using namespace std::string_literals;
    for (const std::string& before : {""s,
                                      "\r\n"s,
                                      "Dear all,\r\nno calendar: here\r\n"s,
                                      "\xFF\xFE\0\xD8\0BEGIN:VEVENT\n"s,
                                      "BEGIN:VCALENDAR\r\nVERSION:2.0\r\n"s})
    {
        SCOPED_TRACE(testing::PrintToString(before));
        const auto without = LoadedCalendar();
        Write(L"default.ics", before);
        const auto with = LoadedCalendar();
        EXPECT_TRUE(Walk(*with).empty());
        EXPECT_EQ(before, Read(L"default.ics"));
        for (CWindowsMailCalendar* calendar : {with.get(), without.get()})
        {
            Write(L"default.ics", before);
            const std::wstring id = Add(*calendar, AnyItem().Get());
            EXPECT_NE(L"", id);
            EXPECT_THAT(Walk(*LoadedCalendar()), ElementsAre(id));
            EXPECT_TRUE(
                Read(L"default.ics").starts_with("BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:"));
        }
        std::filesystem::remove(m_folder.Path() / L"default.ics");
    }
}

TEST_F(WindowsMailCalendarWriteTest, ReplacesNoDefaultFileThatCannotBeRead)
{
    const std::string before = FileWith("UID:a\r\nSUMMARY:old\r\n");
    Write(L"default.ics", before);
    const auto hold = [&] {
        return UniqueFile(CreateFileW((Folder() + L"default.ics").c_str(),
                                      GENERIC_READ,
                                      0,
                                      nullptr,
                                      OPEN_EXISTING,
                                      FILE_ATTRIBUTE_NORMAL,
                                      nullptr));
    };
    std::unique_ptr<CWindowsMailCalendar> calendar;
    {
        const UniqueFile held = hold();
        ASSERT_TRUE(held);
        calendar = LoadedCalendar();
        EXPECT_EQ(L"", Add(*calendar, AnyItem().Get()));
    }
    EXPECT_EQ(before, Read(L"default.ics"));
    // Once it is free it takes the event beside its own.
    const std::wstring id = Add(*calendar, AnyItem().Get());
    EXPECT_THAT(Walk(*LoadedCalendar()), ElementsAre(L"a", id));
}

TEST_F(WindowsMailCalendarWriteTest, PutsNewItemsIntoTheNamedCalendar)
{
    WriteSettings(" 'Work' ");
    Write(L"alpha.ics", FileWith("UID:a\r\n"));
    Write(L"beta.ics", FileWith("UID:b\r\n"));
    Write(L"wORK.ics", FileWith("UID:w\r\n"));
    Write(L"zeta.ics", FileWith("UID:z\r\n"));
    EXPECT_NE(L"", Add(*LoadedCalendar(), AnyItem().Get()));
    EXPECT_THAT(Read(L"wORK.ics"), HasSubstr("SUMMARY:New"));
    for (const wchar_t* other : {L"alpha.ics", L"beta.ics", L"zeta.ics"})
        EXPECT_THAT(Read(other), Not(HasSubstr("SUMMARY:New")));
    EXPECT_FALSE(Exists(L"default.ics"));
}

TEST_F(WindowsMailCalendarWriteTest, PutsNewItemsIntoTheFirstFileWithoutAUsableName)
{
    const char* const settings[] = {
        nullptr,                                          // none at all
        "",                                               // empty
        "<CalendarSettings><X-Root>",                     // damaged
        "<CalendarSettings><X-Root/></CalendarSettings>", // no name
        "<CalendarSettings><X-Root><VCalendar><Name>Gone</Name></VCalendar></X-Root>"
        "</CalendarSettings>", // a file that is not there
        "<CalendarSettings><X-Root><VCalendar><Name>b\xFF</Name></VCalendar></X-Root>"
        "</CalendarSettings>", // no UTF-8
    };
    for (const char* text : settings)
    {
        std::filesystem::remove(m_folder.Path() / "Settings.xml");
        if (text)
            Write(L"Settings.xml", text);
        Write(L"a.ics", FileWith("UID:a\r\n"));
        Write(L"b.ics", FileWith("UID:b\r\n"));
        WIN32_FIND_DATAW first{};
        const HANDLE search = FindFirstFileW((Folder() + L"*.ics").c_str(), &first);
        ASSERT_NE(INVALID_HANDLE_VALUE, search);
        FindClose(search);
        EXPECT_NE(L"", Add(*LoadedCalendar(), AnyItem().Get()));
        EXPECT_THAT(Read(first.cFileName), HasSubstr("SUMMARY:New")) << (text ? text : "none");
    }
}

TEST_F(WindowsMailCalendarWriteTest, OutlivesHostileSettings)
{
    std::string deep;
    for (int i = 0; i < 10000; ++i)
        deep += "<CalendarSettings>";
    std::string laughs = "<!DOCTYPE l [<!ENTITY a0 \"ha\">";
    for (int i = 1; i < 30; ++i)
    {
        const std::string former = "&a" + std::to_string(i - 1) + ";";
        laughs += "<!ENTITY a" + std::to_string(i) + " \"" + former + former + "\">";
    }
    laughs += "]><CalendarSettings><X-Root><VCalendar><Name>&a29;</Name></VCalendar></X-Root>"
              "</CalendarSettings>";
    std::string huge = "<CalendarSettings><X-Root><VCalendar><Name>a</Name></VCalendar></X-Root>"
                       "</CalendarSettings>";
    huge.append(17 * 1024 * 1024, ' ');
    for (const std::string& text : {deep, laughs, huge})
    {
        Write(L"Settings.xml", text);
        Write(L"a.ics", FileWith("UID:a\r\n"));
        const auto calendar = LoadedCalendar();
        EXPECT_THAT(Walk(*calendar), ElementsAre(L"a"));
        EXPECT_NE(L"", Add(*calendar, AnyItem().Get()));
        EXPECT_THAT(Read(L"a.ics"), HasSubstr("SUMMARY:New"));
    }
}

TEST_F(WindowsMailCalendarWriteTest, TakesADirectoryNamedLikeTheSettingsForNone)
{
    std::filesystem::create_directory(m_folder.Path() / "Settings.xml");
    EXPECT_NE(L"", Add(*LoadedCalendar(), AnyItem().Get()));
    EXPECT_TRUE(Exists(L"default.ics"));
}

TEST_F(WindowsMailCalendarWriteTest, ForgetsTheDefaultNameWithTheSettings)
{
    WriteSettings("b");
    Write(L"a.ics", FileWith("UID:a\r\n"));
    Write(L"b.ics", FileWith("UID:b\r\n"));
    const auto calendar = LoadedCalendar();
    std::filesystem::remove(m_folder.Path() / "Settings.xml");
    std::filesystem::remove(m_folder.Path() / "b.ics");
    calendar->GetItemIDs();
    EXPECT_NE(L"", Add(*calendar, AnyItem().Get()));
    EXPECT_THAT(Read(L"a.ics"), HasSubstr("SUMMARY:New"));
    EXPECT_FALSE(Exists(L"b.ics"));
}

// --- Zones -------------------------------------------------------------------------------------

struct ZoneCase
{
    LONG biasMinutes;
    const char* offsetFrom;
    const char* offsetTo;
    const char* start; // of 10:00 UTC
};

TEST_F(WindowsMailCalendarWriteTest, WritesTheMachinesZoneAndReadsTheSameTimeBack)
{
    const ZoneCase cases[] = {
        {-120, "+0300", "+0200", "20240603T120000"},
        {300, "-0600", "-0500", "20240603T050000"},
        {-330, "+0630", "+0530", "20240603T153000"},
        {0, "+0100", "+0000", "20240603T100000"},
        {480, "-0900", "-0800", "20240603T020000"},
    };
    for (const ZoneCase& zone : cases)
    {
        std::filesystem::remove(m_folder.Path() / "default.ics");
        m_biasMinutes = zone.biasMinutes;
        const auto calendar = LoadedCalendar();
        ASSERT_NE(L"", Add(*calendar, AnyItem().Get()));
        const std::string text = Read(L"default.ics");
        EXPECT_THAT(text, HasSubstr("\r\nTZOFFSETFROM:" + std::string(zone.offsetFrom) + "\r\n"));
        EXPECT_THAT(text, HasSubstr("\r\nTZOFFSETTO:" + std::string(zone.offsetTo) + "\r\n"));
        EXPECT_THAT(text,
                    HasSubstr("DTSTART;TZID=\"Machine Zone\":" + std::string(zone.start) + "\r\n"));
        calendar->GetItemIDs();
        calendar->ResetItem();
        EXPECT_NEAR(kThirdOfJune + 10 * kHour,
                    Value(Next(*calendar).Get(), &INAppointment::get_StartTime),
                    1e-6);
    }
}

TEST_F(WindowsMailCalendarWriteTest, UsesTheFilesOwnOffsetForAZoneOfTheMachinesName)
{
    Write(L"a.ics",
          Lines({"BEGIN:VCALENDAR",
                 "BEGIN:VTIMEZONE",
                 "TZID:Machine Zone",
                 "BEGIN:STANDARD",
                 "TZOFFSETTO:-0130",
                 "END:STANDARD",
                 "END:VTIMEZONE",
                 "END:VCALENDAR"}));
    EXPECT_NE(L"", Add(*LoadedCalendar(), AnyItem().Get()));
    EXPECT_THAT(Read(L"a.ics"), HasSubstr("DTSTART;TZID=\"Machine Zone\":20240603T083000\r\n"));
    EXPECT_THAT(Read(L"a.ics"), Not(HasSubstr("TZOFFSETFROM")));
}

// --- The calls on the item ---------------------------------------------------------------------

namespace
{
const char* const kReads[] = {"get EntityID",
                              "put LastModificationTime [45356.255]",
                              "get Subject",
                              "get Place",
                              "get Description",
                              "get Reminder",
                              "get RecurringInfo",
                              "get StartTime",
                              "get EndTime",
                              "get AllDay"};
} // namespace

TEST_F(WindowsMailCalendarWriteTest, ReadsANewItemInTheStatedOrder)
{
    const Recording item = RecordingAppointment::Make();
    Add(*LoadedCalendar(), item.Get());
    std::vector<std::string> expected = {"put EntityID [{GUID-1}]"};
    expected.insert(expected.end(), std::begin(kReads), std::end(kReads));
    EXPECT_EQ(expected, item->calls);
    EXPECT_EQ(1u, item->References());
}

TEST_F(WindowsMailCalendarWriteTest, ReadsAChangedItemInTheStatedOrder)
{
    Write(L"a.ics", FileWith("UID:a\r\n"));
    const Recording item = RecordingAppointment::Make();
    item->texts["EntityID"] = L"a";
    EXPECT_EQ(1, LoadedCalendar()->UpdateItem(item.Get()));
    std::vector<std::string> expected = {"get EntityID"};
    expected.insert(expected.end(), std::begin(kReads), std::end(kReads));
    EXPECT_EQ(expected, item->calls);
    EXPECT_EQ(1u, item->References());
}

// Each property in turn fails or reads as null; its field in the file must stay, all others change.
TEST_F(WindowsMailCalendarWriteTest, LeavesTheFieldOfAPropertyThatCannotBeRead)
{
    struct Row
    {
        const char* property;
        bool canBeNull;
        std::vector<const char*> kept; // lines of the file that stay
    };
    const std::vector<Row> rows = {
        {"", false, {}},
        {"Subject", true, {"SUMMARY:old"}},
        {"Place", true, {"LOCATION:old"}},
        {"Description", true, {"DESCRIPTION:old"}},
        {"Reminder", false, {"(no alarm)"}},
        {"RecurringInfo", false, {"RRULE:FREQ=DAILY;INTERVAL=9"}},
        // Without both times the recurrence is not taken either.
        {"StartTime",
         false,
         {"DTSTART;TZID=\"Machine Zone\":20000101T000000", "RRULE:FREQ=DAILY;INTERVAL=9"}},
        {"EndTime",
         false,
         {"DTEND;TZID=\"Machine Zone\":20000102T000000", "RRULE:FREQ=DAILY;INTERVAL=9"}},
        {"AllDay", false, {}},
    };
    const std::vector<std::pair<const char*, const char*>> fields = {
        {"SUMMARY:old", "SUMMARY:new"},
        {"LOCATION:old", "LOCATION:new"},
        {"DESCRIPTION:old", "DESCRIPTION:new"},
        {"(no alarm)", "TRIGGER:-PT5M"},
        {"RRULE:FREQ=DAILY;INTERVAL=9", "RRULE:FREQ=YEARLY;BYMONTHDAY=4;BYMONTH=7;INTERVAL=3"},
        {"DTSTART;TZID=\"Machine Zone\":20000101T000000",
         "DTSTART;TZID=\"Machine Zone\":20240603T120000"},
        {"DTEND;TZID=\"Machine Zone\":20000102T000000",
         "DTEND;TZID=\"Machine Zone\":20240603T130000"},
    };
    for (const Row& row : rows)
    {
        for (const bool isNull : {false, true})
        {
            if (isNull && !row.canBeNull)
                continue;
            SCOPED_TRACE(std::string(row.property) + (isNull ? " null" : " failing"));
            Write(L"a.ics",
                  FileWith(Lines({"UID:a",
                                  "DTSTAMP:20000101T000000",
                                  "DTSTART:20000101T000000",
                                  "DTEND:20000102T000000",
                                  "SUMMARY:old",
                                  "LOCATION:old",
                                  "DESCRIPTION:old",
                                  "RRULE:FREQ=DAILY;INTERVAL=9"})));
            const Recording item = RecordingAppointment::Make();
            item->texts = {{"EntityID", L"a"},
                           {"Subject", L"new"},
                           {"Place", L"new"},
                           {"Description", L"new"}};
            item->startTime = kThirdOfJune + 10 * kHour;
            item->endTime = kThirdOfJune + 11 * kHour;
            item->reminder = 5;
            item->recurringInfo.eRecurType = Yearly;
            item->recurringInfo.tYearly.ulIntervalYear = 3;
            item->recurringInfo.tYearly.lMonth = 7;
            item->recurringInfo.tYearly.lDay = 4;
            if (isNull)
                item->nulls.insert(row.property);
            else
                item->failing.insert(std::string("get ") + row.property);
            // The put of the time is not tested.
            item->failing.insert("put LastModificationTime");
            EXPECT_EQ(1, LoadedCalendar()->UpdateItem(item.Get()));
            const std::string text = Read(L"a.ics");
            EXPECT_THAT(text, HasSubstr("\r\nDTSTAMP:20240305T060708\r\n"));
            EXPECT_THAT(text, HasSubstr("\r\nUID:a\r\n"));
            for (const auto& [old, changed] : fields)
            {
                const bool kept = std::any_of(row.kept.begin(), row.kept.end(), [&](auto line) {
                    return std::string_view(line) == old;
                });
                if (std::string_view(old) == "(no alarm)" && kept)
                    EXPECT_THAT(text, Not(HasSubstr("VALARM")));
                else
                    EXPECT_THAT(text,
                                HasSubstr("\r\n" + std::string(kept ? old : changed) + "\r\n"));
            }
        }
    }
}

TEST_F(WindowsMailCalendarWriteTest, AddsAnEventWithoutIdWhereTheIdCannotBeRead)
{
    const Recording item = RecordingAppointment::Make();
    item->failing.insert("get EntityID");
    EXPECT_EQ(L"{GUID-1}", Add(*LoadedCalendar(), item.Get()));
    EXPECT_THAT(Read(L"default.ics"), Not(HasSubstr("UID:{GUID-1}")));
    EXPECT_THAT(Read(L"default.ics"), HasSubstr("BEGIN:VEVENT"));
}

// --- Updating ----------------------------------------------------------------------------------

TEST_F(WindowsMailCalendarWriteTest, UpdatesNothingWithoutAReadableIdOrAMatch)
{
    const std::string before = FileWith("UID:a\r\n");
    Write(L"a.ics", before);
    const auto calendar = LoadedCalendar();
    const Recording item = RecordingAppointment::Make();
    item->texts["EntityID"] = L"A";
    EXPECT_EQ(0, calendar->UpdateItem(item.Get()));
    item->texts["EntityID"] = L"a";
    item->nulls.insert("EntityID");
    EXPECT_EQ(0, calendar->UpdateItem(item.Get()));
    item->nulls.clear();
    item->failing.insert("get EntityID");
    EXPECT_EQ(0, calendar->UpdateItem(item.Get()));
    EXPECT_THAT(item->calls, ElementsAre("get EntityID", "get EntityID", "get EntityID"));
    EXPECT_EQ(before, Read(L"a.ics"));
}

TEST_F(WindowsMailCalendarWriteTest, SavesTheFileForAnItemThatIsNoAppointment)
{
    Write(L"a.ics", FileWith("UID:a\r\nSUMMARY:kept\r\nX-OTHER:lost\r\n"));
    const Recording item = RecordingAppointment::Make();
    item->isAppointment = false;
    item->texts["EntityID"] = L"a";
    EXPECT_EQ(1, LoadedCalendar()->UpdateItem(item.Get()));
    EXPECT_THAT(item->calls, ElementsAre("get EntityID"));
    EXPECT_THAT(Read(L"a.ics"), HasSubstr("SUMMARY:kept"));
    EXPECT_THAT(Read(L"a.ics"), Not(HasSubstr("X-OTHER")));
}

TEST_F(WindowsMailCalendarWriteTest, KeepsShowingTheFormerStateInTheList)
{
    Write(L"a.ics", FileWith("UID:a\r\nSUMMARY:old\r\n"));
    const auto calendar = LoadedCalendar();
    const Recording item = RecordingAppointment::Make();
    item->texts = {{"EntityID", L"a"}, {"Subject", L"new"}};
    EXPECT_EQ(1, calendar->UpdateItem(item.Get()));
    EXPECT_EQ(L"old", Text(Next(*calendar).Get(), &INAppointment::get_Subject));
    EXPECT_EQ(1, calendar->DeleteItem(L"a"));
    EXPECT_THAT(Walk(*calendar), ElementsAre(L"a"));
    calendar->GetItemIDs();
    EXPECT_TRUE(Walk(*calendar).empty());
}

TEST_F(WindowsMailCalendarWriteTest, ReachesOnlyTheFirstOfTwoFilesWithTheSameId)
{
    Write(L"a.ics", FileWith("UID:same\r\n"));
    Write(L"b.ics", FileWith("UID:same\r\n"));
    WIN32_FIND_DATAW found{};
    const HANDLE search = FindFirstFileW((Folder() + L"*.ics").c_str(), &found);
    ASSERT_NE(INVALID_HANDLE_VALUE, search);
    FindClose(search);
    const std::wstring first = found.cFileName;
    const std::wstring second = first == L"a.ics" ? L"b.ics" : L"a.ics";
    const std::string untouched = Read(second);

    const auto calendar = LoadedCalendar();
    EXPECT_THAT(Walk(*calendar), ElementsAre(L"same", L"same"));
    const Recording item = RecordingAppointment::Make();
    item->texts = {{"EntityID", L"same"}, {"Subject", L"new"}};
    EXPECT_EQ(1, calendar->UpdateItem(item.Get()));
    EXPECT_THAT(Read(first), HasSubstr("SUMMARY:new"));
    EXPECT_EQ(untouched, Read(second));
    EXPECT_EQ(1, calendar->DeleteItem(L"same"));
    EXPECT_THAT(Read(first), Not(HasSubstr("VEVENT")));
    EXPECT_EQ(untouched, Read(second));
    // With the first one gone the second comes within reach.
    EXPECT_EQ(1, calendar->DeleteItem(L"same"));
    EXPECT_THAT(Read(second), Not(HasSubstr("VEVENT")));
    EXPECT_EQ(0, calendar->DeleteItem(L"same"));
}

TEST_F(WindowsMailCalendarWriteTest, ChangesNothingInAnExistingAlarm)
{
    Write(L"a.ics", FileWith(Lines({"UID:a", "BEGIN:VALARM", "TRIGGER:-PT10M", "END:VALARM"})));
    const auto calendar = LoadedCalendar();
    const Recording item = RecordingAppointment::Make();
    item->texts["EntityID"] = L"a";
    item->reminder = 45;
    EXPECT_EQ(1, calendar->UpdateItem(item.Get()));
    EXPECT_THAT(Read(L"a.ics"), HasSubstr("TRIGGER:-PT10M\r\n"));
    item->reminder = 0xFFFFFFFF; // none: takes no alarm away
    EXPECT_EQ(1, calendar->UpdateItem(item.Get()));
    EXPECT_THAT(Read(L"a.ics"), HasSubstr("TRIGGER:-PT10M\r\n"));
}

TEST_F(WindowsMailCalendarWriteTest, MakesNoAlarmForTheReminderThatMeansNone)
{
    const Recording item = RecordingAppointment::Make();
    item->reminder = 0xFFFFFFFF;
    Add(*LoadedCalendar(), item.Get());
    EXPECT_THAT(Read(L"default.ics"), Not(HasSubstr("VALARM")));
}

TEST_F(WindowsMailCalendarWriteTest, KeepsTheDateFormOfAnEventThatIsAllDayNoMore)
{
    Write(L"a.ics",
          FileWith(Lines({"UID:a", "DTSTART;VALUE=DATE:20240101", "DTEND;VALUE=DATE:20240102"})));
    const auto calendar = LoadedCalendar();
    const Recording item = RecordingAppointment::Make();
    item->texts["EntityID"] = L"a";
    item->startTime = kThirdOfJune + 23 * kHour; // 01:00 of the next day, two hours east
    item->endTime = kThirdOfJune + 1;
    EXPECT_EQ(1, calendar->UpdateItem(item.Get()));
    EXPECT_THAT(Read(L"a.ics"), HasSubstr("DTSTART;VALUE=DATE:20240604\r\n"));
    EXPECT_THAT(Read(L"a.ics"), HasSubstr("DTEND;VALUE=DATE:20240604\r\n"));
}

TEST_F(WindowsMailCalendarWriteTest, WritesAllDayTimesUnshifted)
{
    const Recording item = RecordingAppointment::Make();
    item->allDay = 1; // any value but 0
    item->startTime = kThirdOfJune;
    item->endTime = kThirdOfJune + 1;
    Add(*LoadedCalendar(), item.Get());
    EXPECT_THAT(Read(L"default.ics"), HasSubstr("DTSTART;VALUE=DATE:20240603\r\n"));
    EXPECT_THAT(Read(L"default.ics"), HasSubstr("DTEND;VALUE=DATE:20240604\r\n"));
}

// --- Saves that fail ---------------------------------------------------------------------------

TEST_F(WindowsMailCalendarWriteTest, FailsWithoutTheFolderAndWritesTheEventOnceItIsBack)
{
    const auto calendar = LoadedCalendar();
    std::filesystem::remove_all(m_folder.Path());
    EXPECT_EQ(L"", Add(*calendar, AnyItem().Get()));
    std::filesystem::create_directories(m_folder.Path());
    // The event of the failed call stands in the tree, and the next save writes it.
    EXPECT_NE(L"", Add(*calendar, AnyItem().Get()));
    const std::string text = Read(L"default.ics");
    EXPECT_THAT(text, HasSubstr("UID:{GUID-1}"));
    EXPECT_THAT(text, HasSubstr("UID:{GUID-3}")); // the second one went into an alarm
}

TEST_F(WindowsMailCalendarWriteTest, TellsASaveThatCannotOpenItsFile)
{
    const std::string before = FileWith("UID:a\r\nSUMMARY:old\r\n");
    Write(L"a.ics", before);
    const Recording item = RecordingAppointment::Make();
    item->texts = {{"EntityID", L"a"}, {"Subject", L"new"}};
    const std::wstring path = Folder() + L"a.ics";

    // Held by another program that shares nothing.
    {
        const auto calendar = LoadedCalendar();
        const HANDLE held = CreateFileW(
            path.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
        ASSERT_NE(INVALID_HANDLE_VALUE, held);
        EXPECT_EQ(0, calendar->UpdateItem(item.Get()));
        EXPECT_EQ(L"", Add(*calendar, AnyItem().Get()));
        // A deletion tells success all the same; the event is gone from the tree alone.
        EXPECT_EQ(1, calendar->DeleteItem(L"a"));
        EXPECT_EQ(0, calendar->DeleteItem(L"a"));
        CloseHandle(held);
        EXPECT_EQ(before, Read(L"a.ics"));
    }
    // Read-only.
    {
        const auto calendar = LoadedCalendar();
        ASSERT_TRUE(SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_READONLY));
        EXPECT_EQ(0, calendar->UpdateItem(item.Get()));
        EXPECT_EQ(L"", Add(*calendar, AnyItem().Get()));
        EXPECT_EQ(1, calendar->DeleteItem(L"a"));
        ASSERT_TRUE(SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_NORMAL));
        EXPECT_EQ(before, Read(L"a.ics"));
    }
    // With the file free again a reload and a save go through.
    const auto calendar = LoadedCalendar();
    EXPECT_EQ(1, calendar->UpdateItem(item.Get()));
    EXPECT_THAT(Read(L"a.ics"), HasSubstr("SUMMARY:new"));
}

// A save shares the file with writers and not with readers.
TEST_F(WindowsMailCalendarWriteTest, SavesBesideAWriterAndFailsBesideAReader)
{
    const std::string before = FileWith("UID:a\r\n");
    Write(L"a.ics", before);
    const auto calendar = LoadedCalendar();
    const auto open = [&](DWORD access) {
        return CreateFileW((Folder() + L"a.ics").c_str(),
                           access,
                           FILE_SHARE_READ | FILE_SHARE_WRITE,
                           nullptr,
                           OPEN_EXISTING,
                           FILE_ATTRIBUTE_NORMAL,
                           nullptr);
    };
    const HANDLE reader = open(GENERIC_READ);
    ASSERT_NE(INVALID_HANDLE_VALUE, reader);
    EXPECT_EQ(L"", Add(*calendar, AnyItem().Get()));
    CloseHandle(reader);
    EXPECT_EQ(before, Read(L"a.ics"));
    const HANDLE writer = open(GENERIC_WRITE);
    ASSERT_NE(INVALID_HANDLE_VALUE, writer);
    EXPECT_NE(L"", Add(*calendar, AnyItem().Get()));
    CloseHandle(writer);
    calendar->GetItemIDs();
    EXPECT_EQ(3u, Walk(*calendar).size());
}

TEST_F(WindowsMailCalendarWriteTest, KeepsTheOldFileOnAFullDisk)
{
    const std::string before = FileWith("UID:a\r\nSUMMARY:old\r\n");
    Write(L"a.ics", before);
    const auto calendar = LoadedCalendar();
    const Recording item = RecordingAppointment::Make();
    item->texts = {{"EntityID", L"a"}, {"Subject", L"new"}};
    {
        const ScopedSaveHook full(RefuseAllWrites);
        // Only a file that does not open is a failed save; the outcome of the write is not looked
        // at.
        calendar->UpdateItem(item.Get());
        EXPECT_EQ(before, Read(L"a.ics"));
    }
    EXPECT_EQ(1, calendar->UpdateItem(item.Get()));
    EXPECT_THAT(Read(L"a.ics"), HasSubstr("SUMMARY:new"));
}

TEST_F(WindowsMailCalendarWriteTest, LosesNothingWhereOneStepOfASaveFails)
{
    for (int step = 0; step <= static_cast<int>(SaveStep::RemoveTemporary); ++step)
    {
        SCOPED_TRACE(step);
        const std::string before = FileWith("UID:a\r\nSUMMARY:old\r\n");
        Write(L"a.ics", before);
        const auto calendar = LoadedCalendar();
        const Recording item = RecordingAppointment::Make();
        item->texts = {{"EntityID", L"a"}, {"Subject", L"new"}};
        g_step = static_cast<SaveStep>(step);
        BOOL saved = 0;
        {
            const ScopedSaveHook hook(RefuseAt);
            saved = calendar->UpdateItem(item.Get());
        }
        EXPECT_EQ(g_step == SaveStep::OpenTarget ? 0 : 1, saved);
        if (saved)
            EXPECT_THAT(Read(L"a.ics"), HasSubstr("SUMMARY:new"));
        else
            EXPECT_EQ(before, Read(L"a.ics"));
    }
}

using WindowsMailCalendarDeathTest = WindowsMailCalendarWriteTest;

TEST_F(WindowsMailCalendarDeathTest, LeavesTheOldFileWholeWhereAnUpdateIsKilled)
{
    for (const SaveStep step : {SaveStep::OpenTarget,
                                SaveStep::CreateTemporary,
                                SaveStep::WriteTemporary,
                                SaveStep::FlushTemporary,
                                SaveStep::Replace})
    {
        const std::string before = FileWith("UID:a\r\nSUMMARY:old\r\n");
        Write(L"a.ics", before);
        g_step = step;
        EXPECT_EXIT(
            {
                const ScopedSaveHook hook(DieAt);
                UpdateSubject(*LoadedCalendar());
            },
            testing::ExitedWithCode(kKilled),
            "");
        EXPECT_EQ(before, Read(L"a.ics"));
        // What is left behind is no calendar and does not hinder the next save.
        const auto calendar = LoadedCalendar();
        EXPECT_THAT(Walk(*calendar), ElementsAre(L"a"));
        EXPECT_EQ(1, UpdateSubject(*calendar));
        EXPECT_THAT(Read(L"a.ics"), HasSubstr("SUMMARY:new"));
    }
}

TEST_F(WindowsMailCalendarWriteTest, WritesNothingToTheLog)
{
    const ScopedLogSettings settings;
    DebugOutputCapture capture;
    Write(L"a.ics", FileWith("UID:a\r\n"));
    WriteSettings("damaged</");
    const auto calendar = LoadedCalendar();
    EXPECT_EQ(1, UpdateSubject(*calendar));
    EXPECT_NE(L"", Add(*calendar, AnyItem().Get()));
    {
        const ScopedSaveHook noFile([](SaveStep) { return false; });
        EXPECT_EQ(0, UpdateSubject(*calendar));
        EXPECT_EQ(L"", Add(*calendar, AnyItem().Get()));
        EXPECT_EQ(1, calendar->DeleteItem(L"a"));
    }
    std::filesystem::remove_all(m_folder.Path());
    calendar->GetItemIDs();
    EXPECT_TRUE(Walk(*calendar).empty());
    EXPECT_THAT(capture.TakeTexts(), testing::IsEmpty());
}

// --- Items that call back ----------------------------------------------------------------------

// An item of a client's own whose every property call comes back into the table.
TEST_F(WindowsMailCalendarWriteTest, RefusesChangesFromInsideAChange)
{
    const std::string text = FileWith("UID:a\r\n");
    Write(L"a.ics", text);
    const auto calendar = LoadedCalendar();
    const Item other = AnyItem();
    const Recording item = RecordingAppointment::Make();
    item->texts = {{"EntityID", L"a"}, {"Subject", L"new"}};
    int entered = 0;
    item->onCall = [&](const std::string&) {
        ++entered;
        std::wstring folderId;
        EXPECT_EQ(L"", calendar->AddItem(other.Get(), folderId));
        EXPECT_EQ(0, calendar->UpdateItem(other.Get()));
        EXPECT_EQ(0, calendar->DeleteItem(L"a"));
        calendar->GetItemIDs();
        EXPECT_EQ(text, Read(L"a.ics"));
        // Reading goes on as ever.
        EXPECT_THAT(Walk(*calendar), ElementsAre(L"a"));
        calendar->ResetItem();
        calendar->GetItemByID(L"a");
        EXPECT_EQ(L"a", IdOf(Current(*calendar).Get()));
    };
    EXPECT_EQ(1, calendar->UpdateItem(item.Get()));
    EXPECT_EQ(11, entered);
    EXPECT_THAT(Read(L"a.ics"), HasSubstr("SUMMARY:new"));
    // Afterwards everything is allowed again.
    item->onCall = nullptr;
    EXPECT_NE(L"", Add(*calendar, other.Get()));
    EXPECT_EQ(1, calendar->DeleteItem(L"a"));
    calendar->GetItemIDs();
    EXPECT_EQ(1u, Walk(*calendar).size());
}

TEST_F(WindowsMailCalendarWriteTest, RefusesChangesFromInsideAnAddition)
{
    const auto calendar = LoadedCalendar();
    const Recording item = RecordingAppointment::Make();
    item->onCall = [&](const std::string&) {
        std::wstring folderId;
        EXPECT_EQ(L"", calendar->AddItem(item.Get(), folderId));
        EXPECT_EQ(0, calendar->DeleteItem(L"{GUID-1}"));
        calendar->GetItemIDs();
    };
    EXPECT_EQ(L"{GUID-1}", Add(*calendar, item.Get()));
    item->onCall = nullptr;
    calendar->GetItemIDs();
    EXPECT_EQ(1u, Walk(*calendar).size());
}

TEST_F(WindowsMailCalendarWriteTest, ShowsAnEmptyListFromInsideALoad)
{
    Write(L"a.ics", FileWith("UID:a\r\n"));
    CWindowsMailCalendar* table = nullptr;
    int entered = 0;
    m_sources.createItem = [&](INEntityItem** item) {
        if (table)
        {
            ++entered;
            table->GetItemIDs();
            table->GetNextItem();
            EXPECT_FALSE(Current(*table));
            table->GetItemByID(L"a");
            EXPECT_EQ(0, table->DeleteItem(L"a"));
        }
        return CalendarSources().createItem(item);
    };
    const auto calendar = LoadedCalendar();
    table = calendar.get();
    calendar->GetItemIDs();
    EXPECT_EQ(1, entered);
    table = nullptr;
    EXPECT_THAT(Walk(*calendar), ElementsAre(L"a"));
}
