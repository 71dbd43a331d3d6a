#include "client/core/TextTable.h"

#include "client/core/Unicode.h"

#include <algorithm>

namespace pim
{
TextTable::TextTable(std::vector<Column> columns) : m_columns(std::move(columns))
{
    for (const Column& column : m_columns)
        m_widths.push_back(DisplayWidth(column.title));
}

void TextTable::AddRow(const std::vector<std::wstring>& cells)
{
    std::vector<std::wstring> row;
    row.reserve(m_columns.size());
    for (std::size_t i = 0; i < m_columns.size(); ++i)
    {
        std::wstring cell = i < cells.size() ? OneLine(cells[i]) : std::wstring();
        if (m_columns[i].maxWidth > 0)
            cell = CutToWidth(cell, m_columns[i].maxWidth);
        m_widths[i] = std::max(m_widths[i], DisplayWidth(cell));
        row.push_back(std::move(cell));
    }
    m_rows.push_back(std::move(row));
}

std::wstring TextTable::Format() const
{
    std::wstring text;
    const auto appendLine = [&](const auto& cellAt) {
        std::wstring line;
        std::size_t padding = 0;
        for (std::size_t i = 0; i < m_columns.size(); ++i)
        {
            const std::wstring& cell = cellAt(i);
            if (!cell.empty())
            {
                line.append(padding, L' ');
                line += cell;
                padding = 0;
            }
            padding += std::size_t(m_widths[i] - DisplayWidth(cell) + kGap);
        }
        text += line;
        text += L'\n';
    };
    const bool titled = std::any_of(m_columns.begin(), m_columns.end(), [](const Column& column) {
        return !column.title.empty();
    });
    if (titled)
        appendLine([&](std::size_t i) -> const std::wstring& { return m_columns[i].title; });
    for (const auto& row : m_rows)
        appendLine([&](std::size_t i) -> const std::wstring& { return row[i]; });
    return text;
}
} // namespace pim
