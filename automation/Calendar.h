// The collection of appointments over the calendar table of the running provider, as INCalendar.
// HRESULTs as in CNAddressBook. The object keeps the table that it got at its creation.
#pragma once

#include "automation/base/ComObject.h"
#include "automation/base/DispatchImpl.h"
#include "service/CalendarHandle.h"

#include "PimStoreBridge.h"

#include <memory>

class CNCalendar : public IDispatchImpl<INCalendar>,
                   public CComObjectRootEx<CComSingleThreadModel>,
                   public CComCoClass<CNCalendar, &CLSID_NCalendar>
{
  public:
    static constexpr auto kInterfaceMap = InterfaceMap<CNCalendar, INCalendar>();

    // E_FAIL while no provider runs, and where it has no calendar.
    HRESULT FinalConstruct();

    STDMETHODIMP Refresh() override;
    STDMETHODIMP Reset(VARIANT_BOOL* pvbResult) override;
    STDMETHODIMP GetNextAppointment(INAppointment** ppAppointment) override;
    STDMETHODIMP GetAppointmentByID(BSTR bstrEntryID, INAppointment** ppAppointment) override;
    STDMETHODIMP AddAppointment(INAppointment* pAppointment, BSTR* pbstrEntryID) override;
    STDMETHODIMP UpdateAppointment(INAppointment* pAppointment, VARIANT_BOOL* pvbResult) override;
    STDMETHODIMP DeleteAppointment(BSTR bstrEntryID, VARIANT_BOOL* pvbResult) override;

  protected:
    ~CNCalendar() = default;

  private:
    std::unique_ptr<CCalendarHandle> m_pHandle;
};
