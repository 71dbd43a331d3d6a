#include "client/TextArray.h"

#include "platform/Bstr.h"

namespace pim
{
std::vector<std::wstring> TextsOf(SAFEARRAY* array)
{
    std::vector<std::wstring> texts;
    VARTYPE type = VT_EMPTY;
    if (!array || SafeArrayGetDim(array) != 1 || FAILED(SafeArrayGetVartype(array, &type)) ||
        type != VT_BSTR)
        return texts;
    LONG first = 0;
    LONG last = -1;
    if (FAILED(SafeArrayGetLBound(array, 1, &first)) || FAILED(SafeArrayGetUBound(array, 1, &last)))
        return texts;
    for (LONG i = first; i <= last; ++i)
    {
        Bstr text;
        if (SUCCEEDED(SafeArrayGetElement(array, &i, text.Put())))
            texts.emplace_back(text.View());
    }
    return texts;
}

UniqueSafeArray TextArray(const std::vector<std::wstring>& texts)
{
    UniqueSafeArray array(SafeArrayCreateVector(VT_BSTR, 0, static_cast<ULONG>(texts.size())));
    if (!array)
        throw std::bad_alloc();
    const SafeArrayAccess<BSTR> elements(array.Get());
    if (!elements)
        throw std::bad_alloc();
    for (std::size_t i = 0; i < texts.size(); ++i)
        elements.Data()[i] = Bstr(texts[i]).Detach();
    return array;
}
} // namespace pim
