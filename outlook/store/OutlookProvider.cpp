#include "outlook/store/OutlookProvider.h"

#include "outlook/calendar/OutlookCalendarTable.h"
#include "outlook/categories/Outlook2003CategoryList.h"
#include "outlook/categories/Outlook2007CategoryList.h"
#include "outlook/contacts/OutlookAddressGroupTable.h"
#include "outlook/contacts/OutlookAddressTable.h"
#include "outlook/store/MAPIProxcy.h"
#include "outlook/store/MapiMemory.h"
#include "outlook/store/TagArray.h"
#include "outlook/store/UserProperties.h"
#include "platform/ScopeExit.h"
#include "service/Log.h"

#include <iterator>
#include <optional>
#include <utility>

using Microsoft::WRL::ComPtr;

namespace
{
// Which walk a row comes from.
enum CallType
{
    kStores = 0,
    kTopFolders = 10,
    kAssociated = 20,
    kAllFolders = 30
};

constexpr ULONG kStoreColumns[] = {PR_ENTRYID, PR_DEFAULT_STORE};
constexpr ULONG kTopFolderColumns[] = {PR_ENTRYID, PR_CONTAINER_CLASS_W};
constexpr ULONG kAssociatedColumns[] = {PR_ENTRYID, PR_MESSAGE_CLASS_W};
constexpr ULONG kFolderColumns[] = {
    PR_ENTRYID, PR_CONTAINER_CLASS_W, PR_SUBFOLDERS, PR_CONTENT_COUNT, PR_DISPLAY_NAME_W};

// The special folders, by properties of the inbox, the root or the store.
constexpr ULONG kContactsTag = 0x36D10102;    // PR_IPM_CONTACT_ENTRYID
constexpr ULONG kCalendarTag = 0x36D00102;    // PR_IPM_APPOINTMENT_ENTRYID
constexpr ULONG kWastebasketTag = 0x35E30102; // PR_IPM_WASTEBASKET_ENTRYID
constexpr ULONG kSubtreeTag = 0x35E00102;     // PR_IPM_SUBTREE_ENTRYID

// Kept as it is: Outlook 2007 itself counts as version 0 (see OutlookLibrary) and so has the
// categories of 2003. Pinned by OutlookProviderTest.
constexpr int kFirstVersionWithCategoryMessage = 2007;

constexpr wchar_t kCategoryMessageClass[] = L"IPM.Configuration.CategoryList";

// The library is not to initialise COM: the server has done so. In no header of the toolchain.
constexpr ULONG kNoComInitialisation = 8; // MAPI_NO_COINIT

// Folders nest less deep in any store of people; each level takes stack.
constexpr int kDeepestLevel = 256;

// How many folders one walk looks into. A store that names its folders anew each time has no last
// one; what lies below further folders is left out.
constexpr std::size_t kMostWalkedFolders = 0x2000;

// The interfaces take texts that they do not write to.
LPWSTR Unwritten(const wchar_t* text)
{
    return const_cast<LPWSTR>(text);
}

template <typename Interface> LPUNKNOWN* OutUnknown(ComPtr<Interface>& pointer)
{
    return reinterpret_cast<LPUNKNOWN*>(pointer.ReleaseAndGetAddressOf());
}

// A failed call owes null outputs. What a careless store gave nevertheless goes back to it unused.
template <typename Interface> void DropIfFailed(HRESULT result, ComPtr<Interface>& object)
{
    if (FAILED(result))
        object.Reset();
}

// Bytes at null, which no store may be asked for.
bool IsNullId(const SBinary& entry)
{
    return entry.cb != 0 && !entry.lpb;
}

// The entry ID under the tag; null where the object has none.
MapiBuffer<SPropValue> ReadEntryId(IMAPIProp* object, ULONG tag, ULONG flags, CNProxcy& proxy)
{
    TagArray tags({&tag, 1});
    ULONG count = 0;
    SPropValue* values = nullptr;
    const HRESULT result = object->GetProps(tags.Get(), flags, &count, &values);
    auto owned = AdoptMapiBuffer(values, proxy);
    if (FAILED(result) || count != 1 || !PropertyView(count, owned.get()).Binary(0))
        owned.reset();
    return owned;
}

void MarkDefault(std::vector<OutlookFolderInfo>& folders, const std::wstring& defaultID)
{
    for (OutlookFolderInfo& folder : folders)
    {
        if (folder.entryIDHex != defaultID)
            continue;
        folder.isDefault = true;
        return;
    }
}
} // namespace

