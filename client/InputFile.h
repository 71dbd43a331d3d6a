// Files that people hand to commands.
#pragma once

#include "platform/UniqueHandle.h"

#include <string>

namespace pim
{
// Opens an existing file; null where it cannot be read, with the reason in GetLastError.
UniqueFile OpenForReading(const std::wstring& path);

// The bytes of the file; "-" stands for standard input.
// Throws: Failure, where it cannot be read or is larger than 64 MiB.
std::string ReadInput(const std::wstring& path);
} // namespace pim
