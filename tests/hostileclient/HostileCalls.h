// Calls to one operation by its place in the interface's table, with every combination of hostile
// values.
#pragma once

#include "hostileclient/HostileArguments.h"

#include <functional>
#include <string>
#include <vector>

// One call that came back.
struct HostileCall
{
    const LibraryOperation& operation;
    const std::vector<HostileValue>& arguments;
    HRESULT result;

    // "INContactItem.put_Emails(array: locked)".
    std::string Text() const;
};

// How many combinations an operation has; 0 where a parameter has no value.
std::size_t CombinationsOf(const LibraryOperation& operation, HostileArguments& values);

// object: the operation's interface. told gets each call; outputs are freed behind it.
void CallWithEveryValue(IUnknown* object,
                        const LibraryOperation& operation,
                        HostileArguments& values,
                        const std::function<void(const HostileCall&)>& told);

// One call with these values.
HRESULT CallByTable(IUnknown* object,
                    const LibraryOperation& operation,
                    const std::vector<HostileValue>& arguments);
