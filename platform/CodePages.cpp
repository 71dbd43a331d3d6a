#include "platform/CodePages.h"

#include "platform/WindowsHeaders.h"

#include <algorithm>
#include <cstddef>

namespace
{
constexpr unsigned kWestern = 1252;
constexpr std::size_t kPiece = std::size_t{1} << 30; // the system counts in int

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

bool AppendBytes(unsigned codePage, std::wstring_view text, std::string& bytes)
{
    const int units = static_cast<int>(text.size());
    const int room =
        WideCharToMultiByte(codePage, 0, text.data(), units, nullptr, 0, nullptr, nullptr);
    const std::size_t start = bytes.size();
    bytes.resize(start + static_cast<std::size_t>(std::max(room, 0)));
    return room > 0 &&
           WideCharToMultiByte(
               codePage, 0, text.data(), units, bytes.data() + start, room, nullptr, nullptr) ==
               room;
}
} // namespace

void AppendFromCodePage(unsigned codePage, std::string_view bytes, std::wstring& text)
{
    while (!bytes.empty())
    {
        const std::string_view piece = bytes.substr(0, kPiece);
        if (!Append(codePage, piece, text))
            Append(kWestern, piece, text);
        bytes.remove_prefix(piece.size());
    }
}

void AppendToCodePage(unsigned codePage, std::wstring_view text, std::string& bytes)
{
    constexpr std::size_t kPieceUnits = kPiece / 4; // no code page has more bytes per unit
    while (!text.empty())
    {
        const std::wstring_view piece = text.substr(0, kPieceUnits);
        if (!AppendBytes(codePage, piece, bytes))
            AppendBytes(kWestern, piece, bytes);
        text.remove_prefix(piece.size());
    }
}
