#include "client/Failure.h"

#include "client/core/CommandLine.h"

namespace pim
{
void CheckNotCancelled(CancelQuery isCancelled)
{
    if (isCancelled())
        throw Failure{kExitFailed, L"Cancelled."};
}

void CheckServerIsThere(HRESULT result)
{
    // The runtime's own codes, and the ones of remote calls, which the system numbers 1700 to 1939.
    constexpr int kFirstCallError = 1700;
    constexpr int kLastCallError = 1939;
    const int facility = HRESULT_FACILITY(result);
    const int code = HRESULT_CODE(result);
    const bool isGone =
        FAILED(result) &&
        (facility == FACILITY_RPC || result == CO_E_OBJNOTCONNECTED ||
         (facility == FACILITY_WIN32 && code >= kFirstCallError && code <= kLastCallError));
    if (isGone)
        throw Failure{kExitNoServer,
                      L"The server went away in the middle of its work (" + ResultText(result) +
                          L"). Run the command again."};
}

void CheckDone(HRESULT result, const std::wstring& sentence)
{
    CheckServerIsThere(result);
    if (FAILED(result))
        throw Failure{kExitFailed, sentence + L" (" + ResultText(result) + L")."};
}
} // namespace pim
