// What a hostile store answers to each call of loading, reading, adding, updating and deleting of
// series with exceptions: nothing falls, leaks, goes on for ever, or takes anything else from the
// store.
#include "outlook/calendar/CalendarFixture.h"
#include "outlook/calendar/ZoneBlobs.h"
#include "tests/outlook/store/FaultSession.h"
#include "tests/recordingstore/FaultHarness.h"

using Microsoft::WRL::ComPtr;

namespace
{
// As the text of a record tells them.
constexpr char kExceptions[] =
    "deleted0 2024-03-08 00:00\ndeleted1 2024-03-11 00:00\n"
    "modified0 2024-03-11 00:00\nmodified0.start 2024-03-12 10:00\n"
    "modified0.end 2024-03-12 11:00\nmodified0.original 2024-03-11 09:30\n"
    "modified0.subject Moved\nmodified0.location Room 7\n";

// The fixture's contents stand in the stores of the harness, which come one at a time.
class HostileCalendarTest : public CalendarTableTest
{
  protected:
    static std::vector<BYTE> Raw(const std::vector<std::byte>& bytes)
    {
        const auto* const begin = reinterpret_cast<const BYTE*>(bytes.data());
        return {begin, begin + bytes.size()};
    }

    // Every third day from 2024-03-05 on; the second instance is deleted, the third has moved.
    static BlobFields Series()
    {
        const std::uint32_t deleted = MinutesAt(2024, 3, 8);
        const std::uint32_t moved = MinutesAt(2024, 3, 11);
        BlobFields blob;
        blob.Pattern(0x200A, 0, 4320).Lists(0x2023, 10, {deleted, moved}, {moved});
        blob.Span(MinutesAt(2024, 3, 5), 0x5AE980DF, 1);
        blob.U32(MinutesAt(2024, 3, 12, 10)).U32(MinutesAt(2024, 3, 12, 11));
        blob.U32(MinutesAt(2024, 3, 11, 9, 30));
        // Overrides subject, place and attachment, in the order of their bits.
        blob.U16(0x0051).U16(6).U16(5).Text("Moved").U16(7).U16(6).Text("Room 7").U32(1);
        return blob;
    }

    // A series with zones, a reminder, a body of RTF alone and the attachment of its exception.
    void FillHostile()
    {
        ForgetNames({});
        const std::string rtf = "{\\rtf1 From RTF}";
        BlobFields packed;
        packed.U32(static_cast<std::uint32_t>(rtf.size() + 12));
        packed.U32(static_cast<std::uint32_t>(rtf.size()));
        packed.U32(0x414C454D).U32(0).Text(rtf);
        AddAppointment("ann",
                       StoreProps()
                           .Text(PR_SUBJECT_W, L"Meeting")
                           .Text(Tag("A8208", PT_UNICODE), L"Room 5")
                           .Number(Tag("C8503", PT_BOOLEAN), 1)
                           .Number(Tag("C8501", PT_LONG), 15)
                           .Number(Tag("A8223", PT_BOOLEAN), 1)
                           .Number(Tag("A8205", PT_LONG), 2)
                           .Time(Tag("A820D", PT_SYSTIME), FileTimeOf(DateOf(2024, 1, 14, 18, 30)))
                           .Time(Tag("A820E", PT_SYSTIME), FileTimeOf(DateOf(2024, 1, 15, 18, 30)))
                           .Bytes(Tag("A8216", PT_BINARY), Raw(Series().Bytes()))
                           .Bytes(Tag("A825E", PT_BINARY), Raw(Definition("India", {kIndia})))
                           .Bytes(Tag("A825F", PT_BINARY), Raw(Definition("India", {kIndia})))
                           .Bytes(0x10090102, Raw(packed.Bytes())));
        store.AddAttachment("ann", StoreProps().Bytes(0x37010102, {1, 2, 3}));
        store.AddMessage(
            "letter",
            "calendar",
            StoreProps().Text(PR_MESSAGE_CLASS_W, L"IPM.Note").Text(PR_BODY_W, L"kept"));
        folderID = store.EntryIdOf("calendar");
        annID = IdOf("ann");
    }
    ComPtr<RecordingAppointment> NewItem(const std::wstring& id)
    {
        const ComPtr<RecordingAppointment> item = RecordingAppointment::Make();
        item->texts = {{"Subject", L"Meeting"}, {"Place", L"Room 5"}, {"TimeZone", L"Berlin"}};
        if (!id.empty())
            item->texts["EntityID"] = id;
        item->startTime = DateOf(2024, 3, 5, 8, 30);
        item->endTime = DateOf(2024, 3, 5, 9, 30);
        item->recurringInfo.eRecurType = Daily;
        item->recurringInfo.tDaily.ulIntervalDay = 1;
        item->recurringInfo.arrDeletedInstance[0] = DateOf(2024, 3, 8);
        item->recurringInfo.arrDeletedInstance[1] = DateOf(2024, 3, 11);
        _tagModifiedInstanceInfo& moved = item->recurringInfo.arrModifiedInstance[0];
        moved.dtModifiedDate = DateOf(2024, 3, 11);
        moved.dtStartDateTime = DateOf(2024, 3, 12, 10);
        moved.dtEndDateTime = DateOf(2024, 3, 12, 11);
        moved.dtOriginalDateTime = DateOf(2024, 3, 11, 9, 30);
        PutText(L"Moved", moved.szSubject);
        PutText(L"Room 7", moved.szLocation);
        return item;
    }

