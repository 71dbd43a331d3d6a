#include "automation/Appointment.h"

#include "automation/PropertyForms.h"

#include <new>

// The text form of the properties; see automation/PropertyForms.h.
HRESULT CNAppointment::GetText(Field field, BSTR* out) const
{
    if (!out)
        return E_POINTER;
    *out = nullptr;
    const CompactValue text = m_fields.Get(field);
    if (!text.IsAny())
        return S_OK;
    const BSTR copy = SysAllocStringLen(nullptr, static_cast<UINT>(text.TextLength()));
    if (!copy)
        throw std::bad_alloc();
    text.CopyText(copy);
    *out = copy;
    return S_OK;
}

HRESULT CNAppointment::PutText(Field field, BSTR value)
{
    if (!value)
        return E_POINTER;
    m_fields.Set(field, CompactValue::OfText(value));
    return S_OK;
}

STDMETHODIMP CNAppointment::get_Subject(BSTR* pVal)
{
    return Guard(this, [&] { return GetText(kSubject, pVal); });
}

STDMETHODIMP CNAppointment::put_Subject(BSTR newVal)
{
    return Guard(this, [&] { return PutText(kSubject, newVal); });
}

STDMETHODIMP CNAppointment::get_Place(BSTR* pVal)
{
    return Guard(this, [&] { return GetText(kPlace, pVal); });
}

STDMETHODIMP CNAppointment::put_Place(BSTR newVal)
{
    return Guard(this, [&] { return PutText(kPlace, newVal); });
}

STDMETHODIMP CNAppointment::get_TimeZone(BSTR* pVal)
{
    return Guard(this, [&] { return GetText(kTimeZone, pVal); });
}

STDMETHODIMP CNAppointment::put_TimeZone(BSTR newVal)
{
    return Guard(this, [&] { return PutText(kTimeZone, newVal); });
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
    return Guard(this, [&] { return GetText(kDescription, pVal); });
}

STDMETHODIMP CNAppointment::put_Description(BSTR newVal)
{
    return Guard(this, [&] { return PutText(kDescription, newVal); });
}

STDMETHODIMP CNAppointment::get_PersistID(BSTR* pVal)
{
    return Guard(this, [&] { return GetText(kPersistID, pVal); });
}

STDMETHODIMP CNAppointment::put_PersistID(BSTR newVal)
{
    return Guard(this, [&] { return PutText(kPersistID, newVal); });
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
    return Guard(this, [&] { return GetText(kEntityID, pVal); });
}

STDMETHODIMP CNAppointment::put_EntityID(BSTR newVal)
{
    return Guard(this, [&] { return PutText(kEntityID, newVal); });
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
    return Guard(this, [&] { return GetText(kFolderID, pVal); });
}

STDMETHODIMP CNAppointment::put_FolderID(BSTR newVal)
{
    return Guard(this, [&] {
        if (newVal)
            return PutText(kFolderID, newVal);
        m_fields.Set(kFolderID, CompactValue());
        return S_OK;
    });
}

STDMETHODIMP CNAppointment::get_RecurringInfo(_tagRecurringInfo* pVal)
{
    return Guard(this, [&] {
        if (!pVal)
            return E_POINTER;
        m_fields.Get(kRecurringInfo)
            .CopyRecord({reinterpret_cast<unsigned char*>(pVal), sizeof(*pVal)});
        return S_OK;
    });
}

STDMETHODIMP CNAppointment::put_RecurringInfo(_tagRecurringInfo* newVal)
{
    return Guard(this, [&] {
        if (!newVal)
            return E_POINTER;
        const auto* const bytes = reinterpret_cast<const unsigned char*>(newVal);
        m_fields.Set(kRecurringInfo, CompactValue::OfRecord({bytes, sizeof(*newVal)}));
        return S_OK;
    });
}
