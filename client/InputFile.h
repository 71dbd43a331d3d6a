// Files that people hand to commands.
#pragma once

#include <string>

namespace pim
{
// The bytes of the file; "-" stands for standard input.
// Throws: Failure, where it cannot be read or is larger than 64 MiB.
std::string ReadInput(const std::wstring& path);
} // namespace pim
