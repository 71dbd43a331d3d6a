// A running count on a terminal, for walks whose length is not known before; silent elsewhere and
// on walks that take no time. The line goes when the count does.
#pragma once

#include "client/core/TextOutput.h"

#include <cstddef>
#include <cstdint>

namespace pim
{
// Milliseconds since any moment; never fewer than before.
using MillisecondClock = std::uint64_t (*)();
std::uint64_t SteadyMilliseconds();

class Progress
{
  public:
    // Output and text have to outlive it.
    Progress(const TextOutput& output,
             const wchar_t* what,
             MillisecondClock clock = SteadyMilliseconds);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    // Counts one more item, and shows the count where it is time to.
    void Step();

  private:
    const TextOutput& m_output;
    const wchar_t* m_what;
    const MillisecondClock m_clock;
    std::uint64_t m_nextShowMs;
    unsigned m_count = 0;
    unsigned m_turn = 0;
    std::size_t m_shownColumns = 0;
};
} // namespace pim
