#include "service/CalendarHandle.h"

#include "service/ItemAccess.h"

#include <utility>

using Microsoft::WRL::ComPtr;

CCalendarHandle::CCalendarHandle(std::unique_ptr<IEnumerator> items) : m_pItems(std::move(items)) {}

void CCalendarHandle::Refresh()
{
    m_pItems->GetItemIDs();
}

void CCalendarHandle::ResetItem()
{
    m_pItems->ResetItem();
}

void CCalendarHandle::NextItem()
{
    m_pItems->GetNextItem();
}

void CCalendarHandle::GetItemByID(const std::wstring& id)
{
    m_pItems->GetItemByID(id);
}

BOOL CCalendarHandle::DeleteItem(const std::wstring& id)
{
    return m_pItems->DeleteItem(id);
}

void CCalendarHandle::GetCurrentAppointment(INAppointment** item)
{
    if (!item)
        return;
    *item = QueryItem<INAppointment>(CurrentItem(*m_pItems).Get()).Detach();
}

BOOL CCalendarHandle::UpdateAppointment(INAppointment* item)
{
    const ComPtr<INEntityItem> entity = QueryItem<INEntityItem>(item);
    return entity ? m_pItems->UpdateItem(entity.Get()) : FALSE;
}

std::wstring CCalendarHandle::AddAppointment(INAppointment* item)
{
    const ComPtr<INEntityItem> entity = QueryItem<INEntityItem>(item);
    if (!entity)
        return {};
    std::wstring droppedFolderID;
    return m_pItems->AddItem(entity.Get(), droppedFolderID);
}
