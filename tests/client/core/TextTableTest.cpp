#include "client/core/TextTable.h"

#include <gtest/gtest.h>

using namespace pim;

TEST(TextTableTest, AlignsColumnsUnderTheirTitles)
{
    TextTable table({{L"A"}, {L"LONG"}, {L"Z"}});
    table.AddRow({L"first", L"x", L"1"});
    table.AddRow({L"b", L"yy", L"22"});
    EXPECT_EQ(table.Format(),
              L"A      LONG  Z\n"
              L"first  x     1\n"
              L"b      yy    22\n");
}

TEST(TextTableTest, CountsWideCharactersAsTwoColumns)
{
    const std::wstring tokyo = {wchar_t(0x6771), wchar_t(0x4EAC)};
    TextTable table({{L""}, {L""}});
    table.AddRow({tokyo, L"1"});
    table.AddRow({L"abcd", L"2"});
    table.AddRow({L"ab", L"3"});
    EXPECT_EQ(table.Format(), tokyo + L"  1\nabcd  2\nab    3\n");
}

TEST(TextTableTest, LeavesNoBlanksAtTheEndsOfLines)
{
    TextTable table({{L""}, {L""}, {L""}});
    table.AddRow({L"a", L"b", L""});
    table.AddRow({L"a", L"", L"c"});
    table.AddRow({L"", L"", L""});
    EXPECT_EQ(table.Format(), L"a  b\na     c\n\n");
}

TEST(TextTableTest, CutsCellsAndPutsThemOnOneLine)
{
    TextTable table({{L"", 4}, {L""}});
    table.AddRow({L"abcdefg", L"x\ny"});
    EXPECT_EQ(table.Format(), std::wstring(L"abc") + wchar_t(0x2026) + L"  x y\n");
}

TEST(TextTableTest, TakesMissingCellsForEmptyOnes)
{
    TextTable table({{L"A"}, {L"B"}});
    table.AddRow({L"1"});
    table.AddRow({});
    EXPECT_EQ(table.Format(), L"A  B\n1\n\n");
}
