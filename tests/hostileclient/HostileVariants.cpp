#include "hostileclient/HostileVariants.h"

#include <limits>

namespace
{
SAFEARRAY* NewTwoDimensions()
{
    SAFEARRAYBOUND bounds[] = {{3, -7}, {2, std::numeric_limits<LONG>::min()}};
    return SafeArrayCreate(VT_BSTR, 2, bounds);
}
} // namespace

HostileVariants::HostileVariants()
    : m_text(L"a text"), m_twoDimensions(NewTwoDimensions()),
      m_numbers(SafeArrayCreateVector(VT_I4, 0, 4))
{
    // Every plain type and some that are none, each alone, as an array and by reference.
    for (const int type : {0,  1,  2,  3,  4,  5,  6,  7,  8,  9,  10, 11, 12, 13, 14,
                           15, 16, 17, 18, 19, 20, 21, 22, 23, 24, 25, 26, 27, 28, 29,
                           30, 31, 36, 37, 64, 65, 66, 67, 68, 69, 70, 71, 72, 73, 0xFFF})
        for (const int modifier : {0, int{VT_ARRAY}, int{VT_BYREF}, VT_BYREF | VT_ARRAY})
            Add("empty", modifier | type);
    Add("vector", VT_VECTOR | VT_I4);
    Add("reserved", VT_RESERVED | VT_BSTR);
    Add("all bits", 0xFFFF);
    Add("text", VT_BSTR).bstrVal = m_text.Get();
    Add("no number", VT_R8).dblVal = std::numeric_limits<double>::quiet_NaN();
    Add("no time", VT_DATE).date = std::numeric_limits<double>::quiet_NaN();
    Add("large", VT_I8).llVal = std::numeric_limits<LONGLONG>::min();
    Add("two dimensions", VT_ARRAY | VT_BSTR).parray = m_twoDimensions.Get();
    Add("numbers", VT_ARRAY | VT_I4).parray = m_numbers.Get();
    Add("numbers that claim to be texts", VT_ARRAY | VT_BSTR).parray = m_numbers.Get();
    Add("own object", VT_UNKNOWN).punkVal = &m_item;
    Add("own dispatch", VT_DISPATCH).pdispVal = &m_item;
    Add("reference to a text", VT_BYREF | VT_BSTR).pbstrVal = m_givenText.Put();
    Add("reference to an object", VT_BYREF | VT_UNKNOWN).ppunkVal = m_givenObject.GetAddressOf();
    Add("reference to an empty variant", VT_BYREF | VT_VARIANT).pvarVal = &m_given;
    Add("reference to a reference to nothing", VT_BYREF | VT_VARIANT).pvarVal = &m_reference;
    Add("reference to itself", VT_BYREF | VT_VARIANT).pvarVal = &m_itself;
    ClearOutputs();
}

void HostileVariants::ClearOutputs()
{
    m_givenText = Bstr();
    m_givenObject.Reset();
    for (VARIANT* const written : {&m_given, &m_reference, &m_itself})
    {
        VariantClear(written);
        *written = {};
    }
    m_reference.vt = VT_BYREF | VT_BSTR;
    m_itself.vt = VT_BYREF | VT_VARIANT;
    m_itself.pvarVal = &m_itself;
}

VARIANT& HostileVariants::Add(const std::string& name, int type)
{
    m_all.push_back({name + ", type " + std::to_string(type), {}});
    m_all.back().value.vt = static_cast<VARTYPE>(type);
    return m_all.back().value;
}
