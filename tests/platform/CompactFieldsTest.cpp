#include "platform/CompactFields.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <string>
#include <utility>
#include <vector>

namespace
{
using Fields = CompactFields<4>;

void SetText(Fields& fields, std::size_t index, std::wstring_view text)
{
    fields.Set(index, CompactValue::OfText(text));
}

std::vector<std::wstring> TextsOf(const Fields& fields)
{
    std::vector<std::wstring> texts;
    for (const CompactValue& value : fields.All())
        texts.push_back(value.IsAny() ? value.Text() : L"(none)");
    return texts;
}

using Texts = std::vector<std::wstring>;

// Every code unit from the first on, so many.
std::wstring Units(std::size_t first, std::size_t count)
{
    std::wstring text;
    for (std::size_t i = 0; i < count; ++i)
        text += static_cast<wchar_t>(first + i);
    return text;
}
} // namespace

TEST(CompactFieldsTest, HoldsNoValueAtFirst)
{
    const Fields fields;
    EXPECT_EQ(TextsOf(fields), (Texts{L"(none)", L"(none)", L"(none)", L"(none)"}));
    EXPECT_EQ(fields.Get(0).TextLength(), 0u);
    EXPECT_EQ(fields.Get(0).Text(), L"");
    std::array<unsigned char, 3> record = {1, 2, 3};
    fields.Get(0).CopyRecord(record);
    EXPECT_EQ(record, (std::array<unsigned char, 3>{}));
    EXPECT_LE(sizeof(fields), sizeof(void*));
}

TEST(CompactFieldsTest, TellsAnEmptyTextFromNone)
{
    Fields fields;
    SetText(fields, 1, L"");
    EXPECT_EQ(TextsOf(fields), (Texts{L"(none)", L"", L"(none)", L"(none)"}));
    EXPECT_TRUE(fields.Get(1).IsAny());
    fields.Set(1, CompactValue());
    EXPECT_FALSE(fields.Get(1).IsAny());
}

TEST(CompactFieldsTest, KeepsEveryTextApart)
{
    Fields fields;
    SetText(fields, 2, L"three");
    SetText(fields, 0, L"one");
    SetText(fields, 3, L"four");
    EXPECT_EQ(TextsOf(fields), (Texts{L"one", L"(none)", L"three", L"four"}));
    SetText(fields, 2, L"a longer one than before");
    SetText(fields, 1, L"2");
    EXPECT_EQ(TextsOf(fields), (Texts{L"one", L"2", L"a longer one than before", L"four"}));
    SetText(fields, 2, L"3");
    fields.Set(0, CompactValue());
    EXPECT_EQ(TextsOf(fields), (Texts{L"(none)", L"2", L"3", L"four"}));
}

TEST(CompactFieldsTest, KeepsEveryCodeUnitOfTextsOfAnyLength)
{
    Fields fields;
    // Around the lengths where the value in front grows by a byte, and the eight that are converted
    // at once; all units below 256, across 256, lone surrogates and the last ones.
    for (const std::size_t length : {1, 7, 8, 9, 31, 32, 33, 63, 64, 4095, 4096, 8192, 70000})
    {
        const std::size_t few = std::min<std::size_t>(length, 200);
        for (const std::wstring& text : {std::wstring(length, L'x'),
                                         std::wstring(length, L'\xFF'),
                                         std::wstring(length, L'\x100'),
                                         Units(0, few),
                                         Units(150, few),
                                         Units(0xD7F0, few),
                                         Units(0x10000 - few, few)})
        {
            SetText(fields, 1, text);
            SetText(fields, 3, L"end");
            EXPECT_EQ(fields.Get(1).TextLength(), text.size());
            EXPECT_TRUE(fields.Get(1).Text() == text) << length;
            EXPECT_EQ(fields.Get(3).Text(), L"end");
        }
    }
}

TEST(CompactFieldsTest, OneWideUnitAnywhereKeepsAllOfThem)
{
    Fields fields;
    for (std::size_t at = 0; at < 20; ++at)
    {
        std::wstring text(20, L'a');
        text[at] = L'\x3042';
        SetText(fields, 0, text);
        EXPECT_TRUE(fields.Get(0).Text() == text) << at;
    }
}

