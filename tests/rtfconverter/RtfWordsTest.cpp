#include "rtfconverter/RtfWords.h"

#include <gtest/gtest.h>

TEST(RtfWordsTest, FindsAWordByItsExactLetters)
{
    ASSERT_NE(nullptr, FindRtfWord("par"));
    EXPECT_EQ(RtfAction::Emit, FindRtfWord("par")->action);
    EXPECT_STREQ(L"\r\n", FindRtfWord("par")->text);
    EXPECT_EQ(nullptr, FindRtfWord("PAR"));
    EXPECT_EQ(nullptr, FindRtfWord("pa"));
    EXPECT_EQ(nullptr, FindRtfWord("pard"));
    EXPECT_EQ(nullptr, FindRtfWord(""));
    EXPECT_EQ(nullptr, FindRtfWord("zzzz"));
}

TEST(RtfWordsTest, KnowsTheCodePagesOfCharacterSets)
{
    EXPECT_EQ(1252u, CodePageOfCharset(0));
    EXPECT_EQ(932u, CodePageOfCharset(128));
    EXPECT_EQ(1251u, CodePageOfCharset(204));
    EXPECT_EQ(0u, CodePageOfCharset(1)); // the default set
    EXPECT_EQ(0u, CodePageOfCharset(-1));
    EXPECT_EQ(0u, CodePageOfCharset(1000));
}

TEST(RtfWordsTest, KnowsWhichBytesNeedASecondOne)
{
    EXPECT_TRUE(IsLeadByte(932, '\x81'));
    EXPECT_TRUE(IsLeadByte(932, '\xE0'));
    EXPECT_FALSE(IsLeadByte(932, '\xA0')); // half-width katakana
    EXPECT_FALSE(IsLeadByte(932, '\xDF'));
    EXPECT_FALSE(IsLeadByte(932, 'a'));
    EXPECT_TRUE(IsLeadByte(936, '\xA0'));
    EXPECT_FALSE(IsLeadByte(936, '\x80'));
    EXPECT_FALSE(IsLeadByte(1252, '\x81'));
    EXPECT_FALSE(HasLongCharacters(932));
    EXPECT_TRUE(HasLongCharacters(65001));
}
