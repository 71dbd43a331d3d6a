#include "localstore/BookComponent.h"

#include <vector>

namespace
{

constexpr wchar_t kBookLibrary[] = L"PimLocalBook.dll";
constexpr const wchar_t* kPrograms[] = {L"pim.exe", L"pimstore.exe"};
constexpr wchar_t kCalendars[] = L"\\Microsoft\\Windows Calendar\\Calendars";

bool ExpandsToItself(const std::wstring& text)
{
    std::vector<wchar_t> expanded(text.size() + 1024);
    const DWORD length = ExpandEnvironmentStringsW(
        text.c_str(), expanded.data(), static_cast<DWORD>(expanded.size()));
    return length != 0 && length <= expanded.size() && text == expanded.data();
}

} // namespace

bool IsProgramFile(const std::wstring& path)
{
    const DWORD attributes = GetFileAttributesW(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES &&
           !(attributes & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_SYSTEM));
}

std::wstring FindClientProgram(const std::wstring& home)
{
    for (const wchar_t* name : kPrograms)
    {
        if (IsProgramFile(home + name))
            return home + name;
    }
    return {};
}

bool PlanBook(const std::wstring& home,
              const std::wstring& localData,
              ComponentPlan& plan,
              std::wstring& reason)
{
    const std::wstring library = home + kBookLibrary;
    if (!IsProgramFile(library))
    {
        reason = library + L" is missing: pimstore.exe must lie beside it.";
        return false;
    }
    const std::wstring program = FindClientProgram(home);
    if (program.empty())
    {
        reason = L"Neither pim.exe nor pimstore.exe is in " + home + L".";
        return false;
    }
    const std::wstring command = L"\"" + program + L"\"";
    if (library.size() > kLongestClientText || command.size() > kLongestClientText)
    {
        reason = L"The path " + home + L" is too long: move the product to a shorter one.";
        return false;
    }
    if (!ExpandsToItself(library))
    {
        reason = L"The path " + home +
                 L" holds the name of an environment variable between percent signs: move the "
                 L"product to another folder.";
        return false;
    }

    const std::wstring clients = std::wstring(kMailClients) + L"\\";
    plan = {};
    plan.component = kBookComponent;
    plan.home = home;
    plan.values = {
        {kBookLibraryKey, L"", library, WhenTaken::Refuse},
        {clients + kWindowsMail + kOpenCommand, L"", command, WhenTaken::Refuse},
        {clients + kOutlookExpress + kOpenCommand, L"", command, WhenTaken::Refuse},
        // Only where there is no default: an existing one is never changed.
        {kMailClients, L"", kWindowsMail, WhenTaken::Leave},
    };
    plan.folders = {localData + kCalendars};
    return true;
}
