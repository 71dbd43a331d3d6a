// The identity strings of the logged-on mail user, as a client reads them. A provider that knows
// them derives from this; a text that cannot be had is empty.
#pragma once

#include <string>

class UserIdentity
{
  public:
    UserIdentity() = default;
    virtual ~UserIdentity() = default;
    UserIdentity(const UserIdentity&) = delete;
    UserIdentity& operator=(const UserIdentity&) = delete;

    std::wstring account;
    std::wstring addressType;
    std::wstring displayName;
    std::wstring company;
    std::wstring emailAddress;
    std::wstring firstName;
    std::wstring lastName;
    std::wstring officeLocation;
    std::wstring smtpAddress;
    std::wstring transmitableDisplayName;
};
