// The distribution lists of a contact folder. The sequences of calls and the values were written
// down from the order of the steps, by hand.
#include "outlook/contacts/OutlookAddressGroupTable.h"

#include "outlook/contacts/ContactStoreFixture.h"
#include "platform/SafeArray.h"
#include "tests/automation/CollectionFixture.h"
#include "tests/automation/ItemProperties.h"

#include <gmock/gmock.h>

using Microsoft::WRL::ComPtr;
using testing::ElementsAre;
using testing::IsEmpty;
using Lines = std::vector<std::string>;

namespace
{
constexpr DATE kFirstDay = 45292.0; // 2024-01-01
constexpr std::uint64_t kFirstDayFileTime = 133'485'408'000'000'000;

// A member that wraps an ID of that many bytes, all of one value.
std::vector<BYTE> Member(BYTE type, BYTE value, std::size_t idSize = 0x46)
{
    std::vector<BYTE> bytes(0x14, 0x11);
    bytes.push_back(type);
    bytes.insert(bytes.end(), idSize, value);
    return bytes;
}
std::wstring MemberID(const wchar_t* digits, std::size_t idSize = 0x46)
{
    std::wstring text;
    for (std::size_t i = 0; i < idSize; ++i)
        text += digits;
    return text;
}

// Name, members and group ID have the tags 8000, 8001 and 8002 where the store knows them.
class OutlookAddressGroupTableTest : public ContactStoreTest
{
  protected:
    ~OutlookAddressGroupTableTest() override { table.reset(); }

    void NameListProperties()
    {
        store.NameProperty(kAddressNames, 0x8053);
        store.NameProperty(kAddressNames, 0x8055);
    }
    void NameAllProperties()
    {
        NameListProperties();
        store.NameProperty(kCommonNames, 0x85BD);
    }
    void AddMessage(const char* name, const wchar_t* messageClass, const StoreProps& props = {})
    {
        store.AddMessage(name, "contacts", StoreProps().Text(PR_MESSAGE_CLASS_W, messageClass));
        store.SetProps(name, props);
        store.SetTimes(name, kFirstDayFileTime, kFirstDayFileTime);
    }
    void AddList(const char* name, const StoreProps& props = {})
    {
        AddMessage(name, L"IPM.DistList", props);
    }
    void OpenTable()
    {
        Open();
        table = std::make_unique<COutlookAddressGroupTable>(folder.Get(), session->Helper());
        store.ClearRecord();
    }
    // Loads, goes before the first list and begins the record anew.
    void Load()
    {
        OpenTable();
        table->GetItemIDs();
        table->ResetItem();
        store.ClearRecord();
    }
    std::wstring IdOf(const char* name) const { return HexOf(store.EntryIdOf(name)); }
    std::vector<std::wstring> Listed()
    {
        std::list<ItemEntry> entries;
        EXPECT_EQ(TRUE, table->GetItemList(entries));
        std::vector<std::wstring> ids;
        for (const ItemEntry& entry : entries)
            ids.push_back(entry.rowEntryID);
        return ids;
    }
    ComPtr<INContactGroup> Read(const char* name)
    {
        table->GetItemByID(IdOf(name));
        return QueryItem<INContactGroup>(CurrentItem(*table).Get());
    }
    static std::wstring TextIn(INContactGroup* group,
                               HRESULT (STDMETHODCALLTYPE INContactGroup::*get)(BSTR*))
    {
        Bstr text;
        EXPECT_EQ(S_OK, (group->*get)(text.Put()));
        return text ? TextOf(text.Get()) : L"(null)";
    }
    // "(none)" where no array was ever put.
    static std::vector<std::wstring> Items(INContactGroup* group, LONG subGroups)
    {
        UniqueSafeArray array;
        EXPECT_EQ(S_OK, group->get_Items(subGroups, array.Put()));
        return array ? TextsOf(array.Get()) : std::vector<std::wstring>{L"(none)"};
    }
    static ComPtr<INContactGroup> GroupOf(const std::optional<std::wstring>& name,
                                          const std::wstring& id = {})
    {
        const auto group = CreateObject<INContactGroup>(CLSID_NContactGroup);
        if (name)
            group->put_Name(Bstr(*name).Get());
        if (!id.empty())
            QueryItem<INEntityItem>(group.Get())->put_EntityID(Bstr(id).Get());
        return group;
    }
    BOOL Update(const ComPtr<INContactGroup>& group)
    {
        return table->UpdateItem(QueryItem<INEntityItem>(group.Get()).Get());
    }
    std::wstring Add(const ComPtr<INContactGroup>& group)
    {
        std::wstring folderID;
        return table->AddItem(QueryItem<INEntityItem>(group.Get()).Get(), folderID);
    }

