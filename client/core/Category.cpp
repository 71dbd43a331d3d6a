#include "client/core/Category.h"

#include "client/core/FieldLines.h"
#include "client/core/JsonValues.h"
#include "client/core/NameOrder.h"

namespace pim
{
namespace
{
constexpr ItemColumn kColumns[] = {{L"NAME", 40}, {L"COLOR", 0}, {L"ID", 0}};

std::wstring ColorText(const std::optional<std::int32_t>& color)
{
    return color ? std::to_wstring(*color) : L"";
}
} // namespace

bool ComesBefore(const Category& left, const Category& right)
{
    return IsBefore(left.name.value_or(L""), left.id, right.name.value_or(L""), right.id);
}

std::wstring CategoryTable(std::span<const Category> categories, const TableRoom& room)
{
    std::vector<ItemRow> rows;
    for (const Category& category : categories)
        rows.push_back(
            {category.name.value_or(L""), ColorText(category.color), category.id.value_or(L"")});
    return FormatItemTable(kColumns, std::move(rows), room);
}

std::wstring CategoryDetails(const Category& category, const ILocalZone& zone)
{
    FieldLines lines;
    lines.Add(L"Name", category.name);
    lines.Add(L"Color", ColorText(category.color));
    lines.Add(L"Last used", LocalAndUtc(category.lastUsedUtc, zone));
    for (const std::wstring& item : category.items)
        lines.Add(L"Item", item);
    lines.Add(L"ID", category.id);
    return lines.Text();
}

Json CategoryJson(const Category& category)
{
    Json json;
    json["id"] = TextOrNull(category.id);
    json["name"] = TextOrNull(category.name);
    json["color"] = category.color ? Json(*category.color) : Json();
    json["lastUsedUtc"] = UtcOrNull(category.lastUsedUtc);
    json["items"] = TextsJson(category.items);
    return json;
}
} // namespace pim
