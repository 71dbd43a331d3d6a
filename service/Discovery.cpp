#include "service/Discovery.h"

#include "platform/WindowsHeaders.h"
#include "service/Registry.h"

#include <algorithm>
#include <string_view>

namespace
{
const std::wstring kOpenCommand = L"\\shell\\open\\command";

// A command line that is longer does not fit.
constexpr DWORD kCommandBytes = 520;
constexpr std::size_t kCommandLength = 520;
constexpr DWORD kVariableLength = 260;

// What a variable stands for; empty where it is not set or does not fit.
std::wstring VariableValue(const std::wstring& name)
{
    wchar_t value[kVariableLength] = {};
    const DWORD length = GetEnvironmentVariableW(name.c_str(), value, kVariableLength);
    return length < kVariableLength ? std::wstring(value, length) : std::wstring();
}

void TakeOutOfQuotes(std::wstring& text)
{
    if (!text.starts_with(L'"'))
        return;
    const std::size_t closing = text.find(L'"', 1);
    if (closing != std::wstring::npos)
        text = text.substr(1, closing - 1);
}

void ExpandLeadingVariable(std::wstring& text)
{
    if (!text.starts_with(L'%'))
        return;
    const std::size_t closing = text.find(L'%', 1);
    if (closing == std::wstring::npos)
        return;
    const std::wstring value = VariableValue(text.substr(1, closing - 1));
    if (!value.empty())
        text.replace(0, closing + 1, value);
}
} // namespace

std::wstring DiscoverDefaultProvider()
{
    return ReadRegistryString(HKEY_LOCAL_MACHINE, kMailClientsKey, L"");
}

void DiscoverProviders(std::vector<std::wstring>& names)
{
    std::vector<std::wstring> clients;
    EnumRegistrySubKeys(HKEY_LOCAL_MACHINE, kMailClientsKey, clients);
    names.clear();
    for (const std::wstring& client : clients)
    {
        std::wstring command;
        if (!client.empty() &&
            ReadRegistryBuffer(HKEY_LOCAL_MACHINE,
                               kMailClientsKey + client + kOpenCommand,
                               L"",
                               kCommandBytes,
                               command) &&
            !command.empty() && IsFileUsable(command.c_str()))
            names.push_back(client);
    }
}

bool IsFileUsable(const wchar_t* commandLine)
{
    if (!commandLine)
        return false;
    std::wstring path(std::wstring_view(commandLine).substr(0, kCommandLength));
    // Switches go; so does what follows a blank and a slash within a path.
    path.resize(std::min(path.find(L" /"), path.size()));
    // In this order: a quoted path may begin with a variable.
    TakeOutOfQuotes(path);
    ExpandLeadingVariable(path);
    const DWORD attributes = GetFileAttributesW(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES &&
           !(attributes & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_SYSTEM));
}
