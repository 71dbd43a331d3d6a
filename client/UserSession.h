// The mail user and the contact folders of the running service, as the automation contract gives
// them. Everything here throws Failure where it cannot do what its name says.
#pragma once

#include "client/Server.h"
#include "client/core/StoreOwner.h"

#include <memory>
#include <optional>

namespace pim
{
// Starts the service where none runs, and stops it at the end where it started it: a service that
// another client started stays as it is.
class UserSession
{
  public:
    // Without a name it is Outlook, the one provider that knows a user.
    UserSession(const Server& server, const std::optional<std::wstring>& provider);

    // The user as the store tells; its contact folders in the server's order.
    Identity User() const;
    std::vector<ContactFolder> ContactFolders() const;

  private:
    Microsoft::WRL::ComPtr<INPersonalInformationService> m_service;
    // Stops the service behind everything that came from it.
    std::unique_ptr<StartedService> m_started;
    Microsoft::WRL::ComPtr<INUserProperties> m_user;
};
} // namespace pim