    // What a table of its own reads of the series' exceptions.
    std::string ExceptionsIn(const std::string& message)
    {
        if (message.empty())
            return {};
        const FaultSession fresh;
        const auto calendar = fresh.Open<IMAPIFolder>(folderID, MAPI_FOLDER);
        TestCalendarTable held(calendar.Get(), fresh.Helper(), zones);
        held.GetItemByID(IdOf(message.c_str()));
        const auto appointment = QueryItem<INAppointment>(CurrentItem(held).Get());
        _tagRecurringInfo record = NoRecurrence();
        if (appointment)
            appointment->get_RecurringInfo(&record);
        const std::string text = TextOf(record);
        return text.substr(std::min(text.find("deleted0"), text.size()));
    }

    // series:  the message that holds the series afterwards; empty where none is left.
    // keptToo: what else no answer may change.
    void Run(const char* name,
             const std::function<void(TestCalendarTable&)>& work,
             const std::string& series,
             const std::vector<std::string>& keptToo)
    {
        const auto action = [&] {
            const FaultSession faulty;
            const auto calendar = faulty.Open<IMAPIFolder>(folderID, MAPI_FOLDER);
            if (!calendar)
                return; // the answer was to the session's own call
            TestCalendarTable held(calendar.Get(), faulty.Helper(), zones);
            work(held);
        };
        FillHostile();
        action();
        EXPECT_EQ(series.empty() ? "" : kExceptions, ExceptionsIn(series));
        FaultScenario scenario = {
            .name = name,
            .setUp = [this](RecordingStore&) { FillHostile(); },
            .action = action,
            .check = nullptr,
            .bystanders = {"letter", "calendar", "contacts", "inbox", "subtree"},
        };
        scenario.bystanders.insert(scenario.bystanders.end(), keptToo.begin(), keptToo.end());
        RunHostileAnswers(scenario);
    }

    std::vector<BYTE> folderID;
    std::wstring annID;
};
} // namespace

TEST_F(HostileCalendarTest, LoadingAndReading)
{
    Run("load and read appointments",
        [](TestCalendarTable& held) {
            held.GetItemIDs();
            held.ResetItem();
            held.GetNextItem();
            ExpectEnd(held);
        },
        "ann",
        {"ann", "ann#0"});
}

TEST_F(HostileCalendarTest, Adding)
{
    Run("add an appointment",
        [this](TestCalendarTable& held) {
            std::wstring folderKey;
            held.AddItem(NewItem({}).Get(), folderKey);
        },
        "new 1",
        {"ann", "ann#0"});
}

TEST_F(HostileCalendarTest, Updating)
{
    Run("update an appointment",
        [this](TestCalendarTable& held) {
            held.GetItemIDs();
            held.ResetItem();
            held.UpdateItem(NewItem(annID).Get());
        },
        "ann",
        {"ann#0"});
}

TEST_F(HostileCalendarTest, Deleting)
{
    Run("delete an appointment",
        [this](TestCalendarTable& held) {
            held.GetItemIDs();
            held.DeleteItem(annID);
        },
        {},
        {});
}
