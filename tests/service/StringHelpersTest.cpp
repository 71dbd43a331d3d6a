#include "service/StringHelpers.h"

#include <gtest/gtest.h>

#include <limits>

using Parts = std::vector<std::wstring>;

TEST(StringHelpersTest, SplitsAtTheFirstDelimiter)
{
    std::wstring head, tail;
    SplitAtFirst(L"a:b:c", head, tail, L":");
    EXPECT_EQ(L"a", head);
    EXPECT_EQ(L"b:c", tail);
}

TEST(StringHelpersTest, SplitsOnePositionBehindTheStartOfALongDelimiter)
{
    std::wstring head, tail;
    SplitAtFirst(L"key::value", head, tail, L"::");
    EXPECT_EQ(L"key", head);
    EXPECT_EQ(L":value", tail);
}

TEST(StringHelpersTest, SplitsAtTheEndsOfTheText)
{
    std::wstring head = L"h", tail = L"t";
    SplitAtFirst(L":b", head, tail, L":");
    EXPECT_EQ(L"", head);
    EXPECT_EQ(L"b", tail);
    SplitAtFirst(L"a:", head, tail, L":");
    EXPECT_EQ(L"a", head);
    EXPECT_EQ(L"", tail);
}

TEST(StringHelpersTest, LeavesBothOutputsWithoutADelimiter)
{
    std::wstring head = L"h", tail = L"t";
    SplitAtFirst(L"abc", head, tail, L":");
    SplitAtFirst(L"", head, tail, L":");
    SplitAtFirst(L"", head, tail, L"");
    EXPECT_EQ(L"h", head);
    EXPECT_EQ(L"t", tail);
}

TEST(StringHelpersTest, SplitsATextThatIsItsOwnOutput)
{
    std::wstring text = L"a=b=c", tail;
    SplitAtFirst(text, text, tail, L"=");
    EXPECT_EQ(L"a", text);
    EXPECT_EQ(L"b=c", tail);
    std::wstring head;
    SplitAtFirst(tail, head, tail, L"=");
    EXPECT_EQ(L"b", head);
    EXPECT_EQ(L"c", tail);
}

TEST(StringHelpersTest, TrimsOneCharacterAtBothEnds)
{
    EXPECT_EQ(L"a\"b", TrimChar(L"\"\"a\"b\"", L'"'));
    EXPECT_EQ(L"abc", TrimChar(L"abc", L'"'));
    EXPECT_EQ(L" a", TrimChar(L"x ax", L'x'));
    EXPECT_EQ(L"", TrimChar(L"", L'x'));
}

TEST(StringHelpersTest, KeepsATextOfNothingButTheTrimmedCharacter)
{
    EXPECT_EQ(L"\"\"", TrimChar(L"\"\"", L'"'));
    EXPECT_EQ(L"x", TrimChar(L"x", L'x'));
}

TEST(StringHelpersTest, ReplacesEveryOccurrence)
{
    EXPECT_EQ(L"1-2-3", ReplaceAll(L"1, 2, 3", L", ", L"-"));
    EXPECT_EQ(L"abc", ReplaceAll(L"abc", L"x", L"y"));
    EXPECT_EQ(L"", ReplaceAll(L"xx", L"x", L""));
    EXPECT_EQ(L"", ReplaceAll(L"", L"x", L"y"));
    EXPECT_EQ(L"ba", ReplaceAll(L"aaa", L"aa", L"b"));
}

TEST(StringHelpersTest, ReplacesWhatAReplacementForms)
{
    // aab becomes ab, which the b that was put in forms with the first a
    EXPECT_EQ(L"b", ReplaceAll(L"aab", L"ab", L"b"));
    // aabb, ab, nothing left
    EXPECT_EQ(L"", ReplaceAll(L"aabb", L"ab", L""));
    // \\; becomes \; and that becomes ;
    EXPECT_EQ(L"a;b", ReplaceAll(L"a\\\\;b", L"\\;", L";"));
    // aab, aba, baa: the rule moves every b to the front
    EXPECT_EQ(L"bbaa", ReplaceAll(L"aabb", L"ab", L"ba"));
    // abab: one run of blanks shrinks to one
    EXPECT_EQ(L"a b", ReplaceAll(L"a     b", L"  ", L" "));
}

TEST(StringHelpersTest, GivesAnEmptyTextForANullArgument)
{
    EXPECT_EQ(L"", ReplaceAll(nullptr, L"a", L"b"));
    EXPECT_EQ(L"", ReplaceAll(L"a", nullptr, L"b"));
    EXPECT_EQ(L"", ReplaceAll(L"a", L"a", nullptr));
}

TEST(StringHelpersTest, ReplacesOnceWhereTheReplacementHoldsTheSearch)
{
    EXPECT_EQ(L"xaxbxax", ReplaceAll(L"aba", L"a", L"xax"));
    EXPECT_EQ(L"aaaa", ReplaceAll(L"aa", L"a", L"aa"));
    EXPECT_EQ(L"aa", ReplaceAll(L"aa", L"a", L"a"));
    // One pass: the b that a replacement puts in joins no match with what stands before it.
    EXPECT_EQ(L"aabb", ReplaceAll(L"aab", L"ab", L"abb"));
}

