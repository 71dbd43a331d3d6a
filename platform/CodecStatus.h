// How a binary codec reports: a status, and beside it the byte offset at which it was found.
#pragma once

#include <cstdint>

enum class CodecStatus : std::uint8_t
{
    Ok,
    Truncated,     // the input ends inside a field
    BadVersion,    // a version or signature that is not known
    LimitExceeded, // larger than the named limit
    Inconsistent,  // fields contradict each other, or a checksum fails
    Unsupported,   // known, but not handled here
};