// A class of folders that the provider knows.
struct COutlookProvider::FolderKind
{
    const wchar_t* containerClass;
    ComPtr<IMAPIFolder> COutlookProvider::*defaultFolder;
    Folders COutlookProvider::*list;

    // Null for any other class.
    static const FolderKind* Of(const wchar_t* containerClass);
};

// A kind of table.
struct COutlookProvider::TableKind
{
    int type;
    std::unique_ptr<IEnumerator> (*make)(COutlookProvider& provider);
};

const COutlookProvider::TableKind COutlookProvider::kTableKinds[] = {
    {ContactCategory,
     [](COutlookProvider& provider) -> std::unique_ptr<IEnumerator> {
         if (provider.m_version < kFirstVersionWithCategoryMessage)
             return std::make_unique<COutlook2003CategoryList>();
         return std::make_unique<COutlook2007CategoryList>(provider.m_pCategoryMessage.Get(),
                                                           provider.m_pHelper.get());
     }},
    {ContactGroup,
     [](COutlookProvider& provider) -> std::unique_ptr<IEnumerator> {
         return std::make_unique<COutlookAddressGroupTable>(provider.m_pContactFolder.Get(),
                                                            provider.m_pHelper.get());
     }},
    {AddressBook,
     [](COutlookProvider& provider) -> std::unique_ptr<IEnumerator> {
         return std::make_unique<COutlookAddressTable>(
             provider.m_pContactFolder.Get(), provider.m_pHelper.get(), provider.m_contactFolders);
     }},
    {Calendar,
     [](COutlookProvider& provider) -> std::unique_ptr<IEnumerator> {
         return std::make_unique<COutlookCalendarTable>(provider.m_pCalendarFolder.Get(),
                                                        provider.m_pHelper.get());
     }},
};

struct COutlookProvider::RowHandler
{
    int callType;
    BOOL (COutlookProvider::*handle)(const PropertyView& row, BOOL* goesOn);
};

const COutlookProvider::FolderKind COutlookProvider::kFolderKinds[] = {
    {L"IPF.Contact", &COutlookProvider::m_pContactFolder, &COutlookProvider::m_contactFolders},
    {L"IPF.Appointment",
     &COutlookProvider::m_pCalendarFolder,
     &COutlookProvider::m_calendarFolders},
};

const COutlookProvider::FolderKind* COutlookProvider::FolderKind::Of(const wchar_t* containerClass)
{
    if (containerClass)
        for (const FolderKind& kind : kFolderKinds)
            if (std::wstring_view(containerClass) == kind.containerClass)
                return &kind;
    return nullptr;
}

const COutlookProvider::RowHandler COutlookProvider::kRowHandlers[] = {
    {kStores, &COutlookProvider::OnStoreRow},
    {kTopFolders, &COutlookProvider::OnTopFolderRow},
    {kAssociated, &COutlookProvider::OnAssociatedRow},
    {kAllFolders, &COutlookProvider::OnFolderRow},
};

COutlookProvider::~COutlookProvider()
{
    if (m_pHelper)
        m_pHelper->Live().DetachAll();
    m_contactFolders.clear();
    m_calendarFolders.clear();
    m_pCategoryMessage.Reset();
    m_pCalendarFolder.Reset();
    m_pWastebasket.Reset();
    m_pContactFolder.Reset();
    m_pMsgStore.Reset();
    m_pIdentity.Reset();
    m_pMAPISession.Reset();
    m_pHelper.reset();
}

HRESULT COutlookProvider::Logon()
{
    return Logon(FindOutlookLibrary());
}

