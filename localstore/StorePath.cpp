#include "localstore/StorePath.h"

#include "localstore/Database.h"
#include "platform/WindowsHeaders.h"

namespace
{

// The setting's text, variables expanded; empty when there is none.
std::wstring ReadSetting()
{
    // Takes REG_EXPAND_SZ too, expanded.
    constexpr DWORD kFlags = RRF_RT_REG_SZ;
    std::wstring text;
    DWORD bytes = 0;
    LSTATUS status = RegGetValueW(
        HKEY_CURRENT_USER, kSettingsKey, kStoreValue, kFlags, nullptr, nullptr, &bytes);
    // The value may grow between the two calls; a value of absurd size is none.
    for (int attempt = 0; attempt < 4 && bytes <= 0x10000; ++attempt)
    {
        if (status != ERROR_SUCCESS && status != ERROR_MORE_DATA)
            return {};
        text.assign(bytes / sizeof(wchar_t) + 1, L'\0');
        bytes = static_cast<DWORD>(text.size() * sizeof(wchar_t));
        status = RegGetValueW(
            HKEY_CURRENT_USER, kSettingsKey, kStoreValue, kFlags, nullptr, text.data(), &bytes);
        if (status == ERROR_SUCCESS)
        {
            text.resize(wcsnlen(text.c_str(), text.size()));
            return text;
        }
    }
    return {};
}

bool IsFullPath(const std::wstring& path)
{
    const bool drive = path.size() > 3 && path[1] == L':' && (path[2] == L'\\' || path[2] == L'/');
    const bool share = path.size() > 2 && path[0] == L'\\' && path[1] == L'\\';
    return drive || share;
}

} // namespace

std::wstring StorePath()
{
    std::wstring setting = ReadSetting();
    if (!setting.empty())
    {
        // A relative path would mean another file for each program that opens the store.
        if (!IsFullPath(setting))
            throw DatabaseError(DatabaseFailure::CannotOpen,
                                "the value Store under HKEY_CURRENT_USER\\Software\\PimStoreBridge "
                                "must be a full path");
        return setting;
    }
    wchar_t folder[MAX_PATH] = {};
    if (FAILED(SHGetFolderPathW(nullptr, CSIDL_LOCAL_APPDATA, nullptr, SHGFP_TYPE_CURRENT, folder)))
        throw DatabaseError(DatabaseFailure::CannotOpen,
                            "the folder of the user's local application data cannot be told");
    return std::wstring(folder) + L"\\PimStoreBridge\\store.db";
}
