// The first item of lists that answer as the server's do.
#include "client/FirstItem.h"

#include <gtest/gtest.h>

using Microsoft::WRL::ComPtr;
using pim::FirstItem;
using pim::kMostUnopenedItems;

namespace
{
// A list whose first items do not open, and one behind them that does, where there is one.
struct List
{
    unsigned unopened = 0;
    bool hasItem = true;
    HRESULT failure = E_FAIL;
    unsigned asked = 0;

    HRESULT operator()(IMalloc** item)
    {
        ++asked;
        if (asked <= unopened || !hasItem)
            return failure;
        return CoGetMalloc(1, item);
    }
};

class FirstItemTest : public testing::Test
{
  protected:
    HRESULT Ask()
    {
        return FirstItem([this](IMalloc** next) { return list(next); }, item, unopened);
    }

    List list;
    ComPtr<IMalloc> item;
    unsigned unopened = 0;
};
} // namespace

TEST_F(FirstItemTest, TakesTheFirstOneThatOpens)
{
    EXPECT_EQ(S_OK, Ask());
    EXPECT_TRUE(item);
    EXPECT_EQ(0u, unopened);
    EXPECT_EQ(1u, list.asked);
}

TEST_F(FirstItemTest, PassesItemsOverThatDoNotOpen)
{
    list.unopened = 3;
    EXPECT_EQ(S_OK, Ask());
    EXPECT_TRUE(item);
    EXPECT_EQ(3u, unopened);
    EXPECT_EQ(4u, list.asked);
}

TEST_F(FirstItemTest, EndsAnEmptyListWithinBounds)
{
    list.hasItem = false;
    EXPECT_EQ(E_FAIL, Ask());
    EXPECT_FALSE(item);
    EXPECT_EQ(0u, unopened);
    EXPECT_EQ(kMostUnopenedItems + 1, list.asked);
}

TEST_F(FirstItemTest, AsksNoFurtherAfterAnotherFailure)
{
    list.hasItem = false;
    list.failure = E_ACCESSDENIED;
    EXPECT_EQ(E_ACCESSDENIED, Ask());
    EXPECT_EQ(1u, list.asked);
}

TEST_F(FirstItemTest, TellsAServerThatIsGone)
{
    list.hasItem = false;
    list.failure = RPC_E_DISCONNECTED;
    EXPECT_THROW(Ask(), pim::Failure);
}
