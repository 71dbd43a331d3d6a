// The test program's own type library in the registry, as record descriptions need it.
#pragma once

#include "platform/WindowsHeaders.h"

class TypeLibraryRegistration
{
  public:
    // Registers the library that the running executable carries as resource 1.
    TypeLibraryRegistration();
    // Takes it back, with everything below its key.
    ~TypeLibraryRegistration();
    TypeLibraryRegistration(const TypeLibraryRegistration&) = delete;
    TypeLibraryRegistration& operator=(const TypeLibraryRegistration&) = delete;

    // The result of the registration.
    HRESULT Result() const noexcept { return m_result; }

  private:
    HRESULT m_result;
};
