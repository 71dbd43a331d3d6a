#include "service/TextConversions.h"

#include <gtest/gtest.h>

namespace
{
const std::wstring kEuro(1, static_cast<wchar_t>(0x20AC));
const std::wstring kSmile = {static_cast<wchar_t>(0xD83D), static_cast<wchar_t>(0xDE00)};
} // namespace

TEST(TextConversionsTest, ConvertsUtf8ToWideText)
{
    std::wstring wide = L"before";
    EXPECT_TRUE(Utf8ToWide("a\xE2\x82\xAC", wide));
    EXPECT_EQ(L"a" + kEuro, wide);
    EXPECT_TRUE(Utf8ToWide("", wide));
    EXPECT_EQ(L"", wide);
}

TEST(TextConversionsTest, ConvertsWideTextToUtf8)
{
    std::string utf8 = "before";
    EXPECT_TRUE(WideToUtf8((L"a" + kSmile).c_str(), utf8));
    EXPECT_EQ("a\xF0\x9F\x98\x80", utf8);
    EXPECT_TRUE(WideToUtf8(L"", utf8));
    EXPECT_EQ("", utf8);
}

TEST(TextConversionsTest, LeavesTheOutputForANullText)
{
    std::wstring wide = L"kept";
    EXPECT_FALSE(Utf8ToWide(nullptr, wide));
    EXPECT_EQ(L"kept", wide);
    std::string utf8 = "kept";
    EXPECT_FALSE(WideToUtf8(nullptr, utf8));
    EXPECT_EQ("kept", utf8);
}

TEST(TextConversionsTest, ConvertsTextOfKnownLength)
{
    EXPECT_EQ(L"ab", WideFromUtf8(std::string_view("abc", 2)));
    EXPECT_EQ("ab", Utf8FromWide(std::wstring_view(L"abc", 2)));
    EXPECT_EQ(L"", WideFromUtf8({}));
    EXPECT_EQ("", Utf8FromWide({}));
}

TEST(TextConversionsTest, CutsShortTextsAtTheirFirstNul)
{
    EXPECT_EQ(L"ab", Utf8ToWideShort(std::string("ab\0cd", 5)));
    EXPECT_EQ("ab", WideToUtf8Short(std::wstring(L"ab\0cd", 5)));
    EXPECT_EQ(L"", Utf8ToWideShort(std::string("\0cd", 3)));
    // What stands behind the NUL does not count for the length.
    EXPECT_EQ(L"ab", Utf8ToWideShort("ab" + std::string(1, '\0') + std::string(500, 'x')));
}

TEST(TextConversionsTest, GivesNothingForAShortTextThatDoesNotFit)
{
    EXPECT_EQ(std::wstring(259, L'x'), Utf8ToWideShort(std::string(259, 'x')));
    EXPECT_EQ(L"", Utf8ToWideShort(std::string(260, 'x')));
    EXPECT_EQ(std::string(259, 'x'), WideToUtf8Short(std::wstring(259, L'x')));
    EXPECT_EQ("", WideToUtf8Short(std::wstring(260, L'x')));
}

TEST(TextConversionsTest, CountsShortTextsInTheUnitsOfTheOutput)
{
    // 129 pairs are 258 units, 130 are 260; 86 three-byte characters are 258 bytes, 87 are 261.
    std::string smiles;
    for (int count = 0; count < 129; ++count)
        smiles += "\xF0\x9F\x98\x80";
    EXPECT_EQ(258u, Utf8ToWideShort(smiles).size());
    EXPECT_EQ(L"", Utf8ToWideShort(smiles + "\xF0\x9F\x98\x80"));
    std::wstring euros(86, kEuro[0]);
    EXPECT_EQ(258u, WideToUtf8Short(euros).size());
    EXPECT_EQ("", WideToUtf8Short(euros + kEuro));
}

TEST(TextConversionsTest, TrimsStringsToTheirFirstNul)
{
    std::string narrow("ab\0cd", 5);
    TrimToCString(narrow);
    EXPECT_EQ("ab", narrow);
    TrimToCString(narrow);
    EXPECT_EQ("ab", narrow);
    std::wstring wide(L"\0cd", 3);
    TrimToCString(wide);
    EXPECT_TRUE(wide.empty());
    TrimToCString(wide);
    EXPECT_TRUE(wide.empty());
}
