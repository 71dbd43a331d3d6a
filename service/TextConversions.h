// UTF-8 and wide text. Portable: the system's conversion on Windows, a stand-in elsewhere. Wide
// strings hold UTF-16 code units; what cannot be converted becomes U+FFFD.
#pragma once

#include <string>
#include <string_view>

// Converts the text up to its NUL. False, and wide unchanged, for a null pointer; true also where
// memory ran out, with the output unchanged.
bool Utf8ToWide(const char* text, std::wstring& wide);
bool WideToUtf8(const wchar_t* text, std::string& utf8);

// The same for a text of known length without NULs: no copy for the terminator. Throws
// std::bad_alloc.
std::wstring WideFromUtf8(std::string_view text);
std::string Utf8FromWide(std::wstring_view text);

// Short texts: cut at the first NUL on both sides. Empty on failure and for a text that does not
// fit 260 units with its terminator.
std::wstring Utf8ToWideShort(const std::string& text);
std::string WideToUtf8Short(const std::wstring& text);

// Cuts the string at its first NUL.
void TrimToCString(std::string& text);
void TrimToCString(std::wstring& text);
