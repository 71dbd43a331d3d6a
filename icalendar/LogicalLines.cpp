#include "icalendar/LogicalLines.h"

#include "service/TextConversions.h"

#include <cstddef>
#include <cstdint>
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
    // Most lines are ASCII and short: eight bytes at a time, then the rest.
    static void Convert(std::string_view line, std::wstring& text)
    {
        constexpr std::size_t kBlock = 8;
        const std::size_t size = line.size();
        text.resize(size);
        const char* from = line.data();
        const char* const end = from + size;
        wchar_t* to = text.data();
        std::uint64_t all = 0;
        for (; end - from >= static_cast<std::ptrdiff_t>(kBlock); from += kBlock, to += kBlock)
        {
            std::uint64_t block;
            std::memcpy(&block, from, kBlock);
            all |= block;
            for (std::size_t i = 0; i < kBlock; ++i)
                to[i] = static_cast<unsigned char>(from[i]);
        }
        for (; from != end; ++from, ++to)
        {
            const auto byte = static_cast<unsigned char>(*from);
            all |= byte;
            *to = byte;
        }
        if (all & 0x8080808080808080)
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
                // The line held back is not needed again: another one replaces it, or the end
                // comes.
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
