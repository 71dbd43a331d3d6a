// The list of a calendar folder: what is read from its files, and how the list is walked.
#include "icalendar/CalendarFolder.h"
#include "icalendar/RecordingAppointment.h"

#include <gmock/gmock.h>

using WindowsMailCalendarTest = CalendarFolderTest;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{
constexpr double kSecond = 1.0 / 86400.0;

// The .ics files of a folder in the order in which the system delivers them.
std::vector<std::wstring> FilesInOrder(const std::wstring& folder)
{
    std::vector<std::wstring> names;
    WIN32_FIND_DATAW found{};
    const HANDLE search = FindFirstFileW((folder + L"*.ics").c_str(), &found);
    if (search == INVALID_HANDLE_VALUE)
        return names;
    do
        names.push_back(found.cFileName);
    while (FindNextFileW(search, &found));
    FindClose(search);
    return names;
}

// Makes a folder the current one until the object ends.
class ScopedCurrentFolder
{
  public:
    explicit ScopedCurrentFolder(const std::filesystem::path& folder)
        : m_former(std::filesystem::current_path())
    {
        std::filesystem::current_path(folder);
    }
    ~ScopedCurrentFolder() { std::filesystem::current_path(m_former); }
    ScopedCurrentFolder(const ScopedCurrentFolder&) = delete;
    ScopedCurrentFolder& operator=(const ScopedCurrentFolder&) = delete;

  private:
    std::filesystem::path m_former;
};
} // namespace

// --- The list ----------------------------------------------------------------------------------

TEST_F(WindowsMailCalendarTest, HasNoItemsBeforeTheFirstLoad)
{
    Write(L"a.ics", FileWith("UID:1\r\n"));
    const auto calendar = Calendar();
    EXPECT_THAT(Walk(*calendar), IsEmpty());
}

TEST_F(WindowsMailCalendarTest, HasNoItemsInAFolderWithoutFilesAndInNoFolder)
{
    EXPECT_THAT(Walk(*LoadedCalendar()), IsEmpty());
    CWindowsMailCalendar nowhere(Folder() + L"missing\\", m_sources);
    nowhere.GetItemIDs();
    EXPECT_THAT(Walk(nowhere), IsEmpty());
}

TEST_F(WindowsMailCalendarTest, ShowsTheEventsOfAllFilesInTheOrderOfTheWalk)
{
    Write(L"b.ics", FileWith("UID:b\r\n"));
    Write(L"a.ics", FileWith("UID:a\r\n"));
    Write(L"c.txt", FileWith("UID:c\r\n"));
    Write(L"d.ics",
          Lines({"BEGIN:VCALENDAR",
                 "BEGIN:VEVENT",
                 "UID:d2",
                 "END:VEVENT",
                 "BEGIN:VEVENT",
                 "UID:d1",
                 "END:VEVENT",
                 "END:VCALENDAR"}));
    std::vector<std::wstring> expected;
    for (const std::wstring& name : FilesInOrder(Folder()))
    {
        if (name == L"d.ics")
            expected.insert(expected.end(), {L"d2", L"d1"});
        else
            expected.push_back(name.substr(0, 1));
    }
    ASSERT_EQ(4u, expected.size());
    EXPECT_EQ(expected, Walk(*LoadedCalendar()));
}

TEST_F(WindowsMailCalendarTest, TakesADirectoryNamedLikeAFileForNone)
{
    std::filesystem::create_directory(m_folder.Path() / "x.ics");
    Write(L"y.ics", FileWith("UID:y\r\n"));
    const auto calendar = LoadedCalendar();
    EXPECT_THAT(Walk(*calendar), ElementsAre(L"y"));
    // Nor does it become the file for new items.
    ASSERT_NE(L"", Add(*calendar, NewItem(L"New", kThirdOfJune, kThirdOfJune).Get()));
    EXPECT_NE(std::string::npos, Read(L"y.ics").find("SUMMARY:New"));
}

