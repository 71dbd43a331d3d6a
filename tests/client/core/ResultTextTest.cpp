#include "client/core/ResultText.h"

#include <gtest/gtest.h>

TEST(ResultTextTest, WritesAllEightDigits)
{
    EXPECT_EQ(L"0x00000000", pim::ResultText(0));
    EXPECT_EQ(L"0x00040380", pim::ResultText(0x00040380));
    EXPECT_EQ(L"0x80004005", pim::ResultText(-0x7FFFBFFB));
    EXPECT_EQ(L"0x89ABCDEF", pim::ResultText(-0x76543211));
}
