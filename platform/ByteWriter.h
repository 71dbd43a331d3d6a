// Appends little-endian fields to bytes that the caller owns. Values that do not fit their field
// fail with LimitExceeded; the first failure sticks, nothing is written after it, and what stands
// in the bytes then is not to be used. Throws std::bad_alloc.
#pragma once

#include "platform/CodecStatus.h"

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <span>
#include <type_traits>
#include <utility>
#include <vector>

class ByteWriter
{
  public:
    explicit ByteWriter(std::vector<std::byte>& bytes) noexcept
        : m_bytes(bytes), m_start(bytes.size())
    {
    }

    bool IsOk() const noexcept { return m_status == CodecStatus::Ok; }
    CodecStatus Status() const noexcept { return m_status; }
    // How much this writer has appended.
    std::size_t Size() const noexcept { return m_bytes.size() - m_start; }

    // One little-endian integer of type T; the value may have any other integer type.
    template <std::integral T, std::integral V> bool Write(V value)
    {
        if (!IsOk())
            return false;
        if (!std::in_range<T>(value))
            return Fail(CodecStatus::LimitExceeded);
        using Bits = std::make_unsigned_t<T>;
        const std::uint64_t bits = static_cast<Bits>(static_cast<T>(value));
        const std::size_t at = m_bytes.size();
        m_bytes.resize(at + sizeof(T));
        for (std::size_t i = 0; i < sizeof(T); ++i)
            m_bytes[at + i] = static_cast<std::byte>((bits >> (8 * i)) & 0xFF);
        return true;
    }

    // The bytes as they are.
    bool WriteBytes(std::span<const std::byte> bytes)
    {
        if (IsOk())
            m_bytes.insert(m_bytes.end(), bytes.begin(), bytes.end());
        return IsOk();
    }

    // Room for an integer of type T that is known only later; the result names it to Patch.
    template <std::integral T> std::size_t Hole()
    {
        const std::size_t at = Size();
        Write<T>(T{0});
        return at;
    }

    // Fills a hole of the same type T.
    template <std::integral T, std::integral V> bool Patch(std::size_t hole, V value) noexcept
    {
        if (!IsOk())
            return false;
        if (!std::in_range<T>(value))
            return Fail(CodecStatus::LimitExceeded);
        if (Size() < sizeof(T) || hole > Size() - sizeof(T))
            return Fail(CodecStatus::Inconsistent);
        using Bits = std::make_unsigned_t<T>;
        const std::uint64_t bits = static_cast<Bits>(static_cast<T>(value));
        for (std::size_t i = 0; i < sizeof(T); ++i)
            m_bytes[m_start + hole + i] = static_cast<std::byte>((bits >> (8 * i)) & 0xFF);
        return true;
    }

    // The first failure wins. Always false.
    bool Fail(CodecStatus status) noexcept
    {
        if (IsOk())
            m_status = status;
        return false;
    }

  private:
    std::vector<std::byte>& m_bytes;
    std::size_t m_start;
    CodecStatus m_status = CodecStatus::Ok;
};
