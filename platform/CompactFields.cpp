#include "platform/CompactFields.h"

#include "platform/SparseBytes.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace
{
// A head is a number in groups of seven bits, the lowest first; all but the last have the top bit.
constexpr unsigned kHeadBits = 7;
constexpr std::size_t kMoreHead = 1u << kHeadBits;
constexpr unsigned kKindBits = 2;
constexpr std::size_t kKindMask = (1u << kKindBits) - 1;

std::size_t HeadSize(std::size_t head) noexcept
{
    std::size_t size = 1;
    for (; head >= kMoreHead; head >>= kHeadBits)
        ++size;
    return size;
}

unsigned char* WriteHead(std::size_t head, unsigned char* to) noexcept
{
    for (; head >= kMoreHead; head >>= kHeadBits)
        *to++ = static_cast<unsigned char>(head | kMoreHead);
    *to++ = static_cast<unsigned char>(head);
    return to;
}

const unsigned char* ReadHead(const unsigned char* from, std::size_t& head) noexcept
{
    head = *from & (kMoreHead - 1);
    for (unsigned shift = kHeadBits; *from++ & kMoreHead; shift += kHeadBits)
        head |= static_cast<std::size_t>(*from & (kMoreHead - 1)) << shift;
    return from;
}

// Converts each element; what does not fit is cut. Most go in fixed numbers, which the compiler can
// do at once: texts are converted in both directions for every item of a table.
template <typename From, typename To>
void ConvertUnits(const From* __restrict from, std::size_t count, To* __restrict to) noexcept
{
    constexpr std::size_t kBlock = 8;
    for (; count >= kBlock; count -= kBlock, from += kBlock, to += kBlock)
        for (std::size_t i = 0; i < kBlock; ++i)
            to[i] = static_cast<To>(from[i]);
    for (; count > 0; --count)
        *to++ = static_cast<To>(*from++);
}

// Whether all code units are below 256.
bool IsNarrow(std::wstring_view text) noexcept
{
    constexpr std::size_t kUnitsPerWord = sizeof(std::uint64_t) / sizeof(wchar_t);
    constexpr std::uint64_t kUpper = sizeof(wchar_t) == 2 ? 0xFF00FF00FF00FF00 : 0xFF000000FF00;
    std::uint64_t all = 0;
    for (; text.size() >= kUnitsPerWord; text.remove_prefix(kUnitsPerWord))
    {
        std::uint64_t word = 0;
        std::memcpy(&word, text.data(), sizeof(word));
        all |= word;
    }
    for (const wchar_t unit : text)
        all |= static_cast<std::uint64_t>(unit);
    return (all & kUpper) == 0;
}

wchar_t UnitIn(const unsigned char* bytes, std::size_t index) noexcept
{
    return static_cast<wchar_t>(bytes[2 * index] | bytes[2 * index + 1] << 8);
}
} // namespace

CompactValue CompactValue::OfText(std::wstring_view text) noexcept
{
    CompactValue value;
    value.m_source = Source::Text;
    value.m_kind = IsNarrow(text) ? Kind::Bytes : Kind::Units;
    value.m_size = value.m_kind == Kind::Bytes ? text.size() : 2 * text.size();
    value.m_text = text;
    return value;
}

CompactValue CompactValue::OfRecord(std::span<const unsigned char> bytes) noexcept
{
    CompactValue value;
    value.m_source = Source::Record;
    value.m_kind = Kind::Bytes;
    value.m_bytes = WithoutZerosAtEnd(bytes);
    value.m_size = SparseSize(value.m_bytes);
    return value;
}

std::size_t CompactValue::TextLength() const noexcept
{
    return m_kind == Kind::Units ? m_size / 2 : m_size;
}

void CompactValue::CopyText(wchar_t* to) const noexcept
{
    const unsigned char* const from = m_bytes.data();
    if (m_kind == Kind::Units)
        for (std::size_t i = 0; i < m_size / 2; ++i)
            to[i] = UnitIn(from, i);
    else
        ConvertUnits(from, m_size, to);
}

std::wstring CompactValue::Text() const
{
    std::wstring text(TextLength(), L'\0');
    CopyText(text.data());
    return text;
}

