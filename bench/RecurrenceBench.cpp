// Reading and writing one recurrence blob beside a copy of the record that it fills: a usual rule,
// one with a few exceptions, and the fullest that a record holds. Targets say how many times as
// long as the copy it takes, side by side within one run. Ends with 0 also where a target is
// missed.
#include "bench/Measure.h"
#include "bench/Results.h"
#include "outlook/calendar/RecurrencePattern.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace
{
constexpr unsigned kWestern = 1252;
constexpr DATE kDay = 45356.0; // 2024-03-05
constexpr FirstInstance kFirst{kDay + 0.40625, 60};
constexpr AppointmentTexts kTexts{L"Weekly meeting of the team", L"Room 5"};

void PutText(std::string_view text, std::uint16_t (&target)[260])
{
    std::ranges::copy(text.substr(0, 259), target);
}

// A weekly rule with that many deleted and modified instances.
std::unique_ptr<_tagRecurringInfo> RecordWith(int deleted, int modified)
{
    auto record = std::make_unique<_tagRecurringInfo>();
    record->eRecurType = Weekly;
    record->tWeekly.ulIntervalWeek = 1;
    record->tWeekly.bValidWeekday[2] = -1;
    for (int i = 0; i < deleted; ++i)
        record->arrDeletedInstance[i] = kDay + 7 * (i + 1);
    for (int i = 0; i < modified; ++i)
    {
        _tagModifiedInstanceInfo& instance = record->arrModifiedInstance[i];
        instance.dtModifiedDate = kDay + 7 * (i + 1);
        instance.dtStartDateTime = instance.dtModifiedDate + 0.4375;
        instance.dtEndDateTime = instance.dtModifiedDate + 0.5;
        instance.dtOriginalDateTime = instance.dtModifiedDate + 0.40625;
        PutText("Meeting of the team with guests", instance.szSubject);
        PutText("Conference room 12", instance.szLocation);
    }
    return record;
}

// Keeps the compiler from leaving out what nobody looks at.
void Use(const void* memory)
{
    asm volatile("" : : "g"(memory) : "memory");
}

constexpr int kTimes = 20'000;
constexpr double kMost = 3.0;

void Print(const std::string& what, const Timings& timings)
{
    PrintRow(what, timings.milliseconds * 1e6 / kTimes, "ns");
    PrintRow("  copy of the record", timings.peerMilliseconds * 1e6 / kTimes, "ns");
    PrintTarget(
        what + ", beside a copy of its record", timings.TimesAsLong(), "x", {Bound::Under, kMost});
}

void Measure(int deleted, int modified)
{
    const auto record = RecordWith(deleted, modified);
    const auto other = std::make_unique<_tagRecurringInfo>();
    std::vector<std::byte> blob;
    if (EncodeRecurrencePattern(*record, kFirst, kWestern, blob) != CodecStatus::Ok)
    {
        std::fprintf(stderr, "recurrence_bench: no blob\n");
        std::exit(1);
    }
    const auto copy = [&] {
        for (int i = 0; i < kTimes; ++i)
        {
            std::memcpy(other.get(), record.get(), sizeof(*other));
            Use(other.get());
        }
    };
    const auto decode = [&] {
        for (int i = 0; i < kTimes; ++i)
        {
            const RecurrenceRead read = DecodeRecurrencePattern(blob, kTexts, kWestern, *other);
            Use(&read);
            Use(other.get());
        }
    };
    const auto encode = [&] {
        for (int i = 0; i < kTimes; ++i)
        {
            const CodecStatus status = EncodeRecurrencePattern(*record, kFirst, kWestern, blob);
            Use(&status);
            Use(blob.data());
        }
    };
    const std::string what = " a recurrence with " + std::to_string(deleted) + " deleted and " +
                             std::to_string(modified) + " modified instances";
    Print("reading" + what, MeasureBeside(decode, copy));
    Print("writing" + what, MeasureBeside(encode, copy));
}
} // namespace

int main()
{
    Measure(0, 0);
    Measure(4, 2);
    Measure(64, 32);
    return 0;
}
