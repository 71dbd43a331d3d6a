// What can be told from outside of the provider that runs behind a service, whoever started it.
// Everything here throws Failure where the server does not answer.
#pragma once

#include "client/Server.h"

#include <optional>
#include <string>

namespace pim
{
// The user that the running provider knows; null where none runs and for every one but Outlook.
Microsoft::WRL::ComPtr<INUserProperties> UserOf(INPersonalInformationService& service);

// Whether a provider runs: each has a calendar object, though it may be empty.
bool IsRunning(INPersonalInformationService& service);

// For a provider that another client started.
// Throws: Failure, where it is of another mail client than the one that was asked for by name.
void CheckIsAskedFor(const std::optional<std::wstring>& provider, bool isOutlook);
} // namespace pim
