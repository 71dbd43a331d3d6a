#include "windowscontacts/WindowsMailProvider.h"

#include "icalendar/WindowsMailCalendar.h"
#include "outlook/store/WAPProxcy.h"
#include "service/Registry.h"
#include "service/TextConversions.h"
#include "windowscontacts/PersonalBook.h"
#include "windowscontacts/WindowsMailAddressTable.h"

#include <exception>
#include <utility>

namespace
{
constexpr wchar_t kLibraryKey[] = L"Software\\Microsoft\\WAB\\DLLPath";
constexpr wchar_t kCalendarFolder[] = L"\\Microsoft\\Windows Calendar\\Calendars\\";
constexpr DWORD kPathCapacity = 0x104;

// The registry's text with its environment variables filled in; empty where it does not fit.
std::wstring ExpandPath(const std::wstring& text)
{
    std::wstring path(kPathCapacity, L'\0');
    const DWORD needed = ExpandEnvironmentStringsW(text.c_str(), path.data(), kPathCapacity);
    if (needed == 0 || needed > kPathCapacity)
        return {};
    TrimToCString(path);
    return path;
}
} // namespace

CWindowsMailProvider::CWindowsMailProvider(bool addressBookOnly)
    : m_isAddressBookOnly(addressBookOnly)
{
    const std::wstring path = ExpandPath(ReadRegistryString(HKEY_LOCAL_MACHINE, kLibraryKey, L""));
    auto proxy = std::make_unique<CWAPProxcy>();
    if (!proxy->Load(path, nullptr))
        throw std::exception();
    m_pHelper = std::make_unique<CMAPIHelper>(std::move(proxy));
    if (!OpenBook())
        throw std::exception();
    if (!m_isAddressBookOnly && !SetCalendarPath())
        throw std::exception();
}

CWindowsMailProvider::~CWindowsMailProvider()
{
    m_pHelper->Live().DetachAll();
}

bool CWindowsMailProvider::OpenBook()
{
    CNProxcy& proxy = m_pHelper->Proxy();
    auto* const open =
        reinterpret_cast<WABOPEN*>(reinterpret_cast<void*>(proxy.FindEntry("WABOpen")));
    if (!open)
        return false;

    const HRESULT opened =
        open(m_pAddrBook.GetAddressOf(), m_pWabObject.GetAddressOf(), nullptr, 0);
    if (FAILED(opened) || !m_pAddrBook || !m_pWabObject)
        return false;
    proxy.SetValue(CNProxcy::kWabObjectKey, m_pWabObject.Get());

    m_pContainer = OpenPersonalBook(*m_pAddrBook.Get(), proxy);
    return m_pContainer != nullptr;
}

bool CWindowsMailProvider::SetCalendarPath()
{
    wchar_t folder[MAX_PATH] = {};
    if (!SHGetSpecialFolderPathW(nullptr, folder, CSIDL_LOCAL_APPDATA, FALSE))
        return false;
    m_calendarPath = std::wstring(folder) + kCalendarFolder;
    return true;
}

std::unique_ptr<UserIdentity> CWindowsMailProvider::GetUserProperties()
{
    return nullptr;
}

std::unique_ptr<CWindowsMailAddressTable> CWindowsMailProvider::NewAddressTable()
{
    return std::make_unique<CWindowsMailAddressTable>(
        m_pContainer.Get(), m_pHelper.get(), m_isAddressBookOnly, m_pAddrBook.Get());
}

std::unique_ptr<CAddressBookHandle> CWindowsMailProvider::GetAddressBook()
{
    auto contacts = NewAddressTable();
    contacts->GetItemIDs();
    contacts->ResetItem();
    return std::make_unique<CAddressBookHandle>(std::move(contacts), nullptr);
}

std::unique_ptr<CCalendarHandle> CWindowsMailProvider::GetCalendar()
{
    auto calendar = std::make_unique<CWindowsMailCalendar>(m_calendarPath);
    calendar->GetItemIDs();
    calendar->ResetItem();
    return std::make_unique<CCalendarHandle>(std::move(calendar));
}

std::unique_ptr<IEnumerator> CWindowsMailProvider::GetEnumerator(int type)
{
    if (type == AddressBook)
        return NewAddressTable();
    if (type == Calendar)
        return std::make_unique<CWindowsMailCalendar>(m_calendarPath);
    return nullptr;
}

bool CWindowsMailProvider::GetContactFolders(std::vector<OutlookFolderInfo>&)
{
    return false;
}

bool CWindowsMailProvider::GetCalendarFolders(std::vector<OutlookFolderInfo>&)
{
    return false;
}
