#include "outlook/store/NamedTags.h"

#include "outlook/contacts/ContactStoreFixture.h"

using testing::ElementsAre;

class NamedTagsTest : public ContactStoreTest
{
};

TEST_F(NamedTagsTest, GivesATagPerNameInTheirOrder)
{
    store.NameProperty(kAddressNames, 0x8083); // 8000
    store.NameProperty(kAddressNames, 0x8062); // 8001
    store.NameProperty(kCommonNames, 0x8084);  // another set's
    Open();
    const LONG numbers[] = {0x8062, 0x8084, 0x8083};
    const auto tags = TryFindNamedTags(*folder.Get(), Proxy(), kAddressNames, numbers);
    ASSERT_TRUE(tags);
    EXPECT_THAT(*tags, ElementsAre(0x80010000u, 0x0000000Au, 0x80000000u));
    EXPECT_EQ("IMAPIFolder(contacts).GetIDsFromNames([{00062004-0000-0000-C000-000000000046} 8062 "
              "8084 8083], 00000000)",
              store.Calls().back());
    EXPECT_EQ(1u, store.Calls().size());
}

TEST_F(NamedTagsTest, FindsOneNumberAndOneText)
{
    store.NameProperty(kAddressNames, 0x8015);
    store.NameProperty(kPublicNames, L"Keywords");
    Open();
    EXPECT_EQ(0x80000000u, FindNamedTag(*folder.Get(), Proxy(), kAddressNames, 0x8015));
    EXPECT_EQ(0x80010000u, FindNamedTag(*folder.Get(), Proxy(), kPublicNames, L"Keywords"));
    EXPECT_EQ(0x0000000Au, FindNamedTag(*folder.Get(), Proxy(), kAddressNames, L"Keywords"));
    EXPECT_EQ("IMAPIFolder(contacts).GetIDsFromNames([{00020329-0000-0000-C000-000000000046} "
              "\"Keywords\"], 00000000)",
              store.Calls()[1]);
}

// A store that gives the ID of a property without a name: the class of a message, and what follows.
TEST_F(NamedTagsTest, AnIdOfAPropertyWithoutANameIsNone)
{
    store.NameProperty(kAddressNames, 0x8015);
    Open();
    const LONG numbers[] = {0x8015, 0x8016};
    store.FailNext("IMAPIFolder", StoreFault::FixedNames);
    EXPECT_THAT(FindNamedTags(*folder.Get(), Proxy(), kAddressNames, numbers),
                ElementsAre(kUnknownNameTag, kUnknownNameTag));
}

// None of them is made known by being asked for.
TEST_F(NamedTagsTest, CreatesNoName)
{
    Open();
    for (int i = 0; i < 2; ++i)
        EXPECT_EQ(0x0000000Au, FindNamedTag(*folder.Get(), Proxy(), kAddressNames, 0x8015));
}

TEST_F(NamedTagsTest, ALookupThatFailsGivesNothing)
{
    store.NameProperty(kAddressNames, 0x8015);
    Open();
    const LONG number = 0x8015;
    for (const StoreFault fault :
         {StoreFault::OutOfMemory, StoreFault::CallFailed, StoreFault::NullOutput})
    {
        store.FailNext("IMAPIFolder", fault);
        EXPECT_FALSE(TryFindNamedTags(*folder.Get(), Proxy(), kAddressNames, {&number, 1}));
        store.FailNext("IMAPIFolder", fault);
        EXPECT_EQ(0u, FindNamedTag(*folder.Get(), Proxy(), kAddressNames, 0x8015));
    }
}

TEST_F(NamedTagsTest, TagsThatWereNotDeliveredAreZero)
{
    store.NameProperty(kAddressNames, 0x8015);
    store.NameProperty(kAddressNames, 0x8016);
    Open();
    const LONG numbers[] = {0x8015, 0x8016};
    store.FailNext("IMAPIFolder", StoreFault::FewerValues);
    const auto tags = TryFindNamedTags(*folder.Get(), Proxy(), kAddressNames, numbers);
    ASSERT_TRUE(tags);
    EXPECT_THAT(*tags, ElementsAre(0x80000000u, 0u));
}

TEST(NamedTagTest, IsUsableWhereItNamesAPropertyOfSomeType)
{
    EXPECT_FALSE(IsNamedTag(0));
    EXPECT_FALSE(IsNamedTag(0x0000000A));
    EXPECT_FALSE(IsNamedTag(0x8001000A));
    EXPECT_TRUE(IsNamedTag(0x80010000));
    EXPECT_TRUE(IsNamedTag(0x8001001F));
    EXPECT_EQ(0x8001101Fu, WithType(0x80010000, PT_MV_UNICODE));
    EXPECT_EQ(0x0000001Fu, WithType(0x0000000A, PT_UNICODE));
}
