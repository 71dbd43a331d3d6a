// The child process of the tests that kill a writer or let several write at once.
#pragma once

#include <string>

// Adds book entries to the store of that path, one transaction each, and writes a line with the
// number of each entry to standard output once its commit returned. Runs until the count is
// reached; a count of 0 means for ever. Every entry has kPropertiesPerEntry properties.
int RunStoreWriter(const std::wstring& path, int count);

inline constexpr int kPropertiesPerEntry = 20;
