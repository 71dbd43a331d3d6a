// Distribution lists in the embedded store, read and written by the server.
#include "automation/PropertyForms.h"
#include "platform/SafeArray.h"
#include "service/ItemAccess.h"
#include "support/SharedData.h"
#include "tests/automation/ItemProperties.h"
#include "tests/localstore/SampleMessages.h"
#include "tests/localstore/StoreProviderFixture.h"
#include "tests/service/FakeItem.h"

#include <gmock/gmock.h>

using nlohmann::json;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{
class StoreGroupTest : public StoreProviderTest
{
  protected:
    static std::wstring NameOf(INContactGroup* group)
    {
        Bstr name;
        EXPECT_EQ(S_OK, group->get_Name(name.Put()));
        return TextOf(name.Get());
    }
    static std::vector<std::wstring> Items(INContactGroup* group, LONG subGroups)
    {
        UniqueSafeArray array;
        EXPECT_EQ(S_OK, group->get_Items(subGroups, array.Put()));
        return array ? TextsOf(array.Get()) : std::vector<std::wstring>();
    }
    static ComPtr<INContactGroup> Next(IEnumerator& table)
    {
        table.GetNextItem();
        return QueryItem<INContactGroup>(CurrentItem(table).Get());
    }
    std::vector<std::wstring> Names()
    {
        const auto table = LoadTable(ContactGroup);
        std::vector<std::wstring> names;
        while (const auto group = Next(*table.get()))
            names.push_back(NameOf(group.Get()));
        return names;
    }
};

// A list with a contact, a group and a one-off address as members. Written by hand: the members'
// wrapped IDs are 46 hexadecimal bytes of one value.
SampleMessage OwnList()
{
    const auto member = [](const char* type, const char* byte) {
        std::string hex = "00000000c091add3519dcf11a4a900aa0047faa4";
        hex += type;
        for (int i = 0; i < 0x46; ++i)
            hex += byte;
        return json{{"hex", hex}};
    };
    const json named = {{"tag", "0x8000"},
                        {"set", "PSETID_Address"},
                        {"guid", "00062004-0000-0000-c000-000000000046"}};
    json name = named;
    name.update({{"type", "0x001F"}, {"id", "0x8053"}, {"value", "Own"}});
    json members = named;
    members.update(
        {{"type", "0x1102"},
         {"id", "0x8055"},
         {"value", json::array({member("c3", "a1"), member("b4", "b2"), member("03", "c3")})}});
    json groupID = named;
    groupID.update({{"type", "0x0102"},
                    {"guid", "00062008-0000-0000-c000-000000000046"},
                    {"id", "0x85BD"},
                    {"value", {{"hex", "0aff"}}}});
    return {"own",
            {{{"tag", "0x001A"}, {"type", "0x001F"}, {"value", "IPM.DistList"}},
             name,
             members,
             groupID}};
}

// What the members' bytes say, by the published form of wrapped entry IDs: those whose type byte
// has the high bit and that number in its low half; the ID is what follows, 70 bytes at most.
std::vector<std::wstring> ExpectedItems(const SampleMessage& message, unsigned kind)
{
    std::vector<std::wstring> ids;
    for (const json& property : message.properties)
    {
        if (property.value("id", "") != "0x8055")
            continue;
        for (const json& value : property["value"])
        {
            const std::string hex = value["hex"];
            const unsigned type = HexNumber(hex.substr(40, 2));
            if (type < 0x80 || type % 16 != kind)
                continue;
            std::wstring id;
            for (const char digit : hex.substr(42, 140))
                id += static_cast<wchar_t>(std::toupper(static_cast<unsigned char>(digit)));
            ids.push_back(id);
        }
    }
    return ids;
}

std::string ExpectedName(const SampleMessage& message)
{
    for (const json& property : message.properties)
        if (property.value("id", "") == "0x8053")
            return property["value"];
    return {};
}
} // namespace

