// Finds out why the server or a provider does not work on this PC.
#pragma once

#include "client/core/Diagnosis.h"

namespace pim
{
// Looks at the registration and the running servers, calls the server, lets it start each provider
// that it knows and stops it again; a service that another client started stays as it is, and no
// provider is started then, which is told. A call that does not answer is given up and its thread
// left behind, so that the process should end soon after.
std::vector<Finding> Examine();
} // namespace pim
