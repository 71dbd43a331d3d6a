// Time zones from a fixed table, and the fields of the zones that the tests use.
#pragma once

#include "outlook/calendar/ZoneSource.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <map>
#include <string>
#include <string_view>
#include <vector>

// "The n-th of a weekday in a month, at an hour"; 5 is the last one.
inline SYSTEMTIME TransitionAt(int month, int weekday, int nth, int hour)
{
    SYSTEMTIME date{};
    date.wMonth = static_cast<std::uint16_t>(month);
    date.wDayOfWeek = static_cast<std::uint16_t>(weekday);
    date.wDay = static_cast<std::uint16_t>(nth);
    date.wHour = static_cast<std::uint16_t>(hour);
    return date;
}

inline ZoneRules FixedRules(std::int32_t biasMinutes)
{
    ZoneRules rules;
    rules.biasMinutes = biasMinutes;
    return rules;
}

// Summer time of an hour between two Sundays.
inline ZoneRules SummerRules(std::int32_t biasMinutes,
                             SYSTEMTIME daylightDate,
                             SYSTEMTIME standardDate)
{
    ZoneRules rules = FixedRules(biasMinutes);
    rules.daylightBiasMinutes = -60;
    rules.daylightDate = daylightDate;
    rules.standardDate = standardDate;
    return rules;
}

inline const ZoneRules kCentralEurope =
    SummerRules(-60, TransitionAt(3, 0, 5, 2), TransitionAt(10, 0, 5, 3));
inline const ZoneRules kEastern =
    SummerRules(300, TransitionAt(3, 0, 2, 2), TransitionAt(11, 0, 1, 2));
inline const ZoneRules kIndia = FixedRules(-330);
// Newfoundland, without its summer time.
inline const ZoneRules kIsland = FixedRules(210);

class FixedZones final : public IZoneSource
{
  public:
    std::map<std::wstring, ZoneRules> rules;
    std::vector<std::wstring> unreadable; // names without rules
    std::map<std::wstring, std::wstring> displays;
    TIME_ZONE_INFORMATION machine{};

    std::vector<std::wstring> KeyNames() const override
    {
        // Not in order: the unreadable ones first, the others from the last.
        std::vector<std::wstring> names = unreadable;
        for (auto entry = rules.rbegin(); entry != rules.rend(); ++entry)
            names.push_back(entry->first);
        return names;
    }
    [[nodiscard]] bool ReadRules(const std::wstring& keyName, ZoneRules& read) const override
    {
        const auto found = rules.find(keyName);
        read = found != rules.end() ? found->second : ZoneRules{};
        return found != rules.end();
    }
    std::wstring Display(const std::wstring& keyName) const override
    {
        const auto found = displays.find(keyName);
        return found != displays.end() ? found->second : std::wstring();
    }
    TIME_ZONE_INFORMATION Machine() const override { return machine; }
};

inline void SetMachine(FixedZones& zones, const ZoneRules& rules, std::wstring_view name)
{
    zones.machine = {};
    zones.machine.Bias = rules.biasMinutes;
    zones.machine.StandardBias = rules.standardBiasMinutes;
    zones.machine.DaylightBias = rules.daylightBiasMinutes;
    zones.machine.StandardDate = rules.standardDate;
    zones.machine.DaylightDate = rules.daylightDate;
    name.copy(zones.machine.StandardName, std::size(zones.machine.StandardName) - 1);
    name.copy(zones.machine.DaylightName, std::size(zones.machine.DaylightName) - 1);
}
