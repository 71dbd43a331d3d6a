#include "outlook/contacts/ContactValues.h"

#include "outlook/contacts/ContactColumns.h"
#include "outlook/store/MAPIHelper.h"
#include "platform/Bstr.h"
#include "platform/SafeArray.h"
#include "service/Log.h"

#include <string>
#include <vector>

namespace
{
struct TextRow
{
    ULONG column;
    HRESULT (STDMETHODCALLTYPE INContactItem::*put)(BSTR);
    const wchar_t* trace; // a line of the log with the text; null for none
};

constexpr TextRow kNames[] = {
    {ContactColumn::kFirstName, &INContactItem::put_FirstName, L"===put_FirstName:%s"},
    {ContactColumn::kLastName, &INContactItem::put_LastName, L"===put_LastName:%s"},
    {ContactColumn::kMiddleName, &INContactItem::put_MiddleName, nullptr},
    {ContactColumn::kJobTitle, &INContactItem::put_JobTitle, nullptr},
    {ContactColumn::kCompanyName, &INContactItem::put_CompanyName, nullptr},
    {ContactColumn::kInstantMessaging, &INContactItem::put_InstantMessagingAddress, nullptr},
};

constexpr TextRow kAfterEmails[] = {
    {ContactColumn::kWebsite, &INContactItem::put_Website, nullptr},
    {ContactColumn::kDisplayName, &INContactItem::put_DisplayName, nullptr},
};

constexpr TextRow kAfterDates[] = {
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

void PutTexts(INContactItem& contact, const PropertyView& values, std::span<const TextRow> rows)
{
    for (const TextRow& row : rows)
    {
        const wchar_t* const text = values.Text(row.column);
        if (!text)
            continue;
        if (row.trace)
            LogPrintf(row.trace, text);
        (contact.*row.put)(Bstr(text).Get());
    }
}

void PutPhones(INContactItem& contact, const PropertyView& values)
{
    for (ULONG type = 0; type < kPhoneTypes; ++type)
        if (const wchar_t* const number = values.Text(ContactColumn::kFirstPhone + type))
            contact.put_PhoneNumber(static_cast<_tagNPhoneNumberType>(type), Bstr(number).Get());
}

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
    {
        Bstr texts[kAddressFieldCount];
        _tagNAddress address = {};
        bool isPresent = false;
        for (ULONG i = 0; i < kAddressFieldCount; ++i)
        {
            const wchar_t* const text = values.Text(row.firstColumn + i);
            if (!text)
                continue;
            texts[i] = Bstr(text);
            address.*kAddressFields[i] = texts[i].Get();
            isPresent = true;
        }
        if (isPresent)
            contact.put_Address(row.type, address);
    }
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

SAFEARRAY* NewTextArray(std::span<const std::wstring> texts)
{
    UniqueSafeArray array(SafeArrayCreateVector(VT_BSTR, 0, static_cast<ULONG>(texts.size())));
    const SafeArrayAccess<BSTR> elements(array.Get());
    if (!elements)
        return nullptr;
    for (std::size_t i = 0; i < texts.size(); ++i)
        elements.Data()[i] = Bstr(std::wstring_view(texts[i])).Detach();
    return array.Detach();
}

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
    PutPhones(contact, values);
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
