// Where pim writes: wide characters to a console, UTF-8 to everything else.
#pragma once

#include "platform/WindowsHeaders.h"

#include <string_view>

namespace pim
{
class OutputStream
{
  public:
    // STD_OUTPUT_HANDLE or STD_ERROR_HANDLE.
    explicit OutputStream(DWORD standardHandle);

    bool IsTerminal() const noexcept { return m_isTerminal; }
    // The width of a terminal's window; 0 where the stream is none.
    int Columns() const;

    // False where not all of the text could be written, as on a full disk or a closed pipe.
    bool Write(std::wstring_view text) const;

  private:
    bool WriteToTerminal(std::wstring_view text) const;

    HANDLE m_handle;
    bool m_isTerminal;
};

// A running count on a terminal, for walks whose length is not known before; silent elsewhere and
// on walks that take no time.
class Progress
{
  public:
    Progress(const OutputStream& stream, const wchar_t* what);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    // One more was walked.
    void Step();

  private:
    const OutputStream& m_stream;
    const wchar_t* m_what;
    ULONGLONG m_nextShowMs;
    unsigned m_count = 0;
    unsigned m_turn = 0;
    std::size_t m_shownColumns = 0;
};

// From here on the first Ctrl+C asks the running walk to end; a second one ends the program.
void WatchForCancel();
bool IsCancelled();
} // namespace pim
