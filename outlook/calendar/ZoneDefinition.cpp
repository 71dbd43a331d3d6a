#include "outlook/calendar/ZoneDefinition.h"

#include "outlook/calendar/ZoneFields.h"
#include "platform/ByteReader.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace
{
constexpr std::uint8_t kMajorVersion = 2;
constexpr std::uint16_t kHasGuid = 0x0001;
constexpr std::uint16_t kHasKeyName = 0x0002;
constexpr std::size_t kGuidBytes = 16;

constexpr std::size_t kRuleBytes = 66;
constexpr std::size_t kLeastRuleBytes = 50; // all but the daylight date
constexpr std::size_t kRuleHeadBytes = 4;   // versions and size, which the size does not count

bool ReadVersions(ByteReader& in)
{
    std::uint8_t major = 0;
    std::uint8_t minor = 0;
    in.Read(major);
    in.Read(minor);
    return in.IsOk() && major == kMajorVersion && minor != 0;
}

std::wstring ReadKeyName(ByteReader& in)
{
    std::size_t units = 0;
    std::span<const std::byte> bytes;
    if (!in.ReadCount<std::uint16_t>(2, 0xFFFF, units) || !in.ReadBytes(2 * units, bytes))
        return {};
    std::wstring name;
    name.reserve(units);
    for (std::size_t i = 0; i < units; ++i)
        name += static_cast<wchar_t>(std::to_integer<unsigned>(bytes[2 * i]) |
                                     std::to_integer<unsigned>(bytes[2 * i + 1]) << 8);
    return name;
}

// The rule that begins here, and how far behind it the next one does.
bool ReadRule(std::span<const std::byte> bytes, ZoneRules& rules, std::size_t& step)
{
    if (bytes.size() < kLeastRuleBytes)
        return false;
    std::array<std::byte, kRuleBytes> whole{};
    std::ranges::copy(bytes.first(std::min(bytes.size(), kRuleBytes)), whole.begin());
    ByteReader in(whole);
    std::uint16_t size = 0;
    if (!ReadVersions(in))
        return false;
    in.Read(size);
    in.Skip(2 + 16); // flags, start
    ReadBiases(in, rules);
    ReadDate(in, rules.standardDate);
    ReadDate(in, rules.daylightDate);
    step = kRuleHeadBytes + size;
    return in.IsOk();
}
} // namespace

std::optional<ZoneDefinition> ParseZoneDefinition(std::span<const std::byte> blob)
{
    ByteReader in(blob);
    std::uint16_t flags = 0;
    std::uint16_t count = 0;
    if (!ReadVersions(in))
        return std::nullopt;
    in.Skip(2); // size of the header
    in.Read(flags);
    if ((flags & kHasGuid) != 0)
        in.Skip(kGuidBytes);
    ZoneDefinition definition;
    if ((flags & kHasKeyName) != 0)
        definition.keyName = ReadKeyName(in);
    if (!in.Read(count))
        return std::nullopt;
    std::span<const std::byte> rest = blob.subspan(in.Offset());
    for (; count > 0; --count)
    {
        ZoneRules rules;
        std::size_t step = 0;
        if (!ReadRule(rest, rules, step))
            return std::nullopt;
        definition.rules.push_back(rules);
        rest = rest.subspan(std::min(step, rest.size()));
    }
    return definition;
}
