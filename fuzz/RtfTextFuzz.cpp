// The RTF reader gives the same text twice, at most one code unit per byte, and no markup of its
// own: what a plain document says comes back unchanged when it is written as RTF.
#include "platform/CodePages.h"
#include "rtfconverter/RtfText.h"

#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

namespace
{
// Any units but zero, each as \uN.
std::string AsRtf(std::wstring_view text)
{
    std::string rtf = "{\\rtf1\\uc0 ";
    for (const wchar_t unit : text)
        rtf += "\\u" + std::to_string(static_cast<std::int16_t>(unit)) + " ";
    return rtf + "}";
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    std::string rtf(reinterpret_cast<const char*>(data), size);
    if (!IsRtf(rtf))
    {
        if (!TextFromRtf(rtf, 1252, AppendFromCodePage).empty())
            std::abort();
        rtf.insert(0, "{\\rtf1\\ansi\\fromhtml1 ");
    }
    for (const unsigned codePage : {1252u, 932u})
    {
        const std::wstring text = TextFromRtf(rtf, codePage, AppendFromCodePage);
        if (text.size() > rtf.size() || text != TextFromRtf(rtf, codePage, AppendFromCodePage))
            std::abort();
        for (const wchar_t unit : text)
            if (unit == 0 || static_cast<std::uint32_t>(unit) > 0xFFFF)
                std::abort();
        if (TextFromRtf(AsRtf(text), codePage, AppendFromCodePage) != text)
            std::abort();
    }
    return 0;
}
