// Reads recurrence blobs.
#include "outlook/calendar/RecurrencePattern.h"

#include "outlook/calendar/MinuteDates.h"
#include "outlook/calendar/RecurrenceFormat.h"
#include "platform/ByteReader.h"
#include "platform/CodePages.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <limits>
#include <string>

using namespace recurrence_format;

namespace
{
// What follows the fixed fields of a pattern.
enum class Specific
{
    Nothing,   // a day rule
    Weekdays,  // a mask
    MonthDay,  // the number of a day
    NthWeekday // a mask and the number of a week
};

struct PatternRow
{
    std::uint16_t type;
    Specific specific;
};

// clang-format off
constexpr PatternRow kPatterns[] = {
    {kPatternDay,      Specific::Nothing},
    {kPatternWeek,     Specific::Weekdays},
    {kPatternMonth,    Specific::MonthDay},
    {kPatternMonthNth, Specific::NthWeekday},
    {4,                Specific::MonthDay},   // the end of a month
    {10,               Specific::MonthDay},   // and the same in the Hijri calendar
    {11,               Specific::NthWeekday},
    {12,               Specific::MonthDay},
};
// clang-format on

void PutWeekdays(std::uint32_t mask, VARIANT_BOOL (&weekdays)[7])
{
    for (int day = 0; day < 7; ++day)
        weekdays[day] = (mask >> day & 1) != 0 ? VARIANT_BOOL{-1} : VARIANT_BOOL{0};
}

// Any week but the first four is the last one.
std::int32_t NthFrom(std::uint32_t week)
{
    return week >= 1 && week < kLastWeek ? static_cast<std::int32_t>(week) : -1;
}

void ReadMonthDay(ByteReader& in, bool isYearly, std::uint32_t period, _tagRecurringInfo& record)
{
    std::int32_t day = 0;
    in.Read(day);
    if (isYearly)
    {
        record.eRecurType = Yearly;
        record.tYearly.ulIntervalYear = period / 12;
        record.tYearly.bIsByMonthDayMode = -1;
        record.tYearly.lDay = day;
        return;
    }
    record.eRecurType = Monthly;
    record.tMonthly.ulIntervalMonth = period;
    record.tMonthly.bIsByMonthDayMode = -1;
    record.tMonthly.lMonthDay = day;
}

void ReadNthWeekday(ByteReader& in, bool isYearly, std::uint32_t period, _tagRecurringInfo& record)
{
    std::uint32_t mask = 0;
    std::uint32_t week = 0;
    in.Read(mask);
    in.Read(week);
    if (isYearly)
    {
        record.eRecurType = Yearly;
        record.tYearly.ulIntervalYear = period / 12;
        record.tYearly.bIsByDayMode = -1;
        record.tYearly.lNth = NthFrom(week);
        PutWeekdays(mask, record.tYearly.bValidWeekday);
        return;
    }
    record.eRecurType = Monthly;
    record.tMonthly.ulIntervalMonth = period;
    record.tMonthly.bIsByDayMode = -1;
    record.tMonthly.lNth = NthFrom(week);
    PutWeekdays(mask, record.tMonthly.bValidWeekday);
}

// The fields up to the end of PatternTypeSpecific.
void ReadPattern(ByteReader& in, _tagRecurringInfo& record)
{
    std::uint16_t frequency = 0;
    std::uint16_t type = 0;
    std::uint32_t period = 0;
    in.Skip(4); // versions
    in.Read(frequency);
    in.Read(type);
    in.Skip(2 + 4); // calendar, first date
    in.Read(period);
    in.Skip(4); // sliding flag
    const auto* const row = std::ranges::find(kPatterns, type, &PatternRow::type);
    if (row == std::end(kPatterns))
        return; // the record stays without a kind
    const bool isYearly = frequency == kFrequencyYearly;
    switch (row->specific)
    {
    case Specific::Nothing:
        record.eRecurType = Daily;
        record.tDaily.ulIntervalDay = period / kMinutesPerDay;
        break;
    case Specific::Weekdays: {
        // Kept as it is: a rule for every working day, whose frequency is daily, is weekly too.
        // Pinned by RecurrencePatternReadTest.
        std::uint32_t mask = 0;
        in.Read(mask);
        record.eRecurType = Weekly;
        record.tWeekly.ulIntervalWeek = period;
        PutWeekdays(mask, record.tWeekly.bValidWeekday);
        break;
    }
    case Specific::MonthDay:
        ReadMonthDay(in, isYearly, period, record);
        break;
    case Specific::NthWeekday:
        ReadNthWeekday(in, isYearly, period, record);
        break;
    }
}

// A count and that many dates, put one by one as far as there is room; the rest is passed over.
template <typename Put> std::size_t ReadDates(ByteReader& in, std::size_t room, Put put)
{
    std::size_t count = 0;
    if (!in.ReadCount<std::uint32_t>(
            sizeof(std::uint32_t), std::numeric_limits<std::uint32_t>::max(), count))
        return 0;
    const std::size_t kept = std::min(count, room);
    MinuteDates dates;
    for (std::size_t i = 0; i < kept; ++i)
    {
        std::uint32_t minutes = 0;
        in.Read(minutes);
        put(i, dates.DateOf(minutes));
    }
    in.Skip((count - kept) * sizeof(std::uint32_t));
    return count;
}

_tagEndInfo EndFrom(std::uint32_t type, std::uint32_t count, std::uint32_t endMinutes)
{
    _tagEndInfo end{};
    if (type == kEndByDate)
    {
        end.eEndType = EndByDate;
        end.dtEndDateTime = MinutesToDate(endMinutes);
    }
    else if (type == kEndByCount)
    {
        end.eEndType = EndByCount;
        end.ulTimesAfter = count;
    }
    return end;
}

// One exception record, its texts still in the blob.
struct ExceptionView
{
    std::uint32_t startMinutes = 0;
    std::uint32_t endMinutes = 0;
    std::uint32_t originalMinutes = 0;
    std::uint16_t overrides = 0;
    std::span<const std::byte> subject;
    std::span<const std::byte> location;
};

struct OverrideRow
{
    std::uint16_t bit;
    std::span<const std::byte> ExceptionView::*text; // null: four bytes that are skipped
};

// In the order in which their contents follow.
// Kept as it is: what higher bits announce is not passed over, so that it is taken for the next
// fields. Pinned by RecurrencePatternReadTest.RunsOnBehindAnUnknownOverride.
// clang-format off
constexpr OverrideRow kOverrides[] = {
    {kOverridesSubject,  &ExceptionView::subject},
    {0x0002,             nullptr}, // meeting type
    {0x0004,             nullptr}, // reminder lead time
    {0x0008,             nullptr}, // reminder set
    {kOverridesLocation, &ExceptionView::location},
    {0x0020,             nullptr}, // busy status
    {0x0040,             nullptr}, // attachment
    {0x0080,             nullptr}, // all-day
};
// clang-format on

bool ReadException(ByteReader& in, ExceptionView& exception)
{
    in.Read(exception.startMinutes);
    in.Read(exception.endMinutes);
    in.Read(exception.originalMinutes);
    in.Read(exception.overrides);
    for (const OverrideRow& row : kOverrides)
    {
        if ((exception.overrides & row.bit) == 0)
            continue;
        if (!row.text)
        {
            in.Skip(4);
            continue;
        }
        std::uint16_t bytes = 0;
        in.Skip(2); // the length with a terminator that is not there
        in.Read(bytes);
        in.ReadBytes(bytes, exception.*row.text);
    }
    return in.IsOk();
}

// The rest of the array is zero already.
void PutUnits(std::wstring_view text, Unit (&target)[kTextRoom])
{
    const std::size_t count = std::min(text.size(), kMaxText);
    std::copy_n(text.begin(), count, target);
}

void PutBytes(std::span<const std::byte> bytes, unsigned codePage, Unit (&target)[kTextRoom])
{
    const auto head = bytes.first(std::min(bytes.size(), kMaxText));
    unsigned seen = 0;
    for (std::size_t i = 0; i < head.size(); ++i)
    {
        target[i] = std::to_integer<Unit>(head[i]);
        seen |= target[i];
    }
    if (seen < 0x80)
        return;
    std::fill_n(target, head.size(), Unit{0});
    std::wstring text;
    AppendFromCodePage(codePage, {reinterpret_cast<const char*>(bytes.data()), bytes.size()}, text);
    PutUnits(text, target);
}

// Puts exceptions, one behind the other.
class ExceptionPutter
{
  public:
    ExceptionPutter(const AppointmentTexts& texts, unsigned codePage)
        : m_texts(texts), m_codePage(codePage)
    {
    }

