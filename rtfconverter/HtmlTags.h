// Reads the HTML that RTF made from HTML carries in its \htmltag groups, as far as it says how the
// text is laid out: where lines, paragraphs and cells end, and which text is never shown. Not an
// HTML parser: one group at a time, a few states, nothing kept between groups.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

enum class HtmlLayout : std::uint8_t
{
    None,
    Space,      // a blank or a new line of the source
    Cell,       // beside the text before
    Break,      // one line break, always
    Block,      // begins a line
    Paragraph,  // begins a line and keeps a blank one before it
    BeginsMute, // the text up to EndsMute is not shown (title, style, script)
    EndsMute,
};

// Feeds on the characters of one group.
class HtmlTagScanner
{
  public:
    // A new group.
    void Begin() noexcept { m_state = State::Text; }
    // What the character says; most say None.
    HtmlLayout Feed(char c) noexcept;
    // The group has ended, maybe inside a tag.
    HtmlLayout End() noexcept;

  private:
    enum class State : std::uint8_t
    {
        Text,
        Name,       // behind "<"
        Attributes, // behind the name
        Quoted,
        Comment, // behind "<!--"
    };

    HtmlLayout FinishName() noexcept;

    State m_state = State::Text;
    bool m_closing = false;
    char m_quote = 0;
    std::size_t m_nameLength = 0; // may grow beyond what is kept; such a name is none of ours
    std::array<char, 10> m_name{};
};
