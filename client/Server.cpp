#include "client/Server.h"

#include "client/AppointmentAccess.h"
#include "client/Console.h"
#include "client/Failure.h"
#include "client/core/CommandLine.h"
#include "platform/Bstr.h"
#include "platform/ScopeExit.h"

#include <algorithm>
#include <iterator>

namespace pim
{
namespace
{
using Microsoft::WRL::ComPtr;

// Best first: the last one has no calendar.
constexpr const wchar_t* kKnownProviders[] = {kOutlook, L"Windows Mail", L"Outlook Express"};

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

// The texts of an array of BSTR; anything else has none.
std::vector<std::wstring> TextsOf(SAFEARRAY* array)
{
    std::vector<std::wstring> texts;
    VARTYPE type = VT_EMPTY;
    if (!array || SafeArrayGetDim(array) != 1 || FAILED(SafeArrayGetVartype(array, &type)) ||
        type != VT_BSTR)
        return texts;
    LONG first = 0;
    LONG last = -1;
    if (FAILED(SafeArrayGetLBound(array, 1, &first)) || FAILED(SafeArrayGetUBound(array, 1, &last)))
        return texts;
    for (LONG i = first; i <= last; ++i)
    {
        Bstr text;
        if (SUCCEEDED(SafeArrayGetElement(array, &i, text.Put())))
            texts.emplace_back(text.View());
    }
    return texts;
}

// The failure of an operation on the calendar.
void CheckDone(HRESULT result, const wchar_t* sentence)
{
    CheckServerIsThere(result);
    if (FAILED(result))
        throw Failure{kExitFailed, std::wstring(sentence) + L" (" + ResultText(result) + L")."};
}

// The providers to try, best first.
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
} // namespace

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
    const HRESULT result = CoCreateInstance(CLSID_NPersonalInformationService,
                                            nullptr,
                                            CLSCTX_LOCAL_SERVER,
                                            IID_INPersonalInformationService,
                                            reinterpret_cast<void**>(m_service.GetAddressOf()));
    if (FAILED(result) || !m_service)
        ThrowUnreachable(result);
}

std::vector<std::wstring> Server::Providers() const
{
    SAFEARRAY* array = nullptr;
    const ScopeExit destroy([&] {
        if (array)
            SafeArrayDestroy(array);
    });
    CheckDone(m_service->GetProviders(&array), L"The server did not list the mail clients");
    return TextsOf(array);
}

std::wstring Server::DefaultProvider() const
{
    Bstr name;
    CheckDone(m_service->GetDefaultProvider(name.Put()),
              L"The server did not name the default mail client");
    return std::wstring(name.View());
}

CalendarSession::CalendarSession(const Server& server, const std::optional<std::wstring>& provider)
    : m_service(server.Get())
{
    // Only a running service has a calendar to give.
    m_calendar = OpenCalendar();
    if (!m_calendar)
        Start(server, provider);
    // Only Outlook has an identity of the user to give.
    ComPtr<INUserProperties> identity;
    CheckDone(m_service->GetUserProperties(identity.GetAddressOf()),
              L"The server did not answer about its provider");
    m_isFileStore = !identity;
    if (!m_started && identity)
        m_provider = kOutlook;
    if (!m_calendar)
        throw Failure{kExitFailed,
                      L"The service was stopped by another program, or its store has no calendar. "
                      L"Run the command again."};
    const bool isOther = !m_started && provider && IsOutlook(*provider) == m_isFileStore;
    if (isOther)
        throw Failure{kExitFailed,
                      L"Another program uses the server with another mail client than \"" +
                          *provider + L"\". End that program and run the command again."};
}

ComPtr<INCalendar> CalendarSession::OpenCalendar() const
{
    ComPtr<INCalendar> calendar;
    CheckDone(m_service->GetCalendar(calendar.GetAddressOf()),
              L"The server did not open the calendar");
    return calendar;
}