    std::unique_ptr<COutlookAddressGroupTable> table;
};

const std::string kAskFolder = "IMAPIFolder(contacts).GetIDsFromNames([";
const std::string kAskGroupID = kAskFolder + kCommonSetText + " 85BD], 00000000)";
const std::string kAskList = kAskFolder + kAddressSetText + " 8053 8055], 00000000)";
const std::string kAskName = kAskFolder + kAddressSetText + " 8053], 00000000)";
} // namespace

// --- Loading -----------------------------------------------------------------------------------

TEST_F(OutlookAddressGroupTableTest, ListsDistributionListsByTheirExactClass)
{
    AddList("one");
    AddMessage("contact", L"IPM.Contact");
    AddMessage("lower", L"IPM.Distlist");
    AddMessage("derived", L"IPM.DistList.Special");
    AddMessage("shorter", L"IPM.Dist");
    store.AddMessage("without class", "contacts");
    store.RemoveProp("without class", PR_MESSAGE_CLASS_W);
    AddList("two");
    Load();
    EXPECT_THAT(Listed(), ElementsAre(IdOf("one"), IdOf("two")));
}

TEST_F(OutlookAddressGroupTableTest, LoadsTheDefaultFolderAlone)
{
    store.AddFolder("family", "contacts", L"IPF.Contact");
    store.AddMessage("other", "family", StoreProps().Text(PR_MESSAGE_CLASS_W, L"IPM.DistList"));
    AddList("one");
    OpenTable();
    table->GetItemIDs();
    EXPECT_THAT(store.Calls(),
                ElementsAre("IMAPIFolder(contacts).GetContentsTable(80000000)",
                            "IMAPITable(contacts contents table).SetColumns("
                            "[0FFF0102 001A001F 30080040], 00000000)",
                            "IMAPITable(contacts contents table).GetRowCount(00000000)",
                            "IMAPITable(contacts contents table).QueryRows(1, 00000000)"));
    EXPECT_THAT(Listed(), ElementsAre(IdOf("one")));
}

// --- Reading -----------------------------------------------------------------------------------

TEST_F(OutlookAddressGroupTableTest, ReadsAListInThisOrder)
{
    NameAllProperties();
    AddList("one",
            StoreProps()
                .Text(0x8000001F, L"Friends")
                .Binaries(0x80011102, {Member(0xC3, 0xA5), Member(0xB4, 0x5A)})
                .Bytes(0x80020102, {0x01, 0xAB}));
    Load();
    table->GetNextItem();
    EXPECT_THAT(store.Calls(),
                ElementsAre("IMAPIFolder(contacts).OpenEntry(one, null, 00000002, type)",
                            kAskGroupID,
                            kAskList,
                            "IMessage(one).GetProps([30080040 80000000 80010000 80020000], "
                            "80000000)"));
    const auto item = CurrentItem(*table);
    const auto group = QueryItem<INContactGroup>(item.Get());
    ASSERT_TRUE(group);
    EXPECT_EQ(IdOf("one"), EntityIDOf(item.Get()));
    EXPECT_EQ(L"", FolderIDOf(item.Get()));
    EXPECT_EQ(kFirstDay, LastModifiedOf(item.Get()));
    EXPECT_EQ(L"Friends", TextIn(group.Get(), &INContactGroup::get_Name));
    EXPECT_EQ(L"01AB", TextIn(group.Get(), &INContactGroup::get_GroupID));
    EXPECT_THAT(Items(group.Get(), 0), ElementsAre(MemberID(L"A5")));
    EXPECT_THAT(Items(group.Get(), 1), ElementsAre(MemberID(L"5A")));
    UniqueSafeArray categories;
    EXPECT_EQ(E_FAIL, group->get_CategoryIDs(categories.Put()));
}

TEST_F(OutlookAddressGroupTableTest, WithoutAGroupIDThereAreThreeColumns)
{
    NameListProperties();
    AddList("one", StoreProps().Text(0x8000001F, L"Friends"));
    Load();
    const auto group = Read("one");
    EXPECT_EQ("IMessage(one).GetProps([30080040 80000000 80010000], 80000000)",
              store.Calls().back());
    EXPECT_EQ(L"Friends", TextIn(group.Get(), &INContactGroup::get_Name));
    EXPECT_EQ(L"(null)", TextIn(group.Get(), &INContactGroup::get_GroupID));
}

