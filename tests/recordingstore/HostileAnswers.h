// Which answers of a hostile store are worth giving to which calls.
//
// Left out are lies that no caller can tell from truth: a count beyond the end of an array, a text
// without its terminator, memory that is not the caller's, a pointer to nothing mapped, an object
// that does not have the interface that was asked for, or the wrong message under a good entry ID.
#pragma once

#include "tests/recordingstore/RecordingStore.h"

#include <string>
#include <vector>

// The answers for a call by its line in the record; none for calls that give nothing to spoil.
std::vector<StoreFault> HostileAnswersFor(const std::string& line);