HRESULT COutlookProvider::Logon(const OutlookLibrary& library)
{
    m_version = library.version;
    if (library.path.empty())
        return E_FAIL;
    MAPIINIT_0 init = {};
    init.ulFlags = kNoComInitialisation;
    // This version alone notifies on threads of its own where that is asked for.
    if (m_version == 2003)
        init.ulFlags |= MAPI_MULTITHREAD_NOTIFICATIONS;
    auto proxy = std::make_unique<CMAPIProxcy>();
    if (!proxy->Load(library.path, &init))
        return E_FAIL;
    m_pHelper = std::make_unique<CMAPIHelper>(std::move(proxy));

    const HRESULT result =
        m_pHelper->Proxy().MAPILogonEx(0,
                                       nullptr,
                                       nullptr,
                                       MAPI_NEW_SESSION | MAPI_EXTENDED | MAPI_USE_DEFAULT,
                                       m_pMAPISession.GetAddressOf());
    LogPrintf(L"=========m_pOutlook->m_pProxcy->MAPILogonEx hr = 0X%p! \r\n", Hr(result));
    // Kept as it is: a failing code with a session counts as a logon. Pinned by
    // OutlookProviderTest.
    if (FAILED(result) && !m_pMAPISession)
        return result;
    if (!GetMessageStore() || !GetDefaultFolders() || !GetCategoryMessage())
        return E_FAIL;
    WalkFolders();
    GetUserPropertyTable();
    return S_OK;
}

// --- What the logon opens ------------------------------------------------------------------------

bool COutlookProvider::GetMessageStore()
{
    LogPrintf(L"=========COutlookProvider::GetMessageStore() \r\n");
    if (!m_pMAPISession)
        return false;
    ComPtr<IMAPITable> table;
    const HRESULT result = m_pMAPISession->GetMsgStoresTable(0, table.GetAddressOf());
    LogPrintf(L"=========m_pMAPISession->GetMsgStoresTable(), hr = 0X%p \r\n", Hr(result));
    return SUCCEEDED(result) &&
           m_pHelper->EnumerateRows(table.Get(), kStoreColumns, kStores, this, 0);
}

BOOL COutlookProvider::OnStoreRow(const PropertyView& row, BOOL* goesOn)
{
    const SBinary* const entry = row.Binary(0);
    if (!entry || !row.Bool(1).value_or(0))
        return FALSE;
    *goesOn = FALSE;
    const HRESULT result = m_pMAPISession->OpenMsgStore(0,
                                                        entry->cb,
                                                        reinterpret_cast<LPENTRYID>(entry->lpb),
                                                        nullptr,
                                                        MDB_WRITE | MAPI_DEFERRED_ERRORS,
                                                        m_pMsgStore.ReleaseAndGetAddressOf());
    LogPrintf(L"=========m_pMAPISession->OpenMsgStore(), hr = 0X%p \r\n", Hr(result));
    return SUCCEEDED(result) && m_pMsgStore;
}

ComPtr<IMAPIFolder> COutlookProvider::OpenFolder(const SBinary& entry, HRESULT& result)
{
    // An entry that says it is something else has fewer operations than a folder.
    ULONG type = MAPI_FOLDER;
    ComPtr<IMAPIFolder> folder;
    result = m_pMsgStore->OpenEntry(entry.cb,
                                    reinterpret_cast<LPENTRYID>(entry.lpb),
                                    nullptr,
                                    MAPI_BEST_ACCESS,
                                    &type,
                                    OutUnknown(folder));
    DropIfFailed(result, folder);
    if (type != MAPI_FOLDER)
        folder.Reset();
    return folder;
}

