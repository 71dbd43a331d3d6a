#include "client/Console.h"

#include "client/core/Unicode.h"

#include <algorithm>
#include <atomic>
#include <string>

namespace pim
{
namespace
{
std::atomic<bool> cancelled = false;

BOOL WINAPI OnControlEvent(DWORD event)
{
    if (event != CTRL_C_EVENT || cancelled)
        return FALSE;
    cancelled = true;
    return TRUE;
}
} // namespace

OutputStream::OutputStream(DWORD standardHandle) : m_handle(GetStdHandle(standardHandle))
{
    DWORD mode = 0;
    m_isTerminal = GetConsoleMode(m_handle, &mode) != 0;
}

int OutputStream::Columns() const
{
    CONSOLE_SCREEN_BUFFER_INFO info = {};
    if (!m_isTerminal || !GetConsoleScreenBufferInfo(m_handle, &info))
        return 0;
    // A full last column would break the line.
    return std::max(info.srWindow.Right - info.srWindow.Left, 1);
}

bool OutputStream::Write(std::wstring_view text) const
{
    if (m_isTerminal)
        return WriteToTerminal(text);
    const std::string bytes = Utf8FromWide(text);
    for (std::size_t done = 0; done < bytes.size();)
    {
        constexpr std::size_t kMostAtOnce = 1 << 20;
        const auto wanted = static_cast<DWORD>(std::min(bytes.size() - done, kMostAtOnce));
        DWORD written = 0;
        if (!WriteFile(m_handle, bytes.data() + done, wanted, &written, nullptr) || written == 0)
            return false;
        done += written;
    }
    return true;
}

bool OutputStream::WriteToTerminal(std::wstring_view text) const
{
    // Consoles refuse a single write of too many characters.
    constexpr std::size_t kMostAtOnce = 8000;
    while (!text.empty())
    {
        std::size_t count = std::min(text.size(), kMostAtOnce);
        if (count < text.size() && IS_HIGH_SURROGATE(text[count - 1]))
            --count;
        DWORD written = 0;
        if (!WriteConsoleW(m_handle, text.data(), static_cast<DWORD>(count), &written, nullptr) ||
            written == 0)
            return false;
        text.remove_prefix(written);
    }
    return true;
}

void WatchForCancel()
{
    SetConsoleCtrlHandler(OnControlEvent, TRUE);
}

bool IsCancelled()
{
    return cancelled;
}
} // namespace pim
