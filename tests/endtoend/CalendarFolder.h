// The folder of Windows Calendar, lent to tests: what stands there before is put aside and comes
// back.
#pragma once

#include <filesystem>
#include <string>

class CalendarFolder
{
  public:
    // Also sets up the embedded address book, which the provider starts with, where the machine
    // has none.
    CalendarFolder();
    ~CalendarFolder();
    CalendarFolder(const CalendarFolder&) = delete;
    CalendarFolder& operator=(const CalendarFolder&) = delete;

    void Clear() const;
    void Write(const std::wstring& name, const std::string& bytes) const;
    std::string Read(const std::wstring& name) const;
    // All files of another folder.
    void CopyFrom(const std::filesystem::path& folder) const;
    const std::filesystem::path& Path() const noexcept { return m_path; }

  private:
    std::filesystem::path m_path;
    std::filesystem::path m_asidePath;
    bool m_hasOwnBook = false;
};

// Checks that this process, and so each program that it starts, lives by the clock of Central
// Europe: what clients show and stores write depends on it. CTest sets the variable TZ for runtimes
// that follow it; elsewhere the machine is to be set to that zone.
void ExpectCentralEurope();

// The full path of a program beside the test program, in quotes.
std::wstring ProgramBeside(const wchar_t* name);
