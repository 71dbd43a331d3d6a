#include "outlook/store/PropertyArray.h"

#include <algorithm>
#include <limits>
#include <new>

namespace
{
ULONG CheckedCount(std::size_t count)
{
    if (count > std::numeric_limits<ULONG>::max())
        throw std::bad_alloc();
    return static_cast<ULONG>(count);
}
} // namespace

template <typename T> T* PropertyArray::NewBlock(std::size_t count)
{
    static_assert(alignof(T) <= __STDCPP_DEFAULT_NEW_ALIGNMENT__);
    if (count > std::numeric_limits<std::size_t>::max() / sizeof(T))
        throw std::bad_alloc();
    auto block = std::make_unique<std::byte[]>(count * sizeof(T));
    T* const elements = reinterpret_cast<T*>(block.get());
    m_blocks.push_back(std::move(block));
    return elements;
}

wchar_t* PropertyArray::NewText(std::wstring_view text)
{
    // The block is zeroed, so the copy is terminated.
    wchar_t* const copy = NewBlock<wchar_t>(text.size() + 1);
    std::ranges::copy(text, copy);
    return copy;
}

SPropValue& PropertyArray::Append(ULONG tag)
{
    SPropValue value = {};
    value.ulPropTag = tag;
    return m_values.emplace_back(value);
}

void PropertyArray::AddText(ULONG tag, std::wstring_view text)
{
    wchar_t* const copy = NewText(text);
    Append(tag).Value.lpszW = copy;
}

void PropertyArray::AddTexts(ULONG tag, std::span<const std::wstring> texts)
{
    const ULONG count = CheckedCount(texts.size());
    wchar_t** const copies = NewBlock<wchar_t*>(texts.size());
    std::ranges::transform(
        texts, copies, [this](const std::wstring& text) { return NewText(text); });
    Append(tag).Value.MVszW = {count, copies};
}

void PropertyArray::AddBinary(ULONG tag, std::span<const std::uint8_t> bytes)
{
    const ULONG count = CheckedCount(bytes.size());
    auto* const copy = NewBlock<std::uint8_t>(bytes.size());
    std::ranges::copy(bytes, copy);
    Append(tag).Value.bin = {count, copy};
}

void PropertyArray::AddLong(ULONG tag, LONG number)
{
    Append(tag).Value.l = number;
}

void PropertyArray::AddLongs(ULONG tag, std::span<const LONG> numbers)
{
    const ULONG count = CheckedCount(numbers.size());
    LONG* const copy = NewBlock<LONG>(numbers.size());
    std::ranges::copy(numbers, copy);
    Append(tag).Value.MVl = {count, copy};
}

void PropertyArray::AddBool(ULONG tag, USHORT truth)
{
    Append(tag).Value.b = truth;
}

void PropertyArray::AddTime(ULONG tag, FILETIME utcTime)
{
    Append(tag).Value.ft = utcTime;
}
