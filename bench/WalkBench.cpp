#include "WalkBench.h"

#include "Median.h"
#include "Results.h"
#include "StoreMeasure.h"

#include "support/HeapUse.h"

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <stdexcept>

namespace
{
constexpr ULONG kSizes[] = {1'000, 3'000, 10'000, 30'000, 100'000};
constexpr ULONG kSizeOfWalks = 10'000;
constexpr int kRounds = 1;
// So many in each measurement that the steps of the processor time matter little.
constexpr ULONG kLeastItems = 10'000;

constexpr Limit kBesideFirst = {Bound::AtMost, 1.3};
constexpr Limit kBesideBare = {Bound::AtMost, 1.5};

// One value for each round, in microseconds of an item.
struct Series
{
    std::vector<double> elapsed;
    std::vector<double> processor;

    void Append(const Times& times, ULONG items)
    {
        elapsed.push_back(times.elapsed * 1000.0 / items);
        processor.push_back(times.processor * 1000.0 / items);
    }
};

// What is measured of one size.
struct SizeResults
{
    ULONG size;
    WalkBench::Folders folders;
    Series loads;
    Series walks;
    Series bares;
    Series creations;

    double Processor() const { return MedianOf(loads.processor) + MedianOf(walks.processor); }
    double Elapsed() const { return MedianOf(loads.elapsed) + MedianOf(walks.elapsed); }
    double BareProcessor() const
    {
        return MedianOf(bares.processor) + MedianOf(creations.processor);
    }
    double ProcessorBesideBare() const { return Processor() / BareProcessor(); }
};

void RequireAll(ULONG came, ULONG wanted)
{
    if (came != wanted)
        throw std::runtime_error("not every item came");
}

// So many tables of that size at once that there are enough items.
void MeasureOnce(const WalkBench& bench, CMAPIHelper& helper, SizeResults& results)
{
    const ULONG tableCount = std::max(kLeastItems / results.size, ULONG{1});
    const ULONG items = tableCount * results.size;
    {
        std::vector<std::unique_ptr<CContentTable>> tables;
        for (ULONG i = 0; i < tableCount; ++i)
            tables.push_back(bench.open(results.folders, helper));
        const Times loading = TimesOf([&] {
            for (const auto& table : tables)
                table->GetItemIDs();
        });
        ULONG came = 0;
        const Times walking = TimesOf([&] {
            for (const auto& table : tables)
                came += bench.walk(*table, results.size);
        });
        RequireAll(came, items);
        results.loads.Append(loading, items);
        results.walks.Append(walking, items);
    }
    ULONG came = 0;
    const Times bare = TimesOf([&] {
        for (ULONG i = 0; i < tableCount; ++i)
            came += bench.bare(results.folders, helper.Proxy());
    });
    RequireAll(came, items);
    results.bares.Append(bare, items);
    results.creations.Append(TimesOf([&] { CreateItems(bench.itemClass, items); }), items);
}

void PrintTimes(const WalkBench& bench, const SizeResults& results)
{
    const std::string count = CountText(results.size) + " " + bench.what;
    const auto print = [](const std::string& what, const Series& series) {
        PrintRow(what + ", elapsed", MedianOf(series.elapsed), "us");
        PrintRow(what + ", processor", MedianOf(series.processor), "us");
    };
    print("loading " + count + ", each", results.loads);
    print("walking " + count + ", each", results.walks);
    print("bare calls for " + count + ", each", results.bares);
    print("bare creations for " + count + ", each", results.creations);
    PrintRow("loading and walking beside the bare calls and creations",
             results.ProcessorBesideBare(),
             "x");
    PrintRow("  of elapsed time",
             results.Elapsed() /
                 (MedianOf(results.bares.elapsed) + MedianOf(results.creations.elapsed)),
             "x");
    PrintRow("loading and walking beside the bare calls alone",
             results.Processor() / MedianOf(results.bares.processor),
             "x");
    PrintGrowth(bench.what, results.size, results.Processor());
    PrintGrowth(
        "bare calls and creations for " + bench.what, results.size, results.BareProcessor());
}

void PrintTargets(const WalkBench& bench, const std::vector<SizeResults>& all)
{
    const SizeResults& first = all.front();
    const SizeResults& last = all.back();
    const std::string besideFirst =
        " " + bench.what + ": each, beside each of " + CountText(first.size);
    const auto larger = std::ranges::find(all, kSizeOfWalks, &SizeResults::size);
    if (bench.mostOfWalk != 0.0 && larger != all.end())
        PrintTarget("walking " + CountText(larger->size) + besideFirst,
                    MedianOf(larger->walks.processor) / MedianOf(first.walks.processor),
                    "x",
                    {Bound::AtMost, bench.mostOfWalk});
    PrintTarget("loading and walking " + CountText(last.size) + besideFirst,
                last.Processor() / first.Processor(),
                "x",
                kBesideFirst);
    double worst = 0.0;
    for (const SizeResults& results : all)
        worst = std::max(worst, results.ProcessorBesideBare());
    PrintTarget(
        "loading and walking " + bench.what +
            ", beside the bare calls of the store and bare creations, the worst of all sizes",
        worst,
        "x",
        kBesideBare);
}

// Every block in use of every heap of the process, with the heap's own part of it.
double MemoryInUse()
{
    constexpr SIZE_T kBlockOverhead = 16; // of a 64-bit process
    const HeapUse use = UseOfAllHeaps();
    return static_cast<double>(use.bytes + use.blocks * kBlockOverhead);
}

double BytesOfEach(ULONG items, const std::function<void()>& load)
{
    const double before = MemoryInUse();
    load();
    return (MemoryInUse() - before) / items;
}

// An entry ID as Outlook makes them, 70 bytes, in text.
std::wstring LongEntryID(const wchar_t* kind, ULONG number)
{
    wchar_t tail[20];
    std::swprintf(tail, 20, L"%ls%08lX", kind, number);
    return std::wstring(140 - std::wcslen(tail), L'0') + tail;
}

void MeasureMemory(const WalkBench& bench, CMAPIHelper& helper, const SizeResults& largest)
{
    const Limit limit = {Bound::Under, bench.mostBytes};
    {
        const auto table = bench.open(largest.folders, helper);
        PrintTarget("memory of each of " + CountText(largest.size) + " loaded " + bench.what,
                    BytesOfEach(largest.size, [&] { table->GetItemIDs(); }),
                    "B",
                    limit);
    }
    // Those of the embedded store have a third of that length.
    EntryList list;
    const double bytes = BytesOfEach(largest.size, [&] {
        for (ULONG i = 0; i < largest.size; ++i)
            list.Append(bench.folders > 1 ? LongEntryID(L"F", i % bench.folders) : std::wstring(),
                        LongEntryID(L"A", i),
                        LongEntryID(bench.folders > 1 ? L"B" : L"A", i),
                        0.0);
    });
    PrintTarget("memory of each of the loaded " + bench.what +
                    " with entry IDs of Outlook's length",
                bytes,
                "B",
                limit);
}

void MeasureAll(const WalkBench& bench, const ScratchDirectory& scratch, ULONG largest)
{
    std::vector<ULONG> sizes;
    std::ranges::copy_if(
        kSizes, std::back_inserter(sizes), [=](ULONG size) { return size <= largest; });
    if (sizes.empty())
        throw std::runtime_error("the smallest table has 1000 items");
    FillStore(scratch, sizes, bench.folders, bench.properties);

    BenchStore store;
    std::vector<SizeResults> all;
    for (const ULONG size : sizes)
        all.push_back({size, store.Folders(size, bench.folders), {}, {}, {}, {}});
    SizeResults warmUp{sizes.front(), all.front().folders, {}, {}, {}, {}};
    MeasureOnce(bench, *store.helper, warmUp);
    for (int round = 0; round < kRounds; ++round)
        for (SizeResults& results : all)
            MeasureOnce(bench, *store.helper, results);
    for (const SizeResults& results : all)
        PrintTimes(bench, results);
    PrintTargets(bench, all);
    MeasureMemory(bench, *store.helper, all.back());
}
} // namespace

int RunWalkBench(const char* name, int argc, wchar_t** argv, const WalkBench& bench)
{
    const ULONG largest =
        argc > 1 ? std::wcstoul(argv[1], nullptr, 10) : kSizes[std::size(kSizes) - 1];
    return RunOverStore(
        name, [&](const ScratchDirectory& scratch) { MeasureAll(bench, scratch, largest); });
}
