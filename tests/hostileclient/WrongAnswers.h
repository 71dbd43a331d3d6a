// What the getters of a client's own item answer where it keeps no promise: an error, success with
// nothing behind it, or values of another type, shape or range than the interface says.
#pragma once

#include "platform/Bstr.h"
#include "platform/SafeArray.h"
#include "platform/WindowsHeaders.h"

#include "PimStoreBridge.h"

#include <cstring>
#include <limits>

enum class WrongManner
{
    Errors,     // and the output as it was
    Nulls,      // S_OK with null pointers and zeros
    OddValues,  // texts of an odd number of bytes, arrays of numbers, NaN, records of set bits
    WrongShapes // texts of 16 KiB, arrays of two dimensions, infinity, the largest numbers
};
inline constexpr WrongManner kWrongManners[] = {
    WrongManner::Errors, WrongManner::Nulls, WrongManner::OddValues, WrongManner::WrongShapes};

class WrongAnswers
{
  public:
    explicit WrongAnswers(WrongManner manner) noexcept : m_manner(manner) {}

    // The result and the output of a getter; the caller frees what is given.
    template <typename Value> HRESULT Give(Value* value) const
    {
        if (m_manner == WrongManner::Errors)
            return E_ACCESSDENIED;
        std::memset(value, 0, sizeof(Value));
        if (m_manner != WrongManner::Nulls)
            Put(*value, m_manner == WrongManner::OddValues);
        return S_OK;
    }

  private:
    static void Put(BSTR& value, bool isOdd)
    {
        value =
            isOdd ? SysAllocStringByteLen("4142X", 5) : Bstr(std::wstring(8 * 1024, L'A')).Detach();
    }
    static void Put(SAFEARRAY*& value, bool isOdd)
    {
        SAFEARRAYBOUND bounds[] = {{3, -5}, {2, 0}};
        value = isOdd ? SafeArrayCreate(VT_I4, 1, bounds) : SafeArrayCreate(VT_BSTR, 2, bounds);
    }
    // No object stands where the picture's stream should.
    static void Put(IUnknown*&, bool) {}
    static void Put(DATE& value, bool isOdd)
    {
        using Limits = std::numeric_limits<DATE>;
        value = isOdd ? Limits::quiet_NaN() : Limits::infinity();
    }
    static void Put(LONG& value, bool isOdd)
    {
        using Limits = std::numeric_limits<LONG>;
        value = isOdd ? Limits::min() : Limits::max();
    }
    static void Put(ULONG& value, bool isOdd) { value = isOdd ? 0x80000000 : 0xFFFFFFFF; }
    static void Put(VARIANT_BOOL& value, bool isOdd) { value = isOdd ? 1 : 0x7FFF; }
    static void Put(_tagNAddress& value, bool isOdd)
    {
        Put(value.Country, isOdd);
        Put(value.Street, isOdd);
    }
    static void Put(_tagRecurringInfo& value, bool isOdd)
    {
        std::memset(&value, 0xFF, sizeof(value));
        if (!isOdd)
            value.eRecurType = Yearly;
    }

    const WrongManner m_manner;
};
