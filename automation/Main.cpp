// Entry function of the server.
#include "automation/Module.h"
#include "outlook/contacts/PictureJournal.h"

namespace
{
// Built before the entry function runs, since that is when the process enters its apartment.
CPimStoreBridgeModule g_module;

// Pictures that clients of an earlier day read. Whatever goes wrong is not the server's concern.
void RemoveOldPictures() noexcept
{
    try
    {
        RemoveOldPictureFiles();
    }
    catch (...)
    {
    }
}
} // namespace

int WINAPI wWinMain(HINSTANCE, HINSTANCE, LPWSTR, int)
{
    RemoveOldPictures();
    const int result = g_module.Run(GetCommandLineW());
    RemoveOldPictures();
    return result;
}
