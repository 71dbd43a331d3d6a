// The conversions that run once or more per item: time per call, and bytes per second of texts.
#include "service/StringHelpers.h"
#include "service/TextConversions.h"
#include "service/TimeConversions.h"

#include <benchmark/benchmark.h>

namespace
{
void DateToCalendarTime(benchmark::State& state)
{
    DATE date = 41703.75;
    for (auto _ : state)
    {
        SYSTEMTIME time{};
        benchmark::DoNotOptimize(DateToSystemTime(date, time));
        benchmark::DoNotOptimize(time);
        date += 0.013;
        if (date > 60000.0)
            date = 41703.75;
    }
}
BENCHMARK(DateToCalendarTime);

void DecodeText(benchmark::State& state)
{
    std::string text;
    while (text.size() < static_cast<std::size_t>(state.range(0)))
        text += "SUMMARY:a line of text with \xC3\xA9 and \xE2\x82\xAC\r\n";
    for (auto _ : state)
        benchmark::DoNotOptimize(WideFromUtf8(text));
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}
BENCHMARK(DecodeText)->Arg(64)->Arg(65536);

void EncodeText(benchmark::State& state)
{
    const std::wstring text(static_cast<std::size_t>(state.range(0)), L'x');
    for (auto _ : state)
        benchmark::DoNotOptimize(Utf8FromWide(text));
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}
BENCHMARK(EncodeText)->Arg(64)->Arg(65536);

void ReplaceInText(benchmark::State& state)
{
    std::wstring text;
    while (text.size() < static_cast<std::size_t>(state.range(0)))
        text += L"some text\\, and more\\, ";
    for (auto _ : state)
        benchmark::DoNotOptimize(ReplaceAll(text.c_str(), L"\\,", L","));
    state.SetComplexityN(state.range(0));
}
BENCHMARK(ReplaceInText)->RangeMultiplier(8)->Range(1024, 524288)->Complexity(benchmark::oN);
} // namespace