void COutlookProvider::OpenDefaultFolder(ULONG tag, ComPtr<IMAPIFolder>& folder)
{
    if (!m_pMsgStore)
        return;
    CNProxcy& proxy = m_pHelper->Proxy();
    ULONG entrySize = 0;
    LPENTRYID entry = nullptr;
    // The class is a wide text although its parameter is a narrow one: the flag tells so.
    const HRESULT received =
        m_pMsgStore->GetReceiveFolder(reinterpret_cast<LPTSTR>(Unwritten(L"IPM.Note")),
                                      MAPI_UNICODE,
                                      &entrySize,
                                      &entry,
                                      nullptr);
    LogPrintf(L"=========m_pMsgStore->GetReceiveFolder, hr = 0X%p \r\n", Hr(received));
    const auto ownedEntry = AdoptMapiBuffer(entry, proxy);

    MapiBuffer<SPropValue> value;
    ComPtr<IMAPIProp> inbox;
    if (SUCCEEDED(received) && !IsNullId({entrySize, reinterpret_cast<BYTE*>(entry)}))
    {
        ULONG type = 0;
        DropIfFailed(m_pMsgStore->OpenEntry(
                         entrySize, entry, nullptr, MAPI_BEST_ACCESS, &type, OutUnknown(inbox)),
                     inbox);
        if (inbox)
            value = ReadEntryId(inbox.Get(), tag, MAPI_UNICODE, proxy);
    }
    ComPtr<IMAPIProp> root;
    if (!value)
    {
        DropIfFailed(m_pMsgStore->OpenEntry(
                         0, nullptr, nullptr, MAPI_BEST_ACCESS, nullptr, OutUnknown(root)),
                     root);
        if (root)
            value = ReadEntryId(root.Get(), tag, MAPI_UNICODE, proxy);
    }
    if (!value)
        value = ReadEntryId(m_pMsgStore.Get(), tag, MAPI_UNICODE, proxy);
    if (!value)
        return;
    HRESULT result = S_OK;
    folder = OpenFolder(value->Value.bin, result);
}

std::wstring COutlookProvider::EntryIdHex(IMAPIProp* object)
{
    SPropValue* value = nullptr;
    const HRESULT result = m_pHelper->Proxy().HrGetOneProp(object, PR_ENTRYID, &value);
    const auto owned = AdoptMapiBuffer(value, m_pHelper->Proxy());
    if (FAILED(result) || !owned || PROP_TYPE(owned->ulPropTag) != PT_BINARY)
        return {};
    return CMAPIHelper::BinaryToHex(owned->Value.bin);
}

bool COutlookProvider::GetDefaultFolders()
{
    OpenDefaultFolder(kContactsTag, m_pContactFolder);
    OpenDefaultFolder(kCalendarTag, m_pCalendarFolder);
    OpenDefaultFolder(kWastebasketTag, m_pWastebasket);
    if (!m_pContactFolder || !m_pCalendarFolder)
    {
        // What was found of the two is looked for again: both come from the same place.
        m_pContactFolder.Reset();
        m_pCalendarFolder.Reset();
        if (!FindFoldersBelowSubtree())
            return false;
    }
    m_contactFolderID = EntryIdHex(m_pContactFolder.Get());
    m_calendarFolderID = EntryIdHex(m_pCalendarFolder.Get());
    if (m_pWastebasket)
        m_wastebasketID = EntryIdHex(m_pWastebasket.Get());
    return true;
}

ComPtr<IMAPITable> COutlookProvider::OpenSubtreeTable()
{
    LogPrintf(L"=========COutlookProvider::GetExceptedFolder() \r\n");
    ComPtr<IMAPITable> table;
    const auto subtree = ReadEntryId(m_pMsgStore.Get(), kSubtreeTag, 0, m_pHelper->Proxy());
    if (!subtree)
        return table;
    HRESULT result = S_OK;
    const ComPtr<IMAPIFolder> folder = OpenFolder(subtree->Value.bin, result);
    if (SUCCEEDED(result) && folder && FAILED(folder->GetHierarchyTable(0, table.GetAddressOf())))
        table.Reset();
    return table;
}

bool COutlookProvider::FindFoldersBelowSubtree()
{
    const ComPtr<IMAPITable> table = OpenSubtreeTable();
    return m_pHelper->EnumerateRows(table.Get(), kTopFolderColumns, kTopFolders, this, 0);
}