// The list's own names are asked for whether they are known or not.
TEST_F(OutlookAddressGroupTableTest, WithoutAnyNameAGroupIsEmpty)
{
    AddList("one");
    Load();
    const auto group = Read("one");
    EXPECT_THAT(store.Calls(),
                ElementsAre("IMAPIFolder(contacts).OpenEntry(one, null, 00000002, type)",
                            kAskGroupID,
                            kAskList,
                            "IMessage(one).GetProps([30080040 0000000A 0000000A], 80000000)"));
    ASSERT_TRUE(group);
    EXPECT_EQ(L"(null)", TextIn(group.Get(), &INContactGroup::get_Name));
    EXPECT_THAT(Items(group.Get(), 0), ElementsAre(L"(none)"));
    EXPECT_EQ(kFirstDay, LastModifiedOf(CurrentItem(*table).Get()));
}

TEST_F(OutlookAddressGroupTableTest, ValuesThatAreMissingStayEmpty)
{
    NameAllProperties();
    AddList("one");
    Load();
    const auto group = Read("one");
    EXPECT_EQ(L"(null)", TextIn(group.Get(), &INContactGroup::get_Name));
    EXPECT_EQ(L"(null)", TextIn(group.Get(), &INContactGroup::get_GroupID));
    EXPECT_THAT(Items(group.Get(), 0), ElementsAre(L"(none)"));
    EXPECT_THAT(Items(group.Get(), 1), ElementsAre(L"(none)"));
}

TEST_F(OutlookAddressGroupTableTest, AnEmptyNameIsANameAndAnEmptyGroupIDAnID)
{
    NameAllProperties();
    AddList("one", StoreProps().Text(0x8000001F, L"").Bytes(0x80020102, {}));
    Load();
    const auto group = Read("one");
    EXPECT_EQ(L"", TextIn(group.Get(), &INContactGroup::get_Name));
    EXPECT_EQ(L"", TextIn(group.Get(), &INContactGroup::get_GroupID));
}

// --- Members -----------------------------------------------------------------------------------

TEST_F(OutlookAddressGroupTableTest, SortsMembersByTheirTypeAndKeepsTheirOrder)
{
    NameListProperties();
    AddList("one",
            StoreProps().Binaries(0x80011102,
                                  {Member(0xC3, 0x01),
                                   Member(0xB4, 0x02),
                                   Member(0xB5, 0x03), // neither a contact nor a group
                                   Member(0x83, 0x04, 0x50),
                                   Member(0x84, 0x05),
                                   Member(0xC3, 0x01)}));
    Load();
    const auto group = Read("one");
    EXPECT_THAT(Items(group.Get(), 0),
                ElementsAre(MemberID(L"01"), MemberID(L"04"), MemberID(L"01")));
    EXPECT_THAT(Items(group.Get(), 1), ElementsAre(MemberID(L"02"), MemberID(L"05")));
}

TEST_F(OutlookAddressGroupTableTest, AOneOffMemberIsNotListed)
{
    NameListProperties();
    AddList("one", StoreProps().Binaries(0x80011102, {Member(0x03, 0x01), Member(0xC3, 0x02)}));
    Load();
    EXPECT_THAT(Items(Read("one").Get(), 0), ElementsAre(MemberID(L"02")));
}

TEST_F(OutlookAddressGroupTableTest, AListOfContactsAloneHasNoSubGroupsPut)
{
    NameListProperties();
    AddList("contacts only", StoreProps().Binaries(0x80011102, {Member(0xC3, 0x01)}));
    AddList("groups only", StoreProps().Binaries(0x80011102, {Member(0xB4, 0x01)}));
    Load();
    const auto contactsOnly = Read("contacts only");
    EXPECT_THAT(Items(contactsOnly.Get(), 0), ElementsAre(MemberID(L"01")));
    EXPECT_THAT(Items(contactsOnly.Get(), 1), ElementsAre(L"(none)"));
    const auto groupsOnly = Read("groups only");
    EXPECT_THAT(Items(groupsOnly.Get(), 0), ElementsAre(L"(none)"));
    EXPECT_THAT(Items(groupsOnly.Get(), 1), ElementsAre(MemberID(L"01")));
}