TEST(CompactFieldsTest, EqualTextsStandForEachOtherUntilOneChanges)
{
    for (const std::wstring& same : {std::wstring(L"the same"), std::wstring(L"\x540C\x3058")})
    {
        Fields fields;
        SetText(fields, 0, same);
        SetText(fields, 2, same);
        SetText(fields, 3, same);
        EXPECT_EQ(TextsOf(fields), (Texts{same, L"(none)", same, same}));
        SetText(fields, 1, L"other");
        EXPECT_EQ(TextsOf(fields), (Texts{same, L"other", same, same}));
        // The one that the others refer to goes first.
        SetText(fields, 0, L"new");
        EXPECT_EQ(TextsOf(fields), (Texts{L"new", L"other", same, same}));
        fields.Set(2, CompactValue());
        EXPECT_EQ(TextsOf(fields), (Texts{L"new", L"other", L"(none)", same}));
        SetText(fields, 3, same);
        EXPECT_EQ(TextsOf(fields), (Texts{L"new", L"other", L"(none)", same}));
    }
}

TEST(CompactFieldsTest, TextsOfEqualBytesButOtherUnitsAreNotTheSame)
{
    Fields fields;
    // The lower byte first: U+6261 is 61 62, as "ab" is.
    SetText(fields, 0, L"\x6261");
    SetText(fields, 1, L"ab");
    SetText(fields, 2, L"a");
    EXPECT_EQ(TextsOf(fields), (Texts{L"\x6261", L"ab", L"a", L"(none)"}));
    SetText(fields, 3, L"ac");
    EXPECT_EQ(TextsOf(fields), (Texts{L"\x6261", L"ab", L"a", L"ac"}));
}

TEST(CompactFieldsTest, KeepsEmbeddedZeros)
{
    Fields fields;
    const std::wstring text(L"a\0b\0", 4);
    SetText(fields, 0, text);
    EXPECT_EQ(fields.Get(0).Text(), text);
}

TEST(CompactFieldsTest, KeepsARecordBesideTexts)
{
    Fields fields;
    std::vector<unsigned char> record(34944);
    record[0] = 2;
    record[100] = 1;
    SetText(fields, 0, L"one");
    fields.Set(1, CompactValue::OfRecord(record));
    SetText(fields, 2, L"three");
    std::vector<unsigned char> read(record.size(), 0xEE);
    fields.Get(1).CopyRecord(read);
    EXPECT_EQ(read, record);

    // One without a zero, which takes more room than itself.
    for (std::size_t i = 0; i < record.size(); ++i)
        record[i] = static_cast<unsigned char>(i % 255 + 1);
    fields.Set(1, CompactValue::OfRecord(record));
    fields.Get(1).CopyRecord(read);
    EXPECT_EQ(read, record);
    EXPECT_EQ(fields.Get(0).Text(), L"one");
    EXPECT_EQ(fields.Get(2).Text(), L"three");

    record.assign(record.size(), 0);
    fields.Set(1, CompactValue::OfRecord(record));
    EXPECT_TRUE(fields.Get(1).IsAny());
    fields.Get(1).CopyRecord(read);
    EXPECT_EQ(read, record);
}

TEST(CompactFieldsTest, AssignsAllValuesTogether)
{
    Fields fields;
    SetText(fields, 3, L"old");
    const std::array<unsigned char, 2> record = {0, 7};
    fields.Assign({CompactValue::OfText(L"first"),
                   CompactValue::OfRecord(record),
                   CompactValue::OfText(L"\x65E5\x672C")});
    std::array<unsigned char, 2> read{};
    fields.Get(1).CopyRecord(read);
    EXPECT_EQ(read, record);
    EXPECT_EQ(fields.Get(0).Text(), L"first");
    EXPECT_EQ(fields.Get(2).Text(), L"\x65E5\x672C");
    EXPECT_FALSE(fields.Get(3).IsAny());
    // Values of the block itself may go into it, in other places too.
    auto values = fields.All();
    std::swap(values[0], values[2]);
    fields.Assign(values);
    EXPECT_EQ(fields.Get(0).Text(), L"\x65E5\x672C");
    EXPECT_EQ(fields.Get(2).Text(), L"first");
}

TEST(CompactFieldsTest, MovesWithItsOwner)
{
    Fields fields;
    SetText(fields, 0, L"one");
    const Fields moved = std::move(fields);
    EXPECT_EQ(moved.Get(0).Text(), L"one");
}
