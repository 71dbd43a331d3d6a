// Plain records in few bytes: what is zero in them is left out. For records that are large or kept
// in large numbers and of which little is set. Portable.
//
// Packed, every eight bytes are one byte that tells which of them are not zero, lowest bit first,
// and those; the zeros at the end of the record are left out altogether.
#pragma once

#include <cstddef>
#include <span>

// The bytes without the zeros at their end.
std::span<const unsigned char> WithoutZerosAtEnd(std::span<const unsigned char> bytes) noexcept;

// How many bytes the record takes when packed.
std::size_t SparseSize(std::span<const unsigned char> bytes) noexcept;

// Writes exactly that many.
void PackSparse(std::span<const unsigned char> bytes, unsigned char* to) noexcept;

// Fills the whole record. What the packed bytes hold beyond its end is dropped.
void UnpackSparse(std::span<const unsigned char> packed, std::span<unsigned char> to) noexcept;
