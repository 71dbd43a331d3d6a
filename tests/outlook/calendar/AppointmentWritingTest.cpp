// The values that a message receives of an appointment object, whole and in order, and the calls
// and lines of an update and of an addition. Expected values were worked out by hand: times with a
// calendar and the zones' rules; recurrence blobs are the files of tests/data/recurrence.
#include "outlook/calendar/CalendarFixture.h"
#include "outlook/calendar/ZoneBlobs.h"
#include "support/DebugOutputCapture.h"

#include <algorithm>
#include <cctype>
#include <functional>
#include <iterator>
#include <limits>
#include <optional>
#include <utility>

using Microsoft::WRL::ComPtr;
using Lines = std::vector<std::string>;
using Differs = std::map<std::string, std::optional<std::string>>;

namespace
{
constexpr unsigned kAllCalls = kStoreUsualCalls | kStoreMemory | kStoreReleases;

std::string BytesText(const std::vector<std::byte>& bytes)
{
    std::string text;
    for (const char digit : HexOf(bytes))
        if (digit != ' ')
            text += digit;
    return text;
}

std::string ZoneText(const ZoneRules& rules)
{
    return BytesText(Structure(rules));
}

std::string BlobText(const std::string& file)
{
    return BytesText(HexFile("recurrence/" + file + ".hex"));
}

std::string ValueText(const SPropValue& value)
{
    switch (PROP_TYPE(value.ulPropTag))
    {
    case PT_LONG:
        return std::to_string(value.Value.l);
    case PT_BOOLEAN:
        return std::to_string(value.Value.b);
    case PT_UNICODE:
        return NarrowText(value.Value.lpszW);
    case PT_SYSTIME:
        return TimeText(value.Value.ft);
    case PT_BINARY: {
        const auto* const begin = reinterpret_cast<const std::byte*>(value.Value.bin.lpb);
        return BytesText({begin, begin + value.Value.bin.cb});
    }
    default:
        return "of another type";
    }
}

// What comes of UsualItem: a value for each row; no body and no blob.
const std::vector<std::pair<std::string, std::optional<std::string>>> kUsualValues = {
    {"001A001F", "IPM.Appointment"},
    {"0037001F", "Meeting"},
    {"1000001F", std::nullopt},
    {"00170003", "1"},
    {"00260003", "0"},
    {"00360003", "0"},
    {"0063000B", "65535"},
    {"0E01000B", "0"},
    {"A8205 0003", "0"},
    {"A8208 001F", "Room 5"},
    {"A8216 0102", std::nullopt},
    {"A8231 0003", "0"},
    {"A8223 000B", "0"},
    {"10800003", "1024"},
    {"A8233 0102", ZoneText(kCentralEurope)},
    {"A8215 000B", "0"},
    {"C8516 0040", "2024-03-05 08:30:00"},
    {"A820D 0040", "2024-03-05 08:30:00"},
    {"A8235 0040", "2024-03-05 08:30:00"},
    {"C8517 0040", "2024-03-05 09:30:00"},
    {"A820E 0040", "2024-03-05 09:30:00"},
    {"A8236 0040", "2024-03-05 09:30:00"},
    {"A8213 0003", "60"},
    {"A8234 001F", "(UTC+01:00) Berlin"},
    {"C8510 0003", "369"},
    {"C8503 000B", "0"},
    {"C8501 0003", "0"},
    {"C8502 0040", "0"},
    {"C851C 000B", "65535"},
    {"C851E 000B", "65535"},
    {"C851F 001F", "Reminder.wav"},
};

Lines Expected(const Differs& differs)
{
    Lines lines;
    for (const auto& [property, usual] : kUsualValues)
    {
        const auto other = differs.find(property);
        if (const auto& value = other != differs.end() ? other->second : usual)
            lines.push_back(property + " " + *value);
    }
    return lines;
}

Lines operator+(Lines left, const Lines& right)
{
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

Differs operator+(Differs left, const Differs& right)
{
    for (const auto& [property, value] : right)
        left[property] = value;
    return left;
}

Differs Start(std::optional<std::string> time)
{
    return {{"C8516 0040", time}, {"A820D 0040", time}, {"A8235 0040", time}};
}

Differs End(std::optional<std::string> time)
{
    return {{"C8517 0040", time}, {"A820E 0040", time}, {"A8236 0040", time}};
}

Differs Zone(const ZoneRules& rules, const std::string& description)
{
    return {{"A8233 0102", ZoneText(rules)}, {"A8234 001F", description}};
}

Differs Recurs(const std::string& file, const std::string& type)
{
    return {{"A8216 0102", BlobText(file)},
            {"A8231 0003", type},
            {"A8223 000B", "65535"},
            {"10800003", "1025"}};
}

// A value of kUsualValues' form as the record of the store's calls tells it: times in units of
// 100 ns from 1601 on, the first 64 bytes of binary ones.
std::string RecordedText(const std::string& type, const std::string& value)
{
    // 2024-03-05 is day 154561: 222567840 minutes, and 510 and 570 more.
    static const std::map<std::string, std::string> times = {
        {"0", "0"},
        {"2024-03-05 08:30:00", "133541010000000000"},
        {"2024-03-05 09:30:00", "133541046000000000"}};
    constexpr std::size_t kShownDigits = 2 * 64;
    if (type == "001F")
        return '"' + value + '"';
    if (type == "0040")
        return times.at(value);
    if (type != "0102")
        return value;
    std::string digits;
    for (const char digit : value.substr(0, kShownDigits))
        digits += static_cast<char>(std::toupper(static_cast<unsigned char>(digit)));
    if (value.size() > kShownDigits)
        digits += "... " + std::to_string(value.size() / 2) + " bytes";
    return "<" + digits + ">";
}

// A rule of the kind, in a zone an hour east without summer time.
void SetRule(RecordingAppointment& item, _tagNAppointmentRecurringType kind)
{
    item.texts["TimeZone"] = L"Alger";
    item.recurringInfo = NoRecurrence();
    item.recurringInfo.eRecurType = kind;
}

class AppointmentWritingTest : public CalendarTableTest
{
  protected:
    // One hour in Berlin from 2024-03-05 08:30 UTC, without body, reminder and recurrence.
    static ComPtr<RecordingAppointment> UsualItem()
    {
        const ComPtr<RecordingAppointment> item = RecordingAppointment::Make();
        item->texts = {{"Subject", L"Meeting"}, {"Place", L"Room 5"}, {"TimeZone", L"Berlin"}};
        item->nulls = {"Description"};
        item->startTime = DateOf(2024, 3, 5, 8, 30);
        item->endTime = DateOf(2024, 3, 5, 9, 30);
        item->reminder = 0xFFFFFFFF;
        item->recurringInfo = NoRecurrence();
        return item;
    }
    static void SetAllDay(RecordingAppointment& item, DATE localDay)
    {
        item.allDay = -1;
        item.startTime = localDay;
        item.endTime = localDay + 1;
    }

    // The two look-ups of names that go before the values.
    static Lines LookUps()
    {
        return {"IMAPIFolder(calendar).GetIDsFromNames("
                "[{00062002-0000-0000-C000-000000000046} 8205 8208 8216 8223 8231 8233 8215 "
                "820D 8235 820E 8236 8213 8234], 00000000)",
                "MAPIFreeBuffer(names of calendar)",
                "IMAPIFolder(calendar).GetIDsFromNames("
                "[{00062008-0000-0000-C000-000000000046} 8516 8517 8510 8503 8501 8502 851C "
                "851E 851F], 00000000)",
                "MAPIFreeBuffer(names of calendar)"};
    }
    // Setting the values of UsualItem on a message, but for what differs; and what comes after it.
    Lines SetAndSave(const std::string& message, const Differs& differs) const
    {
        std::string values;
        for (const auto& [property, usual] : kUsualValues)
        {
            const auto other = differs.find(property);
            const auto& value = other != differs.end() ? other->second : usual;
            if (!value)
                continue;
            const std::string type = property.substr(property.size() - 4);
            char tag[16];
            std::snprintf(tag, sizeof(tag), "%s", property.c_str());
            if (property[0] == 'A' || property[0] == 'C')
                std::snprintf(tag,
                              sizeof(tag),
                              "%08lX",
                              names.Tag(property.substr(0, 5), std::stoul(type, nullptr, 16)));
            values += (values.empty() ? "" : ", ") + (tag + (" " + RecordedText(type, *value)));
        }
        return {message + ".SetProps({" + values + "}, problems)",
                message + ".SaveChanges(00000004)",
                message + ".GetProps([0FFF0102 30080040], 80000000)"};
    }

    Lines Written(RecordingAppointment& item, bool isNew = false)
    {
        Open();
        Lines lines;
        const PropertyArray values = table->ReadItem(item, isNew);
        for (ULONG i = 0; i < values.Count(); ++i)
            lines.push_back(names.TextOf(values[i].ulPropTag) + " " + ValueText(values[i]));
        return lines;
    }
};
} // namespace

TEST_F(AppointmentWritingTest, MakesTheValuesOfAppointments)
{
    struct Case
    {
        const char* what;
        std::function<void(RecordingAppointment&)> change;
        Differs differs;
    };
    const Differs allDay = {{"A8215 000B", "1"}, {"A8213 0003", "1440"}};
    const Differs alger = Zone(FixedRules(-60), "Alger");
    // From 1899-12-30 00:00 to 2024-03-05 00:00 are 45356 days, or 65312640 minutes.
    const Case cases[] = {
        {"usual", [](auto&) {}, {}},
        // Texts.
        {"body",
         [](auto& item) {
             item.nulls = {};
             item.texts["Description"] = L"one\r\ntwo";
         },
         {{"1000001F", "one{000D}{000A}two"}}},
        {"empty body", [](auto& item) { item.nulls = {}; }, {{"1000001F", ""}}},
        {"unreadable body",
         [](auto& item) {
             item.nulls = {};
             item.failing = {"get Description"};
         },
         {}},
        {"subject in other letters",
         [](auto& item) { item.texts["Subject"] = L"Caf\x00E9 \xD83D\xDE00"; },
         {{"0037001F", "Caf{00E9} {D83D}{DE00}"}}},
        {"empty subject", [](auto& item) { item.texts["Subject"] = L""; }, {{"0037001F", ""}}},
        {"no subject", [](auto& item) { item.nulls.insert("Subject"); }, {{"0037001F", ""}}},
        {"unreadable subject",
         [](auto& item) { item.failing = {"get Subject"}; },
         {{"0037001F", ""}}},
        {"no place", [](auto& item) { item.nulls.insert("Place"); }, {{"A8208 001F", ""}}},
        {"unreadable place",
         [](auto& item) { item.failing = {"get Place"}; },
         {{"A8208 001F", ""}}},
        // Busy.
        {"busy", [](auto& item) { item.isBusy = -1; }, {{"A8205 0003", "2"}}},
        {"busy by one", [](auto& item) { item.isBusy = 1; }, {{"A8205 0003", "2"}}},
        {"unreadable busy",
         [](auto& item) {
             item.isBusy = -1;
             item.failing = {"get IsBusy"};
         },
         {}},
        // Reminders.
        {"reminder",
         [](auto& item) { item.reminder = 15; },
         {{"C8503 000B", "1"}, {"C8501 0003", "15"}, {"C8502 0040", "2024-03-05 08:30:00"}}},
        {"reminder at the start",
         [](auto& item) { item.reminder = 0; },
         {{"C8503 000B", "1"}, {"C8502 0040", "2024-03-05 08:30:00"}}},
        {"reminder far away",
         [](auto& item) { item.reminder = 0xFFFFFFFE; },
         {{"C8503 000B", "1"}, {"C8501 0003", "-2"}, {"C8502 0040", "2024-03-05 08:30:00"}}},
        {"unreadable reminder",
         [](auto& item) {
             item.reminder = 15;
             item.failing = {"get Reminder"};
         },
         {}},
        {"reminder of an all-day appointment",
         [](auto& item) {
             SetAllDay(item, DateOf(2024, 3, 5));
             item.reminder = 15;
         },
         allDay + Start("2024-03-05 05:00:00") + End("2024-03-06 05:00:00") +
             Differs{
                 {"C8503 000B", "1"}, {"C8501 0003", "15"}, {"C8502 0040", "2024-03-05 00:00:00"}}},
        {"reminder without a start",
         [](auto& item) {
             item.reminder = 15;
             item.failing = {"get StartTime"};
         },
         Start(std::nullopt) + Differs{{"A8213 0003", "65313210"},
                                       {"C8503 000B", "1"},
                                       {"C8501 0003", "15"},
                                       {"C8502 0040", std::nullopt}}},
        // Times.
        {"no start",
         [](auto& item) { item.failing = {"get StartTime"}; },
         Start(std::nullopt) + Differs{{"A8213 0003", "65313210"}}},
        {"no end",
         [](auto& item) { item.failing = {"get EndTime"}; },
         End(std::nullopt) + Differs{{"A8213 0003", "-65313150"}}},
        {"end before the start",
         [](auto& item) { item.endTime = DateOf(2024, 3, 5, 8, 0); },
         End("2024-03-05 08:00:00") + Differs{{"A8213 0003", "-30"}}},
        {"end at the start",
         [](auto& item) { item.endTime = item.startTime; },
         End("2024-03-05 08:30:00") + Differs{{"A8213 0003", "0"}}},
        {"no number for a start",
         [](auto& item) { item.startTime = std::numeric_limits<double>::quiet_NaN(); },
         Start("0") + Differs{{"A8213 0003", "0"}}},
        {"all-day in the machine's winter",
         [](auto& item) { SetAllDay(item, DateOf(2024, 3, 5)); },
         allDay + Start("2024-03-05 05:00:00") + End("2024-03-06 05:00:00")},
        {"all-day in the machine's summer",
         [](auto& item) { SetAllDay(item, DateOf(2024, 7, 15)); },
         allDay + Start("2024-07-15 04:00:00") + End("2024-07-16 04:00:00")},
        {"all-day over the machine's change",
         [](auto& item) { SetAllDay(item, DateOf(2024, 3, 10)); },
         allDay + Start("2024-03-10 05:00:00") + End("2024-03-11 04:00:00")},
        {"all-day by one",
         [](auto& item) {
             SetAllDay(item, DateOf(2024, 3, 5));
             item.allDay = 1;
         },
         allDay + Start("2024-03-05 05:00:00") + End("2024-03-06 05:00:00")},
        {"unreadable all-day",
         [](auto& item) {
             item.allDay = -1;
             item.failing = {"get AllDay"};
         },
         {{"A8215 000B", std::nullopt}}},
        // Zones.
        {"zone to the east",
         [](auto& item) { item.texts["TimeZone"] = L"India"; },
         Zone(kIndia, "(UTC+05:30) Delhi")},
        {"zone without a description",
         [](auto& item) { item.texts["TimeZone"] = L"Island"; },
         Zone(kIsland, "Island")},
        {"unknown zone",
         [](auto& item) { item.texts["TimeZone"] = L"Atlantis"; },
         Zone(kEastern, "Atlantis")},
        {"empty zone", [](auto& item) { item.texts["TimeZone"] = L""; }, Zone(kEastern, "")},
        {"no zone", [](auto& item) { item.nulls.insert("TimeZone"); }, Zone(kEastern, "")},
        {"unreadable zone",
         [](auto& item) { item.failing = {"get TimeZone"}; },
         Zone(kEastern, "")},
        // Recurrences.
        {"daily",
         [](auto& item) {
             SetRule(item, Daily);
             item.recurringInfo.tDaily.ulIntervalDay = 2;
         },
         alger + Recurs("daily_never", "1")},
        {"daily with deleted instances",
         [](auto& item) {
             SetRule(item, Daily);
             item.recurringInfo.tDaily.ulIntervalDay = 1;
             item.recurringInfo.arrDeletedInstance[0] = DateOf(2024, 3, 9, 23, 59);
             item.recurringInfo.arrDeletedInstance[2] = DateOf(2024, 4, 1, 9, 30);
             item.recurringInfo.arrDeletedInstance[63] = DateOf(2024, 3, 7);
         },
         alger + Recurs("daily_deleted", "1")},
        {"weekly",
         [](auto& item) {
             SetRule(item, Weekly);
             item.recurringInfo.tWeekly.ulIntervalWeek = 2;
             SetWeekdays(item.recurringInfo.tWeekly.bValidWeekday, {1, 3});
             item.recurringInfo.tEndInfo = {EndByCount, 0.0, 5};
         },
         alger + Recurs("weekly_by_count", "2")},
        {"monthly",
         [](auto& item) {
             SetRule(item, Monthly);
             item.recurringInfo.tMonthly.ulIntervalMonth = 3;
             item.recurringInfo.tMonthly.bIsByMonthDayMode = -1;
             item.recurringInfo.tMonthly.lMonthDay = 31;
             item.recurringInfo.tEndInfo = {EndByCount, 0.0, 4};
         },
         alger + Recurs("monthly_day_by_count", "3")},
        {"yearly",
         [](auto& item) {
             SetRule(item, Yearly);
             item.recurringInfo.tYearly.ulIntervalYear = 2;
             item.recurringInfo.tYearly.bIsByMonthDayMode = -1;
             item.recurringInfo.tYearly.lDay = 5;
             item.recurringInfo.tEndInfo = {EndByCount, 0.0, 3};
         },
         alger + Recurs("yearly_by_count", "4")},
        {"unreadable recurrence",
         [](auto& item) {
             SetRule(item, Daily);
             item.recurringInfo.tDaily.ulIntervalDay = 2;
             item.failing = {"get RecurringInfo"};
         },
         alger},
        {"recurrence with an interval of nothing", [](auto& item) { SetRule(item, Daily); }, alger},
        {"recurrence of an unknown kind",
         [](auto& item) { SetRule(item, static_cast<_tagNAppointmentRecurringType>(7)); },
         alger},
        {"recurrence that ends where it starts",
         [](auto& item) {
             SetRule(item, Daily);
             item.recurringInfo.tDaily.ulIntervalDay = 2;
             item.endTime = item.startTime;
         },
         alger + End("2024-03-05 08:30:00") + Differs{{"A8213 0003", "0"}}},
    };
    EXPECT_GE(std::size(cases), 40u);
    for (const Case& wanted : cases)
    {
        SCOPED_TRACE(wanted.what);
        const ComPtr<RecordingAppointment> item = UsualItem();
        wanted.change(*item.Get());
        EXPECT_EQ(Expected(wanted.differs), Written(*item.Get()));
        EXPECT_EQ(Expected(wanted.differs), Written(*item.Get(), true));
    }
}

TEST_F(AppointmentWritingTest, TakesTheMachinesZoneForAllDayAppointments)
{
    struct Row
    {
        ZoneRules machine;
        const char* start;
        const char* end;
    };
    const Row rows[] = {{kCentralEurope, "2024-07-14 22:00:00", "2024-07-15 22:00:00"},
                        {kIndia, "2024-07-14 18:30:00", "2024-07-15 18:30:00"},
                        {kIsland, "2024-07-15 03:30:00", "2024-07-16 03:30:00"},
                        {FixedRules(0), "2024-07-15 00:00:00", "2024-07-16 00:00:00"}};
    for (const Row& row : rows)
    {
        SetMachine(zones, row.machine, L"Machine's own");
        const ComPtr<RecordingAppointment> item = UsualItem();
        SetAllDay(*item.Get(), DateOf(2024, 7, 15));
        EXPECT_EQ(Expected(Start(row.start) + End(row.end) +
                           Differs{{"A8215 000B", "1"}, {"A8213 0003", "1440"}}),
                  Written(*item.Get()));
    }
}

TEST_F(AppointmentWritingTest, LeavesOutWhatTheStoreHasNoNameFor)
{
    const Differs usual = Zone(FixedRules(-60), "Alger") + Recurs("daily_never", "1");
    for (const auto& [property, value] : kUsualValues)
    {
        if (property[0] != 'A' && property[0] != 'C')
            continue;
        SCOPED_TRACE(property);
        ForgetNames({property.substr(0, 5)});
        Differs differs = usual + Differs{{property, std::nullopt}};
        // The blob and its type need each other's name.
        if (property.starts_with("A8216") || property.starts_with("A8231"))
            differs = differs + Differs{{"A8216 0102", std::nullopt}, {"A8231 0003", std::nullopt}};
        Lines expected = Expected(differs);
        // The texts of the place and of the zone are there all the same, empty and without an ID.
        if (property == "A8208 001F")
            expected.insert(expected.begin() + 8, "0000001F ");
        if (property == "A8234 001F")
            expected.insert(expected.end() - 7, "0000001F ");
        const ComPtr<RecordingAppointment> item = UsualItem();
        SetRule(*item.Get(), Daily);
        item->recurringInfo.tDaily.ulIntervalDay = 2;
        EXPECT_EQ(expected, Written(*item.Get()));
    }
    std::set<std::string> all;
    for (const auto& [property, value] : kUsualValues)
        all.insert(property.substr(0, 5));
    ForgetNames(all);
    EXPECT_EQ((Lines{"001A001F IPM.Appointment",
                     "0037001F Meeting",
                     "00170003 1",
                     "00260003 0",
                     "00360003 0",
                     "0063000B 65535",
                     "0E01000B 0",
                     "0000001F ",
                     "10800003 1024",
                     "0000001F "}),
              Written(*UsualItem().Get()));
}

TEST_F(AppointmentWritingTest, LooksTheNamesUpInTheirOrder)
{
    Written(*UsualItem().Get());
    EXPECT_EQ(LookUps(), store.Calls(kAllCalls));
}

TEST_F(AppointmentWritingTest, ReadsThePropertiesOfTheItemInTheirOrder)
{
    const ComPtr<RecordingAppointment> item = UsualItem();
    item->reminder = 15;
    item->recurringInfo.eRecurType = Daily;
    item->recurringInfo.tDaily.ulIntervalDay = 1;
    Written(*item.Get());
    EXPECT_EQ((Lines{"get Subject",
                     "get Description",
                     "get IsBusy",
                     "get Place",
                     "get RecurringInfo", // these five for the blob
                     "get StartTime",
                     "get EndTime",
                     "get AllDay",
                     "get TimeZone",
                     "get TimeZone",
                     "get AllDay",
                     "get StartTime",
                     "get EndTime",
                     "get TimeZone",
                     "get Reminder",
                     "get StartTime"}),
              item->calls);
}

// Those belong to the store, or to the table around.
TEST_F(AppointmentWritingTest, LeavesIdsFolderAndModificationTimeOfTheItemUnread)
{
    const ComPtr<RecordingAppointment> item = UsualItem();
    for (const char* const name : {"EntityID", "FolderID", "PersistID"})
        item->texts[name] = L"0123";
    const Lines values = Written(*item.Get());
    EXPECT_EQ(Expected({}), values);
    for (const char* const name : {"EntityID", "FolderID", "PersistID", "LastModificationTime"})
        EXPECT_EQ(0, std::ranges::count(item->calls, std::string("get ") + name)) << name;
    EXPECT_EQ(0u, item->getEntityIdCalls);
}

TEST_F(AppointmentWritingTest, MakesNothingOfAnItemThatIsNoAppointment)
{
    const ComPtr<RecordingAppointment> item = UsualItem();
    item->isAppointment = false;
    EXPECT_TRUE(Written(*item.Get()).empty());
    EXPECT_TRUE(item->calls.empty());
    EXPECT_TRUE(store.Calls(kAllCalls).empty());
    item->isAppointment = true;
    session->Helper()->Live().DetachAll();
    EXPECT_TRUE(Written(*item.Get()).empty());
}

TEST_F(AppointmentWritingTest, UpdatesAMessageWithTheseCallsAndLines)
{
    const ScopedLogSettings settings;
    DebugOutputCapture capture;
    AddAppointment("ann", {});
    Open();
    table->GetItemIDs();
    table->ResetItem();
    const ComPtr<RecordingAppointment> item = UsualItem();
    item->texts["EntityID"] = IdOf("ann");
    store.ClearRecord();
    capture.TakeLogMessages();
    EXPECT_EQ(1, table->UpdateItem(item.Get()));
    EXPECT_EQ((Lines{"IMAPIFolder(calendar).OpenEntry(ann, null, 00000001, type)"} + LookUps() +
               SetAndSave("IMessage(ann)", {}) +
               Lines{"MAPIFreeBuffer(props of ann)", "release IMessage(ann)"}),
              store.Calls(kAllCalls));
    EXPECT_EQ((Lines{"========COutlookCalendarTable::ReadItem return PropertyValues [29]\r\n",
                     "=========pCurrentEntity->SetProps hr= 0000000000000000! \r\n",
                     "=========pCurrentEntity->SaveChanges(FORCE_SAVE) hr= 0000000000000000! \r\n",
                     "==========EnumerateProperties pMAPIProperty->GetProps, hr = "
                     "(0X0000000000000000)! \r\n"}),
              capture.TakeLogMessages());
}

TEST_F(AppointmentWritingTest, AddsAMessageWithTheseCallsAndLines)
{
    const ScopedLogSettings settings;
    DebugOutputCapture capture;
    Open();
    table->ResetItem();
    const ComPtr<RecordingAppointment> item = UsualItem();
    SetRule(*item.Get(), Daily);
    item->recurringInfo.tDaily.ulIntervalDay = 2;
    store.ClearRecord();
    capture.TakeLogMessages();
    std::wstring folderID = L"before";
    EXPECT_EQ(IdOf("new 1"), table->AddItem(item.Get(), folderID));
    EXPECT_EQ(L"", folderID);
    EXPECT_EQ((Lines{"IMAPIFolder(calendar).QueryInterface(IMAPIFolder)",
                     "IMAPIFolder(calendar).CreateMessage(null, 00000000)",
                     "IMessage(new 1).QueryInterface(IMAPIProp)"} +
               LookUps() +
               SetAndSave("IMessage(new 1)",
                          Zone(FixedRules(-60), "Alger") + Recurs("daily_never", "1")) +
               Lines{"MAPIFreeBuffer(props of new 1)", "release IMessage(new 1)"}),
              store.Calls(kAllCalls));
    EXPECT_EQ((Lines{"========COutlookCalendarTable::ReadItem return PropertyValues [30]\r\n",
                     "=========m_pCurrentEntity->SetProps hr= 0000000000000000! \r\n",
                     "=========m_pCurrentEntity->SaveChanges(FORCE_SAVE) hr= "
                     "0000000000000000! \r\n",
                     "==========EnumerateProperties pMAPIProperty->GetProps, hr = "
                     "(0X0000000000000000)! \r\n"}),
              capture.TakeLogMessages());
}

// --- There and back ------------------------------------------------------------------------------

TEST_F(AppointmentWritingTest, ReadsBackWhatItAdded)
{
    Open();
    table->ResetItem();
    const ComPtr<RecordingAppointment> item = UsualItem();
    SetRule(*item.Get(), Daily);
    item->recurringInfo.tDaily.ulIntervalDay = 2;
    item->nulls = {};
    item->texts["Description"] = L"Notes";
    item->isBusy = -1;
    item->reminder = 15;
    std::wstring folderID;
    table->AddItem(item.Get(), folderID);
    table->GetItemByID(IdOf("new 1"));
    EXPECT_EQ("PersistID " + NarrowText(IdOf("new 1")) +
                  "\nLastModificationTime 2024-01-10 00:00:00\nSubject Meeting\nReminder 15\n"
                  "Place Room 5\nkind 1\ndaily.interval 2\nTimeZone Alger\n"
                  "StartTime 2024-03-05 08:30:00\nEndTime 2024-03-05 09:30:00\nIsBusy -1\n"
                  "Description Notes\n",
              TextOfAppointment(CurrentItem(*table).Get()));
}

// The day is written in the machine's zone and read in the one that the appointment names: midnight
// five hours west of UTC is six in the morning an hour east of it.
TEST_F(AppointmentWritingTest, ReadsAnAllDayAppointmentOfAnotherZoneBackAtAnotherHour)
{
    Open();
    table->ResetItem();
    const ComPtr<RecordingAppointment> item = UsualItem();
    SetAllDay(*item.Get(), DateOf(2024, 3, 5));
    std::wstring folderID;
    table->AddItem(item.Get(), folderID);
    table->GetItemByID(IdOf("new 1"));
    EXPECT_NE(std::string::npos,
              TextOfAppointment(CurrentItem(*table).Get())
                  .find("TimeZone Berlin\nAllDay 1\nStartTime 2024-03-05 06:00:00\n"
                        "EndTime 2024-03-06 06:00:00\n"));
}

TEST_F(AppointmentWritingTest, LeavesTheOldBlobWhereAnAppointmentRecursNoMore)
{
    AddAppointment("ann",
                   StoreProps()
                       .Bytes(Tag("A8216", PT_BINARY), {1, 2, 3})
                       .Number(Tag("A8231", PT_LONG), 2)
                       .Number(Tag("A8223", PT_BOOLEAN), 0xFFFF)
                       .Text(PR_BODY_W, L"Old notes"));
    Open();
    table->ResetItem();
    const ComPtr<RecordingAppointment> item = UsualItem();
    item->texts["EntityID"] = IdOf("ann");
    EXPECT_EQ(1, table->UpdateItem(item.Get()));
    const auto stored = [&](ULONG tag) {
        char text[16];
        std::snprintf(text, sizeof(text), "%08lX ", tag);
        for (const std::string& line : store.PropsOf("ann"))
            if (line.starts_with(text))
                return line.substr(9);
        return std::string("none");
    };
    EXPECT_EQ("<010203>", stored(Tag("A8216", PT_BINARY)));
    EXPECT_EQ("0", stored(Tag("A8231", PT_LONG)));
    EXPECT_EQ("0", stored(Tag("A8223", PT_BOOLEAN)));
    EXPECT_EQ("1024", stored(0x10800003));
    EXPECT_EQ("\"Old notes\"", stored(PR_BODY_W)); // no Description, no body
}