TEST(StringHelpersTest, LeavesTheTextForAnEmptySearch)
{
    EXPECT_EQ(L"abc", ReplaceAll(L"abc", L"", L"x"));
    EXPECT_EQ(L"abc", ReplaceAll(L"abc", L"", L""));
}

TEST(StringHelpersTest, EndsOnRulesThatNeverSettle)
{
    // ab to bbaa grows for ever from aab on.
    const std::wstring result = ReplaceAll(L"aab", L"ab", L"bbaa");
    EXPECT_LT(result.size(), 100'000u);
    EXPECT_EQ(L'b', result.front());
}

TEST(StringHelpersTest, StaysLinearOnLongTexts)
{
    // A quadratic rescan of these would take minutes.
    const std::wstring halves = std::wstring(500'000, L'a') + std::wstring(500'000, L'b');
    EXPECT_EQ(L"", ReplaceAll(halves.c_str(), L"ab", L""));
    const std::wstring blanks(1'000'000, L' ');
    EXPECT_EQ(L" ", ReplaceAll(blanks.c_str(), L"  ", L" "));
    const std::wstring sorted = ReplaceAll(halves.c_str(), L"ab", L"ba");
    EXPECT_EQ(1'000'000u, sorted.size());
}

TEST(StringHelpersTest, JoinsItemsWithASeparatorOnceTheOutputHoldsText)
{
    std::wstring output;
    JoinStrings(output, {L"a", L"b", L"c"}, L"; ");
    EXPECT_EQ(L"a; b; c", output);
    JoinStrings(output, {L"d"}, L"; ");
    EXPECT_EQ(L"a; b; c; d", output);
    JoinStrings(output, {}, L"; ");
    EXPECT_EQ(L"a; b; c; d", output);
}

TEST(StringHelpersTest, JoinsEmptyItemsAsTheOutputStands)
{
    // Nothing stands before the first two items, so neither gets a separator.
    std::wstring output;
    JoinStrings(output, {L"", L"", L"a", L"", L"b"}, L",");
    EXPECT_EQ(L"a,,b", output);
}

TEST(StringHelpersTest, SplitsIntoTrimmedPartsWithoutEmptyOnes)
{
    EXPECT_EQ((Parts{L"a", L"b"}), SplitStrings(L"a;b", L";"));
    EXPECT_EQ((Parts{L"a", L"b c"}), SplitStrings(L"; a ;;  ; b c;", L";"));
    EXPECT_EQ((Parts{L"TZID", L"x"}), SplitStrings(L" TZID = x ", L"="));
    EXPECT_EQ(Parts{L"abc"}, SplitStrings(L"abc", L";"));
    EXPECT_EQ((Parts{L"a", L":b"}), SplitStrings(L"a:::b", L"::"));
    EXPECT_EQ(Parts{}, SplitStrings(L"", L";"));
    EXPECT_EQ(Parts{}, SplitStrings(L" ; ;", L";"));
    // Only blanks are trimmed.
    EXPECT_EQ(Parts{L"\ta"}, SplitStrings(L"\ta ", L";"));
}

TEST(StringHelpersTest, GivesTheWholeTextForAnEmptySeparator)
{
    EXPECT_EQ(Parts{L"a;b"}, SplitStrings(L" a;b ", L""));
    EXPECT_EQ(Parts{}, SplitStrings(L"", L""));
}

TEST(StringHelpersTest, ReadsTheNumberATextBeginsWith)
{
    EXPECT_EQ(12, ParseInt(L"12"));
    EXPECT_EQ(12, ParseInt(L" \t12x9"));
    EXPECT_EQ(-3, ParseInt(L"-3"));
    EXPECT_EQ(3, ParseInt(L"+3"));
    EXPECT_EQ(7, ParseInt(L"007"));
    EXPECT_EQ(0, ParseInt(L""));
    EXPECT_EQ(0, ParseInt(L"x1"));
    EXPECT_EQ(0, ParseInt(L"- 1"));
    EXPECT_EQ(0, ParseInt(L"-+1"));
    EXPECT_EQ(0, ParseInt(L"0x10"));
}

TEST(StringHelpersTest, StopsAtTheLimitsOfANumber)
{
    EXPECT_EQ(2147483647, ParseInt(L"2147483647"));
    EXPECT_EQ(2147483647, ParseInt(L"2147483648"));
    EXPECT_EQ(std::numeric_limits<int>::min(), ParseInt(L"-2147483648"));
    EXPECT_EQ(std::numeric_limits<int>::min(), ParseInt(L"-2147483649"));
    EXPECT_EQ(2147483647, ParseInt(std::wstring(1000, L'9')));
    EXPECT_EQ(std::numeric_limits<int>::min(), ParseInt(L"-" + std::wstring(1000, L'9')));
}
