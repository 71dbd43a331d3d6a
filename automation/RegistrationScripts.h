// The registration scripts among the executable's resources, and what stands in for their
// variables.
#pragma once

#include "platform/WindowsHeaders.h"

// Numbers of the REGISTRY resources, as resources/Contract.rc gives them.
namespace RegistrationScript
{
enum : WORD
{
    kApplication = 101,
    kPersonalInformationService = 102,
    kAddressBook = 103,
    kCalendar = 104,
    kContactItem = 105,
    kContactGroup = 106,
    kAppointment = 107,
    kUserProperties = 108,
    kContactCategory = 109,
    kEnumerator = 110,
    kObjectFactory64 = 112,
};
} // namespace RegistrationScript

// Those of the classes that the server serves, in the order in which they are applied.
inline constexpr WORD kClassScripts[] = {
    RegistrationScript::kAddressBook,
    RegistrationScript::kAppointment,
    RegistrationScript::kCalendar,
    RegistrationScript::kContactCategory,
    RegistrationScript::kContactGroup,
    RegistrationScript::kContactItem,
    RegistrationScript::kEnumerator,
    RegistrationScript::kObjectFactory64,
    RegistrationScript::kPersonalInformationService,
    RegistrationScript::kUserProperties,
};

// The text for APPID in every script.
inline constexpr wchar_t kApplicationId[] = L"{7D0DF4B7-8A10-4AA6-900B-9B106B7D0331}";
