// The property sets of appointments in a mail store.
#pragma once

#include "platform/WindowsHeaders.h"

// {00062002-0000-0000-C000-000000000046}
inline constexpr GUID kAppointmentSet = {
    0x00062002, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};
// {00062008-0000-0000-C000-000000000046}
inline constexpr GUID kCommonSet = {
    0x00062008, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};

inline constexpr wchar_t kAppointmentClass[] = L"IPM.Appointment";
