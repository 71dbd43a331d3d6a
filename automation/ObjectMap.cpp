#include "automation/ObjectMap.h"

#include "automation/AddressBook.h"
#include "automation/Appointment.h"
#include "automation/Calendar.h"
#include "automation/ContactCategory.h"
#include "automation/ContactGroup.h"
#include "automation/ContactItem.h"
#include "automation/Enumerator.h"
#include "automation/ObjectFactory.h"
#include "automation/PersonalInformationService.h"
#include "automation/UserProperties.h"

namespace
{
void NothingToStart(bool) noexcept {}

constexpr ObjectMapEntry Row(const CLSID& clsid, WORD script, CreatorFunction* create)
{
    return {&clsid, script, create, &NothingToStart};
}

// clang-format off
constexpr ObjectMapEntry kObjectMap[] = {
    Row(CLSID_NAddressBook,                103, &CNAddressBook::CreateInstance),
    Row(CLSID_NAppointment,                107, &CNAppointment::CreateInstance),
    Row(CLSID_NCalendar,                   104, &CNCalendar::CreateInstance),
    Row(CLSID_NContactCategory,            109, &CNContactCategory::CreateInstance),
    Row(CLSID_NContactGroup,               106, &CNContactGroup::CreateInstance),
    Row(CLSID_NContactItem,                105, &CNContactItem::CreateInstance),
    Row(CLSID_NEnumerator,                 110, &CNEnumerator::CreateInstance),
    Row(CLSID_NObjectFactory64,            112, &CNObjectFactory::CreateInstance),
    Row(CLSID_NPersonalInformationService, 102, &CNPersonalInformationService::CreateInstance),
    Row(CLSID_NUserProperties,             108, &CNUserProperties::CreateInstance),
};
// clang-format on
} // namespace

std::span<const ObjectMapEntry> GetObjectMap() noexcept
{
    return kObjectMap;
}
