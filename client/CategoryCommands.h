// The commands below pim categories. Each returns the exit code and throws Failure where it could
// not be done.
#pragma once

#include "client/CommandContext.h"

namespace pim
{
int ListCategories(const Context& context);
int ShowCategory(const Context& context);
int AddCategory(const Context& context);
int RenameCategory(const Context& context);
int DeleteCategories(const Context& context);
} // namespace pim
