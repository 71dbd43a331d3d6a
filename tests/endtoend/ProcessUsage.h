// What another process holds of the system's resources, counted exactly. Its committed memory says
// little: the stack of one more thread of the marshaller counts as much as a million small blocks.
#pragma once

#include "support/HeapUse.h"

#include <cstdint>
#include <functional>

// The heaps of a process, counted from inside it by HeapCounterLibrary, which leaves the result in
// a mapping of this name and the id of the process behind it.
inline constexpr wchar_t kProcessHeapsName[] = L"Local\\pim-tests-heaps-";
struct ProcessHeaps
{
    HeapUse own;    // of the C run-time library: what our code makes with new, and nothing else
    HeapUse shared; // all others: strings, the system's libraries, the marshaller
    bool areCounted = false;
};

struct ProcessUsage
{
    DWORD handles = 0;
    ProcessHeaps heaps;
};
std::ostream& operator<<(std::ostream& out, const ProcessUsage& usage);

// A test failure where it cannot be told. No call may run in the process meanwhile.
ProcessUsage UsageOf(DWORD processId);

// What some work leaves behind in a process; negative where it has less than before.
struct ProcessGrowth
{
    std::int64_t handles = 0;
    std::int64_t ownBlocks = 0;
    std::int64_t ownBytes = 0;
    std::int64_t sharedBlocks = 0;
    std::int64_t sharedBytes = 0;
};
std::ostream& operator<<(std::ostream& out, const ProcessGrowth& growth);

// Does the work and counts before and after it.
ProcessGrowth GrowthOver(DWORD processId, const std::function<void()>& work);
// The same. The runtime's threads end in their own time: where handles or own blocks are more than
// before they are counted again for some seconds.
ProcessGrowth SettledGrowthOver(DWORD processId, const std::function<void()>& work);

// Nothing of our own stays, to the byte, and of what is shared with the runtime no more than the
// plain server kept for the same number of objects. Its threads come and go: a few blocks are
// within the bound, one block for every fourth object is not.
void ExpectNothingLeft(const ProcessGrowth& growth, const ProcessGrowth& plain, int objects);
