// What the properties of a message become in an appointment object, the calls that one step of a
// walk makes, and its lines of the log. Expected values were worked out by hand: dates with a
// calendar, zones from their rules.
#include "outlook/calendar/CalendarFixture.h"
#include "outlook/calendar/ZoneBlobs.h"
#include "support/DebugOutputCapture.h"

#include <algorithm>
#include <functional>
#include <iterator>
#include <optional>

using Microsoft::WRL::ComPtr;
using testing::ElementsAre;
using Lines = std::vector<std::string>;
using Texts = std::map<std::string, std::optional<std::string>>;

namespace
{
constexpr unsigned kAllCalls = kStoreUsualCalls | kStoreMemory | kStoreReleases;

// Lines of TextOfAppointment, in its order.
constexpr const char* kProperties[] = {"PersistID",
                                       "LastModificationTime",
                                       "Subject",
                                       "Reminder",
                                       "Place",
                                       "Recurrence",
                                       "TimeZone",
                                       "AllDay",
                                       "StartTime",
                                       "EndTime",
                                       "IsBusy",
                                       "Description"};

std::vector<BYTE> Raw(const std::vector<std::byte>& bytes)
{
    const auto* const begin = reinterpret_cast<const BYTE*>(bytes.data());
    return {begin, begin + bytes.size()};
}

// A compressed RTF property that is stored without compression.
std::vector<BYTE> PackedRtf(const std::string& rtf)
{
    BlobFields blob;
    blob.U32(static_cast<std::uint32_t>(rtf.size() + 12));
    blob.U32(static_cast<std::uint32_t>(rtf.size()));
    blob.U32(0x414C454D).U32(0).Text(rtf);
    return Raw(blob.Bytes());
}

class AppointmentReadingTest : public CalendarTableTest
{
  protected:
    // The appointment of the message, read through the table.
    ComPtr<INEntityItem> Read(const char* name)
    {
        Open();
        table->GetItemByID(IdOf(name));
        return CurrentItem(*table);
    }

    // The calls that an item gets which is filled from the message; the columns' values may be
    // changed between.
    Lines CallsOfFilling(const char* name,
                         const std::function<void(SPropValue* columns)>& change = {})
    {
        Open();
        const ComPtr<IMessage> message = session->OpenMessage(store.EntryIdOf(name));
        table->m_pCurrentEntity = static_cast<IMAPIProp*>(message.Get());
        std::vector<ULONG> tags = table->GetPropertyNames();
        tags.insert(tags.begin(), static_cast<ULONG>(tags.size()));
        ULONG count = 0;
        SPropValue* values = nullptr;
        message->GetProps(
            reinterpret_cast<SPropTagArray*>(tags.data()), MAPI_UNICODE, &count, &values);
        if (change)
            change(values);
        const auto item = RecordingAppointment::Make();
        table->FillItem(*item.Get(), {count, values});
        session->Helper()->Proxy().FreeBuffer(values);
        table->m_pCurrentEntity.Reset();
        return item->calls;
    }

    // The text of an appointment: what every one here has, and what differs.
    std::string Expected(const char* name, const Texts& differs)
    {
        Texts all = {{"PersistID", NarrowText(IdOf(name))},
                     {"LastModificationTime", "2024-01-02 03:04:00"},
                     {"Reminder", "-1"},
                     {"TimeZone", "Machine's own"}};
        for (const auto& [property, value] : differs)
            all[property] = value;
        std::string text;
        for (const char* const property : kProperties)
            if (const auto& value = all[property])
                text += property == std::string("Recurrence") ? *value
                                                              : property + (" " + *value) + "\n";
        return text;
    }

    StoreProps& AddBlob(StoreProps& props, const char* name, const std::vector<std::byte>& blob)
    {
        return props.Bytes(Tag(name, PT_BINARY), Raw(blob));
    }
    // An all-day appointment of one day.
    StoreProps AllDay(DATE utcStart, DATE utcEnd, LONG truth = 1)
    {
        return StoreProps()
            .Number(Tag("A8215", PT_BOOLEAN), truth)
            .Time(Tag("A820D", PT_SYSTIME), FileTimeOf(utcStart))
            .Time(Tag("A820E", PT_SYSTIME), FileTimeOf(utcEnd));
    }
    StoreProps WithZone(const ZoneRules& rules, StoreProps props = {})
    {
        return AddBlob(props, "A8233", Structure(rules));
    }
    StoreProps WithDefinition(const std::vector<std::byte>& blob, StoreProps props = {})
    {
        return AddBlob(props, "A825E", blob);
    }
    StoreProps Reminder(std::optional<LONG> isSet, std::optional<LONG> minutes)
    {
        StoreProps props;
        if (isSet)
            props.Number(Tag("C8503", PT_BOOLEAN), *isSet);
        if (minutes)
            props.Number(Tag("C8501", PT_LONG), *minutes);
        return props;
    }
    StoreProps Busy(LONG status) { return StoreProps().Number(Tag("A8205", PT_LONG), status); }
    StoreProps Recurring(std::optional<LONG> isRecurring, const std::vector<std::byte>& blob)
    {
        StoreProps props;
        if (isRecurring)
            props.Number(Tag("A8223", PT_BOOLEAN), *isRecurring);
        return AddBlob(props, "A8216", blob);
    }

