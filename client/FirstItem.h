// The beginning of a walk through a list of the server.
#pragma once

#include "client/Failure.h"

namespace pim
{
// How many items that do not open may stand before the first one that does.
inline constexpr unsigned kMostUnopenedItems = 100;

// The first item of a list that was just reset. For an item that does not open a list answers with
// the one before; while there is none it answers as at its end, but has moved on, so it is asked
// again. Behind the end it stays there. next asks the list, and unopened grows by what was passed
// over.
// Returns: the last result; the item is null where none came.
// Throws:  Failure, where the server went away.
template <typename Item, typename Next>
HRESULT FirstItem(const Next& next, Microsoft::WRL::ComPtr<Item>& item, unsigned& unopened)
{
    HRESULT result = E_FAIL;
    for (unsigned passed = 0; result == E_FAIL && passed <= kMostUnopenedItems; ++passed)
    {
        result = next(item.ReleaseAndGetAddressOf());
        CheckServerIsThere(result);
        if (SUCCEEDED(result) && item)
            unopened += passed;
    }
    return result;
}
} // namespace pim
