// What the heaps of this process hold: an exact count of every block in use, whichever library made
// it. Strings of the automation libraries count only where those do not keep freed ones for later:
// call SetOaNoCache first.
#pragma once

#include "platform/WindowsHeaders.h"

#include <algorithm>
#include <iterator>
#include <ostream>

// Automation's own switch, exported without a declaration in every toolchain.
extern "C" void WINAPI SetOaNoCache();

struct HeapUse
{
    SIZE_T blocks = 0;
    SIZE_T bytes = 0; // asked for, without the heap's own

    bool operator==(const HeapUse&) const = default;
    HeapUse& operator+=(const HeapUse& other) noexcept
    {
        blocks += other.blocks;
        bytes += other.bytes;
        return *this;
    }
};

inline std::ostream& operator<<(std::ostream& out, const HeapUse& use)
{
    return out << use.blocks << " blocks of " << use.bytes << " bytes";
}

// Calls take(entry) for each block in use of one heap; take must not use that heap.
template <typename Take> void ForEachBlockInUse(HANDLE heap, Take take)
{
    HeapLock(heap);
    PROCESS_HEAP_ENTRY entry{};
    while (HeapWalk(heap, &entry))
        if (entry.wFlags & PROCESS_HEAP_ENTRY_BUSY)
            take(entry);
    HeapUnlock(heap);
}

inline HeapUse UseOfHeap(HANDLE heap)
{
    HeapUse use;
    ForEachBlockInUse(heap, [&use](const PROCESS_HEAP_ENTRY& entry) {
        use += HeapUse{1, entry.cbData};
    });
    return use;
}

// All heaps of the process together.
inline HeapUse UseOfAllHeaps()
{
    HANDLE heaps[64];
    const DWORD count = std::min<DWORD>(GetProcessHeaps(std::size(heaps), heaps), std::size(heaps));
    HeapUse use;
    for (DWORD i = 0; i < count; ++i)
        use += UseOfHeap(heaps[i]);
    return use;
}
