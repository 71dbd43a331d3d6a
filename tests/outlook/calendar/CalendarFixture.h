// A calendar table over the recording store, with zones from a fixed table, and texts of the
// appointments and values that come out of it.
#pragma once

#include "icalendar/RecordingAppointment.h"
#include "outlook/calendar/AppointmentLines.h"
#include "outlook/calendar/FixedZones.h"
#include "outlook/calendar/OutlookCalendarTable.h"
#include "outlook/store/TableFixture.h"

#include <map>
#include <string>
#include <vector>

// The table with the hooks that a test calls itself.
class TestCalendarTable : public COutlookCalendarTable
{
  public:
    using COutlookCalendarTable::COutlookCalendarTable;
    using COutlookCalendarTable::FillItem;
    using COutlookCalendarTable::GetPropertyNames;
    using COutlookCalendarTable::IsWantedRow;
    using COutlookCalendarTable::m_pCurrentEntity;
    using COutlookCalendarTable::ReadItem;
};

// Names that appointments have in the store: "A820D" and "C8503" for a number of the set of
// appointments and of the common one.
class AppointmentTagNames
{
  public:
    static GUID Appointment() { return {0x00062002, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}}; }
    static GUID Common() { return {0x00062008, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}}; }

    // Makes the name known to the store.
    void Add(RecordingStore& store, const std::string& name)
    {
        const LONG number = static_cast<LONG>(std::stoul(name.substr(1), nullptr, 16));
        const ULONG id = store.NameProperty(name[0] == 'A' ? Appointment() : Common(), number);
        m_ids[name] = id;
        m_names[id] = name;
    }
    // The tag of a name in that type.
    ULONG Tag(const std::string& name, ULONG type) const { return PROP_TAG(type, m_ids.at(name)); }
    // "A820D 0040", or "001A001F" for what has no name.
    std::string TextOf(ULONG tag) const
    {
        char text[16];
        const auto name = m_names.find(PROP_ID(tag));
        if (name == m_names.end())
            std::snprintf(text, sizeof(text), "%08lX", tag);
        else
            std::snprintf(text, sizeof(text), "%s %04lX", name->second.c_str(), PROP_TYPE(tag));
        return text;
    }

  private:
    std::map<std::string, ULONG> m_ids;
    std::map<ULONG, std::string> m_names;
};

class CalendarTableTest : public testing::Test
{
  protected:
    CalendarTableTest()
    {
        zones.rules = {{L"Berlin", kCentralEurope},
                       {L"Eastern", kEastern},
                       {L"India", kIndia},
                       {L"Island", kIsland},
                       {L"Alger", FixedRules(-60)}};
        zones.displays = {{L"Berlin", L"(UTC+01:00) Berlin"}, {L"India", L"(UTC+05:30) Delhi"}};
        SetMachine(zones, kEastern, L"Machine's own");
        Fill();
    }
    ~CalendarTableTest() override
    {
        Close();
        EXPECT_TRUE(store.IsClean()) << store.Complaints();
    }

    // The folders and the names of appointments; not in the order in which they are looked up.
    void Fill()
    {
        store.AddUsualFolders();
        for (const char* const name :
             {"A8234", "A8205", "C851F", "A8208", "A820D", "A820E", "C8501", "A8213",
              "A8215", "A8216", "A8223", "C8503", "A8231", "A8233", "A8235", "A8236",
              "A825E", "A825F", "C8502", "C8510", "C8516", "C8517", "C851C", "C851E"})
            if (!unknown.contains(name))
                names.Add(store, name);
        store.SetClock(FileTimeOf(DateOf(2024, 1, 10)), 0);
    }
    // As another store, which does not know these names.
    void ForgetNames(std::set<std::string> forgotten)
    {
        Close();
        store.Reset();
        unknown = std::move(forgotten);
        names = {};
        Fill();
    }

    static std::uint64_t FileTimeOf(DATE date)
    {
        // 1899-12-30 is day 109205 from 1601; whole minutes.
        return static_cast<std::uint64_t>((date + 109205.0) * 1440.0 + 0.5) * 600'000'000;
    }
    ULONG Tag(const char* name, ULONG type) const { return names.Tag(name, type); }

    void Open()
    {
        if (table)
            return;
        session = std::make_unique<StoreSession>();
        folder = session->OpenFolder(store.EntryIdOf("calendar"));
        table = std::make_unique<TestCalendarTable>(folder.Get(), session->Helper(), zones);
        store.ClearRecord();
    }
    void Close()
    {
        table.reset();
        folder.Reset();
        session.reset();
    }

    // A message of the calendar, modified on 2024-01-02 03:04.
    void AddAppointment(const char* name, StoreProps props)
    {
        store.AddMessage(name, "calendar", props.Text(PR_MESSAGE_CLASS_W, L"IPM.Appointment"));
        const std::uint64_t time = FileTimeOf(DateOf(2024, 1, 2, 3, 4));
        store.SetTimes(name, time, time);
    }
    std::wstring IdOf(const char* name) const { return HexOf(store.EntryIdOf(name)); }

    RecordingStore store;
    AppointmentTagNames names;
    std::set<std::string> unknown;
    FixedZones zones;
    std::unique_ptr<StoreSession> session;
    Microsoft::WRL::ComPtr<IMAPIFolder> folder;
    std::unique_ptr<TestCalendarTable> table;
};
