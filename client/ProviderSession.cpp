#include "client/ProviderSession.h"

#include "client/Failure.h"
#include "client/RunningProvider.h"
#include "client/core/CommandLine.h"
#include "platform/Bstr.h"

namespace pim
{
namespace
{
[[noreturn]] void ThrowLack(const std::wstring& provider, const std::wstring& part)
{
    throw Failure{kExitFailed,
                  L"The store of \"" + provider + L"\" has no " + part +
                      L". pim providers lists the mail clients that are there."};
}
} // namespace

ProviderSession::ProviderSession(const Server& server,
                                 const std::optional<std::wstring>& provider,
                                 const std::wstring& part,
                                 const OpenPart& open)
    : m_service(server.Get())
{
    if (!open(m_service.Get()))
    {
        CheckIsIdle(part);
        Start(server, provider, part, open);
    }
    m_isOutlook = UserOf(*m_service.Get()) != nullptr;
    if (m_started)
        return;
    if (m_isOutlook)
        m_name = kOutlook;
    CheckIsAskedFor(provider, m_isOutlook);
}

void ProviderSession::CheckIsIdle(const std::wstring& part) const
{
    if (IsRunning(*m_service.Get()))
        throw Failure{kExitFailed,
                      L"Another program uses the server with a mail client whose store has no " +
                          part + L". End that program and run the command again."};
}

void ProviderSession::Start(const Server& server,
                            const std::optional<std::wstring>& provider,
                            const std::wstring& part,
                            const OpenPart& open)
{
    const std::vector<std::wstring> names =
        provider ? std::vector<std::wstring>{*provider} : UsableProviders(server);
    HRESULT firstFailure = S_OK;
    std::wstring failedName;
    for (const std::wstring& name : names)
    {
        const HRESULT result = m_service->StartService(Bstr(name).Get());
        CheckServerIsThere(result);
        if (FAILED(result))
        {
            if (failedName.empty())
            {
                firstFailure = result;
                failedName = name;
            }
            continue;
        }
        m_name = name;
        m_started = std::make_unique<StartedService>(m_service);
        if (open(m_service.Get()))
            return;
        m_started.reset();
        m_name.reset();
    }
    if (names.empty())
        throw Failure{kExitFailed,
                      L"No mail client that the server knows is installed here. "
                      L"pimstore install --book or --store sets up a store of our own."};
    if (failedName.empty())
        ThrowLack(names.back(), part);
    throw Failure{kExitFailed,
                  L"The server could not start \"" + failedName + L"\" (" +
                      ResultText(firstFailure) +
                      L"). pim providers lists the mail clients that are there."};
}
} // namespace pim
