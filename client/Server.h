// The running server as pim sees it: the service object, the provider that it starts, the calendar.
// Everything here throws Failure where it cannot do what its name says.
#pragma once

#include "platform/WindowsHeaders.h"

#include "PimStoreBridge.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace pim
{
// The one provider that knows a user.
inline constexpr wchar_t kOutlook[] = L"Microsoft Outlook";
bool IsOutlook(const std::wstring& name);
// The names of back ends that the server can start.
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

// The calendar of one provider. Starts the service where none runs, and stops it at the end where
// it started it: a service that another client started stays as it is.
class CalendarSession
{
  public:
    // A name picks that provider; without one it is the default where that is usable, else the
    // first usable one that starts and has a calendar.
    CalendarSession(const Server& server, const std::optional<std::wstring>& provider);
    CalendarSession(const CalendarSession&) = delete;
    CalendarSession& operator=(const CalendarSession&) = delete;

    // The provider's name; absent where another client started the service and it cannot be told.
    const std::optional<std::wstring>& ProviderName() const noexcept { return m_provider; }

    // Whether the store is one of calendar files, which has no reminder of none and so changes
    // nothing where an update brings one.
    bool IsFileStore() const noexcept { return m_isFileStore; }

    // Hands every item out, in the store's order, until the last one or a cancel by the user.
    void Walk(const std::function<void(INAppointment*)>& take) const;

    // The item of exactly that ID; null where there is none.
    Microsoft::WRL::ComPtr<INAppointment> Find(const std::wstring& id) const;

    // An empty item in the server's process.
    Microsoft::WRL::ComPtr<INAppointment> NewItem() const;

    // The new item's ID.
    std::wstring Add(INAppointment* item) const;
    void Update(INAppointment* item) const;
    // False where the store has no such item.
    bool Delete(const std::wstring& id) const;

    // Reads the store again, for what was changed to show.
    void Reload() const;

  private:
    Microsoft::WRL::ComPtr<INCalendar> OpenCalendar() const;
    void Start(const Server& server, const std::optional<std::wstring>& provider);
    void Rewind() const;
    bool HasItem() const;

    Microsoft::WRL::ComPtr<INPersonalInformationService> m_service;
    // Released behind the calendar, whose tables point into what the service holds.
    std::unique_ptr<StartedService> m_started;
    Microsoft::WRL::ComPtr<INCalendar> m_calendar;
    std::optional<std::wstring> m_provider;
    bool m_isFileStore = false;
};
} // namespace pim
