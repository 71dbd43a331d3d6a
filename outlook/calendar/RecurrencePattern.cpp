#include "outlook/calendar/RecurrencePattern.h"

#include "platform/ByteReader.h"
#include "platform/ByteWriter.h"
#include "platform/CodePages.h"
#include "platform/PlatformTime.h"
#include "service/TimeConversions.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <limits>
#include <string>

namespace
{
using Unit = std::remove_extent_t<decltype(_tagModifiedInstanceInfo::szSubject)>;
constexpr std::size_t kTextRoom = std::extent_v<decltype(_tagModifiedInstanceInfo::szSubject)>;
constexpr std::size_t kMaxText = kTextRoom - 1;

constexpr std::uint32_t kMinutesPerDay = 1440;
constexpr std::uint32_t kMinutesPerWeek = 7 * kMinutesPerDay;
constexpr int kFirstYear = 1601;

constexpr std::uint16_t kVersion = 0x3004;
constexpr std::uint32_t kReaderVersion2 = 0x3006;
constexpr std::uint32_t kWriterVersion2 = 0x3009;

constexpr std::uint16_t kFrequencyDaily = 0x200A;
constexpr std::uint16_t kFrequencyWeekly = 0x200B;
constexpr std::uint16_t kFrequencyMonthly = 0x200C;
constexpr std::uint16_t kFrequencyYearly = 0x200D;

constexpr std::uint16_t kPatternDay = 0;
constexpr std::uint16_t kPatternWeek = 1;
constexpr std::uint16_t kPatternMonth = 2;
constexpr std::uint16_t kPatternMonthNth = 3;

constexpr std::uint32_t kEndByDate = 0x2021;
constexpr std::uint32_t kEndByCount = 0x2022;
constexpr std::uint32_t kEndNever = 0x2023;

constexpr std::uint32_t kCountWhereNone = 10;
constexpr std::uint32_t kEndDateNever = 0x5AE980DF; // 4500-12-31 23:59

constexpr std::uint32_t kLastWeek = 5; // as the format counts the weeks of a month

constexpr std::uint16_t kOverridesSubject = 0x0001;
constexpr std::uint16_t kOverridesLocation = 0x0010;

// --- Reading -------------------------------------------------------------------------------------

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
    for (std::size_t i = 0; i < kept; ++i)
    {
        std::uint32_t minutes = 0;
        in.Read(minutes);
        put(i, MinutesToDate(minutes));
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

// In the order in which their contents follow. What higher bits announce is not known.
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
    const auto isAscii = [](std::byte byte) { return byte < std::byte{0x80}; };
    if (std::ranges::all_of(head, isAscii))
    {
        std::ranges::transform(
            head, target, [](std::byte byte) { return static_cast<Unit>(byte); });
        return;
    }
    std::wstring text;
    AppendFromCodePage(codePage, {reinterpret_cast<const char*>(bytes.data()), bytes.size()}, text);
    PutUnits(text, target);
}

void PutException(const ExceptionView& exception,
                  const AppointmentTexts& texts,
                  unsigned codePage,
                  _tagModifiedInstanceInfo& instance)
{
    instance.dtStartDateTime = MinutesToDate(exception.startMinutes);
    instance.dtEndDateTime = MinutesToDate(exception.endMinutes);
    instance.dtOriginalDateTime = MinutesToDate(exception.originalMinutes);
    if ((exception.overrides & kOverridesSubject) != 0)
        PutBytes(exception.subject, codePage, instance.szSubject);
    else
        PutUnits(texts.subject, instance.szSubject);
    if ((exception.overrides & kOverridesLocation) != 0)
        PutBytes(exception.location, codePage, instance.szLocation);
    else
        PutUnits(texts.place, instance.szLocation);
}

// --- Writing -------------------------------------------------------------------------------------

// Minutes since 1601, their low 32 bits; 0 where the time is none.
std::uint32_t MinutesOf(const FILETIME& time)
{
    const std::uint64_t ticks =
        (static_cast<std::uint64_t>(time.dwHighDateTime) << 32) | time.dwLowDateTime;
    return static_cast<std::uint32_t>(ticks / 10'000'000 / 60);
}

std::uint32_t MinutesOf(DATE date)
{
    return MinutesOf(DateToFileTime(date));
}

std::uint32_t DayOf(DATE date)
{
    const std::uint32_t minutes = MinutesOf(date);
    return minutes - minutes % kMinutesPerDay;
}

// The minutes of the first of a month, counted from January 1601; 0 beyond what can be expressed.
std::uint32_t MinutesOfMonth(std::uint32_t month)
{
    const std::uint32_t year = kFirstYear + month / 12;
    if (year > std::numeric_limits<std::uint16_t>::max())
        return 0;
    SYSTEMTIME first{};
    first.wYear = static_cast<std::uint16_t>(year);
    first.wMonth = static_cast<std::uint16_t>(month % 12 + 1);
    first.wDay = 1;
    FILETIME time{};
    return SystemTimeToFileTime(&first, &time) ? MinutesOf(time) : 0;
}

// What differs by the kind of a rule. Unsigned arithmetic that wraps, as everywhere in the format.
struct Pattern
{
    std::uint16_t frequency = 0;
    std::uint16_t type = 0;
    std::uint32_t firstMinutes = 0; // FirstDateTime
    std::uint32_t period = 0;
    std::array<std::uint32_t, 2> specific{};
    std::size_t specificCount = 0;
    std::uint32_t endDays = 0; // of a rule that ends by count: days that it takes

