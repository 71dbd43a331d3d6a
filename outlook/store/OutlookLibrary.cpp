#include "outlook/store/OutlookLibrary.h"

#include "platform/UniqueHandle.h"
#include "service/Discovery.h"
#include "service/Registry.h"
#include "service/StringHelpers.h"

#include <vector>

namespace
{
constexpr wchar_t kOutlookClient[] = L"Microsoft Outlook";
// Of all paths here, in characters with the terminator.
constexpr DWORD kPathCapacity = 0x104;

using Texts = std::vector<std::wstring>;

struct VersionOfKey
{
    const wchar_t* key;
    int version;
};

constexpr VersionOfKey kVersions[] = {
    {L"Microsoft\\Office\\11.0\\Outlook", 2003},
    {L"Microsoft\\Office\\14.0\\Outlook", 2010},
};

int VersionOf(const Texts& application)
{
    if (!application.empty())
        for (const VersionOfKey& row : kVersions)
            if (application.front() == row.key)
                return row.version;
    return 0;
}

std::wstring SystemFolder()
{
    wchar_t folder[kPathCapacity] = {};
    const UINT length = GetSystemDirectoryW(folder, kPathCapacity);
    return length > 0 && length < kPathCapacity ? std::wstring(folder) : std::wstring();
}

std::string ToAnsi(const std::wstring& text)
{
    const int length = static_cast<int>(text.size());
    std::string ansi(static_cast<std::size_t>(WideCharToMultiByte(
                         CP_ACP, 0, text.data(), length, nullptr, 0, nullptr, nullptr)),
                     '\0');
    WideCharToMultiByte(CP_ACP,
                        0,
                        text.data(),
                        length,
                        ansi.data(),
                        static_cast<int>(ansi.size()),
                        nullptr,
                        nullptr);
    return ansi;
}

std::wstring FromAnsi(const char* text)
{
    wchar_t wide[kPathCapacity] = {};
    MultiByteToWideChar(CP_ACP, 0, text, -1, wide, kPathCapacity - 1);
    return wide;
}

// Looks components up in the installer's database, one qualifier after the other until one gives a
// path.
class ComponentLookup
{
  public:
    ComponentLookup(const UniqueModule& stub, const std::wstring& component)
        : m_find(reinterpret_cast<Find*>(
              reinterpret_cast<void*>(GetProcAddress(stub.Get(), "FGetComponentPath")))),
          m_component(ToAnsi(component))
    {
    }

    // Nothing once there is a path. A null qualifier is one that is left out.
    void Try(const char* qualifier)
    {
        if (!m_find || m_path[0])
            return;
        std::string component = m_component;
        std::string copy = qualifier ? qualifier : "";
        // The path alone tells how it went; what comes back need not end within the buffer.
        m_find(component.data(), qualifier ? copy.data() : nullptr, m_path, kPathCapacity, TRUE);
        m_path[kPathCapacity - 1] = '\0';
    }
    void Try(const Texts& languages)
    {
        if (languages.empty())
            return;
        std::wstring qualifier;
        JoinStrings(qualifier, languages, L" ");
        Try(ToAnsi(qualifier).c_str());
    }

    std::wstring Path() const { return FromAnsi(m_path); }

  private:
    using Find =
        BOOL WINAPI(LPSTR component, LPSTR qualifier, LPSTR path, DWORD size, BOOL install);

    Find* m_find;
    std::string m_component;
    char m_path[kPathCapacity] = {};
};

// Where Outlook before the component database put its library: in a folder named by a language.
std::wstring PathByLanguage(const Texts& application)
{
    wchar_t programFiles[MAX_PATH] = {};
    if (application.size() < 2 ||
        !SHGetSpecialFolderPathW(nullptr, programFiles, CSIDL_PROGRAM_FILES, FALSE))
        return {};
    DWORD language = 0;
    const std::wstring key = L"Software\\" + application[0];
    if (!ReadRegistryBinary(
            HKEY_CURRENT_USER, key.c_str(), application[1].c_str(), &language, sizeof language))
        language = 0;
    wchar_t tail[80];
    wsprintfW(tail, L"\\Common Files\\System\\MSMAPI\\%d\\MSMAPI32.DLL", language);
    return std::wstring(programFiles) + tail;
}
} // namespace

OutlookLibrary FindOutlookLibrary()
{
    return FindOutlookLibraryWith(SystemFolder());
}

OutlookLibrary FindOutlookLibraryWith(const std::wstring& systemFolder)
{
    OutlookLibrary library;
    const std::wstring key = std::wstring(kMailClientsKey) + kOutlookClient;
    const std::wstring component = ReadRegistryString(HKEY_LOCAL_MACHINE, key, L"MSIComponentID");
    if (component.empty())
        return library;
    Texts application;
    ReadRegistryMultiString(HKEY_LOCAL_MACHINE, key, L"MSIApplicationLCID", application);
    library.version = VersionOf(application);
    Texts office;
    ReadRegistryMultiString(HKEY_LOCAL_MACHINE, key, L"MSIOfficeLCID", office);
    if (systemFolder.empty())
        return library;

    UniqueModule stub(LoadLibraryW((systemFolder + L"\\mapi32.dll").c_str()));
    if (!stub)
        stub.Reset(LoadLibraryW((systemFolder + L"\\mapistub.dll").c_str()));
    if (!stub)
        return library;
    ComponentLookup lookup(stub, component);
    lookup.Try(nullptr);
    lookup.Try(application);
    lookup.Try(office);
    stub.Reset();

    library.path = lookup.Path();
    if (library.path.empty())
        library.path = PathByLanguage(application);
    return library;
}
