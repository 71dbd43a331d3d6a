#include "client/UserSession.h"

#include "client/Failure.h"
#include "client/PropertyAccess.h"
#include "client/RunningProvider.h"
#include "client/core/CommandLine.h"
#include "platform/Bstr.h"
#include "platform/SafeArray.h"

namespace pim
{
namespace
{
using TextGetter = HRESULT (STDMETHODCALLTYPE INUserProperties::*)(BSTR*);

// In the order of Identity.
constexpr std::array<TextGetter, kIdentityFields> kGetters = {
    &INUserProperties::get_Account,
    &INUserProperties::get_AddressType,
    &INUserProperties::get_DisplayName,
    &INUserProperties::get_Company,
    &INUserProperties::get_EmailAddress,
    &INUserProperties::get_FirstName,
    &INUserProperties::get_LastName,
    &INUserProperties::get_OfficeLocation,
    &INUserProperties::get_SMTPAddress,
    &INUserProperties::get_TransmitableDisplayName,
};
} // namespace

UserSession::UserSession(const Server& server, const std::optional<std::wstring>& provider)
    : m_service(server.Get()), m_user(UserOf(*server.Get()))
{
    if (m_user || IsRunning(*m_service.Get()))
    {
        CheckIsAskedFor(provider, m_user != nullptr);
        return;
    }
    const std::wstring name = provider.value_or(kOutlook);
    const HRESULT result = m_service->StartService(Bstr(name).Get());
    CheckServerIsThere(result);
    if (FAILED(result))
        throw Failure{kExitFailed,
                      L"The server could not start \"" + name + L"\" (" + ResultText(result) +
                          L"). Where no Outlook is installed, pimstore install --store sets up a "
                          L"store of our own."};
    m_started = std::make_unique<StartedService>(m_service);
    m_user = UserOf(*m_service.Get());
}

Identity UserSession::User() const
{
    if (!m_user)
        throw Failure{kExitFailed,
                      L"This mail client does not know a user: only Microsoft Outlook does. Where "
                      L"another program uses the server with another mail client, end that program "
                      L"first."};
    Identity identity;
    for (std::size_t i = 0; i < kIdentityFields; ++i)
    {
        Bstr text;
        const HRESULT result = (m_user.Get()->*kGetters[i])(text.Put());
        CheckServerIsThere(result);
        if (FAILED(result))
            throw Failure{kExitFailed,
                          L"The server did not tell the user's data (" + ResultText(result) +
                              L")."};
        identity[i] = std::wstring(text.View());
    }
    return identity;
}

std::vector<ContactFolder> UserSession::ContactFolders() const
{
    UniqueSafeArray array;
    const HRESULT result = m_service->GetAddressBookRootFolders(array.Put());
    CheckServerIsThere(result);
    VARTYPE type = VT_EMPTY;
    LONG first = 0;
    LONG last = -1;
    const bool isArray = SUCCEEDED(result) && array && SafeArrayGetDim(array.Get()) == 1 &&
                         SUCCEEDED(SafeArrayGetVartype(array.Get(), &type)) && type == VT_RECORD &&
                         SafeArrayGetElemsize(array.Get()) == sizeof(_tagFolderInfo) &&
                         SUCCEEDED(SafeArrayGetLBound(array.Get(), 1, &first)) &&
                         SUCCEEDED(SafeArrayGetUBound(array.Get(), 1, &last));
    if (!isArray)
        throw Failure{kExitFailed,
                      L"The folders did not come across: this system could not carry the server's "
                      L"array of records to another process (" +
                          ResultText(result) +
                          L"). Where the server was moved or updated, pim register may help."};
    std::vector<ContactFolder> folders;
    const SafeArrayAccess<_tagFolderInfo> records(array.Get());
    if (!records)
        throw Failure{kExitFailed, L"The folders could not be read."};
    for (LONG i = 0; i <= last - first; ++i)
    {
        const _tagFolderInfo& record = records.Data()[i];
        folders.push_back({WholeText(record.bstrEntryID),
                           WholeText(record.bstrDisplayName),
                           record.lItemCount,
                           record.vbIsDefault != VARIANT_FALSE});
    }
    return folders;
}
} // namespace pim
