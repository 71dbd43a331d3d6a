#include "automation/UserProperties.h"

#include "platform/Bstr.h"
#include "service/ServiceManager.h"

HRESULT CNUserProperties::FinalConstruct()
{
    const CallScope scope;
    m_pUserProperties = GetServiceManager()->GetUserProperties();
    return m_pUserProperties ? S_OK : E_FAIL;
}

HRESULT CNUserProperties::Get(std::wstring UserIdentity::*text, BSTR* pVal) noexcept
{
    return Guard(this, [&]() -> HRESULT {
        if (!pVal)
            return E_POINTER;
        *pVal = NewText(m_pUserProperties.get()->*text);
        return S_OK;
    });
}

HRESULT CNUserProperties::get_Account(BSTR* pVal)
{
    return Get(&UserIdentity::account, pVal);
}

HRESULT CNUserProperties::get_AddressType(BSTR* pVal)
{
    return Get(&UserIdentity::addressType, pVal);
}

HRESULT CNUserProperties::get_DisplayName(BSTR* pVal)
{
    return Get(&UserIdentity::displayName, pVal);
}

HRESULT CNUserProperties::get_Company(BSTR* pVal)
{
    return Get(&UserIdentity::company, pVal);
}

HRESULT CNUserProperties::get_EmailAddress(BSTR* pVal)
{
    return Get(&UserIdentity::emailAddress, pVal);
}

HRESULT CNUserProperties::get_FirstName(BSTR* pVal)
{
    return Get(&UserIdentity::firstName, pVal);
}

HRESULT CNUserProperties::get_LastName(BSTR* pVal)
{
    return Get(&UserIdentity::lastName, pVal);
}

HRESULT CNUserProperties::get_OfficeLocation(BSTR* pVal)
{
    return Get(&UserIdentity::officeLocation, pVal);
}

HRESULT CNUserProperties::get_SMTPAddress(BSTR* pVal)
{
    return Get(&UserIdentity::smtpAddress, pVal);
}

HRESULT CNUserProperties::get_TransmitableDisplayName(BSTR* pVal)
{
    return Get(&UserIdentity::transmitableDisplayName, pVal);
}
