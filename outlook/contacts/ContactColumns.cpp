#include "outlook/contacts/ContactColumns.h"

#include "outlook/store/NamedTags.h"
#include "outlook/store/StoreObjects.h"

#include <algorithm>
#include <iterator>

namespace
{
enum class Source
{
    Tag,       // fixed
    Name,      // a number of the address names
    Work,      // likewise, with a fixed tag in reserve
    Keywords,  // by its own name
    LocalDate, // a number; both of them or neither
};

struct Column
{
    Source source;
    ULONG tag = 0;
    LONG name = 0;
};

constexpr Column Tag(ULONG tag)
{
    return {Source::Tag, tag};
}
constexpr Column Name(LONG name)
{
    return {Source::Name, 0, name};
}
constexpr Column Work(LONG name, ULONG reserve)
{
    return {Source::Work, reserve, name};
}
constexpr Column LocalDate(LONG name)
{
    return {Source::LocalDate, 0, name};
}

// clang-format off
constexpr Column kColumns[] = {
    Tag(0x30080040),          //  0 PR_LAST_MODIFICATION_TIME
    Tag(0x3A06001F),          //  1 PR_GIVEN_NAME
    Tag(0x3A11001F),          //  2 PR_SURNAME
    Tag(0x3A44001F),          //  3 PR_MIDDLE_NAME
    Tag(0x3A17001F),          //  4 PR_TITLE
    Tag(0x3A16001F),          //  5 PR_COMPANY_NAME
    Name(0x8062),             //  6 PidLidInstantMessagingAddress
    Tag(0x3A57001F),          //  7 PR_COMPANY_MAIN_PHONE_NUMBER
    Tag(0x3A1C001F),          //  8 PR_MOBILE_TELEPHONE_NUMBER
    Tag(0x3A08001F),          //  9 PR_BUSINESS_TELEPHONE_NUMBER
    Tag(0x3A1B001F),          // 10 PR_BUSINESS2_TELEPHONE_NUMBER
    Tag(0x3A09001F),          // 11 PR_HOME_TELEPHONE_NUMBER
    Tag(0x3A2F001F),          // 12 PR_HOME2_TELEPHONE_NUMBER
    Tag(0x3A24001F),          // 13 PR_BUSINESS_FAX_NUMBER
    Tag(0x3A25001F),          // 14 PR_HOME_FAX_NUMBER
    Tag(0x3A21001F),          // 15 PR_PAGER_TELEPHONE_NUMBER
    Tag(0x3A1F001F),          // 16 PR_OTHER_TELEPHONE_NUMBER
    Tag(0x3A2E001F),          // 17 PR_ASSISTANT_TELEPHONE_NUMBER
    Tag(0x3A1E001F),          // 18 PR_CAR_TELEPHONE_NUMBER
    Tag(0x3A1D001F),          // 19 PR_RADIO_TELEPHONE_NUMBER
    Name(0x8080),             // 20 PidLidEmail1DisplayName
    Name(0x8082),             // 21 PidLidEmail1AddressType
    Name(0x8083),             // 22 PidLidEmail1EmailAddress
    Name(0x8084),             // 23 PidLidEmail1OriginalDisplayName
    Name(0x8090),             // 24 PidLidEmail2DisplayName
    Name(0x8092),             // 25 PidLidEmail2AddressType
    Name(0x8093),             // 26 PidLidEmail2EmailAddress
    Name(0x8094),             // 27 PidLidEmail2OriginalDisplayName
    Name(0x80A0),             // 28 PidLidEmail3DisplayName
    Name(0x80A2),             // 29 PidLidEmail3AddressType
    Name(0x80A3),             // 30 PidLidEmail3EmailAddress
    Name(0x80A4),             // 31 PidLidEmail3OriginalDisplayName
    Tag(0x3A51001F),          // 32 PR_BUSINESS_HOME_PAGE
    Tag(0x3A5A001F),          // 33 PR_HOME_ADDRESS_COUNTRY
    Tag(0x3A5C001F),          // 34 PR_HOME_ADDRESS_STATE_OR_PROVINCE
    Tag(0x3A59001F),          // 35 PR_HOME_ADDRESS_CITY
    Tag(0x3A5D001F),          // 36 PR_HOME_ADDRESS_STREET
    Tag(0x3A5B001F),          // 37 PR_HOME_ADDRESS_POSTAL_CODE
    Tag(0x3A5E001F),          // 38 PR_HOME_ADDRESS_POST_OFFICE_BOX
    Work(0x8049, 0x3A26001F), // 39 PidLidWorkAddressCountry, PR_COUNTRY
    Work(0x8047, 0x3A28001F), // 40 PidLidWorkAddressState, PR_STATE_OR_PROVINCE
    Work(0x8046, 0x3A27001F), // 41 PidLidWorkAddressCity, PR_LOCALITY
    Work(0x8045, 0x3A29001F), // 42 PidLidWorkAddressStreet, PR_STREET_ADDRESS
    Work(0x8048, 0x3A2A001F), // 43 PidLidWorkAddressPostalCode, PR_POSTAL_CODE
    Work(0x804A, 0x3A2B001F), // 44 PidLidWorkAddressPostOfficeBox, PR_POST_OFFICE_BOX
    Tag(0x3A60001F),          // 45 PR_OTHER_ADDRESS_COUNTRY
    Tag(0x3A62001F),          // 46 PR_OTHER_ADDRESS_STATE_OR_PROVINCE
    Tag(0x3A5F001F),          // 47 PR_OTHER_ADDRESS_CITY
    Tag(0x3A63001F),          // 48 PR_OTHER_ADDRESS_STREET
    Tag(0x3A61001F),          // 49 PR_OTHER_ADDRESS_POSTAL_CODE
    Tag(0x3A64001F),          // 50 PR_OTHER_ADDRESS_POST_OFFICE_BOX
    Tag(0x3A420040),          // 51 PR_BIRTHDAY
    Tag(0x3A410040),          // 52 PR_WEDDING_ANNIVERSARY
    Tag(0x3A05001F),          // 53 PR_GENERATION
    Tag(0x3A1E001F),          // 54 again the one of 18
    Tag(0x3A1D001F),          // 55 again the one of 19
    Tag(0x10090102),          // 56 PR_RTF_COMPRESSED
    {Source::Keywords},       // 57
    Tag(0x3001001F),          // 58 PR_DISPLAY_NAME
    LocalDate(0x80DE),        // 59 PidLidBirthdayLocal
    LocalDate(0x80DF),        // 60 PidLidWeddingAnniversaryLocal
};
// clang-format on
static_assert(std::size(kColumns) == ContactColumn::kLocalAnniversary + 1);

// Asked for with the names of the business address; its answer is not used.
constexpr LONG kUnusedWorkName = 0x801B;

std::vector<LONG> NamesFrom(std::initializer_list<Source> sources)
{
    std::vector<LONG> names;
    for (const Column& column : kColumns)
        if (std::find(sources.begin(), sources.end(), column.source) != sources.end())
            names.push_back(column.name);
    return names;
}
} // namespace

