#include "localstore/PlainTextRtf.h"

#include <cstdint>

namespace
{

constexpr std::string_view kHeader =
    "{\\rtf1\\ansi\\fromtext\\deff0{\\fonttbl{\\f0\\fswiss Arial;}}\\pard\\plain\\f0\\fs20 ";

void AppendUnit(std::string& rtf, wchar_t unit)
{
    switch (unit)
    {
    case L'\\':
    case L'{':
    case L'}':
        rtf += '\\';
        rtf += static_cast<char>(unit);
        return;
    case L'\t':
        rtf += "\\tab ";
        return;
    case L'\r':
    case L'\n':
        rtf += "\\par ";
        return;
    default:
        if (unit >= L' ' && unit <= L'~')
            rtf += static_cast<char>(unit);
        else // RTF's numbers have 16 bits and a sign
            rtf.append("\\u").append(std::to_string(static_cast<std::int16_t>(unit))).append("?");
    }
}

} // namespace

std::string RtfOfPlainText(std::wstring_view text)
{
    std::string rtf(kHeader);
    rtf.reserve(kHeader.size() + text.size() + 1);
    for (std::size_t i = 0; i < text.size(); ++i)
    {
        const bool isSecondOfBreak = text[i] == L'\n' && i > 0 && text[i - 1] == L'\r';
        if (!isSecondOfBreak)
            AppendUnit(rtf, text[i]);
    }
    return rtf += '}';
}

bool IsRtfOfPlainText(std::string_view rtf) noexcept
{
    return rtf.starts_with(kHeader);
}
