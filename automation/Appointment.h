// The one value object for a calendar item of every provider. Holds fields and nothing else; no
// property judges its value. Reminder is in minutes before the start, 0xFFFFFFFF for none.
#pragma once

#include "automation/base/ComObject.h"
#include "automation/base/DispatchImpl.h"
#include "platform/CompactFields.h"
#include "platform/ContractRecords.h"

#include <cstddef>

class CNAppointment : public IDispatchImpl<INAppointment>,
                      public IDispatchImpl<INEntityItem>,
                      public CComObjectRootEx<CComSingleThreadModel>,
                      public CComCoClass<CNAppointment, &CLSID_NAppointment>
{
  public:
    static constexpr auto kInterfaceMap =
        InterfaceMap<CNAppointment, INAppointment, INEntityItem>();

    // INAppointment
    STDMETHODIMP get_Subject(BSTR* pVal) override;
    STDMETHODIMP put_Subject(BSTR newVal) override;
    STDMETHODIMP get_Place(BSTR* pVal) override;
    STDMETHODIMP put_Place(BSTR newVal) override;
    STDMETHODIMP get_TimeZone(BSTR* pVal) override;
    STDMETHODIMP put_TimeZone(BSTR newVal) override;
    STDMETHODIMP get_StartTime(DATE* pVal) override;
    STDMETHODIMP put_StartTime(DATE newVal) override;
    STDMETHODIMP get_EndTime(DATE* pVal) override;
    STDMETHODIMP put_EndTime(DATE newVal) override;
    STDMETHODIMP get_Reminder(ULONG* pVal) override;
    STDMETHODIMP put_Reminder(ULONG newVal) override;
    STDMETHODIMP get_Description(BSTR* pVal) override;
    STDMETHODIMP put_Description(BSTR newVal) override;
    STDMETHODIMP get_PersistID(BSTR* pVal) override;
    STDMETHODIMP put_PersistID(BSTR newVal) override;
    STDMETHODIMP get_AllDay(VARIANT_BOOL* pbVal) override;
    STDMETHODIMP put_AllDay(VARIANT_BOOL newVal) override;
    STDMETHODIMP get_IsBusy(VARIANT_BOOL* pbVal) override;
    STDMETHODIMP put_IsBusy(VARIANT_BOOL newVal) override;
    STDMETHODIMP get_RecurringInfo(_tagRecurringInfo* pVal) override;
    STDMETHODIMP put_RecurringInfo(_tagRecurringInfo* newVal) override;

    // INEntityItem
    STDMETHODIMP get_EntityID(BSTR* pVal) override;
    STDMETHODIMP put_EntityID(BSTR newVal) override;
    STDMETHODIMP get_LastModificationTime(DATE* pVal) override;
    STDMETHODIMP put_LastModificationTime(DATE newVal) override;
    STDMETHODIMP get_FolderID(BSTR* pVal) override;
    STDMETHODIMP put_FolderID(BSTR newVal) override;

  protected:
    ~CNAppointment() = default;

  private:
    enum Field : std::size_t
    {
        kEntityID,
        kSubject,
        kPlace,
        kTimeZone,
        kDescription,
        kFolderID,
        kPersistID,
        kRecurringInfo,
        kFieldCount
    };

    HRESULT GetText(Field field, BSTR* out) const;
    HRESULT PutText(Field field, BSTR value);

    // In little room, since a table of files keeps an object for every item. The record is large,
    // and nearly all of it is zero in most appointments.
    CompactFields<kFieldCount> m_fields;
    DATE m_lastModificationTime = 0.0;
    DATE m_startTime = 0.0;
    DATE m_endTime = 0.0;
    ULONG m_reminder = 0;
    VARIANT_BOOL m_allDay = 0;
    VARIANT_BOOL m_isBusy = 0;
};
