#include "icalendar/LineText.h"

#include <gtest/gtest.h>

namespace
{

struct Split
{
    bool divided = false;
    std::wstring name = L"untouched";
    std::wstring value = L"untouched";
};

Split SplitOf(std::wstring_view line)
{
    std::wstring_view name = L"untouched";
    std::wstring_view value = L"untouched";
    Split split;
    split.divided = SplitLine(line, name, value);
    split.name = name;
    split.value = value;
    return split;
}

TEST(LineTextTest, DividesAtTheFirstColonOutsideQuotes)
{
    const Split plain = SplitOf(L"SUMMARY:a:b");
    EXPECT_TRUE(plain.divided);
    EXPECT_EQ(plain.name, L"SUMMARY");
    EXPECT_EQ(plain.value, L"a:b");

    const Split quoted = SplitOf(L"DTSTART;TZID=\"GMT+1:00\":20060508T100000");
    EXPECT_TRUE(quoted.divided);
    EXPECT_EQ(quoted.name, L"DTSTART;TZID=\"GMT+1:00\"");
    EXPECT_EQ(quoted.value, L"20060508T100000");
}

TEST(LineTextTest, ManyQuotesCostNoMoreThanTheirLength)
{
    const std::wstring name(2'000'000, L'"');
    const Split split = SplitOf(name + L":v");
    EXPECT_TRUE(split.divided);
    EXPECT_EQ(split.name, name);
    EXPECT_EQ(split.value, L"v");

    // Pairs around colons: none of those counts.
    std::wstring pairs;
    for (int i = 0; i < 500'000; ++i)
        pairs += L"\":\"";
    EXPECT_EQ(SplitOf(pairs + L":v").name, pairs);
    EXPECT_FALSE(SplitOf(pairs + L"\":v").divided);
}

TEST(LineTextTest, NeitherTrimsNorUnescapes)
{
    const Split split = SplitOf(L" UID : a\\, b\\n\\; ");
    EXPECT_EQ(split.name, L" UID ");
    EXPECT_EQ(split.value, L" a\\, b\\n\\; ");
}

TEST(LineTextTest, AllowsAnEmptyNameAndAnEmptyValue)
{
    const Split noValue = SplitOf(L"UID:");
    EXPECT_TRUE(noValue.divided);
    EXPECT_EQ(noValue.name, L"UID");
    EXPECT_EQ(noValue.value, L"");

    const Split colonAlone = SplitOf(L":");
    EXPECT_TRUE(colonAlone.divided);
    EXPECT_EQ(colonAlone.name, L"");
    EXPECT_EQ(colonAlone.value, L"");
}

TEST(LineTextTest, TakesOneLineFeedAtTheEndAway)
{
    EXPECT_EQ(SplitOf(L"UID:1\n").value, L"1");
    EXPECT_EQ(SplitOf(L"UID:1\n\n").value, L"1\n");
    EXPECT_FALSE(SplitOf(L"\n").divided);
}

TEST(LineTextTest, RefusesALineWithoutAColonOutsideQuotesAndLeavesThePartsAlone)
{
    for (const wchar_t* line : {L"", L"BEGIN", L"DTSTART;TZID=\"a:20060508", L"\":\""})
    {
        const Split split = SplitOf(line);
        EXPECT_FALSE(split.divided) << line;
        EXPECT_EQ(split.name, L"untouched");
        EXPECT_EQ(split.value, L"untouched");
    }
}

TEST(LineTextTest, WritesAShortLineAsItIs)
{
    EXPECT_EQ(FormatLine(L"SUMMARY", L"a;b,c\\n\"d\""), L"SUMMARY:a;b,c\\n\"d\"\r\n");
    EXPECT_EQ(FormatLine(L"", L""), L":\r\n");
}

TEST(LineTextTest, FoldsAtSeventySixCharactersAndNotAtSeventyFive)
{
    // "UID:" is 4 characters.
    EXPECT_EQ(FormatLine(L"UID", std::wstring(71, L'x')),
              L"UID:" + std::wstring(71, L'x') + L"\r\n");
    EXPECT_EQ(FormatLine(L"UID", std::wstring(71, L'x') + L"y"),
              L"UID:" + std::wstring(71, L'x') + L"\r\n y\r\n");
}

TEST(LineTextTest, FoldsOnceHoweverLongTheRest)
{
    EXPECT_EQ(FormatLine(L"UID", std::wstring(71, L'x') + std::wstring(5000, L'y')),
              L"UID:" + std::wstring(71, L'x') + L"\r\n " + std::wstring(5000, L'y') + L"\r\n");
}

TEST(LineTextTest, FoldsInsideALongNameToo)
{
    EXPECT_EQ(FormatLine(std::wstring(80, L'n'), L"v"),
              std::wstring(75, L'n') + L"\r\n " + std::wstring(5, L'n') + L":v\r\n");
}

TEST(LineTextTest, CountsUtf16UnitsAndMayCutASurrogatePair)
{
    // U+1F600 is D83D DE00: with 4 + 70 units before it the pair spans units 75 and 76.
    std::wstring value(70, L'x');
    value += wchar_t(0xD83D);
    value += wchar_t(0xDE00);
    std::wstring expected = L"UID:" + std::wstring(70, L'x');
    expected += wchar_t(0xD83D);
    expected += L"\r\n ";
    expected += wchar_t(0xDE00);
    expected += L"\r\n";
    EXPECT_EQ(FormatLine(L"UID", value), expected);
}

TEST(LineTextTest, AppendsWithoutCountingWhatWasThere)
{
    std::wstring out(74, L'a');
    AppendLine(out, L"UID", L"1");
    EXPECT_EQ(out, std::wstring(74, L'a') + L"UID:1\r\n");
}

} // namespace
