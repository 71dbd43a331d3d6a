// Timing and printing of what the benchmarks over the embedded store measure. Ratios are those of
// processor time within one run, medians of interleaved rounds, so that other programs on the
// machine matter little; what the system does in other processes, as Wine's server does for file
// locks, is in the plain times alone.
#pragma once

#include "platform/WindowsHeaders.h"

#include <functional>
#include <string>
#include <vector>

// Throws std::runtime_error where the call failed.
void Require(HRESULT result, const char* what);

// What work took, in milliseconds.
struct Times
{
    double elapsed = 0.0;
    double processor = 0.0; // of this process alone, in steps of about 10 ms
};

Times TimesOf(const std::function<void()>& work);

// A line of the table: the value, and its target where there is one.
void PrintRow(const std::string& what, double value, const char* unit, double most = 0.0);

// Work on a folder of so many items, and what it cannot do without: the bare calls of the store,
// and one bare creation for each item. Each gives how many items came.
struct FolderWork
{
    ULONG size;
    std::function<ULONG()> own;
    std::function<ULONG()> bare;
    std::function<ULONG()> creations;
};

// Measures all of them in interleaved rounds and prints the lines of each.
//   what:             what the work is, as "loading and walking"
//   mostBesideBare:   the target beside the bare calls and creations
//   mostBesideFirst:  the target of an item beside one of the first folder
// Throws std::runtime_error where not every item came.
void MeasureFolders(const std::string& what,
                    const std::vector<FolderWork>& folders,
                    double mostBesideBare,
                    double mostBesideFirst);
