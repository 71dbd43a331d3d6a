// Which mail clients are installed, and which is the default, by the machine-wide registry.
#pragma once

#include <string>
#include <vector>

// Below HKEY_LOCAL_MACHINE: one key for each client.
inline constexpr wchar_t kMailClientsKey[] = L"Software\\Clients\\Mail\\";

// The default client's name as the registry has it, unchecked; empty when unset.
std::wstring DiscoverDefaultProvider();

// The clients whose program file exists, in the order of the registry's enumeration; the list is
// cleared first.
void DiscoverProviders(std::vector<std::wstring>& names);

// Whether a shell command names a file that exists and is neither a folder nor a system file. Cuts
// at " /", takes a quoted path out of its quotes, expands one variable at the very start.
bool IsFileUsable(const wchar_t* commandLine);
