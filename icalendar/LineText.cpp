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
    bool inQuotes = false;
    for (std::size_t i = 0; i < line.size(); ++i)
    {
        const wchar_t character = line[i];
        if (character == L'"')
            inQuotes = !inQuotes;
        if (character == L':' && !inQuotes)
        {
            name = line.substr(0, i);
            value = line.substr(i + 1);
            return true;
        }
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
