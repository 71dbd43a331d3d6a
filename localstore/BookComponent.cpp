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

bool FindProductFiles(const std::wstring& home,
                      const wchar_t* library,
                      ProductFiles& files,
                      std::wstring& reason)
{
    files.library = home + library;
    if (!IsProgramFile(files.library))
    {
        reason = files.library + L" is missing: pimstore.exe must lie beside it.";
        return false;
    }
    for (const wchar_t* name : kPrograms)
    {
        if (!IsProgramFile(home + name))
            continue;
        files.command = L"\"" + home + name + L"\"";
        return true;
    }
    reason = L"Neither pim.exe nor pimstore.exe is in " + home + L".";
    return false;
}

std::wstring TooLongReason(const std::wstring& path)
{
    return L"The path " + path + L" is too long: move the product to a shorter one.";
}

bool PlanBook(const std::wstring& home,
              const std::wstring& localData,
              ComponentPlan& plan,
              std::wstring& reason)
{
    ProductFiles files;
    if (!FindProductFiles(home, kBookLibrary, files, reason))
        return false;
    if (files.library.size() > kLongestClientText || files.command.size() > kLongestClientText)
    {
        reason = TooLongReason(home);
        return false;
    }
    if (!ExpandsToItself(files.library))
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
        {kBookLibraryKey, L"", files.library, WhenTaken::Refuse},
        {clients + kWindowsMail + kOpenCommand, L"", files.command, WhenTaken::Refuse},
        {clients + kOutlookExpress + kOpenCommand, L"", files.command, WhenTaken::Refuse},
        // Only where there is no default: an existing one is never changed.
        {kMailClients, L"", kWindowsMail, WhenTaken::Leave},
    };
    plan.folders = {localData + kCalendars};
    return true;
}
