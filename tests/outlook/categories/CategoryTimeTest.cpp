// Expected DATEs count days from 1899-12-30: 2011-03-19 is day 40621, 1601-01-01 day -109205.
#include "outlook/categories/CategoryTime.h"

#include <gtest/gtest.h>

#include <limits>

namespace
{
constexpr DATE kDay = 40621.0;

DATE At(int hour, int minute, int second)
{
    return kDay + (hour * 3600 + minute * 60 + second) / 86400.0;
}
} // namespace

TEST(CategoryTimeTest, ReadsWholeSecondsByPosition)
{
    EXPECT_DOUBLE_EQ(At(11, 19, 9), ParseCategoryTime(L"2011-03-19T11:19:09.564"));
    EXPECT_DOUBLE_EQ(kDay, ParseCategoryTime(L"2011-03-19T00:00:00.000"));
    EXPECT_DOUBLE_EQ(-109205.0, ParseCategoryTime(L"1601-01-01T00:00:00.000"));
    // The separators are not looked at, nor is what stands behind the milliseconds.
    EXPECT_DOUBLE_EQ(At(11, 19, 9), ParseCategoryTime(L"2011/03/19 11.19.09,564"));
    EXPECT_DOUBLE_EQ(At(11, 19, 9), ParseCategoryTime(L"2011-03-19T11:19:09.548375Z"));
    EXPECT_DOUBLE_EQ(At(11, 19, 9), ParseCategoryTime(L"2011-03-19T11:19:09.564+05:00"));
}

TEST(CategoryTimeTest, MillisecondsAreLost)
{
    EXPECT_EQ(ParseCategoryTime(L"2011-03-19T11:19:09.000"),
              ParseCategoryTime(L"2011-03-19T11:19:09.999"));
}

TEST(CategoryTimeTest, ATextThatIsTooShortIsZero)
{
    EXPECT_EQ(0.0, ParseCategoryTime(L""));
    EXPECT_EQ(0.0, ParseCategoryTime(L"2011-03-19T11:19:09.56"));
    EXPECT_EQ(0.0, ParseCategoryTime(L"2011-03-19T11:19:09Z"));
}

TEST(CategoryTimeTest, WhatIsNoTimeIsZero)
{
    EXPECT_EQ(0.0, ParseCategoryTime(L"0000-00-00T00:00:00.000"));
    EXPECT_EQ(0.0, ParseCategoryTime(L"2011-13-19T11:19:09.564"));
    EXPECT_EQ(0.0, ParseCategoryTime(L"2011-03-32T11:19:09.564"));
    EXPECT_EQ(0.0, ParseCategoryTime(L"2011-03-19T24:00:00.000"));
    EXPECT_EQ(0.0, ParseCategoryTime(L"2011-03-19T11:60:00.000"));
    EXPECT_EQ(0.0, ParseCategoryTime(L"2011-03-19T11:19:60.000"));
    EXPECT_EQ(0.0, ParseCategoryTime(L"-001-03-19T11:19:09.564"));
    EXPECT_EQ(0.0, ParseCategoryTime(L"no time at all, nowhere"));
}

// As the platform reads numbers: blanks and a sign in front, and what is no digit ends one.
TEST(CategoryTimeTest, FieldsAreReadAsNumbers)
{
    EXPECT_DOUBLE_EQ(At(1, 2, 3), ParseCategoryTime(L"2011- 3-19T+1: 2:3x.   "));
}

TEST(CategoryTimeTest, WritesWholeSecondsWithFixedDigits)
{
    EXPECT_EQ("2011-03-19T11:19:09.000", FormatCategoryTime(At(11, 19, 9)));
    EXPECT_EQ("1601-01-01T00:00:00.000", FormatCategoryTime(-109205.0));
    EXPECT_EQ("1899-12-30T00:00:00.000", FormatCategoryTime(0.0));
    EXPECT_EQ("0100-01-01T00:00:00.000", FormatCategoryTime(-657434.0));
    EXPECT_EQ("9999-12-31T23:59:59.000", FormatCategoryTime(2958465.0 + 86399.0 / 86400.0));
}

TEST(CategoryTimeTest, WritesZerosForWhatIsNoTime)
{
    constexpr char kZeros[] = "0000-00-00T00:00:00.000";
    EXPECT_EQ(kZeros, FormatCategoryTime(std::numeric_limits<DATE>::quiet_NaN()));
    EXPECT_EQ(kZeros, FormatCategoryTime(std::numeric_limits<DATE>::infinity()));
    EXPECT_EQ(kZeros, FormatCategoryTime(1e300));
    EXPECT_EQ(kZeros, FormatCategoryTime(-1e300));
}
