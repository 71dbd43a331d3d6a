// The commands of pimstore that move the contents of the store. Each returns its exit code and
// prints what happened.
#pragma once

#include <string>

// Loads the file into the user's store, which is made where missing; replace empties it first.
int RunLoad(const std::wstring& path, bool replace);

// Writes the contents of the user's store to the file, which is replaced once all of it is
// written; an empty path is standard output.
int RunDump(const std::wstring& path);
