#include "rtfconverter/ShownText.h"

#include <algorithm>

namespace
{
constexpr std::wstring_view kBlanks = L" \t\r\n";
constexpr std::wstring_view kLayout = L"\t\r\n";
constexpr std::wstring_view kLineBreak = L"\r\n";
} // namespace

void ShownText::AppendAscii(std::string_view text)
{
    const std::size_t start = m_text.size();
    m_text.resize(start + text.size());
    std::ranges::transform(text, m_text.begin() + static_cast<std::ptrdiff_t>(start), [](char c) {
        return static_cast<wchar_t>(static_cast<unsigned char>(c));
    });
    Settle(start);
}

void ShownText::Append(std::wstring_view text)
{
    const std::size_t start = m_text.size();
    m_text += text;
    Settle(start);
}

void ShownText::Want(HtmlLayout layout) noexcept
{
    switch (layout)
    {
    case HtmlLayout::Break:
        ++m_breaks;
        m_atLineStart = true;
        break;
    case HtmlLayout::Block:
        m_breaks += m_atLineStart ? 0 : 1;
        m_atLineStart = true;
        break;
    case HtmlLayout::Paragraph:
        m_breaks = std::max<std::size_t>(m_breaks, 2);
        m_atLineStart = true;
        break;
    case HtmlLayout::Cell:
        m_cell = true;
        break;
    case HtmlLayout::Space:
        m_space = true;
        break;
    default:
        break;
    }
}

// Looks at what was appended from start on.
void ShownText::Settle(std::size_t start)
{
    if (!m_html)
        return;
    const std::wstring_view added = std::wstring_view(m_text).substr(start);
    const std::size_t firstVisible = added.find_first_not_of(kBlanks);
    if (added.substr(0, firstVisible).find_first_of(kLayout) != std::wstring_view::npos)
        m_laidOut = true;
    if (firstVisible == std::wstring_view::npos)
        return;
    // Behind the end, since what is put in moves the rest.
    const std::size_t blanksBehind = added.size() - 1 - added.find_last_not_of(kBlanks);
    const bool laidOutBehind =
        added.substr(added.size() - blanksBehind).find_first_of(kLayout) != std::wstring_view::npos;
    if (m_hasVisible && !m_laidOut)
        PutWanted(start + firstVisible);
    m_gapStart = m_text.size() - blanksBehind;
    m_hasVisible = true;
    m_laidOut = laidOutBehind;
    m_breaks = 0;
    m_atLineStart = false;
    m_cell = false;
    m_space = false;
}

// Puts what the tags want in place of the gap that ends here.
void ShownText::PutWanted(std::size_t end)
{
    const std::size_t gap = end - m_gapStart;
    if (m_breaks > 0)
    {
        std::wstring breaks;
        for (std::size_t i = 0; i < m_breaks; ++i)
            breaks += kLineBreak;
        m_text.replace(m_gapStart, gap, breaks);
    }
    else if (m_cell)
        m_text.replace(m_gapStart, gap, L"\t");
    else if (m_space && gap == 0)
        m_text.insert(m_gapStart, 1, L' ');
}
