#include "outlook/calendar/RegistryZones.h"

#include "platform/WindowsHeaders.h"
#include "service/Registry.h"

namespace
{
constexpr wchar_t kZonesKey[] = L"SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\Time Zones";
constexpr DWORD kDisplayBytes = 260 * sizeof(wchar_t);

std::wstring KeyOf(const std::wstring& keyName)
{
    return std::wstring(kZonesKey) + L"\\" + keyName;
}
} // namespace

std::vector<std::wstring> RegistryZones::KeyNames() const
{
    std::vector<std::wstring> names;
    EnumRegistrySubKeys(HKEY_LOCAL_MACHINE, kZonesKey, names);
    return names;
}

bool RegistryZones::ReadRules(const std::wstring& keyName, ZoneRules& rules) const
{
    ZoneRules read;
    const bool isRead =
        ReadRegistryBinary(HKEY_LOCAL_MACHINE, KeyOf(keyName).c_str(), L"TZI", &read, sizeof(read));
    rules = isRead ? read : ZoneRules{};
    return isRead;
}

std::wstring RegistryZones::Display(const std::wstring& keyName) const
{
    std::wstring text;
    ReadRegistryBuffer(HKEY_LOCAL_MACHINE, KeyOf(keyName), L"Display", kDisplayBytes, text);
    return text;
}

TIME_ZONE_INFORMATION RegistryZones::Machine() const
{
    TIME_ZONE_INFORMATION zone{};
    if (GetTimeZoneInformation(&zone) == TIME_ZONE_ID_INVALID)
        return {};
    return zone;
}
