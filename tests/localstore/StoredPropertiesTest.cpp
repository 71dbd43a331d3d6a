#include "localstore/StoredProperties.h"

#include "platform/WindowsHeaders.h"

#include <gtest/gtest.h>

#include <bit>
#include <functional>
#include <limits>

namespace
{

constexpr PropertyOwner kOwner{OwnerKind::BookEntry, 12};

DatabaseFailure FailureOf(const std::function<void()>& action)
{
    try
    {
        action();
    }
    catch (const DatabaseError& error)
    {
        return error.Failure();
    }
    ADD_FAILURE() << "no failure";
    return DatabaseFailure::Other;
}

Bytes BytesOf(std::initializer_list<int> values)
{
    Bytes bytes;
    for (const int value : values)
        bytes.push_back(static_cast<std::byte>(value));
    return bytes;
}

std::uint64_t BitsOf(double value)
{
    return std::bit_cast<std::uint64_t>(value);
}

} // namespace

TEST(StoredPropertiesTest, EveryTypeComesBackAsItWent)
{
    Database database = OpenStore(L":memory:");
    const std::wstring oddText = L"\uFEFFa\xD800\u6F22"; // a mark of byte order, a lone surrogate
    const std::vector<PropertyValue> values = {
        {PT_I2, static_cast<std::uint64_t>(-3)},
        {PT_LONG, static_cast<std::uint64_t>(std::numeric_limits<std::int32_t>::min())},
        {PT_R4, std::uint64_t{std::bit_cast<std::uint32_t>(1.5f)}},
        {PT_DOUBLE, BitsOf(std::numeric_limits<double>::quiet_NaN())},
        {PT_CURRENCY, std::uint64_t{10000}},
        {PT_APPTIME, BitsOf(-0.0)},
        {PT_BOOLEAN, std::uint64_t{1}},
        {PT_I8, std::numeric_limits<std::uint64_t>::max()},
        {PT_SYSTIME, std::uint64_t{0x01D9FFFFFFFFFFFF}},
        {PT_STRING8, BytesOf({'a', 0xE4})},
        {PT_UNICODE, oddText},
        {PT_UNICODE, std::wstring()},
        {PT_UNICODE, std::wstring(5000, L'y')},
        {PT_CLSID, Bytes(16, std::byte{9})},
        {PT_BINARY, Bytes()},
        {PT_BINARY, Bytes(300000, std::byte{7})},
        {PT_MV_LONG, std::vector<std::uint64_t>{1, static_cast<std::uint64_t>(-1)}},
        {PT_MV_LONG, std::vector<std::uint64_t>()},
        {PT_MV_BINARY, std::vector<Bytes>{BytesOf({1, 2}), Bytes(), Bytes(2000)}},
        {PT_MV_STRING8, std::vector<Bytes>{BytesOf({'x'})}},
        {PT_MV_UNICODE, std::vector<std::wstring>{L"one", L"", oddText}},
    };
    for (size_t i = 0; i < values.size(); ++i)
        WriteProperty(database, kOwner, static_cast<std::uint16_t>(i + 1), values[i]);
    for (size_t i = 0; i < values.size(); ++i)
    {
        const auto read = ReadProperty(database, kOwner, static_cast<std::uint16_t>(i + 1));
        ASSERT_TRUE(read.has_value()) << i;
        EXPECT_EQ(values[i], *read) << i;
    }
    const auto all = ReadProperties(database, kOwner);
    ASSERT_EQ(values.size(), all.size());
    for (size_t i = 0; i < values.size(); ++i)
        EXPECT_EQ(values[i], all.at(static_cast<std::uint16_t>(i + 1))) << i;
}

TEST(StoredPropertiesTest, ANewValueReplacesTheOldOneOfAnyTypeAndSize)
{
    Database database = OpenStore(L":memory:");
    WriteProperty(database, kOwner, 0x37, {PT_BINARY, Bytes(5000)});
    WriteProperty(database, kOwner, 0x37, {PT_LONG, std::uint64_t{4}});
    EXPECT_EQ((PropertyValue{PT_LONG, std::uint64_t{4}}), ReadProperty(database, kOwner, 0x37));
    EXPECT_EQ(0, database.QueryInteger("SELECT count(*) FROM large_value"));
    WriteProperty(database, kOwner, 0x37, {PT_BINARY, Bytes(6000)});
    EXPECT_EQ(1, database.QueryInteger("SELECT count(*) FROM large_value"));
}

TEST(StoredPropertiesTest, DeletingTellsWhetherThereWasOne)
{
    Database database = OpenStore(L":memory:");
    WriteProperty(database, kOwner, 0x37, {PT_BINARY, Bytes(5000)});
    EXPECT_TRUE(DeleteProperty(database, kOwner, 0x37));
    EXPECT_FALSE(DeleteProperty(database, kOwner, 0x37));
    EXPECT_FALSE(ReadProperty(database, kOwner, 0x37).has_value());
    EXPECT_EQ(0, database.QueryInteger("SELECT count(*) FROM large_value"));
}

