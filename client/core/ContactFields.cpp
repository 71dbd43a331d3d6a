#include "client/core/ContactFields.h"

#include "client/core/CommaList.h"
#include "client/core/LetterCase.h"

#include <algorithm>
#include <string_view>
#include <vector>

namespace pim
{
namespace
{
template <typename Entry>
const Entry* FindByName(std::span<const Entry> entries, std::wstring_view name)
{
    const auto found = std::find_if(entries.begin(), entries.end(), [&](const Entry& entry) {
        return IsSameIgnoringCase(entry.name, name);
    });
    return found != entries.end() ? &*found : nullptr;
}

template <typename Entry> std::wstring NamesOf(std::span<const Entry> entries)
{
    std::vector<std::wstring_view> names;
    for (const Entry& entry : entries)
        names.emplace_back(entry.name);
    return CommaList(names);
}
} // namespace

// clang-format off
const std::array<ContactText, kContactTextCount> kContactTexts = {{
    {L"First name",  L"first-name",  L"firstName",        &Contact::firstName},
    {L"Middle name", L"middle-name", L"middleName",       &Contact::middleName},
    {L"Last name",   L"last-name",   L"lastName",         &Contact::lastName},
    {L"Suffix",      L"suffix",      L"suffix",           &Contact::suffix},
    {L"Company",     L"company",     L"company",          &Contact::company},
    {L"Job title",   L"job-title",   L"jobTitle",         &Contact::jobTitle},
    {L"Chat",        L"im",          L"instantMessaging", &Contact::instantMessaging},
    {L"Website",     L"website",     L"website",          &Contact::website},
    {L"Notes",       L"notes",       L"notes",            &Contact::notes},
}};

const std::array<ContactDay, kContactDayCount> kContactDays = {{
    {L"Birthday",    L"birthday",    L"birthday",    &Contact::birthday},
    {L"Anniversary", L"anniversary", L"anniversary", &Contact::anniversary},
}};

const std::array<ContactList, kContactListCount> kContactLists = {{
    {L"E-mail",   L"email",    L"emails",     &Contact::emails},
    {L"Category", L"category", L"categories", &Contact::categories},
}};

const std::array<ContactType, kPhoneTypeCount> kPhoneTypes = {{
    {L"Company phone",   L"company"},
    {L"Mobile",          L"mobile"},
    {L"Work phone",      L"work"},
    {L"Work phone 2",    L"work2"},
    {L"Home phone",      L"home"},
    {L"Home phone 2",    L"home2"},
    {L"Work fax",        L"workFax"},
    {L"Home fax",        L"homeFax"},
    {L"Pager",           L"pager"},
    {L"Other phone",     L"other"},
    {L"Assistant",       L"assistant"},
    {L"Car phone",       L"car"},
    {L"Radio phone",     L"radio"},
}};

const std::array<ContactType, kAddressTypeCount> kAddressTypes = {{
    {L"Home",     L"home"},
    {L"Business", L"business"},
    {L"Other",    L"other"},
}};

const std::array<AddressPart, kAddressPartCount> kAddressParts = {{
    {L"street",        &PostalAddress::street},
    {L"postOfficeBox", &PostalAddress::postOfficeBox},
    {L"postalCode",    &PostalAddress::postalCode},
    {L"city",          &PostalAddress::city},
    {L"state",         &PostalAddress::state},
    {L"country",       &PostalAddress::country},
}};
// clang-format on

const ContactType* FindContactType(std::span<const ContactType> types, std::wstring_view name)
{
    return FindByName(types, name);
}

const AddressPart* FindAddressPart(std::wstring_view name)
{
    return FindByName(std::span<const AddressPart>(kAddressParts), name);
}

std::wstring ContactTypeNames(std::span<const ContactType> types)
{
    return NamesOf(types);
}

std::wstring AddressPartNames()
{
    return NamesOf(std::span<const AddressPart>(kAddressParts));
}
} // namespace pim
