// Writes recurrence blobs.
#include "outlook/calendar/RecurrencePattern.h"

#include "outlook/calendar/RecurrenceFormat.h"
#include "outlook/calendar/RecurrenceRule.h"
#include "platform/ByteFiller.h"
#include "platform/CodePages.h"
#include "service/TimeConversions.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

using namespace recurrence_format;

namespace
{
constexpr std::uint16_t kVersion = 0x3004;
constexpr std::uint32_t kReaderVersion2 = 0x3006;
constexpr std::uint32_t kWriterVersion2 = 0x3009;

constexpr std::uint32_t kCountWhereNone = 10;
constexpr std::uint32_t kEndDateNever = 0x5AE980DF; // 4500-12-31 23:59

std::uint32_t DayOf(DATE date)
{
    const std::uint32_t minutes = DateToMinutes(date);
    return minutes - minutes % kMinutesPerDay;
}

// The days that go into the blob. Without a deleted instance at the head of its array a record
// gives neither deleted nor modified ones.
// Kept as it is: clients rely on it. Pinned by RecurrencePatternWriteTest.
class Instances
{
  public:
    explicit Instances(const _tagRecurringInfo& record)
    {
        if (record.arrDeletedInstance[0] == 0.0)
            return;
        std::array<DATE, kMaxDeletedInstances> dates;
        std::ranges::copy(record.arrDeletedInstance, dates.begin());
        // What is no number goes last, so that there is an order.
        const auto isBefore = [](DATE left, DATE right) {
            return std::isnan(right) ? !std::isnan(left) : left < right;
        };
        const std::span used(dates.begin(), std::remove(dates.begin(), dates.end(), 0.0));
        if (!std::ranges::is_sorted(used, isBefore))
            std::ranges::sort(used, isBefore);
        for (const DATE date : used)
            m_deleted[m_deletedCount++] = DayOf(date);
        for (const _tagModifiedInstanceInfo& instance : record.arrModifiedInstance)
            if (instance.dtModifiedDate != 0.0)
                m_modified[m_modifiedCount++] = DayOf(instance.dtModifiedDate);
    }

    std::span<const std::uint32_t> Deleted() const { return {m_deleted.data(), m_deletedCount}; }
    std::span<const std::uint32_t> Modified() const { return {m_modified.data(), m_modifiedCount}; }

  private:
    std::array<std::uint32_t, kMaxDeletedInstances> m_deleted;
    std::array<std::uint32_t, kMaxModifiedInstances> m_modified;
    std::size_t m_deletedCount = 0;
    std::size_t m_modifiedCount = 0;
};

template <class Out> void WriteDays(std::span<const std::uint32_t> days, Out& out)
{
    out.template Write<std::uint32_t>(days.size());
    for (const std::uint32_t day : days)
        out.template Write<std::uint32_t>(day);
}

// Kept as it is: the kind of the end is not read here, only its count and then its date. Pinned by
// RecurrencePatternWriteTest.KeepsTypeAndDateOfTheEndApartWhereTheyDisagree.
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

// A text of an exception, which is written in both forms.
class ExceptionText
{
  public:
    ExceptionText(const Unit (&text)[kTextRoom], unsigned codePage)
    {
        std::size_t count = 0;
        unsigned seen = 0;
        for (; count < kMaxText && text[count] != 0; ++count)
            seen |= text[count];
        m_units = {text, count};
        m_isAscii = seen < 0x80;
        if (!m_isAscii)
            AppendToCodePage(codePage, std::wstring(m_units.begin(), m_units.end()), m_encoded);
    }

    template <class Out> void WriteBytes(Out& out) const
    {
        std::array<std::byte, kMaxText> ascii;
        std::span<const std::byte> bytes = std::as_bytes(std::span(m_encoded));
        if (m_isAscii)
        {
            for (std::size_t i = 0; i < m_units.size(); ++i)
                ascii[i] = static_cast<std::byte>(m_units[i]);
            bytes = std::span(ascii).first(m_units.size());
        }
        out.template Write<std::uint16_t>(bytes.size() + 1); // with a terminator, not written
        out.template Write<std::uint16_t>(bytes.size());
        out.WriteBytes(bytes);
    }

    template <class Out> void WriteUnits(Out& out) const
    {
        static_assert(std::endian::native == std::endian::little && sizeof(Unit) == 2);
        out.template Write<std::uint16_t>(m_units.size());
        out.WriteBytes(std::as_bytes(m_units));
    }

  private:
    std::span<const Unit> m_units;
    bool m_isAscii = true;
    std::string m_encoded; // of a text that is not ASCII
};

// What both records of an exception are made of.
class Exception
{
  public:
    Exception(const _tagModifiedInstanceInfo& instance, unsigned codePage)
        : m_startMinutes(DateToMinutes(instance.dtStartDateTime)),
          m_endMinutes(DateToMinutes(instance.dtEndDateTime)),
          m_originalMinutes(DateToMinutes(instance.dtOriginalDateTime)),
          m_subject(instance.szSubject, codePage), m_location(instance.szLocation, codePage)
    {
    }

