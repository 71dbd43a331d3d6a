// An appointment that is written into an event of any calendar is read from there as it was, under
// its ID, before and after the file was saved and loaded; taken away, it is gone.
#include "FuzzInput.h"
#include "Require.h"

#include "icalendar/AppointmentMapping.h"
#include "icalendar/VAlarm.h"
#include "platform/GuidSource.h"
#include "service/TextConversions.h"
#include "service/TimeConversions.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <utility>
#include <vector>

namespace
{
constexpr double kSecond = 1.0 / 86400.0;
// The first moment that an event is read at as it was written: the year 1000 has four digits.
constexpr double kFirstDay = -328716.0;
constexpr double kLastDay = 2958465.0;

template <typename Value> std::optional<Value> Maybe(bool present, Value value)
{
    return present ? std::optional<Value>(std::move(value)) : std::nullopt;
}

AppointmentValues TakeValues(FuzzInput& input)
{
    const auto present = input.Take<std::uint16_t>();
    const auto text = [&](unsigned bit) {
        return Maybe(present >> bit & 1, WideFromUtf8(input.TakeText(input.Take<std::uint8_t>())));
    };
    // Whole minutes of the years 1000 to 9166, or any DATE.
    const auto time = [&](unsigned bit) {
        const auto minutes = input.Take<std::uint32_t>();
        DATE date = kFirstDay + minutes / 1440.0;
        if (present >> 15 & 1)
            date = input.Take<double>();
        return Maybe(present >> bit & 1, date);
    };
    AppointmentValues values;
    values.entityId = L"{0E6AB3A1-5C1F-4D6E-8F27-0D9B7C3E4A55}";
    values.subject = text(0);
    values.place = text(1);
    values.description = text(2);
    values.startTime = time(3);
    values.endTime = time(4);
    values.allDay = Maybe<bool>(present >> 5 & 1, present >> 6 & 1);
    values.reminderMinutes = Maybe<std::uint32_t>(present >> 7 & 1, input.Take<std::uint32_t>());
    values.recurrence = Maybe(present >> 8 & 1, input.Take<RecurrenceHead>());
    return values;
}

bool SameText(const std::optional<std::wstring>& given,
              const std::optional<std::wstring_view>& read)
{
    return !given || (read && *read == given->substr(0, given->find(L'\0')));
}

bool IsUsual(const std::optional<DATE>& date)
{
    return date && std::isfinite(*date) && *date >= kFirstDay + 1 && *date <= kLastDay - 1;
}

bool IsMidnight(DATE date)
{
    return date == std::trunc(date);
}

// Days with the fraction counted forward for DATEs before 1899-12-30 too.
double PlainDays(DATE date)
{
    const double whole = std::trunc(date);
    return date < 0 ? whole - (date - whole) : date;
}

void CheckTimes(const AppointmentValues& given, const AppointmentView& read)
{
    // A day is added or taken by plain numbers, which DATEs before 1899-12-30 are not.
    if (!IsUsual(given.startTime) || !IsUsual(given.endTime) || *given.startTime < 1 ||
        *given.endTime < 1)
        return;
    if (*read.allDay != given.allDay.value_or(false))
        return; // not exactly one day: it counts as timed and its digits as local
    Require(std::fabs(PlainDays(*read.startTime) - PlainDays(*given.startTime)) <= kSecond);
    Require(std::fabs(PlainDays(*read.endTime) - PlainDays(*given.endTime)) <= kSecond);
}

// Values are written without escaping, so that a line break in one begins another line.
bool IsOneLine(const std::optional<std::wstring>& text)
{
    return !text || std::ranges::none_of(*text, [](wchar_t unit) { return unit < 0x20; });
}

// Days alone are saved without their zone, and unless they are one day it counts when they are
// read.
void CheckSaved(const AppointmentValues& given,
                const AppointmentView& read,
                const AppointmentView& again)
{
    if (!IsUsual(given.startTime) || !IsUsual(given.endTime))
        return;
    if (!given.allDay.value_or(false))
        Require(again.timeZone == read.timeZone && again.allDay == read.allDay);
    else if (!IsMidnight(*given.startTime) || !IsMidnight(*given.endTime) || !*read.allDay)
        return;
    Require(again.startTime == read.startTime && again.endTime == read.endTime);
}

CVEvent& NewEventIn(CCalendarFile& file)
{
    auto made = std::make_unique<CVEvent>();
    CVEvent& event = *made;
    Require(file.Events().Attach(std::move(made)));
    return event;
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const ScopedGuidSource guid([] { return L"{00000000-0000-0000-0000-000000000001}"; });
    FuzzInput input(data, size);
    const AppointmentValues values = TakeValues(input);
    constexpr std::int32_t kDayMinutes = 1440;
    const MachineZone machine{L"Zone of this machine", input.Take<std::int16_t>() % kDayMinutes};
    const SYSTEMTIME now{2024, 3, 2, 5, 9, 30, 0, 0};

    CCalendarFile file(L"", 0);
    file.LoadFromText(input.TakeRest());
    // The file's own are left alone.
    if (file.Events().Find(*values.entityId) || file.TimeZones().Find(machine.standardName))
        return 0;
    const std::size_t count = file.Events().Size();
    CVEvent& event = NewEventIn(file);
    Require(EventFromAppointment(file, values, machine, now, event) == SystemTimeToDate(now));
    Require(file.Events().Find(*values.entityId) == &event);

    const AppointmentView read = AppointmentFromEvent(file, event);
    Require(SameText(values.entityId, read.entityId) && SameText(values.subject, read.subject) &&
            SameText(values.place, read.place) && SameText(values.description, read.description));
    Require(*read.utcLastModified == SystemTimeToDate(now));
    Require(read.timeZone == machine.standardName);
    if (values.reminderMinutes && *values.reminderMinutes != kNoReminderMinutes)
        Require(read.reminderMinutes == values.reminderMinutes);
    else
        Require(!read.reminderMinutes);
    CheckTimes(values, read);

    if (IsOneLine(values.subject) && IsOneLine(values.place) && IsOneLine(values.description))
    {
        CCalendarFile saved(L"", 0);
        saved.LoadFromText(file.SaveToText());
        Require(saved.TimeZones().Find(machine.standardName) != nullptr);
        const CVEvent* const again = saved.Events().Find(*values.entityId);
        Require(again != nullptr);
        CheckSaved(values, read, AppointmentFromEvent(saved, *again));
    }

    Require(file.Events().RemoveByUid(*values.entityId));
    Require(!file.Events().Find(*values.entityId) && file.Events().Size() == count);
    return 0;
}
