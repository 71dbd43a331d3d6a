#include "endtoend/CalendarFolder.h"

#include "endtoend/ChildProgram.h"

#include <fstream>
#include <iterator>

namespace
{
std::filesystem::path LocalDataFolder()
{
    wchar_t path[MAX_PATH] = {};
    SHGetSpecialFolderPathW(nullptr, path, CSIDL_LOCAL_APPDATA, TRUE);
    return path;
}

bool HasAddressBook()
{
    wchar_t path[MAX_PATH] = {};
    DWORD size = sizeof(path);
    return RegGetValueW(HKEY_LOCAL_MACHINE,
                        L"Software\\Microsoft\\WAB\\DLLPath",
                        nullptr,
                        RRF_RT_REG_SZ | RRF_RT_REG_EXPAND_SZ,
                        nullptr,
                        path,
                        &size) == ERROR_SUCCESS &&
           path[0] != L'\0';
}
} // namespace

std::wstring ProgramBeside(const wchar_t* name)
{
    const std::wstring own = TestProgramPath();
    return L'"' + own.substr(0, own.find_last_of(L'\\') + 1) + name + L'"';
}

void ExpectCentralEurope()
{
    const SYSTEMTIME winterUtc{2024, 1, 0, 15, 12, 0, 0, 0};
    const SYSTEMTIME summerUtc{2024, 7, 0, 15, 12, 0, 0, 0};
    SYSTEMTIME winter{};
    SYSTEMTIME summer{};
    SystemTimeToTzSpecificLocalTime(nullptr, &winterUtc, &winter);
    SystemTimeToTzSpecificLocalTime(nullptr, &summerUtc, &summer);
    EXPECT_TRUE(winter.wHour == 13 && summer.wHour == 14)
        << "These tests are to be run in the time zone of Central Europe; ctest sees to it where "
           "the runtime follows the variable TZ.";
}

CalendarFolder::CalendarFolder()
    : m_path(LocalDataFolder() / "Microsoft" / "Windows Calendar" / "Calendars"),
      m_asidePath(m_path.parent_path() / "Calendars put aside by tests")
{
    EndServers();
    if (!HasAddressBook())
    {
        m_hasOwnBook = true;
        EXPECT_EQ(0u, RunAndRead(ProgramBeside(L"pimstore.exe") + L" install --book").exitCode);
    }
    // A run that was broken off left the real folder aside.
    if (!std::filesystem::exists(m_asidePath) && std::filesystem::exists(m_path))
        std::filesystem::rename(m_path, m_asidePath);
    Clear();
}

CalendarFolder::~CalendarFolder()
{
    EndServers();
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
    if (std::filesystem::exists(m_asidePath))
        std::filesystem::rename(m_asidePath, m_path, ignored);
    if (m_hasOwnBook)
    {
        EXPECT_EQ(0u, RunAndRead(ProgramBeside(L"pimstore.exe") + L" remove --book").exitCode);
    }
}

void CalendarFolder::Clear() const
{
    std::filesystem::remove_all(m_path);
    std::filesystem::create_directories(m_path);
}

void CalendarFolder::Write(const std::wstring& name, const std::string& bytes) const
{
    std::ofstream file(m_path / name, std::ios::binary);
    file << bytes;
}

std::string CalendarFolder::Read(const std::wstring& name) const
{
    std::ifstream file(m_path / name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

void CalendarFolder::CopyFrom(const std::filesystem::path& folder) const
{
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        std::filesystem::copy_file(entry.path(),
                                   m_path / entry.path().filename(),
                                   std::filesystem::copy_options::overwrite_existing);
}
