#include "platform/GuidSource.h"

#include <cstdint>
#include <random>

// A random GUID (version 4, variant 1), printed group by group.
std::wstring SystemGuidText()
{
    static thread_local std::mt19937_64 engine = [] {
        std::random_device device;
        std::seed_seq seed{device(), device(), device(), device()};
        return std::mt19937_64(seed);
    }();
    const std::uint64_t high = (engine() & ~0xF000ULL) | 0x4000ULL;
    const std::uint64_t low = (engine() & ~(3ULL << 62)) | (2ULL << 62);

    std::wstring text = L"{";
    const auto add = [&text](std::uint64_t bits, int digits) {
        while (digits-- > 0)
            text += L"0123456789ABCDEF"[bits >> (4 * digits) & 0xF];
    };
    add(high >> 32, 8);
    text += L'-';
    add(high >> 16, 4);
    text += L'-';
    add(high, 4);
    text += L'-';
    add(low >> 48, 4);
    text += L'-';
    add(low, 12);
    text += L'}';
    return text;
}
