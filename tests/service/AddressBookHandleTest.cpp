#include "service/AddressBookHandle.h"

#include "tests/service/RecordingEnumerator.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>

using Microsoft::WRL::ComPtr;

namespace
{
// A handle over recording tables.
class AddressBookHandleTest : public testing::Test
{
  protected:
    CallLog log;
    RecordingEnumerator* items = new RecordingEnumerator(L"items", log);
    RecordingEnumerator* groups = new RecordingEnumerator(L"groups", log);
    std::unique_ptr<CAddressBookHandle> handle = std::make_unique<CAddressBookHandle>(
        std::unique_ptr<IEnumerator>(items), std::unique_ptr<IEnumerator>(groups));
};

// A handle over a contact table alone.
class AddressBookHandleWithoutGroupsTest : public testing::Test
{
  protected:
    CallLog log;
    RecordingEnumerator* items = new RecordingEnumerator(L"items", log);
    CAddressBookHandle handle{std::unique_ptr<IEnumerator>(items), nullptr};
};
} // namespace

TEST_F(AddressBookHandleTest, RefreshReloadsTheContactTableAlone)
{
    handle->Refresh();
    EXPECT_EQ((CallLog{L"items GetItemIDs"}), log);
}

TEST_F(AddressBookHandleTest, ResetAndNextGoStraightToTheContactTable)
{
    handle->ResetItem();
    handle->NextItem();
    EXPECT_EQ((CallLog{L"items ResetItem", L"items GetNextItem"}), log);
}

TEST_F(AddressBookHandleTest, GetItemByIdConvertsTheIdFirst)
{
    handle->GetItemByID(L"AB");
    EXPECT_EQ((CallLog{L"items ToInternalID AB", L"items GetItemByID table:AB"}), log);
}

TEST_F(AddressBookHandleTest, DeleteItemConvertsTheIdAndGivesTheTablesResult)
{
    items->deleteResult = 7;
    EXPECT_EQ(7, handle->DeleteItem(L"AB"));
    items->deleteResult = 0;
    EXPECT_EQ(0, handle->DeleteItem(L"CD"));
    EXPECT_EQ((CallLog{L"items ToInternalID AB",
                       L"items DeleteItem table:AB",
                       L"items ToInternalID CD",
                       L"items DeleteItem table:CD"}),
              log);
}

TEST_F(AddressBookHandleTest, GetItemListComesFromTheContactTable)
{
    items->itemList = {{L"folder", L"row", L"client", 2.5}};
    std::list<ItemEntry> entries = {{}, {}};
    EXPECT_EQ(1, handle->GetItemList(entries));
    ASSERT_EQ(1u, entries.size());
    EXPECT_EQ(L"client", entries.front().clientEntryID);
    EXPECT_EQ((CallLog{L"items GetItemList"}), log);
}

TEST_F(AddressBookHandleTest, GetItemListLeavesTheListAloneWhereTheTableHasNone)
{
    items->hasItemList = false;
    std::list<ItemEntry> entries = {{L"mine", L"", L"", 0.0}};
    EXPECT_EQ(0, handle->GetItemList(entries));
    ASSERT_EQ(1u, entries.size());
    EXPECT_EQ(L"mine", entries.front().folderKey);
}

TEST_F(AddressBookHandleTest, GetCurrentContactShowsTheClientFormOfTheId)
{
    const auto item = FakeItem::Make(IID_INContactItem, L"AB");
    items->current = item.Get();
    ComPtr<INContactItem> contact;
    handle->GetCurrentContact(contact.GetAddressOf());
    EXPECT_EQ(item->As<INContactItem>().Get(), contact.Get());
    EXPECT_EQ(L"client:AB", item->entityID);
    EXPECT_EQ((CallLog{L"items GetCurrentItem", L"items ToClientID AB"}), log);
}

TEST_F(AddressBookHandleTest, GetCurrentContactHandsOutExactlyOneReference)
{
    const auto item = FakeItem::Make(IID_INContactItem, L"AB");
    items->current = item.Get();
    INContactItem* contact = nullptr;
    handle->GetCurrentContact(&contact);
    ASSERT_TRUE(contact);
    EXPECT_EQ(3u, item->References()); // the test's, the table's and the client's
    contact->Release();
    EXPECT_EQ(2u, item->References());
}

TEST_F(AddressBookHandleTest, GetCurrentContactLeavesAnEmptyIdAlone)
{
    const auto item = FakeItem::Make(IID_INContactItem, L"");
    items->current = item.Get();
    ComPtr<INContactItem> contact;
    handle->GetCurrentContact(contact.GetAddressOf());
    EXPECT_TRUE(contact);
    EXPECT_EQ(L"", item->puts);
    EXPECT_EQ((CallLog{L"items GetCurrentItem"}), log);
}