    // Every third day, without an end.
    static BlobFields Daily()
    {
        BlobFields blob;
        blob.Pattern(0x200A, 0, 4320).Lists(0x2023, 10, {}, {});
        blob.Span(MinutesAt(2024, 3, 5), 0x5AE980DF);
        return blob;
    }
    // Daily with one exception that overrides neither subject nor place.
    static BlobFields DailyWithException()
    {
        const std::uint32_t day = MinutesAt(2024, 3, 7);
        BlobFields blob;
        blob.Pattern(0x200A, 0, 1440).Lists(0x2022, 4, {day}, {day});
        blob.Span(MinutesAt(2024, 3, 5), 0, 1);
        blob.U32(day + 600).U32(day + 660).U32(day + 570).U16(0);
        return blob;
    }
};
} // namespace

TEST_F(AppointmentReadingTest, FillsAppointmentsFromTheirProperties)
{
    struct Case
    {
        const char* what;
        StoreProps props;
        Texts differs;
    };
    const std::vector<std::byte> berlinBlob = Structure(kCentralEurope);
    const std::vector<std::byte> shortBlob(berlinBlob.begin(), berlinBlob.end() - 1);
    std::vector<std::byte> longBlob = berlinBlob;
    longBlob.resize(60, std::byte{0xFF});
    const std::vector<std::byte> daily = Daily().Bytes();
    const std::size_t dailyLeast = 22 + 12 + 4 + 4 + 8;
    StoreProps shortAndDefinition;
    AddBlob(shortAndDefinition, "A8233", shortBlob);
    AddBlob(shortAndDefinition, "A825E", Definition("India", {kIndia}));
    StoreProps structureAndDefinition;
    AddBlob(structureAndDefinition, "A8233", berlinBlob);
    AddBlob(structureAndDefinition, "A825E", Definition("India", {kIndia}));
    StoreProps shortStructure;
    AddBlob(shortStructure, "A8233", shortBlob);
    StoreProps longStructure;
    AddBlob(longStructure, "A8233", longBlob);
    StoreProps emptyStructure;
    AddBlob(emptyStructure, "A8233", {});
    const std::string longName = "A zone with a name of forty characters..";
    ASSERT_EQ(40u, longName.size());
    const std::string dailyText = "kind 1\ndaily.interval 3\n";

    const Case cases[] = {
        {"nothing", {}, {}},
        // Texts.
        {"subject",
         StoreProps().Text(PR_SUBJECT_W, L"Caf\x00E9 \xD83D\xDE00"),
         {{"Subject", "Caf{00E9} {D83D}{DE00}"}}},
        {"empty subject", StoreProps().Text(PR_SUBJECT_W, L""), {{"Subject", ""}}},
        {"place", StoreProps().Text(Tag("A8208", PT_UNICODE), L"Room 5"), {{"Place", "Room 5"}}},
        {"body",
         StoreProps().Text(PR_BODY_W, L"one\r\ntwo"),
         {{"Description", "one{000D}{000A}two"}}},
        // The other body is not asked for then.
        {"empty body",
         StoreProps().Text(PR_BODY_W, L"").Bytes(0x10090102, PackedRtf("{\\rtf1 From RTF}")),
         {{"Description", ""}}},
        {"body of a line break",
         StoreProps().Text(PR_BODY_W, L"\r\n"),
         {{"Description", "{000D}{000A}"}}},
        {"RTF body",
         StoreProps().Bytes(0x10090102, PackedRtf("{\\rtf1 From RTF}")),
         {{"Description", "From RTF"}}},
        {"both bodies",
         StoreProps().Text(PR_BODY_W, L"plain").Bytes(0x10090102, PackedRtf("{\\rtf1 From RTF}")),
         {{"Description", "plain"}}},
        {"RTF without text", StoreProps().Bytes(0x10090102, PackedRtf("{\\rtf1}")), {}},
        {"broken RTF", StoreProps().Bytes(0x10090102, {1, 2, 3}), {}},
        // Reminders.
        {"reminder", Reminder(1, 15), {{"Reminder", "15"}}},
        {"reminder, all bits", Reminder(0xFFFF, 15), {{"Reminder", "15"}}},
        {"reminder at the start", Reminder(1, 0), {{"Reminder", std::nullopt}}}, // 0
        {"reminder behind the start", Reminder(1, -5), {{"Reminder", "-5"}}},
        {"reminder not set", Reminder(0, 15), {}},
        {"reminder without its flag", Reminder(std::nullopt, 15), {}},
        {"reminder without minutes", Reminder(1, std::nullopt), {}},
        // Busy.
        {"free", Busy(0), {}},
        {"tentative", Busy(1), {}},
        {"busy", Busy(2), {{"IsBusy", "-1"}}},
        {"out of office", Busy(3), {{"IsBusy", "-1"}}},
        {"elsewhere", Busy(4), {}},
        {"unknown status", Busy(-1), {}},
        // Times.
        {"timed",
         AllDay(DateOf(2024, 7, 1, 8, 0), DateOf(2024, 7, 1, 9, 15), 0),
         {{"StartTime", "2024-07-01 08:00:00"}, {"EndTime", "2024-07-01 09:15:00"}}},
        {"timed without the flag",
         StoreProps().Time(Tag("A820D", PT_SYSTIME), FileTimeOf(DateOf(2024, 7, 1, 8, 0))),
         {{"StartTime", "2024-07-01 08:00:00"}}},
        {"end alone",
         StoreProps().Time(Tag("A820E", PT_SYSTIME), FileTimeOf(DateOf(2024, 7, 1, 8, 0))),
         {{"EndTime", "2024-07-01 08:00:00"}}},
        {"timed in a zone",
         WithZone(kIndia, AllDay(DateOf(2024, 7, 1, 8, 0), DateOf(2024, 7, 1, 9, 15), 0)),
         {{"TimeZone", "India"},
          {"StartTime", "2024-07-01 08:00:00"},
          {"EndTime", "2024-07-01 09:15:00"}}},
        {"all-day in the machine's winter",
         AllDay(DateOf(2024, 1, 15, 5, 0), DateOf(2024, 1, 16, 5, 0)),
         {{"AllDay", "1"},
          {"StartTime", "2024-01-15 00:00:00"},
          {"EndTime", "2024-01-16 00:00:00"}}},
        {"all-day in the machine's summer",
         AllDay(DateOf(2024, 7, 15, 4, 0), DateOf(2024, 7, 16, 4, 0), 0xFFFF),
         {{"AllDay", "-1"},
          {"StartTime", "2024-07-15 00:00:00"},
          {"EndTime", "2024-07-16 00:00:00"}}},
        // 2024-03-10 has 23 hours there.
        {"all-day over the change",
         AllDay(DateOf(2024, 3, 10, 5, 0), DateOf(2024, 3, 11, 4, 0)),
         {{"AllDay", "1"},
          {"StartTime", "2024-03-10 00:00:00"},
          {"EndTime", "2024-03-11 00:00:00"}}},
        {"all-day two hours east",
         WithZone(FixedRules(-120), AllDay(DateOf(2024, 3, 4, 22, 0), DateOf(2024, 3, 5, 22, 0))),
         {{"TimeZone", "UTC"},
          {"AllDay", "1"},
          {"StartTime", "2024-03-05 00:00:00"},
          {"EndTime", "2024-03-06 00:00:00"}}},
        {"all-day in a zone with summer time",
         WithZone(kCentralEurope, AllDay(DateOf(2024, 7, 14, 22, 0), DateOf(2024, 7, 15, 22, 0))),
         {{"TimeZone", "Berlin"},
          {"AllDay", "1"},
          {"StartTime", "2024-07-15 00:00:00"},
          {"EndTime", "2024-07-16 00:00:00"}}},
        {"all-day to the west",
         WithZone(kIsland, AllDay(DateOf(2024, 7, 15, 3, 30), DateOf(2024, 7, 16, 3, 30))),
         {{"TimeZone", "Island"},
          {"AllDay", "1"},
          {"StartTime", "2024-07-15 00:00:00"},
          {"EndTime", "2024-07-16 00:00:00"}}},
        {"all-day by the definition",
         WithDefinition(Definition("India", {kIndia}),
                        AllDay(DateOf(2024, 1, 14, 18, 30), DateOf(2024, 1, 15, 18, 30))),
         {{"TimeZone", "India"},
          {"AllDay", "1"},
          {"StartTime", "2024-01-15 00:00:00"},
          {"EndTime", "2024-01-16 00:00:00"}}},
        // Zones.
        {"structure of a zone", WithZone(kEastern), {{"TimeZone", "Eastern"}}},
        {"structure with rules that none has",
         WithZone(SummerRules(-60, TransitionAt(4, 0, 1, 2), TransitionAt(9, 0, 1, 3))),
         {{"TimeZone", "Alger"}}},
        {"long structure", longStructure, {{"TimeZone", "Berlin"}}},
        {"short structure", shortStructure, {}},
        {"empty structure", emptyStructure, {}},
        {"short structure and definition", shortAndDefinition, {}},
        {"structure and definition", structureAndDefinition, {{"TimeZone", "Berlin"}}},
        {"definition of an unknown name",
         WithDefinition(Definition("Atlantis", {kIndia})),
         {{"TimeZone", "Atlantis"}}},
        {"definition with a long name",
         WithDefinition(Definition(longName, {kIndia})),
         {{"TimeZone", longName.substr(0, 31)}}},
        {"definition without a name",
         WithDefinition(Definition("", {kIndia}),
                        AllDay(DateOf(2024, 1, 14, 18, 30), DateOf(2024, 1, 15, 18, 30))),
         {{"AllDay", "1"},
          {"StartTime", "2024-01-15 00:00:00"},
          {"EndTime", "2024-01-16 00:00:00"}}},
        {"definition without rules", WithDefinition(Definition("India", {})), {}},
        {"definition of another version", WithDefinition(Definition("India", {kIndia}, 3)), {}},
        // Recurrences.
        {"recurring", Recurring(1, daily), {{"Recurrence", dailyText}}},
        {"recurring, all bits", Recurring(0xFFFF, daily), {{"Recurrence", dailyText}}},
        {"blob without recurring", Recurring(0, daily), {}},
        {"blob without the flag", Recurring(std::nullopt, daily), {}},
        {"recurring without blob", StoreProps().Number(Tag("A8223", PT_BOOLEAN), 1), {}},
        {"empty blob", Recurring(1, {}), {}},
        {"cut blob",
         Recurring(1, {daily.begin(), daily.begin() + static_cast<std::ptrdiff_t>(dailyLeast) - 1}),
         {}},
        {"blob of another type",
         StoreProps().Number(Tag("A8223", PT_BOOLEAN), 1).Text(Tag("A8216", PT_UNICODE), L"0430"),
         {}},
        {"exception with the appointment's texts",
         Recurring(1, DailyWithException().Bytes())
             .Text(PR_SUBJECT_W, L"Own subject")
             .Text(Tag("A8208", PT_UNICODE), L"Own place"),
         {{"Subject", "Own subject"},
          {"Place", "Own place"},
          {"Recurrence",
           "kind 1\ndaily.interval 1\nend.kind 1\nend.times 4\ndeleted0 2024-03-07 00:00\n"
           "modified0 2024-03-07 00:00\nmodified0.start 2024-03-07 10:00\n"
           "modified0.end 2024-03-07 11:00\nmodified0.original 2024-03-07 09:30\n"
           "modified0.subject Own subject\nmodified0.location Own place\n"}}},
        // What is told twice or of another type.
        {"values of other types",
         StoreProps()
             .Number(Tag("A8208", PT_LONG), 5)
             .Number(Tag("A820D", PT_LONG), 5)
             .Text(Tag("A8215", PT_UNICODE), L"x")
             .Text(Tag("A8205", PT_UNICODE), L"x")
             .Text(Tag("A8233", PT_UNICODE), L"x"),
         {}},
    };
    EXPECT_GE(std::size(cases), 40u);
    int number = 0;
    for (const Case& wanted : cases)
    {
        SCOPED_TRACE(wanted.what);
        const std::string name = "case " + std::to_string(number++);
        AddAppointment(name.c_str(), wanted.props);
        const ComPtr<INEntityItem> item = Read(name.c_str());
        ASSERT_TRUE(item);
        EXPECT_EQ(Expected(name.c_str(), wanted.differs), TextOfAppointment(item.Get()));
    }
}

