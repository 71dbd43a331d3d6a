// Loading and walking tables of 1,000 to 100,000 items over the embedded store, beside the bare
// calls of the store that this cannot do without and one bare creation for each item; and the
// memory that loaded tables take.
//
// Ratios are those of processor time within one run, medians of interleaved rounds, so that other
// programs on the machine matter little; what the system does in other processes, as Wine's server
// does for file locks, is in the elapsed times alone.
#pragma once

#include "BenchStore.h"

#include "outlook/store/ContentTable.h"
#include "platform/WindowsHeaders.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

struct WalkBench
{
    // The folders that hold all items of one size, the same number in each.
    using Folders = std::vector<Microsoft::WRL::ComPtr<IMAPIFolder>>;

    std::string what;                             // in the plural, as "contacts"
    ULONG folders;                                // divides every size
    std::function<std::string(ULONG)> properties; // see FillStore
    std::function<std::unique_ptr<CContentTable>(const Folders&, CMAPIHelper&)> open;
    // Walks a loaded table of so many items to its end. Both give how many items came.
    std::function<ULONG(CContentTable&, ULONG)> walk;
    std::function<ULONG(const Folders&, CNProxcy&)> bare;
    CLSID itemClass;  // what is created for each item
    double mostBytes; // of one item of a loaded table
    // How much one item of 10,000 may take beside one of 1,000 in a walk; 0 for no such target.
    double mostOfWalk;
};

// Takes from the command line how many items the largest table has: PROGRAM [LARGEST]. Prints every
// row.
// Returns: the program's exit code, 0 also where a target is missed.
int RunWalkBench(const char* name, int argc, wchar_t** argv, const WalkBench& bench);
