#include "client/core/ItemTable.h"

#include "client/core/ItemIds.h"
#include "client/core/TextTable.h"
#include "client/core/Unicode.h"

#include <algorithm>

namespace pim
{
namespace
{
constexpr int kLeastTextWidth = 8;
constexpr std::size_t kLeastIdLength = 6;

// The widths that the rows take up, cut to the readable maximum.
std::vector<int> NaturalWidths(std::span<const ItemColumn> columns,
                               const std::vector<ItemRow>& rows)
{
    std::vector<int> widths;
    for (std::size_t i = 0; i < columns.size(); ++i)
    {
        int width = DisplayWidth(columns[i].title);
        for (const ItemRow& row : rows)
            width = std::max(width, DisplayWidth(OneLine(row[i])));
        widths.push_back(columns[i].maxWidth > 0 ? std::min(width, columns[i].maxWidth) : width);
    }
    return widths;
}

// Takes columns off the widest texts until the table fits, as far as a text stays readable.
void FitWidths(std::span<const ItemColumn> columns, std::vector<int>& widths, int terminalColumns)
{
    int total = TextTable::kGap * int(widths.size() - 1);
    for (const int width : widths)
        total += width;
    for (; total > terminalColumns; --total)
    {
        std::size_t widest = widths.size();
        for (std::size_t i = 0; i < widths.size(); ++i)
        {
            const bool canShrink = columns[i].maxWidth > 0 && widths[i] > kLeastTextWidth;
            if (canShrink && (widest == widths.size() || widths[i] > widths[widest]))
                widest = i;
        }
        if (widest == widths.size())
            return;
        --widths[widest];
    }
}

void ShortenIds(std::vector<ItemRow>& rows)
{
    std::vector<std::wstring> ids;
    ids.reserve(rows.size());
    for (const ItemRow& row : rows)
        ids.push_back(row.back());
    const std::vector<std::wstring> shortIds = ShortItemIds(ids, kLeastIdLength);
    for (std::size_t i = 0; i < rows.size(); ++i)
        rows[i].back() = shortIds[i];
}
} // namespace

std::wstring FormatItemTable(std::span<const ItemColumn> columns,
                             std::vector<ItemRow> rows,
                             const TableRoom& room)
{
    const bool isFitted = room.terminalColumns > 0 && !room.isWide;
    if (isFitted)
        ShortenIds(rows);
    std::vector<int> widths = NaturalWidths(columns, rows);
    if (isFitted)
        FitWidths(columns, widths, room.terminalColumns);

    std::vector<TextTable::Column> shown;
    for (std::size_t i = 0; i < columns.size(); ++i)
        shown.push_back({columns[i].title, room.isWide ? 0 : widths[i]});
    TextTable table(std::move(shown));
    for (const ItemRow& row : rows)
        table.AddRow(row);
    return table.Format();
}
} // namespace pim
