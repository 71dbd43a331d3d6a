#include "client/Server.h"

#include "client/Failure.h"
#include "client/TextArray.h"
#include "client/core/CommandLine.h"
#include "platform/Bstr.h"

#include <algorithm>
#include <iterator>

namespace pim
{
namespace
{
bool IsSameName(const std::wstring& left, const std::wstring& right)
{
    return StrCmpIW(left.c_str(), right.c_str()) == 0;
}

bool Contains(const std::vector<std::wstring>& names, const std::wstring& name)
{
    return std::any_of(
        names.begin(), names.end(), [&](const std::wstring& one) { return IsSameName(one, name); });
}

[[noreturn]] void ThrowUnreachable(HRESULT result)
{
    if (result == REGDB_E_CLASSNOTREG)
        throw Failure{kExitNoServer, L"The server is not registered on this PC. Run: pim register"};
    throw Failure{kExitNoServer,
                  L"The server could not be reached (" + ResultText(result) +
                      L"). Where it was moved or updated, run: pim register"};
}
} // namespace

std::vector<std::wstring> UsableProviders(const Server& server)
{
    const std::vector<std::wstring> listed = server.Providers();
    std::vector<std::wstring> names;
    const std::wstring preferred = server.DefaultProvider();
    if (IsKnownProvider(preferred) && Contains(listed, preferred))
        names.push_back(preferred);
    std::copy_if(
        std::begin(kKnownProviders),
        std::end(kKnownProviders),
        std::back_inserter(names),
        [&](const wchar_t* known) { return Contains(listed, known) && !Contains(names, known); });
    return names;
}

bool IsOutlook(const std::wstring& name)
{
    return IsSameName(name, kOutlook);
}

bool IsKnownProvider(const std::wstring& name)
{
    return std::any_of(std::begin(kKnownProviders),
                       std::end(kKnownProviders),
                       [&](const wchar_t* known) { return IsSameName(name, known); });
}

Apartment::Apartment()
{
    const HRESULT result = CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    if (FAILED(result))
        throw Failure{kExitNoServer, L"COM could not be started (" + ResultText(result) + L")."};
}

Server::Server()
{
    MakeInServer(CLSID_NPersonalInformationService,
                 IID_INPersonalInformationService,
                 reinterpret_cast<void**>(m_service.GetAddressOf()));
}

std::vector<std::wstring> Server::Providers() const
{
    UniqueSafeArray array;
    CheckDone(m_service->GetProviders(array.Put()), L"The server did not list the mail clients");
    return TextsOf(array.Get());
}

std::wstring Server::DefaultProvider() const
{
    Bstr name;
    CheckDone(m_service->GetDefaultProvider(name.Put()),
              L"The server did not name the default mail client");
    return std::wstring(name.View());
}

void MakeInServer(REFCLSID clsid, REFIID iid, void** object)
{
    const HRESULT result = CoCreateInstance(clsid, nullptr, CLSCTX_LOCAL_SERVER, iid, object);
    if (FAILED(result) || !*object)
        ThrowUnreachable(result);
}
} // namespace pim
