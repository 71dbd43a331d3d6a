// Bare conversions between UTF-8 and UTF-16 code units: the system's calls (code page 65001) on
// Windows, stand-ins with the same results elsewhere. What cannot be converted becomes U+FFFD:
// the longest beginning of a sequence as one, a continuation byte that its lead does not allow
// included with it, and each unpaired surrogate. Throws std::bad_alloc.
#pragma once

#include <string>
#include <string_view>

// UTF-16 code units of UTF-8, and the way back.
std::wstring DecodeUtf8(std::string_view text);
std::string EncodeUtf8(std::wstring_view text);
