#include "automation/AddressBook.h"

#include "automation/CollectionResults.h"
#include "automation/RecordArray.h"
#include "service/ServiceManager.h"

#include <list>
#include <string>

HRESULT CNAddressBook::FinalConstruct()
{
    const CallScope scope;
    m_pHandle = GetServiceManager()->GetAddressBook();
    return m_pHandle ? S_OK : E_FAIL;
}

HRESULT CNAddressBook::Refresh()
{
    return Guard(this, [&]() -> HRESULT {
        m_pHandle->Refresh();
        return S_OK;
    });
}

HRESULT CNAddressBook::ResetItem(VARIANT_BOOL* pvbResult)
{
    return Guard(this, [&]() -> HRESULT {
        if (!pvbResult)
            return E_POINTER;
        m_pHandle->ResetItem();
        return AnswerTruth(TRUE, pvbResult);
    });
}

HRESULT CNAddressBook::GetNextItem(INContactItem** ppContact)
{
    return Guard(this, [&]() -> HRESULT {
        if (!ppContact)
            return E_POINTER;
        m_pHandle->NextItem();
        m_pHandle->GetCurrentContact(ppContact);
        return AnswerItem(*ppContact);
    });
}

HRESULT CNAddressBook::GetItemByID(BSTR bstrEntryID, INContactItem** ppContact)
{
    return Guard(this, [&]() -> HRESULT {
        if (!bstrEntryID || !ppContact)
            return E_POINTER;
        m_pHandle->GetItemByID(TextOf(bstrEntryID));
        m_pHandle->GetCurrentContact(ppContact);
        return AnswerItem(*ppContact);
    });
}

HRESULT CNAddressBook::UpdateItem(INContactItem* pContact, VARIANT_BOOL* pvbResult)
{
    return Guard(this, [&]() -> HRESULT {
        if (!pContact || !pvbResult)
            return E_POINTER;
        return AnswerTruth(m_pHandle->UpdateContact(pContact), pvbResult);
    });
}

HRESULT CNAddressBook::AddItem(INContactItem* pContact, BSTR* pbstrEntryID)
{
    return Guard(this, [&]() -> HRESULT {
        if (!pContact || !pbstrEntryID)
            return E_POINTER;
        std::wstring droppedFolderID;
        return AnswerID(m_pHandle->AddContact(pContact, droppedFolderID), pbstrEntryID);
    });
}

HRESULT CNAddressBook::DeleteItem(BSTR bstrEntryID, VARIANT_BOOL* pvbResult)
{
    return Guard(this, [&]() -> HRESULT {
        if (!bstrEntryID || !pvbResult)
            return E_POINTER;
        return AnswerTruth(m_pHandle->DeleteItem(TextOf(bstrEntryID)), pvbResult);
    });
}

HRESULT CNAddressBook::ResetGroup(VARIANT_BOOL* pvbResult)
{
    return Guard(this, [&]() -> HRESULT {
        if (!pvbResult)
            return E_POINTER;
        m_pHandle->ResetGroup();
        return AnswerTruth(m_pHandle->HasGroups(), pvbResult);
    });
}

HRESULT CNAddressBook::GetNextGroup(INContactGroup** ppGroup)
{
    return Guard(this, [&]() -> HRESULT {
        if (!ppGroup)
            return E_POINTER;
        m_pHandle->NextGroup();
        m_pHandle->GetCurrentGroup(ppGroup);
        return AnswerItem(*ppGroup);
    });
}

HRESULT CNAddressBook::GetGroupByID(BSTR bstrEntryID, INContactGroup** ppGroup)
{
    return Guard(this, [&]() -> HRESULT {
        if (!bstrEntryID || !ppGroup)
            return E_POINTER;
        m_pHandle->GetGroupByID(TextOf(bstrEntryID));
        m_pHandle->GetCurrentGroup(ppGroup);
        return AnswerItem(*ppGroup);
    });
}

HRESULT CNAddressBook::UpdateGroup(INContactGroup* pGroup, VARIANT_BOOL* pvbResult)
{
    return Guard(this, [&]() -> HRESULT {
        if (!pGroup || !pvbResult)
            return E_POINTER;
        return AnswerTruth(m_pHandle->UpdateGroup(pGroup), pvbResult);
    });
}

HRESULT CNAddressBook::AddGroup(INContactGroup* pGroup, BSTR* pbstrEntryID)
{
    return Guard(this, [&]() -> HRESULT {
        if (!pGroup || !pbstrEntryID)
            return E_POINTER;
        return AnswerID(m_pHandle->AddGroup(pGroup), pbstrEntryID);
    });
}

HRESULT CNAddressBook::DeleteGroup(BSTR bstrEntryID, VARIANT_BOOL* pvbResult)
{
    return Guard(this, [&]() -> HRESULT {
        if (!bstrEntryID || !pvbResult)
            return E_POINTER;
        return AnswerTruth(m_pHandle->DeleteGroup(TextOf(bstrEntryID)), pvbResult);
    });
}

HRESULT CNAddressBook::GetAllItemsWithBasicInfo(SAFEARRAY** pItems)
{
    return Guard(this, [&]() -> HRESULT {
        if (!pItems)
            return E_INVALIDARG;
        std::list<ItemEntry> entries;
        m_pHandle->GetItemList(entries);
        UniqueSafeArray array = MakeRecordArray<_tagBasicContactInfo>(
            kBasicContactInfoRecord,
            entries,
            [](_tagBasicContactInfo& record, const ItemEntry& entry) {
                record.bstrEntryID = NewText(entry.clientEntryID);
                record.bstrParentFolderEntryID = NewText(entry.folderKey);
                record.dbLastModify = entry.lastModified;
            });
        *pItems = array.Detach();
        return S_OK;
    });
}

HRESULT CNAddressBook::AddItemEx(INContactItem* pContact,
                                 BSTR* pbstrFolderEntryID,
                                 BSTR* pbstrEntryID)
{
    return Guard(this, [&]() -> HRESULT {
        if (!pContact || !pbstrEntryID)
            return E_POINTER;
        std::wstring folderID;
        const std::wstring id = m_pHandle->AddContact(pContact, folderID);
        Bstr folderText;
        if (!id.empty() && !folderID.empty() && pbstrFolderEntryID)
            folderText = Bstr::Adopt(NewText(folderID));
        const HRESULT result = AnswerID(id, pbstrEntryID);
        if (folderText)
            *pbstrFolderEntryID = folderText.Detach();
        return result;
    });
}
