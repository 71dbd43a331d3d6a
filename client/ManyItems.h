// Commands on many items. What was done before a failure, or before the user ended the command,
// stays done and is told.
#pragma once

#include "client/CommandContext.h"

#include <functional>

namespace pim
{
// What an addition asks of the store. All of it throws Failure.
struct AdditionSteps
{
    std::size_t count;
    std::function<std::wstring(std::size_t)> add; // adds one; returns its ID
    std::function<void()> reload;                 // before the first check
    std::function<WriteResult(std::size_t, const std::wstring& id)> check;
};

// Adds the items in their order, with a running count on terminals, and prints their IDs. An item
// that could not be checked any more is printed without a word about what the store kept.
// Returns: the exit code.
// Throws:  the first Failure, behind the output.
int AddItems(const Context& context,
             const wchar_t* what,
             const AdditionSteps& steps,
             CancelQuery isCancelled = IsCancelled);

// Deletes what the command names, one after the other: one that means nothing does not keep the
// others. deleteItem returns the ID of what it deleted; it throws Failure, with kExitNotFound where
// there is no such item.
// Returns: the exit code.
// Throws:  any other Failure, behind the output.
int DeleteEach(const Context& context,
               const std::function<std::wstring(const std::wstring& typed)>& deleteItem,
               CancelQuery isCancelled = IsCancelled);
} // namespace pim
