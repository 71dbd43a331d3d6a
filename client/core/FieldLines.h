// The fields of one item for people: a line each, the values below each other. Portable.
#pragma once

#include <optional>
#include <string>

namespace pim
{
class FieldLines
{
  public:
    // An absent or empty value gives no line. Longer names than the column push their value along.
    void Add(const std::wstring& name, const std::optional<std::wstring>& value);

    const std::wstring& Text() const noexcept { return m_text; }

  private:
    std::wstring m_text;
};

// A longer text of an item below its lines: an empty line, then the text as its own lines; empty
// where there is none.
std::wstring ParagraphBelow(const std::optional<std::wstring>& text);
} // namespace pim
