#include "icalendar/LogicalLines.h"

#include "service/TextConversions.h"

#include <cstring>
#include <string>
#include <utility>

namespace
{

// The physical lines of the bytes, one behind every line feed and one at the end.
class PhysicalLines
{
  public:
    explicit PhysicalLines(std::string_view bytes) noexcept : m_rest(bytes) {}

    // Whether the last line read was ended by the end of the bytes.
    bool AtEnd() const noexcept { return m_atEnd; }

    // Replaces the text by the next line.
    void Read(std::wstring& text)
    {
        std::string_view line = m_rest;
        const std::size_t feed = m_rest.find('\n');
        if (feed == std::string_view::npos)
        {
            m_atEnd = true;
            m_rest = {};
        }
        else
        {
            line = m_rest.substr(0, feed);
            m_rest.remove_prefix(feed + 1);
            if (!line.empty() && line.back() == '\r')
                line.remove_suffix(1);
        }
        Convert(line.substr(0, line.find('\0')), text);
    }

  private:
    static void Convert(std::string_view line, std::wstring& text)
    {
        text.resize(line.size());
        unsigned char all = 0;
        for (std::size_t i = 0; i < line.size(); ++i)
        {
            const auto byte = static_cast<unsigned char>(line[i]);
            all |= byte;
            text[i] = byte;
        }
        if (all >= 0x80)
            text = WideFromUtf8(line);
    }

    std::string_view m_rest;
    bool m_atEnd = false;
};

} // namespace

void ForEachLogicalLine(std::string_view bytes,
                        const std::function<void(std::wstring_view line, bool repeated)>& deliver)
{
    PhysicalLines lines(bytes);
    std::wstring pending; // the logical line being collected
    std::wstring next;    // the physical line held back
    std::wstring line;
    bool nextIsPending = true; // both hold the same text, which then stands in pending alone
    bool repeated = false;     // pending was delivered and has not changed since
    while (!lines.AtEnd())
    {
        bool continued = false;
        do
        {
            lines.Read(line);
            if (line.empty())
                continue;
            if (line.front() != L' ' && line.front() != L'\t')
            {
                continued = false;
                next.swap(line);
                nextIsPending = false;
            }
            else
            {
                if (nextIsPending)
                    next = pending;
                nextIsPending = false;
                pending.append(line, 1);
                repeated = false;
                continued = true;
            }
        } while (continued && !lines.AtEnd());

        deliver(pending, repeated);
        repeated = nextIsPending;
        if (!nextIsPending)
            pending.swap(next);
        nextIsPending = true;
    }
}
