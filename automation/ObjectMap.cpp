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
#include "automation/RegistrationScripts.h"
#include "automation/UserProperties.h"

namespace
{
using namespace RegistrationScript;

void NothingToStart(bool) noexcept {}

constexpr ObjectMapEntry Row(const CLSID& clsid, WORD script, CreatorFunction* create)
{
    return {&clsid, script, create, &NothingToStart};
}

// clang-format off
constexpr ObjectMapEntry kObjectMap[] = {
    Row(CLSID_NAddressBook,                kAddressBook, &CNAddressBook::CreateInstance),
    Row(CLSID_NAppointment,                kAppointment, &CNAppointment::CreateInstance),
    Row(CLSID_NCalendar,                   kCalendar, &CNCalendar::CreateInstance),
    Row(CLSID_NContactCategory,            kContactCategory, &CNContactCategory::CreateInstance),
    Row(CLSID_NContactGroup,               kContactGroup, &CNContactGroup::CreateInstance),
    Row(CLSID_NContactItem,                kContactItem, &CNContactItem::CreateInstance),
    Row(CLSID_NEnumerator,                 kEnumerator, &CNEnumerator::CreateInstance),
    Row(CLSID_NObjectFactory64,            kObjectFactory64, &CNObjectFactory::CreateInstance),
    Row(CLSID_NPersonalInformationService, kPersonalInformationService, &CNPersonalInformationService::CreateInstance),
    Row(CLSID_NUserProperties,             kUserProperties, &CNUserProperties::CreateInstance),
};
// clang-format on
} // namespace

std::span<const ObjectMapEntry> GetObjectMap() noexcept
{
    return kObjectMap;
}
