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

std::optional<std::wstring> ZoneDisplay(const std::wstring& keyName)
{
    // A key below another one is no zone.
    if (keyName.empty() || keyName.find(L'\\') != std::wstring::npos)
        return std::nullopt;
    const std::wstring key =
        L"SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\Time Zones\\" + keyName;
    wchar_t text[260] = {};
    DWORD bytes = sizeof(text);
    const LSTATUS status = RegGetValueW(
        HKEY_LOCAL_MACHINE, key.c_str(), L"Display", RRF_RT_REG_SZ, nullptr, text, &bytes);
    if (status != ERROR_SUCCESS || !*text)
        return std::nullopt;
    return std::wstring(text);
}
} // namespace pim
