#include "client/core/FieldLines.h"

#include "client/core/Unicode.h"

#include <algorithm>

namespace pim
{
namespace
{
// The values of most items stand in one column, whichever fields an item has.
constexpr std::size_t kLeastNameColumns = 12;
constexpr std::size_t kColonAndBlank = 2;
} // namespace

void FieldLines::Add(const std::wstring& name, const std::optional<std::wstring>& value)
{
    if (value && !value->empty())
        m_lines.emplace_back(name, OneLine(*value));
}

std::wstring FieldLines::Text() const
{
    std::size_t columns = kLeastNameColumns;
    for (const auto& [name, value] : m_lines)
        columns = std::max(columns, name.size() + kColonAndBlank);
    std::wstring text;
    for (const auto& [name, value] : m_lines)
    {
        std::wstring line = name + L':';
        line.resize(columns, L' ');
        text += line + value + L'\n';
    }
    return text;
}

std::optional<std::wstring> LocalAndUtc(const std::optional<DATE>& utc, const ILocalZone& zone)
{
    const auto time = CivilFromDate(utc);
    if (!time)
        return std::nullopt;
    return FormatDayAndClock(zone.LocalFromUtc(*time)) + L" (" + FormatDayAndClock(*time) +
           L" UTC)";
}

std::wstring ParagraphBelow(const std::optional<std::wstring>& text)
{
    if (!text || text->empty())
        return {};
    std::wstring paragraph = L'\n' + ManyLines(*text);
    if (paragraph.back() != L'\n')
        paragraph += L'\n';
    return paragraph;
}
} // namespace pim
