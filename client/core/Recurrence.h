// What the contract's recurrence record says, in a form that takes as much room as it needs, and
// told in words. Portable.
#pragma once

#include "client/core/CivilTime.h"
#include "platform/ContractRecords.h"

#include <array>
#include <optional>
#include <string>
#include <vector>

namespace pim
{
// One changed instance of a series. Times are local.
struct ModifiedInstance
{
    DATE localDay = 0;
    DATE localStart = 0;
    DATE localEnd = 0;
    DATE localOriginalStart = 0;
    std::wstring subject;
    std::wstring place;

    bool operator==(const ModifiedInstance&) const = default;
};

struct Recurrence
{
    // How the days of a monthly or yearly series are found.
    enum class Rule
    {
        SameDay,  // as the start has it: the record says no more
        MonthDay, // on a numbered day of the month
        Weekdays  // on (the nth of) these weekdays
    };

    _tagNAppointmentRecurringType type = None;
    unsigned interval = 0;          // 0 where the record leaves it open
    bool everyWeekday = false;      // daily, but Monday to Friday only
    std::array<bool, 7> weekdays{}; // Sunday first
    Rule rule = Rule::SameDay;      // monthly and yearly
    int nth = 0;                    // 1 to 4; -1 is the last; 0 each
    int monthDay = 0;               // 0 where the record leaves it open
    int month = 0;                  // yearly; 0 where the record leaves it open
    _tagNAppointmentEndType endType = NoEnd;
    DATE until = 0; // the day that the series ends; the store's own digits
    unsigned count = 0;
    std::vector<DATE> deletedLocalDays;
    std::vector<ModifiedInstance> modified;

    bool operator==(const Recurrence&) const = default;
};

// Reads the parts of the record that its type makes valid; values outside the contract's
// enumerations count as None and NoEnd.
Recurrence ReadRecurrence(const _tagRecurringInfo& record);

// Fills a zeroed record. Instances beyond the contract's limits, and what does not fit a text field
// of theirs, are left out.
void WriteRecurrence(const Recurrence& recurrence, _tagRecurringInfo& record);

// Stores that keep no month of a yearly series leave it to the start, here the store's own digits:
// takes the month from there where the series has none but a day to go with it.
void TakeMonthFromStart(Recurrence& recurrence, DATE start);

// The deleted days that no changed instance stands for: stores list the original day of a changed
// one among the deleted too.
std::vector<DATE> LeftOutDays(const Recurrence& recurrence);

// "every 2 weeks on Monday and Friday, until 2024-05-01"; empty for an item that does not recur.
// Days left out and changed are counted at the end.
std::wstring RecurrenceText(const Recurrence& recurrence);

// "15 minutes before"; "none"; "at the start" for 0. Negative as a signed number: behind the start.
std::wstring ReminderText(std::uint32_t minutesBefore);

// No reminder is set.
inline constexpr std::uint32_t kNoReminder = 0xFFFFFFFF;

// Two letters per weekday, Sunday first, as the iCalendar format names them.
inline constexpr const wchar_t* kWeekdayCodes[7] = {
    L"SU", L"MO", L"TU", L"WE", L"TH", L"FR", L"SA"};
} // namespace pim
