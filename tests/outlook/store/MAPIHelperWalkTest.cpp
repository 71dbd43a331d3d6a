// The walkers over rows and properties, on objects that record and fail.
#include "outlook/store/MAPIHelper.h"

#include "support/DebugOutputCapture.h"
#include "tests/outlook/FakeStore.h"

#include <gmock/gmock.h>

using testing::ElementsAre;
using testing::IsEmpty;

namespace
{
constexpr ULONG kTags[] = {0x0FFF0102, 0x001A001F, 0x30080040};

class MAPIHelperWalkTest : public testing::Test
{
  protected:
    MAPIHelperWalkTest()
    {
        auto owned = std::make_unique<FakeStoreProxcy>(calls);
        proxy = owned.get();
        helper = std::make_unique<CMAPIHelper>(std::move(owned));
        callback.results = {5, 6, 7};
    }
    ~MAPIHelperWalkTest() override { EXPECT_EQ(0u, proxy->Live()); }

    StoreCalls calls;
    FakeStoreProxcy* proxy = nullptr;
    std::unique_ptr<CMAPIHelper> helper;
    RecordingCallback callback{calls};
};

class MAPIHelperRowsTest : public MAPIHelperWalkTest
{
  protected:
    MAPIHelperRowsTest() : table(calls, *proxy)
    {
        for (LONG i = 1; i <= 3; ++i)
            table.rows.push_back({NumberValue(0x00010003, i), NumberValue(0x00020003, i)});
    }
    BOOL Walk(ULONG flags = 0)
    {
        return helper->EnumerateRows(&table, kTags, 42, &callback, flags);
    }

    FakeTable table;
};

class MAPIHelperPropertiesTest : public MAPIHelperWalkTest
{
  protected:
    MAPIHelperPropertiesTest() : object(calls, *proxy)
    {
        object.values = {NumberValue(0x00010003, 1), MissingValue(0x00020003)};
    }
    BOOL Read() { return helper->EnumerateProperties(&object, kTags, 42, &callback, 0x80000000); }

    FakeProp object;
};

constexpr char kSetColumns[] = "SetColumns 0FFF0102 001A001F 30080040, flags 00000000";
constexpr char kGetRowCount[] = "GetRowCount, flags 00000000";
constexpr char kRow[] = "row 42: 00010003 00020003";
// One query, and the callback for two rows.
const StoreCalls kTwoRowsOfThree = {kSetColumns,
                                    kGetRowCount,
                                    "QueryRows 3, flags 00000000",
                                    kRow,
                                    "FreeBuffer first row",
                                    kRow,
                                    "FreeBuffer first row",
                                    "FreeProws"};
constexpr char kGetProps[] = "GetProps 0FFF0102 001A001F 30080040, flags 80000000";
constexpr char kProperties[] = "row 42: 00010003 0002000A";
} // namespace

// --- Rows ----------------------------------------------------------------------------------------

// The free behind each row names the first row of the set, whichever row it was.
TEST_F(MAPIHelperRowsTest, WalksEveryRowOfOneQuery)
{
    EXPECT_EQ(7, Walk(9));
    EXPECT_EQ((StoreCalls{kSetColumns,
                          kGetRowCount,
                          "QueryRows 3, flags 00000009",
                          kRow,
                          "FreeBuffer first row",
                          kRow,
                          "FreeBuffer first row",
                          kRow,
                          "FreeBuffer first row",
                          "FreeProws"}),
              calls);
}

TEST_F(MAPIHelperRowsTest, StopsWhereTheCallbackSaysSo)
{
    callback.stopAt = 2;
    EXPECT_EQ(6, Walk());
    EXPECT_EQ(kTwoRowsOfThree, calls);
}

// A result of 0 does not stop a walk, and the last result counts alone.
TEST_F(MAPIHelperRowsTest, GivesTheResultOfTheLastRow)
{
    callback.results = {1, 0, 0};
    EXPECT_EQ(0, Walk());
    EXPECT_EQ(3, std::count(calls.begin(), calls.end(), kRow));
}

TEST_F(MAPIHelperRowsTest, AnEmptyTableIsNotQueried)
{
    table.rows.clear();
    EXPECT_EQ(0, Walk());
    EXPECT_EQ((StoreCalls{kSetColumns, kGetRowCount}), calls);
}

