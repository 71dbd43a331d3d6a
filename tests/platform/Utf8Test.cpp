// The same expected table runs against the system's calls (on Windows) and the stand-ins.
#include "platform/Utf8.h"

#include <gtest/gtest.h>

#include <initializer_list>

namespace
{
// Code units given as numbers, so that the table reads the same on hosts with a wider wchar_t.
std::wstring Units(std::initializer_list<int> units)
{
    std::wstring text;
    for (const int unit : units)
        text += static_cast<wchar_t>(unit);
    return text;
}

struct Case
{
    std::string utf8;
    std::wstring wide;
};

// The first and last character of each length, by the definition of UTF-8 (RFC 3629) and UTF-16.
const Case kValid[] = {
    {"", Units({})},
    {"A", Units({'A'})},
    {"\x7F", Units({0x7F})},
    {"\xC2\x80", Units({0x80})},
    {"\xC3\xA9", Units({0xE9})},
    {"\xDF\xBF", Units({0x7FF})},
    {"\xE0\xA0\x80", Units({0x800})},
    {"\xE2\x82\xAC", Units({0x20AC})},
    {"\xED\x9F\xBF", Units({0xD7FF})},
    {"\xEE\x80\x80", Units({0xE000})},
    {"\xEF\xBB\xBF", Units({0xFEFF})}, // a byte-order mark is a character like any other
    {"\xEF\xBF\xBF", Units({0xFFFF})},
    {"\xF0\x90\x80\x80", Units({0xD800, 0xDC00})},
    {"\xF0\x9F\x98\x80", Units({0xD83D, 0xDE00})},
    {"\xF4\x8F\xBF\xBF", Units({0xDBFF, 0xDFFF})},
    {std::string("a\0b", 3), Units({'a', 0, 'b'})},
};
} // namespace

TEST(Utf8Test, ConvertsValidTextBothWays)
{
    for (const Case& row : kValid)
    {
        EXPECT_EQ(row.wide, DecodeUtf8(row.utf8));
        EXPECT_EQ(row.utf8, EncodeUtf8(row.wide));
    }
}

TEST(Utf8Test, ReplacesWhatIsNoUtf8)
{
    const Case cases[] = {
        // Cut short: one replacement for the longest beginning.
        {"\xC3", Units({0xFFFD})},
        {"\xE2\x82", Units({0xFFFD})},
        {"\xE2\x82\x41", Units({0xFFFD, 'A'})},
        {"\xF0\x9F\x98", Units({0xFFFD})},
        {"\xF0\x9F\x98\x41", Units({0xFFFD, 'A'})},
        {"\xF1\x80\x80", Units({0xFFFD})},
        // A new lead begins a new character.
        {"\xC3\xC3\xA9", Units({0xFFFD, 0xE9})},
        {"\xE2\xE2\x82\xAC", Units({0xFFFD, 0x20AC})},
        {"\xF0\x9F\xE2\x82\xAC", Units({0xFFFD, 0x20AC})},
        {"\xE1\x80\xF0\x9F\x98\x80", Units({0xFFFD, 0xD83D, 0xDE00})},
        // Bytes that lead nothing.
        {"\x80", Units({0xFFFD})},
        {"\xBF\xBF", Units({0xFFFD, 0xFFFD})},
        {"\xFF", Units({0xFFFD})},
        {"\xC0\x80", Units({0xFFFD, 0xFFFD})},
        {"\xC1\xBF", Units({0xFFFD, 0xFFFD})},
        {"\xF5\x80\x80\x80", Units({0xFFFD, 0xFFFD, 0xFFFD, 0xFFFD})},
        {"\xF8\x88\x80\x80\x80", Units({0xFFFD, 0xFFFD, 0xFFFD, 0xFFFD, 0xFFFD})},
        // Surrogates, longer forms than needed, beyond U+10FFFF: lead and second byte are one.
        {"\xED\xA0\x80", Units({0xFFFD, 0xFFFD})},
        {"\xED\xA0", Units({0xFFFD})},
        {"\xE0\x80\x80", Units({0xFFFD, 0xFFFD})},
        {"\xE0\x9F\xBF", Units({0xFFFD, 0xFFFD})},
        {"\xF0\x80\x80\x80", Units({0xFFFD, 0xFFFD, 0xFFFD})},
        {"\xF0\x8F\xBF\xBF", Units({0xFFFD, 0xFFFD, 0xFFFD})},
        {"\xF4\x90\x80\x80", Units({0xFFFD, 0xFFFD, 0xFFFD})},
    };
    for (const Case& row : cases)
        EXPECT_EQ(row.wide, DecodeUtf8(row.utf8));
}

TEST(Utf8Test, ReplacesUnpairedSurrogates)
{
    const std::string replacement = "\xEF\xBF\xBD";
    EXPECT_EQ(replacement, EncodeUtf8(Units({0xD83D})));
    EXPECT_EQ(replacement, EncodeUtf8(Units({0xDE00})));
    EXPECT_EQ(replacement + "a", EncodeUtf8(Units({0xD83D, 'a'})));
    EXPECT_EQ(replacement + replacement, EncodeUtf8(Units({0xDC00, 0xD800})));
    EXPECT_EQ(replacement + "\xF0\x9F\x98\x80", EncodeUtf8(Units({0xD83D, 0xD83D, 0xDE00})));
}

TEST(Utf8Test, ConvertsEveryCharacterBothWays)
{
    for (int character = 1; character <= 0x10FFFF; character += character < 0x11000 ? 1 : 97)
    {
        if (character >= 0xD800 && character <= 0xDFFF)
            continue;
        std::wstring wide;
        if (character < 0x10000)
            wide = Units({character});
        else
            wide = Units(
                {0xD800 + ((character - 0x10000) >> 10), 0xDC00 + ((character - 0x10000) & 0x3FF)});
        const std::string utf8 = EncodeUtf8(wide);
        const std::size_t length = character < 0x80      ? 1u
                                   : character < 0x800   ? 2u
                                   : character < 0x10000 ? 3u
                                                         : 4u;
        ASSERT_EQ(length, utf8.size()) << character;
        ASSERT_EQ(wide, DecodeUtf8(utf8)) << character;
    }
}
