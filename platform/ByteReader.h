// A cursor over bytes that a codec reads: integers little-endian, every access checked. It owns
// nothing, allocates nothing and never throws; the bytes must outlive it.
//
// The first failure sticks: all later reads fail too and leave their outputs untouched, and the
// offset of that failure is kept. So a codec may read a run of fields and look at the status once.
#pragma once

#include "platform/CodecStatus.h"

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <span>
#include <type_traits>

class ByteReader
{
  public:
    // Offset: what the first byte is called in offsets, for readers of a part.
    explicit ByteReader(std::span<const std::byte> bytes, std::size_t offset = 0) noexcept
        : m_bytes(bytes), m_start(offset)
    {
    }

    bool IsOk() const noexcept { return m_status == CodecStatus::Ok; }
    CodecStatus Status() const noexcept { return m_status; }
    std::size_t Remaining() const noexcept { return m_bytes.size() - m_at; }
    // The offset of the next byte; after a failure the offset of that failure.
    std::size_t Offset() const noexcept { return m_start + m_at; }

    // One little-endian integer; signed ones in two's complement.
    template <std::integral T> bool Read(T& value) noexcept
    {
        std::span<const std::byte> bytes;
        if (!Take(sizeof(T), bytes))
            return false;
        using Bits = std::make_unsigned_t<T>;
        std::uint64_t bits = 0;
        for (std::size_t i = 0; i < sizeof(T); ++i)
            bits |= std::to_integer<std::uint64_t>(bytes[i]) << (8 * i);
        value = static_cast<T>(static_cast<Bits>(bits));
        return true;
    }

    // The next bytes, not copied.
    bool ReadBytes(std::size_t count, std::span<const std::byte>& bytes) noexcept
    {
        return Take(count, bytes);
    }

    // Passes the next bytes over.
    bool Skip(std::size_t count) noexcept
    {
        std::span<const std::byte> skipped;
        return Take(count, skipped);
    }

    // A reader of the next bytes alone; this one goes on behind them. Where they are not there the
    // child is empty and failed too.
    ByteReader Sub(std::size_t count) noexcept
    {
        const std::size_t offset = Offset();
        std::span<const std::byte> bytes;
        const bool taken = Take(count, bytes);
        ByteReader child(bytes, offset);
        if (!taken)
            child.m_status = m_status;
        return child;
    }

    // A count of elements that follow, as an integer of type T. Refused as LimitExceeded beyond the
    // limit and as Truncated where so many elements of the least size cannot follow, so that the
    // count is safe to reserve by. On failure the offset is that of the count.
    //   minElementBytes: at least 1.
    template <std::unsigned_integral T>
    bool ReadCount(std::size_t minElementBytes, std::size_t limit, std::size_t& count) noexcept
    {
        const std::size_t before = m_at;
        T value = 0;
        if (!Read(value))
            return false;
        if (value > limit)
            return FailAt(before, CodecStatus::LimitExceeded);
        if (value > Remaining() / minElementBytes)
            return FailAt(before, CodecStatus::Truncated);
        count = static_cast<std::size_t>(value);
        return true;
    }

    // Marks the input as bad at the current offset, for what only the codec can judge. The first
    // failure wins. Always false.
    bool Fail(CodecStatus status) noexcept { return FailAt(m_at, status); }

  private:
    bool FailAt(std::size_t at, CodecStatus status) noexcept
    {
        if (IsOk())
        {
            m_at = at;
            m_status = status;
        }
        return false;
    }

    // The one place that touches the bytes.
    bool Take(std::size_t count, std::span<const std::byte>& bytes) noexcept
    {
        if (!IsOk())
            return false;
        if (count > Remaining())
            return Fail(CodecStatus::Truncated);
        bytes = m_bytes.subspan(m_at, count);
        m_at += count;
        return true;
    }

    std::span<const std::byte> m_bytes;
    std::size_t m_start;
    std::size_t m_at = 0;
    CodecStatus m_status = CodecStatus::Ok;
};
