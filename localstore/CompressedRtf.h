// The published format of compressed RTF ([MS-OXRTFCP]), as message stores keep rich bodies. Pure.
//
// A header of 16 bytes (size of what follows the first field, size of the text, kind, checksum),
// then the contents: the text as it is ("MELA") or packed ("LZFu"), where a dictionary of 4096
// bytes that starts with common RTF words serves literals and references of 2 to 17 bytes.
#pragma once

#include "platform/CodecStatus.h"

#include <cstddef>
#include <span>
#include <vector>

struct CompressedRtfResult
{
    CodecStatus status;
    std::size_t offset; // of the failure in the input; behind what was read where status is Ok
};

// Unpacks compressed RTF into *text. Bytes beyond the stated size are left alone.
//   maxTextBytes: texts that state more are refused before anything is allocated.
// Returns, beside Ok with the whole text: Truncated (less there than stated), Unsupported (another
//         kind), LimitExceeded, Inconsistent (sizes, checksum or references contradict the rest);
//         *text is empty then.
// Throws std::bad_alloc. Memory: the text, once.
[[nodiscard]] CompressedRtfResult DecompressRtf(std::span<const std::byte> compressed,
                                                std::size_t maxTextBytes,
                                                std::vector<std::byte>& text);

// Packs a text, any bytes, as LZFu into *compressed. Linear in the text.
// Returns Ok, or LimitExceeded for a text whose sizes do not fit the header (then it is empty).
// Throws std::bad_alloc.
[[nodiscard]] CodecStatus CompressRtf(std::span<const std::byte> text,
                                      std::vector<std::byte>& compressed);

// Puts a text, any bytes, as it is (MELA) behind its header into *stored. Returns and throws as
// CompressRtf.
[[nodiscard]] CodecStatus StoreRtf(std::span<const std::byte> text, std::vector<std::byte>& stored);
