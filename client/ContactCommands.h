// The commands below pim contacts. Each returns the exit code and throws Failure where it could not
// be done.
#pragma once

#include "client/CommandContext.h"

namespace pim
{
int ListContacts(const Context& context);
int ShowContact(const Context& context);
int AddContacts(const Context& context);
int UpdateContact(const Context& context);
int DeleteContacts(const Context& context);
} // namespace pim
