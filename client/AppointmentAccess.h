// Moves values between the server's item objects and the client's plain ones.
#pragma once

#include "client/ReadFields.h"
#include "client/core/Appointment.h"
#include "platform/WindowsHeaders.h"

#include "PimStoreBridge.h"

namespace pim
{
// Reads what the item gives; a property that fails or is null is absent from the result.
// Throws: Failure, where the server went away.
Appointment ReadAppointment(INAppointment* item, ReadFields fields);

// Puts every field in which wanted differs from before.
// Throws: Failure, where a put fails or the server went away.
void PutChanges(INAppointment* item, const Appointment& before, const Appointment& wanted);
} // namespace pim