TEST_F(AddressBookHandleTest, GetCurrentContactLeavesAnIdThatCannotBeReadAlone)
{
    const auto item = FakeItem::Make(IID_INContactItem, L"AB");
    item->getResult = E_FAIL;
    items->current = item.Get();
    ComPtr<INContactItem> contact;
    handle->GetCurrentContact(contact.GetAddressOf());
    EXPECT_TRUE(contact);
    EXPECT_EQ(L"", item->puts);
}

TEST_F(AddressBookHandleTest, GetCurrentContactStoresNullAtTheEndOfTheList)
{
    INContactItem* contact = reinterpret_cast<INContactItem*>(1);
    handle->GetCurrentContact(&contact);
    EXPECT_EQ(nullptr, contact);
    EXPECT_EQ((CallLog{L"items GetCurrentItem"}), log);
}

TEST_F(AddressBookHandleTest, GetCurrentContactStoresNullForAnObjectThatIsNoContact)
{
    const auto item = FakeItem::Make(IID_INContactGroup, L"AB");
    items->current = item.Get();
    INContactItem* contact = reinterpret_cast<INContactItem*>(1);
    handle->GetCurrentContact(&contact);
    EXPECT_EQ(nullptr, contact);
    EXPECT_EQ(L"client:AB", item->entityID); // the ID is converted before the query
    EXPECT_EQ(2u, item->References());
}

TEST_F(AddressBookHandleTest, GetCurrentContactDoesNothingForANullOutput)
{
    items->current = FakeItem::Make(IID_INContactItem, L"AB").Get();
    handle->GetCurrentContact(nullptr);
    EXPECT_EQ(CallLog{}, log);
}

TEST_F(AddressBookHandleTest, UpdateContactLeavesTheTableFormOnTheObject)
{
    const auto item = FakeItem::Make(IID_INContactItem, L"AB");
    items->updateResult = 5;
    EXPECT_EQ(5, handle->UpdateContact(item->As<INContactItem>().Get()));
    EXPECT_EQ(L"table:AB;", item->puts);
    EXPECT_EQ(L"table:AB", item->entityID);
    EXPECT_EQ((CallLog{L"items ToInternalID AB", L"items UpdateItem table:AB"}), log);
    EXPECT_EQ(1u, item->References());
}

TEST_F(AddressBookHandleTest, UpdateContactPassesAnItemWithoutIdOn)
{
    const auto item = FakeItem::Make(IID_INContactItem, L"");
    items->updateResult = FALSE;
    EXPECT_EQ(FALSE, handle->UpdateContact(item->As<INContactItem>().Get()));
    EXPECT_EQ(L"", item->puts);
    EXPECT_EQ((CallLog{L"items UpdateItem "}), log);
}

TEST_F(AddressBookHandleTest, UpdateContactRefusesNullAndWhatIsNoEntity)
{
    EXPECT_EQ(FALSE, handle->UpdateContact(nullptr));
    const auto item = FakeItem::Make(IID_INContactItem, L"AB");
    item->isEntity = false;
    EXPECT_EQ(FALSE, handle->UpdateContact(item->As<INContactItem>().Get()));
    EXPECT_EQ(CallLog{}, log);
}

TEST_F(AddressBookHandleTest, AddContactGivesTheClientFormAndTheFolder)
{
    const auto item = FakeItem::Make(IID_INContactItem, L"");
    items->addResult = L"NEW";
    items->addFolderID = L"FOLDER";
    std::wstring folderID;
    EXPECT_EQ(L"client:NEW", handle->AddContact(item->As<INContactItem>().Get(), folderID));
    EXPECT_EQ(L"FOLDER", folderID);
    EXPECT_EQ((CallLog{L"items AddItem ", L"items ToClientID NEW"}), log);
}

TEST_F(AddressBookHandleTest, AddContactRefusesNullAndWhatIsNoEntity)
{
    std::wstring folderID = L"mine";
    EXPECT_EQ(L"", handle->AddContact(nullptr, folderID));
    const auto item = FakeItem::Make(IID_INContactItem, L"AB");
    item->isEntity = false;
    EXPECT_EQ(L"", handle->AddContact(item->As<INContactItem>().Get(), folderID));
    EXPECT_EQ(L"mine", folderID);
    EXPECT_EQ(CallLog{}, log);
}

