#include "outlook/store/EntryList.h"

#include <gmock/gmock.h>

using testing::ElementsAre;

namespace
{
std::vector<std::wstring> RowIDs(EntryList& list)
{
    std::vector<std::wstring> ids;
    for (auto place = list.Begin(); place != list.End(); ++place)
        ids.push_back(place->RowEntryID());
    return ids;
}
} // namespace

TEST(EntryListTest, IsEmptyAtFirst)
{
    EntryList list;
    EXPECT_TRUE(list.Begin() == list.End());
    EXPECT_TRUE(list.FindByRowEntryID(L"") == list.End());
    EXPECT_TRUE(list.FindByClientEntryID(L"") == list.End());
    EXPECT_EQ(L"", list.FolderKeyOf(L""));
}

TEST(EntryListTest, KeepsRowsInTheirOrderAlsoTheEqualOnes)
{
    EntryList list;
    list.Append(L"F", L"B", L"b", 1.0);
    list.Append(L"", L"A", L"a", 2.0);
    const auto third = list.Append(L"", L"B", L"b", 3.0);
    EXPECT_THAT(RowIDs(list), ElementsAre(L"B", L"A", L"B"));
    EXPECT_EQ(L"b", list.Begin()->ClientEntryID());
    EXPECT_EQ(L"F", list.Begin()->FolderKey());
    EXPECT_EQ(1.0, list.Begin()->lastModified);
    EXPECT_EQ(3.0, third->lastModified);
    EXPECT_EQ(L"", third->FolderKey());
    EXPECT_TRUE(std::next(third) == list.End());
}

TEST(EntryListTest, FindsTheFirstEntryOfAnIdInEachRole)
{
    EntryList list;
    const auto first = list.Append(L"", L"ONE", L"TWO", 0.0);
    const auto second = list.Append(L"", L"TWO", L"ONE", 0.0);
    list.Append(L"", L"ONE", L"ONE", 0.0);
    EXPECT_TRUE(list.FindByRowEntryID(L"ONE") == first);
    EXPECT_TRUE(list.FindByRowEntryID(L"TWO") == second);
    EXPECT_TRUE(list.FindByClientEntryID(L"TWO") == first);
    EXPECT_TRUE(list.FindByClientEntryID(L"ONE") == second);
    EXPECT_TRUE(list.FindByRowEntryID(L"one") == list.End());
    EXPECT_TRUE(list.FindByRowEntryID(L"ON") == list.End());
}

TEST(EntryListTest, MapsAClientIdToItsFirstFolder)
{
    EntryList list;
    list.Append(L"", L"R1", L"C", 0.0);
    list.Append(L"F1", L"R2", L"C", 0.0);
    list.Append(L"F2", L"R3", L"C", 0.0);
    list.Append(L"F2", L"R4", L"", 0.0);
    EXPECT_EQ(L"F1", list.FolderKeyOf(L"C"));
    EXPECT_EQ(L"F2", list.FolderKeyOf(L"")); // an ID like any other
    EXPECT_EQ(L"", list.FolderKeyOf(L"R2")); // row IDs are not mapped
    EXPECT_EQ(L"", list.FolderKeyOf(L"F1"));
    EXPECT_EQ(L"", list.FolderKeyOf(L"unknown"));
}

// A walk that stands at the end is still there after a further load.
TEST(EntryListTest, PlacesStayValidWhileEntriesAreAdded)
{
    EntryList list;
    const auto end = list.End();
    const auto first = list.Append(L"", L"0", L"0", 0.0);
    for (int i = 1; i < 5000; ++i)
        list.Append(L"F", std::to_wstring(i), std::to_wstring(-i), 0.0);
    EXPECT_TRUE(end == list.End());
    EXPECT_EQ(L"0", first->RowEntryID());
    EXPECT_EQ(L"-4999", list.FindByRowEntryID(L"4999")->ClientEntryID());
    EXPECT_EQ(L"F", list.FolderKeyOf(L"-1"));
}

TEST(EntryListTest, ACopyReplacesWhatWasThere)
{
    EntryList list;
    list.Append(L"F", L"R", L"C", 2.5);
    list.Append(L"", L"S", L"S", 0.0);
    std::list<ItemEntry> copy = {{L"old", L"old", L"old", 9.0}};
    list.CopyTo(copy);
    ASSERT_EQ(2u, copy.size());
    EXPECT_EQ(L"F", copy.front().folderKey);
    EXPECT_EQ(L"R", copy.front().rowEntryID);
    EXPECT_EQ(L"C", copy.front().clientEntryID);
    EXPECT_EQ(2.5, copy.front().lastModified);
    EXPECT_EQ(L"S", copy.back().rowEntryID);
    EXPECT_EQ(0.0, copy.back().lastModified);
}

TEST(EntryListTest, ATextThatIsOneOfItsOwnCanBeAdded)
{
    EntryList list;
    const auto first = list.Append(L"F", L"R", L"R", 0.0);
    const auto second =
        list.Append(first->FolderKey(), first->RowEntryID(), first->RowEntryID(), 0.0);
    EXPECT_EQ(&first->RowEntryID(), &second->RowEntryID()); // kept once
    EXPECT_EQ(&first->RowEntryID(), &first->ClientEntryID());
    EXPECT_EQ(&first->FolderKey(), &second->FolderKey());
}