TEST_F(AppointmentReadingTest, CutsALongDefinitionNameInTheZoneOnly)
{
    const std::string longName = "A zone with a name of forty characters..";
    zones.rules[std::wstring(longName.begin(), longName.end())] = kIndia;
    zones.rules.erase(L"India");
    AddAppointment("structure", WithZone(kIndia));
    EXPECT_EQ(Expected("structure", {{"TimeZone", longName.substr(0, 31)}}),
              TextOfAppointment(Read("structure").Get()));
}

TEST_F(AppointmentReadingTest, ReadsTheZonesOnceForATable)
{
    AddAppointment("ann", WithZone(kIndia));
    Open();
    zones.rules.clear();
    EXPECT_EQ(Expected("ann", {{"TimeZone", "India"}}), TextOfAppointment(Read("ann").Get()));
    Close();
    EXPECT_EQ(Expected("ann", {{"TimeZone", "UTC"}}), TextOfAppointment(Read("ann").Get()));
}

TEST_F(AppointmentReadingTest, GivesFolderAndEntryIdToTheItem)
{
    AddAppointment("ann", {});
    const ComPtr<INEntityItem> item = Read("ann");
    Bstr id;
    item->get_EntityID(id.Put());
    EXPECT_EQ(IdOf("ann"), TextOf(id.Get()));
    EXPECT_EQ(L"", FolderIDOf(item.Get()));
}

