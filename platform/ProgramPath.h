// Where the running program lies.
#pragma once

#include <string>

// The full path of the executable of this process, of any length. Empty where the system cannot
// tell it. Throws std::bad_alloc.
std::wstring ProgramPath();
