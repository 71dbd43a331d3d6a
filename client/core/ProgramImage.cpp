#include "client/core/ProgramImage.h"

#include "platform/ByteReader.h"

namespace pim
{
std::optional<std::uint16_t> MachineOfProgram(std::span<const std::byte> bytes)
{
    constexpr std::uint16_t kDosSignature = 0x5A4D;   // "MZ"
    constexpr std::uint32_t kImageSignature = 0x4550; // "PE" and two zeros
    constexpr std::size_t kOffsetOfHeaderOffset = 0x3C;

    ByteReader dos(bytes);
    std::uint16_t dosSignature = 0;
    std::uint32_t headerOffset = 0;
    dos.Read(dosSignature);
    dos.Skip(kOffsetOfHeaderOffset - sizeof dosSignature);
    dos.Read(headerOffset);
    if (!dos.IsOk() || dosSignature != kDosSignature || headerOffset > bytes.size())
        return std::nullopt;

    ByteReader header(bytes.subspan(headerOffset));
    std::uint32_t signature = 0;
    std::uint16_t machine = 0;
    header.Read(signature);
    header.Read(machine);
    if (!header.IsOk() || signature != kImageSignature)
        return std::nullopt;
    return machine;
}
} // namespace pim
