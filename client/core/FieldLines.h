// The fields of one item for people: a line each, the values below each other. Portable.
#pragma once

#include "client/core/CivilTime.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace pim
{
class FieldLines
{
  public:
    // An absent or empty value gives no line.
    void Add(const std::wstring& name, const std::optional<std::wstring>& value);

    // All lines, values below each other, each line ended by a line feed.
    std::wstring Text() const;

  private:
    std::vector<std::pair<std::wstring, std::wstring>> m_lines;
};

// "2024-05-01 10:00 (2024-05-01 08:00 UTC)"; none for a time that is not set.
std::optional<std::wstring> LocalAndUtc(const std::optional<DATE>& utc, const ILocalZone& zone);

// A longer text of an item below its lines: an empty line, then the text as its own lines; empty
// where there is none.
std::wstring ParagraphBelow(const std::optional<std::wstring>& text);
} // namespace pim
