#include "client/SystemZone.h"

#include "platform/WindowsHeaders.h"

namespace pim
{
namespace
{
SYSTEMTIME ToSystem(const CivilTime& time)
{
    SYSTEMTIME system = {};
    system.wYear = static_cast<WORD>(time.year);
    system.wMonth = static_cast<WORD>(time.month);
    system.wDay = static_cast<WORD>(time.day);
    system.wHour = static_cast<WORD>(time.hour);
    system.wMinute = static_cast<WORD>(time.minute);
    system.wSecond = static_cast<WORD>(time.second);
    return system;
}

CivilTime FromSystem(const SYSTEMTIME& system)
{
    return {system.wYear, system.wMonth, system.wDay, system.wHour, system.wMinute, system.wSecond};
}
} // namespace

CivilTime SystemZone::LocalFromUtc(const CivilTime& utc) const
{
    const SYSTEMTIME from = ToSystem(utc);
    SYSTEMTIME to = {};
    return SystemTimeToTzSpecificLocalTime(nullptr, &from, &to) ? FromSystem(to) : utc;
}

CivilTime SystemZone::UtcFromLocal(const CivilTime& local) const
{
    const SYSTEMTIME from = ToSystem(local);
    SYSTEMTIME to = {};
    return TzSpecificLocalTimeToSystemTime(nullptr, &from, &to) ? FromSystem(to) : local;
}
} // namespace pim
