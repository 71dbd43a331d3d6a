#include "service/XmlScan.h"

#include <array>

namespace
{
unsigned char Byte(char character)
{
    return static_cast<unsigned char>(character);
}

bool IsBlank(char c)
{
    return c == ' ' || (c >= '\t' && c <= '\r');
}

// The parser takes every byte beyond ASCII for a letter.
bool IsNameStart(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || Byte(c) >= 127;
}

bool IsNamePart(char c)
{
    return IsNameStart(c) || (c >= '0' && c <= '9') || c == '-' || c == '.' || c == ':';
}

bool IsDigit(char c)
{
    return c >= '0' && c <= '9';
}

bool IsHexDigit(char c)
{
    return IsDigit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

char Lower(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

struct Utf8Row
{
    unsigned char firstLead;
    unsigned char lastLead;
    unsigned char lowestSecond;
    unsigned char highestSecond;
    unsigned char length;
};

// The well-formed sequences of more than one byte: no overlong forms, no surrogates, nothing
// beyond U+10FFFF.
constexpr Utf8Row kUtf8Rows[] = {
    {0xC2, 0xDF, 0x80, 0xBF, 2},
    {0xE0, 0xE0, 0xA0, 0xBF, 3},
    {0xE1, 0xEC, 0x80, 0xBF, 3},
    {0xED, 0xED, 0x80, 0x9F, 3},
    {0xEE, 0xEF, 0x80, 0xBF, 3},
    {0xF0, 0xF0, 0x90, 0xBF, 4},
    {0xF1, 0xF3, 0x80, 0xBF, 4},
    {0xF4, 0xF4, 0x80, 0x8F, 4},
};

// The length of the sequence at the front, 0 where there is no good one.
std::size_t SequenceLength(std::string_view text)
{
    const unsigned char lead = Byte(text[0]);
    if (lead < 0x80)
        return 1;
    for (const Utf8Row& row : kUtf8Rows)
    {
        if (lead < row.firstLead || lead > row.lastLead)
            continue;
        if (text.size() < row.length || Byte(text[1]) < row.lowestSecond ||
            Byte(text[1]) > row.highestSecond)
            return 0;
        for (std::size_t i = 2; i < row.length; ++i)
            if ((Byte(text[i]) & 0xC0) != 0x80)
                return 0;
        return row.length;
    }
    return 0;
}

bool IsUtf8(std::string_view text)
{
    while (!text.empty())
    {
        const std::size_t length = SequenceLength(text);
        if (length == 0)
            return false;
        text.remove_prefix(length);
    }
    return true;
}

// Reads the text as the parser does, with a stack of names in place of its recursion. Every reading
// method returns false where the parser goes no further.
class Scanner
{
  public:
    explicit Scanner(std::string_view text) : m_rest(text.substr(0, text.find('\0'))) {}

    XmlScanResult Run()
    {
        while (m_result == XmlScanResult::Ok && SkipBlanks() && Next())
        {
        }
        return m_result;
    }

  private:
    bool StartsWith(std::string_view what) const { return m_rest.starts_with(what); }

    bool Skip(std::size_t count)
    {
        m_rest.remove_prefix(count);
        return !m_rest.empty();
    }

    bool SkipBehind(std::string_view end, std::size_t from)
    {
        const std::size_t at = m_rest.find(end, from);
        if (at == std::string_view::npos)
            return false;
        return Skip(at + end.size());
    }

    // Blanks, byte-order marks and the two noncharacters behind them. False at the end.
    bool SkipBlanks()
    {
        while (!m_rest.empty())
        {
            if (IsBlank(m_rest[0]))
                m_rest.remove_prefix(1);
            else if (StartsWith("\xEF\xBB\xBF") || StartsWith("\xEF\xBF\xBE") ||
                     StartsWith("\xEF\xBF\xBF"))
                m_rest.remove_prefix(3);
            else
                return true;
        }
        return false;
    }

    bool CountNode()
    {
        if (++m_nodes > kMaxXmlNodes)
            m_result = XmlScanResult::TooManyNodes;
        return m_result == XmlScanResult::Ok;
    }

    // One node or one end tag; the text stands on something that is no blank.
    bool Next()
    {
        if (m_rest[0] != '<')
            return m_depth > 0 && CountNode() && SkipCharacters('<');
        if (m_depth > 0 && StartsWith("</"))
            return EndTag();
        if (!CountNode())
            return false;
        if (StartsWithWord("<?xml"))
            return Declaration();
        if (StartsWith("<!--"))
            return SkipBehind("-->", 4);
        if (StartsWith("<![CDATA["))
            return SkipBehind("]]>", 9);
        if (!StartsWith("<!") && m_rest.size() > 1 && IsNameStart(m_rest[1]))
            return StartTag();
        return SkipBehind(">", 1); // whatever else: read over
    }

    // Without regard to the case of the text; the word is in lower case.
    bool StartsWithWord(std::string_view word) const
    {
        if (m_rest.size() < word.size())
            return false;
        for (std::size_t i = 0; i < word.size(); ++i)
            if (Lower(m_rest[i]) != word[i])
                return false;
        return true;
    }

    // Three attributes are read as such; anything else is passed over piece by piece.
    bool Declaration()
    {
        m_rest.remove_prefix(5);
        while (!m_rest.empty())
        {
            if (m_rest[0] == '>')
                return Skip(1);
            if (!SkipBlanks())
                return false;
            if (StartsWithWord("version") || StartsWithWord("encoding") ||
                StartsWithWord("standalone"))
            {
                if (!Attribute())
                    return false;
            }
            else
            {
                while (!m_rest.empty() && m_rest[0] != '>' && !IsBlank(m_rest[0]))
                    m_rest.remove_prefix(1);
            }
        }
        return false;
    }

    bool StartTag()
    {
        if (m_depth == kMaxXmlDepth)
        {
            m_result = XmlScanResult::TooDeep;
            return false;
        }
        // A byte-order mark looks like a letter at first and is then passed over as a blank.
        m_rest.remove_prefix(1);
        if (!SkipBlanks())
            return false;
        const std::string_view name = Name();
        if (name.empty())
            return false;
        std::size_t attributes = 0;
        while (SkipBlanks())
        {
            if (m_rest[0] == '/')
                return m_rest.size() > 1 && m_rest[1] == '>' && Skip(2);
            if (m_rest[0] == '>')
            {
                m_names[m_depth++] = name;
                return Skip(1);
            }
            if (++attributes > kMaxXmlAttributes)
                m_result = XmlScanResult::TooManyNodes;
            if (!CountNode() || !Attribute())
                return false;
        }
        return false;
    }

    // The parser compares the name as a prefix and then wants blanks and the bracket.
    bool EndTag()
    {
        m_rest.remove_prefix(2);
        const std::string_view name = m_names[m_depth - 1];
        if (!StartsWith(name))
            return false;
        m_rest.remove_prefix(name.size());
        if (!SkipBlanks() || m_rest[0] != '>')
            return false;
        --m_depth;
        return Skip(1);
    }

    std::string_view Name()
    {
        std::size_t length = 0;
        if (!m_rest.empty() && IsNameStart(m_rest[0]))
            while (length < m_rest.size() && IsNamePart(m_rest[length]))
                ++length;
        const std::string_view name = m_rest.substr(0, length);
        m_rest.remove_prefix(length);
        return name;
    }

    bool Attribute()
    {
        if (Name().empty() || !SkipBlanks() || m_rest[0] != '=')
            return false;
        m_rest.remove_prefix(1);
        if (!SkipBlanks())
            return false;
        const char quote = m_rest[0];
        if (quote == '"' || quote == '\'')
        {
            m_rest.remove_prefix(1);
            return SkipCharacters(quote) && Skip(1);
        }
        while (!m_rest.empty() && !IsBlank(m_rest[0]) && m_rest[0] != '/' && m_rest[0] != '>')
        {
            if (m_rest[0] == '"' || m_rest[0] == '\'')
                return false;
            m_rest.remove_prefix(1);
        }
        return !m_rest.empty();
    }

    // Up to the end character, which stays. A numeric reference counts as one character.
    bool SkipCharacters(char end)
    {
        while (!m_rest.empty() && m_rest[0] != end)
        {
            const std::size_t length = StartsWith("&#") ? ReferenceLength() : 1;
            if (length == 0)
                return false;
            m_rest.remove_prefix(length);
        }
        return !m_rest.empty();
    }

    // The parser takes the next semicolon, however far, and reads digits backwards from it up to
    // the next mark, which may be that of a later reference. 0 where anything else stands between:
    // the parser stops there.
    std::size_t ReferenceLength() const
    {
        if (m_rest.size() < 3)
            return 1;
        const bool isHex = m_rest[2] == 'x';
        const std::size_t semicolon = m_rest.find(';', isHex ? 3 : 2);
        if (semicolon == std::string_view::npos)
            return 0;
        for (std::size_t i = semicolon - 1; m_rest[i] != (isHex ? 'x' : '#'); --i)
            if (!(isHex ? IsHexDigit(m_rest[i]) : IsDigit(m_rest[i])))
                return 0;
        return semicolon + 1;
    }

    std::string_view m_rest;
    std::array<std::string_view, kMaxXmlDepth> m_names;
    std::size_t m_depth = 0;
    std::size_t m_nodes = 0;
    XmlScanResult m_result = XmlScanResult::Ok;
};
} // namespace

XmlScanResult ScanXml(std::string_view text)
{
    if (text.size() > kMaxXmlBytes)
        return XmlScanResult::TooLarge;
    if (!IsUtf8(text))
        return XmlScanResult::BadEncoding;
    return Scanner(text).Run();
}
