// How the collection objects answer: the shapes that their methods share. Outputs are written last,
// and only on success unless a shape says otherwise.
#pragma once

#include "platform/Bstr.h"
#include "platform/WindowsHeaders.h"

#include <string>

// VARIANT_TRUE and S_OK for a true value; E_FAIL otherwise, with the result untouched.
inline HRESULT AnswerTruth(BOOL done, VARIANT_BOOL* result)
{
    if (!done)
        return E_FAIL;
    *result = VARIANT_TRUE;
    return S_OK;
}

// S_OK for an item that was found; E_FAIL for null, which also marks the end of a walk.
inline HRESULT AnswerItem(IUnknown* item)
{
    return item ? S_OK : E_FAIL;
}

// A new BSTR with the ID and S_OK; E_FAIL for an empty ID, with the output untouched.
inline HRESULT AnswerID(const std::wstring& id, BSTR* output)
{
    if (id.empty())
        return E_FAIL;
    *output = NewText(id);
    return S_OK;
}