TEST_F(WindowsMailCalendarTest, LeavesOutAFileThatAnotherProgramDoesNotShare)
{
    Write(L"a.ics", FileWith("UID:a\r\n"));
    Write(L"b.ics", FileWith("UID:b\r\n"));
    const HANDLE held = CreateFileW((Folder() + L"a.ics").c_str(),
                                    GENERIC_READ,
                                    0,
                                    nullptr,
                                    OPEN_EXISTING,
                                    FILE_ATTRIBUTE_NORMAL,
                                    nullptr);
    ASSERT_NE(INVALID_HANDLE_VALUE, held);
    const auto calendar = LoadedCalendar();
    CloseHandle(held);
    EXPECT_THAT(Walk(*calendar), ElementsAre(L"b"));
    EXPECT_EQ(0, calendar->DeleteItem(L"a"));
}

TEST_F(WindowsMailCalendarTest, DropsTheCurrentItemAtTheEnd)
{
    Write(L"a.ics", FileWith("UID:a\r\n"));
    const auto calendar = LoadedCalendar();
    EXPECT_FALSE(Current(*calendar));
    calendar->GetNextItem();
    EXPECT_EQ(L"a", IdOf(Current(*calendar).Get()));
    calendar->GetNextItem();
    EXPECT_FALSE(Current(*calendar));
    // Without a current item the output stays as it was, and a null output is no harm.
    INEntityItem* untouched = reinterpret_cast<INEntityItem*>(1);
    calendar->GetCurrentItem(&untouched);
    EXPECT_EQ(reinterpret_cast<INEntityItem*>(1), untouched);
    calendar->ResetItem();
    calendar->GetNextItem();
    calendar->GetCurrentItem(nullptr);
}

TEST_F(WindowsMailCalendarTest, IsAtTheEndAfterAReloadUntilTheReset)
{
    Write(L"a.ics", FileWith("UID:a\r\n"));
    const auto calendar = LoadedCalendar();
    calendar->GetNextItem();
    const Item before = Current(*calendar);
    Write(L"b.ics", FileWith("UID:b\r\n"));
    calendar->GetItemIDs();
    // The current item stays over a reload.
    EXPECT_EQ(before.Get(), Current(*calendar).Get());
    calendar->GetItemByID(L"b");
    EXPECT_EQ(before.Get(), Current(*calendar).Get());
    calendar->GetNextItem();
    EXPECT_FALSE(Current(*calendar));
    EXPECT_THAT(Walk(*calendar), testing::UnorderedElementsAre(L"a", L"b"));
}

TEST_F(WindowsMailCalendarTest, ReleasesEveryItemAtAReloadAndAtItsEnd)
{
    Write(L"a.ics", FileWith("UID:a\r\n"));
    bool alive = true;
    m_sources.createItem = [&](INEntityItem** item) {
        auto* made = new RecordingAppointment;
        made->alive = &alive;
        *item = made;
        return S_OK;
    };
    auto calendar = LoadedCalendar();
    EXPECT_TRUE(alive);
    std::filesystem::remove(m_folder.Path() / "a.ics");
    calendar->GetItemIDs();
    EXPECT_FALSE(alive);
    alive = true;
    Write(L"a.ics", FileWith("UID:a\r\n"));
    calendar->GetItemIDs();
    calendar->ResetItem();
    calendar->GetNextItem();
    EXPECT_TRUE(alive);
    calendar.reset();
    EXPECT_FALSE(alive);
}

TEST_F(WindowsMailCalendarTest, SkipsAnEventWhoseItemCannotBeMade)
{
    Write(L"a.ics",
          Lines({"BEGIN:VCALENDAR",
                 "BEGIN:VEVENT",
                 "UID:1",
                 "END:VEVENT",
                 "BEGIN:VEVENT",
                 "UID:2",
                 "END:VEVENT",
                 "BEGIN:VEVENT",
                 "UID:3",
                 "END:VEVENT",
                 "END:VCALENDAR"}));
    int made = 0;
    m_sources.createItem = [&](INEntityItem** item) -> HRESULT {
        return ++made == 2 ? E_OUTOFMEMORY : CalendarSources().createItem(item);
    };
    const auto calendar = LoadedCalendar();
    EXPECT_THAT(Walk(*calendar), ElementsAre(L"1", L"3"));
    // The event is in its file all the same.
    EXPECT_EQ(1, calendar->DeleteItem(L"2"));
}

TEST_F(WindowsMailCalendarTest, HasNoLightList)
{
    Write(L"a.ics", FileWith("UID:a\r\n"));
    std::list<ItemEntry> entries(1);
    EXPECT_EQ(0, LoadedCalendar()->GetItemList(entries));
    EXPECT_EQ(1u, entries.size());
}

