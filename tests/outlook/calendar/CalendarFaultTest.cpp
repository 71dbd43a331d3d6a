// Every call that reading, updating and adding an appointment makes, going wrong in each of the
// four ways in which a store may fail: what comes of it, and that nothing stays behind.
#include "outlook/calendar/CalendarFixture.h"
#include "outlook/calendar/ZoneBlobs.h"

#include <functional>
#include <iterator>

using Microsoft::WRL::ComPtr;
using Lines = std::vector<std::string>;

namespace
{
// One call of an operation by the beginning of its line, and what comes of each way of failing, in
// the order of kStoreFaults: out of memory, call failed, success with nothing, fewer values.
struct FaultRow
{
    std::string call;
    std::string outcomes[4];
};

class CalendarFaultTest : public CalendarTableTest
{
  protected:
    void Run(const std::function<void()>& prepare,
             const std::function<void()>& act,
             const std::function<std::string()>& outcome,
             const std::vector<FaultRow>& rows)
    {
        unsigned runs = 0;
        for (unsigned number = 1; number <= rows.size(); ++number)
        {
            for (std::size_t way = 0; way < std::size(kStoreFaults); ++way)
            {
                const FaultRow& row = rows[number - 1];
                SCOPED_TRACE(row.call + ": " + NameOf(kStoreFaults[way]));
                ForgetNames({});
                prepare();
                store.ClearRecord();
                store.Fail(number, kStoreFaults[way]);
                act();
                for (const RecordedStoreCall& call : store.Record())
                {
                    EXPECT_TRUE(call.number != number || call.text.starts_with(row.call))
                        << call.text;
                }
                EXPECT_FALSE(table->m_pCurrentEntity);
                EXPECT_EQ(row.outcomes[way], outcome());
                Close();
                EXPECT_TRUE(store.IsClean()) << store.Complaints();
                ++runs;
            }
        }
        // All calls of the operation that can fail are in the table.
        ForgetNames({});
        prepare();
        store.ClearRecord();
        act();
        EXPECT_EQ(rows.size(), store.FailableCalls());
        std::printf("[   CALLS  ] %zu calls, %u runs\n", rows.size(), runs);
    }

    // A message with a value for each property, its body as RTF alone.
    void AddFullAppointment()
    {
        BlobFields blob;
        blob.Pattern(0x200A, 0, 4320).Lists(0x2023, 10, {}, {});
        blob.Span(MinutesAt(2024, 3, 5), 0x5AE980DF);
        StoreProps props;
        const auto addBytes = [&](ULONG tag, const std::vector<std::byte>& bytes) {
            const auto* const begin = reinterpret_cast<const BYTE*>(bytes.data());
            props.Bytes(tag, {begin, begin + bytes.size()});
        };
        props.Text(PR_SUBJECT_W, L"Meeting").Text(Tag("A8208", PT_UNICODE), L"Room 5");
        props.Number(Tag("C8503", PT_BOOLEAN), 1).Number(Tag("C8501", PT_LONG), 15);
        props.Number(Tag("A8223", PT_BOOLEAN), 1).Number(Tag("A8215", PT_BOOLEAN), 0xFFFF);
        props.Number(Tag("A8205", PT_LONG), 2);
        props.Time(Tag("A820D", PT_SYSTIME), FileTimeOf(DateOf(2024, 1, 14, 18, 30)));
        props.Time(Tag("A820E", PT_SYSTIME), FileTimeOf(DateOf(2024, 1, 15, 18, 30)));
        addBytes(Tag("A8216", PT_BINARY), blob.Bytes());
        addBytes(Tag("A825E", PT_BINARY), Definition("India", {kIndia}));
        addBytes(Tag("A825F", PT_BINARY), Definition("India", {kIndia}));
        const std::string rtf = "{\\rtf1 From RTF}";
        BlobFields packed;
        packed.U32(static_cast<std::uint32_t>(rtf.size() + 12));
        packed.U32(static_cast<std::uint32_t>(rtf.size()));
        packed.U32(0x414C454D).U32(0).Text(rtf);
        addBytes(0x10090102, packed.Bytes());
        AddAppointment("ann", props);
    }
    std::string TextWith(const std::string& head, const std::string& tail)
    {
        return head + "LastModificationTime 2024-01-02 03:04:00\nSubject Meeting\n" + tail;
    }

