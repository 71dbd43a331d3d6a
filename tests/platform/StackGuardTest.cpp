#include "platform/WindowsHeaders.h"

#include <gtest/gtest.h>

#include <cstdint>

extern "C" std::uintptr_t __stack_chk_guard;     // NOLINT: the compiler's name
extern "C" [[noreturn]] void __stack_chk_fail(); // NOLINT: the compiler's name

namespace
{
TEST(StackGuardTest, IsUnknownAboveAZeroByte)
{
    EXPECT_NE(0u, __stack_chk_guard);
    EXPECT_EQ(0u, __stack_chk_guard & 0xFF);
    // That of a program whose guard was never made, or made of the clock alone.
    EXPECT_NE(0u, __stack_chk_guard >> 32);
}

TEST(StackGuardTest, AnOverrunFrameEndsTheProgram)
{
    EXPECT_EXIT(
        __stack_chk_fail(),
        [](int code) { return static_cast<DWORD>(code) == STATUS_STACK_BUFFER_OVERRUN; },
        "");
}
} // namespace