    template <class Out> void Write(Out& out) const
    {
        WriteTimes(out);
        out.template Write<std::uint16_t>(kOverridesSubject | kOverridesLocation);
        m_subject.WriteBytes(out);
        m_location.WriteBytes(out);
    }

    template <class Out> void WriteExtended(Out& out) const
    {
        out.template Write<std::uint32_t>(4); // size of the change highlight
        out.template Write<std::uint32_t>(0); // the change highlight
        out.template Write<std::uint32_t>(0); // reserved block 1
        WriteTimes(out);
        m_subject.WriteUnits(out);
        m_location.WriteUnits(out);
        out.template Write<std::uint32_t>(0); // reserved block 2
    }

  private:
    template <class Out> void WriteTimes(Out& out) const
    {
        out.template Write<std::uint32_t>(m_startMinutes);
        out.template Write<std::uint32_t>(m_endMinutes);
        out.template Write<std::uint32_t>(m_originalMinutes);
    }

    std::uint32_t m_startMinutes;
    std::uint32_t m_endMinutes;
    std::uint32_t m_originalMinutes;
    ExceptionText m_subject;
    ExceptionText m_location;
};

// All that a blob says.
struct Contents
{
    const _tagEndInfo& end;
    const RecurrenceStart& start;
    std::uint32_t durationMinutes;
    const RecurrenceRule& rule;
    const Instances& instances;
    const std::vector<Exception>& exceptions;
};

template <class Out> void WriteContents(const Contents& contents, Out& out)
{
    const RecurrenceRule& rule = contents.rule;
    const std::uint32_t times = contents.end.ulTimesAfter;
    const std::uint32_t startDay = contents.start.Day();
    const std::uint32_t startOffset = contents.start.MinutesOfDay();
    out.template Write<std::uint16_t>(kVersion);
    out.template Write<std::uint16_t>(kVersion);
    out.template Write<std::uint16_t>(rule.frequency);
    out.template Write<std::uint16_t>(rule.type);
    out.template Write<std::uint16_t>(0); // calendar
    out.template Write<std::uint32_t>(rule.firstMinutes);
    out.template Write<std::uint32_t>(rule.period);
    out.template Write<std::uint32_t>(0); // sliding flag
    for (std::size_t i = 0; i < rule.specificCount; ++i)
        out.template Write<std::uint32_t>(rule.specific[i]);
    out.template Write<std::uint32_t>(EndTypeOf(contents.end));
    out.template Write<std::uint32_t>(times != 0 ? times : kCountWhereNone);
    out.template Write<std::uint32_t>(0); // first day of the week
    WriteDays(contents.instances.Deleted(), out);
    WriteDays(contents.instances.Modified(), out);
    out.template Write<std::uint32_t>(startDay);
    out.template Write<std::uint32_t>(EndDateOf(contents.end, startDay, rule.endDays));
    out.template Write<std::uint32_t>(kReaderVersion2);
    out.template Write<std::uint32_t>(kWriterVersion2);
    out.template Write<std::uint32_t>(startOffset);
    out.template Write<std::uint32_t>(startOffset + contents.durationMinutes);
    out.template Write<std::uint16_t>(contents.exceptions.size());
    for (const Exception& exception : contents.exceptions)
        exception.Write(out);
    out.template Write<std::uint32_t>(0); // reserved block 1
    for (const Exception& exception : contents.exceptions)
        exception.WriteExtended(out);
    out.template Write<std::uint32_t>(0); // reserved block 2
}

// Kept as it is: the records are the first ones of the array, also where one without a date lies
// among them. Pinned by RecurrencePatternWriteTest.
std::vector<Exception> ExceptionsOf(const _tagRecurringInfo& record,
                                    std::size_t count,
                                    unsigned codePage)
{
    std::vector<Exception> exceptions;
    exceptions.reserve(count);
    for (std::size_t i = 0; i < count; ++i)
        exceptions.emplace_back(record.arrModifiedInstance[i], codePage);
    return exceptions;
}
} // namespace

CodecStatus EncodeRecurrencePattern(const _tagRecurringInfo& record,
                                    const FirstInstance& first,
                                    unsigned codePage,
                                    std::vector<std::byte>& blob)
{
    blob.clear();
    const RecurrenceStart start(first.localStart);
    RecurrenceRule rule;
    if (const CodecStatus status = MakeRecurrenceRule(record, start, rule);
        status != CodecStatus::Ok)
        return status;
    const Instances instances(record);
    const std::vector<Exception> exceptions =
        ExceptionsOf(record, instances.Modified().size(), codePage);
    const Contents contents{record.tEndInfo,
                            start,
                            static_cast<std::uint32_t>(first.durationMinutes),
                            rule,
                            instances,
                            exceptions};
    ByteCounter size;
    WriteContents(contents, size);
    blob.resize(size.Size());
    ByteFiller out(blob);
    WriteContents(contents, out);
    if (!out.IsOk())
        blob.clear();
    return out.Status();
}
