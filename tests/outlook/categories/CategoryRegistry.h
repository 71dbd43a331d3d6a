// Where the 2003 category list lies, and what lies there.
#pragma once

#include "platform/WindowsHeaders.h"

#include <vector>

inline constexpr wchar_t kCategoriesKey[] =
    L"Software\\Microsoft\\Office\\11.0\\Outlook\\Categories";

// A value of the current user; empty where there is none.
struct RegistryBytes
{
    DWORD type = REG_NONE;
    std::vector<BYTE> bytes;
};

inline RegistryBytes ReadBytes(const wchar_t* key, const wchar_t* value)
{
    RegistryBytes result;
    result.bytes.resize(1000);
    DWORD size = 1000;
    if (RegGetValueW(HKEY_CURRENT_USER,
                     key,
                     value,
                     RRF_RT_ANY | RRF_NOEXPAND,
                     &result.type,
                     result.bytes.data(),
                     &size) != ERROR_SUCCESS)
        size = 0;
    result.bytes.resize(size);
    return result;
}
