#include "automation/base/DispatchArguments.h"

#include <gtest/gtest.h>

namespace
{
VARIANT OfType(int type)
{
    VARIANT value{};
    value.vt = static_cast<VARTYPE>(type);
    return value;
}

HRESULT Check(VARIANT argument, UINT* badArgument = nullptr)
{
    DISPPARAMS arguments{&argument, nullptr, 1, 0};
    return CheckDispatchArguments(&arguments, badArgument);
}
} // namespace

TEST(DispatchArgumentsTest, TakesWhatLeadsSomewhereOrNowhereByItsType)
{
    DISPPARAMS none{};
    EXPECT_EQ(S_OK, CheckDispatchArguments(&none, nullptr));
    for (const int type : {int{VT_EMPTY}, int{VT_BSTR}, int{VT_DISPATCH}, VT_ARRAY | VT_BSTR})
        EXPECT_EQ(S_OK, Check(OfType(type)));
    BSTR text = nullptr;
    VARIANT reference = OfType(VT_BYREF | VT_BSTR);
    reference.pbstrVal = &text;
    EXPECT_EQ(S_OK, Check(reference));
    VARIANT indirect = OfType(VT_BYREF | VT_VARIANT);
    indirect.pvarVal = &reference;
    EXPECT_EQ(S_OK, Check(indirect));
}

TEST(DispatchArgumentsTest, RefusesMissingLists)
{
    VARIANT argument = OfType(VT_BSTR);
    DISPID name = DISPID_PROPERTYPUT;
    DISPPARAMS withoutArguments{nullptr, nullptr, 1, 0};
    DISPPARAMS withoutNames{&argument, nullptr, 1, 1};
    DISPPARAMS moreNames{nullptr, &name, 0, 1};
    EXPECT_EQ(E_INVALIDARG, CheckDispatchArguments(nullptr, nullptr));
    for (DISPPARAMS* const arguments : {&withoutArguments, &withoutNames, &moreNames})
        EXPECT_EQ(E_INVALIDARG, CheckDispatchArguments(arguments, nullptr));
}

TEST(DispatchArgumentsTest, NamesTheArgumentThatLeadsNowhere)
{
    VARIANT nowhere = OfType(VT_BYREF | VT_R8);
    VARIANT indirect = OfType(VT_BYREF | VT_VARIANT);
    indirect.pvarVal = &nowhere;
    for (const VARIANT& broken : {nowhere, indirect, OfType(VT_RECORD)})
    {
        VARIANT list[] = {OfType(VT_BSTR), broken};
        DISPPARAMS arguments{list, nullptr, 2, 0};
        UINT badArgument = 0;
        EXPECT_EQ(DISP_E_TYPEMISMATCH, CheckDispatchArguments(&arguments, &badArgument));
        EXPECT_EQ(1u, badArgument);
        EXPECT_EQ(DISP_E_TYPEMISMATCH, Check(broken));
    }
}
