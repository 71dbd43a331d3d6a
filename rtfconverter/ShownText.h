// The plain text while it grows, with the layout that HTML asks for in documents made from HTML.
//
// Mail clients write such documents so that the RTF side lays the text out by itself; other
// generators leave that to the HTML tags alone. So tags count only where the RTF side says nothing:
// between two pieces of visible text that no line break and no tab of the RTF side separates, the
// tags' line breaks are put in place of the blanks there, else a tab between cells, else a blank
// for blanks of the source. Before the first and after the last visible text tags add nothing.
#pragma once

#include "rtfconverter/HtmlTags.h"

#include <cstddef>
#include <string>
#include <string_view>

class ShownText
{
  public:
    // Throws std::bad_alloc.
    explicit ShownText(std::size_t expectedUnits) { m_text.reserve(expectedUnits); }

    // From now on tags count.
    void BeginHtml() noexcept { m_html = true; }

    // Plain ASCII. Throws std::bad_alloc, like the other two.
    void AppendAscii(std::string_view text);
    void Append(std::wstring_view text);
    // What the function appends to the string that it gets; it may not touch what stands there.
    template <typename Function> void AppendBy(Function&& append)
    {
        const std::size_t start = m_text.size();
        append(m_text);
        Settle(start);
    }

    // A tag between the text so far and what follows.
    void Want(HtmlLayout layout) noexcept;

    std::wstring Take() noexcept { return std::move(m_text); }

  private:
    void Settle(std::size_t start);
    void PutWanted(std::size_t end);

    std::wstring m_text;
    bool m_html = false;

    // The gap behind the last visible character.
    std::size_t m_gapStart = 0;
    bool m_hasVisible = false;
    bool m_laidOut = false;     // the RTF side gave a line break or a tab
    std::size_t m_breaks = 0;   // that the tags ask for
    bool m_atLineStart = false; // nothing visible since the last of them
    bool m_cell = false;
    bool m_space = false;
};