BOOL COutlookProvider::OnTopFolderRow(const PropertyView& row, BOOL* goesOn)
{
    const SBinary* const entry = row.Binary(0);
    const FolderKind* const kind = FolderKind::Of(row.Text(1));
    if (entry && kind)
    {
        HRESULT result = S_OK;
        ComPtr<IMAPIFolder> folder = OpenFolder(*entry, result);
        LogPrintf(L"=========m_pMsgStore->OpenEntry, %s, hr = 0X%p \r\n",
                  kind->containerClass,
                  Hr(result));
        if (folder)
            this->*kind->defaultFolder = std::move(folder);
    }
    if (!m_pContactFolder || !m_pCalendarFolder)
        return FALSE;
    *goesOn = FALSE;
    return TRUE;
}

bool COutlookProvider::GetCategoryMessage()
{
    ComPtr<IMAPITable> table;
    if (FAILED(m_pCalendarFolder->GetContentsTable(MAPI_UNICODE | MAPI_ASSOCIATED,
                                                   table.GetAddressOf())) ||
        !table)
        return false;
    m_pHelper->EnumerateRows(table.Get(), kAssociatedColumns, kAssociated, this, 0);
    return m_pCategoryMessage || CreateCategoryMessage();
}

BOOL COutlookProvider::OnAssociatedRow(const PropertyView& row, BOOL* goesOn)
{
    const SBinary* const entry = row.Binary(0);
    const wchar_t* const messageClass = row.Text(1);
    if (!entry || !messageClass || std::wstring_view(messageClass) != kCategoryMessageClass)
        return FALSE;
    // An entry that says it is something else is no message: the categories would be written to it.
    ULONG type = MAPI_MESSAGE;
    const HRESULT result = m_pMsgStore->OpenEntry(entry->cb,
                                                  reinterpret_cast<LPENTRYID>(entry->lpb),
                                                  nullptr,
                                                  MAPI_BEST_ACCESS,
                                                  &type,
                                                  OutUnknown(m_pCategoryMessage));
    LogPrintf(
        L"=========m_pMsgStore->OpenEntry, %s, hr = 0X%p \r\n", kCategoryMessageClass, Hr(result));
    DropIfFailed(result, m_pCategoryMessage);
    if (type != MAPI_MESSAGE)
        m_pCategoryMessage.Reset();
    *goesOn = FALSE;
    return TRUE;
}

bool COutlookProvider::CreateCategoryMessage()
{
    SPropValue value = {};
    value.ulPropTag = PR_MESSAGE_CLASS_W;
    value.Value.lpszW = Unwritten(kCategoryMessageClass);
    ComPtr<IMessage> message;
    if (FAILED(
            m_pCalendarFolder->CreateMessage(nullptr, MAPI_ASSOCIATED, message.GetAddressOf())) ||
        !message || FAILED(message->SetProps(1, &value, nullptr)) ||
        FAILED(message->SaveChanges(FORCE_SAVE)))
        return false;
    m_pCategoryMessage = std::move(message);
    return true;
}

void COutlookProvider::WalkFolders()
{
    {
        const ScopeExit ended([this] { m_walked.clear(); });
        const ComPtr<IMAPITable> table = OpenSubtreeTable();
        m_pHelper->EnumerateRows(table.Get(), kFolderColumns, kAllFolders, this, 0);
    }
    MarkDefault(m_contactFolders, m_contactFolderID);
    MarkDefault(m_calendarFolders, m_calendarFolderID);
}

BOOL COutlookProvider::OnFolderRow(const PropertyView& row, BOOL* goesOn)
{
    const SBinary* const entry = row.Binary(0);
    const std::optional<LONG> count = row.Long(3);
    const wchar_t* const name = row.Text(4);
    if (!entry || !row.Bool(2) || !count || !name)
        return FALSE;
    LogPrintf(L"========Find Folder %s", name);

    ComPtr<IMAPIFolder> folder;
    HRESULT result = S_OK;
    if (const FolderKind* const kind = FolderKind::Of(row.Text(1)))
    {
        folder = OpenFolder(*entry, result);
        LogPrintf(L"=========m_pMsgStore->OpenEntry, %s, hr = 0X%p \r\n",
                  kind->containerClass,
                  Hr(result));
        if (SUCCEEDED(result) && folder)
            (this->*kind->list).push_back({folder, false, *count, EntryIdHex(folder.Get()), name});
    }
    // Kept as it is: the truth value is read as a number of 32 bits. Pinned by
    // OutlookProviderTest.TheTruthOfSubfoldersIsReadAsASignedNumber.
    if (row.Find(2)->Value.l > 0)
    {
        if (!folder)
            folder = OpenFolder(*entry, result);
        if (folder)
            WalkBelow(folder.Get(), CMAPIHelper::BinaryToHex(*entry));
    }
    *goesOn = TRUE;
    return TRUE;
}

