// The commands of pim, from what was typed to what is printed.
#pragma once

#include "client/Console.h"
#include "client/core/CommandLine.h"

namespace pim
{
// Runs the command and prints its result.
// Returns: the exit code.
// Throws: Failure, where the command could not be done. Of additions and deletions, what was done
//         before it has been printed to output then, of other commands nothing.
int RunCommand(const Command& command, const OutputStream& output, const OutputStream& errors);
} // namespace pim
