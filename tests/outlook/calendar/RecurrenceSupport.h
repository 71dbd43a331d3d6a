// What the tests of recurrences share: dates, blobs from hexadecimal files and from fields, and the
// text of a record.
#pragma once

#include "platform/ContractRecords.h"

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

// A DATE and minutes since 1601, by the proleptic Gregorian calendar.
DATE DateOf(int year, int month, int day, int hour = 0, int minute = 0);
std::uint32_t MinutesAt(int year, int month, int day, int hour = 0, int minute = 0);

// The bytes of a file below tests/data, in hexadecimal digits; "#" and what follows it on a line is
// a comment. Fails the test where there is no such file.
std::vector<std::byte> HexFile(const std::string& name);
std::vector<std::byte> BytesOf(std::string_view text);
std::string HexOf(const std::vector<std::byte>& bytes);

// Every field of a record that is not zero, one a line: "weekly.days -M-W---". The arrays' entries
// come by index. An equal text means an equal record, but for padding and what lies behind the end
// of a text.
std::string TextOf(const _tagRecurringInfo& record);

_tagRecurringInfo NoRecurrence();
// -1 for each day that is named: 0 is Sunday.
void SetWeekdays(VARIANT_BOOL (&weekdays)[7], std::initializer_list<int> days);
// Up to 260 units, so that a text without an end can be put.
void PutText(std::wstring_view text, std::uint16_t (&target)[260]);

// A blob from its fields.
class BlobFields
{
  public:
    BlobFields& U8(std::uint32_t value) { return Put(value, 1); }
    BlobFields& U16(std::uint32_t value) { return Put(value, 2); }
    BlobFields& U32(std::uint32_t value) { return Put(value, 4); }
    BlobFields& Text(std::string_view bytes)
    {
        for (const char letter : bytes)
            U8(static_cast<std::uint8_t>(letter));
        return *this;
    }
    BlobFields& Zeros(std::size_t count)
    {
        m_bytes.insert(m_bytes.end(), count, std::byte{0});
        return *this;
    }
    // Versions to sliding flag.
    BlobFields& Pattern(std::uint32_t frequency, std::uint32_t type, std::uint32_t period);
    // End type to the end of both lists of dates.
    BlobFields& Lists(std::uint32_t endType,
                      std::uint32_t occurrences,
                      const std::vector<std::uint32_t>& deleted,
                      const std::vector<std::uint32_t>& modified);
    // Start date, end date, versions, offsets of the day, count of exceptions.
    BlobFields& Span(std::uint32_t startMinutes,
                     std::uint32_t endMinutes,
                     std::uint32_t exceptions = 0);

    const std::vector<std::byte>& Bytes() const { return m_bytes; }

  private:
    BlobFields& Put(std::uint32_t value, int bytes)
    {
        for (int i = 0; i < bytes; ++i)
            m_bytes.push_back(static_cast<std::byte>(value >> (8 * i) & 0xFF));
        return *this;
    }

    std::vector<std::byte> m_bytes;
};
