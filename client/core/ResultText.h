// How results of COM calls are written for people. Portable.
#pragma once

#include <cstdint>
#include <string>

namespace pim
{
// "0x80004005"
std::wstring ResultText(std::int32_t result);
} // namespace pim