TEST_F(AppointmentReadingTest, WantsTheClassOfAppointmentsAlone)
{
    AddAppointment("ann", {});
    for (const wchar_t* const other :
         {L"IPM.Appointment.Special", L"ipm.appointment", L"IPM.Appointmen", L"IPM.Contact", L""})
        store.AddMessage(
            "other " + NarrowText(other), "calendar", StoreProps().Text(PR_MESSAGE_CLASS_W, other));
    store.AddMessage("classless", "calendar");
    AddAppointment("bob", {});
    Open();
    table->GetItemIDs();
    std::list<ItemEntry> entries;
    table->GetItemList(entries);
    ASSERT_EQ(2u, entries.size());
    EXPECT_EQ(IdOf("ann"), entries.front().rowEntryID);
    EXPECT_EQ(IdOf("bob"), entries.back().rowEntryID);

    BYTE id[] = {1};
    SPropValue row[2] = {};
    row[0].ulPropTag = PR_ENTRYID;
    row[0].Value.bin = {1, id};
    row[1].ulPropTag = PR_MESSAGE_CLASS_W;
    row[1].Value.lpszW = const_cast<wchar_t*>(L"IPM.Appointment");
    EXPECT_TRUE(table->IsWantedRow({2, row}));
    EXPECT_FALSE(table->IsWantedRow({1, row}));
    row[0].ulPropTag = CHANGE_PROP_TYPE(PR_ENTRYID, PT_ERROR);
    EXPECT_FALSE(table->IsWantedRow({2, row}));
}

