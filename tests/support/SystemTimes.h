// Short ways to write the system's time records in tests, natively and on Windows.
#pragma once

#include "platform/Types.h"

#include <cstdint>

inline SYSTEMTIME Time(int year, int month, int day, int hour = 0, int minute = 0, int second = 0)
{
    SYSTEMTIME time{};
    time.wYear = static_cast<std::uint16_t>(year);
    time.wMonth = static_cast<std::uint16_t>(month);
    time.wDay = static_cast<std::uint16_t>(day);
    time.wHour = static_cast<std::uint16_t>(hour);
    time.wMinute = static_cast<std::uint16_t>(minute);
    time.wSecond = static_cast<std::uint16_t>(second);
    return time;
}

// 100 ns since 1601.
inline std::uint64_t Ticks(const FILETIME& time)
{
    return (static_cast<std::uint64_t>(time.dwHighDateTime) << 32) | time.dwLowDateTime;
}

inline FILETIME FromTicks(std::uint64_t ticks)
{
    FILETIME time{};
    time.dwLowDateTime = static_cast<std::uint32_t>(ticks);
    time.dwHighDateTime = static_cast<std::uint32_t>(ticks >> 32);
    return time;
}
