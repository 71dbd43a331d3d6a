#include "rtfconverter/RtfText.h"

#include "platform/HexDigit.h"
#include "rtfconverter/HtmlTags.h"
#include "rtfconverter/RtfWords.h"
#include "rtfconverter/ShownText.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <unordered_map>

namespace
{
constexpr std::int64_t kMaxFont = 32767;
constexpr std::int64_t kMinCodePage = 437; // lower numbers mean no code page in themselves
constexpr std::int64_t kMaxCodePage = 65535;
constexpr std::size_t kMaxGatheredBytes = 4096;

bool IsLetter(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

bool IsDigit(char c)
{
    return c >= '0' && c <= '9';
}

bool IsAscii(char c)
{
    return static_cast<unsigned char>(c) < 0x80;
}

bool IsFont(std::int64_t number)
{
    return number >= 0 && number <= kMaxFont;
}

bool IsCodePage(std::int64_t number)
{
    return number >= kMinCodePage && number <= kMaxCodePage;
}

// What a group inherits and gives back at its end.
struct GroupState
{
    std::uint16_t font = 0;
    std::uint8_t unicodeFallback = 1; // how many characters stand for one \uN
    bool skipped : 1 = false;         // a destination without body text
    bool hidden : 1 = false;
    bool fontTable : 1 = false;
    bool alternative : 1 = false; // inside \upr: only its \ud part is shown
    bool htmlTag : 1 = false;     // HTML to look at, not to show
    bool htmlRtf : 1 = false;     // what only the RTF side of HTML has

    bool operator==(const GroupState&) const = default;
};

// The states to go back to. Equal neighbours share an entry, so that depth alone costs nothing, and
// the rest costs less than the input that it takes.
class GroupStack
{
  public:
    void Push(const GroupState& state)
    {
        ++m_depth;
        if (!m_runs.empty() && m_runs.back().state == state && m_runs.back().length < UINT32_MAX)
            ++m_runs.back().length;
        else
            m_runs.push_back({state, 1});
    }

    GroupState Pop()
    {
        --m_depth;
        const GroupState state = m_runs.back().state;
        if (--m_runs.back().length == 0)
            m_runs.pop_back();
        return state;
    }

    std::size_t Depth() const { return m_depth; }

  private:
    struct Run
    {
        GroupState state;
        std::uint32_t length;
    };

    std::deque<Run> m_runs; // grows without moving what it holds
    std::size_t m_depth = 0;
};

class Reader
{
  public:
    Reader(std::string_view rtf, unsigned codePage, CodePageDecoder decode)
        : m_rtf(rtf), m_codePage(codePage), m_decode(decode), m_text(rtf.size() / 2)
    {
    }

    std::wstring Read()
    {
        while (m_at < m_rtf.size() && !m_ended)
        {
            switch (m_rtf[m_at])
            {
            case '{':
                ++m_at;
                OpenGroup();
                break;
            case '}':
                ++m_at;
                CloseGroup();
                break;
            case '\\':
                ++m_at;
                Control();
                break;
            case '\r':
            case '\n': // layout of the source only
            case '\0':
                ++m_at;
                break;
            default:
                PlainRun();
                break;
            }
        }
        FlushBytes();
        return m_text.Take();
    }

  private:
    // --- groups -------------------------------------------------------------------------------

    void OpenGroup()
    {
        EndCharacters();
        m_groups.Push(m_group);
    }

    void CloseGroup()
    {
        EndCharacters();
        if (m_groups.Depth() == 0)
        {
            m_ended = true;
            return;
        }
        // Generators that copy HTML's end tags close groups of the RTF side that they never opened.
        if (m_groups.Depth() == 1 && m_group.htmlRtf && m_isHtml)
            return;
        const bool wasTag = m_group.htmlTag;
        m_group = m_groups.Pop();
        m_ended = m_groups.Depth() == 0;
        if (wasTag && !m_group.htmlTag)
            Heed(m_tags.End());
    }

    // A group's border ends a character and the fallback of a \uN.
    void EndCharacters()
    {
        FlushBytes();
        m_fallbackLeft = 0;
        m_ignorable = false;
    }

    // --- text ---------------------------------------------------------------------------------

    bool Shown() const { return !m_group.skipped && !m_group.hidden && !m_isMute; }

    // True when the next character only stands for a \uN before it.
    bool EatFallback()
    {
        if (m_fallbackLeft == 0)
            return false;
        --m_fallbackLeft;
        return true;
    }

    void PlainRun()
    {
        constexpr std::string_view kSpecial("{}\\\r\n\0", 6);
        const std::size_t end = std::min(m_rtf.find_first_of(kSpecial, m_at), m_rtf.size());
        std::string_view run = m_rtf.substr(m_at, end - m_at);
        m_at = end;
        m_ignorable = false;
        const std::size_t eaten = std::min<std::size_t>(m_fallbackLeft, run.size());
        m_fallbackLeft -= static_cast<unsigned>(eaten);
        run.remove_prefix(eaten);
        if (m_group.htmlTag)
        {
            for (const char c : run)
                Heed(m_tags.Feed(c));
        }
        else if (Shown())
            Bytes(run);
    }

    // One character of text that was escaped.
    void TextByte(char c)
    {
        m_ignorable = false;
        if (EatFallback())
            return;
        if (m_group.htmlTag)
            Heed(m_tags.Feed(c));
        else if (Shown())
            Bytes({&c, 1});
    }

    void Emit(std::wstring_view text)
    {
        FlushBytes();
        if (EatFallback())
            return;
        if (m_group.htmlTag)
            Heed(m_tags.Feed('\n')); // a control word in HTML stands for white space
        else if (Shown())
            m_text.Append(text);
    }

    // Bytes are gathered while they may belong together: a double-byte character may stand half as
    // \'xx and half as a plain character. ASCII outside of such characters needs no decoding.
    void Bytes(std::string_view bytes)
    {
        while (!bytes.empty())
        {
            if (!m_needsTrail && IsAscii(bytes.front()))
            {
                FlushBytes();
                const auto end = std::ranges::find_if_not(bytes, IsAscii);
                const auto count = static_cast<std::size_t>(end - bytes.begin());
                m_text.AppendAscii(bytes.substr(0, count));
                bytes.remove_prefix(count);
                continue;
            }
            if (m_bytes.empty())
                m_bytesCodePage = CurrentCodePage();
            m_bytes += bytes.front();
            m_needsTrail = !m_needsTrail && IsLeadByte(m_bytesCodePage, bytes.front());
            bytes.remove_prefix(1);
            if (m_bytes.size() >= kMaxGatheredBytes && !m_needsTrail &&
                !HasLongCharacters(m_bytesCodePage))
                FlushBytes();
        }
    }

    void FlushBytes()
    {
        m_needsTrail = false;
        if (m_bytes.empty())
            return;
        m_text.AppendBy([this](std::wstring& text) { m_decode(m_bytesCodePage, m_bytes, text); });
        m_bytes.clear();
    }

    unsigned CurrentCodePage() const
    {
        const auto font = m_fontCodePages.find(m_group.font);
        return font != m_fontCodePages.end() ? font->second : m_codePage;
    }

    // --- HTML ---------------------------------------------------------------------------------

    void Heed(HtmlLayout layout)
    {
        if (layout == HtmlLayout::None)
            return;
        if (layout == HtmlLayout::BeginsMute)
            m_isMute = true;
        else if (layout == HtmlLayout::EndsMute)
            m_isMute = false;
        else
            m_text.Want(layout);
    }

    void BeginHtmlTag()
    {
        if (m_isHtml && !m_group.skipped && !m_group.hidden)
        {
            m_group.htmlTag = true;
            m_tags.Begin();
        }
        m_group.skipped = true;
    }

    // --- controls -----------------------------------------------------------------------------

    void Control()
    {
        if (m_at >= m_rtf.size())
            return;
        const char c = m_rtf[m_at];
        if (IsLetter(c))
            return ControlWord();
        ++m_at;
        switch (c)
        {
        case '\'':
            return HexByte();
        case '*':
            m_ignorable = true;
            return;
        case '\\':
        case '{':
        case '}':
            return TextByte(c);
        case '~':
            return Emit(L"\x00A0");
        case '_':
            return Emit(L"\x2011");
        case '\r':
        case '\n':
            return Emit(L"\r\n");
        case '\t':
            return Emit(L"\t");
        default: // \- and whatever else shows nothing
            FlushBytes();
            EatFallback();
        }
    }

    void HexByte()
    {
        int value = 0;
        for (int digit = 0; digit < 2; ++digit)
        {
            const int nibble = m_at < m_rtf.size() ? HexDigit(m_rtf[m_at]) : -1;
            if (nibble < 0)
                return; // no hex digits: nothing to show
            value = value * 16 + nibble;
            ++m_at;
        }
        if (value != 0)
            TextByte(static_cast<char>(value));
    }

    void ControlWord()
    {
        const std::size_t start = m_at;
        while (m_at < m_rtf.size() && IsLetter(m_rtf[m_at]))
            ++m_at;
        const std::string_view word = m_rtf.substr(start, m_at - start);

        bool negative = false;
        bool hasNumber = false;
        std::int64_t number = 0;
        if (m_at + 1 < m_rtf.size() && m_rtf[m_at] == '-' && IsDigit(m_rtf[m_at + 1]))
        {
            negative = true;
            ++m_at;
        }
        while (m_at < m_rtf.size() && IsDigit(m_rtf[m_at]))
        {
            hasNumber = true;
            number = std::min<std::int64_t>(number * 10 + (m_rtf[m_at] - '0'), INT32_MAX);
            ++m_at;
        }
        if (negative)
            number = -number;
        if (m_at < m_rtf.size() && m_rtf[m_at] == ' ')
            ++m_at; // the delimiter belongs to the word

        FlushBytes(); // no character spans a control word
        const bool ignorable = m_ignorable;
        m_ignorable = false;
        const RtfWord* row = FindRtfWord(word);
        if (row != nullptr)
            return Act(*row, ignorable, hasNumber, number);
        EatFallback();
        if (ignorable)
            m_group.skipped = true;
    }

    // Any control word counts as one character where the fallback of a \uN is skipped.
    void Act(const RtfWord& row, bool ignorable, bool hasNumber, std::int64_t number)
    {
        switch (row.action)
        {
        case RtfAction::Emit:
            return Emit(row.text);
        case RtfAction::Binary:
            // Skipped in any case: what it holds is no RTF.
            m_at += static_cast<std::size_t>(std::clamp<std::int64_t>(
                number, 0, static_cast<std::int64_t>(m_rtf.size() - m_at)));
            EatFallback();
            return;
        default:
            if (!EatFallback())
                Change(row, ignorable, hasNumber, number);
        }
    }

    void Change(const RtfWord& row, bool ignorable, bool hasNumber, std::int64_t number)
    {
        switch (row.action)
        {
        case RtfAction::Unicode:
            return Unicode(number);
        case RtfAction::Skip:
            m_group.skipped = true;
            break;
        case RtfAction::FontTable:
            m_group.skipped = true;
            m_group.fontTable = true;
            break;
        case RtfAction::HtmlTag:
            BeginHtmlTag();
            break;
        case RtfAction::HtmlRtf:
            m_group.htmlRtf = !hasNumber || number != 0;
            break;
        case RtfAction::FromHtml:
            if (hasNumber && number != 0)
            {
                m_isHtml = true;
                m_text.BeginHtml();
            }
            break;
        case RtfAction::UnicodeAlternative:
            m_group.alternative = !m_group.skipped;
            m_group.skipped = true;
            break;
        case RtfAction::UnicodePreferred:
            if (m_group.alternative)
            {
                m_group.skipped = false;
                m_group.alternative = false;
            }
            else if (ignorable)
                m_group.skipped = true;
            break;
        case RtfAction::Hidden:
            m_group.hidden = !hasNumber || number != 0;
            break;
        case RtfAction::Plain:
            m_group.hidden = false;
            m_group.font = m_defaultFont;
            break;
        case RtfAction::UnicodeCount:
            m_group.unicodeFallback =
                static_cast<std::uint8_t>(std::clamp<std::int64_t>(hasNumber ? number : 1, 0, 255));
            break;
        case RtfAction::CodePage:
            if (!m_hasExplicitCodePage)
                m_codePage = row.codePage;
            break;
        case RtfAction::AnsiCodePage:
            if (IsCodePage(number))
            {
                m_codePage = static_cast<unsigned>(number);
                m_hasExplicitCodePage = true;
            }
            break;
        case RtfAction::DefaultFont:
            if (IsFont(number))
            {
                m_defaultFont = static_cast<std::uint16_t>(number);
                m_group.font = m_defaultFont;
            }
            break;
        case RtfAction::Font:
            if (IsFont(number))
                m_group.font = static_cast<std::uint16_t>(number);
            break;
        case RtfAction::FontCharset:
            SetFontCodePage(CodePageOfCharset(number));
            break;
        case RtfAction::FontCodePage:
            SetFontCodePage(IsCodePage(number) ? static_cast<unsigned>(number) : 0);
            break;
        case RtfAction::Emit:
        case RtfAction::Binary:
            break; // both acted on already
        }
    }

    void SetFontCodePage(unsigned codePage)
    {
        if (m_group.fontTable && codePage != 0)
            m_fontCodePages[m_group.font] = codePage;
    }

    // One UTF-16 code unit, written as a signed 16-bit number; some writers use the unsigned one.
    void Unicode(std::int64_t number)
    {
        if (Shown() && number >= -32768 && number <= 65535 && number != 0)
        {
            const auto unit = static_cast<wchar_t>(static_cast<std::uint16_t>(number));
            m_text.Append({&unit, 1});
        }
        m_fallbackLeft = m_group.unicodeFallback;
    }

    std::string_view m_rtf;
    std::size_t m_at = 0;
    bool m_ended = false;

    unsigned m_codePage;
    bool m_hasExplicitCodePage = false;
    CodePageDecoder m_decode;
    std::uint16_t m_defaultFont = 0;
    std::unordered_map<std::uint16_t, unsigned> m_fontCodePages;

    GroupState m_group;
    GroupStack m_groups;
    unsigned m_fallbackLeft = 0; // characters that still stand for the last \uN
    bool m_ignorable = false;    // \* came just before

    bool m_isHtml = false; // made from HTML
    bool m_isMute = false; // inside an element whose text is never shown
    HtmlTagScanner m_tags;

    std::string m_bytes; // text not yet decoded, in the code page below
    unsigned m_bytesCodePage = 0;
    bool m_needsTrail = false; // the last of it is half a character
    ShownText m_text;
};
} // namespace

bool IsRtf(std::string_view rtf) noexcept
{
    return rtf.starts_with("{\\rtf");
}

std::wstring TextFromRtf(std::string_view rtf, unsigned defaultCodePage, CodePageDecoder decode)
{
    if (!IsRtf(rtf))
        return {};
    return Reader(rtf, defaultCodePage, decode).Read();
}