    // An hour in Berlin, with a reminder and a daily rule.
    ComPtr<RecordingAppointment> NewItem()
    {
        const ComPtr<RecordingAppointment> item = RecordingAppointment::Make();
        item->texts = {{"Subject", L"Meeting"}, {"Place", L"Room 5"}, {"TimeZone", L"Berlin"}};
        item->startTime = DateOf(2024, 3, 5, 8, 30);
        item->endTime = DateOf(2024, 3, 5, 9, 30);
        item->reminder = 15;
        item->recurringInfo.eRecurType = Daily;
        item->recurringInfo.tDaily.ulIntervalDay = 1;
        return item;
    }
    // How many properties of each set a message has, and whether it has a class.
    std::string StoredIn(const char* name)
    {
        if (!store.Exists(name))
            return "none";
        int appointment = 0;
        int common = 0;
        bool hasClass = false;
        for (const std::string& line : store.PropsOf(name))
        {
            const std::string text = names.TextOf(std::stoul(line.substr(0, 8), nullptr, 16));
            appointment += text[0] == 'A';
            common += text[0] == 'C';
            hasClass = hasClass || text == "001A001F";
        }
        return std::to_string(appointment) + "+" + std::to_string(common) +
               (hasClass ? "" : " classless");
    }
};
} // namespace

TEST_F(CalendarFaultTest, ReadsWhatAStepCanGetWhereACallFails)
{
    ComPtr<INEntityItem> item;
    AddFullAppointment();
    const std::string id = "PersistID " + NarrowText(IdOf("ann")) + "\n";
    const std::string reminder = "Reminder 15\n";
    const std::string named = "Place Room 5\nkind 1\ndaily.interval 3\nTimeZone India\nAllDay -1\n"
                              "StartTime 2024-01-15 00:00:00\nEndTime 2024-01-16 00:00:00\n"
                              "IsBusy -1\n";
    const std::string body = "Description From RTF\n";
    // Without the definitions: midnight of India in the machine's zone, 5 hours west.
    const std::string undefined =
        "Place Room 5\nkind 1\ndaily.interval 3\nTimeZone Machine's own\nAllDay -1\n"
        "StartTime 2024-01-14 13:30:00\nEndTime 2024-01-15 13:30:00\nIsBusy -1\n";
    const std::string full = TextWith(id, reminder + named + body);
    const std::string bodiless = TextWith(id, reminder + named);
    const std::string nameless = TextWith(id, "Reminder -1\nTimeZone Machine's own\n" + body);
    const std::string unreminded = TextWith(id, "Reminder -1\n" + named + body);
    const std::string idless = TextWith("", reminder + named + body);
    Run(
        [&] {
            AddFullAppointment();
            Open();
        },
        [&] {
            table->GetItemByID(IdOf("ann"));
            item = CurrentItem(*table);
        },
        [&] { return item ? TextOfAppointment(std::exchange(item, nullptr).Get()) : "none"; },
        {
            {"IMAPIFolder(calendar).OpenEntry(", {"none", "none", "none", full}},
            {"IMAPIFolder(calendar).GetIDsFromNames([{00062008",
             {unreminded, unreminded, unreminded, unreminded}},
            {"IMAPIFolder(calendar).GetIDsFromNames([{00062002",
             {TextWith(id, "Reminder 15\nTimeZone Machine's own\n" + body),
              TextWith(id, "Reminder 15\nTimeZone Machine's own\n" + body),
              TextWith(id, "Reminder 15\nTimeZone Machine's own\n" + body),
              TextWith(id, reminder + undefined + body)}},
            {"IMessage(ann).GetProps([30080040 ", {"", "", "", full}},
            {"IMessage(ann).QueryInterface(IMessage)", {idless, idless, idless, full}},
            {"IMessage(ann).GetProps([0FFF0102 001A001F]", {idless, idless, idless, idless}},
            {"IMessage(ann).OpenProperty(", {bodiless, bodiless, bodiless, full}},
            {"WrapCompressedRTFStream(", {bodiless, bodiless, bodiless, full}},
            {"IStream(rtf of ann 10090102 stream).Read(1024)",
             {bodiless, bodiless, bodiless, full}},
            // The end of the stream, told in any way.
            {"IStream(rtf of ann 10090102 stream).Read(1024)", {full, full, full, full}},
            {"IStream(rtf of ann 10090102 stream).Seek(0, 0)",
             {bodiless, bodiless, bodiless, full}},
            // One byte fewer is the last brace.
            {"IStream(rtf of ann 10090102 stream).Read(16)", {bodiless, bodiless, bodiless, full}},
        });
}

