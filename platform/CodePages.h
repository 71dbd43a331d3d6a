// Text in Windows code pages: the system's conversion on Windows, iconv elsewhere. Both agree on
// every assigned character of 1252, 932, 936, 949 and 950.
#pragma once

#include <string>
#include <string_view>

// Appends the text of bytes in a code page to *text, as UTF-16 code units, at most one unit per
// byte. What means nothing is replaced, by U+FFFD or by what the system puts there; areas for
// private use are decoded on Windows alone. An unknown code page is read as 1252.
// Throws std::bad_alloc.
void AppendFromCodePage(unsigned codePage, std::string_view bytes, std::wstring& text);

// Appends the bytes of a text of UTF-16 code units in a code page to *bytes. What the code page
// lacks becomes "?" per unit; on Windows alone the system may put a similar character instead. An
// unknown code page is written as 1252.
// Throws std::bad_alloc.
void AppendToCodePage(unsigned codePage, std::wstring_view text, std::string& bytes);
