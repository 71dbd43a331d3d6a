#include "client/core/Unicode.h"

#include <gtest/gtest.h>

using namespace pim;

namespace
{
// One code unit per element on every host.
const std::wstring kParty = {wchar_t(0xD83C), wchar_t(0xDF89)}; // U+1F389, a party popper
const std::wstring kHalf(1, wchar_t(0xD83C));
const std::wstring kTokyo = {wchar_t(0x6771), wchar_t(0x4EAC)};
const std::wstring kReplacement(1, wchar_t(0xFFFD));
} // namespace

TEST(UnicodeTest, WritesUtf8OfEveryLength)
{
    EXPECT_EQ(Utf8FromWide(L"a"), "a");
    EXPECT_EQ(Utf8FromWide(std::wstring(1, wchar_t(0xFC))), "\xC3\xBC");
    EXPECT_EQ(Utf8FromWide(kTokyo), "\xE6\x9D\xB1\xE4\xBA\xAC");
    EXPECT_EQ(Utf8FromWide(kParty), "\xF0\x9F\x8E\x89");
}

TEST(UnicodeTest, ReplacesHalfASurrogatePair)
{
    EXPECT_EQ(Utf8FromWide(kHalf), "\xEF\xBF\xBD");
    EXPECT_EQ(Utf8FromWide(kHalf + L"a"),
              "\xEF\xBF\xBD"
              "a");
    EXPECT_EQ(Utf8FromWide(std::wstring(1, wchar_t(0xDF89))), "\xEF\xBF\xBD");
}

TEST(UnicodeTest, ReadsUtf8OfEveryLength)
{
    EXPECT_EQ(WideFromUtf8("a\xC3\xBC\xE6\x9D\xB1\xE4\xBA\xAC\xF0\x9F\x8E\x89"),
              L"a" + std::wstring(1, wchar_t(0xFC)) + kTokyo + kParty);
}

TEST(UnicodeTest, ReplacesEachByteThatFitsNowhere)
{
    EXPECT_EQ(WideFromUtf8("\x80"), kReplacement);
    EXPECT_EQ(WideFromUtf8("\xC3"), kReplacement);
    EXPECT_EQ(WideFromUtf8("\xC0\x80"), kReplacement + kReplacement);
    EXPECT_EQ(WideFromUtf8("\xED\xA0\x80"), kReplacement + kReplacement + kReplacement);
    EXPECT_EQ(WideFromUtf8("\xF5\x80\x80\x80").size(), 4u);
    EXPECT_EQ(WideFromUtf8("\xFFx"), kReplacement + L"x");
}

TEST(UnicodeTest, PutsTextOnOneLineAndDisarmsControls)
{
    EXPECT_EQ(OneLine(L"a\r\nb\nc\td"), L"a b c d");
    EXPECT_EQ(OneLine(L"\x1B[2J"), kReplacement + L"[2J");
    EXPECT_EQ(OneLine(std::wstring(1, wchar_t(0x202E))), kReplacement);
    EXPECT_EQ(OneLine(std::wstring(1, wchar_t(0x9B))), kReplacement);
    EXPECT_EQ(OneLine(kTokyo + kParty), kTokyo + kParty);
}

TEST(UnicodeTest, KeepsTheLinesOfLongText)
{
    EXPECT_EQ(ManyLines(L"a\r\nb\rc\n\n\td\x07"), L"a\nb\nc\n\n\td" + kReplacement);
}

TEST(UnicodeTest, CountsColumns)
{
    EXPECT_EQ(DisplayWidth(L""), 0);
    EXPECT_EQ(DisplayWidth(L"abc"), 3);
    EXPECT_EQ(DisplayWidth(kTokyo), 4);
    EXPECT_EQ(DisplayWidth(kParty), 2);
    // e with a combining acute accent; a Korean syllable; a full-width A.
    EXPECT_EQ(DisplayWidth(std::wstring{L'e', wchar_t(0x0301)}), 1);
    EXPECT_EQ(DisplayWidth(std::wstring(1, wchar_t(0xD55C))), 2);
    EXPECT_EQ(DisplayWidth(std::wstring(1, wchar_t(0xFF21))), 2);
    EXPECT_EQ(DisplayWidth(std::wstring(1, wchar_t(0xFC))), 1);
}

TEST(UnicodeTest, CutsToColumnsWithoutCuttingACharacter)
{
    const std::wstring ellipsis(1, wchar_t(0x2026));
    EXPECT_EQ(CutToWidth(L"abcd", 4), L"abcd");
    EXPECT_EQ(CutToWidth(L"abcde", 4), L"abc" + ellipsis);
    EXPECT_EQ(CutToWidth(kTokyo + kTokyo, 6), kTokyo + ellipsis);
    EXPECT_EQ(CutToWidth(kTokyo + kTokyo, 7), kTokyo + kTokyo.substr(0, 1) + ellipsis);
    EXPECT_EQ(CutToWidth(L"ab" + kParty, 3), L"ab" + ellipsis);
    EXPECT_EQ(CutToWidth(L"abc", 1), ellipsis);
    EXPECT_EQ(CutToWidth(L"abc", 0), L"");
}
