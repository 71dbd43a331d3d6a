#include "platform/CodePages.h"

#include "platform/WindowsHeaders.h"

#include <algorithm>
#include <cstddef>

namespace
{
constexpr unsigned kWestern = 1252;
constexpr std::size_t kPieceBytes = std::size_t{1} << 30; // the system counts in int

bool Append(unsigned codePage, std::string_view bytes, std::wstring& text)
{
    // No code page has more units than bytes, so that one call does.
    const std::size_t start = text.size();
    const int room = static_cast<int>(bytes.size());
    text.resize(start + bytes.size());
    const int units =
        MultiByteToWideChar(codePage, 0, bytes.data(), room, text.data() + start, room);
    text.resize(start + static_cast<std::size_t>(std::max(units, 0)));
    return units > 0;
}
} // namespace

void AppendFromCodePage(unsigned codePage, std::string_view bytes, std::wstring& text)
{
    while (!bytes.empty())
    {
        const std::string_view piece = bytes.substr(0, kPieceBytes);
        if (!Append(codePage, piece, text))
            Append(kWestern, piece, text);
        bytes.remove_prefix(piece.size());
    }
}
