#include "icalendar/LogicalLines.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace std::string_literals;

namespace
{

using Lines = std::vector<std::wstring>;

Lines LinesOf(std::string_view bytes)
{
    Lines lines;
    ForEachLogicalLine(bytes, [&lines](std::wstring_view line, bool) { lines.emplace_back(line); });
    return lines;
}

TEST(LogicalLinesTest, DeliversAnEmptyLineFirst)
{
    EXPECT_EQ(LinesOf("A\r\nB\r\n"), (Lines{L"", L"A", L"B"}));
    EXPECT_EQ(LinesOf(""), (Lines{L""}));
}

TEST(LogicalLinesTest, LosesALastLineWithoutALineFeed)
{
    EXPECT_EQ(LinesOf("A\nB"), (Lines{L"", L"A"}));
    EXPECT_EQ(LinesOf("A"), (Lines{L""}));
}

TEST(LogicalLinesTest, KeepsALastContinuationWithoutALineFeed)
{
    EXPECT_EQ(LinesOf("A\n b"), (Lines{L"", L"Ab"}));
    EXPECT_EQ(LinesOf("A\n b\n"), (Lines{L"", L"Ab"}));
}

TEST(LogicalLinesTest, UnfoldsBehindABlankAndBehindATab)
{
    EXPECT_EQ(LinesOf("A\n b\n\tc\n  d\nE\n"), (Lines{L"", L"Abc d", L"E"}));
    EXPECT_EQ(LinesOf("A\n \nB\n"), (Lines{L"", L"A", L"B"}));
}

TEST(LogicalLinesTest, DeliversAContinuationThatBeginsTheFile)
{
    EXPECT_EQ(LinesOf(" A\nB\n"), (Lines{L"A", L"B"}));
}

TEST(LogicalLinesTest, DeliversALineOnceMoreForEveryEmptyLineBehindIt)
{
    EXPECT_EQ(LinesOf("A\n\nB\n"), (Lines{L"", L"A", L"A", L"B"}));
    EXPECT_EQ(LinesOf("A\r\n\r\n\r\nB\r\n"), (Lines{L"", L"A", L"A", L"A", L"B"}));
    EXPECT_EQ(LinesOf("\n\nA\n"), (Lines{L"", L"", L"", L"A"}));
}

TEST(LogicalLinesTest, DeliversALineThatAnEmptyLineStandsBeforeItsContinuation)
{
    // The empty line has A delivered; the continuation is then added to what A left behind.
    EXPECT_EQ(LinesOf("A\n\n b\nC\n"), (Lines{L"", L"A", L"Ab", L"C"}));
}

TEST(LogicalLinesTest, SkipsEmptyLinesBehindAContinuation)
{
    EXPECT_EQ(LinesOf("A\n b\n\n\n c\nD\n"), (Lines{L"", L"Abc", L"D"}));
    EXPECT_EQ(LinesOf("A\n b\n\n\n"), (Lines{L"", L"Ab"}));
}

TEST(LogicalLinesTest, TakesOnlyACarriageReturnDirectlyBeforeTheLineFeedAway)
{
    EXPECT_EQ(LinesOf("A\rB\r\r\nC\n"), (Lines{L"", L"A\rB\r", L"C"}));
    EXPECT_EQ(LinesOf("A\n\r"), (Lines{L"", L"A"}));
}

TEST(LogicalLinesTest, CutsAPhysicalLineAtItsFirstNul)
{
    EXPECT_EQ(LinesOf("A\0x\n b\0y\nC\n"s), (Lines{L"", L"Ab", L"C"}));
    EXPECT_EQ(LinesOf("A\n\0B\nC\n"s), (Lines{L"", L"A", L"A", L"C"}));
}

TEST(LogicalLinesTest, ConvertsEachPhysicalLineByItself)
{
    EXPECT_EQ(LinesOf("Gr\xC3\xBC\xC3\x9F"
                      "e\n"),
              (Lines{L"", L"Gr\u00FC\u00DFe"}));
    // U+00E9 is C3 A9; a fold between the two loses it.
    EXPECT_EQ(LinesOf("caf\xC3\n \xA9\nB\n"), (Lines{L"", L"caf\uFFFD\uFFFD", L"B"}));
    // U+1F600 becomes two UTF-16 units.
    std::wstring pair;
    pair += wchar_t(0xD83D);
    pair += wchar_t(0xDE00);
    EXPECT_EQ(LinesOf("\xF0\x9F\x98\x80\n"), (Lines{L"", pair}));
}

TEST(LogicalLinesTest, LeavesAByteOrderMarkInItsLine)
{
    EXPECT_EQ(LinesOf("\xEF\xBB\xBF"
                      "A\n"),
              (Lines{L"", L"\uFEFFA"}));
}

TEST(LogicalLinesTest, ReadsALineOfAnyLengthWhole)
{
    for (const std::size_t length : {998u, 999u, 1000u, 1001u, 5'000'000u})
    {
        const Lines lines = LinesOf(std::string(length, 'x') + "\nB\n");
        ASSERT_EQ(lines.size(), 3u);
        EXPECT_EQ(lines[1].size(), length);
        EXPECT_EQ(lines[2], L"B");
    }
}

TEST(LogicalLinesTest, TellsALineThatIsDeliveredOnceMore)
{
    std::vector<bool> repeats;
    ForEachLogicalLine("A\n\n\n b\nC\nC\n", [&repeats](std::wstring_view, bool repeated) {
        repeats.push_back(repeated);
    });
    // "", A, A once more, Ab, C, and C from a line of its own.
    EXPECT_EQ(repeats, (std::vector<bool>{false, false, true, false, false, false}));
}

} // namespace
