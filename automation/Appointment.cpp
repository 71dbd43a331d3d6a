#include "automation/Appointment.h"

#include "automation/PropertyForms.h"

#include <algorithm>
#include <cstring>

namespace
{
bool IsZero(const _tagRecurringInfo& record) noexcept
{
    const auto* bytes = reinterpret_cast<const unsigned char*>(&record);
    return std::all_of(bytes, bytes + sizeof(record), [](unsigned char byte) { return byte == 0; });
}
} // namespace

STDMETHODIMP CNAppointment::get_Subject(BSTR* pVal)
{
    return Guard(this, [&] { return GetText(m_subject, pVal); });
}

STDMETHODIMP CNAppointment::put_Subject(BSTR newVal)
{
    return Guard(this, [&] { return PutText(m_subject, newVal); });
}

STDMETHODIMP CNAppointment::get_Place(BSTR* pVal)
{
    return Guard(this, [&] { return GetText(m_place, pVal); });
}

STDMETHODIMP CNAppointment::put_Place(BSTR newVal)
{
    return Guard(this, [&] { return PutText(m_place, newVal); });
}

STDMETHODIMP CNAppointment::get_TimeZone(BSTR* pVal)
{
    return Guard(this, [&] { return GetText(m_timeZone, pVal); });
}

STDMETHODIMP CNAppointment::put_TimeZone(BSTR newVal)
{
    return Guard(this, [&] { return PutText(m_timeZone, newVal); });
}

STDMETHODIMP CNAppointment::get_StartTime(DATE* pVal)
{
    return Guard(this, [&] { return GetValue(m_startTime, pVal); });
}

STDMETHODIMP CNAppointment::put_StartTime(DATE newVal)
{
    return Guard(this, [&] { return PutValue(m_startTime, newVal); });
}

STDMETHODIMP CNAppointment::get_EndTime(DATE* pVal)
{
    return Guard(this, [&] { return GetValue(m_endTime, pVal); });
}

STDMETHODIMP CNAppointment::put_EndTime(DATE newVal)
{
    return Guard(this, [&] { return PutValue(m_endTime, newVal); });
}

STDMETHODIMP CNAppointment::get_Reminder(ULONG* pVal)
{
    return Guard(this, [&] { return GetValue(m_reminder, pVal); });
}

STDMETHODIMP CNAppointment::put_Reminder(ULONG newVal)
{
    return Guard(this, [&] { return PutValue(m_reminder, newVal); });
}

STDMETHODIMP CNAppointment::get_Description(BSTR* pVal)
{
    return Guard(this, [&] { return GetText(m_description, pVal); });
}

STDMETHODIMP CNAppointment::put_Description(BSTR newVal)
{
    return Guard(this, [&] { return PutText(m_description, newVal); });
}

STDMETHODIMP CNAppointment::get_PersistID(BSTR* pVal)
{
    return Guard(this, [&] { return GetText(m_persistID, pVal); });
}

STDMETHODIMP CNAppointment::put_PersistID(BSTR newVal)
{
    return Guard(this, [&] { return PutText(m_persistID, newVal); });
}

STDMETHODIMP CNAppointment::get_AllDay(VARIANT_BOOL* pbVal)
{
    return Guard(this, [&] { return GetValue(m_allDay, pbVal); });
}

STDMETHODIMP CNAppointment::put_AllDay(VARIANT_BOOL newVal)
{
    return Guard(this, [&] { return PutValue(m_allDay, newVal); });
}

STDMETHODIMP CNAppointment::get_IsBusy(VARIANT_BOOL* pbVal)
{
    return Guard(this, [&] { return GetValue(m_isBusy, pbVal); });
}

STDMETHODIMP CNAppointment::put_IsBusy(VARIANT_BOOL newVal)
{
    return Guard(this, [&] { return PutValue(m_isBusy, newVal); });
}

STDMETHODIMP CNAppointment::get_EntityID(BSTR* pVal)
{
    return Guard(this, [&] { return GetText(m_entityID, pVal); });
}

STDMETHODIMP CNAppointment::put_EntityID(BSTR newVal)
{
    return Guard(this, [&] { return PutText(m_entityID, newVal); });
}

STDMETHODIMP CNAppointment::get_LastModificationTime(DATE* pVal)
{
    return Guard(this, [&] { return GetValue(m_lastModificationTime, pVal); });
}

STDMETHODIMP CNAppointment::put_LastModificationTime(DATE newVal)
{
    return Guard(this, [&] { return PutValue(m_lastModificationTime, newVal); });
}

STDMETHODIMP CNAppointment::get_FolderID(BSTR* pVal)
{
    return Guard(this, [&] { return GetText(m_folderID, pVal); });
}

STDMETHODIMP CNAppointment::put_FolderID(BSTR newVal)
{
    return Guard(this, [&] { return PutOrClearText(m_folderID, newVal); });
}

STDMETHODIMP CNAppointment::get_RecurringInfo(_tagRecurringInfo* pVal)
{
    return Guard(this, [&] {
        if (!pVal)
            return E_POINTER;
        if (m_recurringInfo)
            std::memcpy(pVal, m_recurringInfo.get(), sizeof(*pVal));
        else
            std::memset(pVal, 0, sizeof(*pVal));
        return S_OK;
    });
}

STDMETHODIMP CNAppointment::put_RecurringInfo(_tagRecurringInfo* newVal)
{
    return Guard(this, [&] {
        if (!newVal)
            return E_POINTER;
        if (IsZero(*newVal))
        {
            m_recurringInfo.reset();
            return S_OK;
        }
        if (!m_recurringInfo)
            m_recurringInfo = std::make_unique_for_overwrite<_tagRecurringInfo>();
        std::memcpy(m_recurringInfo.get(), newVal, sizeof(*newVal));
        return S_OK;
    });
}
