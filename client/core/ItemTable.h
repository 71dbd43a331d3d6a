// A list of items as a table for people, as wide as the terminal allows. Portable.
#pragma once

#include <span>
#include <string>
#include <vector>

namespace pim
{
// How much room a table has.
struct TableRoom
{
    bool isWide = false;     // nothing is cut
    int terminalColumns = 0; // fit into that many columns, with shortened IDs; 0: any width
};

struct ItemColumn
{
    const wchar_t* title;
    int maxWidth; // texts are cut beyond it, and further on a narrow terminal; 0: never cut
};

using ItemRow = std::vector<std::wstring>;

// The titles and one line for each row, in the given order. Each row has a cell for each column;
// the last one is the item's ID.
std::wstring FormatItemTable(std::span<const ItemColumn> columns,
                             std::vector<ItemRow> rows,
                             const TableRoom& room);
} // namespace pim