TEST_F(OutlookAddressGroupTableTest, AShortMemberIsReadToItsEndAndNotBeyond)
{
    NameListProperties();
    AddList("one",
            StoreProps().Binaries(0x80011102,
                                  {{},
                                   {0xC3},
                                   Member(0xC3, 0, 0),
                                   Member(0xC3, 0x0A, 1),
                                   Member(0xB4, 0x0B, 24),
                                   Member(0xC3, 0x0C, 0x45)}));
    Load();
    const auto group = Read("one");
    EXPECT_THAT(Items(group.Get(), 0), ElementsAre(L"0A", MemberID(L"0C", 0x45)));
    EXPECT_THAT(Items(group.Get(), 1), ElementsAre(MemberID(L"0B", 24)));
}

TEST_F(OutlookAddressGroupTableTest, AListWithoutMembersHasNoItems)
{
    NameListProperties();
    AddList("one", StoreProps().Text(0x8000001F, L"Nobody").Binaries(0x80011102, {}));
    Load();
    const auto group = Read("one");
    EXPECT_EQ(L"Nobody", TextIn(group.Get(), &INContactGroup::get_Name));
    EXPECT_THAT(Items(group.Get(), 0), ElementsAre(L"(none)"));
}

// --- Writing -----------------------------------------------------------------------------------

TEST_F(OutlookAddressGroupTableTest, UpdatesTheNameAloneInThisOrder)
{
    NameAllProperties();
    AddList("one",
            StoreProps()
                .Text(0x8000001F, L"Friends")
                .Binaries(0x80011102, {Member(0xC3, 0xA5)})
                .Bytes(0x80020102, {0x01}));
    Load();
    const auto group = Read("one");
    store.ClearRecord();
    group->put_Name(Bstr(L"Foes").Get());
    group->put_GroupID(Bstr(L"FFFF").Get());
    group->put_Items(0, ArrayOf({L"another"}).Get());
    group->put_Items(1, ArrayOf({L"another"}).Get());
    group->put_CategoryIDs(ArrayOf({L"category"}).Get());
    EXPECT_EQ(TRUE, Update(group));
    EXPECT_THAT(
        store.Calls(),
        ElementsAre("IMAPIFolder(contacts).OpenEntry(one, null, 00000001, type)",
                    kAskName,
                    "IMessage(one).SetProps({001A001F \"IPM.Appointment\", 8000001F \"Foes\"}, "
                    "problems)",
                    "IMessage(one).SaveChanges(00000004)",
                    "IMessage(one).GetProps([0FFF0102 30080040], 80000000)"));
    const Lines stored = store.PropsOf("one");
    EXPECT_THAT(stored, testing::Contains("8000001F \"Foes\""));
    EXPECT_THAT(stored, testing::Contains(testing::StartsWith("80011102 [<1111111111")));
    EXPECT_THAT(stored, testing::Contains("80020102 <01>"));
}

// The class that is written is no list's.
TEST_F(OutlookAddressGroupTableTest, AnUpdatedListIsNoGroupAfterTheNextLoad)
{
    NameListProperties();
    AddList("one");
    AddList("two");
    Load();
    EXPECT_EQ(TRUE, Update(GroupOf(L"Friends", IdOf("one"))));
    // Now it is still the current item and in the list.
    EXPECT_THAT(Listed(), ElementsAre(IdOf("one"), IdOf("two")));
    table = std::make_unique<COutlookAddressGroupTable>(folder.Get(), session->Helper());
    table->GetItemIDs();
    EXPECT_THAT(Listed(), ElementsAre(IdOf("two")));
}

TEST_F(OutlookAddressGroupTableTest, AddsInThisOrder)
{
    NameAllProperties();
    OpenTable();
    const auto group = GroupOf(L"Friends");
    group->put_Items(0, ArrayOf({L"member"}).Get());
    const std::wstring id = Add(group);
    EXPECT_EQ(IdOf("new 1"), id);
    EXPECT_THAT(
        store.Calls(),
        ElementsAre("IMAPIFolder(contacts).QueryInterface(IMAPIFolder)",
                    "IMAPIFolder(contacts).CreateMessage(null, 00000000)",
                    "IMessage(new 1).QueryInterface(IMAPIProp)",
                    kAskName,
                    "IMessage(new 1).SetProps({001A001F \"IPM.Appointment\", 8000001F \"Friends\"}"
                    ", problems)",
                    "IMessage(new 1).SaveChanges(00000004)",
                    "IMessage(new 1).GetProps([0FFF0102 30080040], 80000000)"));
    EXPECT_THAT(Listed(), ElementsAre(IdOf("new 1")));
    EXPECT_EQ(IdOf("new 1"), EntityIDOf(QueryItem<INEntityItem>(group.Get()).Get()));
    table = std::make_unique<COutlookAddressGroupTable>(folder.Get(), session->Helper());
    table->GetItemIDs();
    EXPECT_THAT(Listed(), IsEmpty());
}

