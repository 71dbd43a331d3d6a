// The constants of recurrence blobs that reading and writing share. Portable.
#pragma once

#include "platform/ContractRecords.h"

#include <cstddef>
#include <cstdint>
#include <type_traits>

namespace recurrence_format
{
using Unit = std::remove_extent_t<decltype(_tagModifiedInstanceInfo::szSubject)>;
inline constexpr std::size_t kTextRoom =
    std::extent_v<decltype(_tagModifiedInstanceInfo::szSubject)>;
inline constexpr std::size_t kMaxText = kTextRoom - 1;

inline constexpr std::uint32_t kMinutesPerDay = 1440;

inline constexpr std::uint16_t kFrequencyDaily = 0x200A;
inline constexpr std::uint16_t kFrequencyWeekly = 0x200B;
inline constexpr std::uint16_t kFrequencyMonthly = 0x200C;
inline constexpr std::uint16_t kFrequencyYearly = 0x200D;

inline constexpr std::uint16_t kPatternDay = 0;
inline constexpr std::uint16_t kPatternWeek = 1;
inline constexpr std::uint16_t kPatternMonth = 2;
inline constexpr std::uint16_t kPatternMonthNth = 3;

inline constexpr std::uint32_t kEndByDate = 0x2021;
inline constexpr std::uint32_t kEndByCount = 0x2022;
inline constexpr std::uint32_t kEndNever = 0x2023;

inline constexpr std::uint32_t kLastWeek = 5; // as the format counts the weeks of a month

inline constexpr std::uint16_t kOverridesSubject = 0x0001;
inline constexpr std::uint16_t kOverridesLocation = 0x0010;
} // namespace recurrence_format
