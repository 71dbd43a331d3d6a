// Where the store lies.
#pragma once

#include <string>

// The value Store under HKEY_CURRENT_USER\Software\PimStoreBridge when there is one (variables
// expanded, a full path), else PimStoreBridge\store.db in the user's local application data.
// Throws DatabaseError (CannotOpen) for a value that is no full path and where the folder cannot
// be told.
std::wstring StorePath();

inline constexpr wchar_t kSettingsKey[] = L"Software\\PimStoreBridge";
inline constexpr wchar_t kStoreValue[] = L"Store";
