// Lines of cells that stand below each other on a terminal. Portable.
#pragma once

#include <string>
#include <vector>

namespace pim
{
class TextTable
{
  public:
    // Blanks between two columns.
    static constexpr int kGap = 2;

    // A maximum of 0 columns lets the cells be as wide as they are.
    struct Column
    {
        std::wstring title;
        int maxWidth = 0;
    };

    explicit TextTable(std::vector<Column> columns);

    // Takes one cell per column; cells are put on one line and cut to the column's maximum.
    void AddRow(const std::vector<std::wstring>& cells);

    // The titles and all rows, each ended by a line feed, without blanks at the ends of lines. The
    // titles are left out where all of them are empty.
    std::wstring Format() const;

  private:
    std::vector<Column> m_columns;
    std::vector<int> m_widths;
    std::vector<std::vector<std::wstring>> m_rows;
};
} // namespace pim
