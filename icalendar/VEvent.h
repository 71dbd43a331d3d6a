// VEVENT: the property lines of one event as plain fields, and back. Properties without a field
// here are dropped, exceptions to a recurrence among them. Nothing is validated. Portable.
#pragma once

#include "icalendar/VObject.h"
#include "platform/CompactFields.h"
#include "platform/Types.h"

#include <array>
#include <cstdint>
#include <memory>
#include <type_traits>

// In the order of the weekday flags; Sunday first.
inline constexpr std::array<std::wstring_view, 7> kWeekdayNames = {
    L"SU", L"MO", L"TU", L"WE", L"TH", L"FR", L"SA"};

// The fields that are no texts. Every record holds the digits as they stand in the file; year 0:
// never set.
struct EventNumbers
{
    SYSTEMTIME stamp{};
    SYSTEMTIME start{};
    SYSTEMTIME end{};
    SYSTEMTIME until{};
    std::int32_t frequency = 0; // a _tagNAppointmentRecurringType; 0: no recurrence
    std::int32_t interval = 1;
    std::int32_t nth = 0; // ordinal of the weekdays, negative from the end
    std::int32_t month = 0;
    std::int32_t monthDay = 0;
    std::int32_t count = 0;
    std::array<bool, 7> weekdays{};
    bool hasWeekdays = false; // a BYDAY was there, whether it named a day or not
    bool allDay = false;      // DTSTART is a date
    std::array<bool, 3>
        unused{}; // in the place of padding, which copies of the bytes would take along
};
static_assert(std::has_unique_object_representations_v<EventNumbers>);

template <typename Text> struct EventProperties : EventNumbers
{
    Text uid;
    Text summary;
    Text location;
    Text tzid; // the TZID parameter of DTSTART
    Text description;
};

// With texts of its own.
using EventFields = EventProperties<std::wstring>;
// With views of texts that are its own or the event's, good until the event changes.
struct EventView : EventProperties<std::wstring_view>
{
    std::unique_ptr<wchar_t[]> texts;
};

// Its fields are unpacked while lines are read or edits made, and packed small from then on: large
// numbers of events are kept in memory.
class CVEvent : public CVObject
{
  public:
    static constexpr const wchar_t* kName = L"VEVENT";

    CVEvent() noexcept : CVObject(kName) {}

    // A repeated property overwrites the earlier one. Returns 1, whether the property was taken or
    // not.
    int SetProperty(std::wstring_view name, std::wstring_view value) override;
    // Never empty: DTSTAMP is always there. Order and conditions are part of the format.
    std::wstring GetProperties() const override;
    // Packs the fields.
    void Close() noexcept override { Pack(); }

    // What an index finds the event by: the uid.
    std::wstring Id() const;

    // The fields to be read, packed or not; good until the next change.
    EventView Fields() const;
    // The fields themselves, to be changed; good until Pack.
    EventFields& Edit();
    // Keeps the fields in less memory. Where there is none to do so in they stay as they are.
    void Pack() noexcept;

  private:
    enum Packed : std::size_t
    {
        kUid,
        kSummary,
        kLocation,
        kTzid,
        kDescription,
        kNumbers,
        kPackedCount
    };

    std::unique_ptr<EventFields> m_fields; // null: packed
    CompactFields<kPackedCount> m_packed;
};
