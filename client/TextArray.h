// Arrays of texts as the automation contract carries them.
#pragma once

#include "platform/SafeArray.h"

#include <string>
#include <vector>

namespace pim
{
// The texts of an array of BSTR; anything else has none.
std::vector<std::wstring> TextsOf(SAFEARRAY* array);

// Throws std::bad_alloc.
UniqueSafeArray TextArray(const std::vector<std::wstring>& texts);
} // namespace pim
