#include "outlook/calendar/OutlookCalendarTable.h"

#include "outlook/calendar/AppointmentColumns.h"
#include "outlook/calendar/AppointmentNames.h"
#include "outlook/calendar/AppointmentReading.h"
#include "outlook/calendar/AppointmentWriting.h"
#include "outlook/calendar/RegistryZones.h"

using Microsoft::WRL::ComPtr;

namespace
{
const RegistryZones kSystemZones;
} // namespace

COutlookCalendarTable::COutlookCalendarTable(IMAPIContainer* container, CMAPIHelper* helper)
    : COutlookCalendarTable(container, helper, kSystemZones)
{
}

COutlookCalendarTable::COutlookCalendarTable(IMAPIContainer* container,
                                             CMAPIHelper* helper,
                                             const IZoneSource& zones)
    : CContentTable(container, helper), m_zones(zones), m_zoneTable(LoadZoneTable(zones))
{
}

bool COutlookCalendarTable::IsWantedRow(const PropertyView& row)
{
    return HasClass(row, kAppointmentClass);
}

std::vector<ULONG> COutlookCalendarTable::GetPropertyNames()
{
    if (!m_pHelper || !m_pContainer)
        return {};
    AppointmentTags found = FindAppointmentTags(*m_pContainer.Get(), m_pHelper->Proxy());
    m_hasZoneDefinition = m_hasZoneDefinition || found.hasZoneDefinition;
    return std::move(found.tags);
}

void COutlookCalendarTable::FillItem(INEntityItem& item, const PropertyView& values)
{
    const ComPtr<IMAPIProp> message = m_pCurrentEntity;
    FillAppointment(item,
                    values,
                    {message.Get(),
                     m_pHelper->Proxy(),
                     m_zones,
                     m_zoneTable,
                     m_hasZoneDefinition,
                     m_pRichEditHelper});
}

ComPtr<INEntityItem> COutlookCalendarTable::CreateItem()
{
    return NewItem(CLSID_NAppointment);
}

PropertyArray COutlookCalendarTable::ReadItem(INEntityItem& item, bool)
{
    if (!m_pHelper || !m_pContainer)
        return {};
    return ReadAppointment(item, *m_pContainer.Get(), m_pHelper->Proxy(), m_zones);
}