TEST_F(CalendarFaultTest, UpdatesWhatItCanWhereACallFails)
{
    ComPtr<RecordingAppointment> item;
    BOOL result = 0;
    const auto updated = [](const std::string& stored) { return "1 " + stored; };
    Run(
        [&] {
            AddAppointment("ann", {});
            Open();
            table->GetItemIDs();
            table->ResetItem();
            item = NewItem();
            item->texts["EntityID"] = IdOf("ann");
        },
        [&] { result = table->UpdateItem(item.Get()); },
        [&] { return std::to_string(result) + " " + StoredIn("ann"); },
        {
            {"IMAPIFolder(calendar).OpenEntry(", {"0 0+0", "0 0+0", "0 0+0", updated("13+9")}},
            // The texts of the place and of the zone have no ID then; the last name is the zone's.
            {"IMAPIFolder(calendar).GetIDsFromNames([{00062002",
             {updated("0+9"), updated("0+9"), updated("0+9"), updated("12+9")}},
            {"IMAPIFolder(calendar).GetIDsFromNames([{00062008",
             {updated("13+0"), updated("13+0"), updated("13+0"), updated("13+8")}},
            // What SetProps says does not stop the save.
            {"IMessage(ann).SetProps(",
             {updated("0+0"), updated("0+0"), updated("0+0"), updated("13+8")}},
            {"IMessage(ann).SaveChanges(", {"0 0+0", "0 0+0", updated("0+0"), updated("13+9")}},
            {"IMessage(ann).GetProps(",
             {updated("13+9"), updated("13+9"), updated("13+9"), updated("13+9")}},
        });
}

TEST_F(CalendarFaultTest, AddsWhatItCanWhereACallFails)
{
    ComPtr<RecordingAppointment> item;
    std::wstring id;
    const std::string added = "added 13+9";
    Run(
        [&] {
            Open();
            table->ResetItem();
            item = NewItem();
        },
        [&] {
            std::wstring folderID;
            id = table->AddItem(item.Get(), folderID);
        },
        [&] { return (id.empty() ? "nothing " : "added ") + StoredIn("new 1"); },
        {
            {"IMAPIFolder(calendar).QueryInterface(IMAPIFolder)",
             {"nothing none", "nothing none", "nothing none", added}},
            {"IMAPIFolder(calendar).CreateMessage(",
             {"nothing none", "nothing none", "nothing none", added}},
            {"IMessage(new 1).QueryInterface(IMAPIProp)",
             {"nothing none", "nothing none", "nothing none", added}},
            {"IMAPIFolder(calendar).GetIDsFromNames([{00062002",
             {"added 0+9", "added 0+9", "added 0+9", "added 12+9"}},
            {"IMAPIFolder(calendar).GetIDsFromNames([{00062008",
             {"added 13+0", "added 13+0", "added 13+0", "added 13+8"}},
            {"IMessage(new 1).SetProps(",
             {"added 0+0 classless", "added 0+0 classless", "added 0+0 classless", "added 13+8"}},
            {"IMessage(new 1).SaveChanges(",
             {"nothing none", "nothing none", "nothing none", added}},
            {"IMessage(new 1).GetProps(",
             {"nothing 13+9", "nothing 13+9", "nothing 13+9", "nothing 13+9"}},
        });
}
