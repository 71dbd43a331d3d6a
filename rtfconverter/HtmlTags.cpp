#include "rtfconverter/HtmlTags.h"

#include <algorithm>

namespace
{
struct TagRow
{
    std::string_view name;
    HtmlLayout opening;
    HtmlLayout closing;
};

// clang-format off
constexpr auto kTags = std::to_array<TagRow>({
    {"address", HtmlLayout::Block, HtmlLayout::Block},
    {"article", HtmlLayout::Block, HtmlLayout::Block},
    {"aside", HtmlLayout::Block, HtmlLayout::Block},
    {"blockquote", HtmlLayout::Paragraph, HtmlLayout::Paragraph},
    {"body", HtmlLayout::EndsMute, HtmlLayout::Block},
    {"br", HtmlLayout::Break, HtmlLayout::Break},
    {"caption", HtmlLayout::Block, HtmlLayout::Block},
    {"center", HtmlLayout::Block, HtmlLayout::Block},
    {"dd", HtmlLayout::Block, HtmlLayout::Block},
    {"div", HtmlLayout::Block, HtmlLayout::Block},
    {"dl", HtmlLayout::Paragraph, HtmlLayout::Paragraph},
    {"dt", HtmlLayout::Block, HtmlLayout::Block},
    {"fieldset", HtmlLayout::Block, HtmlLayout::Block},
    {"footer", HtmlLayout::Block, HtmlLayout::Block},
    {"form", HtmlLayout::Block, HtmlLayout::Block},
    {"h1", HtmlLayout::Paragraph, HtmlLayout::Paragraph},
    {"h2", HtmlLayout::Paragraph, HtmlLayout::Paragraph},
    {"h3", HtmlLayout::Paragraph, HtmlLayout::Paragraph},
    {"h4", HtmlLayout::Paragraph, HtmlLayout::Paragraph},
    {"h5", HtmlLayout::Paragraph, HtmlLayout::Paragraph},
    {"h6", HtmlLayout::Paragraph, HtmlLayout::Paragraph},
    {"head", HtmlLayout::None, HtmlLayout::EndsMute},
    {"header", HtmlLayout::Block, HtmlLayout::Block},
    {"hr", HtmlLayout::Block, HtmlLayout::Block},
    {"li", HtmlLayout::Block, HtmlLayout::Block},
    {"main", HtmlLayout::Block, HtmlLayout::Block},
    {"nav", HtmlLayout::Block, HtmlLayout::Block},
    {"ol", HtmlLayout::Block, HtmlLayout::Block},
    {"p", HtmlLayout::Paragraph, HtmlLayout::Paragraph},
    {"pre", HtmlLayout::Paragraph, HtmlLayout::Paragraph},
    {"script", HtmlLayout::BeginsMute, HtmlLayout::EndsMute},
    {"section", HtmlLayout::Block, HtmlLayout::Block},
    {"style", HtmlLayout::BeginsMute, HtmlLayout::EndsMute},
    {"table", HtmlLayout::Block, HtmlLayout::Block},
    {"td", HtmlLayout::Cell, HtmlLayout::Cell},
    {"th", HtmlLayout::Cell, HtmlLayout::Cell},
    {"title", HtmlLayout::BeginsMute, HtmlLayout::EndsMute},
    {"tr", HtmlLayout::Block, HtmlLayout::Block},
    {"ul", HtmlLayout::Block, HtmlLayout::Block},
});
// clang-format on

static_assert(std::ranges::is_sorted(kTags, {}, &TagRow::name));

constexpr std::string_view kCommentName = "!--";

bool IsNameCharacter(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '!' ||
           c == '-' || c == ':' || c == '?';
}

char Lower(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}
} // namespace

HtmlLayout HtmlTagScanner::Feed(char c) noexcept
{
    switch (m_state)
    {
    case State::Text:
        if (c == '<')
        {
            m_state = State::Name;
            m_closing = false;
            m_nameLength = 0;
        }
        return c == ' ' || c == '\n' ? HtmlLayout::Space : HtmlLayout::None;

    case State::Name:
        if (c == '/' && m_nameLength == 0)
        {
            m_closing = true;
            return HtmlLayout::None;
        }
        if (IsNameCharacter(c))
        {
            if (m_nameLength < m_name.size())
                m_name[m_nameLength] = Lower(c);
            ++m_nameLength;
            if (m_nameLength == kCommentName.size() &&
                std::string_view(m_name.data(), m_nameLength) == kCommentName)
            {
                m_state = State::Comment;
                m_nameLength = 0; // from here on: how many hyphens in a row
            }
            return HtmlLayout::None;
        }
        m_state = c == '>' ? State::Text : State::Attributes;
        return FinishName();

    case State::Attributes:
        if (c == '>')
            m_state = State::Text;
        else if (c == '"' || c == '\'')
        {
            m_quote = c;
            m_state = State::Quoted;
        }
        return HtmlLayout::None;

    case State::Quoted:
        if (c == m_quote)
            m_state = State::Attributes;
        return HtmlLayout::None;

    case State::Comment:
        if (c == '>' && m_nameLength >= 2)
            m_state = State::Text;
        m_nameLength = c == '-' ? m_nameLength + 1 : 0;
        return HtmlLayout::None;
    }
    return HtmlLayout::None;
}

HtmlLayout HtmlTagScanner::End() noexcept
{
    const bool cutName = m_state == State::Name;
    m_state = State::Text;
    return cutName ? FinishName() : HtmlLayout::None;
}

HtmlLayout HtmlTagScanner::FinishName() noexcept
{
    if (m_nameLength > m_name.size())
        return HtmlLayout::None;
    const std::string_view name(m_name.data(), m_nameLength);
    const auto row = std::ranges::lower_bound(kTags, name, {}, &TagRow::name);
    if (row == kTags.end() || row->name != name)
        return HtmlLayout::None;
    return m_closing ? row->closing : row->opening;
}
