#include "localstore/StorePath.h"

#include "localstore/Database.h"
#include "tests/localstore/LocalStoreSupport.h"

#include <gtest/gtest.h>

TEST(StorePathTest, IsTheUsersLocalDataWithoutASetting)
{
    const StoreSetting none(std::nullopt);
    wchar_t local[MAX_PATH] = {};
    ASSERT_GT(GetEnvironmentVariableW(L"LOCALAPPDATA", local, MAX_PATH), 0u);
    EXPECT_EQ(std::wstring(local) + L"\\PimStoreBridge\\store.db", StorePath());
}

TEST(StorePathTest, IsTheSettingWhereThereIsOne)
{
    const StoreSetting setting(L"C:\\data\\other.db");
    EXPECT_EQ(L"C:\\data\\other.db", StorePath());
    const StoreSetting share(L"\\\\server\\share\\other.db");
    EXPECT_EQ(L"\\\\server\\share\\other.db", StorePath());
}

TEST(StorePathTest, ExpandsVariablesOfAnExpandableSetting)
{
    wchar_t windows[MAX_PATH] = {};
    ASSERT_GT(GetEnvironmentVariableW(L"SystemRoot", windows, MAX_PATH), 0u);
    const StoreSetting setting(L"%SystemRoot%\\other.db", REG_EXPAND_SZ);
    EXPECT_EQ(std::wstring(windows) + L"\\other.db", StorePath());
}

TEST(StorePathTest, AnEmptySettingIsNone)
{
    const StoreSetting setting(L"");
    EXPECT_NE(std::wstring::npos, StorePath().find(L"\\PimStoreBridge\\store.db"));
}

TEST(StorePathTest, RefusesAPathThatIsNotFull)
{
    for (const wchar_t* path : {L"store.db", L"C:store.db", L"\\store.db", L":memory:", L"C:\\"})
    {
        const StoreSetting setting(path);
        try
        {
            StorePath();
            ADD_FAILURE() << path;
        }
        catch (const DatabaseError& error)
        {
            EXPECT_EQ(DatabaseFailure::CannotOpen, error.Failure());
        }
    }
}
