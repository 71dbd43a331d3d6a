// The one place that includes the platform's headers, in the order they need. NOMINMAX,
// WIN32_LEAN_AND_MEAN and STRICT come from the build. Not for pure code: see Types.h.
#pragma once

// clang-format off
#include <windows.h>
#include <objbase.h>
#include <oleauto.h>
#include <shlobj.h>
#include <shlwapi.h>
#include <mapidefs.h>
#include <mapix.h>
#include <mapitags.h>
#include <mapicode.h>
#include <wab.h>
#include <wrl/client.h>
// clang-format on
