// Lets each call of a piece of work fail in turn and looks what remains.
//
//     const FaultTotals totals = RunFaults({
//         .name = "logon",
//         .setUp = [](RecordingStore& store) { store.AddUsualFolders(); },
//         .action = [&] { result = LogOnAndTearDown(); },
//         .check = [&](const FaultRun& run, RecordingStore& store) { EXPECT_...; },
//     });
//
// The work runs once as it is, to count its calls, and then once for each call and each way of
// failing. Every run gets an empty store of its own, which setUp fills. The action does all of the
// work, teardown included: when it returns, nothing of the store may be held. After each run the
// harness expects that no interface and no buffer is left, that no call was made that no caller may
// make, and that the library was uninitialised as often as initialised. A crash tells on the
// standard error stream in which run it came. Totals are printed.
#pragma once

#include "tests/recordingstore/RecordingStore.h"

#include <functional>
#include <span>
#include <string>
#include <vector>

struct FaultRun
{
    unsigned call = 0; // number of the failing call; 0 in the run without a failure
    StoreFault fault = StoreFault::None;
    std::string line; // the call
};

struct FaultScenario
{
    std::string name;
    std::function<void(RecordingStore&)> setUp;
    std::function<void()> action;
    // Looks at results and record, after each run. May be empty.
    std::function<void(const FaultRun&, RecordingStore&)> check;
    // What of a call's line is the same in every run; all of it where this is empty.
    std::function<std::string(const std::string& line)> lasting = {};
    // Objects that the work has no business with: no run changes their properties or takes them
    // away.
    std::vector<std::string> bystanders = {};
};

struct FaultTotals
{
    unsigned calls = 0; // of the work that can fail
    unsigned runs = 0;  // with a failing call
};

// Reports by EXPECT; stops early after some failing runs.
FaultTotals RunFaults(const FaultScenario& scenario,
                      std::span<const StoreFault> faults = kStoreFaults);

// The same with what a hostile store answers (see HostileAnswers.h): each answer to each call that
// has such outputs. No answer makes the work call as often as kMostCalls.
FaultTotals RunHostileAnswers(const FaultScenario& scenario);

inline constexpr unsigned kMostCalls = 200'000;
