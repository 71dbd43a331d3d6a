#include "outlook/store/PropertyView.h"

#include "outlook/FakeStore.h"

namespace
{
constexpr ULONG kText = 0x0037001F;
constexpr ULONG kNumber = 0x00170003;
constexpr ULONG kBytes = 0x0FFF0102;
constexpr ULONG kTime = 0x30080040;

BYTE g_bytes[] = {1, 2, 3};

// One value of each type, in the order of the constants above.
std::vector<SPropValue> Values()
{
    SPropValue bytes = {};
    bytes.ulPropTag = kBytes;
    bytes.Value.bin = {3, g_bytes};
    SPropValue time = {};
    time.ulPropTag = kTime;
    time.Value.ft = {5, 6};
    return {TextValue(kText, L"one"), NumberValue(kNumber, 7), bytes, time};
}
} // namespace

TEST(PropertyViewTest, ReadsValuesByPosition)
{
    const std::vector<SPropValue> values = Values();
    const PropertyView view(4, values.data());
    EXPECT_EQ(4u, view.Count());
    EXPECT_STREQ(L"one", view.Text(0));
    EXPECT_EQ(&values[1], view.Find(1));
    ASSERT_TRUE(view.Binary(2));
    EXPECT_EQ(g_bytes, view.Binary(2)->lpb);
    EXPECT_EQ(3u, view.Binary(2)->cb);
    ASSERT_TRUE(view.Time(3));
    EXPECT_EQ(5u, view.Time(3)->dwLowDateTime);
    EXPECT_EQ(6u, view.Time(3)->dwHighDateTime);
}

TEST(PropertyViewTest, ABinaryOfBytesAtNullIsAbsent)
{
    std::vector<SPropValue> values = Values();
    values[2].Value.bin = {3, nullptr};
    const PropertyView view(4, values.data());
    EXPECT_FALSE(view.Binary(2));
    values[2].Value.bin.cb = 0;
    ASSERT_TRUE(view.Binary(2));
    EXPECT_EQ(0u, view.Binary(2)->cb);
}

// More values lie in memory than were delivered.
TEST(PropertyViewTest, AValueAtOrPastTheDeliveredCountIsAbsent)
{
    const std::vector<SPropValue> values = Values();
    const PropertyView view(2, values.data());
    EXPECT_TRUE(view.Find(1));
    EXPECT_FALSE(view.Find(2));
    EXPECT_FALSE(view.Binary(2));
    EXPECT_FALSE(view.Time(3));
    EXPECT_FALSE(PropertyView(0, values.data()).Text(0));
}

TEST(PropertyViewTest, AValueInErrorIsAbsent)
{
    const SPropValue values[] = {MissingValue(kText), MissingValue(kBytes), MissingValue(kTime)};
    const PropertyView view(3, values);
    EXPECT_FALSE(view.Find(0));
    EXPECT_FALSE(view.Text(0));
    EXPECT_FALSE(view.Binary(1));
    EXPECT_FALSE(view.Time(2));
}

TEST(PropertyViewTest, TellsTheErrorOfAValueAlone)
{
    const SPropValue values[] = {MissingValue(kText), NumberValue(kNumber, 7)};
    const PropertyView view(2, values);
    EXPECT_EQ(MAPI_E_NOT_FOUND, view.Error(0));
    EXPECT_FALSE(view.Error(1));
    EXPECT_FALSE(view.Error(2));
    EXPECT_FALSE(PropertyView(2, nullptr).Error(0));
}

TEST(PropertyViewTest, AValueOfAnotherTypeIsAbsentForATypedReader)
{
    const std::vector<SPropValue> values = Values();
    const PropertyView view(4, values.data());
    EXPECT_FALSE(view.Text(1));
    EXPECT_FALSE(view.Text(2));
    EXPECT_FALSE(view.Binary(0));
    EXPECT_FALSE(view.Binary(3));
    EXPECT_FALSE(view.Time(1));
    EXPECT_TRUE(view.Find(3));
}

TEST(PropertyViewTest, ReadsNumbersAndTruthsAsTheyStand)
{
    SPropValue truth = {};
    truth.ulPropTag = 0x360A000B;
    truth.Value.b = 0xFFFF;
    const SPropValue values[] = {NumberValue(kNumber, -7), truth, MissingValue(kNumber)};
    const PropertyView view(3, values);
    EXPECT_EQ(-7, view.Long(0));
    EXPECT_EQ(0xFFFF, view.Bool(1));
    EXPECT_EQ(std::nullopt, view.Long(1));
    EXPECT_EQ(std::nullopt, view.Bool(0));
    EXPECT_EQ(std::nullopt, view.Long(2));
    EXPECT_EQ(std::nullopt, view.Bool(3));
}

TEST(PropertyViewTest, ANullTextAndANullRowAreAbsent)
{
    const SPropValue value = TextValue(kText, nullptr);
    EXPECT_FALSE(PropertyView(1, &value).Text(0));
    const PropertyView none(3, nullptr);
    EXPECT_EQ(0u, none.Count());
    EXPECT_FALSE(none.Find(0));
}

TEST(PropertyViewTest, ReadsTheBinariesOfAList)
{
    SBinary list[] = {{3, g_bytes}, {0, nullptr}, {2, g_bytes}};
    SPropValue values[2] = {};
    values[0].ulPropTag = values[1].ulPropTag = 0x80551102;
    values[0].Value.MVbin = {2, list};
    values[1].Value.MVbin = {2, nullptr};
    const PropertyView view(2, values);
    ASSERT_EQ(2u, view.Binaries(0).size());
    EXPECT_EQ(list, view.Binaries(0).data());
    EXPECT_TRUE(view.Binaries(1).empty()); // a null list
    EXPECT_TRUE(view.Binaries(2).empty());
    const SPropValue other = NumberValue(kNumber, 7);
    EXPECT_TRUE(PropertyView(1, &other).Binaries(0).empty());
    EXPECT_FALSE(view.Binary(0));
}
