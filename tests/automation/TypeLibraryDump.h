// Renders a type library as plain lines of text, one fact a line, in the form that
// tests/data/contract/type_library.txt explains.
#pragma once

#include "platform/WindowsHeaders.h"

#include <string>
#include <vector>

// The facts of the library. Whatever the contract has no kind for (an alias, a module)
// gives a line of its own, so that it shows as a difference. Throws std::runtime_error when the
// library cannot be read.
std::vector<std::string> DumpTypeLibrary(ITypeLib& library);