    void Add(std::uint32_t value) { specific[specificCount++] = value; }
};

// The first instance's start in the forms that patterns need.
struct LocalStart
{
    SYSTEMTIME time{};         // zero where the DATE is none
    std::uint32_t minutes = 0; // since 1601
    std::uint32_t MinutesOfDay() const { return time.wHour * 60u + time.wMinute; }
    // Months from January 1601.
    std::uint32_t Month() const
    {
        return static_cast<std::uint32_t>((time.wYear - kFirstYear) * 12 - 1 + time.wMonth);
    }
};

// Only -1 is a weekday that is set.
std::uint32_t MaskOf(const VARIANT_BOOL (&weekdays)[7], std::uint32_t& count)
{
    std::uint32_t mask = 0;
    count = 0;
    for (int day = 0; day < 7; ++day)
    {
        if (weekdays[day] != -1)
            continue;
        mask |= std::uint32_t{1} << day;
        ++count;
    }
    return mask;
}

CodecStatus MakeDaily(const _tagRecurringInfo& record, const LocalStart& start, Pattern& pattern)
{
    const std::uint32_t interval = record.tDaily.ulIntervalDay;
    pattern.frequency = kFrequencyDaily;
    pattern.type = kPatternDay;
    pattern.period = interval * kMinutesPerDay;
    if (pattern.period == 0)
        return CodecStatus::Inconsistent;
    pattern.firstMinutes = (start.minutes - start.minutes % kMinutesPerDay) % pattern.period;
    pattern.endDays = record.tEndInfo.ulTimesAfter * interval;
    return CodecStatus::Ok;
}

CodecStatus MakeWeekly(const _tagRecurringInfo& record, const LocalStart& start, Pattern& pattern)
{
    const std::uint32_t interval = record.tWeekly.ulIntervalWeek;
    const std::uint32_t times = record.tEndInfo.ulTimesAfter;
    std::uint32_t days = 0;
    pattern.frequency = kFrequencyWeekly;
    pattern.type = kPatternWeek;
    pattern.period = interval;
    pattern.Add(MaskOf(record.tWeekly.bValidWeekday, days));
    if (interval * kMinutesPerWeek == 0)
        return CodecStatus::Inconsistent;
    const std::uint32_t sunday =
        start.minutes - start.MinutesOfDay() - start.time.wDayOfWeek * kMinutesPerDay;
    pattern.firstMinutes = sunday % (interval * kMinutesPerWeek);
    if (record.tEndInfo.eEndType == EndByCount)
    {
        if (days == 0)
            return CodecStatus::Inconsistent;
        pattern.endDays = times / days * interval * 7 + times % days;
    }
    return CodecStatus::Ok;
}

CodecStatus MakeMonthly(const _tagRecurringInfo& record, const LocalStart& start, Pattern& pattern)
{
    const _tagMonthlyInfo& rule = record.tMonthly;
    const std::uint32_t interval = rule.ulIntervalMonth;
    if (interval == 0)
        return CodecStatus::Inconsistent;
    pattern.frequency = kFrequencyMonthly;
    pattern.type = rule.bIsByDayMode != 0 ? kPatternMonthNth : kPatternMonth;
    pattern.period = interval & 0xFFFF;
    pattern.firstMinutes = MinutesOfMonth(start.Month() % interval);
    pattern.endDays = interval * record.tEndInfo.ulTimesAfter * 31;
    if (rule.bIsByDayMode != 0)
    {
        std::uint32_t days = 0;
        pattern.Add(MaskOf(rule.bValidWeekday, days));
        // Kept as it is: without a week the field is missing, and readers take what follows for it.
        // Pinned by RecurrencePatternWriteTest.
        if (rule.lNth != 0)
            pattern.Add(rule.lNth < 0 ? kLastWeek : static_cast<std::uint32_t>(rule.lNth));
    }
    else if (rule.bIsByMonthDayMode != 0)
    {
        pattern.Add(static_cast<std::uint32_t>(rule.lMonthDay));
    }
    return CodecStatus::Ok;
}

// Kept as it is: a yearly rule is always one of a month's day every 12 months, whatever its mode,
// weekdays, month and interval. Pinned by RecurrencePatternWriteTest.
CodecStatus MakeYearly(const _tagRecurringInfo& record, const LocalStart& start, Pattern& pattern)
{
    pattern.frequency = kFrequencyYearly;
    pattern.type = kPatternMonth;
    pattern.period = 12;
    pattern.firstMinutes = MinutesOfMonth(start.time.wMonth - 1u);
    pattern.Add(static_cast<std::uint32_t>(record.tYearly.lDay));
    pattern.endDays = record.tYearly.ulIntervalYear * record.tEndInfo.ulTimesAfter * 31;
    return CodecStatus::Ok;
}

struct KindRow
{
    _tagNAppointmentRecurringType kind;
    CodecStatus (*make)(const _tagRecurringInfo&, const LocalStart&, Pattern&);
};

constexpr KindRow kKinds[] = {
    {Daily, MakeDaily}, {Weekly, MakeWeekly}, {Monthly, MakeMonthly}, {Yearly, MakeYearly}};

// The dates that go into the blob. Without a deleted instance at the head of its array a record
// gives neither deleted nor modified ones.
// Kept as it is: clients rely on it. Pinned by RecurrencePatternWriteTest.
struct Instances
{
    explicit Instances(const _tagRecurringInfo& record)
    {
        if (record.arrDeletedInstance[0] == 0.0)
            return;
        for (const DATE date : record.arrDeletedInstance)
            if (date != 0.0)
                deleted[deletedCount++] = date;
        // What is no number goes last, so that there is an order.
        std::sort(deleted.begin(), deleted.begin() + deletedCount, [](DATE left, DATE right) {
            return std::isnan(right) ? !std::isnan(left) : left < right;
        });
        for (const _tagModifiedInstanceInfo& instance : record.arrModifiedInstance)
            if (instance.dtModifiedDate != 0.0)
                modified[modifiedCount++] = instance.dtModifiedDate;
    }

