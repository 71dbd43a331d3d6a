// The running server as pim sees it: the service object and the provider that it starts.
// Everything here throws Failure where it cannot do what its name says.
#pragma once

#include "platform/WindowsHeaders.h"

#include "PimStoreBridge.h"

#include <string>
#include <vector>

namespace pim
{
// The one provider that knows a user.
inline constexpr wchar_t kOutlook[] = L"Microsoft Outlook";
bool IsOutlook(const std::wstring& name);
// The names of back ends that the server can start, best first: the last one has no calendar.
inline constexpr const wchar_t* kKnownProviders[] = {kOutlook, L"Windows Mail", L"Outlook Express"};
bool IsKnownProvider(const std::wstring& name);

// Initialises COM for the thread as long as it lives.
class Apartment
{
  public:
    Apartment();
    ~Apartment() { CoUninitialize(); }
    Apartment(const Apartment&) = delete;
    Apartment& operator=(const Apartment&) = delete;
};

// The service object in the server's process; the server starts where none runs. One service is
// shared by all clients of a server.
class Server
{
  public:
    Server();

    // The mail clients whose program is there, in the server's order.
    std::vector<std::wstring> Providers() const;
    // The name of the default mail client, usable or not; empty where none is set.
    std::wstring DefaultProvider() const;

    INPersonalInformationService* Get() const noexcept { return m_service.Get(); }

  private:
    Microsoft::WRL::ComPtr<INPersonalInformationService> m_service;
};

// The providers to try, best first: the default one, then those that are installed.
std::vector<std::wstring> UsableProviders(const Server& server);

// An object of one of the server's classes, in its process. Throws: Failure.
void MakeInServer(REFCLSID clsid, REFIID iid, void** object);

// Stops the service that a session started, at the session's end.
class StartedService
{
  public:
    explicit StartedService(Microsoft::WRL::ComPtr<INPersonalInformationService> service)
        : m_service(std::move(service))
    {
    }
    ~StartedService() { m_service->StopService(); }
    StartedService(const StartedService&) = delete;
    StartedService& operator=(const StartedService&) = delete;

  private:
    Microsoft::WRL::ComPtr<INPersonalInformationService> m_service;
};

} // namespace pim
