// What installing the embedded message store means: the registry values that tell of Outlook as a
// mail client, and the store's library in the folder that the server's discovery puts together
// from them.
#pragma once

#include "localstore/Installer.h"

#include <string>

inline constexpr wchar_t kStoreComponent[] = L"store";
inline constexpr wchar_t kOutlookClientKey[] = L"Software\\Clients\\Mail\\Microsoft Outlook";
inline constexpr wchar_t kMicrosoftOutlook[] = L"Microsoft Outlook";

// The plan for the product in that folder (with its trailing backslash), on a machine with that
// program files folder. False, and the reason in words, where files are missing or a path is too
// long for the discovery.
//
// The library's folder is named by a number. The discovery reads it from a value of the user that
// nobody sets, so that it is 0 and the installation serves every user of the machine.
bool PlanStore(const std::wstring& home,
               const std::wstring& programFiles,
               ComponentPlan& plan,
               std::wstring& reason);