TEST_F(AppointmentReadingTest, PutsNoPersistIdWhereTheMessageHasNoClass)
{
    store.AddMessage("classless", "calendar", StoreProps().Text(PR_SUBJECT_W, L"Subject"));
    const std::uint64_t time = FileTimeOf(DateOf(2024, 1, 2, 3, 4));
    store.SetTimes("classless", time, time);
    EXPECT_EQ(Expected("classless", {{"PersistID", std::nullopt}, {"Subject", "Subject"}}),
              TextOfAppointment(Read("classless").Get()));
}

TEST_F(AppointmentReadingTest, AsksForTheColumnsInTheirOrder)
{
    Open();
    const auto unspecified = [&](const char* name) { return Tag(name, PT_UNSPECIFIED); };
    EXPECT_THAT(table->GetPropertyNames(),
                ElementsAre(0x30080040u,
                            0x0037001Fu,
                            unspecified("C8503"),
                            unspecified("C8501"),
                            unspecified("A8208"),
                            unspecified("A8223"),
                            unspecified("A8216"),
                            unspecified("A8234"),
                            unspecified("A820D"),
                            unspecified("A820E"),
                            unspecified("A8215"),
                            unspecified("A8205"),
                            0x1000001Fu,
                            unspecified("A8233"),
                            unspecified("A825E"),
                            unspecified("A825F")));
    EXPECT_EQ((Lines{"IMAPIFolder(calendar).GetIDsFromNames("
                     "[{00062008-0000-0000-C000-000000000046} 8503 8501], 00000000)",
                     "MAPIFreeBuffer(names of calendar)",
                     "IMAPIFolder(calendar).GetIDsFromNames("
                     "[{00062002-0000-0000-C000-000000000046} 8208 8223 8216 8234 820D 820E 8215 "
                     "8205 8233 825E 825F], 00000000)",
                     "MAPIFreeBuffer(names of calendar)"}),
              store.Calls(kAllCalls));
    session->Helper()->Live().DetachAll();
    EXPECT_TRUE(table->GetPropertyNames().empty());
}

// The tag of an unknown name stands in its place, and reads as absent.
TEST_F(AppointmentReadingTest, LeavesOutTheZoneDefinitionsWhereEitherNameIsUnknown)
{
    for (const std::set<std::string>& forgotten : std::vector<std::set<std::string>>{
             {"A825E"}, {"A825F"}, {"A825E", "A825F"}, {"A825F", "A8208", "C8503"}})
    {
        ForgetNames(forgotten);
        StoreProps props = Busy(2);
        if (!forgotten.contains("A825E"))
            AddBlob(props, "A825E", Definition("India", {kIndia}));
        AddAppointment("ann", props);
        Open();
        const std::vector<ULONG> tags = table->GetPropertyNames();
        ASSERT_EQ(14u, tags.size());
        EXPECT_EQ(forgotten.contains("A8208") ? 0x0000000Au : Tag("A8208", PT_UNSPECIFIED),
                  tags[4]);
        EXPECT_EQ(Tag("A8205", PT_UNSPECIFIED), tags[11]);
        EXPECT_EQ(Expected("ann", {{"IsBusy", "-1"}}), TextOfAppointment(Read("ann").Get()));
    }
}

