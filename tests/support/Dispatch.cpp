#include "support/Dispatch.h"

#include "platform/Bstr.h"

Variant::Variant(const wchar_t* text) : Variant()
{
    m_value.vt = VT_BSTR;
    m_value.bstrVal = SysAllocString(text);
}

Variant::Variant(double value) noexcept : Variant()
{
    m_value.vt = VT_R8;
    m_value.dblVal = value;
}

Variant::Variant(long value) noexcept : Variant()
{
    m_value.vt = VT_I4;
    m_value.lVal = value;
}

Variant::Variant(bool value) noexcept : Variant()
{
    m_value.vt = VT_BOOL;
    m_value.boolVal = value ? VARIANT_TRUE : VARIANT_FALSE;
}

Variant Variant::Date(DATE value) noexcept
{
    Variant variant;
    variant.m_value.vt = VT_DATE;
    variant.m_value.date = value;
    return variant;
}

Variant Variant::Object(IDispatch* object) noexcept
{
    Variant variant;
    variant.m_value.vt = VT_DISPATCH;
    variant.m_value.pdispVal = object;
    if (object)
        object->AddRef();
    return variant;
}

Variant Variant::Reference(VARTYPE type, void* target) noexcept
{
    Variant variant;
    variant.m_value.vt = static_cast<VARTYPE>(VT_BYREF | type);
    variant.m_value.byref = target;
    return variant;
}

Variant::Variant(const Variant& other) noexcept : Variant()
{
    *this = other;
}

Variant& Variant::operator=(const Variant& other) noexcept
{
    if (this == &other)
        return *this;
    VariantClear(&m_value);
    // The system's copy makes an empty text of a null one.
    if (other.m_value.vt == VT_BSTR && !other.m_value.bstrVal)
        m_value = other.m_value;
    else
        VariantCopy(&m_value, const_cast<VARIANT*>(&other.m_value));
    return *this;
}

std::wstring Variant::Text() const
{
    if (m_value.vt != VT_BSTR)
        return L"(not a text)";
    return TextOf(m_value.bstrVal);
}

namespace
{
DispatchResult Call(IDispatch* object,
                    const wchar_t* name,
                    WORD flags,
                    const std::vector<Variant>& arguments)
{
    DispatchResult outcome{};
    DISPID id = DISPID_UNKNOWN;
    LPOLESTR names[] = {const_cast<LPOLESTR>(name)};
    outcome.result = object->GetIDsOfNames(IID_NULL, names, 1, LOCALE_USER_DEFAULT, &id);
    if (FAILED(outcome.result))
        return outcome;

    // The call takes its arguments last one first.
    std::vector<Variant> reversed(arguments.rbegin(), arguments.rend());
    std::vector<VARIANTARG> raw;
    for (Variant& argument : reversed)
        raw.push_back(*argument.Get());
    DISPID put = DISPID_PROPERTYPUT;
    const bool isPut = (flags & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) != 0;
    DISPPARAMS parameters{
        raw.data(), isPut ? &put : nullptr, static_cast<UINT>(raw.size()), isPut ? 1u : 0u};
    EXCEPINFO exception{};
    outcome.result = object->Invoke(id,
                                    IID_NULL,
                                    LOCALE_USER_DEFAULT,
                                    flags,
                                    &parameters,
                                    isPut ? nullptr : outcome.value.Get(),
                                    &exception,
                                    &outcome.badArgument);
    outcome.exceptionCode = exception.scode;
    SysFreeString(exception.bstrSource);
    SysFreeString(exception.bstrDescription);
    SysFreeString(exception.bstrHelpFile);
    return outcome;
}
} // namespace

DispatchResult DispatchGet(IDispatch* object,
                           const wchar_t* name,
                           const std::vector<Variant>& arguments)
{
    return Call(object, name, DISPATCH_PROPERTYGET, arguments);
}

DispatchResult DispatchPut(IDispatch* object,
                           const wchar_t* name,
                           const std::vector<Variant>& arguments)
{
    return Call(object, name, DISPATCH_PROPERTYPUT, arguments);
}

DispatchResult DispatchCall(IDispatch* object,
                            const wchar_t* name,
                            const std::vector<Variant>& arguments)
{
    return Call(object, name, DISPATCH_METHOD, arguments);
}
