#include "windowscontacts/WindowsMailAddressTable.h"

#include "outlook/contacts/ContactFields.h"
#include "outlook/store/ReadValues.h"
#include "outlook/store/StoreObjects.h"
#include "outlook/store/TagArray.h"
#include "platform/Bstr.h"
#include "service/ItemAccess.h"
#include "service/Log.h"
#include "windowscontacts/EntryIdMarker.h"
#include "windowscontacts/PersonalBook.h"
#include "windowscontacts/PictureFolder.h"
#include "windowscontacts/WindowsContactColumns.h"
#include "windowscontacts/WindowsContactValues.h"
#include "windowscontacts/WindowsContactWriting.h"

using Microsoft::WRL::ComPtr;

namespace
{
constexpr LONG kEntryIDIndex = 0x456E7472; // "Entr"
constexpr ULONG kTemplateTags[] = {PR_DEF_CREATE_MAILUSER, PR_DEF_CREATE_DL};

ComPtr<IMAPIProp> CreateEntry(IABContainer& container, const SBinary& templateID)
{
    ComPtr<IMAPIProp> entry;
    const HRESULT result = container.CreateEntry(templateID.cb,
                                                 reinterpret_cast<LPENTRYID>(templateID.lpb),
                                                 CREATE_REPLACE,
                                                 entry.GetAddressOf());
    return SUCCEEDED(result) ? entry : nullptr;
}
} // namespace

CWindowsMailAddressTable::CWindowsMailAddressTable(IMAPIContainer* container,
                                                   CMAPIHelper* helper,
                                                   bool isOutlookExpress,
                                                   IAddrBook* addrBook)
    : CAddressTable(container, helper), m_pAddrBook(addrBook), m_isOutlookExpress(isOutlookExpress)
{
}

void CWindowsMailAddressTable::Detach() noexcept
{
    m_pAddrBook = nullptr;
    CAddressTable::Detach(); // its releases may end this table
}

// --- IDs ---------------------------------------------------------------------------------------

std::wstring CWindowsMailAddressTable::ToInternalID(const std::wstring& clientID)
{
    if (m_isOutlookExpress)
        return clientID;
    const EntryList::Position entry = m_entries.FindByClientEntryID(clientID);
    return entry == m_entries.End() || entry->RowEntryID().empty() ? clientID : entry->RowEntryID();
}

std::wstring CWindowsMailAddressTable::ToClientID(const std::wstring& internalID)
{
    if (m_isOutlookExpress)
        return internalID;
    const EntryList::Position entry = m_entries.FindByRowEntryID(internalID);
    return entry == m_entries.End() || entry->ClientEntryID().empty() ? internalID
                                                                      : entry->ClientEntryID();
}

std::wstring CWindowsMailAddressTable::ResolveClientID(const std::wstring& rowEntryID,
                                                       const SBinary& entryID,
                                                       DATE& utcLastModified)
{
    utcLastModified = 0.0;
    if (m_isOutlookExpress || !entryID.lpb || entryID.cb == 0)
        return rowEntryID;
    std::wstring identity = MarkedIdentity({entryID.lpb, entryID.cb});
    return identity.empty() ? rowEntryID : identity;
}

// --- Loading and reading -------------------------------------------------------------------------

bool CWindowsMailAddressTable::IsWantedRow(const PropertyView& row)
{
    const SBinary* const entryID = row.Binary(0);
    if (!entryID || !m_pContainer)
        return false;
    const OpenedEntry entry = OpenEntry(*m_pContainer.Get(), *entryID, kOpenToRead);
    return entry.object && entry.type == MAPI_MAILUSER;
}

std::vector<ULONG> CWindowsMailAddressTable::GetPropertyNames()
{
    const std::span<const ULONG> tags = WindowsContactColumnTags();
    return {tags.begin(), tags.end()};
}

void CWindowsMailAddressTable::FillItem(INEntityItem& item, const PropertyView& values)
{
    const ComPtr<INContactItem> contact = QueryItem<INContactItem>(&item);
    if (!contact || !m_pHelper || values.Count() == 0)
        return;
    Bstr entryID;
    if (SUCCEEDED(contact->GetStringByIndex(kEntryIDIndex, entryID.Put())))
        contact->put_PersistentID(entryID.Get());
    PutWindowsContactValues(item, *contact.Get(), values);
    contact->put_Notes(Bstr(CurrentText(kWindowsContactNotes)).Get());
    contact->put_Picture(Bstr(CurrentText(kWindowsContactPicture)).Get());
}

// A text of the open entry; empty where it has none.
std::wstring CWindowsMailAddressTable::CurrentText(ULONG tag)
{
    if (!m_pCurrentEntity)
        return {};
    const ReadValues values(*m_pCurrentEntity.Get(), {&tag, 1}, m_pHelper->Proxy());
    const wchar_t* const text = values.View().Text(0);
    return text ? text : std::wstring();
}

// --- Writing -------------------------------------------------------------------------------------