TEST_F(AppointmentReadingTest, ReadsOneAppointmentWithTheseCalls)
{
    AddAppointment("ann", StoreProps().Text(PR_BODY_W, L"plain"));
    Open();
    table->GetItemIDs();
    table->ResetItem();
    store.ClearRecord();
    table->GetNextItem();
    std::string tags = "30080040 0037001F";
    for (const char* const name : {"C8503",
                                   "C8501",
                                   "A8208",
                                   "A8223",
                                   "A8216",
                                   "A8234",
                                   "A820D",
                                   "A820E",
                                   "A8215",
                                   "A8205",
                                   "",
                                   "A8233",
                                   "A825E",
                                   "A825F"})
    {
        char text[16];
        std::snprintf(
            text, sizeof(text), " %08lX", *name ? Tag(name, PT_UNSPECIFIED) : 0x1000001Ful);
        tags += text;
    }
    EXPECT_EQ((Lines{"IMAPIFolder(calendar).OpenEntry(ann, null, 00000002, type)",
                     "IMAPIFolder(calendar).GetIDsFromNames("
                     "[{00062008-0000-0000-C000-000000000046} 8503 8501], 00000000)",
                     "MAPIFreeBuffer(names of calendar)",
                     "IMAPIFolder(calendar).GetIDsFromNames("
                     "[{00062002-0000-0000-C000-000000000046} 8208 8223 8216 8234 820D 820E 8215 "
                     "8205 8233 825E 825F], 00000000)",
                     "MAPIFreeBuffer(names of calendar)",
                     "IMessage(ann).GetProps([" + tags + "], 80000000)",
                     "IMessage(ann).QueryInterface(IMessage)",
                     "IMessage(ann).GetProps([0FFF0102 001A001F], 80000000)",
                     "MAPIFreeBuffer(props of ann)",
                     "MAPIFreeBuffer(props of ann)",
                     "release IMessage(ann)"}),
              store.Calls(kAllCalls));
}

TEST_F(AppointmentReadingTest, ReadsAnRtfBodyWithTheseCalls)
{
    AddAppointment("ann", StoreProps().Bytes(0x10090102, PackedRtf("{\\rtf1 From RTF}")));
    Open();
    table->GetItemByID(IdOf("ann"));
    const Lines calls = store.Calls(kAllCalls);
    ASSERT_GT(calls.size(), 8u);
    // Behind the reading of the message and of its own ID.
    EXPECT_EQ((Lines{"IMessage(ann).OpenProperty(10090102, IStream, 0, 00000000)",
                     "WrapCompressedRTFStream(IStream(ann 10090102 stream), 00000000)",
                     "IStream(rtf of ann 10090102 stream).Read(1024)",
                     "IStream(rtf of ann 10090102 stream).Read(1024)",
                     "IStream(rtf of ann 10090102 stream).Seek(0, 0)",
                     "IStream(rtf of ann 10090102 stream).Read(16)",
                     "release IStream(rtf of ann 10090102 stream)",
                     "release IStream(ann 10090102 stream)",
                     "MAPIFreeBuffer(props of ann)",
                     "release IMessage(ann)"}),
              Lines(calls.begin() + 9, calls.end()));
}

TEST_F(AppointmentReadingTest, WritesTheseLinesToTheLog)
{
    const ScopedLogSettings settings;
    DebugOutputCapture capture;
    AddAppointment(
        "ann",
        StoreProps().Text(PR_BODY_W, L"").Text(Tag("A8234", PT_UNICODE), L"(UTC+05:30) Delhi"));
    AddAppointment("bob", WithZone(kIndia));
    Open();
    capture.TakeLogMessages();
    const std::string opened =
        "===============CContentTable::GetItemByID hr = 0000000000000000! \r\n";
    const std::string columns =
        "===============CContentTable::GetPropertyNames cPropertyNames = 16! \r\n";
    const std::string values =
        "==========EnumerateProperties pMAPIProperty->GetProps, hr = (0X0000000000040380)! \r\n";
    table->GetItemByID(IdOf("ann"));
    EXPECT_EQ((Lines{opened,
                     columns,
                     values,
                     "-------------------- pAppoinment->put_TimeZone(Machine's own) "
                     "dispidTimeZoneDesc:<(UTC+05:30) Delhi>\r\n"}),
              capture.TakeLogMessages());
    table->GetItemByID(IdOf("bob"));
    const Lines lines = capture.TakeLogMessages();
    ASSERT_GE(lines.size(), 6u);
    EXPECT_EQ((Lines{opened,
                     columns,
                     values,
                     "-------------------- pAppoinment->put_TimeZone(India) "
                     "dispidTimeZoneDesc:<>\r\n",
                     "Get Description(PR_BODY) Failed, Get from PR_RTF_COMPRESSED agian",
                     "CRichEditHelper::Init"}),
              Lines(lines.begin(), lines.begin() + 6));
    // The converter is made once, and ends with the table.
    table->GetItemByID(IdOf("bob"));
    EXPECT_EQ((Lines{opened,
                     columns,
                     values,
                     "-------------------- pAppoinment->put_TimeZone(India) "
                     "dispidTimeZoneDesc:<>\r\n",
                     "Get Description(PR_BODY) Failed, Get from PR_RTF_COMPRESSED agian"}),
              capture.TakeLogMessages());
    table.reset();
    EXPECT_EQ(Lines{"CRichEditHelper::Uninit"}, capture.TakeLogMessages());
}

