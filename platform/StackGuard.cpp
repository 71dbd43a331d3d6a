// What -fstack-protector asks of a program, in place of the compiler's own library: that one takes
// the guard from a cryptographic provider, whose loading costs a sixth of the server's start.
#include "platform/WindowsHeaders.h"

#include <ntsecapi.h>

#include <cstdint>

extern "C"
{
    // Read on entry and exit of each protected function.
    std::uintptr_t __stack_chk_guard; // NOLINT: the compiler's name

    // A frame was overrun, so that nothing of the process can be relied on.
    [[noreturn]] void __stack_chk_fail() // NOLINT: the compiler's name
    {
        TerminateProcess(GetCurrentProcess(), static_cast<UINT>(STATUS_STACK_BUFFER_OVERRUN));
        __builtin_trap();
    }
}

namespace
{
// Before all other constructors. It must not be protected itself: the guard changes in its frame.
__attribute__((constructor(101), no_stack_protector)) void MakeGuard()
{
    if (!RtlGenRandom(&__stack_chk_guard, sizeof(__stack_chk_guard)))
    {
        LARGE_INTEGER counter{};
        QueryPerformanceCounter(&counter);
        __stack_chk_guard = static_cast<std::uintptr_t>(counter.QuadPart) << 16 ^
                            reinterpret_cast<std::uintptr_t>(&counter);
    }
    // A zero byte at the lower end stops what copies texts.
    __stack_chk_guard &= ~std::uintptr_t{0xFF};
}
} // namespace
