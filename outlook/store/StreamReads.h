// How often one stream of a store is read. A store may give fewer bytes than were asked for, also
// one at a time and for ever; what comes after so many reads is left where it is.
#pragma once

inline constexpr unsigned kMostStreamReads = 0x10000;
