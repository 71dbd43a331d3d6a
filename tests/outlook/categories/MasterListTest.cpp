// The registry value of the 2003 category list.
#include "outlook/categories/MasterList.h"

#include "support/RegistrySandbox.h"
#include "tests/outlook/categories/CategoryRegistry.h"

#include <gtest/gtest.h>

namespace
{
// The current user's key is another one meanwhile.
class MasterListTest : public testing::Test
{
  protected:
    RegistrySandbox registry{HKEY_CURRENT_USER};
};
} // namespace

TEST_F(MasterListTest, WithoutAKeyOrAValueItIsEmpty)
{
    EXPECT_EQ(L"", MasterList().Read());
    registry.AddKey(kCategoriesKey);
    EXPECT_EQ(L"", MasterList().Read());
}

TEST_F(MasterListTest, ReadsTheTextWhateverTypeItHas)
{
    for (const DWORD type : {REG_SZ, REG_EXPAND_SZ, REG_BINARY, REG_MULTI_SZ, REG_NONE})
    {
        registry.SetText(kCategoriesKey, L"MasterList", L"Work;%TEMP%;\u65e5\u672c", type);
        EXPECT_EQ(L"Work;%TEMP%;\u65e5\u672c", MasterList().Read()) << type;
    }
}

TEST_F(MasterListTest, EndsAtTheFirstZeroOrWithTheBytes)
{
    constexpr wchar_t kTwo[] = L"One;\0Two;";
    registry.SetValue(kCategoriesKey, L"MasterList", REG_BINARY, kTwo, sizeof kTwo);
    EXPECT_EQ(L"One;", MasterList().Read());
    registry.SetValue(kCategoriesKey, L"MasterList", REG_BINARY, L"One", 6);
    EXPECT_EQ(L"One", MasterList().Read());
    registry.SetValue(kCategoriesKey, L"MasterList", REG_BINARY, L"One", 5);
    EXPECT_EQ(L"On", MasterList().Read());
    registry.SetValue(kCategoriesKey, L"MasterList", REG_BINARY, L"", 0);
    EXPECT_EQ(L"", MasterList().Read());
}

TEST_F(MasterListTest, WritesTheTextWithItsTerminatorAsBytes)
{
    registry.AddKey(kCategoriesKey);
    MasterList().Write(L"A;\u00df;");
    const RegistryBytes written = ReadBytes(kCategoriesKey, L"MasterList");
    EXPECT_EQ(3u, written.type);
    EXPECT_EQ((std::vector<BYTE>{'A', 0, ';', 0, 0xDF, 0, ';', 0, 0, 0}), written.bytes);
    EXPECT_EQ(L"A;\u00df;", MasterList().Read());
    MasterList().Write(L"");
    EXPECT_EQ((std::vector<BYTE>{0, 0}), ReadBytes(kCategoriesKey, L"MasterList").bytes);
    EXPECT_EQ(L"", MasterList().Read());
}

TEST_F(MasterListTest, WithoutOutlooksKeyItGoesBelowAKeyOfItsOwnName)
{
    MasterList().Write(L"A;");
    EXPECT_EQ((std::vector<BYTE>{'A', 0, ';', 0, 0, 0}),
              ReadBytes(L"MasterList", L"MasterList").bytes);
    EXPECT_EQ(0u, ReadBytes(kCategoriesKey, L"MasterList").bytes.size());
    // It is not looked for there.
    EXPECT_EQ(L"", MasterList().Read());
}
