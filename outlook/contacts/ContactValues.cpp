#include "outlook/contacts/ContactValues.h"

#include "outlook/contacts/ContactColumns.h"
#include "outlook/store/MAPIHelper.h"
#include "platform/Bstr.h"
#include "platform/SafeArray.h"

#include <string>
#include <vector>

namespace
{
constexpr TextColumn kNames[] = {
    {ContactColumn::kFirstName, &INContactItem::put_FirstName, L"===put_FirstName:%s"},
    {ContactColumn::kLastName, &INContactItem::put_LastName, L"===put_LastName:%s"},
    {ContactColumn::kMiddleName, &INContactItem::put_MiddleName, nullptr},
    {ContactColumn::kJobTitle, &INContactItem::put_JobTitle, nullptr},
    {ContactColumn::kCompanyName, &INContactItem::put_CompanyName, nullptr},
    {ContactColumn::kInstantMessaging, &INContactItem::put_InstantMessagingAddress, nullptr},
};

constexpr TextColumn kAfterEmails[] = {
    {ContactColumn::kWebsite, &INContactItem::put_Website, nullptr},
    {ContactColumn::kDisplayName, &INContactItem::put_DisplayName, nullptr},
};

constexpr TextColumn kAfterDates[] = {
    {ContactColumn::kSuffix, &INContactItem::put_Suffix, nullptr},
};

constexpr ULONG kEmailColumns[] = {
    ContactColumn::kFirstEmail, ContactColumn::kSecondEmail, ContactColumn::kThirdEmail};

struct AddressRow
{
    _tagNAddressType type;
    ULONG firstColumn;
};

constexpr AddressRow kAddresses[] = {
    {HomeAddress, ContactColumn::kHomeAddress},
    {BusinessAddress, ContactColumn::kBusinessAddress},
    {OtherAddress, ContactColumn::kOtherAddress},
};
static_assert(std::size(kAddresses) == kAddressTypes);

struct DateRow
{
    ULONG utcColumn;
    ULONG localColumn;
    HRESULT (STDMETHODCALLTYPE INContactItem::*put)(DATE);
};

constexpr DateRow kDates[] = {
    {ContactColumn::kBirthday, ContactColumn::kLocalBirthday, &INContactItem::put_Birthday},
    {ContactColumn::kAnniversary,
     ContactColumn::kLocalAnniversary,
     &INContactItem::put_Anniversary},
};

void PutEmails(INContactItem& contact, const PropertyView& values)
{
    std::vector<std::wstring> addresses;
    for (const ULONG column : kEmailColumns)
    {
        const wchar_t* text = values.Text(column);
        // Kept as it is: an address of an Exchange server is told by these two characters anywhere
        // in it, as they begin its first part, so that a few others count as one too. Pinned by
        // ContactValuesTest.
        if (text && std::wstring_view(text).find(L"/o") != std::wstring_view::npos)
            text = values.Text(column + 1);
        if (text)
            addresses.emplace_back(text);
    }
    if (addresses.empty())
        return;
    const UniqueSafeArray array(NewTextArray(addresses));
    if (array)
        contact.put_Emails(array.Get());
}

void PutAddresses(INContactItem& contact, const PropertyView& values)
{
    for (const AddressRow& row : kAddresses)
        PutAddress(contact, row.type, values, row.firstColumn);
}

void PutDates(INContactItem& contact,
              const PropertyView& values,
              bool hasLocalDates,
              double zoneBiasDays)
{
    for (const DateRow& row : kDates)
    {
        const FILETIME* const local = hasLocalDates ? values.Time(row.localColumn) : nullptr;
        const FILETIME* const utc = values.Time(row.utcColumn);
        if (local)
            (contact.*row.put)(CMAPIHelper::FileTimeToDate(*local));
        else if (utc)
            (contact.*row.put)(CMAPIHelper::FileTimeToDate(*utc) - zoneBiasDays);
    }
}
} // namespace

double ZoneBiasDays()
{
    TIME_ZONE_INFORMATION zone = {};
    GetTimeZoneInformation(&zone);
    return zone.Bias / 60.0 / 24.0;
}

void PutContactValues(INEntityItem& entity,
                      INContactItem& contact,
                      const PropertyView& values,
                      bool hasLocalDates,
                      double zoneBiasDays)
{
    if (const FILETIME* const time = values.Time(ContactColumn::kLastModified))
        entity.put_LastModificationTime(CMAPIHelper::FileTimeToDate(*time));
    PutTexts(contact, values, kNames);
    PutPhones(contact, values, ContactColumn::kFirstPhone);
    PutEmails(contact, values);
    PutTexts(contact, values, kAfterEmails);
    PutAddresses(contact, values);
    PutDates(contact, values, hasLocalDates, zoneBiasDays);
    PutTexts(contact, values, kAfterDates);
}

void PutContactCategories(INContactItem& contact, const PropertyView& values)
{
    const std::vector<std::wstring> names = values.Texts(ContactColumn::kCategories);
    if (names.empty())
        return;
    const UniqueSafeArray array(NewTextArray(names));
    if (array)
        contact.put_CategoryIDs(array.Get());
}
