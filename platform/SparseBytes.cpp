#include "platform/SparseBytes.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>

namespace
{
constexpr std::size_t kGroupBytes = 8;

std::uint64_t WordAt(const unsigned char* words, std::size_t index) noexcept
{
    std::uint64_t word = 0;
    std::memcpy(&word, words + index * sizeof(word), sizeof(word));
    return word;
}

// The bits of those bytes of the group that are not zero.
unsigned SetBytesOf(const unsigned char* group, std::size_t count) noexcept
{
    unsigned set = 0;
    for (std::size_t i = 0; i < count; ++i)
        set |= static_cast<unsigned>(group[i] != 0) << i;
    return set;
}

// Calls take(set, group) for every eight bytes up to the last that is not zero.
template <typename Take> void ForEachGroup(std::span<const unsigned char> bytes, Take take) noexcept
{
    const auto used = WithoutZerosAtEnd(bytes);
    const unsigned char* group = used.data();
    std::size_t left = used.size();
    for (; left >= kGroupBytes; left -= kGroupBytes, group += kGroupBytes)
    {
        take(WordAt(group, 0) ? SetBytesOf(group, kGroupBytes) : 0, group);
    }
    if (left > 0)
        take(SetBytesOf(group, left), group);
}
} // namespace

std::span<const unsigned char> WithoutZerosAtEnd(std::span<const unsigned char> bytes) noexcept
{
    // In blocks without a branch per word, since the records may be large and nearly empty.
    constexpr std::size_t kBlockBytes = 64;
    std::size_t used = bytes.size();
    while (used >= kBlockBytes)
    {
        const unsigned char* const block = bytes.data() + used - kBlockBytes;
        if (((WordAt(block, 0) | WordAt(block, 1)) | (WordAt(block, 2) | WordAt(block, 3))) |
            ((WordAt(block, 4) | WordAt(block, 5)) | (WordAt(block, 6) | WordAt(block, 7))))
            break;
        used -= kBlockBytes;
    }
    while (used > 0 && bytes[used - 1] == 0)
        --used;
    return bytes.first(used);
}

std::size_t SparseSize(std::span<const unsigned char> bytes) noexcept
{
    std::size_t size = 0;
    ForEachGroup(bytes, [&size](unsigned set, const unsigned char*) {
        size += 1 + static_cast<std::size_t>(std::popcount(set));
    });
    return size;
}

void PackSparse(std::span<const unsigned char> bytes, unsigned char* to) noexcept
{
    ForEachGroup(bytes, [&to](unsigned set, const unsigned char* group) {
        *to++ = static_cast<unsigned char>(set);
        for (; set; set &= set - 1)
            *to++ = group[std::countr_zero(set)];
    });
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