void CompactValue::CopyRecord(std::span<unsigned char> to) const noexcept
{
    UnpackSparse(m_bytes, to);
}

bool CompactValue::IsSameText(const CompactValue& stored) const noexcept
{
    if (m_source != Source::Text || m_kind != stored.m_kind || m_size != stored.m_size)
        return false;
    const unsigned char* const bytes = stored.m_bytes.data();
    for (std::size_t i = 0; i < m_text.size(); ++i)
    {
        const unsigned unit = m_kind == Kind::Units ? UnitIn(bytes, i) : bytes[i];
        if (unit != static_cast<char16_t>(m_text[i]))
            return false;
    }
    return true;
}

void CompactValue::Write(unsigned char* to) const noexcept
{
    switch (m_source)
    {
    case Source::Block:
        std::ranges::copy(m_bytes, to);
        break;
    case Source::Record:
        PackSparse(m_bytes, to);
        break;
    case Source::Text:
        WriteText(to);
        break;
    }
}

void CompactValue::WriteText(unsigned char* to) const noexcept
{
    const wchar_t* const from = m_text.data();
    if (m_kind == Kind::Bytes)
    {
        ConvertUnits(from, m_size, to);
        return;
    }
    for (std::size_t i = 0; i < m_text.size(); ++i)
    {
        to[2 * i] = static_cast<unsigned char>(from[i]);
        to[2 * i + 1] = static_cast<unsigned char>(from[i] >> 8);
    }
}

void CompactBlock::Read(std::span<CompactValue> values) const noexcept
{
    const unsigned char* at = m_bytes.get();
    if (!at)
    {
        std::ranges::fill(values, CompactValue());
        return;
    }
    for (CompactValue& value : values)
    {
        std::size_t head = 0;
        at = ReadHead(at, head);
        const auto kind = static_cast<CompactValue::Kind>(head & kKindMask);
        const std::size_t size = head >> kKindBits;
        if (kind == CompactValue::Kind::Same)
        {
            value = values[size];
            continue;
        }
        value = CompactValue();
        value.m_kind = kind;
        value.m_size = size;
        value.m_bytes = {at, size};
        at += size;
    }
}

void CompactBlock::Assign(std::span<const CompactValue> values)
{
    std::size_t size = 0;
    bool isAny = false;
    for (std::size_t i = 0; i < values.size(); ++i)
    {
        const std::size_t head = HeadOf(values, i);
        const bool isSame =
            (head & kKindMask) == static_cast<std::size_t>(CompactValue::Kind::Same);
        size += HeadSize(head) + (isSame ? 0 : values[i].m_size);
        isAny = isAny || values[i].IsAny();
    }
    if (!isAny)
    {
        m_bytes.reset();
        return;
    }
    auto bytes = std::make_unique_for_overwrite<unsigned char[]>(size);
    unsigned char* at = bytes.get();
    for (std::size_t i = 0; i < values.size(); ++i)
    {
        const std::size_t head = HeadOf(values, i);
        at = WriteHead(head, at);
        if ((head & kKindMask) == static_cast<std::size_t>(CompactValue::Kind::Same))
            continue;
        values[i].Write(at);
        at += values[i].m_size;
    }
    m_bytes = std::move(bytes);
}

CompactValue CompactBlock::Shared(const CompactValue& value,
                                  std::span<const CompactValue> others) noexcept
{
    const auto same = std::ranges::find_if(
        others, [&](const CompactValue& other) { return value.IsSameText(other); });
    return same == others.end() ? value : *same;
}

// The kind, and the size or the position of the earlier value that is this one.
std::size_t CompactBlock::HeadOf(std::span<const CompactValue> values, std::size_t index) noexcept
{
    const CompactValue& value = values[index];
    if (value.m_source == CompactValue::Source::Block && value.m_size > 0)
        for (std::size_t i = 0; i < index; ++i)
            if (values[i].m_source == CompactValue::Source::Block &&
                values[i].m_bytes.data() == value.m_bytes.data())
                return i << kKindBits | static_cast<std::size_t>(CompactValue::Kind::Same);
    return value.m_size << kKindBits | static_cast<std::size_t>(value.m_kind);
}
