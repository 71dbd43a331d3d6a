#include "service/Registry.h"

#include "platform/UniqueHandle.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace
{
// The fixed buffer of ReadRegistryBuffer.
constexpr DWORD kBufferBytes = 520;

UniqueRegistryKey OpenToRead(HKEY root, const wchar_t* key)
{
    UniqueRegistryKey opened;
    if (RegOpenKeyExW(root, key, 0, KEY_READ, opened.Put()) != ERROR_SUCCESS)
        opened.Detach();
    return opened;
}

bool IsText(DWORD type)
{
    return type == REG_SZ || type == REG_EXPAND_SZ;
}

std::wstring_view UpToNul(std::wstring_view text)
{
    return text.substr(0, text.find(L'\0'));
}

// The characters of a value of any length; its type in type. Empty on failure. A value need not
// end in a NUL nor hold whole characters.
std::wstring ReadCharacters(HKEY root,
                            const std::wstring& key,
                            const std::wstring& value,
                            DWORD& type)
{
    const UniqueRegistryKey opened = OpenToRead(root, key.c_str());
    DWORD bytes = 0;
    if (!opened || RegQueryValueExW(opened.Get(), value.c_str(), nullptr, &type, nullptr, &bytes) !=
                       ERROR_SUCCESS)
        return {};
    std::wstring characters((bytes + 1) / sizeof(wchar_t), L'\0');
    if (RegQueryValueExW(opened.Get(),
                         value.c_str(),
                         nullptr,
                         &type,
                         reinterpret_cast<BYTE*>(characters.data()),
                         &bytes) != ERROR_SUCCESS)
        return {};
    characters.resize(std::min<std::size_t>(characters.size(), bytes / sizeof(wchar_t)));
    return characters;
}
} // namespace

std::wstring ReadRegistryString(HKEY root, const std::wstring& key, const std::wstring& value)
{
    DWORD type = REG_NONE;
    const std::wstring characters = ReadCharacters(root, key, value, type);
    return IsText(type) ? std::wstring(UpToNul(characters)) : std::wstring();
}

bool ReadRegistryBuffer(HKEY root,
                        const std::wstring& key,
                        const std::wstring& value,
                        DWORD bufferBytes,
                        std::wstring& text)
{
    const UniqueRegistryKey opened = OpenToRead(root, key.c_str());
    std::array<wchar_t, kBufferBytes / sizeof(wchar_t)> buffer{};
    DWORD bytes = std::min(bufferBytes, kBufferBytes);
    DWORD type = REG_NONE;
    const bool read = opened && RegQueryValueExW(opened.Get(),
                                                 value.c_str(),
                                                 nullptr,
                                                 &type,
                                                 reinterpret_cast<BYTE*>(buffer.data()),
                                                 &bytes) == ERROR_SUCCESS;
    text.clear();
    if (read && IsText(type))
        text = UpToNul({buffer.data(), bytes / sizeof(wchar_t)});
    return static_cast<bool>(opened);
}

void EnumRegistrySubKeys(HKEY root, const std::wstring& key, std::vector<std::wstring>& names)
{
    const UniqueRegistryKey opened = OpenToRead(root, key.c_str());
    DWORD count = 0;
    DWORD longest = 0; // without the terminator
    if (!opened || RegQueryInfoKeyW(opened.Get(),
                                    nullptr,
                                    nullptr,
                                    nullptr,
                                    &count,
                                    &longest,
                                    nullptr,
                                    nullptr,
                                    nullptr,
                                    nullptr,
                                    nullptr,
                                    nullptr) != ERROR_SUCCESS)
        return;
    std::wstring name(longest + 1, L'\0');
    // One index more than the count, for a key that was added meanwhile; else it fails.
    for (DWORD index = 0; index <= count; ++index)
    {
        auto length = static_cast<DWORD>(name.size());
        if (RegEnumKeyExW(
                opened.Get(), index, name.data(), &length, nullptr, nullptr, nullptr, nullptr) ==
                ERROR_SUCCESS &&
            length > 0)
            names.emplace_back(name, 0, length);
    }
}

void ReadRegistryMultiString(HKEY root,
                             const std::wstring& key,
                             const std::wstring& value,
                             std::vector<std::wstring>& texts)
{
    DWORD type = REG_NONE;
    const std::wstring characters = ReadCharacters(root, key, value, type);
    if (type != REG_MULTI_SZ)
        return;
    for (std::size_t start = 0; start < characters.size();)
    {
        const std::wstring_view text = UpToNul(std::wstring_view(characters).substr(start));
        if (!text.empty())
            texts.emplace_back(text);
        start += text.size() + 1;
    }
}

bool ReadRegistryBinary(
    HKEY root, const wchar_t* key, const wchar_t* value, void* buffer, DWORD bufferBytes)
{
    if (!root || !key || !*key || !value || !*value || !buffer)
        return false;
    const UniqueRegistryKey opened = OpenToRead(root, key);
    return opened &&
           RegQueryValueExW(
               opened.Get(), value, nullptr, nullptr, static_cast<BYTE*>(buffer), &bufferBytes) ==
               ERROR_SUCCESS;
}
