#include "icalendar/TextPieces.h"

#include "service/StringHelpers.h"

#include <gtest/gtest.h>

#include <vector>

namespace
{

std::vector<std::wstring> PiecesOf(std::wstring_view text)
{
    std::vector<std::wstring> pieces;
    TextPieces walk(text, L';');
    for (std::wstring_view piece; walk.Next(piece);)
        pieces.emplace_back(piece);
    return pieces;
}

TEST(TextPiecesTest, TrimsBlanksAndDropsEmptyParts)
{
    const std::vector<std::wstring> expected = {L"a", L"b c", L"\td"};
    EXPECT_EQ(PiecesOf(L"; a;; b c ;  ;\td;"), expected);
    EXPECT_TRUE(PiecesOf(L"").empty());
    EXPECT_TRUE(PiecesOf(L" ; ;").empty());
}

TEST(TextPiecesTest, AgreesWithSplitStrings)
{
    for (const wchar_t* text : {L"", L" ", L";", L"a", L" a ", L"a;b", L"a; b ;;c;", L"; ;x y;"})
        EXPECT_EQ(PiecesOf(text), SplitStrings(text, L";")) << text;
}

} // namespace
