// The RTF of any text is ASCII of bounded size that is told from other RTF by its head, and the
// text is read from it, with CR LF for every kind of line break.
#include "Require.h"

#include "localstore/PlainTextRtf.h"
#include "platform/CodePages.h"
#include "rtfconverter/RtfText.h"

#include <algorithm>
#include <cstdint>
#include <string>

namespace
{
std::wstring WithLineBreaks(const std::wstring& text)
{
    std::wstring result;
    for (std::size_t i = 0; i < text.size(); ++i)
    {
        if (text[i] == L'\r' || (text[i] == L'\n' && (i == 0 || text[i - 1] != L'\r')))
            result += L"\r\n";
        else if (text[i] != L'\n')
            result += text[i];
    }
    return result;
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    // Any units: small ones of a byte, the others of two. Texts have no zeros.
    std::wstring text;
    for (std::size_t i = 0; i < size; ++i)
    {
        unsigned unit = data[i];
        if (unit >= 0x80 && i + 1 < size)
            unit = (unit & 0x7F) << 9 | data[++i];
        if (unit != 0)
            text += static_cast<wchar_t>(unit);
    }
    const std::string rtf = RtfOfPlainText(text);
    Require(IsRtf(rtf) && IsRtfOfPlainText(rtf));
    Require(std::ranges::all_of(rtf, [](char byte) { return byte >= ' ' && byte <= '~'; }));
    Require(rtf.size() <= RtfOfPlainText(L"").size() + kMostRtfBytesOfUnit * text.size());
    Require(TextFromRtf(rtf, 1252, AppendFromCodePage) == WithLineBreaks(text));
    return 0;
}
