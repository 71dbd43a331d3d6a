#include "outlook/categories/MasterList.h"

#include "platform/UniqueHandle.h"
#include "platform/WindowsHeaders.h"

namespace
{
constexpr wchar_t kKey[] = L"Software\\Microsoft\\Office\\11.0\\Outlook\\Categories";
constexpr wchar_t kValue[] = L"MasterList";

static_assert((KEY_READ | KEY_WRITE) == 0x2001F);

UniqueRegistryKey OpenForWriting()
{
    UniqueRegistryKey key;
    if (RegOpenKeyExW(HKEY_CURRENT_USER, kKey, 0, KEY_READ | KEY_WRITE, key.Put()) == ERROR_SUCCESS)
        return key;
    if (RegCreateKeyW(HKEY_CURRENT_USER, kValue, key.Put()) != ERROR_SUCCESS)
        key.Detach();
    return key;
}
} // namespace

std::wstring ReadMasterList()
{
    UniqueRegistryKey key;
    if (RegOpenKeyExW(HKEY_CURRENT_USER, kKey, 0, KEY_READ, key.Put()) != ERROR_SUCCESS)
        return {};
    std::wstring text;
    DWORD bytes = 0;
    LSTATUS result = RegQueryValueExW(key.Get(), kValue, nullptr, nullptr, nullptr, &bytes);
    while (result == ERROR_SUCCESS)
    {
        text.assign(bytes / sizeof(wchar_t) + 1, L'\0'); // an odd byte at the end counts for none
        result = RegQueryValueExW(
            key.Get(), kValue, nullptr, nullptr, reinterpret_cast<BYTE*>(text.data()), &bytes);
        if (result == ERROR_SUCCESS)
        {
            text.resize(bytes / sizeof(wchar_t));
            return text.substr(0, text.find(L'\0'));
        }
        // It grew meanwhile: the call told the new size.
        if (result == ERROR_MORE_DATA)
            result = ERROR_SUCCESS;
    }
    return {};
}

void WriteMasterList(const std::wstring& text)
{
    const UniqueRegistryKey key = OpenForWriting();
    if (key)
        RegSetValueExW(key.Get(),
                       kValue,
                       0,
                       REG_BINARY,
                       reinterpret_cast<const BYTE*>(text.c_str()),
                       static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t)));
}
