// One back end: one logged-on store. Made by the service manager, deleted when the service stops.
#pragma once

#include "service/AddressBookHandle.h"
#include "service/CalendarHandle.h"
#include "service/Enumerator.h"
#include "service/OutlookFolderInfo.h"
#include "service/UserIdentity.h"

#include <memory>
#include <vector>

class IProvider
{
  public:
    virtual ~IProvider() = default;

    // The identity of the logged-on user; null if the back end has none.
    virtual std::unique_ptr<UserIdentity> GetUserProperties() = 0;

    // Loaded tables in a handle of the caller's own; null where the back end has none.
    virtual std::unique_ptr<CAddressBookHandle> GetAddressBook() = 0;
    virtual std::unique_ptr<CCalendarHandle> GetCalendar() = 0;

    // A table that is not loaded yet; null for a type (_tagNEnumeratorType) the back end lacks.
    virtual std::unique_ptr<IEnumerator> GetEnumerator(int type) = 0;

    // True when the vector was filled; false leaves it untouched.
    virtual bool GetContactFolders(std::vector<OutlookFolderInfo>& folders) = 0;
    virtual bool GetCalendarFolders(std::vector<OutlookFolderInfo>& folders) = 0;
};
