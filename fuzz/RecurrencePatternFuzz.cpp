// Any recurrence blob is read within its bytes, the same way twice; what it said is in the bytes
// that the reader reports; and what is written of it settles: from the second time on reading and
// writing give the same record and the same blob.
#include "Require.h"

#include "outlook/calendar/RecurrencePattern.h"

#include <cstdint>
#include <cstring>
#include <vector>

namespace
{
constexpr unsigned kCodePages[] = {1252, 932, 65001};

bool Same(const _tagRecurringInfo& left, const _tagRecurringInfo& right)
{
    return std::memcmp(&left, &right, sizeof(left)) == 0;
}

// From memory of exactly that size.
RecurrenceRead Decode(const std::vector<std::byte>& blob,
                      unsigned codePage,
                      _tagRecurringInfo& record)
{
    const RecurrenceRead read =
        DecodeRecurrencePattern(blob, {L"Own subject", L"Own place"}, codePage, record);
    Require(read.offset <= blob.size() && read.exceptions <= kMaxModifiedInstances);
    return read;
}

void CheckTexts(const _tagRecurringInfo& record)
{
    for (const _tagModifiedInstanceInfo& instance : record.arrModifiedInstance)
        Require(instance.szSubject[259] == 0 && instance.szLocation[259] == 0);
}

void CheckWriting(_tagRecurringInfo record, unsigned codePage)
{
    // 2024-03-05 09:30 for an hour.
    constexpr FirstInstance kFirst{45356.395833333336, 60};
    std::vector<std::byte> before;
    for (int time = 0; time < 4; ++time)
    {
        std::vector<std::byte> blob;
        if (EncodeRecurrencePattern(record, kFirst, codePage, blob) != CodecStatus::Ok)
        {
            // A monthly interval of 65,536 is written as 0.
            Require(blob.empty() && time <= 1);
            return;
        }
        _tagRecurringInfo again;
        Require(Decode(blob, codePage, again).status == CodecStatus::Ok);
        if (time == 3)
            Require(blob == before && Same(record, again));
        before = blob;
        record = again;
    }
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const auto* const bytes = reinterpret_cast<const std::byte*>(data);
    const std::vector<std::byte> blob(bytes, bytes + size);
    const unsigned codePage = kCodePages[size % 3];
    _tagRecurringInfo record;
    std::memset(&record, 0xA5, sizeof(record));
    const RecurrenceRead read = Decode(blob, codePage, record);
    CheckTexts(record);

    _tagRecurringInfo second;
    std::memset(&second, 0x5A, sizeof(second));
    const std::vector<std::byte> used(bytes, bytes + read.offset);
    if (read.status == CodecStatus::Ok)
    {
        Require(Decode(used, codePage, second).exceptions == read.exceptions);
        Require(Same(record, second));
        CheckWriting(record, codePage);
    }
    else
    {
        _tagRecurringInfo zeros;
        std::memset(&zeros, 0, sizeof(zeros));
        Require(Decode(used, codePage, second).status != CodecStatus::Ok);
        Require(Same(record, zeros) && Same(second, zeros));
    }
    return 0;
}
