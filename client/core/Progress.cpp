#include "client/core/Progress.h"

#include <chrono>
#include <iterator>
#include <string>

namespace pim
{
namespace
{
// Short walks end before the count would show.
constexpr std::uint64_t kFirstShowMs = 300;
constexpr std::uint64_t kShowEveryMs = 100;
} // namespace

std::uint64_t SteadyMilliseconds()
{
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return static_cast<std::uint64_t>(
        std::chrono::duration_cast<std::chrono::milliseconds>(now).count());
}

Progress::Progress(const TextOutput& output, const wchar_t* what, MillisecondClock clock)
    : m_output(output), m_what(what), m_clock(clock), m_nextShowMs(clock() + kFirstShowMs)
{
}

Progress::~Progress()
{
    if (m_shownColumns > 0)
        m_output.Write(L"\r" + std::wstring(m_shownColumns, L' ') + L"\r");
}

void Progress::Step()
{
    ++m_count;
    const std::uint64_t nowMs = m_clock();
    if (!m_output.IsTerminal() || nowMs < m_nextShowMs)
        return;
    m_nextShowMs = nowMs + kShowEveryMs;
    constexpr wchar_t kTurns[] = {L'|', L'/', L'-', L'\\'};
    const std::wstring line = std::wstring(1, kTurns[m_turn++ % std::size(kTurns)]) + L" " +
                              m_what + L": " + std::to_wstring(m_count);
    m_output.Write(L"\r" + line);
    m_shownColumns = line.size();
}
} // namespace pim
