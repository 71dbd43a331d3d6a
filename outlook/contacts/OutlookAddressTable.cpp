#include "outlook/contacts/OutlookAddressTable.h"

#include "outlook/contacts/ContactClearing.h"
#include "outlook/contacts/ContactColumns.h"
#include "outlook/contacts/ContactPicture.h"
#include "outlook/contacts/ContactValues.h"
#include "outlook/contacts/ContactWriting.h"
#include "outlook/contacts/NameSettings.h"
#include "outlook/store/MessageBody.h"
#include "outlook/store/ReadValues.h"
#include "outlook/store/StoreObjects.h"
#include "platform/Bstr.h"
#include "service/ItemAccess.h"
#include "service/Log.h"

#include <algorithm>
#include <string_view>
#include <utility>

using Microsoft::WRL::ComPtr;

namespace
{
constexpr ULONG kAttachmentColumns[] = {
    PR_ATTACH_NUM,
    0x3704001F, // PR_ATTACH_FILENAME
    0x3703001F, // PR_ATTACH_EXTENSION
    0x7FFF000B, // PR_ATTACHMENT_CONTACTPHOTO
};
constexpr ULONG kIdentityTags[] = {PR_ENTRYID, PR_MESSAGE_CLASS_W};

// Kept as it is: other classes that derive from a contact's are no contacts here. Pinned by
// OutlookAddressTableTest.
constexpr std::wstring_view kContactClasses[] = {L"IPM.Contact", L"IPM.Contact.SBE"};

// Whether an attachment is a contact's picture, with all that is to be known of it.
bool IsPicture(const PropertyView& attachment)
{
    return attachment.Long(0) && attachment.Text(1) && attachment.Text(2) &&
           attachment.Bool(3).value_or(0);
}
} // namespace

COutlookAddressTable::COutlookAddressTable(IMAPIContainer* container,
                                           CMAPIHelper* helper,
                                           std::vector<OutlookFolderInfo> folders)
    : CAddressTable(container, helper), m_vctContactsFolders(std::move(folders))
{
}

void COutlookAddressTable::Detach() noexcept
{
    // The base's releases may end this table: its folders are out of it by then.
    const std::vector<OutlookFolderInfo> folders = std::exchange(m_vctContactsFolders, {});
    CAddressTable::Detach();
}

// --- Loading -----------------------------------------------------------------------------------

void COutlookAddressTable::GetItemIDs()
{
    const Use use(*this);
    if (use.IsNested() || !m_pHelper)
        return;
    LogPrintf(L"=====COutlookAddressTable::GetItemIDs");
    if (m_vctContactsFolders.empty())
    {
        LogPrintf(L"=====m_vctContactsFolders.empty()");
        if (m_pContainer)
            LoadFolder(*m_pContainer.Get(), {});
        return;
    }
    for (const OutlookFolderInfo& record : m_vctContactsFolders)
    {
        LogPrintf(
            L"=====Folder Mode:%s, %s", record.displayName.c_str(), record.entryIDHex.c_str());
        if (record.folder)
            LoadFolder(*record.folder.Get(), record.entryIDHex);
    }
}

bool COutlookAddressTable::IsWantedRow(const PropertyView& row)
{
    return std::ranges::any_of(kContactClasses,
                               [&row](std::wstring_view wanted) { return HasClass(row, wanted); });
}

std::wstring COutlookAddressTable::ResolveClientID(const std::wstring&,
                                                   const SBinary& entryID,
                                                   DATE& utcLastModified)
{
    utcLastModified = 0.0;
    if (!m_pContainer)
        return {};
    const OpenedEntry entry = OpenEntry(*m_pContainer.Get(), entryID, kOpenToRead);
    if (!entry.object)
        return {};
    const ReadValues values(*entry.object.Get(), kEntryTags, m_pHelper->Proxy());
    if (const FILETIME* const time = values.View().Time(1))
        utcLastModified = CMAPIHelper::FileTimeToDate(*time);
    const SBinary* const stored = values.View().Binary(0);
    return stored ? CMAPIHelper::BinaryToHex(*stored) : std::wstring();
}

ComPtr<IMAPIContainer> COutlookAddressTable::GetContainerForID(const std::wstring& id)
{
    const std::wstring& folderKey = m_entries.FolderKeyOf(id);
    if (!folderKey.empty())
        for (const OutlookFolderInfo& record : m_vctContactsFolders)
            if (record.entryIDHex == folderKey && record.folder)
                return record.folder;
    return m_pContainer;
}

// --- Reading -----------------------------------------------------------------------------------

std::vector<ULONG> COutlookAddressTable::GetPropertyNames()
{
    ContactColumnTags columns =
        FindContactColumns(*m_pContainer.Get(), m_pCurrentEntity.Get(), m_pHelper->Proxy());
    m_hasLocalDates = columns.hasLocalDates;
    return std::move(columns.tags);
}