    std::array<DATE, kMaxDeletedInstances> deleted;
    std::array<DATE, kMaxModifiedInstances> modified;
    std::ptrdiff_t deletedCount = 0;
    std::ptrdiff_t modifiedCount = 0;
};

template <std::size_t Room>
void WriteDates(const std::array<DATE, Room>& dates, std::ptrdiff_t count, ByteWriter& out)
{
    out.Write<std::uint32_t>(count);
    for (std::ptrdiff_t i = 0; i < count; ++i)
        out.Write<std::uint32_t>(DayOf(dates[static_cast<std::size_t>(i)]));
}

std::uint32_t EndTypeOf(const _tagEndInfo& end)
{
    constexpr double kNoDate = 1e-05;
    if (end.ulTimesAfter != 0)
        return kEndByCount;
    return end.dtEndDateTime > kNoDate || end.dtEndDateTime < -kNoDate ? kEndByDate : kEndNever;
}

// A kind of end that is none of the three leaves the field empty.
std::uint32_t EndDateOf(const _tagEndInfo& end, std::uint32_t startDay, std::uint32_t endDays)
{
    switch (end.eEndType)
    {
    case EndByDate:
        return DayOf(end.dtEndDateTime);
    case EndByCount:
        return startDay + (endDays - 1) * kMinutesPerDay;
    case NoEnd:
        return kEndDateNever;
    default:
        return 0;
    }
}

std::span<const Unit> TextOf(const Unit (&text)[kTextRoom])
{
    const std::span<const Unit> units(text, kMaxText);
    return units.first(static_cast<std::size_t>(std::ranges::find(units, Unit{0}) - units.begin()));
}

void WriteBytesOf(std::span<const Unit> text, unsigned codePage, ByteWriter& out)
{
    std::array<std::byte, kMaxText> ascii;
    std::string bytes;
    std::span<const std::byte> encoded;
    if (std::ranges::all_of(text, [](Unit unit) { return unit < 0x80; }))
    {
        std::ranges::transform(
            text, ascii.begin(), [](Unit unit) { return static_cast<std::byte>(unit); });
        encoded = std::span(ascii).first(text.size());
    }
    else
    {
        AppendToCodePage(codePage, std::wstring(text.begin(), text.end()), bytes);
        encoded = std::as_bytes(std::span(bytes));
    }
    out.Write<std::uint16_t>(encoded.size() + 1); // with a terminator that is not written
    out.Write<std::uint16_t>(encoded.size());
    out.WriteBytes(encoded);
}

void WriteUnitsOf(std::span<const Unit> text, ByteWriter& out)
{
    std::array<std::byte, 2 * kMaxText> bytes;
    for (std::size_t i = 0; i < text.size(); ++i)
    {
        bytes[2 * i] = static_cast<std::byte>(text[i] & 0xFF);
        bytes[2 * i + 1] = static_cast<std::byte>(text[i] >> 8);
    }
    out.Write<std::uint16_t>(text.size());
    out.WriteBytes(std::span(bytes).first(2 * text.size()));
}

void WriteTimes(const _tagModifiedInstanceInfo& instance, ByteWriter& out)
{
    out.Write<std::uint32_t>(MinutesOf(instance.dtStartDateTime));
    out.Write<std::uint32_t>(MinutesOf(instance.dtEndDateTime));
    out.Write<std::uint32_t>(MinutesOf(instance.dtOriginalDateTime));
}

void WriteException(const _tagModifiedInstanceInfo& instance, unsigned codePage, ByteWriter& out)
{
    WriteTimes(instance, out);
    out.Write<std::uint16_t>(kOverridesSubject | kOverridesLocation);
    WriteBytesOf(TextOf(instance.szSubject), codePage, out);
    WriteBytesOf(TextOf(instance.szLocation), codePage, out);
}

void WriteExtendedException(const _tagModifiedInstanceInfo& instance, ByteWriter& out)
{
    out.Write<std::uint32_t>(4); // size of the change highlight
    out.Write<std::uint32_t>(0); // the change highlight
    out.Write<std::uint32_t>(0); // reserved block 1
    WriteTimes(instance, out);
    WriteUnitsOf(TextOf(instance.szSubject), out);
    WriteUnitsOf(TextOf(instance.szLocation), out);
    out.Write<std::uint32_t>(0); // reserved block 2
}
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
    while (read.exceptions < std::min<std::size_t>(modified, kMaxModifiedInstances))
    {
        ExceptionView exception;
        if (!ReadException(in, exception))
            break;
        PutException(exception, texts, codePage, record.arrModifiedInstance[read.exceptions]);
        read.offset = in.Offset();
        ++read.exceptions;
    }
    return read;
}

