// Walks the parts of a text between separators without copies, by the rule of SplitStrings: parts
// are trimmed of blanks at both ends, empty ones fall away. Portable.
#pragma once

#include <string_view>

// The text without the blanks (U+0020) at both ends.
inline std::wstring_view TrimBlanks(std::wstring_view text) noexcept
{
    while (!text.empty() && text.front() == L' ')
        text.remove_prefix(1);
    while (!text.empty() && text.back() == L' ')
        text.remove_suffix(1);
    return text;
}

class TextPieces
{
  public:
    TextPieces(std::wstring_view text, wchar_t separator) noexcept
        : m_rest(text), m_separator(separator)
    {
    }

    // The next part; false when there is none.
    bool Next(std::wstring_view& piece) noexcept
    {
        while (!m_rest.empty())
        {
            const std::size_t end = m_rest.find(m_separator);
            const std::wstring_view part = TrimBlanks(m_rest.substr(0, end));
            m_rest = end == std::wstring_view::npos ? std::wstring_view() : m_rest.substr(end + 1);
            if (part.empty())
                continue;
            piece = part;
            return true;
        }
        return false;
    }

  private:
    std::wstring_view m_rest;
    wchar_t m_separator;
};