TEST_F(StoreGroupTest, ListsOfMailClientsAreReadWhole)
{
    std::vector<SampleMessage> lists = {OwnList()};
    for (const auto& path : SharedSamples("msg/distlists", ".jsonl"))
        lists.push_back(ReadSampleMessage(path));
    EXPECT_EQ(lists.size(),
              LoadFolders(m_path, json::array({SampleFolder("contacts", "messages", lists)})));
    ASSERT_NO_FATAL_FAILURE(LogOnProvider());
    const auto table = LoadTable(ContactGroup);
    for (const SampleMessage& list : lists)
    {
        SCOPED_TRACE(list.name);
        const auto group = Next(*table.get());
        ASSERT_TRUE(group);
        const std::string name = ExpectedName(list);
        EXPECT_EQ(std::wstring(name.begin(), name.end()), NameOf(group.Get()));
        EXPECT_EQ(ExpectedItems(list, 3), Items(group.Get(), 0));
        EXPECT_EQ(ExpectedItems(list, 4), Items(group.Get(), 1));
        EXPECT_FALSE(Items(group.Get(), 0).empty());
    }
    EXPECT_FALSE(Next(*table.get()));
}

TEST_F(StoreGroupTest, OneOfOurOwnHasEveryField)
{
    EXPECT_EQ(
        1u,
        LoadFolders(m_path, json::array({SampleFolder("contacts", "messages", {{OwnList()}})})));
    ASSERT_NO_FATAL_FAILURE(LogOnProvider());
    const auto table = LoadTable(ContactGroup);
    const auto group = Next(*table.get());
    ASSERT_TRUE(group);
    EXPECT_EQ(L"Own", NameOf(group.Get()));
    Bstr groupID;
    EXPECT_EQ(S_OK, group->get_GroupID(groupID.Put()));
    EXPECT_EQ(L"0AFF", TextOf(groupID.Get()));
    std::wstring contact;
    std::wstring subGroup;
    for (int i = 0; i < 0x46; ++i)
    {
        contact += L"A1";
        subGroup += L"B2";
    }
    EXPECT_THAT(Items(group.Get(), 0), ElementsAre(contact));
    EXPECT_THAT(Items(group.Get(), 1), ElementsAre(subGroup));
}

TEST_F(StoreGroupTest, AnUpdateWritesTheNameAndMakesItNoListForTheNextLoad)
{
    LoadFolders(m_path, json::array({SampleFolder("contacts", "messages", {{OwnList()}})}));
    ASSERT_NO_FATAL_FAILURE(LogOnProvider());
    const auto table = LoadTable(ContactGroup);
    const auto group = Next(*table.get());
    ASSERT_TRUE(group);
    const auto entity = QueryItem<INEntityItem>(group.Get());
    group->put_Name(Bstr(L"Renamed").Get());
    group->put_Items(0, ArrayOf({L"another"}).Get());
    EXPECT_EQ(TRUE, table->UpdateItem(entity.Get()));
    // Read by its ID it has the new name and its old members.
    table->GetItemByID(EntityIDOf(entity.Get()));
    const auto again = QueryItem<INContactGroup>(CurrentItem(*table.get()).Get());
    EXPECT_EQ(L"Renamed", NameOf(again.Get()));
    EXPECT_EQ(ExpectedItems(OwnList(), 3), Items(again.Get(), 0));
    EXPECT_THAT(Names(), IsEmpty());
}

TEST_F(StoreGroupTest, AddsThroughItsTableAndDeletes)
{
    LoadFolders(m_path, json::array({SampleFolder("contacts", "messages", {{OwnList()}})}));
    ASSERT_NO_FATAL_FAILURE(LogOnProvider());
    const auto table = LoadTable(ContactGroup);
    ComPtr<INContactGroup> group;
    ASSERT_EQ(S_OK,
              CoCreateInstance(
                  CLSID_NContactGroup, nullptr, CLSCTX_ALL, IID_INContactGroup, OutVoid(group)));
    group->put_Name(Bstr(L"New").Get());
    std::wstring folderID;
    const std::wstring id = table->AddItem(QueryItem<INEntityItem>(group.Get()).Get(), folderID);
    EXPECT_FALSE(id.empty());
    table->GetItemByID(id);
    EXPECT_EQ(L"New", NameOf(QueryItem<INContactGroup>(CurrentItem(*table.get()).Get()).Get()));
    // It is no list for a new table.
    EXPECT_THAT(Names(), ElementsAre(L"Own"));
    table->ResetItem();
    const auto own = Next(*table.get());
    EXPECT_EQ(TRUE, table->DeleteItem(EntityIDOf(QueryItem<INEntityItem>(own.Get()).Get())));
    EXPECT_THAT(Names(), IsEmpty());
}