TEST_F(MAPIHelperRowsTest, NothingHappensWithoutTableTagsOrCallback)
{
    EXPECT_EQ(0, helper->EnumerateRows(nullptr, kTags, 42, &callback, 0));
    EXPECT_EQ(0, helper->EnumerateRows(&table, {}, 42, &callback, 0));
    EXPECT_EQ(0, helper->EnumerateRows(&table, {kTags, 0}, 42, &callback, 0));
    EXPECT_EQ(0, helper->EnumerateRows(&table, kTags, 42, nullptr, 0));
    EXPECT_EQ(StoreCalls{}, calls);
}

TEST_F(MAPIHelperRowsTest, FailedColumnsOrCountsEndTheWalk)
{
    for (const StoreFailure failure : {StoreFailure::OutOfMemory, StoreFailure::CallFailed})
    {
        table.setColumns = failure;
        EXPECT_EQ(0, Walk());
        EXPECT_EQ((StoreCalls{kSetColumns}), calls);
        calls.clear();
        table.setColumns = StoreFailure::None;

        table.getRowCount = failure;
        EXPECT_EQ(0, Walk());
        EXPECT_EQ((StoreCalls{kSetColumns, kGetRowCount}), calls);
        calls.clear();
        table.getRowCount = StoreFailure::None;
    }
    table.getRowCount = StoreFailure::GivesNull;
    EXPECT_EQ(0, Walk());
    EXPECT_EQ((StoreCalls{kSetColumns, kGetRowCount}), calls);
}

TEST_F(MAPIHelperRowsTest, WarningsAreNoFailures)
{
    table.setColumns = StoreFailure::Warning;
    table.getRowCount = StoreFailure::Warning; // tells 2 of 3
    table.queryRows = StoreFailure::Warning;   // gives 1 of these
    EXPECT_EQ(5, Walk());
    EXPECT_EQ((StoreCalls{kSetColumns,
                          kGetRowCount,
                          "QueryRows 2, flags 00000000",
                          kRow,
                          "FreeBuffer first row",
                          "FreeProws"}),
              calls);
}

TEST_F(MAPIHelperRowsTest, AFailedQueryDeliversAndFreesNothing)
{
    for (const StoreFailure failure :
         {StoreFailure::OutOfMemory, StoreFailure::CallFailed, StoreFailure::GivesNull})
    {
        table.queryRows = failure;
        EXPECT_EQ(0, Walk());
        EXPECT_EQ((StoreCalls{kSetColumns, kGetRowCount, "QueryRows 3, flags 00000000"}), calls);
        calls.clear();
    }
}

// A store may give fewer rows at a time than it counted.
TEST_F(MAPIHelperRowsTest, RowsThatTheQueryLeavesOutAreNotAskedForAgain)
{
    table.queryRows = StoreFailure::Warning; // gives 2 of 3
    EXPECT_EQ(6, Walk());
    EXPECT_EQ(kTwoRowsOfThree, calls);
}

TEST_F(MAPIHelperRowsTest, AQueryMayDeliverNoRow)
{
    table.rows.resize(1);
    table.queryRows = StoreFailure::Warning;
    EXPECT_EQ(0, Walk());
    EXPECT_EQ((StoreCalls{kSetColumns, kGetRowCount, "QueryRows 1, flags 00000000", "FreeProws"}),
              calls);
}

// Beyond 2,147,483,647 the query's own count ends.
TEST_F(MAPIHelperRowsTest, AHugeCountIsNoWalkBackwards)
{
    table.toldCount = 0xFFFFFFFF;
    EXPECT_EQ(7, Walk());
    ASSERT_LT(2u, calls.size());
    EXPECT_EQ("QueryRows 2147483647, flags 00000000", calls[2]);
}

TEST_F(MAPIHelperRowsTest, ACallbackThatThrowsLeaksNothing)
{
    callback.throwAt = 2;
    EXPECT_THROW(Walk(), std::runtime_error);
    EXPECT_EQ(0u, proxy->Live());
    EXPECT_EQ("FreeProws", calls.back());
}

