#include "client/core/ItemIds.h"

#include <gmock/gmock.h>

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