TEST_F(WindowsMailCalendarTest, PassesIdsUnchangedBetweenItsForms)
{
    const auto calendar = Calendar();
    EXPECT_EQ(L"{A b}", calendar->ToInternalID(L"{A b}"));
    EXPECT_EQ(L"{A b}", calendar->ToClientID(L"{A b}"));
}

// --- Lookup ------------------------------------------------------------------------------------

namespace
{
std::string ThreeEvents()
{
    return Lines({"BEGIN:VCALENDAR",
                  "BEGIN:VEVENT",
                  "UID:1",
                  "END:VEVENT",
                  "BEGIN:VEVENT",
                  "UID:2",
                  "END:VEVENT",
                  "BEGIN:VEVENT",
                  "UID:3",
                  "END:VEVENT",
                  "END:VCALENDAR"});
}
} // namespace

TEST_F(WindowsMailCalendarTest, StaysOnTheItemThatALookupFound)
{
    Write(L"a.ics", ThreeEvents());
    const auto calendar = LoadedCalendar();
    calendar->GetItemByID(L"2");
    EXPECT_EQ(L"2", IdOf(Current(*calendar).Get()));
    EXPECT_EQ(L"2", IdOf(Next(*calendar)));
    EXPECT_EQ(L"3", IdOf(Next(*calendar)));
}

TEST_F(WindowsMailCalendarTest, FindsNoItemThatTheWalkHasPassed)
{
    Write(L"a.ics", ThreeEvents());
    const auto calendar = LoadedCalendar();
    calendar->GetNextItem();
    calendar->GetNextItem();
    calendar->GetItemByID(L"1");
    // The caller receives the item that was current before, and the walk is at its end.
    EXPECT_EQ(L"2", IdOf(Current(*calendar).Get()));
    EXPECT_FALSE(Next(*calendar));
    calendar->ResetItem();
    calendar->GetItemByID(L"1");
    EXPECT_EQ(L"1", IdOf(Current(*calendar).Get()));
}

TEST_F(WindowsMailCalendarTest, ComparesIdsExactly)
{
    Write(L"a.ics", FileWith("UID:Abc\r\n"));
    const auto calendar = LoadedCalendar();
    for (const wchar_t* id : {L"abc", L"Ab", L"Abcd", L"", L" Abc"})
    {
        calendar->ResetItem();
        calendar->GetItemByID(id);
        EXPECT_FALSE(Current(*calendar)) << id;
    }
    calendar->ResetItem();
    calendar->GetItemByID(std::wstring(L"Abc\0d", 5));
    EXPECT_FALSE(Current(*calendar));
}

TEST_F(WindowsMailCalendarTest, FindsAnEventWithoutAnIdByTheEmptyOne)
{
    Write(L"a.ics", FileWith("SUMMARY:nameless\r\n"));
    const auto calendar = LoadedCalendar();
    calendar->GetItemByID(L"");
    EXPECT_TRUE(Current(*calendar));
}

TEST_F(WindowsMailCalendarTest, SeesTheIdThatAClientGaveToALiveItem)
{
    Write(L"a.ics", ThreeEvents());
    const auto calendar = LoadedCalendar();
    calendar->GetNextItem();
    calendar->GetNextItem();
    Item held = Current(*calendar);
    held->put_EntityID(Bstr(L"3").Get());
    calendar->ResetItem();
    calendar->GetItemByID(L"2");
    EXPECT_FALSE(Current(*calendar));
    calendar->ResetItem();
    calendar->GetItemByID(L"3"); // the second item now comes first under this ID
    EXPECT_EQ(held.Get(), Current(*calendar).Get());
    // The same once the client has let it go.
    held.Reset();
    calendar->ResetItem();
    calendar->GetItemByID(L"2");
    EXPECT_FALSE(Current(*calendar));
    calendar->ResetItem();
    calendar->GetItemByID(L"3");
    calendar->GetNextItem();
    EXPECT_EQ(L"3", IdOf(Next(*calendar)));
    EXPECT_FALSE(Next(*calendar));
}

