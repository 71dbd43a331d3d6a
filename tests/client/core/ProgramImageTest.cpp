// The machine number of program headers written by hand after the PE format.
#include "client/core/ProgramImage.h"

#include <gtest/gtest.h>

#include <vector>

namespace pim
{
namespace
{
// A header whose COFF part stands at 0x80, as linkers write it.
std::vector<std::byte> Header(std::uint16_t machine, std::size_t at = 0x80)
{
    std::vector<std::byte> bytes(at + 24);
    bytes[0] = std::byte{'M'};
    bytes[1] = std::byte{'Z'};
    for (int i = 0; i < 4; ++i)
        bytes[0x3C + i] = static_cast<std::byte>((at >> (8 * i)) & 0xFF);
    bytes[at] = std::byte{'P'};
    bytes[at + 1] = std::byte{'E'};
    bytes[at + 4] = static_cast<std::byte>(machine & 0xFF);
    bytes[at + 5] = static_cast<std::byte>(machine >> 8);
    return bytes;
}
} // namespace

TEST(ProgramImageTest, TellsTheMachineBehindTheHeadersOffset)
{
    EXPECT_EQ(MachineOfProgram(Header(0x8664)), kMachineX64);
    EXPECT_EQ(MachineOfProgram(Header(0x014C)), kMachineX86);
    EXPECT_EQ(MachineOfProgram(Header(0xAA64, 0x100)), kMachineArm64);
}

TEST(ProgramImageTest, OtherBytesAreNoProgram)
{
    auto bytes = Header(0x8664);
    bytes[1] = std::byte{'X'};
    EXPECT_EQ(MachineOfProgram(bytes), std::nullopt);
    bytes = Header(0x8664);
    bytes[0x80] = std::byte{'N'}; // a program of the older kind
    EXPECT_EQ(MachineOfProgram(bytes), std::nullopt);
    bytes = Header(0x8664);
    bytes[0x82] = std::byte{1}; // not zero behind the letters
    EXPECT_EQ(MachineOfProgram(bytes), std::nullopt);
}

TEST(ProgramImageTest, NoBeginningOfAHeaderIsRead)
{
    const auto bytes = Header(0x8664);
    for (std::size_t size = 0; size < 0x86; ++size)
        EXPECT_EQ(MachineOfProgram(std::span(bytes).first(size)), std::nullopt) << size;
    EXPECT_EQ(MachineOfProgram(std::span(bytes).first(0x86)), kMachineX64);
}

TEST(ProgramImageTest, AnOffsetOutsideTheBytesIsRefused)
{
    auto bytes = Header(0x8664);
    for (int i = 0x3C; i < 0x40; ++i)
        bytes[i] = std::byte{0xFF};
    EXPECT_EQ(MachineOfProgram(bytes), std::nullopt);
}
} // namespace pim
