// Owner of a BSTR: an automation string with an explicit length, in UTF-16 code units.
#pragma once

#include "platform/WindowsHeaders.h"

#include <new>
#include <string>
#include <string_view>
#include <utility>

class Bstr
{
  public:
    Bstr() noexcept = default;
    // A copy of the text, embedded zeros included. Throws std::bad_alloc.
    explicit Bstr(std::wstring_view text)
        : m_value(SysAllocStringLen(text.data(), static_cast<UINT>(text.size())))
    {
        if (!m_value)
            throw std::bad_alloc();
    }
    // Takes ownership of a string that another call allocated; null is fine.
    static Bstr Adopt(BSTR value) noexcept
    {
        Bstr owner;
        owner.m_value = value;
        return owner;
    }
    // A copy with the same length in bytes; null for null. Throws std::bad_alloc.
    static Bstr CopyOf(BSTR value)
    {
        if (!value)
            return Bstr();
        Bstr copy = Adopt(
            SysAllocStringByteLen(reinterpret_cast<const char*>(value), SysStringByteLen(value)));
        if (!copy)
            throw std::bad_alloc();
        return copy;
    }
    Bstr(Bstr&& other) noexcept : m_value(std::exchange(other.m_value, nullptr)) {}
    Bstr& operator=(Bstr&& other) noexcept
    {
        if (this != &other)
        {
            SysFreeString(m_value);
            m_value = std::exchange(other.m_value, nullptr);
        }
        return *this;
    }
    ~Bstr() { SysFreeString(m_value); }

    BSTR Get() const noexcept { return m_value; }
    explicit operator bool() const noexcept { return m_value != nullptr; }
    // The whole text, embedded zeros included; empty for a null string.
    std::wstring_view View() const noexcept
    {
        return {m_value ? m_value : L"", SysStringLen(m_value)};
    }
    // Frees what is held and hands out the address for an out parameter.
    BSTR* Put() noexcept
    {
        SysFreeString(std::exchange(m_value, nullptr));
        return &m_value;
    }
    BSTR Detach() noexcept { return std::exchange(m_value, nullptr); }

  private:
    BSTR m_value = nullptr;
};

// The text of a BSTR up to its first zero, as clients see it; empty for null.
inline std::wstring TextOf(BSTR value)
{
    return value ? std::wstring(value) : std::wstring();
}

// A new BSTR with the text up to its first zero; the caller owns it. Throws std::bad_alloc.
inline BSTR NewText(const std::wstring& text)
{
    return Bstr(std::wstring_view(text.c_str())).Detach();
}
