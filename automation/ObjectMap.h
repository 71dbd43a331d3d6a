// The classes that this server serves, one row per class.
#pragma once

#include "automation/base/ComObject.h"

#include <span>

struct ObjectMapEntry
{
    const CLSID* clsid;
    // Number of the REGISTRY resource that registers the class.
    WORD script;
    // Makes an object, plain or aggregated; see CComCoClass.
    CreatorFunction* create;
    // Called with true when the module starts and with false when it ends.
    void (*startOrStop)(bool starting) noexcept;
};

// The object map, in registration order. NObjectFactory32 is deliberately not in it.
std::span<const ObjectMapEntry> GetObjectMap() noexcept;