// The stated search is a walk over live objects; the table's index must not show. A random client
// walks, looks up, holds, renames and drops items, and every result is compared with the walk.
TEST_F(WindowsMailCalendarTest, FindsWhatAWalkOverTheLiveItemsWouldFind)
{
    std::vector<RecordingAppointment*> objects; // owned by the table
    m_sources.createItem = [&](INEntityItem** item) {
        auto* made = new RecordingAppointment;
        made->isQuiet = true;
        made->keepsEntityId = true;
        objects.push_back(made);
        *item = made;
        return S_OK;
    };
    std::string text = Lines({"BEGIN:VCALENDAR"});
    for (int i = 0; i < 40; ++i)
        text += Lines({"BEGIN:VEVENT", "UID:" + std::to_string(i % 15), "END:VEVENT"});
    Write(L"a.ics", text + Lines({"END:VCALENDAR"}));
    const auto calendar = LoadedCalendar();
    ASSERT_EQ(40u, objects.size());

    std::size_t position = 0;
    RecordingAppointment* current = nullptr;
    std::vector<Item> held;
    std::uint32_t state = 20240605;
    const auto random = [&](std::uint32_t below) {
        state = state * 1664525u + 1013904223u;
        return (state >> 8) % below;
    };
    for (int step = 0; step < 20000; ++step)
    {
        const std::wstring id = std::to_wstring(random(17));
        switch (random(8))
        {
        case 0:
            calendar->ResetItem();
            position = 0;
            current = nullptr;
            break;
        case 1:
        case 2:
            calendar->GetNextItem();
            current = position < objects.size() ? objects[position++] : nullptr;
            break;
        case 3:
        case 4:
            calendar->GetItemByID(id);
            while (position < objects.size() && objects[position]->texts["EntityID"] != id)
                ++position;
            if (position < objects.size())
                current = objects[position];
            break;
        case 5:
            if (const Item item = Current(*calendar))
                held.push_back(item);
            break;
        case 6:
            if (!held.empty())
                held[random(static_cast<std::uint32_t>(held.size()))]->put_EntityID(Bstr(id).Get());
            break;
        default:
            if (!held.empty())
                held.erase(held.begin() + random(static_cast<std::uint32_t>(held.size())));
        }
        ASSERT_EQ(static_cast<INEntityItem*>(current), Current(*calendar).Get()) << step;
    }
}

TEST_F(WindowsMailCalendarTest, LooksUpEveryItemOfALongListInLinearTime)
{
    constexpr std::size_t kCount = 3000;
    std::vector<RecordingAppointment*> objects;
    m_sources.createItem = [&](INEntityItem** item) {
        auto* made = new RecordingAppointment;
        made->isQuiet = true;
        made->keepsEntityId = true;
        objects.push_back(made);
        *item = made;
        return S_OK;
    };
    std::string text = Lines({"BEGIN:VCALENDAR"});
    for (std::size_t i = 0; i < kCount; ++i)
        text += Lines({"BEGIN:VEVENT", "UID:" + std::to_string(i), "END:VEVENT"});
    Write(L"a.ics", text + Lines({"END:VCALENDAR"}));
    const auto calendar = LoadedCalendar();
    // A client that has seen every item and keeps none.
    ASSERT_EQ(kCount, Walk(*calendar).size());
    for (std::size_t i = kCount; i-- > 0;)
    {
        calendar->ResetItem();
        calendar->GetItemByID(std::to_wstring(i));
        ASSERT_EQ(objects[i], Current(*calendar).Get());
    }
    std::size_t reads = 0;
    for (const RecordingAppointment* object : objects)
        reads += object->getEntityIdCalls;
    EXPECT_LE(reads, 6 * kCount); // not the square of the count
}

TEST_F(WindowsMailCalendarTest, TakesAnItemWhoseIdCannotBeReadForNoMatch)
{
    Write(L"a.ics", FileWith("UID:a\r\n"));
    RecordingAppointment* object = nullptr;
    m_sources.createItem = [&](INEntityItem** item) {
        *item = object = new RecordingAppointment;
        return S_OK;
    };
    const auto calendar = LoadedCalendar();
    object->nulls.insert("EntityID");
    calendar->GetItemByID(L"");
    EXPECT_FALSE(Current(*calendar));
    object->nulls.clear();
    object->failing.insert("get EntityID");
    calendar->ResetItem();
    calendar->GetItemByID(L"");
    EXPECT_FALSE(Current(*calendar));
}

