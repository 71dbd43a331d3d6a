// The module of a test program: counts like the server's, registers nothing and never ends the
// process.
#pragma once

#include "automation/base/ServerModule.h"

class TestModule : public CServerModule
{
  public:
    HRESULT AddCommonRGSReplacements(IRegistrar*) noexcept override { return S_OK; }
};
