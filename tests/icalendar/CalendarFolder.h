// What the tests of the calendar store share: a folder of .ics files, a calendar over it, and fixed
// sources of time, zone and IDs.
#pragma once

#include "icalendar/RecordingAppointment.h"
#include "icalendar/WindowsMailCalendar.h"
#include "platform/Bstr.h"
#include "platform/GuidSource.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>
#include <vector>

// Lines of a file, each ended by CR LF.
inline std::string Lines(std::initializer_list<std::string> lines)
{
    std::string text;
    for (const std::string& line : lines)
        text += line + "\r\n";
    return text;
}

// A file with one event, given by its lines.
inline std::string FileWith(const std::string& eventLines)
{
    return Lines({"BEGIN:VCALENDAR", "VERSION:2.0", "BEGIN:VEVENT"}) + eventLines +
           Lines({"END:VEVENT", "END:VCALENDAR"});
}

// The same with a zone of that name and offset before it.
inline std::string FileWithZone(const std::string& offset, const std::string& eventLines)
{
    return Lines({"BEGIN:VCALENDAR",
                  "BEGIN:VTIMEZONE",
                  "TZID:Zone",
                  "BEGIN:STANDARD",
                  "TZNAME:Zone Name",
                  "TZOFFSETTO:" + offset,
                  "END:STANDARD",
                  "END:VTIMEZONE",
                  "BEGIN:VEVENT"}) +
           eventLines + Lines({"END:VEVENT", "END:VCALENDAR"});
}

class CalendarFolderTest : public testing::Test
{
  protected:
    using Item = Microsoft::WRL::ComPtr<INEntityItem>;
    using Appointment = Microsoft::WRL::ComPtr<INAppointment>;

    CalendarFolderTest()
        : m_folder(testing::UnitTest::GetInstance()->current_test_info()->name()),
          m_guids([this] { return L"{GUID-" + std::to_wstring(++m_guidCount) + L"}"; })
    {
        m_sources.zone = [this] {
            TIME_ZONE_INFORMATION zone{};
            wcscpy(zone.StandardName, L"Machine Zone");
            zone.Bias = m_biasMinutes;
            return zone;
        };
        m_sources.utcNow = [] {
            SYSTEMTIME now{};
            now.wYear = 2024;
            now.wMonth = 3;
            now.wDay = 5;
            now.wHour = 6;
            now.wMinute = 7;
            now.wSecond = 8;
            return now;
        };
    }

    std::wstring Folder() const { return m_folder.Path().wstring() + L"\\"; }
    void Write(const std::wstring& name, const std::string& bytes) const
    {
        std::ofstream(m_folder.Path() / name, std::ios::binary)
            .write(bytes.data(), std::ssize(bytes));
    }
    std::string Read(const std::wstring& name) const
    {
        std::ifstream file(m_folder.Path() / name, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    bool Exists(const std::wstring& name) const
    {
        return std::filesystem::exists(m_folder.Path() / name);
    }

    std::unique_ptr<CWindowsMailCalendar> Calendar() const
    {
        return std::make_unique<CWindowsMailCalendar>(Folder(), m_sources);
    }
    std::unique_ptr<CWindowsMailCalendar> LoadedCalendar() const
    {
        auto calendar = Calendar();
        calendar->GetItemIDs();
        calendar->ResetItem();
        return calendar;
    }

    // Tables make appointments that tell their calls; the last one made stands in object.
    void RecordItemsIn(Microsoft::WRL::ComPtr<RecordingAppointment>& object)
    {
        m_sources.createItem = [&object](INEntityItem** item) {
            object = RecordingAppointment::Make();
            object->AddRef();
            *item = object.Get();
            return S_OK;
        };
    }

    static Item Current(IEnumerator& calendar)
    {
        Item item;
        calendar.GetCurrentItem(&item);
        return item;
    }
    // The next item as an appointment; null at the end.
    static Appointment Next(IEnumerator& calendar)
    {
        calendar.GetNextItem();
        Appointment appointment;
        if (const Item item = Current(calendar))
            item.As(&appointment);
        return appointment;
    }
    static std::wstring IdOf(INEntityItem* item)
    {
        Bstr id;
        return item && SUCCEEDED(item->get_EntityID(id.Put())) ? TextOf(id.Get()) : L"(none)";
    }
    static std::wstring IdOf(const Appointment& appointment)
    {
        Item item;
        if (appointment)
            appointment.As(&item);
        return IdOf(item.Get());
    }
    // The IDs of all items in order.
    static std::vector<std::wstring> Walk(IEnumerator& calendar)
    {
        std::vector<std::wstring> ids;
        calendar.ResetItem();
        while (const Appointment appointment = Next(calendar))
            ids.push_back(IdOf(appointment));
        return ids;
    }
    static std::wstring Text(INAppointment* item, HRESULT (INAppointment::*get)(BSTR*))
    {
        Bstr text;
        EXPECT_EQ(S_OK, (item->*get)(text.Put()));
        return TextOf(text.Get());
    }
    template <typename T> static T Value(INAppointment* item, HRESULT (INAppointment::*get)(T*))
    {
        T value{};
        EXPECT_EQ(S_OK, (item->*get)(&value));
        return value;
    }
    // A new appointment object of the server's own.
    static Item NewItem(const wchar_t* subject, DATE utcStart, DATE utcEnd)
    {
        Item item;
        EXPECT_EQ(S_OK, CalendarSources().createItem(&item));
        Appointment appointment;
        EXPECT_EQ(S_OK, item.As(&appointment));
        appointment->put_Subject(Bstr(subject).Get());
        appointment->put_StartTime(utcStart);
        appointment->put_EndTime(utcEnd);
        return item;
    }
    static std::wstring Add(IEnumerator& calendar, INEntityItem* item)
    {
        std::wstring folderId = L"untouched";
        std::wstring id = calendar.AddItem(item, folderId);
        EXPECT_EQ(L"untouched", folderId);
        return id;
    }

    LONG m_biasMinutes = -120; // west of UTC: two hours east
    TempFolder m_folder;
    CalendarSources m_sources;

  private:
    int m_guidCount = 0;
    ScopedGuidSource m_guids;
};

// 2024-06-03 00:00 as days since 1899-12-30: 45,292 for 2024-01-01 and 154 days on.
inline constexpr DATE kThirdOfJune = 45446.0;
inline constexpr DATE kHour = 1.0 / 24.0;
