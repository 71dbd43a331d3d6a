// The commands below pim calendar. Each returns the exit code and throws Failure where it could not
// be done.
#pragma once

#include "client/CommandContext.h"

namespace pim
{
int ListAppointments(const Context& context);
int ShowAppointment(const Context& context);
int AddAppointment(const Context& context);
int UpdateAppointment(const Context& context);
int DeleteAppointments(const Context& context);
} // namespace pim
