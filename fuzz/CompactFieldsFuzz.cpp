// What is set in a compact block is read from it, through any order of changes and with values
// that are equal to each other; what is not set has no value.
#include "FuzzInput.h"
#include "Require.h"

#include "platform/CompactFields.h"
#include "service/TextConversions.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <vector>

namespace
{
constexpr std::size_t kFields = 5;
constexpr std::size_t kRecord = 4; // the one field that is no text
using Record = std::array<unsigned char, 64>;

struct Expected
{
    std::array<std::optional<std::wstring>, kRecord> texts;
    std::optional<Record> record;
};

void Check(const CompactFields<kFields>& fields, const Expected& expected)
{
    bool isAny = expected.record.has_value();
    for (std::size_t i = 0; i < kRecord; ++i)
    {
        const CompactValue value = fields.Get(i);
        Require(value.IsAny() == expected.texts[i].has_value());
        Require(value.Text() == expected.texts[i].value_or(L""));
        Require(value.TextLength() == value.Text().size());
        isAny = isAny || value.IsAny();
    }
    Require(fields.IsAny() == isAny);
    Require(fields.Get(kRecord).IsAny() == expected.record.has_value());
    if (!expected.record)
        return;
    Record record;
    record.fill(0xA5);
    fields.Get(kRecord).CopyRecord(record);
    Require(record == *expected.record);
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzInput input(data, size);
    CompactFields<kFields> fields;
    Expected expected;
    for (std::size_t step = 0; step < 24; ++step)
    {
        const auto choice = input.Take<std::uint8_t>();
        const std::size_t field = choice % kFields;
        const bool unset = choice >= 0xF0;
        if (field == kRecord)
        {
            expected.record = unset ? std::nullopt : std::optional(input.Take<Record>());
            fields.Set(field, unset ? CompactValue() : CompactValue::OfRecord(*expected.record));
        }
        else
        {
            const std::wstring text = WideFromUtf8(input.TakeText(choice / 3));
            expected.texts[field] = unset ? std::nullopt : std::optional(text);
            fields.Set(field, unset ? CompactValue() : CompactValue::OfText(text));
        }
        Check(fields, expected);
    }
    CompactFields<kFields> copy;
    copy.Assign(fields.All());
    Check(copy, expected);
    return 0;
}
