// What reading and writing of appointments in a mail store both name. The common set of names is
// in outlook/store/NamedTags.h.
#pragma once

#include "platform/WindowsHeaders.h"

// {00062002-0000-0000-C000-000000000046}
inline constexpr GUID kAppointmentSet = {
    0x00062002, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};

inline constexpr ULONG kNoReminder = 0xFFFFFFFF; // what an appointment without one tells

inline constexpr wchar_t kAppointmentClass[] = L"IPM.Appointment";
