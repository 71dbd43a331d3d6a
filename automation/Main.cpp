// Entry function of the server.
#include "automation/Module.h"

namespace
{
// Built before the entry function runs, since that is when the process enters its apartment.
CPimStoreBridgeModule g_module;
} // namespace

int WINAPI wWinMain(HINSTANCE, HINSTANCE, LPWSTR, int)
{
    return g_module.Run(GetCommandLineW());
}
