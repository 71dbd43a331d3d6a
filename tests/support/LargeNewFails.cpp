#include "tests/support/LargeNewFails.h"

#include <atomic>
#include <cstdlib>
#include <limits>
#include <new>

namespace
{
constexpr std::size_t kNoLimit = std::numeric_limits<std::size_t>::max();
std::atomic<std::size_t> g_limitBytes = kNoLimit;
} // namespace

LargeNewFails::LargeNewFails(std::size_t limitBytes) noexcept
{
    g_limitBytes = limitBytes;
}

LargeNewFails::~LargeNewFails()
{
    g_limitBytes = kNoLimit;
}

void* operator new(std::size_t size)
{
    void* const block = size > g_limitBytes ? nullptr : std::malloc(size > 0 ? size : 1);
    if (!block)
        throw std::bad_alloc();
    return block;
}

void operator delete(void* block) noexcept
{
    std::free(block);
}

void operator delete(void* block, std::size_t) noexcept
{
    std::free(block);
}
