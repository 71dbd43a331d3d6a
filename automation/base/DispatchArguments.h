// What a late-bound call must bring before the system's dispatcher may read it.
#pragma once

#include "platform/WindowsHeaders.h"

// Looks at the shape of the arguments alone, which the dispatcher takes for granted, and not at
// whether they fit an operation.
// Returns: S_OK; E_INVALIDARG where the arguments or one of their lists are missing;
//          DISP_E_TYPEMISMATCH for a reference or a record that leads nowhere, with its index in
//          *badArgument where that is not null.
HRESULT CheckDispatchArguments(const DISPPARAMS* arguments, UINT* badArgument) noexcept;
