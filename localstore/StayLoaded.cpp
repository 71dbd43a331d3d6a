#include "localstore/StayLoaded.h"

#include "platform/WindowsHeaders.h"

void StayLoaded() noexcept
{
    HMODULE self = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_PIN | GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
                       reinterpret_cast<const wchar_t*>(&StayLoaded),
                       &self);
}
