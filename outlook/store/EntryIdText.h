// Entry IDs as text: two upper-case hexadecimal digits per byte, high digit first, without prefix.
// Portable.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// Empty for no bytes.
std::wstring BytesToHex(std::span<const std::uint8_t> bytes);

// One byte per two characters; an odd last character is dropped. Kept as it is: nothing is
// validated and every text gives bytes. 'a' to 'z' count 10 to 35, any character that is neither
// '0' to '9', 'A' to 'F' nor 'a' to 'z' counts its own code, and what exceeds a digit runs into the
// other one; what exceeds the byte is lost. Pinned by EntryIdTextTest.
std::vector<std::uint8_t> HexToBytes(std::wstring_view text);
