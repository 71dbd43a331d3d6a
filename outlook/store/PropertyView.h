// The values that a walker delivered, read by position. What a store may leave out or deliver in
// another form than asked for is absent: a position at or past the delivered count, a value of the
// type PT_ERROR or of another type than the reader's, a null pointer.
#pragma once

#include "platform/WindowsHeaders.h"

#include <optional>
#include <span>
#include <string>
#include <vector>

class PropertyView
{
  public:
    // A view: the values belong to the walker and are valid during its call.
    PropertyView(ULONG count, const SPropValue* values) noexcept
        : m_count(values ? count : 0), m_values(values)
    {
    }

    ULONG Count() const noexcept { return m_count; }

    // Null where the value is absent.
    const SPropValue* Find(ULONG position) const noexcept
    {
        if (position >= m_count || PROP_TYPE(m_values[position].ulPropTag) == PT_ERROR)
            return nullptr;
        return &m_values[position];
    }
    // Why the store left a value out; none where it did not say.
    std::optional<SCODE> Error(ULONG position) const noexcept
    {
        if (position >= m_count || PROP_TYPE(m_values[position].ulPropTag) != PT_ERROR)
            return std::nullopt;
        return m_values[position].Value.err;
    }
    // Null where the value is absent.
    const SBinary* Binary(ULONG position) const noexcept
    {
        const SPropValue* const value = FindTyped(position, PT_BINARY);
        return value && (value->Value.bin.lpb || value->Value.bin.cb == 0) ? &value->Value.bin
                                                                           : nullptr;
    }
    // Null where the value is absent.
    const wchar_t* Text(ULONG position) const noexcept
    {
        const SPropValue* const value = FindTyped(position, PT_UNICODE);
        return value ? value->Value.lpszW : nullptr;
    }
    // Empty where the value is absent; a null among the texts is an empty one. Throws
    // std::bad_alloc.
    std::vector<std::wstring> Texts(ULONG position) const
    {
        std::vector<std::wstring> texts;
        const SPropValue* const value = FindTyped(position, PT_MV_UNICODE);
        for (ULONG i = 0; value && value->Value.MVszW.lppszW && i < value->Value.MVszW.cValues; ++i)
            texts.emplace_back(value->Value.MVszW.lppszW[i] ? value->Value.MVszW.lppszW[i] : L"");
        return texts;
    }
    // Empty where the value is absent. One among them may have no bytes, and a null for them.
    std::span<const SBinary> Binaries(ULONG position) const noexcept
    {
        const SPropValue* const value = FindTyped(position, PT_MV_BINARY);
        if (!value || !value->Value.MVbin.lpbin)
            return {};
        return {value->Value.MVbin.lpbin, value->Value.MVbin.cValues};
    }
    // UTC.
    const FILETIME* Time(ULONG position) const noexcept
    {
        const SPropValue* const value = FindTyped(position, PT_SYSTIME);
        return value ? &value->Value.ft : nullptr;
    }
    // None where the value is absent.
    std::optional<LONG> Long(ULONG position) const noexcept
    {
        const SPropValue* const value = FindTyped(position, PT_LONG);
        return value ? std::optional(value->Value.l) : std::nullopt;
    }
    // As it stands: stores keep 1 and 0xFFFF for true.
    std::optional<USHORT> Bool(ULONG position) const noexcept
    {
        const SPropValue* const value = FindTyped(position, PT_BOOLEAN);
        return value ? std::optional(value->Value.b) : std::nullopt;
    }

  private:
    const SPropValue* FindTyped(ULONG position, ULONG type) const noexcept
    {
        const SPropValue* const value = Find(position);
        return value && PROP_TYPE(value->ulPropTag) == type ? value : nullptr;
    }

    ULONG m_count;
    const SPropValue* m_values;
};