TEST_F(MAPIHelperRowsTest, TellsTheNumberOfRowsInTheLog)
{
    const ScopedLogSettings settings;
    DebugOutputCapture capture;
    Walk();
    EXPECT_THAT(capture.TakeLogMessages(),
                ElementsAre("==========pTable->QueryRows()! Rows = 3\r\n"));
    table.queryRows = StoreFailure::CallFailed;
    Walk();
    EXPECT_THAT(capture.TakeLogMessages(), IsEmpty());
    table.rows.clear();
    Walk();
    EXPECT_THAT(capture.TakeLogMessages(), IsEmpty());
}

// --- Properties ----------------------------------------------------------------------------------

TEST_F(MAPIHelperPropertiesTest, DeliversAllValuesInOneCall)
{
    EXPECT_EQ(1, Read());
    EXPECT_EQ((StoreCalls{kGetProps, kProperties, "FreeBuffer values"}), calls);
}

TEST_F(MAPIHelperPropertiesTest, GivesATruthValueOfTheCallbacksResult)
{
    callback.results = {-3};
    EXPECT_EQ(1, Read());
    EXPECT_EQ(0, Read()); // the second call returns 0
}

TEST_F(MAPIHelperPropertiesTest, AStoppingCallbackChangesNothing)
{
    callback.stopAt = 1;
    EXPECT_EQ(1, Read());
    EXPECT_EQ((StoreCalls{kGetProps, kProperties, "FreeBuffer values"}), calls);
}

TEST_F(MAPIHelperPropertiesTest, NothingHappensWithoutObjectTagsOrCallback)
{
    EXPECT_EQ(0, helper->EnumerateProperties(nullptr, kTags, 42, &callback, 0));
    EXPECT_EQ(0, helper->EnumerateProperties(&object, {}, 42, &callback, 0));
    EXPECT_EQ(0, helper->EnumerateProperties(&object, {kTags, 0}, 42, &callback, 0));
    EXPECT_EQ(0, helper->EnumerateProperties(&object, kTags, 42, nullptr, 0));
    EXPECT_EQ(StoreCalls{}, calls);
}

TEST_F(MAPIHelperPropertiesTest, AFailedReadingDeliversAndFreesNothing)
{
    for (const StoreFailure failure :
         {StoreFailure::OutOfMemory, StoreFailure::CallFailed, StoreFailure::GivesNull})
    {
        object.getProps = failure;
        EXPECT_EQ(0, Read());
        EXPECT_EQ((StoreCalls{kGetProps}), calls);
        calls.clear();
    }
}

TEST_F(MAPIHelperPropertiesTest, AWarningWithFewerValuesCountsAsSuccess)
{
    object.getProps = StoreFailure::Warning;
    EXPECT_EQ(1, Read());
    EXPECT_EQ((StoreCalls{kGetProps, "row 42: 00010003", "FreeBuffer values"}), calls);
}

TEST_F(MAPIHelperPropertiesTest, AnEmptyAnswerIsFreedAndCountsAsFailure)
{
    object.values.clear();
    EXPECT_EQ(0, Read());
    EXPECT_EQ((StoreCalls{kGetProps, "FreeBuffer values"}), calls);
}

TEST_F(MAPIHelperPropertiesTest, ACallbackThatThrowsLeaksNothing)
{
    callback.throwAt = 1;
    EXPECT_THROW(Read(), std::runtime_error);
    EXPECT_EQ("FreeBuffer values", calls.back());
}

TEST_F(MAPIHelperPropertiesTest, TellsTheResultInTheLog)
{
    const ScopedLogSettings settings;
    DebugOutputCapture capture;
    object.getPropsResult = MAPI_W_ERRORS_RETURNED;
    Read();
    EXPECT_THAT(capture.TakeLogMessages(),
                ElementsAre("==========EnumerateProperties pMAPIProperty->GetProps, "
                            "hr = (0X0000000000040380)! \r\n"));
}

TEST_F(MAPIHelperPropertiesTest, ListsTheTagsOfAFailedReadingInTheLog)
{
    const ScopedLogSettings settings;
    DebugOutputCapture capture;
    object.getProps = StoreFailure::CallFailed;
    Read();
    EXPECT_THAT(capture.TakeLogMessages(),
                ElementsAre("==========EnumerateProperties pMAPIProperty->GetProps, "
                            "hr = (0X0000000080004005)! \r\n",
                            "==========Failed: All Properties: \r\n",
                            "=========Index:0, Name:FFF0102",
                            "=========Index:1, Name:1A001F",
                            "=========Index:2, Name:30080040"));
}
