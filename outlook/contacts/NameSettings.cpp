#include "outlook/contacts/NameSettings.h"

#include "platform/WindowsHeaders.h"
#include "service/Registry.h"

namespace
{
// The newest first.
constexpr const wchar_t* kKeys[] = {
    L"Software\\Microsoft\\Office\\15.0\\Outlook\\Contact",
    L"Software\\Microsoft\\Office\\14.0\\Outlook\\Contact",
    L"Software\\Microsoft\\Office\\12.0\\Outlook\\Contact",
    L"Software\\Microsoft\\Office\\11.0\\Outlook\\Contact",
};

DWORD ReadOrder(const wchar_t* key)
{
    DWORD order = 0;
    DWORD bytes = sizeof order;
    const LSTATUS status = RegGetValueW(
        HKEY_CURRENT_USER, key, L"FileAsOrder", RRF_RT_REG_DWORD, nullptr, &order, &bytes);
    return status == ERROR_SUCCESS ? order : 0;
}
} // namespace

NameSettings ReadNameSettings()
{
    for (const wchar_t* const key : kKeys)
        if (const DWORD order = ReadOrder(key))
            return {static_cast<std::uint32_t>(order),
                    ReadRegistryString(HKEY_CURRENT_USER, key, L"NameParserStyle")};
    return {};
}
