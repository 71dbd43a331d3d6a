#include "localstore/StoreProfile.h"

#include "localstore/StoredProperties.h"
#include "localstore/UsualNames.h"

#include <gtest/gtest.h>

#include <string>

namespace
{

std::wstring Text(Database& database, PropertyOwner owner, std::uint16_t id)
{
    const auto value = ReadProperty(database, owner, id);
    const auto* text = value ? std::get_if<std::wstring>(&value->data) : nullptr;
    return text ? *text : L"(none)";
}

std::wstring FolderText(Database& database, const char* role, std::uint16_t id)
{
    const auto folder = FolderOfRole(database, *FindFolderRole(role));
    return folder ? Text(database, {OwnerKind::MessageFolder, *folder}, id) : L"(no folder)";
}

} // namespace

TEST(StoreProfileTest, AnEmptyStoreGetsTheUsualFoldersAndTheUser)
{
    Database database = OpenStore(L":memory:");
    EXPECT_TRUE(EnsureDefaultProfile(database, {L"alice", L"Alice Example"}));

    struct Expected
    {
        const char* role;
        const wchar_t* name;
        const wchar_t* containerClass;
    };
    const Expected expected[] = {
        {"subtree", L"Top of Personal Folders", L"(none)"},
        {"inbox", L"Inbox", L"IPF.Note"},
        {"wastebasket", L"Deleted Items", L"(none)"},
        {"calendar", L"Calendar", L"IPF.Appointment"},
        {"contacts", L"Contacts", L"IPF.Contact"},
    };
    for (const Expected& row : expected)
    {
        EXPECT_EQ(row.name, FolderText(database, row.role, 0x3001)) << row.role;
        EXPECT_EQ(row.containerClass, FolderText(database, row.role, 0x3613)) << row.role;
    }
    EXPECT_EQ(6, database.QueryInteger("SELECT count(*) FROM folder"));
    EXPECT_FALSE(FolderOfRole(database, *FindFolderRole("tasks")));

    // Where the server looks: both tags on inbox and root, wastebasket and subtree on the store.
    const std::int64_t root = *RootFolder(database);
    const std::int64_t inbox = *FolderOfRole(database, *FindFolderRole("inbox"));
    for (const std::int64_t holder : {root, inbox})
    {
        for (const std::uint16_t id : {std::uint16_t{0x36D0}, std::uint16_t{0x36D1}})
            EXPECT_TRUE(ReadProperty(database, {OwnerKind::MessageFolder, holder}, id));
    }
    for (const std::uint16_t id : {std::uint16_t{0x35E0}, std::uint16_t{0x35E3}})
        EXPECT_TRUE(ReadProperty(database, {OwnerKind::Store, 0}, id));

    const PropertyOwner user{OwnerKind::Identity, 1};
    EXPECT_EQ(L"alice", Text(database, user, 0x3A00));
    EXPECT_EQ(L"Alice Example", Text(database, user, 0x3001));
    EXPECT_EQ(L"Alice Example", Text(database, user, 0x3A20));
}

TEST(StoreProfileTest, WhatIsThereStays)
{
    Database database = OpenStore(L":memory:");
    const std::int64_t root = AddFolder(database, std::nullopt, L"Mine", L"");
    EXPECT_TRUE(EnsureDefaultProfile(database, {L"bob", L"Bob"}));
    EXPECT_EQ(1, database.QueryInteger("SELECT count(*) FROM folder"));
    EXPECT_EQ(root, RootFolder(database));
    EXPECT_FALSE(EnsureDefaultProfile(database, {L"carol", L"Carol"}));
    EXPECT_EQ(L"bob", Text(database, {OwnerKind::Identity, 1}, 0x3A00));
}

TEST(StoreProfileTest, AStoreKnowsTheUsualNamesOnce)
{
    Database database = OpenStore(L":memory:");
    // A name that is there keeps its ID.
    const PropertyName keywords{{0x00020329, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}},
                                std::wstring(L"Keywords")};
    EXPECT_EQ(0x8000, MakeNamedProperty(database, keywords));
    EnsureDefaultProfile(database, {L"bob", L"Bob"});
    const std::vector<PropertyName> names = UsualNames();
    EXPECT_EQ(15u + 32u + 12u + 1u, names.size());
    for (const PropertyName& name : names)
        EXPECT_TRUE(FindNamedProperty(database, name));
    EXPECT_EQ(0x8000, FindNamedProperty(database, keywords));
    EXPECT_EQ(60, database.QueryInteger("SELECT count(*) FROM named_property"));

    // What was taken away since is not made again.
    database.Execute("DELETE FROM named_property");
    EXPECT_FALSE(LacksProfile(database));
    EXPECT_FALSE(EnsureDefaultProfile(database, {L"bob", L"Bob"}));
    EXPECT_EQ(0, database.QueryInteger("SELECT count(*) FROM named_property"));
    // An older store gets what became usual later.
    database.Execute("UPDATE meta SET value = 0 WHERE name = 'usual_names'");
    EXPECT_TRUE(EnsureDefaultProfile(database, {L"bob", L"Bob"}));
    EXPECT_EQ(60, database.QueryInteger("SELECT count(*) FROM named_property"));
}

TEST(StoreProfileTest, AStoreThatIsFullOfNamesGetsNoMore)
{
    Database database = OpenStore(L":memory:");
    database.Execute("WITH RECURSIVE ids (id) AS (VALUES (32768) UNION ALL SELECT id + 1 FROM ids "
                     "WHERE id < 65533) INSERT INTO named_property (property_id, property_set, "
                     "number) SELECT id, zeroblob(16), id FROM ids");
    EXPECT_TRUE(EnsureDefaultProfile(database, {L"bob", L"Bob"}));
    EXPECT_EQ(32767, database.QueryInteger("SELECT count(*) FROM named_property"));
    EXPECT_FALSE(LacksProfile(database));
}

TEST(StoreProfileTest, ARoleThatLeadsNowhereIsNone)
{
    Database database = OpenStore(L":memory:");
    EnsureDefaultProfile(database, {L"bob", L"Bob"});
    const FolderRole& contacts = *FindFolderRole("contacts");
    const std::int64_t root = *RootFolder(database);
    const std::int64_t inbox = *FolderOfRole(database, *FindFolderRole("inbox"));
    // The inbox leads to a folder that is gone, the root still to the right one.
    const auto folder = FolderOfRole(database, contacts);
    WriteProperty(
        database, {OwnerKind::MessageFolder, inbox}, contacts.propertyId, {PT_BINARY, Bytes(24)});
    EXPECT_EQ(folder, FolderOfRole(database, contacts));
    // A value of another type leads nowhere.
    WriteProperty(database,
                  {OwnerKind::MessageFolder, root},
                  contacts.propertyId,
                  {PT_UNICODE, std::wstring(L"x")});
    EXPECT_FALSE(FolderOfRole(database, contacts));
    EXPECT_EQ(nullptr, FindFolderRole("nonsense"));
}

TEST(StoreProfileTest, TheLoggedOnUserHasNames)
{
    const ProfileUser user = LoggedOnUser();
    wchar_t name[257] = {};
    DWORD size = 257;
    ASSERT_TRUE(GetUserNameW(name, &size));
    EXPECT_EQ(name, user.account);
    EXPECT_NE(L"", user.displayName);
}
