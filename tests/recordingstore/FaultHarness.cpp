#include "tests/recordingstore/FaultHarness.h"

#include "platform/ScopeExit.h"
#include "tests/recordingstore/HostileAnswers.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <exception>
#include <vector>

namespace
{
constexpr int kMostFailingRuns = 10;

// What the handler of a crash prints.
char g_running[512];

LONG CALLBACK TellCrash(EXCEPTION_POINTERS* exception)
{
    const DWORD code = exception->ExceptionRecord->ExceptionCode;
    if (code == EXCEPTION_ACCESS_VIOLATION || code == EXCEPTION_STACK_OVERFLOW ||
        code == EXCEPTION_ILLEGAL_INSTRUCTION)
    {
        std::fputs(g_running, stderr);
        std::fflush(stderr);
    }
    return EXCEPTION_CONTINUE_SEARCH;
}

std::string Describe(const FaultScenario& scenario, const FaultRun& run)
{
    if (run.fault == StoreFault::None)
        return scenario.name + " without a failure";
    return scenario.name + ", call " + std::to_string(run.call) + " " + run.line + ": " +
           NameOf(run.fault);
}

std::string LastingLine(const FaultScenario& scenario, const std::string& line)
{
    return scenario.lasting ? scenario.lasting(line) : line;
}

// The line of the call of that number; empty where there was none.
std::string LineOf(const FaultScenario& scenario, const RecordingStore& store, unsigned number)
{
    for (const RecordedStoreCall& call : store.Record())
        if (call.number == number)
            return LastingLine(scenario, call.text);
    return {};
}

// What is stored of the objects, as text.
std::vector<std::string> StoredOf(const RecordingStore& store,
                                  const std::vector<std::string>& objects)
{
    std::vector<std::string> lines;
    for (const std::string& object : objects)
    {
        lines.push_back(object + (store.Exists(object) ? "" : " is gone"));
        if (!store.Exists(object))
            continue;
        for (std::string& line : store.PropsOf(object))
            lines.push_back(std::move(line));
    }
    return lines;
}

void RunOnce(const FaultScenario& scenario, const FaultRun& run, RecordingStore& store)
{
    const std::string text = Describe(scenario, run);
    std::snprintf(g_running, sizeof g_running, "crash in %s\n", text.c_str());
    SCOPED_TRACE(text);
    if (scenario.setUp)
        scenario.setUp(store);
    const std::vector<std::string> before = StoredOf(store, scenario.bystanders);
    if (run.call)
        store.Fail(run.call, run.fault);
    try
    {
        scenario.action();
    }
    catch (const std::exception& exception)
    {
        ADD_FAILURE() << "threw: " << exception.what();
    }
    catch (...)
    {
        ADD_FAILURE() << "threw";
    }
    EXPECT_EQ("", store.Complaints());
    EXPECT_EQ(before, StoredOf(store, scenario.bystanders));
    // Up to the failing call, the work is the same each time.
    if (run.call)
    {
        EXPECT_EQ(run.line, LineOf(scenario, store, run.call));
    }
    if (scenario.check)
        scenario.check(run, store);
}

// The ways in which a call is to go wrong, by its line.
using PlanCall = std::function<std::vector<StoreFault>(const std::string& line)>;
// What holds after each run with a failing call.
using CheckPlanned = std::function<void(const FaultRun& run, const RecordingStore& store)>;

int ResultParts()
{
    return testing::UnitTest::GetInstance()->current_test_info()->result()->total_part_count();
}

FaultTotals RunPlanned(const FaultScenario& scenario,
                       const PlanCall& plan,
                       const CheckPlanned& check)
{
    void* const handler = AddVectoredExceptionHandler(1, TellCrash);
    const ScopeExit remove([handler] { RemoveVectoredExceptionHandler(handler); });

    FaultTotals totals;
    std::vector<std::string> lines;
    {
        RecordingStore store;
        RunOnce(scenario, {}, store);
        totals.calls = store.FailableCalls();
        for (const RecordedStoreCall& call : store.Record())
            if (call.number)
                lines.push_back(LastingLine(scenario, call.text));
    }
    EXPECT_GT(totals.calls, 0u) << scenario.name << " calls nothing";
    int failingRuns = 0;
    for (unsigned number = 1; number <= totals.calls; ++number)
        for (const StoreFault fault : plan(lines[number - 1]))
        {
            const int before = ResultParts();
            RecordingStore store;
            const FaultRun run = {number, fault, lines[number - 1]};
            RunOnce(scenario, run, store);
            ++totals.runs;
            if (check)
                check(run, store);
            failingRuns += ResultParts() > before;
            if (failingRuns == kMostFailingRuns)
            {
                ADD_FAILURE() << "more runs are left out";
                return totals;
            }
        }
    return totals;
}

// Others are ways of failing that hostile stores have, too.
bool IsSpoiling(StoreFault answer)
{
    return answer > StoreFault::FailsWithWork;
}
} // namespace

FaultTotals RunFaults(const FaultScenario& scenario, std::span<const StoreFault> faults)
{
    const std::vector<StoreFault> all(faults.begin(), faults.end());
    const FaultTotals totals = RunPlanned(
        scenario, [&](const std::string&) { return all; }, nullptr);
    std::printf("%s: %u calls, %u runs\n", scenario.name.c_str(), totals.calls, totals.runs);
    return totals;
}

FaultTotals RunHostileAnswers(const FaultScenario& scenario)
{
    const FaultTotals totals = RunPlanned(
        scenario, HostileAnswersFor, [&](const FaultRun& run, const RecordingStore& store) {
            SCOPED_TRACE(Describe(scenario, run));
            EXPECT_TRUE(!IsSpoiling(run.fault) || store.SpoiledOutputs() > 0);
            EXPECT_LT(store.FailableCalls(), kMostCalls);
        });
    EXPECT_GT(totals.runs, 0u) << scenario.name;
    std::printf("[   CALLS  ] %s: %u calls, %u hostile runs\n",
                scenario.name.c_str(),
                totals.calls,
                totals.runs);
    return totals;
}
