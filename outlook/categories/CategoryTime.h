// Times of a category list as text, "2011-03-19T11:19:09.564". They are UTC. Portable.
#pragma once

#include "platform/Types.h"

#include <string>
#include <string_view>

// The digits by their positions, to whole seconds; what follows the milliseconds is not looked at.
// 0.0 for a text of fewer than 23 characters and for one that is no time.
DATE ParseCategoryTime(std::wstring_view text);

// To the nearest second, so the milliseconds are always 000. All digits are 0 for what is no time.
std::string FormatCategoryTime(DATE utcTime);