TEST_F(OutlookAddressGroupTableTest, WithoutANameTheClassAloneIsWritten)
{
    NameListProperties();
    AddList("one", StoreProps().Text(0x8000001F, L"Friends"));
    Load();
    EXPECT_EQ(TRUE, Update(GroupOf(std::nullopt, IdOf("one"))));
    EXPECT_EQ("IMessage(one).SetProps({001A001F \"IPM.Appointment\"}, problems)", store.Calls()[2]);
    EXPECT_THAT(store.PropsOf("one"), testing::Contains("8000001F \"Friends\""));
    // An empty name is a name.
    store.ClearRecord();
    EXPECT_EQ(TRUE, Update(GroupOf(L"", IdOf("one"))));
    EXPECT_EQ("IMessage(one).SetProps({001A001F \"IPM.Appointment\", 8000001F \"\"}, problems)",
              store.Calls()[2]);
}

TEST_F(OutlookAddressGroupTableTest, ANameThatTheStoreDoesNotKnowIsWrittenWithoutAnID)
{
    AddList("one");
    Load();
    EXPECT_EQ(TRUE, Update(GroupOf(L"Friends", IdOf("one"))));
    EXPECT_EQ("IMessage(one).SetProps({001A001F \"IPM.Appointment\", 0000001F \"Friends\"}, "
              "problems)",
              store.Calls()[2]);
}

TEST_F(OutlookAddressGroupTableTest, TakesNoItemOfAnotherKind)
{
    NameListProperties();
    AddList("one");
    Load();
    const auto contact = CreateObject<INContactItem>(CLSID_NContactItem);
    const auto entity = QueryItem<INEntityItem>(contact.Get());
    std::wstring folderID;
    EXPECT_EQ(L"", table->AddItem(entity.Get(), folderID));
    entity->put_EntityID(Bstr(IdOf("one")).Get());
    EXPECT_EQ(FALSE, table->UpdateItem(entity.Get()));
    for (const std::string& line : store.Calls())
    {
        EXPECT_EQ(std::string::npos, line.find("SetProps"));
        EXPECT_EQ(std::string::npos, line.find("SaveChanges"));
    }
}

TEST_F(OutlookAddressGroupTableTest, DeletesAList)
{
    AddList("one");
    Load();
    EXPECT_EQ(TRUE, table->DeleteItem(IdOf("one")));
    EXPECT_THAT(store.Calls(),
                ElementsAre("IMAPIFolder(contacts).QueryInterface(IMAPIFolder)",
                            "IMAPIFolder(contacts).DeleteMessages([one], 0, null, 00000000)"));
    EXPECT_FALSE(store.Exists("one"));
}

// --- Life --------------------------------------------------------------------------------------

TEST_F(OutlookAddressGroupTableTest, ATableWithoutAFolderOrADetachedOneDoesNothing)
{
    AddList("one");
    Load();
    session->Helper()->Live().DetachAll();
    const auto exercise = [&] {
        store.ClearRecord();
        table->GetItemIDs();
        table->ResetItem();
        table->GetNextItem();
        table->GetItemByID(IdOf("one"));
        EXPECT_FALSE(CurrentItem(*table));
        EXPECT_EQ(FALSE, Update(GroupOf(L"Friends", IdOf("one"))));
        EXPECT_EQ(L"", Add(GroupOf(L"Friends")));
        EXPECT_EQ(FALSE, table->DeleteItem(IdOf("one")));
        EXPECT_THAT(store.Calls(), IsEmpty());
    };
    exercise();
    table = std::make_unique<COutlookAddressGroupTable>(nullptr, session->Helper());
    exercise();
    table = std::make_unique<COutlookAddressGroupTable>(folder.Get(), nullptr);
    exercise();
}
