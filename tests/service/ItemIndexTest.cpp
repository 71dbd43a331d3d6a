#include "service/ItemIndex.h"

#include <gtest/gtest.h>

#include <string>

namespace
{
constexpr auto kAll = [](std::size_t) { return true; };
} // namespace

TEST(ItemIndexTest, FindsTheFirstOfAnIdFromTheStartOn)
{
    ItemIndex index;
    for (const wchar_t* id : {L"a", L"b", L"a", L"", L"b"})
        index.Append(id);
    EXPECT_EQ(0u, index.Find(L"a", 0, kAll));
    EXPECT_EQ(2u, index.Find(L"a", 1, kAll));
    EXPECT_EQ(ItemIndex::kNotFound, index.Find(L"a", 3, kAll));
    EXPECT_EQ(1u, index.Find(L"b", 0, kAll));
    EXPECT_EQ(4u, index.Find(L"b", 4, kAll));
    EXPECT_EQ(3u, index.Find(L"", 0, kAll));
    EXPECT_EQ(ItemIndex::kNotFound, index.Find(L"c", 0, kAll));
}

TEST(ItemIndexTest, FindsNothingInAnEmptyIndex)
{
    ItemIndex index;
    EXPECT_EQ(ItemIndex::kNotFound, index.Find(L"a", 0, kAll));
    index.Append(L"a");
    index.Clear();
    EXPECT_EQ(ItemIndex::kNotFound, index.Find(L"a", 0, kAll));
}

TEST(ItemIndexTest, AsksTheCallerAboutEachCandidateInOrder)
{
    ItemIndex index;
    for (int i = 0; i < 4; ++i)
        index.Append(L"a");
    std::string asked;
    EXPECT_EQ(2u, index.Find(L"a", 0, [&](std::size_t position) {
        asked += std::to_string(position);
        return position == 2;
    }));
    EXPECT_EQ("012", asked);
}

TEST(ItemIndexTest, TakesChangesInTheirPlace)
{
    ItemIndex index;
    for (const wchar_t* id : {L"a", L"b", L"c", L"b"})
        index.Append(id);
    index.Change(2, L"b");
    index.Change(0, L"x");
    EXPECT_EQ(1u, index.Find(L"b", 0, kAll));
    EXPECT_EQ(2u, index.Find(L"b", 2, kAll));
    EXPECT_EQ(3u, index.Find(L"b", 3, kAll));
    EXPECT_EQ(0u, index.Find(L"x", 0, kAll));
    // The former ID stays a candidate, for the caller to refuse.
    EXPECT_EQ(ItemIndex::kNotFound,
              index.Find(L"a", 0, [](std::size_t position) { return position != 0; }));
}

TEST(ItemIndexTest, LooksAtOneEntryHoweverManyShareTheId)
{
    ItemIndex index;
    constexpr std::size_t kCount = 200000;
    for (std::size_t i = 0; i < kCount; ++i)
        index.Append(L"same");
    std::size_t asked = 0;
    for (std::size_t start = 0; start < kCount; ++start)
    {
        ASSERT_EQ(start, index.Find(L"same", start, [&](std::size_t) {
            ++asked;
            return true;
        }));
    }
    EXPECT_EQ(kCount, asked);
}
