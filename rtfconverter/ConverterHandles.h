// The converters that exist. A converter keeps nothing between two calls, so its handle is all
// there is of it: a number that is given out once while the library is loaded.
//
// The lock is the system's: the C++ runtime's takes a slot of thread data at its first use, which
// an unloaded library would leave behind, and callers load and unload this one as they like.
#pragma once

#include "rtfconverter/RTFConverterExX64.h"

#include <cstdint>
#include <unordered_set>

class ConverterHandles
{
  public:
    // Throws std::bad_alloc.
    RtfConverterHandle Add();
    bool Contains(RtfConverterHandle handle) noexcept;
    void Remove(RtfConverterHandle handle) noexcept;

  private:
    SRWLOCK m_lock = SRWLOCK_INIT;
    std::unordered_set<std::uintptr_t> m_live;
    std::uintptr_t m_last = 0;
};
