// The library's memory, and the functions that stand beside the interfaces.
#include "tests/storeconformance/StoreConformanceTest.h"

#include <cstring>

TEST_P(StoreConformanceTest, ChainsBlocksToABuffer)
{
    void* buffer = nullptr;
    void* more = nullptr;
    void* evenMore = nullptr;
    ASSERT_EQ(S_OK, m_mapi->allocateBuffer(100, &buffer));
    ASSERT_EQ(S_OK, m_mapi->allocateMore(200, buffer, &more));
    ASSERT_EQ(S_OK, m_mapi->allocateMore(0, buffer, &evenMore));
    ASSERT_TRUE(buffer && more && evenMore);
    std::memset(buffer, 1, 100);
    std::memset(more, 2, 200);
    EXPECT_EQ(1, static_cast<BYTE*>(buffer)[99]);
    EXPECT_EQ(0u, m_mapi->freeBuffer(buffer));
}

TEST_P(StoreConformanceTest, RefusesToFreeWhatItDidNotHandOut)
{
    EXPECT_EQ(0u, m_mapi->freeBuffer(nullptr));
    int mine = 5;
    EXPECT_NE(0u, m_mapi->freeBuffer(&mine));
    EXPECT_EQ(5, mine);
    void* buffer = nullptr;
    ASSERT_EQ(S_OK, m_mapi->allocateBuffer(100, &buffer));
    EXPECT_NE(0u, m_mapi->freeBuffer(static_cast<BYTE*>(buffer) + 8));
    void* more = nullptr;
    EXPECT_TRUE(FAILED(m_mapi->allocateMore(10, &mine, &more)));
    EXPECT_EQ(nullptr, more);
    EXPECT_EQ(0u, m_mapi->freeBuffer(buffer));
    EXPECT_TRUE(FAILED(m_mapi->allocateBuffer(10, nullptr)));
}

TEST_P(StoreConformanceTest, KeepsRowsWholeWhenTheirMiddleIsFreed)
{
    NewMessage(L"one");
    NewMessage(L"two");
    const auto table = Contents();
    const Rows rows = AllRows(table.Get(), {PR_SUBJECT_W});
    ASSERT_EQ(2u, rows->cRows);
    // A walk frees the address of the first row between two rows; nothing may come of it.
    EXPECT_NE(0u, m_mapi->freeBuffer(rows->aRow));
    EXPECT_NE(0u, m_mapi->freeBuffer(rows->aRow));
    EXPECT_EQ(PR_SUBJECT_W, rows->aRow[0].lpProps[0].ulPropTag);
    EXPECT_STREQ(L"two", rows->aRow[1].lpProps[0].Value.lpszW);
}

TEST_P(StoreConformanceTest, GivesOnePropertyByItself)
{
    const auto message = NewMessage(L"one");
    SPropValue* value = nullptr;
    ASSERT_EQ(S_OK, m_mapi->getOneProp(message.Get(), PR_SUBJECT_W, &value));
    EXPECT_EQ(PR_SUBJECT_W, value->ulPropTag);
    EXPECT_STREQ(L"one", value->Value.lpszW);
    EXPECT_EQ(0u, m_mapi->freeBuffer(value));
    value = nullptr;
    EXPECT_EQ(MAPI_E_NOT_FOUND, m_mapi->getOneProp(message.Get(), PR_GIVEN_NAME_W, &value));
    EXPECT_EQ(nullptr, value);
}
