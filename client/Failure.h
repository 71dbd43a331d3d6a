// Why a command of pim ends early: the exit code and a sentence that says what to do. Thrown by the
// client's own calls and caught by the entry function; it never crosses a COM call.
#pragma once

#include "client/Console.h"
#include "client/core/ResultText.h"
#include "platform/WindowsHeaders.h"

#include <string>

namespace pim
{
struct Failure
{
    int exitCode;
    std::wstring text;
};

// Throws the failure that ends a cancelled command, where it is one. Asked between two items.
void CheckNotCancelled(CancelQuery isCancelled = IsCancelled);

// Throws the failure that stands for a server that went away, where the result tells of one.
void CheckServerIsThere(HRESULT result);

// Throws as above, and where the result is a failure: the sentence says what did not happen and
// gets the result behind it.
void CheckDone(HRESULT result, const std::wstring& sentence);
} // namespace pim
