// The same expected table runs against the system's conversion (on Windows) and iconv.
#include "platform/CodePages.h"

#include <gtest/gtest.h>

#include <initializer_list>

namespace
{
std::wstring Decode(unsigned codePage, std::string_view bytes)
{
    std::wstring text;
    AppendFromCodePage(codePage, bytes, text);
    return text;
}

struct Case
{
    unsigned codePage;
    const char* bytes;
    const wchar_t* text;
};

// From the published tables of these code pages.
constexpr Case kCases[] = {
    {1250,
     "\xA3\xF3\x64\x9F",
     L"\x0141\x00F3"
     L"d\x017A"},
    {1251, "\xCF\xF0\xE8\xE2\xE5\xF2", L"\x041F\x0440\x0438\x0432\x0435\x0442"},
    {1253, "\xC1\xF9", L"\x0391\x03C9"},
    {1254, "\xDD\xFE\xF0", L"\x0130\x015F\x011F"},
    {1255, "\xF9\xEC\xE5\xED", L"\x05E9\x05DC\x05D5\x05DD"},
    {1256, "\xD3\xE1\xC7\xE3", L"\x0633\x0644\x0627\x0645"},
    {1257, "\xF0\xFB", L"\x0161\x016B"},
    {874, "\xCA\xC7\xD1\xCA\xB4\xD5", L"\x0E2A\x0E27\x0E31\x0E2A\x0E14\x0E35"},
    {437, "\x81\x9B", L"\x00FC\x00A2"},
    {850, "\x9B", L"\x00F8"},
    {10000, "\x8A\xA5", L"\x00E4\x2022"},
    {932, "\x93\xFA\x96\x7B\x8C\xEA\xB1", L"\x65E5\x672C\x8A9E\xFF71"},
    {932, "\x95\x5C\x83\x7D", L"\x8868\x30DE"}, // trail bytes "\" and "}"
    {936, "\xD6\xD0\xCE\xC4", L"\x4E2D\x6587"},
    {949, "\xC7\xD1\xB1\xDB", L"\xD55C\xAE00"},
    {950, "\xA4\xA4\xA4\xE5", L"\x4E2D\x6587"},
    {65001, "\xE2\x82\xAC", L"\x20AC"},
    {4711, "\xE4\x80", L"\x00E4\x20AC"}, // no such code page: as 1252
};
} // namespace

TEST(CodePagesTest, DecodesTheCodePagesOfDocuments)
{
    for (const Case& row : kCases)
        EXPECT_EQ(row.text, Decode(row.codePage, row.bytes)) << row.codePage;
}

TEST(CodePagesTest, DecodesEveryByteOfTheWesternCodePage)
{
    // Bytes 0x80 to 0x9F by the published table; the five unassigned ones stay as they are.
    constexpr int kSpecial[] = {0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
                                0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};
    for (int byte = 0; byte < 256; ++byte)
    {
        const char c = static_cast<char>(byte);
        const int expected = byte >= 0x80 && byte < 0xA0 ? kSpecial[byte - 0x80] : byte;
        const std::wstring text = Decode(1252, {&c, 1});
        ASSERT_EQ(1u, text.size()) << byte;
        EXPECT_EQ(static_cast<wchar_t>(expected), text[0]) << byte;
    }
}

TEST(CodePagesTest, AppendsAndReplacesHalfCharacters)
{
    std::wstring text = L"a";
    AppendFromCodePage(932, "", text);
    EXPECT_EQ(L"a", text);
    AppendFromCodePage(932, "\x93", text);
    EXPECT_EQ(2u, text.size());
    AppendFromCodePage(1252, "b", text);
    EXPECT_EQ(L'b', text.back());
}

TEST(CodePagesTest, NeverGivesMoreUnitsThanBytes)
{
    for (const unsigned codePage : {1252u, 932u, 936u, 949u, 950u, 1255u, 1258u, 1361u, 65001u})
        for (int first = 0; first < 256; ++first)
            for (int second = 0; second < 256; ++second)
            {
                const char bytes[] = {static_cast<char>(first), static_cast<char>(second)};
                const std::size_t units = Decode(codePage, {bytes, 2}).size();
                ASSERT_LE(units, 2u) << codePage << ' ' << first << ' ' << second;
                ASSERT_GE(units, 1u) << codePage << ' ' << first << ' ' << second;
            }
}

TEST(CodePagesTest, WritesTextsInTheCodePagesOfDocuments)
{
    // From the published tables again; what a code page lacks is "?" per unit.
    struct Encoded
    {
        unsigned codePage;
        std::wstring text;
        std::string bytes;
    };
    const std::wstring face = {static_cast<wchar_t>(0xD83D), static_cast<wchar_t>(0xDE00)};
    const std::wstring half = {static_cast<wchar_t>(0xD83D)};
    const Encoded cases[] = {
        {1252, L"Zo\x00EB\x2019s \x20AC", "Zo\xEB\x92s \x80"},
        {1252, L"\x65E5\x672C", "??"},
        {1252, L"a" + face + L"b", "a??b"},
        {1252, L"\x0081\x009D", "\x81\x9D"}, // unassigned bytes, as they are read
        {1251, L"\x041F\x0440", "\xCF\xF0"},
        {932, L"\x65E5\x672C~", "\x93\xFA\x96\x7B~"},
        {936, L"\x4E2D", "\xD6\xD0"},
        {949, L"\xD55C", "\xC7\xD1"},
        {950, L"\x4E2D", "\xA4\xA4"},
        {65001, face + L"\x20AC", "\xF0\x9F\x98\x80\xE2\x82\xAC"},
        {65001, half + L"x", "\xEF\xBF\xBDx"},
        {4711, L"\x00E4", "\xE4"}, // no such code page: as 1252
        {1252, L"", ""},
    };
    for (const Encoded& row : cases)
    {
        std::string bytes = "<";
        AppendToCodePage(row.codePage, row.text, bytes);
        EXPECT_EQ("<" + row.bytes, bytes) << row.codePage;
    }
}

TEST(CodePagesTest, WritesBackEveryCharacterThatItReads)
{
    // Code pages of one byte a character whose bytes all mean something.
    for (const unsigned codePage : {1251u, 1252u, 1256u})
        for (int byte = 1; byte < 256; ++byte)
        {
            const std::string one(1, static_cast<char>(byte));
            const std::wstring text = Decode(codePage, one);
            if (text == L"\xFFFD")
                continue;
            std::string back;
            AppendToCodePage(codePage, text, back);
            EXPECT_EQ(one, back) << codePage << " " << byte;
        }
}