// --- Values as only a broken store gives them ---------------------------------------------------

TEST_F(AppointmentReadingTest, ReadsNothingBehindTheDeliveredCount)
{
    AddAppointment("ann", {});
    Open();
    std::vector<std::byte> definition = Definition("India", {kIndia});
    std::vector<SPropValue> values(16);
    for (SPropValue& value : values)
        value.ulPropTag = PROP_TAG(PT_ERROR, 0);
    values[14].ulPropTag = Tag("A825E", PT_BINARY);
    values[14].Value.bin = {static_cast<ULONG>(definition.size()),
                            reinterpret_cast<BYTE*>(definition.data())};
    const auto zoneOf = [&](ULONG count) {
        const auto item = RecordingAppointment::Make();
        table->FillItem(*item.Get(), {count, values.data()});
        for (const std::string& call : item->calls)
            if (call.starts_with("put TimeZone "))
                return call;
        return std::string();
    };
    // A column that was not asked for is not read either.
    EXPECT_EQ("put TimeZone [Machine's own]", zoneOf(15));
    // Once all names were known, the definition counts, whatever comes later.
    EXPECT_EQ(16u, table->GetPropertyNames().size());
    EXPECT_EQ("put TimeZone [India]", zoneOf(15));
    store.FailNext("IMAPIFolder(calendar).GetIDsFromNames([{00062002", StoreFault::CallFailed);
    EXPECT_EQ(14u, table->GetPropertyNames().size());
    EXPECT_EQ("put TimeZone [India]", zoneOf(15));
    EXPECT_EQ("put TimeZone [Machine's own]", zoneOf(14));
    EXPECT_EQ("put TimeZone [Machine's own]", zoneOf(0));
}

TEST_F(AppointmentReadingTest, TakesNullPointersForAbsentValues)
{
    Open();
    std::vector<SPropValue> values(14);
    for (const auto& [column, tag] : std::map<std::size_t, ULONG>{{1, PR_SUBJECT_W},
                                                                  {4, Tag("A8208", PT_UNICODE)},
                                                                  {6, Tag("A8216", PT_BINARY)},
                                                                  {7, Tag("A8234", PT_UNICODE)},
                                                                  {12, PR_BODY_W},
                                                                  {13, Tag("A8233", PT_BINARY)}})
        values[column].ulPropTag = tag;
    values[5].ulPropTag = Tag("A8223", PT_BOOLEAN);
    values[5].Value.b = 1;
    values[6].Value.bin = {48, nullptr};
    values[13].Value.bin = {48, nullptr};
    for (const std::size_t column : {0, 2, 3, 8, 9, 10, 11})
        values[column].ulPropTag = PROP_TAG(PT_ERROR, 0);
    const auto item = RecordingAppointment::Make();
    table->FillItem(*item.Get(), {14, values.data()});
    EXPECT_EQ((Lines{"put Reminder [4.2949673e+09]", "put TimeZone [Machine's own]"}), item->calls);
}

TEST_F(AppointmentReadingTest, LeavesAnItemAloneThatIsNoAppointment)
{
    AddAppointment("ann", StoreProps().Text(PR_SUBJECT_W, L"Subject"));
    Open();
    const auto item = RecordingAppointment::Make();
    item->isAppointment = false;
    SPropValue value = {};
    value.ulPropTag = PR_LAST_MODIFICATION_TIME;
    value.Value.ft = {0, 0x01DA0000};
    store.ClearRecord();
    table->FillItem(*item.Get(), {1, &value});
    EXPECT_TRUE(item->calls.empty());
    EXPECT_TRUE(store.Calls(kAllCalls).empty());
}

TEST_F(AppointmentReadingTest, GoesOnWhereThePutsFail)
{
    Open();
    SPropValue values[14] = {};
    for (SPropValue& value : values)
        value.ulPropTag = PROP_TAG(PT_ERROR, 0);
    wchar_t text[] = L"text";
    values[1].ulPropTag = PR_SUBJECT_W;
    values[1].Value.lpszW = text;
    values[12].ulPropTag = PR_BODY_W;
    values[12].Value.lpszW = text;
    const auto item = RecordingAppointment::Make();
    item->failing = {"put Subject", "put Reminder", "put TimeZone"};
    table->FillItem(*item.Get(), {14, values});
    EXPECT_EQ((Lines{"put Subject [text]",
                     "put Reminder [4.2949673e+09]",
                     "put TimeZone [Machine's own]",
                     "put Description [text]"}),
              item->calls);
}

