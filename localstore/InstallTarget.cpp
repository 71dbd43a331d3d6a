#include "localstore/InstallTarget.h"

#include "platform/UniqueHandle.h"

#include <cstring>
#include <cwchar>

namespace
{

// The 64-bit server reads the 64-bit half; ask for it by name so that it cannot be another.
constexpr REGSAM kView = KEY_WOW64_64KEY;

// Values that an installer looks at are short; anything larger is not one of ours.
constexpr DWORD kLargestValueBytes = 1 << 20;
// The same of files: the largest is a library.
constexpr LONGLONG kLargestFileBytes = 256ll << 20;

LSTATUS LastStatus()
{
    return static_cast<LSTATUS>(::GetLastError());
}

std::wstring Units(const RegistryValue& value)
{
    std::wstring text(value.bytes.size() / sizeof(wchar_t), L'\0');
    if (!text.empty())
        std::memcpy(text.data(), value.bytes.data(), text.size() * sizeof(wchar_t));
    return text;
}

RegistryValue FromUnits(DWORD type, const std::wstring& units)
{
    RegistryValue value{type, std::vector<BYTE>(units.size() * sizeof(wchar_t))};
    if (!units.empty())
        std::memcpy(value.bytes.data(), units.data(), value.bytes.size());
    return value;
}

} // namespace

RegistryValue TextValue(const std::wstring& text)
{
    return FromUnits(REG_SZ, text + L'\0');
}

RegistryValue ListValue(const std::vector<std::wstring>& texts)
{
    std::wstring units;
    for (const std::wstring& text : texts)
        units += text + L'\0';
    return FromUnits(REG_MULTI_SZ, units + L'\0');
}

std::wstring TextOfValue(const RegistryValue& value)
{
    if (value.type != REG_SZ && value.type != REG_EXPAND_SZ)
        return {};
    const std::wstring units = Units(value);
    return units.substr(0, wcsnlen(units.c_str(), units.size()));
}

std::vector<std::wstring> ListOfValue(const RegistryValue& value)
{
    std::vector<std::wstring> texts;
    if (value.type != REG_MULTI_SZ)
        return texts;
    const std::wstring units = Units(value);
    for (size_t start = 0; start < units.size();)
    {
        const size_t length = wcsnlen(units.c_str() + start, units.size() - start);
        if (length > 0)
            texts.push_back(units.substr(start, length));
        start += length + 1;
    }
    return texts;
}

LSTATUS SystemInstallTarget::ReadValue(const std::wstring& key,
                                       const std::wstring& name,
                                       RegistryValue& value) const
{
    UniqueRegistryKey opened;
    LSTATUS status = RegOpenKeyExW(m_root, key.c_str(), 0, KEY_QUERY_VALUE | kView, opened.Put());
    if (status != ERROR_SUCCESS)
        return status;
    DWORD bytes = 0;
    status = RegQueryValueExW(opened.Get(), name.c_str(), nullptr, &value.type, nullptr, &bytes);
    // The value may grow between the two calls.
    while (status == ERROR_SUCCESS || status == ERROR_MORE_DATA)
    {
        if (bytes > kLargestValueBytes)
            return ERROR_MORE_DATA;
        value.bytes.resize(bytes);
        status = RegQueryValueExW(
            opened.Get(), name.c_str(), nullptr, &value.type, value.bytes.data(), &bytes);
        if (status == ERROR_SUCCESS)
        {
            value.bytes.resize(bytes);
            return ERROR_SUCCESS;
        }
    }
    return status;
}

bool SystemInstallTarget::KeyExists(const std::wstring& key) const
{
    UniqueRegistryKey opened;
    const LSTATUS status =
        RegOpenKeyExW(m_root, key.c_str(), 0, KEY_QUERY_VALUE | kView, opened.Put());
    // A key that cannot be opened is there all the same, and not ours to remove.
    return status != ERROR_FILE_NOT_FOUND && status != ERROR_PATH_NOT_FOUND;
}

