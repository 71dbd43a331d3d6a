#include "automation/PropertyForms.h"

#include "platform/Bstr.h"

#include <gtest/gtest.h>

#include <cstring>
#include <limits>

// Six bytes of text with a zero in the middle: every byte arrives.
TEST(PropertyFormsTest, ATextGetCopiesBeyondAnEmbeddedZero)
{
    const Bstr field(std::wstring_view(L"a\0b", 3));
    BSTR out = nullptr;
    ASSERT_EQ(S_OK, GetText(field, &out));
    const Bstr copy = Bstr::Adopt(out);
    EXPECT_EQ(6u, SysStringByteLen(copy.Get()));
    EXPECT_EQ(field.View(), copy.View());
    EXPECT_NE(field.Get(), copy.Get());
}

TEST(PropertyFormsTest, ATextGetKeepsAnOddLengthInBytes)
{
    const Bstr field = Bstr::Adopt(SysAllocStringByteLen("abc", 3));
    BSTR out = nullptr;
    ASSERT_EQ(S_OK, GetText(field, &out));
    const Bstr copy = Bstr::Adopt(out);
    ASSERT_EQ(3u, SysStringByteLen(copy.Get()));
    EXPECT_EQ(0, std::memcmp("abc", copy.Get(), 3));
}

TEST(PropertyFormsTest, ATextPutOfTheFieldsOwnPointerDoesNothing)
{
    Bstr field(std::wstring_view(L"a\0b", 3));
    const BSTR own = field.Get();
    EXPECT_EQ(S_OK, PutText(field, own));
    EXPECT_EQ(own, field.Get());
    // Another string of the same text would have been cut at its zero.
    EXPECT_EQ(3u, field.View().size());
    EXPECT_EQ(S_OK, PutOrClearText(field, own));
    EXPECT_EQ(own, field.Get());
}

TEST(PropertyFormsTest, AValuePutKeepsWhatIsNoNumber)
{
    DATE field = 0.0;
    EXPECT_EQ(S_OK, PutValue(field, std::numeric_limits<DATE>::quiet_NaN()));
    DATE out = 0.0;
    EXPECT_EQ(S_OK, GetValue(field, &out));
    EXPECT_NE(out, out);
}

// A descriptor whose elements were promised and never given memory, and one of no dimension.
TEST(PropertyFormsTest, AnArrayWithoutShapeIsRefusedAndEmptiesTheField)
{
    SAFEARRAY* array = nullptr;
    ASSERT_EQ(S_OK, SafeArrayAllocDescriptorEx(VT_BSTR, 1, &array));
    for (const auto& [dimensions, elements] : {std::pair{1, 2u}, {0, 2u}})
    {
        ArrayField field(SafeArrayCreateVector(VT_BSTR, 0, 1), &SafeArrayPolicy::Close);
        array->cDims = static_cast<USHORT>(dimensions);
        array->rgsabound[0].cElements = elements;
        EXPECT_EQ(E_INVALIDARG, PutArray(field, array));
        EXPECT_FALSE(field);
    }
    // Without elements there is nothing to give memory to.
    ArrayField field;
    array->cDims = 1;
    array->rgsabound[0].cElements = 0;
    EXPECT_EQ(S_OK, PutArray(field, array));
    EXPECT_TRUE(field);
    field.reset();
    SafeArrayDestroyDescriptor(array);
}
