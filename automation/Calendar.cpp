#include "automation/Calendar.h"

#include "automation/CollectionResults.h"
#include "service/ServiceManager.h"

HRESULT CNCalendar::FinalConstruct()
{
    const CallScope scope;
    m_pHandle = GetServiceManager()->GetCalendar();
    return m_pHandle ? S_OK : E_FAIL;
}

HRESULT CNCalendar::Refresh()
{
    return Guard(this, [&]() -> HRESULT {
        m_pHandle->Refresh();
        return S_OK;
    });
}

HRESULT CNCalendar::Reset(VARIANT_BOOL* pvbResult)
{
    return Guard(this, [&]() -> HRESULT {
        if (!pvbResult)
            return E_POINTER;
        m_pHandle->ResetItem();
        return AnswerTruth(TRUE, pvbResult);
    });
}

HRESULT CNCalendar::GetNextAppointment(INAppointment** ppAppointment)
{
    return Guard(this, [&]() -> HRESULT {
        if (!ppAppointment)
            return E_POINTER;
        m_pHandle->NextItem();
        m_pHandle->GetCurrentAppointment(ppAppointment);
        return AnswerItem(*ppAppointment);
    });
}

HRESULT CNCalendar::GetAppointmentByID(BSTR bstrEntryID, INAppointment** ppAppointment)
{
    return Guard(this, [&]() -> HRESULT {
        if (!bstrEntryID || !ppAppointment)
            return E_POINTER;
        m_pHandle->GetItemByID(TextOf(bstrEntryID));
        m_pHandle->GetCurrentAppointment(ppAppointment);
        return AnswerItem(*ppAppointment);
    });
}

HRESULT CNCalendar::AddAppointment(INAppointment* pAppointment, BSTR* pbstrEntryID)
{
    return Guard(this, [&]() -> HRESULT {
        if (!pAppointment || !pbstrEntryID)
            return E_POINTER;
        return AnswerID(m_pHandle->AddAppointment(pAppointment), pbstrEntryID);
    });
}

HRESULT CNCalendar::UpdateAppointment(INAppointment* pAppointment, VARIANT_BOOL* pvbResult)
{
    return Guard(this, [&]() -> HRESULT {
        if (!pAppointment || !pvbResult)
            return E_POINTER;
        return AnswerTruth(m_pHandle->UpdateAppointment(pAppointment), pvbResult);
    });
}

HRESULT CNCalendar::DeleteAppointment(BSTR bstrEntryID, VARIANT_BOOL* pvbResult)
{
    return Guard(this, [&]() -> HRESULT {
        if (!bstrEntryID || !pvbResult)
            return E_POINTER;
        return AnswerTruth(m_pHandle->DeleteItem(TextOf(bstrEntryID)), pvbResult);
    });
}
