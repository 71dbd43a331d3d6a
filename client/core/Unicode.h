// The client's text between UTF-8 outside and UTF-16 inside, and what is fit to be shown. Portable.
#pragma once

#include <string>
#include <string_view>

namespace pim
{
// Always valid UTF-8: half a surrogate pair becomes U+FFFD.
std::string Utf8FromWide(std::wstring_view text);

// Bytes that are no UTF-8 become U+FFFD, one for each byte that fits nowhere.
std::wstring WideFromUtf8(std::string_view bytes);

// The text on one line, safe for a terminal: line breaks and tabs become blanks, other control
// characters (also those that turn the direction of writing) become U+FFFD.
std::wstring OneLine(std::wstring_view text);

// As OneLine, but line breaks of every kind stay, as a line feed each, and tabs stay.
std::wstring ManyLines(std::wstring_view text);

// The columns that a text takes on a terminal: two for East Asian wide characters and most
// pictographs, none for marks that combine with the character before them.
int DisplayWidth(std::wstring_view text);

// The text in at most that many columns; what was cut shows as an ellipsis at the end.
std::wstring CutToWidth(std::wstring_view text, int columns);
} // namespace pim
