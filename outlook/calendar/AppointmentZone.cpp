#include "outlook/calendar/AppointmentZone.h"

#include "outlook/calendar/ZoneDefinition.h"
#include "outlook/calendar/ZoneFields.h"

#include <algorithm>
#include <iterator>

namespace
{
constexpr std::size_t kStructureBytes = 48;
constexpr std::size_t kNameRoom = std::extent_v<decltype(TIME_ZONE_INFORMATION::StandardName)>;

void PutName(const std::wstring& name, wchar_t (&target)[kNameRoom])
{
    std::ranges::fill(target, L'\0');
    std::copy_n(name.begin(), std::min(name.size(), kNameRoom - 1), target);
}

void PutRules(const ZoneRules& rules, TIME_ZONE_INFORMATION& zone)
{
    zone.Bias = rules.biasMinutes;
    zone.StandardBias = rules.standardBiasMinutes;
    zone.DaylightBias = rules.daylightBiasMinutes;
    zone.StandardDate = rules.standardDate;
    zone.DaylightDate = rules.daylightDate;
}

ZoneRules RulesOf(const TIME_ZONE_INFORMATION& zone)
{
    return {static_cast<std::int32_t>(zone.Bias),
            static_cast<std::int32_t>(zone.StandardBias),
            static_cast<std::int32_t>(zone.DaylightBias),
            zone.StandardDate,
            zone.DaylightDate};
}

// False where the bytes are too few.
bool ReadStructure(std::span<const std::byte> bytes, ZoneRules& rules)
{
    ByteReader in(bytes);
    ReadBiases(in, rules);
    in.Skip(2); // the year of the date that follows
    ReadDate(in, rules.standardDate);
    in.Skip(2);
    ReadDate(in, rules.daylightDate);
    return in.IsOk();
}

bool ReadNamedRules(const std::optional<std::wstring>& keyName,
                    const IZoneSource& source,
                    ZoneRules& rules)
{
    return keyName && source.ReadRules(*keyName, rules);
}
} // namespace

TIME_ZONE_INFORMATION ZoneOfMessage(const MessageZone& message,
                                    const ZoneTable& table,
                                    const IZoneSource& source)
{
    TIME_ZONE_INFORMATION zone = source.Machine();
    if (message.structure)
    {
        ZoneRules rules;
        if (ReadStructure(*message.structure, rules))
        {
            PutRules(rules, zone);
            PutName(FindZoneName(table, rules), zone.StandardName);
        }
        return zone;
    }
    const std::optional<ZoneDefinition> definition =
        message.definition ? ParseZoneDefinition(*message.definition) : std::nullopt;
    if (!definition || definition->rules.empty())
        return zone;
    if (!definition->keyName.empty())
    {
        PutName(definition->keyName, zone.StandardName);
        PutName(definition->keyName, zone.DaylightName);
    }
    // Kept as it is: the first rule, whenever it began to hold. Pinned by AppointmentZoneTest.
    PutRules(definition->rules.front(), zone);
    return zone;
}

TIME_ZONE_INFORMATION ZoneOfRecurrence(const std::optional<std::wstring>& keyName,
                                       const IZoneSource& source)
{
    ZoneRules rules;
    if (!ReadNamedRules(keyName, source, rules))
        return source.Machine();
    TIME_ZONE_INFORMATION zone{};
    rules.standardDate = rules.daylightDate;
    PutRules(rules, zone);
    PutName(*keyName, zone.StandardName);
    return zone;
}

std::vector<std::byte> ZoneStructureBytes(const std::optional<std::wstring>& keyName,
                                          const IZoneSource& source)
{
    ZoneRules rules;
    if (!ReadNamedRules(keyName, source, rules))
        rules = RulesOf(source.Machine());
    std::vector<std::byte> bytes;
    bytes.reserve(kStructureBytes);
    ByteWriter out(bytes);
    WriteBiases(out, rules);
    out.Write<std::uint16_t>(0); // the year of the date that follows
    WriteDate(out, rules.standardDate);
    out.Write<std::uint16_t>(0);
    WriteDate(out, rules.daylightDate);
    return bytes;
}
