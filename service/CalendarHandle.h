// Owner of a calendar table, between the automation collection and the table. IDs pass unchanged.
#pragma once

#include "service/Enumerator.h"

#include <memory>

class CCalendarHandle
{
  public:
    // items must not be null.
    explicit CCalendarHandle(std::unique_ptr<IEnumerator> items);

    // The table's operations, see IEnumerator.
    void Refresh();
    void ResetItem();
    void NextItem();
    void GetItemByID(const std::wstring& id);
    BOOL DeleteItem(const std::wstring& id);

    // Stores the current item under INAppointment, or null when there is none.
    void GetCurrentAppointment(INAppointment** item);
    // False when the item is no INEntityItem or the table could not write it.
    BOOL UpdateAppointment(INAppointment* item);
    // The new item's ID; empty on failure.
    std::wstring AddAppointment(INAppointment* item);

  private:
    std::unique_ptr<IEnumerator> m_pItems;
};
