// What a hostile store answers to each call of loading, reading, adding, updating and deleting of
// appointments: nothing falls, leaks, goes on for ever, or takes anything else from the store.
#include "outlook/calendar/CalendarFixture.h"
#include "outlook/calendar/ZoneBlobs.h"
#include "tests/outlook/store/FaultSession.h"
#include "tests/recordingstore/FaultHarness.h"

using Microsoft::WRL::ComPtr;

namespace
{
// The fixture's contents stand in the stores of the harness, which come one at a time.
class HostileCalendarTest : public CalendarTableTest
{
  protected:
    static std::vector<BYTE> Raw(const std::vector<std::byte>& bytes)
    {
        const auto* const begin = reinterpret_cast<const BYTE*>(bytes.data());
        return {begin, begin + bytes.size()};
    }

    // A daily appointment with a changed instance, zones, a reminder and a body of RTF alone.
    void FillHostile()
    {
        ForgetNames({});
        BlobFields blob;
        blob.Pattern(0x200A, 0, 4320).Lists(0x2023, 10, {}, {});
        blob.Span(MinutesAt(2024, 3, 5), 0x5AE980DF);
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
                           .Bytes(Tag("A8216", PT_BINARY), Raw(blob.Bytes()))
                           .Bytes(Tag("A825E", PT_BINARY), Raw(Definition("India", {kIndia})))
                           .Bytes(Tag("A825F", PT_BINARY), Raw(Definition("India", {kIndia})))
                           .Bytes(0x10090102, Raw(packed.Bytes())));
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
        return item;
    }

    // keptToo: what else no answer may change.
    void Run(const char* name,
             const std::function<void(TestCalendarTable&)>& work,
             const std::vector<std::string>& keptToo)
    {
        FaultScenario scenario = {
            .name = name,
            .setUp = [this](RecordingStore&) { FillHostile(); },
            .action =
                [&] {
                    const FaultSession faulty;
                    const auto calendar = faulty.Open<IMAPIFolder>(folderID, MAPI_FOLDER);
                    if (!calendar)
                        return; // the answer was to the session's own call
                    TestCalendarTable held(calendar.Get(), faulty.Helper(), zones);
                    work(held);
                },
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
        {"ann"});
}

TEST_F(HostileCalendarTest, Adding)
{
    Run("add an appointment",
        [this](TestCalendarTable& held) {
            std::wstring folderKey;
            held.AddItem(NewItem({}).Get(), folderKey);
        },
        {"ann"});
}

TEST_F(HostileCalendarTest, Updating)
{
    Run("update an appointment",
        [this](TestCalendarTable& held) {
            held.GetItemIDs();
            held.ResetItem();
            held.UpdateItem(NewItem(annID).Get());
        },
        {});
}

TEST_F(HostileCalendarTest, Deleting)
{
    Run("delete an appointment",
        [this](TestCalendarTable& held) {
            held.GetItemIDs();
            held.DeleteItem(annID);
        },
        {});
}
