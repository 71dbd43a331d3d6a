// Reading and writing one recurrence blob beside a copy of the record that it fills: a usual rule,
// one with a few exceptions, and the fullest that a record holds. The target is less than three
// times the copy.
#include "outlook/calendar/RecurrencePattern.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstring>
#include <iterator>
#include <memory>
#include <string_view>

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

void CopyRecord(benchmark::State& state)
{
    const auto from = RecordWith(4, 2);
    const auto to = std::make_unique<_tagRecurringInfo>();
    for (auto _ : state)
    {
        std::memcpy(to.get(), from.get(), sizeof(*to));
        benchmark::DoNotOptimize(to.get());
        benchmark::ClobberMemory();
    }
}
BENCHMARK(CopyRecord);

void DecodeRecurrence(benchmark::State& state)
{
    const auto record =
        RecordWith(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
    std::vector<std::byte> blob;
    if (EncodeRecurrencePattern(*record, kFirst, kWestern, blob) != CodecStatus::Ok)
        state.SkipWithError("no blob");
    for (auto _ : state)
    {
        benchmark::DoNotOptimize(DecodeRecurrencePattern(blob, kTexts, kWestern, *record));
        benchmark::DoNotOptimize(record.get());
        benchmark::ClobberMemory();
    }
}
BENCHMARK(DecodeRecurrence)->Args({0, 0})->Args({4, 2})->Args({64, 32});

void EncodeRecurrence(benchmark::State& state)
{
    const auto record =
        RecordWith(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
    std::vector<std::byte> blob;
    for (auto _ : state)
    {
        benchmark::DoNotOptimize(EncodeRecurrencePattern(*record, kFirst, kWestern, blob));
        benchmark::DoNotOptimize(blob.data());
        benchmark::ClobberMemory();
    }
}
BENCHMARK(EncodeRecurrence)->Args({0, 0})->Args({4, 2})->Args({64, 32});
} // namespace
