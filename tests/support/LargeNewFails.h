// Makes C++ allocations above a limit fail while it lives, as if memory were exhausted. For test
// programs that link LargeNewFails.cpp, which replaces the program's operator new.
#pragma once

#include <cstddef>

class LargeNewFails
{
  public:
    // Requests of more bytes fail.
    explicit LargeNewFails(std::size_t limitBytes) noexcept;
    ~LargeNewFails();
    LargeNewFails(const LargeNewFails&) = delete;
    LargeNewFails& operator=(const LargeNewFails&) = delete;
};
