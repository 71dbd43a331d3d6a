// Timing of work and its peer side by side within one run. Processor time counts, so that other
// programs on the machine matter little; each side runs in processes of its own, so that neither
// works on the heap that the other left behind.
#pragma once

#include "bench/Median.h"

#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <functional>
#include <vector>

#include <sys/wait.h>
#include <unistd.h>

struct Timings
{
    double milliseconds;     // median of the work
    double peerMilliseconds; // median of its peer

    double TimesAsLong() const { return milliseconds / peerMilliseconds; }
    double TimesAsFast() const { return peerMilliseconds / milliseconds; }
};

// The processor time of one run: the median of a few in a new process, behind one that does not
// count.
inline double MillisecondsOf(const std::function<void()>& run)
{
    int ends[2];
    std::fflush(stdout);
    const pid_t child = pipe(ends) == 0 ? fork() : -1;
    if (child == 0)
    {
        constexpr int kRuns = 5;
        std::vector<double> times;
        run();
        for (int i = 0; i < kRuns; ++i)
        {
            const std::clock_t start = std::clock();
            run();
            times.push_back(static_cast<double>(std::clock() - start) * 1000.0 / CLOCKS_PER_SEC);
        }
        const double time = MedianOf(times);
        _exit(write(ends[1], &time, sizeof(time)) == sizeof(time) ? 0 : 1);
    }
    double time = 0.0;
    int status = 1;
    if (child < 0 || waitpid(child, &status, 0) != child || status != 0 ||
        read(ends[0], &time, sizeof(time)) != sizeof(time))
    {
        std::fprintf(stderr, "bench: a round failed\n");
        std::exit(1);
    }
    close(ends[0]);
    close(ends[1]);
    return time;
}

// Runs both in turn.
inline Timings MeasureBeside(const std::function<void()>& work, const std::function<void()>& peer)
{
    constexpr int kRounds = 5;
    std::vector<double> own;
    std::vector<double> other;
    for (int round = 0; round < kRounds; ++round)
    {
        own.push_back(MillisecondsOf(work));
        other.push_back(MillisecondsOf(peer));
    }
    return {MedianOf(own), MedianOf(other)};
}

// One line: both medians and how many times as fast as its peer the work is.
inline void PrintBeside(const char* what, const char* peer, const Timings& timings)
{
    std::printf("%-44s %9.2f ms   %-22s %9.2f ms   %6.2f times as fast\n",
                what,
                timings.milliseconds,
                peer,
                timings.peerMilliseconds,
                timings.TimesAsFast());
}
