#include "automation/ObjectMap.h"

#include "automation/Appointment.h"

namespace
{
// The creator of a class that is registered but has no objects to give.
HRESULT CreateNothing(IUnknown*, REFIID, void** result) noexcept
{
    if (!result)
        return E_POINTER;
    *result = nullptr;
    return CLASS_E_CLASSNOTAVAILABLE;
}

void NothingToStart(bool) noexcept {}

constexpr ObjectMapEntry Row(const CLSID& clsid, WORD script, CreatorFunction* create)
{
    return {&clsid, script, create, &NothingToStart};
}

// clang-format off
constexpr ObjectMapEntry kObjectMap[] = {
    Row(CLSID_NAddressBook,                103, &CreateNothing),
    Row(CLSID_NAppointment,                107, &CNAppointment::CreateInstance),
    Row(CLSID_NCalendar,                   104, &CreateNothing),
    Row(CLSID_NContactCategory,            109, &CreateNothing),
    Row(CLSID_NContactGroup,               106, &CreateNothing),
    Row(CLSID_NContactItem,                105, &CreateNothing),
    Row(CLSID_NEnumerator,                 110, &CreateNothing),
    Row(CLSID_NObjectFactory64,            112, &CreateNothing),
    Row(CLSID_NPersonalInformationService, 102, &CreateNothing),
    Row(CLSID_NUserProperties,             108, &CreateNothing),
};
// clang-format on
} // namespace

std::span<const ObjectMapEntry> GetObjectMap() noexcept
{
    return kObjectMap;
}
