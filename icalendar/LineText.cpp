#include "icalendar/LineText.h"

namespace
{

// Kept as it is: one cut only, counted in UTF-16 code units, where other writers fold again and
// count bytes. Pinned by LineTextTest.
constexpr std::size_t kFoldAt = 75;

} // namespace

bool SplitLine(std::wstring_view line, std::wstring_view& name, std::wstring_view& value)
{
    if (line.empty())
        return false;
    if (line.back() == L'\n')
        line.remove_suffix(1);
    // Between two quotes no colon counts; a quote without a second one hides all behind it. Each
    // search goes on where the one before it ended, so that many quotes cost no more than few.
    std::size_t colon = line.find(L':');
    std::size_t unquoted = 0;
    while (colon != std::wstring_view::npos)
    {
        const std::size_t opening = line.substr(0, colon).find(L'"', unquoted);
        if (opening == std::wstring_view::npos)
        {
            name = line.substr(0, colon);
            value = line.substr(colon + 1);
            return true;
        }
        const std::size_t closing = line.find(L'"', opening + 1);
        if (closing == std::wstring_view::npos)
            return false;
        unquoted = closing + 1;
        if (colon < unquoted)
            colon = line.find(L':', unquoted);
    }
    return false;
}

std::wstring FormatLine(std::wstring_view name, std::wstring_view value)
{
    std::wstring line;
    AppendLine(line, name, value);
    return line;
}

void AppendLine(std::wstring& out, std::wstring_view name, std::wstring_view value)
{
    const std::size_t start = out.size();
    out += name;
    out += L':';
    out += value;
    if (out.size() - start > kFoldAt)
        out.insert(start + kFoldAt, L"\r\n ");
    out += L"\r\n";
}
