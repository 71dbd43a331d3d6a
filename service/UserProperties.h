// The identity strings of the logged-on mail user. A provider that knows one derives from this.
#pragma once

#include <string>

class CUserProperties
{
  public:
    virtual ~CUserProperties() = default;

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
