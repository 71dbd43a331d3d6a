// The order in which lists show items that have names. Portable.
#pragma once

#include "client/core/LetterCase.h"

#include <optional>
#include <string>

namespace pim
{
// By name without regard to the case of the letters A to Z, items without one last, then by ID.
inline bool IsBefore(const std::wstring& leftName,
                     const std::optional<std::wstring>& leftId,
                     const std::wstring& rightName,
                     const std::optional<std::wstring>& rightId)
{
    if (leftName.empty() != rightName.empty())
        return rightName.empty();
    const std::wstring left = Folded(leftName);
    const std::wstring right = Folded(rightName);
    return left != right ? left < right : leftId < rightId;
}
} // namespace pim
