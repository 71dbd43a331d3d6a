// The back end over the Windows Address Book and, under "Windows Mail", the .ics files of Windows
// Calendar. One class under two provider names, told apart by the constructor's argument. It exists
// fully opened or not at all; there is no logon.
#pragma once

#include "outlook/store/MAPIHelper.h"
#include "platform/WindowsHeaders.h"
#include "service/Provider.h"

#include <memory>
#include <string>

class CWindowsMailAddressTable;

class CWindowsMailProvider : public IProvider
{
  public:
    // Finds the address book library through the registry, loads it and opens the personal address
    // book. addressBookOnly: "Outlook Express", which has no calendar folder.
    // Throws std::exception where any step fails; what was opened until then is given back.
    explicit CWindowsMailProvider(bool addressBookOnly);
    // Detaches the tables that clients still hold before anything is released.
    ~CWindowsMailProvider() override;

    // Null: this back end knows no identity.
    std::unique_ptr<UserIdentity> GetUserProperties() override;
    // Loaded contacts; there are no groups.
    std::unique_ptr<CAddressBookHandle> GetAddressBook() override;
    // A loaded calendar, empty under "Outlook Express".
    std::unique_ptr<CCalendarHandle> GetCalendar() override;
    // Contacts for type 3 and a calendar for type 4, not loaded; null for all others.
    std::unique_ptr<IEnumerator> GetEnumerator(int type) override;
    // False, untouched: there are no root folders.
    bool GetContactFolders(std::vector<OutlookFolderInfo>& folders) override;
    bool GetCalendarFolders(std::vector<OutlookFolderInfo>& folders) override;

  private:
    bool OpenBook();
    std::unique_ptr<CWindowsMailAddressTable> NewAddressTable();
    bool SetCalendarPath();

    // In the reverse of the order of release, which a failed construction follows too: container,
    // address book, IWABObject, and then the helper, which unloads the library under them.
    std::unique_ptr<CMAPIHelper> m_pHelper;
    Microsoft::WRL::ComPtr<IWABObject> m_pWabObject;
    Microsoft::WRL::ComPtr<IAddrBook> m_pAddrBook;
    Microsoft::WRL::ComPtr<IABContainer> m_pContainer;
    std::wstring m_calendarPath; // with its trailing backslash; empty under "Outlook Express"
    bool m_isAddressBookOnly;
};