    void Put(const ExceptionView& exception, _tagModifiedInstanceInfo& instance)
    {
        instance.dtStartDateTime = m_starts.DateOf(exception.startMinutes);
        instance.dtEndDateTime = m_ends.DateOf(exception.endMinutes);
        instance.dtOriginalDateTime = m_originals.DateOf(exception.originalMinutes);
        // Kept as it is: the same texts in UTF-16, behind all exceptions, are not read. Pinned by
        // RecurrencePatternReadTest.LeavesTheTextsInUnitsUnread.
        if ((exception.overrides & kOverridesSubject) != 0)
            PutBytes(exception.subject, m_codePage, instance.szSubject);
        else
            PutUnits(m_texts.subject, instance.szSubject);
        if ((exception.overrides & kOverridesLocation) != 0)
            PutBytes(exception.location, m_codePage, instance.szLocation);
        else
            PutUnits(m_texts.place, instance.szLocation);
    }

  private:
    const AppointmentTexts& m_texts;
    unsigned m_codePage;
    MinuteDates m_starts;
    MinuteDates m_ends;
    MinuteDates m_originals;
};
} // namespace

RecurrenceRead DecodeRecurrencePattern(std::span<const std::byte> blob,
                                       const AppointmentTexts& texts,
                                       unsigned codePage,
                                       _tagRecurringInfo& record)
{
    std::memset(&record, 0, sizeof(record));
    ByteReader in(blob);
    ReadPattern(in, record);
    std::uint32_t endType = 0;
    std::uint32_t occurrences = 0;
    std::uint32_t endMinutes = 0;
    in.Read(endType);
    in.Read(occurrences);
    in.Skip(4); // first day of the week
    ReadDates(in, kMaxDeletedInstances, [&](std::size_t i, DATE date) {
        record.arrDeletedInstance[i] = date;
    });
    const std::size_t modified =
        ReadDates(in, kMaxModifiedInstances, [&](std::size_t i, DATE date) {
            record.arrModifiedInstance[i].dtModifiedDate = date;
        });
    in.Skip(4); // start date
    in.Read(endMinutes);
    if (!in.IsOk())
    {
        std::memset(&record, 0, sizeof(record));
        return {in.Status(), in.Offset(), 0};
    }
    record.tEndInfo = EndFrom(endType, occurrences, endMinutes);

    RecurrenceRead read{CodecStatus::Ok, in.Offset(), 0};
    if (modified == 0 || !in.Skip(4 + 4 + 4 + 4 + 2)) // versions, offsets of the day, count
        return read;
    ExceptionPutter putter(texts, codePage);
    while (read.exceptions < std::min<std::size_t>(modified, kMaxModifiedInstances))
    {
        ExceptionView exception;
        if (!ReadException(in, exception))
            break;
        putter.Put(exception, record.arrModifiedInstance[read.exceptions]);
        read.offset = in.Offset();
        ++read.exceptions;
    }
    return read;
}
