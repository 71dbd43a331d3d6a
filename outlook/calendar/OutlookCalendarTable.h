// The appointments of Outlook's calendar folder.
#pragma once

#include "outlook/calendar/ZoneSource.h"
#include "outlook/calendar/ZoneTable.h"
#include "outlook/store/ContentTable.h"
#include "outlook/store/RichEditHelper.h"

#include <memory>

class COutlookCalendarTable : public CContentTable
{
  public:
    // Reads the system's zones once, for the life of the table: a change is seen by new tables.
    COutlookCalendarTable(IMAPIContainer* container, CMAPIHelper* helper);
    // The same with other zones; the source must outlive the table.
    COutlookCalendarTable(IMAPIContainer* container, CMAPIHelper* helper, const IZoneSource& zones);

  protected:
    // Messages of the class of appointments alone, not of one that begins like it.
    bool IsWantedRow(const PropertyView& row) override;
    std::vector<ULONG> GetPropertyNames() override;
    void FillItem(INEntityItem& item, const PropertyView& values) override;
    // A new appointment.
    Microsoft::WRL::ComPtr<INEntityItem> CreateItem() override;
    PropertyArray ReadItem(INEntityItem& item, bool isNew) override;

  private:
    // Both zone definitions were known to the store once. Kept as it is: never cleared again.
    // Pinned by AppointmentReadingTest.
    bool m_hasZoneDefinition = false;
    std::unique_ptr<CRichEditHelper> m_pRichEditHelper; // made for the first RTF body
    const IZoneSource& m_zones;
    ZoneTable m_zoneTable;
};
