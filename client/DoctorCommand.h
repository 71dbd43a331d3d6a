// The command that tells why something does not work.
#pragma once

#include "client/CommandContext.h"

namespace pim
{
// Prints one line for each finding. Returns: kExitFailed where one of them is a fault.
int RunDoctor(const Context& context);
} // namespace pim
