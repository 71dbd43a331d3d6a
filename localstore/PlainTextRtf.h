// RTF of plain text (RTF 1.9.1), as message stores make it for clients that read formatted bodies
// alone. Pure.
//
// The document says \fromtext ([MS-OXRTFEX]): it holds what the text holds and nothing more.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

// The document, in ASCII alone. CR LF, a lone CR and a lone LF are each a paragraph's end, tabs
// stay tabs, and each other code unit that is no printable ASCII character is \uN with a question
// mark for readers that know no Unicode; surrogates stay a pair. Memory: at most
// kMostRtfBytesOfUnit bytes per code unit and a short header. Throws std::bad_alloc.
std::string RtfOfPlainText(std::wstring_view text);

// Whether a document begins as those of RtfOfPlainText do.
bool IsRtfOfPlainText(std::string_view rtf) noexcept;

inline constexpr std::size_t kMostRtfBytesOfUnit = 9; // \u-32768?