void CalendarSession::Start(const Server& server, const std::optional<std::wstring>& provider)
{
    const std::vector<std::wstring> names =
        provider ? std::vector<std::wstring>{*provider} : UsableProviders(server);
    HRESULT firstFailure = S_OK;
    std::wstring failedName;
    for (const std::wstring& name : names)
    {
        const HRESULT result = m_service->StartService(Bstr(name).Get());
        CheckServerIsThere(result);
        if (FAILED(result))
        {
            if (failedName.empty())
            {
                firstFailure = result;
                failedName = name;
            }
            continue;
        }
        m_provider = name;
        m_started = std::make_unique<StartedService>(m_service);
        m_calendar = OpenCalendar();
        // One that was asked for is used as it is.
        if (m_calendar || provider)
            return;
        m_started.reset();
        m_provider.reset();
    }
    if (names.empty())
        throw Failure{kExitFailed,
                      L"No mail client that the server knows is installed here. "
                      L"pimstore install --book or --store sets up a store of our own."};
    if (failedName.empty())
        throw Failure{
            kExitFailed,
            L"The store of \"" + names.back() +
                L"\" has no calendar. pim providers lists the mail clients that are there."};
    throw Failure{kExitFailed,
                  L"The server could not start \"" + failedName + L"\" (" +
                      ResultText(firstFailure) +
                      L"). pim providers lists the mail clients that are there."};
}

void CalendarSession::Rewind() const
{
    VARIANT_BOOL done = VARIANT_FALSE;
    CheckDone(m_calendar->Reset(&done), L"The server did not begin the calendar anew");
}

bool CalendarSession::HasItem() const
{
    Rewind();
    ComPtr<INAppointment> item;
    CheckServerIsThere(m_calendar->GetNextAppointment(item.GetAddressOf()));
    return item != nullptr;
}

void CalendarSession::Walk(const std::function<void(INAppointment*)>& take) const
{
    Rewind();
    for (bool any = false;; any = true)
    {
        if (IsCancelled())
            throw Failure{kExitFailed, L"Cancelled."};
        ComPtr<INAppointment> item;
        const HRESULT result = m_calendar->GetNextAppointment(item.GetAddressOf());
        CheckServerIsThere(result);
        if (SUCCEEDED(result) && item)
        {
            take(item.Get());
            continue;
        }
        // The end of the list, and a list whose service another client stopped, look alike; the
        // latter has no first item either.
        if (result == E_FAIL && (!any || HasItem()))
            return;
        throw Failure{kExitFailed,
                      L"The walk through the calendar broke off (" + ResultText(result) +
                          L"); another program may have stopped the service. "
                          L"Run the command again."};
    }
}

ComPtr<INAppointment> CalendarSession::Find(const std::wstring& id) const
{
    Rewind();
    ComPtr<INAppointment> item;
    const HRESULT result = m_calendar->GetAppointmentByID(Bstr(id).Get(), item.GetAddressOf());
    CheckServerIsThere(result);
    // A store may answer with the item that was current before, so the ID is compared.
    if (FAILED(result) || !item || ReadItemId(item.Get()) != id)
        return nullptr;
    return item;
}

ComPtr<INAppointment> CalendarSession::NewItem() const
{
    ComPtr<INAppointment> item;
    const HRESULT result = CoCreateInstance(CLSID_NAppointment,
                                            nullptr,
                                            CLSCTX_LOCAL_SERVER,
                                            IID_INAppointment,
                                            reinterpret_cast<void**>(item.GetAddressOf()));
    CheckServerIsThere(result);
    if (FAILED(result) || !item)
        ThrowUnreachable(result);
    return item;
}

std::wstring CalendarSession::Add(INAppointment* item) const
{
    Bstr id;
    CheckDone(m_calendar->AddAppointment(item, id.Put()),
              L"The item was not stored: the store cannot be written, or has no place for it");
    return std::wstring(id.View());
}

void CalendarSession::Update(INAppointment* item) const
{
    VARIANT_BOOL done = VARIANT_FALSE;
    CheckDone(m_calendar->UpdateAppointment(item, &done),
              L"The change was not stored: the store cannot be written, or the item is gone");
}

bool CalendarSession::Delete(const std::wstring& id) const
{
    VARIANT_BOOL done = VARIANT_FALSE;
    const HRESULT result = m_calendar->DeleteAppointment(Bstr(id).Get(), &done);
    CheckServerIsThere(result);
    return SUCCEEDED(result);
}

void CalendarSession::Reload() const
{
    CheckDone(m_calendar->Refresh(), L"The calendar could not be read again");
}
} // namespace pim
