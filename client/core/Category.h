// One category of a store's list as the client holds it, as text for people and as JSON. Portable.
//
// JSON: id, name (text or null), color (a number, null where it cannot be read), lastUsedUtc
// ("2024-04-30T17:20:00Z" or null), items (an array of IDs).
#pragma once

#include "client/core/CivilTime.h"
#include "client/core/ItemTable.h"

#include <nlohmann/json_fwd.hpp>

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace pim
{
struct Category
{
    std::optional<std::wstring> id;
    std::optional<std::wstring> name;
    std::optional<std::int32_t> color;
    std::optional<DATE> lastUsedUtc;
    std::vector<std::wstring> items;
};

// The order of a list: by name, see NameOrder.h.
bool ComesBefore(const Category& left, const Category& right);

// A table with one line per category, in the given order: name, color, ID.
std::wstring CategoryTable(std::span<const Category> categories, const TableRoom& room);

// All that is known of one category, one line per field and item.
std::wstring CategoryDetails(const Category& category, const ILocalZone& zone);

// The same as docs/pim.md tells it.
nlohmann::ordered_json CategoryJson(const Category& category);
} // namespace pim
