#include "outlook/store/EntryIdText.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

using Bytes = std::vector<std::uint8_t>;

TEST(EntryIdTextTest, WritesTwoUpperCaseDigitsPerByteWithTheHighOneFirst)
{
    const Bytes bytes = {0x00, 0x1A, 0xF0, 0x9B, 0xFF};
    EXPECT_EQ(L"001AF09BFF", BytesToHex(bytes));
}

TEST(EntryIdTextTest, WritesNothingForNoBytes)
{
    EXPECT_EQ(L"", BytesToHex({}));
}

TEST(EntryIdTextTest, ReadsDigitsOfBothCases)
{
    EXPECT_EQ((Bytes{0x00, 0x1A, 0xF0, 0x9B, 0xEF}), HexToBytes(L"001AF09bEf"));
}

TEST(EntryIdTextTest, DropsTheLastCharacterOfAnOddText)
{
    EXPECT_EQ((Bytes{0xAB}), HexToBytes(L"ABC"));
    EXPECT_EQ(Bytes{}, HexToBytes(L"A"));
    EXPECT_EQ(Bytes{}, HexToBytes(L""));
}

TEST(EntryIdTextTest, RestoresEveryByte)
{
    Bytes bytes;
    for (int value = 0; value < 256; ++value)
        bytes.push_back(static_cast<std::uint8_t>(value));
    EXPECT_EQ(bytes, HexToBytes(BytesToHex(bytes)));
}

// Worked out by hand: 'g' counts 16 and 'z' 35, so "0g" is 0x00 | 0x10, "g0" is 0x10 << 4 cut to
// 0x00, "1z" is 0x10 | 0x23 and "z1" is 0x23 << 4 cut to 0x30, with 0x01.
TEST(EntryIdTextTest, LetsLettersBeyondFSpillIntoTheOtherDigit)
{
    EXPECT_EQ((Bytes{0x10}), HexToBytes(L"0g"));
    EXPECT_EQ((Bytes{0x00}), HexToBytes(L"g0"));
    EXPECT_EQ((Bytes{0x33}), HexToBytes(L"1z"));
    EXPECT_EQ((Bytes{0x31}), HexToBytes(L"z1"));
}

// Any other character counts its own code: 'G' is 0x47, '-' 0x2D, U+20AC is cut to the byte 0xAC.
TEST(EntryIdTextTest, TakesTheWholeCodeOfAnyOtherCharacter)
{
    EXPECT_EQ((Bytes{0x47}), HexToBytes(L"0G"));
    EXPECT_EQ((Bytes{0x70}), HexToBytes(L"G0"));
    EXPECT_EQ((Bytes{0xFD}), HexToBytes(L"--"));
    EXPECT_EQ((Bytes{0xAC}), HexToBytes(L"0\x20AC"));
    EXPECT_EQ((Bytes{0xC0}),
              HexToBytes(L"\x20AC"
                         L"0"));
}
