// The identity that entry IDs of Windows contacts carry as text. Portable.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

inline constexpr std::size_t kLongestMarkedIdentity = 255; // code units

// The text behind the first  /GUID:"  in an entry ID, whose bytes are taken as UTF-16LE; an odd
// last byte is left out. It ends at the next quotation mark, at a zero, at the end of the ID or
// after kLongestMarkedIdentity code units. Returns: the text; empty where there is no marker and
// where nothing stands behind it. Throws std::bad_alloc.
std::wstring MarkedIdentity(std::span<const std::uint8_t> entryID);
