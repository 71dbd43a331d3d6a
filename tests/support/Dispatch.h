// Late-bound calls, as a script client makes them.
#pragma once

#include "platform/WindowsHeaders.h"

#include <string>
#include <vector>

// Owner of a VARIANT: the caller of a late-bound call.
class Variant
{
  public:
    Variant() noexcept { VariantInit(&m_value); }
    explicit Variant(const wchar_t* text);
    explicit Variant(double value) noexcept;
    explicit Variant(long value) noexcept;
    explicit Variant(bool value) noexcept;
    // A time, in days since 1899-12-30.
    static Variant Date(DATE value) noexcept;
    static Variant Object(IDispatch* object) noexcept;
    // Refers to a variable of the caller's, as scripts pass output arguments.
    static Variant Reference(VARTYPE type, void* target) noexcept;
    Variant(const Variant& other) noexcept;
    Variant& operator=(const Variant& other) noexcept;
    ~Variant() { VariantClear(&m_value); }

    VARIANT* Get() noexcept { return &m_value; }
    const VARIANT& Value() const noexcept { return m_value; }
    VARTYPE Type() const noexcept { return m_value.vt; }
    // The text of a VT_BSTR; "(not a text)" for another type.
    std::wstring Text() const;

  private:
    VARIANT m_value;
};

// What a late-bound call gave.
struct DispatchResult
{
    HRESULT result;
    Variant value;
    HRESULT exceptionCode = S_OK; // EXCEPINFO::scode of a DISP_E_EXCEPTION
    UINT badArgument = 0xFFFFFFFF;
};

// Looks the name up and calls it. Arguments stand in the order of the declaration.
DispatchResult DispatchGet(IDispatch* object,
                           const wchar_t* name,
                           const std::vector<Variant>& arguments = {});
DispatchResult DispatchPut(IDispatch* object,
                           const wchar_t* name,
                           const std::vector<Variant>& arguments);
DispatchResult DispatchCall(IDispatch* object,
                            const wchar_t* name,
                            const std::vector<Variant>& arguments = {});
