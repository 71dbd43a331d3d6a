#include "outlook/contacts/ContactClearing.h"

#include "outlook/store/MapiMemory.h"
#include "outlook/store/NamedTags.h"
#include "outlook/store/PropertyArray.h"
#include "outlook/store/PropertyView.h"
#include "outlook/store/StoreObjects.h"
#include "outlook/store/TagArray.h"

#include <span>
#include <vector>

using Microsoft::WRL::ComPtr;

namespace
{
// Kept as it is: the first three have the type of narrow texts. Stores delete by ID alone. Pinned
// by ContactClearingTest.
// clang-format off
constexpr ULONG kTags[] = {
    0x3A51001E, // PR_BUSINESS_HOME_PAGE
    0x3A50001E, // PR_PERSONAL_HOME_PAGE
    0x3A4C001E, // PR_FTP_SITE
    0x3A59001F, // PR_HOME_ADDRESS_CITY
    0x3A5A001F, // PR_HOME_ADDRESS_COUNTRY
    0x3A5B001F, // PR_HOME_ADDRESS_POSTAL_CODE
    0x3A5C001F, // PR_HOME_ADDRESS_STATE_OR_PROVINCE
    0x3A5D001F, // PR_HOME_ADDRESS_STREET
    0x3A5E001F, // PR_HOME_ADDRESS_POST_OFFICE_BOX
    0x3A27001F, // PR_LOCALITY
    0x3A26001F, // PR_COUNTRY
    0x3A2A001F, // PR_POSTAL_CODE
    0x3A28001F, // PR_STATE_OR_PROVINCE
    0x3A29001F, // PR_STREET_ADDRESS
    0x3A2B001F, // PR_POST_OFFICE_BOX
    0x3A5F001F, // PR_OTHER_ADDRESS_CITY
    0x3A60001F, // PR_OTHER_ADDRESS_COUNTRY
    0x3A61001F, // PR_OTHER_ADDRESS_POSTAL_CODE
    0x3A62001F, // PR_OTHER_ADDRESS_STATE_OR_PROVINCE
    0x3A63001F, // PR_OTHER_ADDRESS_STREET
    0x3A64001F, // PR_OTHER_ADDRESS_POST_OFFICE_BOX
    0x3A08001F, // PR_BUSINESS_TELEPHONE_NUMBER
    0x3A1B001F, // PR_BUSINESS2_TELEPHONE_NUMBER
    0x3A2E001F, // PR_ASSISTANT_TELEPHONE_NUMBER
    0x3A24001F, // PR_BUSINESS_FAX_NUMBER
    0x3A1C001F, // PR_MOBILE_TELEPHONE_NUMBER
    0x3A02001F, // PR_CALLBACK_TELEPHONE_NUMBER
    0x3A1E001F, // PR_CAR_TELEPHONE_NUMBER
    0x3A57001F, // PR_COMPANY_MAIN_PHONE_NUMBER
    0x3A09001F, // PR_HOME_TELEPHONE_NUMBER
    0x3A2F001F, // PR_HOME2_TELEPHONE_NUMBER
    0x3A25001F, // PR_HOME_FAX_NUMBER
    0x3A1F001F, // PR_OTHER_TELEPHONE_NUMBER
    0x3A420040, // PR_BIRTHDAY
    0x3A410040, // PR_WEDDING_ANNIVERSARY
    0x3001001F, // PR_DISPLAY_NAME
    0x3A06001F, // PR_GIVEN_NAME
    0x3A44001F, // PR_MIDDLE_NAME
    0x3A11001F, // PR_SURNAME
    0x3A45001F, // PR_DISPLAY_NAME_PREFIX
    0x3A4F001F, // PR_NICKNAME
    0x3A16001F, // PR_COMPANY_NAME
    0x3A18001F, // PR_DEPARTMENT_NAME
    0x3A17001F, // PR_TITLE
    0x3A19001F, // PR_OFFICE_LOCATION
    0x10090102, // PR_RTF_COMPRESSED
    0x3A21001F, // PR_PAGER_TELEPHONE_NUMBER
    0x3A23001F, // PR_PRIMARY_FAX_NUMBER
    0x3A1D001F, // PR_RADIO_TELEPHONE_NUMBER
    0x3A4B001F, // PR_TTYTDD_PHONE_NUMBER
    0x3A2D001F, // PR_ISDN_NUMBER
    0x3A2C001F, // PR_TELEX_NUMBER
    0x3A1A001F, // PR_PRIMARY_TELEPHONE_NUMBER
};

constexpr LONG kTextNames[] = {
    0x8082, // PidLidEmail1AddressType
    0x8083, // PidLidEmail1EmailAddress
    0x8092, // PidLidEmail2AddressType
    0x8093, // PidLidEmail2EmailAddress
    0x80A2, // PidLidEmail3AddressType
    0x80A3, // PidLidEmail3EmailAddress
    0x801A, // PidLidHomeAddress
    0x801B, // PidLidWorkAddress
    0x801C, // PidLidOtherAddress
    0x8084, // PidLidEmail1OriginalDisplayName
    0x8094, // PidLidEmail2OriginalDisplayName
    0x80A4, // PidLidEmail3OriginalDisplayName
    0x8045, // PidLidWorkAddressStreet
    0x8046, // PidLidWorkAddressCity
    0x8047, // PidLidWorkAddressState
    0x8048, // PidLidWorkAddressPostalCode
    0x8049, // PidLidWorkAddressCountry
    0x804A, // PidLidWorkAddressPostOfficeBox
    0x8080, // PidLidEmail1DisplayName
    0x8090, // PidLidEmail2DisplayName
    0x80A0, // PidLidEmail3DisplayName
    0x8062, // PidLidInstantMessagingAddress
    0x802B, // PidLidHtml
};

constexpr LONG kDateNames[] = {
    0x80DE, // PidLidBirthdayLocal
    0x80DF, // PidLidWeddingAnniversaryLocal
};
// clang-format on
static_assert(std::size(kTags) == 53);
static_assert(std::size(kTextNames) == 23);

void DeleteTags(IMAPIProp& message, std::span<const ULONG> tags)
{
    TagArray list(tags);
    message.DeleteProps(list.Get(), nullptr);
}

// A name that the store does not know gives the tag of no property, which stands for nothing.
void DeleteNamed(IMAPIProp& message, std::span<const LONG> names, ULONG type, CNProxcy& proxy)
{
    auto tags = TryFindNamedTags(message, proxy, kAddressNames, names);
    if (!tags)
        return;
    for (ULONG& tag : *tags)
        tag = WithType(tag, type);
    DeleteTags(message, *tags);
}

void DeleteKeywords(IMAPIProp& message, CNProxcy& proxy)
{
    if (const auto tag = FindNamedTag(message, proxy, kPublicNames, kKeywordsName))
    {
        const ULONG typed = WithType(tag, PT_MV_UNICODE);
        DeleteTags(message, {&typed, 1});
    }
}

// True where the last call that was made succeeded, whatever came of those before it.
bool DeleteAttachments(IMessage& message, CNProxcy& proxy)
{
    ComPtr<IMAPITable> table;
    if (FAILED(message.GetAttachmentTable(MAPI_DEFERRED_ERRORS, table.GetAddressOf())) || !table)
        return false;
    constexpr ULONG kNumber = PR_ATTACH_NUM;
    constexpr LONG kAllRows = 0;
    TagArray columns({&kNumber, 1});
    SRowSet* delivered = nullptr;
    HRESULT result =
        proxy.HrQueryAllRows(table.Get(), columns.Get(), nullptr, nullptr, kAllRows, &delivered);
    const MapiRowSet rows = AdoptMapiRowSet(SUCCEEDED(result) ? delivered : nullptr, proxy);
    if (!rows)
        return false;
    for (ULONG i = 0; i < rows->cRows; ++i)
    {
        const SRow& row = rows->aRow[i];
        const PropertyView values(row.cValues, row.lpProps);
        if (const auto number = values.Long(0))
            result = message.DeleteAttach(static_cast<ULONG>(*number), 0, nullptr, 0);
    }
    return SUCCEEDED(result);
}

void SaveWithoutPicture(IMAPIProp& message, CNProxcy& proxy)
{
    const ULONG tag = FindNamedTag(message, proxy, kAddressNames, kHasPictureName);
    // An unknown name stands for nothing here too: the store refuses the tag of no property.
    if (tag != 0)
    {
        PropertyArray values;
        values.AddBool(WithType(tag, PT_BOOLEAN), false);
        message.SetProps(values.Count(), values.Get(), nullptr);
    }
    // Kept as it is: a client that ends in the middle of the update leaves the contact cleared.
    // Pinned by ContactClearingTest.
    message.SaveChanges(KEEP_OPEN_READWRITE);
}
} // namespace

void ClearContact(IMAPIProp& message, CNProxcy& proxy)
{
    DeleteTags(message, kTags);
    DeleteNamed(message, kTextNames, PT_UNICODE, proxy);
    DeleteNamed(message, kDateNames, PT_SYSTIME, proxy);
    DeleteKeywords(message, proxy);
    const auto withAttachments = QueryStore<IMessage>(&message, IID_IMessage);
    if (withAttachments && DeleteAttachments(*withAttachments.Get(), proxy))
        SaveWithoutPicture(message, proxy);
}
