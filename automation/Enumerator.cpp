#include "automation/Enumerator.h"

#include "automation/CollectionResults.h"
#include "service/ServiceManager.h"

#include <string>

HRESULT CNEnumerator::FinalConstruct()
{
    const CallScope scope;
    m_pTable = GetServiceManager()->GetEnumerator(Default);
    if (!m_pTable)
        return E_FAIL;
    m_pTable->GetItemIDs();
    m_pTable->ResetItem();
    return S_OK;
}

HRESULT CNEnumerator::Refresh()
{
    return Guard(this, [&]() -> HRESULT {
        m_pTable->GetItemIDs();
        return S_OK;
    });
}

HRESULT CNEnumerator::ResetItem(VARIANT_BOOL* pvbResult)
{
    return Guard(this, [&]() -> HRESULT {
        if (!pvbResult)
            return E_POINTER;
        m_pTable->ResetItem();
        return AnswerTruth(TRUE, pvbResult);
    });
}

HRESULT CNEnumerator::GetNextItem(INEntityItem** ppItem)
{
    return Guard(this, [&]() -> HRESULT {
        if (!ppItem)
            return E_POINTER;
        *ppItem = nullptr;
        m_pTable->GetNextItem();
        m_pTable->GetCurrentItem(ppItem);
        return AnswerItem(*ppItem);
    });
}

HRESULT CNEnumerator::GetItemByID(BSTR bstrEntryID, INEntityItem** ppItem)
{
    return Guard(this, [&]() -> HRESULT {
        if (!bstrEntryID || !ppItem)
            return E_POINTER;
        *ppItem = nullptr;
        m_pTable->GetItemByID(TextOf(bstrEntryID));
        m_pTable->GetCurrentItem(ppItem);
        return AnswerItem(*ppItem);
    });
}

HRESULT CNEnumerator::UpdateItem(INEntityItem* pItem, VARIANT_BOOL* pvbResult)
{
    return Guard(this, [&]() -> HRESULT {
        if (!pItem || !pvbResult)
            return E_POINTER;
        return AnswerTruth(m_pTable->UpdateItem(pItem), pvbResult);
    });
}

HRESULT CNEnumerator::AddItem(INEntityItem* pItem, BSTR* pbstrEntryID)
{
    return Guard(this, [&]() -> HRESULT {
        if (!pItem || !pbstrEntryID)
            return E_POINTER;
        std::wstring droppedFolderID;
        return AnswerID(m_pTable->AddItem(pItem, droppedFolderID), pbstrEntryID);
    });
}

HRESULT CNEnumerator::DeleteItem(BSTR bstrEntryID, VARIANT_BOOL* pvbResult)
{
    return Guard(this, [&]() -> HRESULT {
        if (!bstrEntryID || !pvbResult)
            return E_POINTER;
        return AnswerTruth(m_pTable->DeleteItem(TextOf(bstrEntryID)), pvbResult);
    });
}
