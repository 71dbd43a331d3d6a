#include "client/core/Unicode.h"

#include <algorithm>
#include <cstdint>
#include <iterator>

namespace pim
{
namespace
{
constexpr char32_t kReplacement = 0xFFFD;
constexpr wchar_t kEllipsis = 0x2026;

struct Range
{
    char32_t first;
    char32_t last;
};

// Marks that take no column of their own, by the general categories Mn, Me and Cf of the Unicode
// character database; scripts that a calendar is likely to hold.
constexpr Range kZeroWidth[] = {
    {0x0300, 0x036F}, {0x0483, 0x0489}, {0x0591, 0x05BD}, {0x05BF, 0x05BF},   {0x05C1, 0x05C2},
    {0x05C4, 0x05C5}, {0x05C7, 0x05C7}, {0x0610, 0x061A}, {0x064B, 0x065F},   {0x0670, 0x0670},
    {0x06D6, 0x06DC}, {0x06DF, 0x06E4}, {0x06E7, 0x06E8}, {0x06EA, 0x06ED},   {0x0711, 0x0711},
    {0x0730, 0x074A}, {0x0900, 0x0902}, {0x093A, 0x093A}, {0x093C, 0x093C},   {0x0941, 0x0948},
    {0x094D, 0x094D}, {0x0951, 0x0957}, {0x0962, 0x0963}, {0x0981, 0x0981},   {0x09BC, 0x09BC},
    {0x09C1, 0x09C4}, {0x09CD, 0x09CD}, {0x0A01, 0x0A02}, {0x0A3C, 0x0A3C},   {0x0A41, 0x0A51},
    {0x0A70, 0x0A71}, {0x0A81, 0x0A82}, {0x0ABC, 0x0ABC}, {0x0AC1, 0x0AC8},   {0x0ACD, 0x0ACD},
    {0x0BC0, 0x0BC0}, {0x0BCD, 0x0BCD}, {0x0C3E, 0x0C40}, {0x0C46, 0x0C56},   {0x0CCC, 0x0CCD},
    {0x0D41, 0x0D44}, {0x0D4D, 0x0D4D}, {0x0E31, 0x0E31}, {0x0E34, 0x0E3A},   {0x0E47, 0x0E4E},
    {0x0EB1, 0x0EB1}, {0x0EB4, 0x0EBC}, {0x0EC8, 0x0ECE}, {0x1AB0, 0x1AFF},   {0x1DC0, 0x1DFF},
    {0x200B, 0x200D}, {0x2060, 0x2064}, {0x20D0, 0x20F0}, {0x302A, 0x302D},   {0x3099, 0x309A},
    {0xFE00, 0xFE0F}, {0xFE20, 0xFE2F}, {0xFEFF, 0xFEFF}, {0x1F3FB, 0x1F3FF}, {0xE0100, 0xE01EF},
};

// Characters of two columns, by the values W and F of the Unicode property East_Asian_Width.
constexpr Range kWide[] = {
    {0x1100, 0x115F},   {0x231A, 0x231B},   {0x2329, 0x232A},   {0x23E9, 0x23EC},
    {0x23F0, 0x23F0},   {0x23F3, 0x23F3},   {0x25FD, 0x25FE},   {0x2614, 0x2615},
    {0x2648, 0x2653},   {0x267F, 0x267F},   {0x2693, 0x2693},   {0x26A1, 0x26A1},
    {0x26AA, 0x26AB},   {0x26BD, 0x26BE},   {0x26C4, 0x26C5},   {0x26CE, 0x26CE},
    {0x26D4, 0x26D4},   {0x26EA, 0x26EA},   {0x26F2, 0x26F3},   {0x26F5, 0x26F5},
    {0x26FA, 0x26FA},   {0x26FD, 0x26FD},   {0x2705, 0x2705},   {0x270A, 0x270B},
    {0x2728, 0x2728},   {0x274C, 0x274C},   {0x274E, 0x274E},   {0x2753, 0x2755},
    {0x2757, 0x2757},   {0x2795, 0x2797},   {0x27B0, 0x27B0},   {0x27BF, 0x27BF},
    {0x2B1B, 0x2B1C},   {0x2B50, 0x2B50},   {0x2B55, 0x2B55},   {0x2E80, 0x303E},
    {0x3041, 0x33FF},   {0x3400, 0x4DBF},   {0x4E00, 0xA4CF},   {0xA960, 0xA97F},
    {0xAC00, 0xD7A3},   {0xF900, 0xFAFF},   {0xFE10, 0xFE19},   {0xFE30, 0xFE6F},
    {0xFF01, 0xFF60},   {0xFFE0, 0xFFE6},   {0x16FE0, 0x18CFF}, {0x1AFF0, 0x1B2FF},
    {0x1F004, 0x1F004}, {0x1F0CF, 0x1F0CF}, {0x1F18E, 0x1F18E}, {0x1F191, 0x1F19A},
    {0x1F200, 0x1F320}, {0x1F32D, 0x1F335}, {0x1F337, 0x1F37C}, {0x1F37E, 0x1F393},
    {0x1F3A0, 0x1F3CA}, {0x1F3CF, 0x1F3D3}, {0x1F3E0, 0x1F3F0}, {0x1F3F4, 0x1F3F4},
    {0x1F3F8, 0x1F43E}, {0x1F440, 0x1F440}, {0x1F442, 0x1F4FC}, {0x1F4FF, 0x1F53D},
    {0x1F54B, 0x1F54E}, {0x1F550, 0x1F567}, {0x1F57A, 0x1F57A}, {0x1F595, 0x1F596},
    {0x1F5A4, 0x1F5A4}, {0x1F5FB, 0x1F64F}, {0x1F680, 0x1F6C5}, {0x1F6CC, 0x1F6CC},
    {0x1F6D0, 0x1F6D2}, {0x1F6D5, 0x1F6DF}, {0x1F6EB, 0x1F6EC}, {0x1F6F4, 0x1F6FC},
    {0x1F7E0, 0x1F7F0}, {0x1F90C, 0x1F93A}, {0x1F93C, 0x1F945}, {0x1F947, 0x1F9FF},
    {0x1FA70, 0x1FAFF}, {0x20000, 0x2FFFD}, {0x30000, 0x3FFFD},
};

bool IsIn(const Range* first, const Range* last, char32_t c)
{
    const Range* range = std::lower_bound(
        first, last, c, [](const Range& r, char32_t value) { return r.last < value; });
    return range != last && range->first <= c;
}

bool IsHighSurrogate(std::uint32_t unit)
{
    return unit >= 0xD800 && unit <= 0xDBFF;
}

bool IsLowSurrogate(std::uint32_t unit)
{
    return unit >= 0xDC00 && unit <= 0xDFFF;
}

// Takes one character off the front of UTF-16 text that is not empty.
char32_t TakeCharacter(std::wstring_view& text)
{
    const auto unit = std::uint32_t(text[0]);
    if (IsHighSurrogate(unit) && text.size() > 1 && IsLowSurrogate(std::uint32_t(text[1])))
    {
        const auto low = std::uint32_t(text[1]);
        text.remove_prefix(2);
        return 0x10000 + ((unit - 0xD800) << 10) + (low - 0xDC00);
    }
    text.remove_prefix(1);
    return unit >= 0xD800 && (unit <= 0xDFFF || unit > 0xFFFF) ? kReplacement : char32_t(unit);
}

void AppendCharacter(std::wstring& text, char32_t c)
{
    if (c < 0x10000)
    {
        text += wchar_t(c);
        return;
    }
    text += wchar_t(0xD800 + ((c - 0x10000) >> 10));
    text += wchar_t(0xDC00 + ((c - 0x10000) & 0x3FF));
}

int WidthOf(char32_t c)
{
    if (IsIn(std::begin(kZeroWidth), std::end(kZeroWidth), c))
        return 0;
    return IsIn(std::begin(kWide), std::end(kWide), c) ? 2 : 1;
}

bool IsLineBreak(char32_t c)
{
    return c == '\n' || c == '\r' || c == 0x0B || c == 0x0C || c == 0x85 || c == 0x2028 ||
           c == 0x2029;
}

// Control characters, which a terminal may obey, and the marks that turn the writing direction.
bool IsControl(char32_t c)
{
    return c < 0x20 || (c >= 0x7F && c <= 0x9F) || c == 0x200E || c == 0x200F || c == 0x061C ||
           (c >= 0x202A && c <= 0x202E) || (c >= 0x2066 && c <= 0x2069);
}
} // namespace

std::string Utf8FromWide(std::wstring_view text)
{
    std::string bytes;
    bytes.reserve(text.size());
    while (!text.empty())
    {
        const char32_t c = TakeCharacter(text);
        if (c < 0x80)
        {
            bytes += char(c);
        }
        else if (c < 0x800)
        {
            bytes += char(0xC0 | (c >> 6));
            bytes += char(0x80 | (c & 0x3F));
        }
        else if (c < 0x10000)
        {
            bytes += char(0xE0 | (c >> 12));
            bytes += char(0x80 | ((c >> 6) & 0x3F));
            bytes += char(0x80 | (c & 0x3F));
        }
        else
        {
            bytes += char(0xF0 | (c >> 18));
            bytes += char(0x80 | ((c >> 12) & 0x3F));
            bytes += char(0x80 | ((c >> 6) & 0x3F));
            bytes += char(0x80 | (c & 0x3F));
        }
    }
    return bytes;
}

std::wstring WideFromUtf8(std::string_view bytes)
{
    // The least value that needs this many bytes; a shorter one in so many bytes is no UTF-8.
    constexpr char32_t kLeast[] = {0, 0, 0x80, 0x800, 0x10000};

    std::wstring text;
    text.reserve(bytes.size());
    for (std::size_t i = 0; i < bytes.size();)
    {
        const auto lead = static_cast<unsigned char>(bytes[i]);
        std::size_t length = 1;
        char32_t c = lead;
        if (lead >= 0xC0 && lead <= 0xF7)
        {
            length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
            c = lead & (0x7Fu >> length);
        }
        bool good = lead < 0x80 || (length > 1 && i + length <= bytes.size());
        for (std::size_t k = 1; good && k < length; ++k)
        {
            const auto next = static_cast<unsigned char>(bytes[i + k]);
            good = (next & 0xC0) == 0x80;
            c = (c << 6) | (next & 0x3Fu);
        }
        if (good && length > 1)
            good = c >= kLeast[length] && c <= 0x10FFFF && !(c >= 0xD800 && c <= 0xDFFF);
        AppendCharacter(text, good ? c : kReplacement);
        i += good ? length : 1;
    }
    return text;
}

std::wstring OneLine(std::wstring_view text)
{
    std::wstring line;
    line.reserve(text.size());
    char32_t previous = 0;
    while (!text.empty())
    {
        const char32_t c = TakeCharacter(text);
        if (IsLineBreak(c) || c == '\t')
        {
            if (!(c == '\n' && previous == '\r'))
                line += L' ';
        }
        else
        {
            AppendCharacter(line, IsControl(c) ? kReplacement : c);
        }
        previous = c;
    }
    return line;
}

std::wstring ManyLines(std::wstring_view text)
{
    std::wstring lines;
    lines.reserve(text.size());
    char32_t previous = 0;
    while (!text.empty())
    {
        const char32_t c = TakeCharacter(text);
        if (IsLineBreak(c))
        {
            if (!(c == '\n' && previous == '\r'))
                lines += L'\n';
        }
        else
        {
            AppendCharacter(lines, c != '\t' && IsControl(c) ? kReplacement : c);
        }
        previous = c;
    }
    return lines;
}

int DisplayWidth(std::wstring_view text)
{
    int width = 0;
    while (!text.empty())
        width += WidthOf(TakeCharacter(text));
    return width;
}

std::wstring CutToWidth(std::wstring_view text, int columns)
{
    if (DisplayWidth(text) <= columns)
        return std::wstring(text);
    std::wstring cut;
    int width = 0;
    while (!text.empty())
    {
        const char32_t c = TakeCharacter(text);
        // One column stays for the ellipsis.
        if (width + WidthOf(c) > columns - 1)
            break;
        width += WidthOf(c);
        AppendCharacter(cut, c);
    }
    if (columns > 0)
        cut += kEllipsis;
    return cut;
}
} // namespace pim
