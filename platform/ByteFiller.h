// Writes little-endian fields into bytes that are there already, for codecs whose output is worth
// making in one piece: the same code runs over a ByteCounter, which tells the room, and then over a
// ByteFiller of that room. Where the size does not matter ByteWriter is simpler.
#pragma once

#include "platform/CodecStatus.h"

#include <array>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <type_traits>
#include <utility>

// Counts what a ByteFiller would be given. It looks at no value.
class ByteCounter
{
  public:
    template <std::integral T, std::integral V> void Write(V) noexcept { m_size += sizeof(T); }
    void WriteBytes(std::span<const std::byte> bytes) noexcept { m_size += bytes.size(); }

    std::size_t Size() const noexcept { return m_size; }

  private:
    std::size_t m_size = 0;
};

// A value that does not fit its field, and one behind the end of the room, fail with LimitExceeded;
// the first failure sticks, and nothing is written after it. Never throws; the room must outlive
// it.
class ByteFiller
{
  public:
    explicit ByteFiller(std::span<std::byte> room) noexcept : m_room(room) {}

    bool IsOk() const noexcept { return m_status == CodecStatus::Ok; }
    CodecStatus Status() const noexcept { return m_status; }
    std::size_t Remaining() const noexcept { return m_room.size() - m_at; }

    // One little-endian integer of type T; the value may have any other integer type.
    template <std::integral T, std::integral V> void Write(V value) noexcept
    {
        if (!std::in_range<T>(value))
            Fail();
        using Bits = std::make_unsigned_t<T>;
        const std::uint64_t bits = static_cast<Bits>(static_cast<T>(value));
        std::array<std::byte, sizeof(T)> field;
        for (std::size_t i = 0; i < sizeof(T); ++i)
            field[i] = static_cast<std::byte>((bits >> (8 * i)) & 0xFF);
        WriteBytes(field);
    }

    // The bytes as they are.
    void WriteBytes(std::span<const std::byte> bytes) noexcept
    {
        if (bytes.size() > Remaining())
            Fail();
        if (!IsOk() || bytes.empty())
            return;
        std::memcpy(m_room.data() + m_at, bytes.data(), bytes.size());
        m_at += bytes.size();
    }

  private:
    void Fail() noexcept { m_status = CodecStatus::LimitExceeded; }

    std::span<std::byte> m_room;
    std::size_t m_at = 0;
    CodecStatus m_status = CodecStatus::Ok;
};
