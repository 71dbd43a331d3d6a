// Any zone definition is read within its bytes, the same way twice, and reads back from a blob that
// is made of what it said; the zone of a message has its first rule and names that end. The same
// bytes are tried as a zone structure, which is written back as it was.
#include "Require.h"

#include "outlook/calendar/AppointmentZone.h"
#include "outlook/calendar/ZoneDefinition.h"
#include "outlook/calendar/ZoneFields.h"

#include <cstdint>
#include <cstring>
#include <optional>
#include <vector>

namespace
{
bool Same(const ZoneRules& left, const ZoneRules& right)
{
    return std::memcmp(&left, &right, sizeof(left)) == 0;
}

bool Same(const ZoneDefinition& left, const ZoneDefinition& right)
{
    if (left.keyName != right.keyName || left.rules.size() != right.rules.size())
        return false;
    for (std::size_t i = 0; i < left.rules.size(); ++i)
        if (!Same(left.rules[i], right.rules[i]))
            return false;
    return true;
}

std::vector<std::byte> BlobOf(const ZoneDefinition& definition)
{
    std::vector<std::byte> blob;
    ByteWriter out(blob);
    out.Write<std::uint8_t>(2);
    out.Write<std::uint8_t>(1);
    out.Write<std::uint16_t>(0);
    out.Write<std::uint16_t>(2);
    out.Write<std::uint16_t>(definition.keyName.size());
    for (const wchar_t unit : definition.keyName)
        out.Write<std::uint16_t>(static_cast<std::uint32_t>(unit));
    out.Write<std::uint16_t>(definition.rules.size());
    for (const ZoneRules& rules : definition.rules)
    {
        out.Write<std::uint8_t>(2);
        out.Write<std::uint8_t>(1);
        out.Write<std::uint16_t>(62);
        out.Write<std::uint16_t>(0);
        WriteDate(out, {});
        WriteBiases(out, rules);
        WriteDate(out, rules.standardDate);
        WriteDate(out, rules.daylightDate);
    }
    Require(out.IsOk());
    return blob;
}

// One zone, whose rules are what a test made of its input.
class OneZone final : public IZoneSource
{
  public:
    explicit OneZone(const ZoneRules& rules) : m_rules(rules) {}
    std::vector<std::wstring> KeyNames() const override { return {L"Zone"}; }
    bool ReadRules(const std::wstring& keyName, ZoneRules& rules) const override
    {
        rules = keyName == L"Zone" ? m_rules : ZoneRules{};
        return keyName == L"Zone";
    }
    std::wstring Display(const std::wstring&) const override { return {}; }
    TIME_ZONE_INFORMATION Machine() const override { return {}; }

  private:
    ZoneRules m_rules;
};

ZoneRules RulesOf(const TIME_ZONE_INFORMATION& zone)
{
    return {zone.Bias, zone.StandardBias, zone.DaylightBias, zone.StandardDate, zone.DaylightDate};
}

void CheckStructure(const std::vector<std::byte>& bytes)
{
    const OneZone none({});
    const TIME_ZONE_INFORMATION zone = ZoneOfMessage({bytes, std::nullopt}, {}, none);
    if (bytes.size() < 48)
    {
        Require(Same(RulesOf(zone), {}) && zone.StandardName[0] == 0);
        return;
    }
    const OneZone source(RulesOf(zone));
    std::vector<std::byte> expected(bytes.begin(), bytes.begin() + 48);
    for (const std::size_t year : {12, 13, 30, 31})
        expected[year] = std::byte{0};
    Require(ZoneStructureBytes(L"Zone", source) == expected);
    Require(FindZoneName(LoadZoneTable(source), RulesOf(zone)) == L"Zone");
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const auto* const bytes = reinterpret_cast<const std::byte*>(data);
    const std::vector<std::byte> blob(bytes, bytes + size);
    CheckStructure(blob);
    const auto definition = ParseZoneDefinition(blob);
    const auto second = ParseZoneDefinition(blob);
    Require(definition.has_value() == second.has_value());
    const OneZone none({});
    const TIME_ZONE_INFORMATION zone = ZoneOfMessage({std::nullopt, blob}, {}, none);
    if (!definition)
    {
        Require(Same(RulesOf(zone), {}));
        return 0;
    }
    Require(Same(*definition, *second));
    Require(definition->keyName.size() <= size / 2 && definition->rules.size() <= size / 4);
    const auto again = ParseZoneDefinition(BlobOf(*definition));
    Require(again && Same(*definition, *again));
    Require(zone.StandardName[31] == 0 && zone.DaylightName[31] == 0);
    if (!definition->rules.empty())
        Require(Same(RulesOf(zone), definition->rules.front()));
    return 0;
}