TEST_F(AddressBookHandleTest, GroupIdsPassUnchanged)
{
    groups->deleteResult = 3;
    handle->ResetGroup();
    handle->NextGroup();
    handle->GetGroupByID(L"AB");
    EXPECT_EQ(3, handle->DeleteGroup(L"CD"));
    EXPECT_EQ((CallLog{L"groups ResetItem",
                       L"groups GetNextItem",
                       L"groups GetItemByID AB",
                       L"groups DeleteItem CD"}),
              log);
}

TEST_F(AddressBookHandleTest, GetCurrentGroupDoesNotTouchTheId)
{
    const auto item = FakeItem::Make(IID_INContactGroup, L"AB");
    groups->current = item.Get();
    ComPtr<INContactGroup> group;
    handle->GetCurrentGroup(group.GetAddressOf());
    EXPECT_EQ(item->As<INContactGroup>().Get(), group.Get());
    EXPECT_EQ(L"AB", item->entityID);
    EXPECT_EQ((CallLog{L"groups GetCurrentItem"}), log);
}

TEST_F(AddressBookHandleTest, GetCurrentGroupStoresNullWithoutAGroup)
{
    INContactGroup* group = reinterpret_cast<INContactGroup*>(1);
    handle->GetCurrentGroup(&group);
    EXPECT_EQ(nullptr, group);

    groups->current = FakeItem::Make(IID_INContactItem, L"AB").Get();
    group = reinterpret_cast<INContactGroup*>(1);
    handle->GetCurrentGroup(&group);
    EXPECT_EQ(nullptr, group);
}

TEST_F(AddressBookHandleTest, UpdateGroupGoesToTheGroupTable)
{
    const auto item = FakeItem::Make(IID_INContactGroup, L"AB");
    groups->updateResult = 2;
    EXPECT_EQ(2, handle->UpdateGroup(item->As<INContactGroup>().Get()));
    EXPECT_EQ((CallLog{L"groups UpdateItem AB"}), log);
    item->isEntity = false;
    EXPECT_EQ(FALSE, handle->UpdateGroup(item->As<INContactGroup>().Get()));
    EXPECT_EQ(FALSE, handle->UpdateGroup(nullptr));
    EXPECT_EQ(1u, log.size());
}

TEST_F(AddressBookHandleTest, AddGroupReachesTheContactTable)
{
    const auto item = FakeItem::Make(IID_INContactGroup, L"");
    items->addResult = L"NEW";
    EXPECT_EQ(L"NEW", handle->AddGroup(item->As<INContactGroup>().Get()));
    EXPECT_EQ((CallLog{L"items AddItem "}), log);
}

TEST_F(AddressBookHandleTest, AddGroupRefusesNullAndWhatIsNoEntity)
{
    EXPECT_EQ(L"", handle->AddGroup(nullptr));
    const auto item = FakeItem::Make(IID_INContactGroup, L"AB");
    item->isEntity = false;
    EXPECT_EQ(L"", handle->AddGroup(item->As<INContactGroup>().Get()));
    EXPECT_EQ(CallLog{}, log);
}

TEST_F(AddressBookHandleTest, DeletesBothTablesWithItself)
{
    EXPECT_TRUE(handle->HasGroups());
    handle.reset();
    std::sort(log.begin(), log.end());
    EXPECT_EQ((CallLog{L"groups delete", L"items delete"}), log);
}

TEST_F(AddressBookHandleWithoutGroupsTest, GroupOperationsDoNothingAndFail)
{
    EXPECT_FALSE(handle.HasGroups());
    handle.ResetGroup();
    handle.NextGroup();
    handle.GetGroupByID(L"AB");
    EXPECT_EQ(FALSE, handle.DeleteGroup(L"AB"));
    INContactGroup* group = reinterpret_cast<INContactGroup*>(1);
    handle.GetCurrentGroup(&group);
    EXPECT_EQ(nullptr, group);
    const auto item = FakeItem::Make(IID_INContactGroup, L"AB");
    EXPECT_EQ(FALSE, handle.UpdateGroup(item->As<INContactGroup>().Get()));
    EXPECT_EQ(CallLog{}, log);
}

// The contact table's own refusal of a group object makes this fail in the end.
TEST_F(AddressBookHandleWithoutGroupsTest, AddGroupStillReachesTheContactTable)
{
    const auto item = FakeItem::Make(IID_INContactGroup, L"");
    items->addResult = L"";
    EXPECT_EQ(L"", handle.AddGroup(item->As<INContactGroup>().Get()));
    EXPECT_EQ((CallLog{L"items AddItem "}), log);
}
