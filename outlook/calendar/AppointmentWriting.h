// From an appointment object to the values that a message of a mail store receives.
#pragma once

#include "outlook/calendar/ZoneSource.h"
#include "outlook/store/PropertyArray.h"
#include "outlook/store/Proxcy.h"
#include "platform/WindowsHeaders.h"

#include "PimStoreBridge.h"

// The values in the order in which they are written, the same for a new message and an old one;
// none for an item that is no appointment. Properties whose name the folder's store does not know
// are left out, and no name is created. A property of the item that cannot be read leaves out its
// value or gives the default; none stops the others.
// Times of an all-day appointment are local in the machine's zone, whatever zone it names; its
// reminder's time is not converted.
// Kept as it is: a recurrence that cannot be written makes a single appointment, and the recurrence
// that an old message holds is not among the values and so stays. Pinned by AppointmentWritingTest.
// Throws std::bad_alloc.
PropertyArray ReadAppointment(INEntityItem& item,
                              IMAPIProp& folder,
                              CNProxcy& proxy,
                              const IZoneSource& zones);