CodecStatus EncodeRecurrencePattern(const _tagRecurringInfo& record,
                                    const FirstInstance& first,
                                    unsigned codePage,
                                    std::vector<std::byte>& blob)
{
    blob.clear();
    const auto* const kind = std::ranges::find(kKinds, record.eRecurType, &KindRow::kind);
    if (kind == std::end(kKinds))
        return CodecStatus::Unsupported;
    LocalStart start;
    DateToSystemTime(first.localStart, start.time);
    start.minutes = MinutesOf(first.localStart);
    Pattern pattern;
    if (const CodecStatus status = kind->make(record, start, pattern); status != CodecStatus::Ok)
        return status;
    const Instances instances(record);
    const _tagEndInfo& end = record.tEndInfo;
    const std::uint32_t startDay = start.minutes - start.minutes % kMinutesPerDay;

    ByteWriter out(blob);
    out.Write<std::uint16_t>(kVersion);
    out.Write<std::uint16_t>(kVersion);
    out.Write<std::uint16_t>(pattern.frequency);
    out.Write<std::uint16_t>(pattern.type);
    out.Write<std::uint16_t>(0); // calendar
    out.Write<std::uint32_t>(pattern.firstMinutes);
    out.Write<std::uint32_t>(pattern.period);
    out.Write<std::uint32_t>(0); // sliding flag
    for (std::size_t i = 0; i < pattern.specificCount; ++i)
        out.Write<std::uint32_t>(pattern.specific[i]);
    out.Write<std::uint32_t>(EndTypeOf(end));
    out.Write<std::uint32_t>(end.ulTimesAfter != 0 ? std::uint32_t{end.ulTimesAfter}
                                                   : kCountWhereNone);
    out.Write<std::uint32_t>(0); // first day of the week
    WriteDates(instances.deleted, instances.deletedCount, out);
    WriteDates(instances.modified, instances.modifiedCount, out);
    out.Write<std::uint32_t>(startDay);
    out.Write<std::uint32_t>(EndDateOf(end, startDay, pattern.endDays));
    out.Write<std::uint32_t>(kReaderVersion2);
    out.Write<std::uint32_t>(kWriterVersion2);
    out.Write<std::uint32_t>(start.MinutesOfDay());
    out.Write<std::uint32_t>(start.MinutesOfDay() +
                             static_cast<std::uint32_t>(first.durationMinutes));
    out.Write<std::uint16_t>(instances.modifiedCount);
    // Kept as it is: the records are the first ones of the array, also where one without a date
    // lies among them. Pinned by RecurrencePatternWriteTest.
    const std::span<const _tagModifiedInstanceInfo> exceptions(
        record.arrModifiedInstance, static_cast<std::size_t>(instances.modifiedCount));
    for (const _tagModifiedInstanceInfo& exception : exceptions)
        WriteException(exception, codePage, out);
    out.Write<std::uint32_t>(0); // reserved block 1
    for (const _tagModifiedInstanceInfo& exception : exceptions)
        WriteExtendedException(exception, out);
    out.Write<std::uint32_t>(0); // reserved block 2
    if (!out.IsOk())
        blob.clear();
    return out.Status();
}
