#include "automation/base/DispatchArguments.h"

namespace
{
bool LeadsNowhere(const VARIANTARG& argument) noexcept
{
    if (argument.vt == VT_RECORD)
        return !argument.pvRecord;
    return (argument.vt & VT_BYREF) && !argument.byref;
}
} // namespace

HRESULT CheckDispatchArguments(const DISPPARAMS* arguments, UINT* badArgument) noexcept
{
    if (!arguments || (arguments->cArgs && !arguments->rgvarg) ||
        (arguments->cNamedArgs && !arguments->rgdispidNamedArgs) ||
        arguments->cNamedArgs > arguments->cArgs)
        return E_INVALIDARG;
    for (UINT i = 0; i < arguments->cArgs; ++i)
    {
        const VARIANTARG& argument = arguments->rgvarg[i];
        // The target of a reference may itself be a reference.
        const bool isIndirect = argument.vt == (VT_BYREF | VT_VARIANT) && argument.pvarVal;
        if (!LeadsNowhere(argument) && !(isIndirect && LeadsNowhere(*argument.pvarVal)))
            continue;
        if (badArgument)
            *badArgument = i;
        return DISP_E_TYPEMISMATCH;
    }
    return S_OK;
}
