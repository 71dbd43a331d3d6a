// The scan that stands before every XML parse. The parser works by recursion and with one object
// per node, so that a small hostile file can end the process or take all its memory; what passes
// the scan cannot. Portable, linear, without allocation beyond a few hundred bytes.
//
// The scan reads tags as the parser does (lenient on quotes, declarations and unknown markup), so
// that it refuses nothing that the parser takes within the limits. It is no check of form: where
// the parser stops with an error, the scan stops too and leaves the verdict to the parser.
#pragma once

#include <cstddef>
#include <string_view>

inline constexpr std::size_t kMaxXmlBytes = 16 * 1024 * 1024;
inline constexpr std::size_t kMaxXmlDepth = 64;         // elements open at the same time
inline constexpr std::size_t kMaxXmlNodes = 512 * 1024; // elements, texts, attributes and others
inline constexpr std::size_t kMaxXmlAttributes = 1024;  // of one element; the parser searches them

enum class XmlScanResult
{
    Ok,
    TooLarge,
    TooDeep,
    TooManyNodes,
    BadEncoding // not UTF-8; a byte-order mark in front is fine
};

// Whether the text may be handed to the parser with its UTF-8 encoding. The parser sees the text up
// to its first NUL; the encoding is checked to the end.
[[nodiscard]] XmlScanResult ScanXml(std::string_view text);
