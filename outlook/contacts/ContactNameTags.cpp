#include "outlook/contacts/ContactNameTags.h"

#include "outlook/store/NamedTags.h"

#include <algorithm>
#include <iterator>

// clang-format off
const LONG ContactNameTags::kNumbers[] = {
    0x8062, // PidLidInstantMessagingAddress
    0x8083, // PidLidEmail1EmailAddress
    0x8080, // PidLidEmail1DisplayName
    0x8084, // PidLidEmail1OriginalDisplayName
    0x8082, // PidLidEmail1AddressType
    0x8093, // PidLidEmail2EmailAddress
    0x8090, // PidLidEmail2DisplayName
    0x8094, // PidLidEmail2OriginalDisplayName
    0x8092, // PidLidEmail2AddressType
    0x80A3, // PidLidEmail3EmailAddress
    0x80A0, // PidLidEmail3DisplayName
    0x80A4, // PidLidEmail3OriginalDisplayName
    0x80A2, // PidLidEmail3AddressType
    0x80DE, // PidLidBirthdayLocal
    0x80DF, // PidLidWeddingAnniversaryLocal
    0x8005, // PidLidFileUnder
    0x8006, // PidLidFileUnderId
    0x8028, // PidLidAddressBookProviderEmailList
    0x8029, // PidLidAddressBookProviderArrayType
};
// clang-format on

ContactNameTags::ContactNameTags(IMAPIProp& container, CNProxcy& proxy)
{
    if (const auto found = TryFindNamedTags(container, proxy, kAddressNames, kNumbers))
        std::ranges::copy(*found, m_tags.begin());
}

ULONG ContactNameTags::Of(LONG number, ULONG type) const
{
    const auto place = std::ranges::find(kNumbers, number) - std::begin(kNumbers);
    const ULONG tag = static_cast<std::size_t>(place) < kCount ? m_tags[place] : 0;
    return IsNamedTag(tag) ? WithType(tag, type) : 0;
}
