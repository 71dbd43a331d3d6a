// What processor a Windows program or library is made for, by the header of its file. Portable.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace pim
{
// Machine numbers of the PE format.
inline constexpr std::uint16_t kMachineX86 = 0x014C;
inline constexpr std::uint16_t kMachineX64 = 0x8664;
inline constexpr std::uint16_t kMachineArm64 = 0xAA64;

// Takes the beginning of the file; that many bytes of it always suffice for what linkers write.
inline constexpr std::size_t kProgramHeaderBytes = 4096;

// The machine number; none where the bytes are no such header or end before it. The format: "PE
// Format" of the Windows documentation, COFF file header behind the offset at 0x3C.
std::optional<std::uint16_t> MachineOfProgram(std::span<const std::byte> bytes);
} // namespace pim
