// Appointments as text for people. Times are shown in the machine's zone. Portable.
#pragma once

#include "client/core/Appointment.h"
#include "client/core/ItemTable.h"

#include <span>
#include <string>

namespace pim
{
// A table with one line per item, in the given order. Long cells are cut to a readable width, and
// further where a terminal is narrow.
std::wstring AppointmentTable(std::span<const Appointment> items,
                              const ILocalZone& zone,
                              const TableRoom& room);

// All that is known of one item, one line per field, the description at the end.
std::wstring AppointmentDetails(const Appointment& item, const ILocalZone& zone);
} // namespace pim
