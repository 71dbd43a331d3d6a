#include "platform/Utf8.h"

#include <cstdint>

namespace
{
constexpr wchar_t kReplacement = 0xFFFD;

bool IsHighSurrogate(std::uint32_t unit)
{
    return unit >= 0xD800 && unit <= 0xDBFF;
}

bool IsLowSurrogate(std::uint32_t unit)
{
    return unit >= 0xDC00 && unit <= 0xDFFF;
}

// Bytes of a sequence with this lead; 0 for a byte that leads none.
int SequenceLength(std::uint8_t lead)
{
    if (lead < 0x80)
        return 1;
    if (lead >= 0xC2 && lead <= 0xDF)
        return 2;
    if (lead >= 0xE0 && lead <= 0xEF)
        return 3;
    return lead >= 0xF0 && lead <= 0xF4 ? 4 : 0;
}

// Whether the first continuation byte keeps the character out of the surrogates, within U+10FFFF
// and in its shortest form.
bool MayFollow(std::uint8_t lead, std::uint8_t second)
{
    switch (lead)
    {
    case 0xE0:
        return second >= 0xA0;
    case 0xED:
        return second < 0xA0;
    case 0xF0:
        return second >= 0x90;
    case 0xF4:
        return second < 0x90;
    default:
        return true;
    }
}

// Reads one character and moves behind it; what is no character moves behind its longest beginning.
std::uint32_t NextCharacter(std::string_view text, std::size_t& position)
{
    const auto lead = static_cast<std::uint8_t>(text[position++]);
    const int length = SequenceLength(lead);
    if (length == 0)
        return kReplacement;
    if (length == 1)
        return lead;
    std::uint32_t character = lead & (0xFFu >> (length + 1));
    for (int index = 1; index < length; ++index)
    {
        if (position == text.size())
            return kReplacement;
        const auto byte = static_cast<std::uint8_t>(text[position]);
        if ((byte & 0xC0) != 0x80)
            return kReplacement;
        ++position;
        if (index == 1 && !MayFollow(lead, byte))
            return kReplacement;
        character = (character << 6) | (byte & 0x3Fu);
    }
    return character;
}

void AppendUtf8(std::string& out, std::uint32_t character)
{
    const auto continuation = [&out, character](int shift) {
        out += static_cast<char>(0x80 | ((character >> shift) & 0x3F));
    };
    if (character < 0x80)
    {
        out += static_cast<char>(character);
    }
    else if (character < 0x800)
    {
        out += static_cast<char>(0xC0 | (character >> 6));
        continuation(0);
    }
    else if (character < 0x10000)
    {
        out += static_cast<char>(0xE0 | (character >> 12));
        continuation(6);
        continuation(0);
    }
    else
    {
        out += static_cast<char>(0xF0 | (character >> 18));
        continuation(12);
        continuation(6);
        continuation(0);
    }
}
} // namespace

std::wstring DecodeUtf8(std::string_view text)
{
    // No byte makes more than one code unit.
    std::wstring wide(text.size(), L'\0');
    wchar_t* out = wide.data();
    for (std::size_t position = 0; position < text.size();)
    {
        // Most bytes of most texts are ASCII.
        if (const auto byte = static_cast<std::uint8_t>(text[position]); byte < 0x80)
        {
            *out++ = byte;
            ++position;
            continue;
        }
        const std::uint32_t character = NextCharacter(text, position);
        if (character < 0x10000)
        {
            *out++ = static_cast<wchar_t>(character);
        }
        else
        {
            *out++ = static_cast<wchar_t>(0xD800 + ((character - 0x10000) >> 10));
            *out++ = static_cast<wchar_t>(0xDC00 + ((character - 0x10000) & 0x3FF));
        }
    }
    wide.resize(static_cast<std::size_t>(out - wide.data()));
    return wide;
}

std::string EncodeUtf8(std::wstring_view text)
{
    std::string utf8;
    utf8.reserve(text.size());
    for (std::size_t position = 0; position < text.size(); ++position)
    {
        auto unit = static_cast<std::uint32_t>(text[position]);
        if (unit < 0x80)
        {
            utf8 += static_cast<char>(unit);
            continue;
        }
        if (IsHighSurrogate(unit) && position + 1 < text.size() &&
            IsLowSurrogate(static_cast<std::uint32_t>(text[position + 1])))
        {
            ++position;
            unit = 0x10000 + ((unit - 0xD800) << 10) +
                   (static_cast<std::uint32_t>(text[position]) - 0xDC00);
        }
        else if (unit > 0xFFFF || IsHighSurrogate(unit) || IsLowSurrogate(unit))
        {
            unit = kReplacement;
        }
        AppendUtf8(utf8, unit);
    }
    return utf8;
}
