// Calendars of other programs, through the whole store: file, items, file.
#include "icalendar/CalendarFolder.h"
#include "icalendar/RecordingAppointment.h"
#include "icalendar/SavedText.h"
#include "support/TestPaths.h"

#include <iostream>

namespace
{
namespace fs = std::filesystem;
} // namespace

class WindowsMailCalendarDataTest : public CalendarFolderTest
{
  protected:
    // All that clients see of the items, as one text.
    static std::string Seen(IEnumerator& calendar)
    {
        std::wstring text;
        calendar.ResetItem();
        while (const Appointment item = Next(calendar))
        {
            text += IdOf(item) + L"|" + Text(item.Get(), &INAppointment::get_PersistID) + L"|" +
                    Text(item.Get(), &INAppointment::get_Subject) + L"|" +
                    Text(item.Get(), &INAppointment::get_Place) + L"|" +
                    Text(item.Get(), &INAppointment::get_Description) + L"|" +
                    Text(item.Get(), &INAppointment::get_TimeZone) + L"|" +
                    std::to_wstring(Value(item.Get(), &INAppointment::get_StartTime)) + L"|" +
                    std::to_wstring(Value(item.Get(), &INAppointment::get_EndTime)) + L"|" +
                    std::to_wstring(Value(item.Get(), &INAppointment::get_AllDay)) + L"|" +
                    std::to_wstring(Value(item.Get(), &INAppointment::get_Reminder)) + L"|";
            const auto record = std::make_unique<_tagRecurringInfo>();
            EXPECT_EQ(S_OK, item->get_RecurringInfo(record.get()));
            const auto* bytes = reinterpret_cast<const unsigned char*>(record.get());
            for (std::size_t i = 0; i < offsetof(_tagRecurringInfo, arrDeletedInstance); ++i)
                text += static_cast<wchar_t>(L'a' + bytes[i] % 26);
            text += L"\n";
        }
        std::string narrow;
        for (const wchar_t unit : text)
            narrow += static_cast<char>(unit < 0x80 ? unit : '?');
        return narrow;
    }

    // Saves the file that holds the first item, without a change: an item that is no appointment
    // gives nothing but its ID.
    static bool SaveUnchanged(IEnumerator& calendar)
    {
        calendar.ResetItem();
        const Appointment first = Next(calendar);
        if (!first)
            return false;
        const auto item = RecordingAppointment::Make();
        item->isAppointment = false;
        item->texts["EntityID"] = IdOf(first);
        return calendar.UpdateItem(item.Get()) == 1;
    }
};

TEST_F(WindowsMailCalendarDataTest, KeepsInASecondSaveWhatTheFirstKept)
{
    const fs::path folder = SharedData() / "ics";
    std::error_code error;
    if (!fs::is_directory(folder, error))
    {
        std::cout << "No real calendars: neither PIM_SHARED_DATA nor shared/data beside the "
                     "repository names a folder with them. The samples in tests/data/ics are "
                     "tested natively.\n";
        return;
    }
    // New alarms get new IDs at every save; here they have one.
    const ScopedGuidSource oneId([] { return std::wstring(L"{ID}"); });
    std::size_t fileCount = 0;
    std::size_t savedCount = 0;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder))
    {
        if (entry.path().extension() != ".ics")
            continue;
        SCOPED_TRACE(entry.path().string());
        ++fileCount;
        std::ifstream source(entry.path(), std::ios::binary);
        Write(L"a.ics", {std::istreambuf_iterator<char>(source), {}});
        const auto calendar = LoadedCalendar();
        if (!SaveUnchanged(*calendar))
            continue;
        ++savedCount;
        const std::string once = Read(L"a.ics");
        calendar->GetItemIDs();
        const std::string seen = Seen(*calendar);
        if (!SaveUnchanged(*calendar))
            continue; // nothing that could be read back was left
        const std::string twice = Read(L"a.ics");
        EXPECT_EQ(WithoutGrowingQuotes(once), WithoutGrowingQuotes(twice));
        calendar->GetItemIDs();
        EXPECT_EQ(seen, Seen(*calendar));
    }
    std::cout << fileCount << " real calendars, " << savedCount << " with items saved again\n";
    EXPECT_GT(savedCount, fileCount / 2);
}
