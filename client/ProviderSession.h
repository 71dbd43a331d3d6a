// The running service with one provider, picked by name or by what its store has.
#pragma once

#include "client/Server.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace pim
{
// Starts the service where none runs, and stops it at the end where it started it: a service that
// another client started stays as it is.
class ProviderSession
{
  public:
    // Asks the service for a part of its store; true where it has it. A service that does not run
    // has nothing.
    using OpenPart = std::function<bool(INPersonalInformationService*)>;

    // A name picks that provider; without one it is the default where that is usable, else the
    // first usable one that starts and has the part. The part's name completes the sentence "the
    // store has no ...".
    // Throws: Failure, where there is no such part.
    ProviderSession(const Server& server,
                    const std::optional<std::wstring>& provider,
                    const std::wstring& part,
                    const OpenPart& open);

    // The provider's name; absent where another client started the service and it cannot be told.
    const std::optional<std::wstring>& Name() const noexcept { return m_name; }

    INPersonalInformationService* Service() const noexcept { return m_service.Get(); }

    // Whether it is Outlook; else the store is one of Windows.
    bool IsOutlook() const noexcept { return m_isOutlook; }

  private:
    // Throws: Failure, where a provider runs that another client started.
    void CheckIsIdle(const std::wstring& part) const;
    void Start(const Server& server,
               const std::optional<std::wstring>& provider,
               const std::wstring& part,
               const OpenPart& open);

    Microsoft::WRL::ComPtr<INPersonalInformationService> m_service;
    std::unique_ptr<StartedService> m_started;
    std::optional<std::wstring> m_name;
    bool m_isOutlook = false;
};
} // namespace pim
