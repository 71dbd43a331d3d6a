// What the readers of options share. Portable.
#pragma once

#include "client/core/CivilTime.h"

#include <string>
#include <string_view>

namespace pim
{
// A wrong value of an option, as a sentence in UTF-8. Thrown by the readers and caught by
// ParseCommandLine.
struct UsageProblem
{
    std::string text;
};

// Compares the letters A to Z without regard to their case.
bool EqualsIgnoringCase(std::string_view left, std::string_view right);

// The text, which must stand on one line. Throws: UsageProblem.
std::wstring ReadLine(const std::string& text, const char* option);

// The day of a text as 2024-05-01. Throws: UsageProblem.
CivilTime ReadDay(const std::string& text, const char* option);
} // namespace pim
