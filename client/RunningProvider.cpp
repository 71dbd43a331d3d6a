#include "client/RunningProvider.h"

#include "client/Failure.h"
#include "client/core/CommandLine.h"

namespace pim
{
using Microsoft::WRL::ComPtr;

namespace
{
constexpr wchar_t kNoAnswer[] = L"The server did not answer about its provider";
} // namespace

ComPtr<INUserProperties> UserOf(INPersonalInformationService& service)
{
    ComPtr<INUserProperties> user;
    CheckDone(service.GetUserProperties(user.GetAddressOf()), kNoAnswer);
    return user;
}

bool IsRunning(INPersonalInformationService& service)
{
    ComPtr<INCalendar> calendar;
    CheckDone(service.GetCalendar(calendar.GetAddressOf()), kNoAnswer);
    return calendar != nullptr;
}

void CheckIsAskedFor(const std::optional<std::wstring>& provider, bool isOutlook)
{
    if (provider && IsOutlook(*provider) != isOutlook)
        throw Failure{kExitFailed,
                      L"Another program uses the server with another mail client than \"" +
                          *provider + L"\". End that program and run the command again."};
}
} // namespace pim
