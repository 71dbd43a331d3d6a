// Registers the server that lies beside pim, by the server's own switches.
#pragma once

namespace pim
{
enum class RegistrationChange
{
    Register,
    Unregister
};

// Runs the server's program and waits for it.
// Throws: Failure, where the program is missing or reports one.
void ChangeRegistration(RegistrationChange change);
} // namespace pim
