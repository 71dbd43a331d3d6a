#include "client/ProviderSession.h"

#include "client/Failure.h"
#include "client/core/CommandLine.h"
#include "platform/Bstr.h"

namespace pim
{
using Microsoft::WRL::ComPtr;

ProviderSession::ProviderSession(const Server& server,
                                 const std::optional<std::wstring>& provider,
                                 const std::wstring& part,
                                 const OpenPart& open)
    : m_service(server.Get())
{
    const bool isOpen = open(m_service.Get()) || Start(server, provider, part, open);
    // Only Outlook has an identity of the user to give.
    ComPtr<INUserProperties> identity;
    CheckDone(m_service->GetUserProperties(identity.GetAddressOf()),
              L"The server did not answer about its provider");
    m_isOutlook = identity != nullptr;
    if (!m_started && m_isOutlook)
        m_name = kOutlook;
    if (!isOpen)
        throw Failure{kExitFailed,
                      L"The service was stopped by another program, or its store has no " + part +
                          L". Run the command again."};
    const bool isOther = !m_started && provider && pim::IsOutlook(*provider) != m_isOutlook;
    if (isOther)
        throw Failure{kExitFailed,
                      L"Another program uses the server with another mail client than \"" +
                          *provider + L"\". End that program and run the command again."};
}

bool ProviderSession::Start(const Server& server,
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
        const bool isOpen = open(m_service.Get());
        // One that was asked for is used as it is.
        if (isOpen || provider)
            return isOpen;
        m_started.reset();
        m_name.reset();
    }
    if (names.empty())
        throw Failure{kExitFailed,
                      L"No mail client that the server knows is installed here. "
                      L"pimstore install --book or --store sets up a store of our own."};
    if (failedName.empty())
        throw Failure{kExitFailed,
                      L"The store of \"" + names.back() + L"\" has no " + part +
                          L". pim providers lists the mail clients that are there."};
    throw Failure{kExitFailed,
                  L"The server could not start \"" + failedName + L"\" (" +
                      ResultText(firstFailure) +
                      L"). pim providers lists the mail clients that are there."};
}
} // namespace pim