ULONG FixedContactTag(ULONG position)
{
    return kColumns[position].tag;
}

std::optional<AddressTags> FindBusinessAddressTags(IUnknown* message, CNProxcy& proxy)
{
    AddressTags tags;
    for (ULONG i = 0; i < tags.size(); ++i)
        tags[i] = FixedContactTag(ContactColumn::kBusinessAddress + i);
    const auto properties = QueryStore<IMAPIProp>(message, IID_IMAPIProp);
    if (!properties)
        return tags;

    std::vector<LONG> names = NamesFrom({Source::Work});
    names.push_back(kUnusedWorkName);
    const auto found = TryFindNamedTags(*properties.Get(), proxy, kAddressNames, names);
    if (!found)
        return std::nullopt;
    for (ULONG i = 0; i < tags.size(); ++i)
        if (PROP_ID((*found)[i]) != 0)
            tags[i] = WithType((*found)[i], PT_UNICODE);
    return tags;
}

ULONG FindKeywordsTag(IMAPIProp& object, CNProxcy& proxy)
{
    const ULONG tag = FindNamedTag(object, proxy, kPublicNames, kKeywordsName);
    return IsNamedTag(tag) ? WithType(tag, PT_MV_UNICODE) : tag;
}

ContactColumnTags FindContactColumns(IMAPIProp& container, IMAPIProp* message, CNProxcy& proxy)
{
    const std::vector<LONG> names = NamesFrom({Source::Name, Source::LocalDate});
    std::vector<ULONG> named(names.size());
    if (const auto found = TryFindNamedTags(container, proxy, kAddressNames, names))
        named = *found;
    // A lookup that fails leaves its columns without a tag.
    const AddressTags work = FindBusinessAddressTags(message, proxy).value_or(AddressTags{});
    const ULONG keywords = FindKeywordsTag(container, proxy);

    // Whether the store knows contacts' own names at all is told by the first of them.
    const std::size_t dates = named.size() - 2;
    const bool hasLocalDates = PROP_TYPE(named.front()) != PT_ERROR && PROP_ID(named[dates]) != 0 &&
                               PROP_ID(named[dates + 1]) != 0;
    auto nextName = named.begin();
    auto nextWork = work.begin();
    const auto tagOf = [&](const Column& column) {
        switch (column.source)
        {
        case Source::Name:
        case Source::LocalDate:
            return *nextName++;
        case Source::Work:
            return *nextWork++;
        case Source::Keywords:
            return keywords;
        case Source::Tag:
            break;
        }
        return column.tag;
    };
    ContactColumnTags columns = {{}, hasLocalDates};
    for (const Column& column : kColumns)
        if (column.source != Source::LocalDate || hasLocalDates)
            columns.tags.push_back(tagOf(column));
    return columns;
}
