#include "outlook/store/PropertyArray.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <utility>

namespace
{
// Blocks in use in all heaps of the process.
std::size_t HeapBlocks()
{
    HANDLE heaps[64];
    const DWORD count = std::min<DWORD>(GetProcessHeaps(std::size(heaps), heaps), std::size(heaps));
    std::size_t blocks = 0;
    for (DWORD i = 0; i < count; ++i)
    {
        PROCESS_HEAP_ENTRY entry{};
        while (HeapWalk(heaps[i], &entry))
            blocks += entry.wFlags & PROCESS_HEAP_ENTRY_BUSY ? 1 : 0;
    }
    return blocks;
}
} // namespace

TEST(PropertyArrayTest, IsEmptyAtFirst)
{
    PropertyArray values;
    EXPECT_TRUE(values.IsEmpty());
    EXPECT_EQ(0u, values.Count());
}

TEST(PropertyArrayTest, KeepsTheOrderOfTheAdditions)
{
    PropertyArray values;
    values.AddLong(0x00170003, -2);
    values.AddBool(0x360A000B, true);
    values.AddBool(0x7FFE000B, false);
    values.AddTime(0x30080040, FILETIME{3, 4});
    values.AddBool(0x0063000B, 0xFFFF);
    ASSERT_FALSE(values.IsEmpty());
    ASSERT_EQ(5u, values.Count());
    const SPropValue* const raw = values.Get();
    EXPECT_EQ(0x00170003u, raw[0].ulPropTag);
    EXPECT_EQ(-2, raw[0].Value.l);
    EXPECT_EQ(0x360A000Bu, raw[1].ulPropTag);
    EXPECT_EQ(1, raw[1].Value.b);
    EXPECT_EQ(0x7FFE000Bu, raw[2].ulPropTag);
    EXPECT_EQ(0, raw[2].Value.b);
    EXPECT_EQ(0x30080040u, raw[3].ulPropTag);
    EXPECT_EQ(3u, raw[3].Value.ft.dwLowDateTime);
    EXPECT_EQ(4u, raw[3].Value.ft.dwHighDateTime);
    EXPECT_EQ(0xFFFF, raw[4].Value.b);
    EXPECT_EQ(&raw[2], &values[2]);
}

TEST(PropertyArrayTest, OwnsCopiesOfTextsAndBytes)
{
    PropertyArray values;
    {
        std::wstring text = L"first";
        std::vector<std::wstring> texts = {L"a", L"", L"ccc"};
        std::vector<std::uint8_t> bytes = {9, 0, 8};
        std::vector<LONG> numbers = {5, -6};
        values.AddText(0x0037001F, text);
        values.AddTexts(0x8000101F, texts);
        values.AddBinary(0x0FFF0102, bytes);
        values.AddLongs(0x80011003, numbers);
        // What was given away changes and goes.
        text[0] = L'x';
        texts[2][0] = L'x';
        bytes[0] = 1;
        numbers[1] = 1;
    }
    ASSERT_EQ(4u, values.Count());
    EXPECT_EQ(0x0037001Fu, values[0].ulPropTag);
    EXPECT_STREQ(L"first", values[0].Value.lpszW);
    EXPECT_EQ(0x8000101Fu, values[1].ulPropTag);
    ASSERT_EQ(3u, values[1].Value.MVszW.cValues);
    EXPECT_STREQ(L"a", values[1].Value.MVszW.lppszW[0]);
    EXPECT_STREQ(L"", values[1].Value.MVszW.lppszW[1]);
    EXPECT_STREQ(L"ccc", values[1].Value.MVszW.lppszW[2]);
    EXPECT_EQ(0x0FFF0102u, values[2].ulPropTag);
    ASSERT_EQ(3u, values[2].Value.bin.cb);
    EXPECT_EQ(9, values[2].Value.bin.lpb[0]);
    EXPECT_EQ(8, values[2].Value.bin.lpb[2]);
    EXPECT_EQ(0x80011003u, values[3].ulPropTag);
    ASSERT_EQ(2u, values[3].Value.MVl.cValues);
    EXPECT_EQ(5, values[3].Value.MVl.lpl[0]);
    EXPECT_EQ(-6, values[3].Value.MVl.lpl[1]);
}

TEST(PropertyArrayTest, TakesEmptyTextsAndLists)
{
    PropertyArray values;
    values.AddText(0x0037001F, L"");
    values.AddTexts(0x8000101F, {});
    values.AddBinary(0x0FFF0102, {});
    values.AddLongs(0x80011003, {});
    ASSERT_EQ(4u, values.Count());
    EXPECT_STREQ(L"", values[0].Value.lpszW);
    EXPECT_EQ(0u, values[1].Value.MVszW.cValues);
    EXPECT_EQ(0u, values[2].Value.bin.cb);
    EXPECT_EQ(0u, values[3].Value.MVl.cValues);
    EXPECT_TRUE(values[2].Value.bin.lpb);
}

TEST(PropertyArrayTest, KeepsItsTextsWhenMoved)
{
    PropertyArray values;
    values.AddText(0x0037001F, L"kept");
    for (int i = 0; i < 100; ++i)
        values.AddText(0x3001001F, std::wstring(static_cast<std::size_t>(i), L'x'));
    const PropertyArray moved = std::move(values);
    ASSERT_EQ(101u, moved.Count());
    EXPECT_STREQ(L"kept", moved[0].Value.lpszW);
    EXPECT_EQ(std::wstring(99, L'x'), moved[100].Value.lpszW);
}

// Each round makes more than five blocks of memory.
TEST(PropertyArrayTest, FreesEveryKindOfValue)
{
    const std::vector<std::wstring> texts = {std::wstring(50, L'a'), std::wstring(60, L'b')};
    const std::vector<std::uint8_t> bytes(70);
    const std::vector<LONG> numbers(80);
    const auto round = [&] {
        PropertyArray values;
        values.AddText(0x0037001F, texts[0]);
        values.AddTexts(0x8000101F, texts);
        values.AddBinary(0x0FFF0102, bytes);
        values.AddLongs(0x80011003, numbers);
    };
    round();
    const std::size_t before = HeapBlocks();
    for (int i = 0; i < 1000; ++i)
        round();
    EXPECT_LT(HeapBlocks(), before + 500);
}
