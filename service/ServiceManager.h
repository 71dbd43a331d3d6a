// Chooses, starts and stops the one provider of the process, and hands out what it offers. Used on
// the apartment thread only; without locks.
//
// The two questions that need no provider, which clients are installed and which is the default,
// are answered by service/Discovery.h.
#pragma once

#include "service/Provider.h"

#include <span>
#include <string>
#include <vector>

// A back end that can be started by name.
struct ProviderRow
{
    const wchar_t* name; // compared without regard to case
    // Creates the provider into the slot at once, then brings it up. A negative result makes the
    // manager drop what the slot holds; an exception leaves it as it is.
    HRESULT (*start)(std::unique_ptr<IProvider>& slot);
};

class CServiceManager
{
  public:
    // The rows stay valid for the manager's life. The default is the table of real back ends.
    CServiceManager();
    explicit CServiceManager(std::span<const ProviderRow> rows);

    // Starts the named provider. S_OK also when one runs already, whatever its name. E_FAIL for an
    // unknown name and for a provider whose construction failed; else the logon's failure.
    // E_FAIL also while a stop waits for an outer call to end (see StopService), and inside another
    // start that has no provider yet.
    HRESULT StartService(const std::wstring& name);

    // Ends the running provider. Inside another automation call (see service/CallScope.h) the
    // provider lives on until the outermost call ends, so that nothing is deleted under it; from
    // now on nothing new is handed out all the same. The manager must outlive that call.
    void StopService();

    // The default client, unchecked, and those that are installed; see service/Discovery.h.
    std::wstring GetDefaultProvider();
    void GetProviders(std::vector<std::wstring>& names);

    // Null or false while no provider runs.
    std::unique_ptr<UserIdentity> GetUserProperties();
    std::unique_ptr<CAddressBookHandle> GetAddressBook();
    std::unique_ptr<CCalendarHandle> GetCalendar();
    bool GetContactFolders(std::vector<OutlookFolderInfo>& folders);

    // A hand-over in two steps, since the class factory takes no arguments: a call with a type
    // remembers it and returns null; a call with Default, while a provider runs, builds the table
    // of the remembered type.
    std::unique_ptr<IEnumerator> GetEnumerator(_tagNEnumeratorType type);

  private:
    HRESULT Start(const std::wstring& name);
    void EndProvider();
    // The provider for those who ask for something of it; null while a stop is pending.
    IProvider* Running() const noexcept;

    std::span<const ProviderRow> m_rows;
    std::unique_ptr<IProvider> m_pProvider;
    _tagNEnumeratorType m_eEnumeratorType = Default;
    bool m_isStarting = false;
    bool m_isStopPending = false;
};

// The process-wide manager, made on first use and never freed: a provider that still runs at
// process exit is abandoned without a logoff.
CServiceManager* GetServiceManager();

// Replaces the process-wide manager until the object ends. For in-process tests.
class ScopedServiceManager
{
  public:
    explicit ScopedServiceManager(CServiceManager& manager);
    ~ScopedServiceManager();
    ScopedServiceManager(const ScopedServiceManager&) = delete;
    ScopedServiceManager& operator=(const ScopedServiceManager&) = delete;

  private:
    CServiceManager* m_previous;
};
