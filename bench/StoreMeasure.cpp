#include "StoreMeasure.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <stdexcept>

namespace
{
constexpr int kRounds = 5;
// So many in each measurement that the steps of the processor time matter little.
constexpr ULONG kLeastItems = 10'000;

double ProcessorMilliseconds()
{
    FILETIME unused{};
    FILETIME kernel{};
    FILETIME user{};
    GetProcessTimes(GetCurrentProcess(), &unused, &unused, &kernel, &user);
    const auto ticks = [](FILETIME time) {
        return static_cast<double>(
            ULARGE_INTEGER{{time.dwLowDateTime, time.dwHighDateTime}}.QuadPart);
    };
    return (ticks(kernel) + ticks(user)) / 10'000.0;
}

double MedianOf(std::vector<double> values)
{
    std::ranges::sort(values);
    return values[values.size() / 2];
}

// One value for each round, by item.
struct Measured
{
    std::vector<double> elapsedMicroseconds;
    std::vector<double> processorMicroseconds;
};

// One round, in milliseconds of an item.
Times MeasureOnce(const FolderWork& folder, const std::function<ULONG()>& work)
{
    const ULONG runs = std::max(kLeastItems / folder.size, ULONG{1});
    ULONG came = 0;
    const Times times = TimesOf([&] {
        for (ULONG run = 0; run < runs; ++run)
            came += work();
    });
    if (came != runs * folder.size)
        throw std::runtime_error("not every item came");
    return {times.elapsed / came, times.processor / came};
}

void Append(Measured& all, const Times& one)
{
    all.elapsedMicroseconds.push_back(one.elapsed * 1000.0);
    all.processorMicroseconds.push_back(one.processor * 1000.0);
}
} // namespace

void Require(HRESULT result, const char* what)
{
    if (FAILED(result))
    {
        char text[100];
        std::snprintf(text, sizeof text, "%s: %08lX", what, static_cast<unsigned long>(result));
        throw std::runtime_error(text);
    }
}

Times TimesOf(const std::function<void()>& work)
{
    using Clock = std::chrono::steady_clock;
    const auto start = Clock::now();
    const double processorStart = ProcessorMilliseconds();
    work();
    return {std::chrono::duration<double, std::milli>(Clock::now() - start).count(),
            ProcessorMilliseconds() - processorStart};
}

void PrintRow(const std::string& what, double value, const char* unit, double most)
{
    std::printf("%-58s %9.2f %-3s", what.c_str(), value, unit);
    if (most != 0.0)
        std::printf(" %9.2f   %s", most, value <= most ? "pass" : "MISS");
    std::printf("\n");
    std::fflush(stdout);
}

void MeasureFolders(const std::string& what,
                    const std::vector<FolderWork>& folders,
                    double mostBesideBare,
                    double mostBesideFirst)
{
    std::vector<Measured> own(folders.size());
    std::vector<Measured> bare(folders.size());
    std::vector<Measured> creations(folders.size());
    for (int round = 0; round <= kRounds; ++round)
        for (std::size_t i = 0; i < folders.size(); ++i)
        {
            const Times ownOnce = MeasureOnce(folders[i], folders[i].own);
            const Times bareOnce = MeasureOnce(folders[i], folders[i].bare);
            const Times creationsOnce = MeasureOnce(folders[i], folders[i].creations);
            if (round == 0)
                continue; // warms up
            Append(own[i], ownOnce);
            Append(bare[i], bareOnce);
            Append(creations[i], creationsOnce);
        }
    for (std::size_t i = 0; i < folders.size(); ++i)
    {
        const std::string size = std::to_string(folders[i].size);
        PrintRow(
            "bare calls for " + size + ", each item", MedianOf(bare[i].elapsedMicroseconds), "us");
        PrintRow("bare creations for " + size + ", each item",
                 MedianOf(creations[i].elapsedMicroseconds),
                 "us");
        PrintRow(what + " " + size + ", each item", MedianOf(own[i].elapsedMicroseconds), "us");
        const double processor = MedianOf(own[i].processorMicroseconds);
        PrintRow("  of which this process works", processor, "us");
        const double bareProcessor = MedianOf(bare[i].processorMicroseconds);
        PrintRow("  beside the bare calls and creations",
                 processor / (bareProcessor + MedianOf(creations[i].processorMicroseconds)),
                 "x",
                 mostBesideBare);
        PrintRow("  beside the bare calls alone", processor / bareProcessor, "x");
        if (i > 0)
            PrintRow("  beside each item of " + std::to_string(folders[0].size),
                     processor / MedianOf(own[0].processorMicroseconds),
                     "x",
                     mostBesideFirst);
    }
}
