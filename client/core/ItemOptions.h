// What a person asks of one appointment on the command line, and what that makes of its fields.
// Portable.
#pragma once

#include "client/core/Appointment.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace pim
{
struct RepeatOptions
{
    std::optional<_tagNAppointmentRecurringType> type;
    std::optional<unsigned> interval;
    std::optional<std::array<bool, 7>> weekdays; // Sunday first
    std::optional<int> nth;                      // 1 to 4, or -1
    std::optional<int> monthDay;                 // 1 to 31
    std::optional<int> month;                    // 1 to 12
    std::optional<unsigned> count;
    std::optional<CivilTime> untilDay;

    // Whether any option but the kind of the series is given.
    bool HasDetails() const noexcept;
};

struct ItemOptions
{
    std::optional<std::wstring> subject;
    std::optional<std::wstring> place;
    std::optional<std::wstring> description;
    std::optional<TypedTime> start;
    std::optional<TypedTime> end; // of an all-day item: its last day
    std::optional<bool> allDay;
    std::optional<std::uint32_t> reminderMinutes; // kNoReminder: none
    RepeatOptions repeat;

    // Whether nothing was typed.
    bool IsEmpty() const noexcept;
};

// Gives the fields of a new item what the options say; what they leave open becomes: an hour, or a
// day for an all-day item, no reminder, no series.
// Returns: empty, or why the options make no item, as a sentence for the person.
std::wstring MakeItem(const ItemOptions& options, const ILocalZone& zone, Appointment& item);

// Changes what the options say and nothing else. An item that becomes an all-day one takes its
// local days along.
// Returns: as MakeItem.
std::wstring ChangeItem(const ItemOptions& options, const ILocalZone& zone, Appointment& item);

// The fields, by the names of their options, that were asked to change from before to wanted, and
// that a store nevertheless holds with another value. A reminder of none counts as kept where the
// store gives 0, as stores without a value for none do.
std::vector<std::wstring> FieldsNotKept(const Appointment& before,
                                        const Appointment& wanted,
                                        const Appointment& kept);
} // namespace pim