void COutlookProvider::WalkBelow(IMAPIFolder* folder, const std::wstring& rowID)
{
    const std::wstring id = EntryIdHex(folder);
    if (!m_wastebasketID.empty() && lstrcmpiW(id.c_str(), m_wastebasketID.c_str()) == 0)
    {
        LogPrintf(L"=========Wastebasket Folder ignorent it \r\n");
        return;
    }
    if (m_depth >= kDeepestLevel || m_walked.size() >= kMostWalkedFolders ||
        !m_walked.insert(rowID).second)
        return;
    ++m_depth;
    const ScopeExit left([this] { --m_depth; });
    ComPtr<IMAPITable> table;
    if (SUCCEEDED(folder->GetHierarchyTable(0, table.GetAddressOf())))
        m_pHelper->EnumerateRows(table.Get(), kFolderColumns, kAllFolders, this, 0);
}

void COutlookProvider::GetUserPropertyTable()
{
    LogPrintf(L"=========COutlookProvider::GetUserPropertyTable() \r\n");
    ULONG entrySize = 0;
    LPENTRYID entry = nullptr;
    HRESULT result = m_pMAPISession->QueryIdentity(&entrySize, &entry);
    LogPrintf(L"=========m_pMAPISession->QueryIdentity(), hr = 0X%p \r\n", Hr(result));
    const auto ownedEntry = AdoptMapiBuffer(entry, m_pHelper->Proxy());
    if (!entry)
        return;
    ULONG type = 0;
    result = m_pMAPISession->OpenEntry(
        entrySize, entry, nullptr, MAPI_BEST_ACCESS, &type, OutUnknown(m_pIdentity));
    LogPrintf(L"=========m_pMAPISession->OpenEntry(), hr = 0X%p \r\n", Hr(result));
    DropIfFailed(result, m_pIdentity);
}

BOOL COutlookProvider::OnPropertyRow(ULONG cValues,
                                     LPSPropValue lpProps,
                                     int callType,
                                     BOOL* pContinue)
{
    for (const RowHandler& handler : kRowHandlers)
        if (handler.callType == callType)
            return (this->*handler.handle)(PropertyView(cValues, lpProps), pContinue);
    return FALSE;
}

// --- What the provider hands out -----------------------------------------------------------------

std::unique_ptr<UserIdentity> COutlookProvider::GetUserProperties()
{
    return std::make_unique<CUserProperties>(m_pIdentity.Get(), m_pHelper.get());
}

std::unique_ptr<CAddressBookHandle> COutlookProvider::GetAddressBook()
{
    auto items = LoadTable(AddressBook);
    return std::make_unique<CAddressBookHandle>(std::move(items), LoadTable(ContactGroup));
}

std::unique_ptr<CCalendarHandle> COutlookProvider::GetCalendar()
{
    return std::make_unique<CCalendarHandle>(LoadTable(Calendar));
}

std::unique_ptr<IEnumerator> COutlookProvider::LoadTable(int type)
{
    std::unique_ptr<IEnumerator> table = GetEnumerator(type);
    table->GetItemIDs();
    table->ResetItem();
    return table;
}

std::unique_ptr<IEnumerator> COutlookProvider::GetEnumerator(int type)
{
    for (const TableKind& kind : kTableKinds)
        if (kind.type == type)
            return kind.make(*this);
    return nullptr;
}

bool COutlookProvider::GetContactFolders(std::vector<OutlookFolderInfo>& folders)
{
    folders = m_contactFolders;
    return true;
}

bool COutlookProvider::GetCalendarFolders(std::vector<OutlookFolderInfo>& folders)
{
    folders = m_calendarFolders;
    return true;
}