TEST(StoredPropertiesTest, OwnersDoNotSeeEachOther)
{
    Database database = OpenStore(L":memory:");
    WriteProperty(database, {OwnerKind::Message, 12}, 0x37, {PT_LONG, std::uint64_t{1}});
    WriteProperty(database, {OwnerKind::BookEntry, 13}, 0x37, {PT_LONG, std::uint64_t{2}});
    EXPECT_FALSE(ReadProperty(database, kOwner, 0x37).has_value());
    EXPECT_TRUE(ReadProperties(database, kOwner).empty());
}

TEST(StoredPropertiesTest, RefusesValuesThatDoNotFitTheirType)
{
    Database database = OpenStore(L":memory:");
    for (const PropertyValue& value : {
             PropertyValue{PT_OBJECT, std::uint64_t{1}},
             PropertyValue{PT_ERROR, std::uint64_t{1}},
             PropertyValue{PT_NULL, std::uint64_t{1}},
             PropertyValue{PT_UNSPECIFIED, std::uint64_t{1}},
             PropertyValue{PT_LONG, std::wstring(L"text")},
             PropertyValue{PT_UNICODE, std::uint64_t{1}},
             PropertyValue{PT_BINARY, std::wstring(L"text")},
             PropertyValue{PT_CLSID, Bytes(15)},
             PropertyValue{PT_MV_LONG, std::uint64_t{1}},
             PropertyValue{PT_MV_UNICODE, std::vector<Bytes>()},
         })
        EXPECT_EQ(DatabaseFailure::Constraint,
                  FailureOf([&] { WriteProperty(database, kOwner, 1, value); }))
            << value.type;
    EXPECT_EQ(DatabaseFailure::Constraint, FailureOf([&] {
                  WriteProperty(database, kOwner, 0xFFFF, {PT_LONG, std::uint64_t{1}});
              }));
    EXPECT_TRUE(ReadProperties(database, kOwner).empty());
}

// Rows that no version of this software wrote.
TEST(StoredPropertiesTest, ReportsRowsThatDoNotFitTheirTypeAsCorrupt)
{
    const char* const kRows[] = {
        "3, 'text', NULL",                   // a number as text
        "3, NULL, NULL",                     // no value
        "31, 5, NULL",                       // a text as number
        "31, x'410042', NULL",               // half a UTF-16 unit
        "72, x'00', NULL",                   // a class ID of one byte
        "13, 1, NULL",                       // an object
        "258, NULL, 77",                     // a large value that is gone
        "4099, x'', NULL",                   // no count
        "4099, x'02000000', NULL",           // a count without its numbers
        "4099, x'FFFFFFFF', NULL",           // an absurd count
        "4099, x'00000000FF', NULL",         // bytes behind the end
        "4127, x'01000000FFFFFFFF', NULL",   // an absurd length
        "4127, x'0100000001000000', NULL",   // a length without its bytes
        "4127, x'010000000100000041', NULL", // half a UTF-16 unit
        "4354, x'0200000000000000', NULL",   // one item of two
    };
    for (const char* row : kRows)
    {
        Database database = OpenStore(L":memory:");
        database.Execute("PRAGMA foreign_keys = OFF");
        database.Execute(std::string("INSERT INTO property VALUES (7, 12, 1, ") + row + ")");
        EXPECT_EQ(DatabaseFailure::Corrupt, FailureOf([&] { ReadProperty(database, kOwner, 1); }))
            << row;
        EXPECT_EQ(DatabaseFailure::Corrupt, FailureOf([&] { ReadProperties(database, kOwner); }))
            << row;
    }
}

// The bytes that docs/formats/store_database.md states.
TEST(StoredPropertiesTest, MultiValuesHaveTheDocumentedBytes)
{
    Database database = OpenStore(L":memory:");
    WriteProperty(
        database, kOwner, 1, {PT_MV_LONG, std::vector<std::uint64_t>{1, 0xFFFFFFFFFFFFFFFF}});
    WriteProperty(database, kOwner, 2, {PT_MV_UNICODE, std::vector<std::wstring>{L"A", L""}});
    WriteProperty(database, kOwner, 3, {PT_MV_BINARY, std::vector<Bytes>{BytesOf({0xAB})}});
    WriteProperty(database, kOwner, 4, {PT_UNICODE, std::wstring(L"A\u00E4")});
    EXPECT_EQ(4,
              database.QueryInteger(
                  "SELECT (SELECT count(*) FROM property WHERE property_id = 1 AND "
                  "value = x'020000000100000000000000FFFFFFFFFFFFFFFF') + "
                  "(SELECT count(*) FROM property WHERE property_id = 2 AND "
                  "value = x'0200000002000000410000000000') + "
                  "(SELECT count(*) FROM property WHERE property_id = 3 AND "
                  "value = x'0100000001000000AB') + "
                  "(SELECT count(*) FROM property WHERE property_id = 4 AND value = x'4100E400')"));
}
