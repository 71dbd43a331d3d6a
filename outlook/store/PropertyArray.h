// Property values with memory of their own, as they are made from an item and given to a store.
#pragma once

#include "platform/WindowsHeaders.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// Keeps the order of the additions. Everything is freed with the array, whatever became of it: a
// store copies what it takes. Each addition copies its argument; the type in the tag must be the
// one of the addition. They throw std::bad_alloc.
class PropertyArray
{
  public:
    PropertyArray() = default;
    PropertyArray(PropertyArray&&) noexcept = default;
    PropertyArray& operator=(PropertyArray&&) noexcept = default;

    void AddText(ULONG tag, std::wstring_view text);                // PT_UNICODE
    void AddTexts(ULONG tag, std::span<const std::wstring> texts);  // PT_MV_UNICODE
    void AddBinary(ULONG tag, std::span<const std::uint8_t> bytes); // PT_BINARY
    void AddLong(ULONG tag, LONG number);                           // PT_LONG
    void AddLongs(ULONG tag, std::span<const LONG> numbers);        // PT_MV_LONG
    void AddBool(ULONG tag, USHORT truth); // PT_BOOLEAN, as it stands: both 1 and 0xFFFF are true
    void AddTime(ULONG tag, FILETIME utcTime); // PT_SYSTIME

    bool IsEmpty() const noexcept { return m_values.empty(); }
    ULONG Count() const noexcept { return static_cast<ULONG>(m_values.size()); }
    // As store interfaces take it; valid until the next addition.
    SPropValue* Get() noexcept { return m_values.data(); }
    const SPropValue& operator[](std::size_t position) const { return m_values[position]; }

  private:
    // Room for that many elements, kept until the end; not null.
    template <typename T> T* NewBlock(std::size_t count);
    wchar_t* NewText(std::wstring_view text);
    SPropValue& Append(ULONG tag);

    std::vector<SPropValue> m_values;
    std::vector<std::unique_ptr<std::byte[]>> m_blocks;
};
