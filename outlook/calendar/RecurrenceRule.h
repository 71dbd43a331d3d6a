// What a recurrence blob says of the rule itself, worked out from the contract's record. Portable.
#pragma once

#include "platform/CodecStatus.h"
#include "platform/ContractRecords.h"
#include "platform/Types.h"

#include <array>
#include <cstddef>
#include <cstdint>

// The first instance's start in the forms that rules need.
class RecurrenceStart
{
  public:
    explicit RecurrenceStart(DATE local);

    std::uint32_t MinutesOfDay() const { return m_time.wHour * 60u + m_time.wMinute; }
    // Minutes since 1601 of midnight.
    std::uint32_t Day() const;
    // The Sunday on or before it.
    std::uint32_t Sunday() const;
    unsigned MonthOfYear() const { return m_time.wMonth; }
    // Months from January 1601.
    std::uint32_t Month() const;

  private:
    SYSTEMTIME m_time{};         // zero where the DATE is none
    std::uint32_t m_minutes = 0; // since 1601
};

// The fields that differ by the kind of a rule. Unsigned arithmetic that wraps, as everywhere in
// the format.
struct RecurrenceRule
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

// Returns: as EncodeRecurrencePattern, with the rule of no use where it is not Ok.
[[nodiscard]] CodecStatus MakeRecurrenceRule(const _tagRecurringInfo& record,
                                             const RecurrenceStart& start,
                                             RecurrenceRule& rule);
