// The commands below pim groups. Each returns the exit code and throws Failure where it could not
// be done.
#pragma once

#include "client/CommandContext.h"

namespace pim
{
int ListGroups(const Context& context);
int ShowGroup(const Context& context);
int AddGroup(const Context& context);
int RenameGroup(const Context& context);
int DeleteGroups(const Context& context);
} // namespace pim