// --- Event to appointment ----------------------------------------------------------------------

TEST_F(WindowsMailCalendarTest, TellsAnEventInTheStatedOrderOfPuts)
{
    Write(L"a.ics",
          FileWithZone("+0200",
                       Lines({"UID:abc",
                              "DTSTAMP:20240102T030405Z",
                              "DTSTART;TZID=\"Zone\":20240603T120000",
                              "DTEND;TZID=\"Zone\":20240603T133000",
                              "SUMMARY:Lunch",
                              "LOCATION:Here",
                              "DESCRIPTION:Words",
                              "RRULE:FREQ=DAILY;INTERVAL=2;COUNT=5",
                              "BEGIN:VALARM",
                              "TRIGGER:-PT15M",
                              "END:VALARM"})));
    Microsoft::WRL::ComPtr<RecordingAppointment> object;
    RecordItemsIn(object);
    const auto calendar = LoadedCalendar();
    // 2024-01-02 is day 45,293 and 03:04:05 are 11,045 seconds of 86,400; 12:00 at two hours east
    // of UTC is 10:00.
    EXPECT_THAT(object->calls,
                ElementsAre("put EntityID [abc]",
                            "put PersistID [abc]",
                            "put LastModificationTime [45293.128]",
                            "put Subject [Lunch]",
                            "put Place [Here]",
                            "put Description [Words]",
                            "put TimeZone [Zone Name]",
                            "put RecurringInfo [1]",
                            "put AllDay [0]",
                            "put StartTime [45446.417]",
                            "put EndTime [45446.479]",
                            "put Reminder [15]"));
    const _tagRecurringInfo& record = object->recurringInfo;
    EXPECT_EQ(-1, record.tDaily.bIsByDayMode);
    EXPECT_EQ(2u, record.tDaily.ulIntervalDay);
    EXPECT_EQ(EndByCount, record.tEndInfo.eEndType);
    EXPECT_EQ(5u, record.tEndInfo.ulTimesAfter);
    for (const DATE deleted : record.arrDeletedInstance)
        EXPECT_EQ(0.0, deleted);
}

TEST_F(WindowsMailCalendarTest, PutsNeitherReminderNorPlaceThatAnEventLacks)
{
    Write(L"a.ics", FileWith(""));
    Microsoft::WRL::ComPtr<RecordingAppointment> object;
    RecordItemsIn(object);
    const auto calendar = LoadedCalendar();
    EXPECT_THAT(object->calls,
                ElementsAre("put EntityID",
                            "put PersistID",
                            "put LastModificationTime [0]",
                            "put Subject",
                            "put Place",
                            "put Description",
                            "put TimeZone [UTC]",
                            "put RecurringInfo [0]",
                            "put AllDay [0]",
                            "put StartTime [0]",
                            "put EndTime [0]"));
}

TEST_F(WindowsMailCalendarTest, GoesOnWhereAPutFails)
{
    Write(L"a.ics", FileWith("UID:a\r\n"));
    Microsoft::WRL::ComPtr<RecordingAppointment> object;
    m_sources.createItem = [&](INEntityItem** item) {
        object = RecordingAppointment::Make();
        object->AddRef();
        for (const char* name : {"EntityID",
                                 "PersistID",
                                 "LastModificationTime",
                                 "Subject",
                                 "Place",
                                 "Description",
                                 "TimeZone",
                                 "RecurringInfo",
                                 "AllDay",
                                 "StartTime",
                                 "EndTime"})
            object->failing.insert(std::string("put ") + name);
        *item = object.Get();
        return S_OK;
    };
    const auto calendar = LoadedCalendar();
    EXPECT_EQ(11u, object->calls.size());
    calendar->GetNextItem();
    EXPECT_TRUE(Current(*calendar));
}

TEST_F(WindowsMailCalendarTest, ListsAnItemThatIsNoAppointmentUnfilled)
{
    Write(L"a.ics", FileWith("UID:a\r\n"));
    RecordingAppointment* object = nullptr;
    m_sources.createItem = [&](INEntityItem** item) {
        *item = object = new RecordingAppointment;
        object->isAppointment = false;
        return S_OK;
    };
    const auto calendar = LoadedCalendar();
    EXPECT_THAT(object->calls, IsEmpty());
    calendar->GetNextItem();
    EXPECT_EQ(object, Current(*calendar).Get());
}

