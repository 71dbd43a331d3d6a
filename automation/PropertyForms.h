// The forms that the properties of the item objects have. Each is the body of a get or put and
// runs inside Guard; exhausted memory leaves as std::bad_alloc.
#pragma once

#include "platform/Bstr.h"
#include "platform/SafeArray.h"

#include <algorithm>
#include <memory>
#include <span>
#include <string_view>
#include <utility>

// Text get: a null field gives null, else a new string of the same length in bytes.
// Ownership: the caller frees *out with SysFreeString.   Returns: S_OK; E_POINTER.
inline HRESULT GetText(const Bstr& field, BSTR* out)
{
    if (!out)
        return E_POINTER;
    *out = nullptr;
    *out = Bstr::CopyOf(field.Get()).Detach();
    return S_OK;
}

// Text put: the text up to its first zero. The pointer that the field itself holds does nothing.
// Returns: S_OK; E_POINTER for null, with the field unchanged.
inline HRESULT PutText(Bstr& field, BSTR value)
{
    if (!value)
        return E_POINTER;
    if (value != field.Get())
        field = Bstr(std::wstring_view(value));
    return S_OK;
}

// Clearing text put: like PutText, but null empties the field. Returns: S_OK.
inline HRESULT PutOrClearText(Bstr& field, BSTR value)
{
    if (value)
        return PutText(field, value);
    field = Bstr();
    return S_OK;
}

// Value get. Returns: S_OK; E_POINTER.
template <typename T> HRESULT GetValue(const T& field, T* out)
{
    if (!out)
        return E_POINTER;
    *out = field;
    return S_OK;
}

// Value put: every bit as given. Returns: S_OK.
template <typename T> HRESULT PutValue(T& field, T value)
{
    field = value;
    return S_OK;
}

// The array of a property; empty where there is none. Shared, because copying and destroying an
// array may call its elements, and those may put another array meanwhile.
using ArrayField = std::shared_ptr<SAFEARRAY>;

// Array get. Ownership: the caller destroys *out.
// Returns: the result of the system's copy; E_POINTER; E_FAIL for an empty field, with *out
//          untouched.
inline HRESULT GetArray(const ArrayField& field, SAFEARRAY** out)
{
    if (!out)
        return E_POINTER;
    const ArrayField held = field;
    return held ? SafeArrayCopy(held.get(), out) : E_FAIL;
}

// Whether the array has the shape that the system's copy takes for granted: dimensions, and memory
// for its elements where it has any.
inline bool HasShape(const SAFEARRAY& array) noexcept
{
    const auto bounds = std::span(array.rgsabound, array.cDims);
    return !bounds.empty() &&
           (array.pvData || std::any_of(bounds.begin(), bounds.end(), [](const auto& bound) {
                return bound.cElements == 0;
            }));
}

// Array put: a copy takes the place of the old array, which is destroyed first. Null, and an array
// that cannot be copied, empty the field. Returns: the result of the system's copy; E_INVALIDARG
// for an array without shape.
inline HRESULT PutArray(ArrayField& field, SAFEARRAY* value)
{
    std::exchange(field, nullptr).reset();
    if (value && !HasShape(*value))
        return E_INVALIDARG;
    UniqueSafeArray copy;
    const HRESULT result = SafeArrayCopy(value, copy.Put());
    ArrayField taken;
    if (copy)
        taken.reset(copy.Detach(), &SafeArrayPolicy::Close);
    field.swap(taken);
    return result;
}

// Lenient array get: an empty field leaves *out as it is, and a copy that fails gives null.
// Ownership: the caller destroys *out.   Returns: S_OK; E_POINTER.
inline HRESULT GetArrayIfAny(const ArrayField& field, SAFEARRAY** out)
{
    if (!out)
        return E_POINTER;
    GetArray(field, out);
    return S_OK;
}

// Lenient array put: like PutArray, but null is refused and a copy that fails goes unsaid.
// Returns: S_OK; E_POINTER for null, with the field unchanged.
inline HRESULT PutArrayIfAny(ArrayField& field, SAFEARRAY* value)
{
    if (!value)
        return E_POINTER;
    PutArray(field, value);
    return S_OK;
}