void COutlookAddressTable::FillItem(INEntityItem& item, const PropertyView& values)
{
    const ComPtr<INContactItem> contact = QueryItem<INContactItem>(&item);
    if (!contact || !m_pCurrentEntity || values.Count() == 0)
        return;
    PutContactValues(item, *contact.Get(), values, m_hasLocalDates, ZoneBiasDays());
    ReadPicture();
    ReadEntryID(*contact.Get());
    const bool hasRtf = values.Find(ContactColumn::kRtf) != nullptr;
    const std::wstring notes =
        ReadMessageBody(m_pCurrentEntity.Get(), hasRtf, m_pHelper->Proxy(), m_pRichEdit);
    if (!notes.empty())
        contact->put_Notes(Bstr(notes).Get());
    PutContactCategories(*contact.Get(), values);
}

ComPtr<IMessage> COutlookAddressTable::CurrentMessage() const
{
    return QueryStore<IMessage>(m_pCurrentEntity.Get(), IID_IMessage);
}

void COutlookAddressTable::ReadPicture()
{
    const ComPtr<IMessage> message = CurrentMessage();
    ComPtr<IMAPITable> attachments;
    if (message &&
        SUCCEEDED(message->GetAttachmentTable(MAPI_DEFERRED_ERRORS, attachments.GetAddressOf())))
        m_pHelper->EnumerateRows(attachments.Get(), kAttachmentColumns, kReadPicture, this, 0);
}

void COutlookAddressTable::ReadEntryID(INContactItem& contact)
{
    // Without an ID of its own the message keeps the one by which it was opened.
    std::wstring folderKey;
    const ReadValues values(*m_pCurrentEntity.Get(), kIdentityTags, m_pHelper->Proxy());
    const SBinary* const entryID = values.View().Binary(0);
    if (entryID && values.View().Find(1))
    {
        const std::wstring id = CMAPIHelper::BinaryToHex(*entryID);
        contact.put_PersistentID(Bstr(id).Get());
        const EntryList::Position entry = m_entries.FindByClientEntryID(id);
        if (entry != m_entries.End())
            folderKey = entry->FolderKey();
    }
    contact.put_ParentFolderID(Bstr(folderKey).Get());
}

// --- Writing -----------------------------------------------------------------------------------

bool COutlookAddressTable::PrepareEntity()
{
    if (!m_pCurrentEntity)
        return false;
    ClearContact(*m_pCurrentEntity.Get(), m_pHelper->Proxy());
    return true;
}

PropertyArray COutlookAddressTable::ReadItem(INEntityItem& item, bool isNew)
{
    const ComPtr<INContactItem> contact = QueryItem<INContactItem>(&item);
    if (!contact || !m_pContainer)
        return {};
    PropertyArray values =
        ContactProperties(*contact.Get(),
                          isNew,
                          {ReadNameSettings(), ZoneBiasDays()},
                          {*m_pContainer.Get(), m_pCurrentEntity.Get(), m_pHelper->Proxy()});
    LogPrintf(L"========COutlookAddressTable::ReadItem return PropertyValues [%d]\r\n",
              static_cast<int>(values.Count()));
    return values;
}

// --- Pictures ----------------------------------------------------------------------------------

BOOL COutlookAddressTable::OnPropertyRow(ULONG cValues,
                                         LPSPropValue lpProps,
                                         int callType,
                                         BOOL* pContinue)
{
    const PropertyView row(cValues, lpProps);
    switch (callType)
    {
    case kReadPicture:
        return TakePicture(row, pContinue);
    case kWritePicture:
        return GivePicture(row, pContinue);
    default:
        return CAddressTable::OnPropertyRow(cValues, lpProps, callType, pContinue);
    }
}

BOOL COutlookAddressTable::TakePicture(const PropertyView& row, BOOL* goesOn)
{
    const ComPtr<IMessage> message = IsPicture(row) ? CurrentMessage() : nullptr;
    if (!message)
        return FALSE;
    *goesOn = FALSE;
    const std::wstring path =
        SavePictureFile(*message.Get(), static_cast<ULONG>(*row.Long(0)), row.Text(1), row.Text(2));
    const ComPtr<INContactItem> contact = QueryItem<INContactItem>(m_pCurrentItem.Get());
    if (!path.empty() && contact)
        contact->put_Picture(Bstr(path).Get());
    return TRUE;
}

BOOL COutlookAddressTable::GivePicture(const PropertyView& row, BOOL* goesOn)
{
    const ComPtr<IMessage> message = IsPicture(row) ? CurrentMessage() : nullptr;
    if (!message)
        return FALSE;
    *goesOn = FALSE;
    ULONG number = 0;
    ComPtr<IAttach> attachment;
    if (FAILED(message->CreateAttach(nullptr, 0, &number, attachment.GetAddressOf())))
        return FALSE;
    const ComPtr<INContactItem> contact = QueryItem<INContactItem>(m_pCurrentItem.Get());
    Bstr path;
    if (contact && SUCCEEDED(contact->get_Picture(path.Put())))
        CreatePicture(TextOf(path.Get()), attachment.Get());
    return TRUE;
}