bool SystemInstallTarget::FolderExists(const std::wstring& path) const
{
    const DWORD attributes = GetFileAttributesW(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

LSTATUS SystemInstallTarget::CreateKey(const std::wstring& key)
{
    UniqueRegistryKey opened;
    return RegCreateKeyExW(m_root,
                           key.c_str(),
                           0,
                           nullptr,
                           REG_OPTION_NON_VOLATILE,
                           KEY_QUERY_VALUE | kView,
                           nullptr,
                           opened.Put(),
                           nullptr);
}

LSTATUS SystemInstallTarget::WriteValue(const std::wstring& key,
                                        const std::wstring& name,
                                        const RegistryValue& value)
{
    UniqueRegistryKey opened;
    const LSTATUS status =
        RegOpenKeyExW(m_root, key.c_str(), 0, KEY_SET_VALUE | kView, opened.Put());
    if (status != ERROR_SUCCESS)
        return status;
    return RegSetValueExW(opened.Get(),
                          name.c_str(),
                          0,
                          value.type,
                          value.bytes.data(),
                          static_cast<DWORD>(value.bytes.size()));
}

LSTATUS SystemInstallTarget::DeleteValue(const std::wstring& key, const std::wstring& name)
{
    UniqueRegistryKey opened;
    const LSTATUS status =
        RegOpenKeyExW(m_root, key.c_str(), 0, KEY_SET_VALUE | kView, opened.Put());
    if (status != ERROR_SUCCESS)
        return status;
    return RegDeleteValueW(opened.Get(), name.c_str());
}

LSTATUS SystemInstallTarget::DeleteEmptyKey(const std::wstring& key)
{
    {
        UniqueRegistryKey opened;
        LSTATUS status =
            RegOpenKeyExW(m_root, key.c_str(), 0, KEY_QUERY_VALUE | kView, opened.Put());
        if (status != ERROR_SUCCESS)
            return status;
        DWORD keys = 0;
        DWORD values = 0;
        status = RegQueryInfoKeyW(opened.Get(),
                                  nullptr,
                                  nullptr,
                                  nullptr,
                                  &keys,
                                  nullptr,
                                  nullptr,
                                  &values,
                                  nullptr,
                                  nullptr,
                                  nullptr,
                                  nullptr);
        if (status != ERROR_SUCCESS)
            return status;
        if (keys != 0 || values != 0)
            return ERROR_DIR_NOT_EMPTY;
    }
    return RegDeleteKeyExW(m_root, key.c_str(), kView, 0);
}

LSTATUS SystemInstallTarget::CreateFolder(const std::wstring& path)
{
    return CreateDirectoryW(path.c_str(), nullptr) ? ERROR_SUCCESS : LastStatus();
}

LSTATUS SystemInstallTarget::RemoveEmptyFolder(const std::wstring& path)
{
    return RemoveDirectoryW(path.c_str()) ? ERROR_SUCCESS : static_cast<LSTATUS>(::GetLastError());
}

LSTATUS SystemInstallTarget::ReadWholeFile(const std::wstring& path, std::vector<BYTE>& bytes) const
{
    const UniqueFile file(CreateFileW(path.c_str(),
                                      GENERIC_READ,
                                      FILE_SHARE_READ | FILE_SHARE_DELETE,
                                      nullptr,
                                      OPEN_EXISTING,
                                      0,
                                      nullptr));
    LARGE_INTEGER size{};
    if (!file || !GetFileSizeEx(file.Get(), &size))
        return LastStatus();
    if (size.QuadPart > kLargestFileBytes)
        return ERROR_FILE_TOO_LARGE;
    bytes.resize(static_cast<size_t>(size.QuadPart));
    DWORD read = 0;
    if (!ReadFile(file.Get(), bytes.data(), static_cast<DWORD>(bytes.size()), &read, nullptr))
        return LastStatus();
    bytes.resize(read);
    return ERROR_SUCCESS;
}

LSTATUS SystemInstallTarget::WriteNewFile(const std::wstring& path, const std::vector<BYTE>& bytes)
{
    UniqueFile file(CreateFileW(
        path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!file)
        return LastStatus();
    DWORD written = 0;
    LSTATUS status = ERROR_SUCCESS;
    if (!WriteFile(file.Get(), bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr) ||
        !FlushFileBuffers(file.Get()))
        status = LastStatus();
    else if (written != bytes.size())
        status = ERROR_DISK_FULL;
    file.Reset();
    if (status != ERROR_SUCCESS)
        DeleteFileW(path.c_str());
    return status;
}

LSTATUS SystemInstallTarget::RemoveFile(const std::wstring& path)
{
    return DeleteFileW(path.c_str()) ? ERROR_SUCCESS : LastStatus();
}
