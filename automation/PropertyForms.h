// The forms that the properties of the item objects have. Each is the body of a get or put and
// runs inside Guard; exhausted memory leaves as std::bad_alloc.
#pragma once

#include "platform/Bstr.h"

#include <string_view>

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
