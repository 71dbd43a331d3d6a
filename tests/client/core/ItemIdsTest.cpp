#include "client/core/ItemIds.h"

#include "client/core/Unicode.h"

#include <gmock/gmock.h>

#include <algorithm>

using namespace pim;

using testing::ElementsAre;
using testing::IsEmpty;

namespace
{
const std::vector<std::wstring> kIds = {
    L"{0B7F4A10-AAAA}", L"{0B80FFFF-BBBB}", L"meeting-7", L"meeting", L"meeting-7"};
}

TEST(ItemIdsTest, PrefersTheEqualId)
{
    EXPECT_THAT(MatchItemIds(kIds, L"meeting"), ElementsAre(L"meeting"));
}

TEST(ItemIdsTest, TakesTheBeginningWithOrWithoutTheBraceInAnyCase)
{
    EXPECT_THAT(MatchItemIds(kIds, L"{0B7F"), ElementsAre(L"{0B7F4A10-AAAA}"));
    EXPECT_THAT(MatchItemIds(kIds, L"0b8"), ElementsAre(L"{0B80FFFF-BBBB}"));
}

TEST(ItemIdsTest, GivesAllThatATextCanMean)
{
    EXPECT_THAT(MatchItemIds(kIds, L"0B"), ElementsAre(L"{0B7F4A10-AAAA}", L"{0B80FFFF-BBBB}"));
}

TEST(ItemIdsTest, CountsTwoItemsOfOneIdAsOne)
{
    EXPECT_THAT(MatchItemIds(kIds, L"meeting-"), ElementsAre(L"meeting-7"));
}

// IDs of one store begin alike. A comparison of every match with every other would take an hour and
// more here, so that the program would not end in the time that CTest gives it.
TEST(ItemIdsTest, FindsManyMatchesInOneWalk)
{
    const std::wstring shared(64, L'0');
    std::vector<std::wstring> ids;
    for (int i = 0; i < 500'000; ++i)
        ids.push_back(shared + std::to_wstring(500'000 + i));
    EXPECT_TRUE(MatchItemIds(ids, L"00") == ids);
}

TEST(ItemIdsTest, TellsTheFirstTenOfManyMatches)
{
    std::vector<std::wstring> ids = {L"a\nb"};
    EXPECT_EQ(MatchLines(ids), L"\n  " + OneLine(ids.front()));
    for (const wchar_t* id : {L"2", L"3", L"4", L"5", L"6", L"7", L"8", L"9", L"10"})
        ids.push_back(id);
    const std::wstring ten = MatchLines(ids);
    EXPECT_EQ(std::count(ten.begin(), ten.end(), L'\n'), 10);
    EXPECT_TRUE(ten.ends_with(L"\n  10"));
    ids.push_back(L"11");
    ids.push_back(L"12");
    EXPECT_EQ(MatchLines(ids), ten + L"\n  and 2 more");
}

TEST(ItemIdsTest, FindsNothingForStrangersAndForNoText)
{
    EXPECT_THAT(MatchItemIds(kIds, L"eeting"), IsEmpty());
    EXPECT_THAT(MatchItemIds(kIds, L"meeting-77"), IsEmpty());
    EXPECT_THAT(MatchItemIds(kIds, L""), IsEmpty());
}

TEST(ItemIdsTest, ShortensIdsAsFarAsTheyStayDistinct)
{
    const std::vector<std::wstring> ids = {
        L"{0B7F4A10}", L"{0b7FFFFF}", L"{99999999}", L"abcd", L"ab", L"{99999999}"};
    EXPECT_THAT(ShortItemIds(ids, 3),
                ElementsAre(L"{0B7F4", L"{0b7FF", L"{99", L"abc", L"ab", L"{99"));
    EXPECT_THAT(
        ShortItemIds(ids, 100),
        ElementsAre(L"{0B7F4A10}", L"{0b7FFFFF}", L"{99999999}", L"abcd", L"ab", L"{99999999}"));
    EXPECT_THAT(ShortItemIds({}, 3), IsEmpty());
}

TEST(ItemIdsTest, UnderstandsEveryShortId)
{
    const std::vector<std::wstring> ids = {
        L"{0B7F4A10}", L"{0B7FFFFF}", L"{99999999}", L"abcd", L"ab", L"ABX"};
    const std::vector<std::wstring> shortIds = ShortItemIds(ids, 2);
    for (std::size_t i = 0; i < ids.size(); ++i)
        EXPECT_THAT(MatchItemIds(ids, shortIds[i]), ElementsAre(ids[i]));
}
