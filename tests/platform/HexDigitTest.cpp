#include "platform/HexDigit.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstddef>
#include <string_view>

TEST(HexDigitTest, DigitsOfBothCasesHaveTheirValues)
{
    constexpr std::string_view kUpper = "0123456789ABCDEF";
    constexpr std::string_view kLower = "0123456789abcdef";
    for (int value = 0; value < 16; ++value)
    {
        EXPECT_EQ(value, HexDigit(kUpper[static_cast<std::size_t>(value)]));
        EXPECT_EQ(value, HexDigit(kLower[static_cast<std::size_t>(value)]));
    }
}

TEST(HexDigitTest, EveryOtherCharacterIsNone)
{
    constexpr std::string_view kDigits = "0123456789ABCDEFabcdef";
    for (int code = CHAR_MIN; code <= CHAR_MAX; ++code)
    {
        const auto c = static_cast<char>(code);
        if (kDigits.find(c) == std::string_view::npos)
        {
            EXPECT_EQ(-1, HexDigit(c)) << code;
        }
    }
}