bool CWindowsMailAddressTable::PrepareEntity()
{
    if (!m_pCurrentEntity)
        return false;
    TagArray tags(WindowsContactClearedTags());
    return SUCCEEDED(m_pCurrentEntity->DeleteProps(tags.Get(), nullptr));
}

PropertyArray CWindowsMailAddressTable::ReadItem(INEntityItem& item, bool)
{
    const ComPtr<INContactItem> contact = QueryItem<INContactItem>(&item);
    if (!contact)
        return {};
    PropertyArray values = WindowsContactProperties(*contact.Get());
    AddPicture(*contact.Get(), values);
    return values;
}

// Kept as it is: each write makes a new file, also of a picture that lies in the folder already,
// and removes none. Pinned by WindowsContactPictureTest.
void CWindowsMailAddressTable::AddPicture(INContactItem& contact, PropertyArray& values)
{
    const std::wstring source = TextIn(contact, &INContactItem::get_Picture);
    if (source.empty())
        return;
    const std::wstring target = NewContactPicturePath();
    LogPrintf(L"=====CreatePicturePath:%s", target.c_str());
    ComPtr<IStream> stream;
    if (target.empty() ||
        FAILED(SHCreateStreamOnFileW(
            target.c_str(), STGM_CREATE | STGM_WRITE, stream.GetAddressOf())) ||
        !stream)
    {
        LogPrintf(L"=====SHCreateStreamOnFileW: Failed");
        return;
    }
    const ULONG total = SavePicture(source.c_str(), stream.Get());
    LogPrintf(L"=====CAddressTable::SavePicture, dwTotal=%d", static_cast<int>(total));
    if (total != 0)
        values.AddText(kWindowsContactPicture, target);
}

ComPtr<IMAPIProp> CWindowsMailAddressTable::CreateEntity()
{
    if (!m_pAddrBook)
        return nullptr;
    const ComPtr<IABContainer> container = OpenPersonalBook(*m_pAddrBook, m_pHelper->Proxy());
    if (!container)
        return nullptr;
    const ReadValues templates(*container.Get(), kTemplateTags, m_pHelper->Proxy(), 0);
    const SBinary* const user = templates.View().Binary(0);
    if (!user || !templates.View().Binary(1))
        return nullptr;
    return CreateEntry(*container.Get(), *user);
}

bool CWindowsMailAddressTable::DeleteEntities(ENTRYLIST& entries, IMAPIContainer*)
{
    if (!m_pAddrBook)
        return false;
    const ComPtr<IABContainer> container = OpenPersonalBook(*m_pAddrBook, m_pHelper->Proxy());
    return container && SUCCEEDED(container->DeleteEntries(&entries, 0));
}

// --- Results of the walkers ----------------------------------------------------------------------

BOOL CWindowsMailAddressTable::OnPropertyRow(ULONG cValues,
                                             LPSPropValue lpProps,
                                             int callType,
                                             BOOL* pContinue)
{
    const PropertyView row(cValues, lpProps);
    const SBinary* const entryID = row.Binary(0);
    if (m_pHelper && callType == kAfterAdd && !m_isOutlookExpress && entryID && row.Time(1))
        return TakeAddedEntry(*entryID);
    if (m_pHelper && callType == kCreateEntry && entryID)
        return TakeTemplate(*entryID);
    return CAddressTable::OnPropertyRow(cValues, lpProps, callType, pContinue);
}

ComPtr<IABContainer> CWindowsMailAddressTable::BookContainer() const
{
    return QueryStore<IABContainer>(m_pContainer.Get(), IID_IABContainer);
}

// An entry that does not open is added all the same, under an empty ID.
BOOL CWindowsMailAddressTable::TakeAddedEntry(const SBinary& addedID)
{
    std::wstring rowEntryID;
    std::wstring clientEntryID;
    DATE utcLastModified = 0.0;
    const ComPtr<IABContainer> container = BookContainer();
    const ComPtr<IMAPIProp> entry =
        container ? OpenEntry(*container.Get(), addedID, MAPI_BEST_ACCESS).object : nullptr;
    if (entry)
    {
        const ReadValues values(*entry.Get(), kEntryTags, m_pHelper->Proxy());
        if (const SBinary* const stored = values.View().Binary(0))
        {
            rowEntryID = CMAPIHelper::BinaryToHex(*stored);
            clientEntryID = ResolveClientID(rowEntryID, *stored, utcLastModified);
        }
        if (const FILETIME* const time = values.View().Time(1))
            utcLastModified = CMAPIHelper::FileTimeToDate(*time);
    }
    AppendAdded(rowEntryID, clientEntryID, utcLastModified);
    return TRUE;
}

BOOL CWindowsMailAddressTable::TakeTemplate(const SBinary& templateID)
{
    const ComPtr<IABContainer> container = BookContainer();
    m_pCurrentEntity = container ? CreateEntry(*container.Get(), templateID) : nullptr;
    return m_pCurrentEntity != nullptr;
}
