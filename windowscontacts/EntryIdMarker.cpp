#include "windowscontacts/EntryIdMarker.h"

#include <algorithm>
#include <string_view>

namespace
{
constexpr std::wstring_view kMarker = L"/GUID:\"";

std::wstring UnitsOf(std::span<const std::uint8_t> bytes)
{
    std::wstring text(bytes.size() / 2, L'\0');
    for (std::size_t i = 0; i < text.size(); ++i)
        text[i] = static_cast<wchar_t>(bytes[2 * i] | bytes[2 * i + 1] << 8);
    return text;
}
} // namespace

std::wstring MarkedIdentity(std::span<const std::uint8_t> entryID)
{
    const std::wstring text = UnitsOf(entryID);
    const std::size_t found = text.find(kMarker);
    if (found == std::wstring::npos)
        return {};
    const std::size_t start = found + kMarker.size();
    const std::size_t end = text.find_first_of(std::wstring_view(L"\"\0", 2), start);
    return text.substr(start, std::min(end - start, kLongestMarkedIdentity));
}
