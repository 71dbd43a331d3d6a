// Where pim writes: wide characters to a console, UTF-8 to everything else.
#pragma once

#include "client/core/TextOutput.h"
#include "platform/WindowsHeaders.h"

#include <string_view>

namespace pim
{
class OutputStream : public TextOutput
{
  public:
    // STD_OUTPUT_HANDLE or STD_ERROR_HANDLE.
    explicit OutputStream(DWORD standardHandle);

    bool IsTerminal() const noexcept override { return m_isTerminal; }
    // The width of a terminal's window; 0 where the stream is none.
    int Columns() const;

    // False also on a full disk or a closed pipe.
    bool Write(std::wstring_view text) const override;

  private:
    bool WriteToTerminal(std::wstring_view text) const;

    HANDLE m_handle;
    bool m_isTerminal;
};

// From here on the first Ctrl+C asks the command to end, which it does between two items; a second
// one ends the program.
void WatchForCancel();
bool IsCancelled();
using CancelQuery = bool (*)();
} // namespace pim
