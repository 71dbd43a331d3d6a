// Ends a fuzz target where a property does not hold, and tells the line.
#pragma once

#include <cstdio>
#include <cstdlib>

inline void Require(bool holds, const char* file = __builtin_FILE(), int line = __builtin_LINE())
{
    if (holds)
        return;
    std::fprintf(stderr, "%s:%d: the property does not hold\n", file, line);
    std::abort();
}
