// The class objects of an object map, as the runtime's table of them sees them.
#pragma once

#include "automation/ObjectMap.h"
#include "automation/base/ClassFactory.h"

#include <vector>

class ClassObjects
{
  public:
    ClassObjects() = default;
    ClassObjects(const ClassObjects&) = delete;
    ClassObjects& operator=(const ClassObjects&) = delete;
    // Revokes what is still registered.
    ~ClassObjects();

    // Makes a factory per row, once, and registers it for the context (CLSCTX_...) in the manner
    // (REGCLS_...) given. Stops at the first failure; what was registered before stays.
    // Returns: S_OK; S_FALSE for an empty map; the runtime's failure; E_OUTOFMEMORY.
    HRESULT Register(std::span<const ObjectMapEntry> map, DWORD context, DWORD manner) noexcept;

    // Takes every class object back. Returns: S_OK; the first failure.
    HRESULT Revoke() noexcept;

  private:
    struct Registered
    {
        Microsoft::WRL::ComPtr<CComClassFactory> factory;
        DWORD cookie;
    };
    std::vector<Registered> m_registered;
};
