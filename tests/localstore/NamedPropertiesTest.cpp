#include "localstore/NamedProperties.h"

#include "localstore/StoreSchema.h"

#include <gtest/gtest.h>

namespace
{

constexpr GUID kSetA = {0x00062004, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
constexpr GUID kSetB = {0x00020329, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};

} // namespace

TEST(NamedPropertiesTest, CountsFromTheFirstFreeIdAndFindsEachNameAgain)
{
    Database database = OpenStore(L":memory:");
    const PropertyName number{kSetA, LONG{0x8083}};
    const PropertyName text{kSetB, std::wstring(L"Keywords")};
    EXPECT_FALSE(FindNamedProperty(database, number));
    EXPECT_EQ(0x8000, MakeNamedProperty(database, number));
    EXPECT_EQ(0x8001, MakeNamedProperty(database, text));
    EXPECT_EQ(0x8000, MakeNamedProperty(database, number));
    EXPECT_EQ(0x8001, FindNamedProperty(database, text));
    EXPECT_EQ(number, NameOfProperty(database, 0x8000));
    EXPECT_EQ(text, NameOfProperty(database, 0x8001));
    EXPECT_FALSE(NameOfProperty(database, 0x8002));
}

TEST(NamedPropertiesTest, TellsSetsNumbersNamesAndLetterCaseApart)
{
    Database database = OpenStore(L":memory:");
    const PropertyName names[] = {
        {kSetA, LONG{1}},
        {kSetB, LONG{1}},
        {kSetA, LONG{-1}},
        {kSetA, std::wstring(L"1")},
        {kSetA, std::wstring(L"name")},
        {kSetA, std::wstring(L"Name")},
        {kSetA, std::wstring()},
        {kSetA, std::wstring(L"\xD800")},
    };
    std::uint16_t expected = 0x8000;
    for (const PropertyName& name : names)
        EXPECT_EQ(expected++, MakeNamedProperty(database, name));
    expected = 0x8000;
    for (const PropertyName& name : names)
        EXPECT_EQ(name, NameOfProperty(database, expected++));
}

TEST(NamedPropertiesTest, UsesAGapBeforeItTellsThatTheMapIsFull)
{
    Database database = OpenStore(L":memory:");
    database.Execute("WITH RECURSIVE ids (id) AS (VALUES (32768) UNION ALL SELECT id + 1 FROM ids "
                     "WHERE id < 65534) INSERT INTO named_property (property_id, property_set, "
                     "number) SELECT id, zeroblob(16), id FROM ids");
    const PropertyName name{kSetA, LONG{7}};
    try
    {
        MakeNamedProperty(database, name);
        FAIL() << "the map is full";
    }
    catch (const DatabaseError& error)
    {
        EXPECT_EQ(DatabaseFailure::Full, error.Failure());
    }
    database.Execute("DELETE FROM named_property WHERE property_id = 40000");
    EXPECT_EQ(40000, MakeNamedProperty(database, name));
}
