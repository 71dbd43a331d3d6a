// The commands of pim, from what was typed to what is printed.
#pragma once

#include "client/Console.h"
#include "client/core/CommandLine.h"

namespace pim
{
// Runs the command and prints its result.
// Returns: the exit code.
// Throws: Failure, where the command could not be done; nothing of it was printed to output then.
int RunCommand(const Command& command, const OutputStream& output, const OutputStream& errors);
} // namespace pim
