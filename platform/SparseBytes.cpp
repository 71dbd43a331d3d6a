#include "platform/SparseBytes.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>

namespace
{
constexpr std::size_t kGroupBytes = 8;
} // namespace

std::span<const unsigned char> WithoutZerosAtEnd(std::span<const unsigned char> bytes) noexcept
{
    // In blocks without a branch per word, since the records may be large and nearly empty.
    constexpr std::size_t kBlockBytes = 64;
    std::size_t used = bytes.size();
    while (used >= kBlockBytes)
    {
        std::uint64_t any = 0;
        for (std::size_t at = used - kBlockBytes; at < used; at += sizeof(any))
        {
            std::uint64_t word = 0;
            std::memcpy(&word, bytes.data() + at, sizeof(word));
            any |= word;
        }
        if (any)
            break;
        used -= kBlockBytes;
    }
    while (used > 0 && bytes[used - 1] == 0)
        --used;
    return bytes.first(used);
}

std::size_t SparseSize(std::span<const unsigned char> bytes) noexcept
{
    const auto used = WithoutZerosAtEnd(bytes);
    const auto zeros = static_cast<std::size_t>(std::ranges::count(used, 0));
    return (used.size() + kGroupBytes - 1) / kGroupBytes + used.size() - zeros;
}

void PackSparse(std::span<const unsigned char> bytes, unsigned char* to) noexcept
{
    const auto used = WithoutZerosAtEnd(bytes);
    for (std::size_t group = 0; group < used.size(); group += kGroupBytes)
    {
        unsigned char* const mask = to++;
        unsigned set = 0;
        const std::size_t end = std::min(group + kGroupBytes, used.size());
        for (std::size_t at = group; at < end; ++at)
        {
            // A zero is written over by what follows it: the last byte is none.
            const bool isSet = used[at] != 0;
            *to = used[at];
            to += isSet;
            set |= static_cast<unsigned>(isSet) << (at - group);
        }
        *mask = static_cast<unsigned char>(set);
    }
}

void UnpackSparse(std::span<const unsigned char> packed, std::span<unsigned char> to) noexcept
{
    std::ranges::fill(to, static_cast<unsigned char>(0));
    std::size_t next = 0;
    for (std::size_t group = 0; group < to.size() && next < packed.size(); group += kGroupBytes)
    {
        for (unsigned mask = packed[next++]; mask; mask &= mask - 1)
        {
            const std::size_t at = group + static_cast<std::size_t>(std::countr_zero(mask));
            if (next == packed.size() || at >= to.size())
                return;
            to[at] = packed[next++];
        }
    }
}
