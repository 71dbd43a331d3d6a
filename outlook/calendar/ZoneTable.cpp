#include "outlook/calendar/ZoneTable.h"

#include <algorithm>
#include <cstring>

ZoneTable LoadZoneTable(const IZoneSource& source)
{
    ZoneTable table;
    for (const std::wstring& name : source.KeyNames())
    {
        ZoneRules rules;
        // Kept as it is: an unreadable zone stays in, and is found for rules of zeros or a bias of
        // 0. Pinned by ZoneTableTest.
        if (!source.ReadRules(name, rules))
            rules = {};
        table.insert_or_assign(name, rules);
    }
    return table;
}

std::wstring FindZoneName(const ZoneTable& table, const ZoneRules& rules)
{
    auto found = std::ranges::find_if(table, [&](const auto& entry) {
        return std::memcmp(&entry.second, &rules, sizeof(rules)) == 0;
    });
    if (found == table.end())
        found = std::ranges::find_if(table, [&](const auto& entry) {
            return entry.second.biasMinutes == rules.biasMinutes;
        });
    return found != table.end() ? found->first : L"UTC";
}
