// Registers the server that lies beside pim: for the machine by the server's own switches, for the
// user by the scripts and the type library that it carries.
#pragma once

namespace pim
{
enum class RegistrationChange
{
    Register,
    Unregister
};

// Where it is not for the user alone the server's program is run and waited for; otherwise the
// thread must be in an apartment. Throws: Failure, where the program is missing or a step fails.
void ChangeRegistration(RegistrationChange change, bool forUser);
} // namespace pim
