// Small text helpers without state. Portable.
#pragma once

#include <string>
#include <string_view>
#include <vector>

// When the delimiter is found, head is the text before it and tail the text from one position
// behind the delimiter's start, whatever its length. Otherwise, and for an empty text, both
// outputs stay untouched. An empty delimiter is found at the start.
void SplitAtFirst(const std::wstring& text,
                  std::wstring& head,
                  std::wstring& tail,
                  const std::wstring& delimiter);

// The text without that character at both ends. A text of nothing else comes back whole.
std::wstring TrimChar(const std::wstring& text, wchar_t character);

// Every occurrence replaced. A null argument gives an empty string. Each replacement is followed by
// a scan from the start of the text, so that a match which a replacement forms is replaced too; an
// empty search text, and a replacement that holds the search, get one pass without that rescan.
// Limits: after as many replacements as the text has characters, and 10,000 more, the rest gets one
// pass too, so that rules which never settle end; the cost is linear in the text.
std::wstring ReplaceAll(const wchar_t* text, const wchar_t* search, const wchar_t* replacement);

// Appends each item, with the separator before each item once the output is non-empty.
void JoinStrings(std::wstring& output,
                 const std::vector<std::wstring>& items,
                 const std::wstring& separator);

// The parts of the text between separators, trimmed of blanks at both ends, without empty parts.
// An empty separator gives the text as its one part.
std::vector<std::wstring> SplitStrings(const std::wstring& text, const std::wstring& separator);

// The number that the text begins with, as the C library's decimal reading gives it: blanks, one
// sign, digits; 0 where there is none. Beyond 32 bits the nearest limit.
int ParseInt(std::wstring_view text);