TEST_F(WindowsMailCalendarTest, ReadsOnlyOneWholeDayAsAllDay)
{
    Write(L"a.ics",
          FileWithZone("+0200",
                       Lines({"UID:one",
                              "DTSTART;VALUE=DATE:20240603",
                              "DTEND;VALUE=DATE:20240604",
                              "END:VEVENT",
                              "BEGIN:VEVENT",
                              "UID:two",
                              "DTSTART;TZID=Zone;VALUE=DATE:20240603",
                              "DTEND:20240605",
                              "END:VEVENT",
                              "BEGIN:VEVENT",
                              "UID:old",
                              "DTSTART;VALUE=DATE:19600603",
                              "DTEND;VALUE=DATE:19600604"})));
    const auto calendar = LoadedCalendar();
    const Appointment one = Next(*calendar);
    EXPECT_EQ(1, Value(one.Get(), &INAppointment::get_AllDay)); // 1 and not -1
    EXPECT_EQ(kThirdOfJune, Value(one.Get(), &INAppointment::get_StartTime));
    EXPECT_EQ(kThirdOfJune + 1, Value(one.Get(), &INAppointment::get_EndTime));
    EXPECT_EQ(L"UTC", Text(one.Get(), &INAppointment::get_TimeZone));
    // Over two days an event is a timed one from midnight to midnight of its zone.
    const Appointment two = Next(*calendar);
    EXPECT_EQ(0, Value(two.Get(), &INAppointment::get_AllDay));
    EXPECT_NEAR(kThirdOfJune - 2 * kHour, Value(two.Get(), &INAppointment::get_StartTime), kSecond);
    EXPECT_NEAR(
        kThirdOfJune + 2 - 2 * kHour, Value(two.Get(), &INAppointment::get_EndTime), kSecond);
    // So is one outside the years 1971 to 2070. 1960-06-03 is day 22,070.
    const Appointment old = Next(*calendar);
    EXPECT_EQ(0, Value(old.Get(), &INAppointment::get_AllDay));
    EXPECT_EQ(22070.0, Value(old.Get(), &INAppointment::get_StartTime));
}

TEST_F(WindowsMailCalendarTest, TakesAnEventForUtcWhoseZoneTheFileLacks)
{
    Write(L"a.ics",
          FileWithZone("+0200",
                       Lines({"DTSTART;TZID=\"Other\":20240603T120000",
                              "DTEND;TZID=\"Other\":20240603T130000"})));
    const auto calendar = LoadedCalendar();
    const Appointment item = Next(*calendar);
    EXPECT_EQ(L"UTC", Text(item.Get(), &INAppointment::get_TimeZone));
    EXPECT_NEAR(
        kThirdOfJune + 12 * kHour, Value(item.Get(), &INAppointment::get_StartTime), kSecond);
}

TEST_F(WindowsMailCalendarTest, KeepsTheInitialReminderOfAnItemWithoutAlarm)
{
    Write(L"a.ics", FileWith("UID:a\r\n"));
    const auto calendar = LoadedCalendar();
    EXPECT_EQ(0u, Value(Next(*calendar).Get(), &INAppointment::get_Reminder));
}

// --- The folder path of another client ---------------------------------------------------------

TEST_F(WindowsMailCalendarTest, IsEmptyAndTakesNothingWithoutAFolder)
{
    Write(L"a.ics", FileWith("UID:a\r\n"));
    Write(L"Settings.xml", "<CalendarSettings/>");
    const ScopedCurrentFolder here(m_folder.Path());
    CWindowsMailCalendar calendar(L"", m_sources);
    calendar.GetItemIDs();
    calendar.ResetItem();
    EXPECT_THAT(Walk(calendar), IsEmpty());
    EXPECT_EQ(L"", Add(calendar, NewItem(L"x", kThirdOfJune, kThirdOfJune).Get()));
    EXPECT_FALSE(Exists(L"default.ics"));
    EXPECT_EQ(0, calendar.DeleteItem(L"a"));
    EXPECT_NE(std::string::npos, Read(L"a.ics").find("UID:a"));
}