TEST_F(AppointmentReadingTest, TakesTheRtfWhereTheBodyIsANullPointer)
{
    const ScopedLogSettings settings;
    DebugOutputCapture capture;
    AddAppointment(
        "ann",
        StoreProps().Text(PR_BODY_W, L"plain").Bytes(0x10090102, PackedRtf("{\\rtf1 From RTF}")));
    const std::string fallback =
        "Get Description(PR_BODY) Failed, Get from PR_RTF_COMPRESSED agian";
    EXPECT_EQ("put Description [plain]", CallsOfFilling("ann").back());
    EXPECT_EQ(0, std::ranges::count(capture.TakeLogMessages(), fallback));
    const Lines calls = CallsOfFilling("ann", [](SPropValue* columns) {
        columns[12].ulPropTag = PR_BODY_W;
        columns[12].Value.lpszW = nullptr;
    });
    EXPECT_EQ("put Description [From RTF]", calls.back());
    EXPECT_EQ(1, std::ranges::count(capture.TakeLogMessages(), fallback));
}

// Also where the value is what a new object has anyway.
TEST_F(AppointmentReadingTest, PutsEachValueThatIsThere)
{
    const auto putsOf = [&](const char* name, const StoreProps& props) {
        AddAppointment(name, props);
        Lines puts = CallsOfFilling(name);
        // But for those of every appointment: the two of the message, and the zone.
        std::erase_if(puts, [](const std::string& call) {
            return call.starts_with("put PersistID") || call.starts_with("put LastModif") ||
                   call == "put TimeZone [Machine's own]";
        });
        return puts;
    };
    const std::string noReminder = "put Reminder [4.2949673e+09]";
    EXPECT_EQ((Lines{noReminder}), putsOf("nothing", {}));
    EXPECT_EQ((Lines{noReminder, "put IsBusy [0]"}), putsOf("free", Busy(0)));
    EXPECT_EQ((Lines{noReminder, "put IsBusy [0]"}), putsOf("tentative", Busy(1)));
    EXPECT_EQ((Lines{noReminder, "put IsBusy [0]"}), putsOf("elsewhere", Busy(4)));
    EXPECT_EQ((Lines{noReminder, "put IsBusy [-1]"}), putsOf("out of office", Busy(3)));
    EXPECT_EQ((Lines{"put Reminder [0]"}), putsOf("at the start", Reminder(1, 0)));
    const auto allDay = [&](LONG truth) {
        return StoreProps().Number(Tag("A8215", PT_BOOLEAN), truth);
    };
    EXPECT_EQ((Lines{noReminder, "put AllDay [0]"}), putsOf("timed", allDay(0)));
    EXPECT_EQ((Lines{noReminder, "put AllDay [1]"}), putsOf("all-day", allDay(1)));
    EXPECT_EQ((Lines{noReminder, "put AllDay [-1]"}), putsOf("all bits", allDay(0xFFFF)));
}

// Recurrences come behind the texts that their exceptions take over.
TEST_F(AppointmentReadingTest, PutsThePropertiesInTheirOrder)
{
    StoreProps props = Recurring(1, DailyWithException().Bytes());
    props.Text(PR_SUBJECT_W, L"s").Text(Tag("A8208", PT_UNICODE), L"p").Text(PR_BODY_W, L"d");
    props.Number(Tag("C8503", PT_BOOLEAN), 1).Number(Tag("C8501", PT_LONG), 15);
    props.Number(Tag("A8215", PT_BOOLEAN), 0).Number(Tag("A8205", PT_LONG), 2);
    props.Time(Tag("A820D", PT_SYSTIME), FileTimeOf(DateOf(2024, 3, 5)));
    props.Time(Tag("A820E", PT_SYSTIME), FileTimeOf(DateOf(2024, 3, 6)));
    AddAppointment("ann", props);
    EXPECT_EQ((Lines{"put PersistID [" + NarrowText(IdOf("ann")) + "]",
                     "put LastModificationTime [45293.128]", // 2024-01-02 03:04
                     "put Subject [s]",
                     "put Reminder [15]",
                     "put Place [p]",
                     "get Subject",
                     "get Place",
                     "put RecurringInfo [1]",
                     "put TimeZone [Machine's own]",
                     "put AllDay [0]",
                     "put StartTime [45356]",
                     "put EndTime [45357]",
                     "put IsBusy [-1]",
                     "put Description [d]"}),
              CallsOfFilling("ann"));
}
