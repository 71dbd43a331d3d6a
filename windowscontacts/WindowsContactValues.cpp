#include "windowscontacts/WindowsContactValues.h"

#include "outlook/contacts/ContactFields.h"
#include "outlook/store/MAPIHelper.h"
#include "platform/Bstr.h"
#include "platform/SafeArray.h"
#include "windowscontacts/WindowsContactColumns.h"

namespace
{
using namespace WindowsContactColumn;

constexpr TextColumn kNames[] = {
    {kFirstName, &INContactItem::put_FirstName, nullptr},
    {kLastName, &INContactItem::put_LastName, nullptr},
    {kMiddleName, &INContactItem::put_MiddleName, nullptr},
    {kJobTitle, &INContactItem::put_JobTitle, nullptr},
    {kCompanyName, &INContactItem::put_CompanyName, nullptr},
};

constexpr TextColumn kAfterDates[] = {{kSuffix, &INContactItem::put_Suffix, nullptr}};

struct AddressColumns
{
    _tagNAddressType type;
    ULONG firstColumn;
};

constexpr AddressColumns kAddresses[] = {
    {HomeAddress, kHomeAddress},
    {BusinessAddress, kBusinessAddress},
    {OtherAddress, kOtherAddress},
};
static_assert(std::size(kAddresses) == kAddressTypes);

struct DateColumn
{
    ULONG column;
    HRESULT (STDMETHODCALLTYPE INContactItem::*put)(DATE);
};

constexpr DateColumn kDates[] = {
    {kBirthday, &INContactItem::put_Birthday},
    {kAnniversary, &INContactItem::put_Anniversary},
};

void PutEmails(INContactItem& contact, const PropertyView& values)
{
    const SPropValue* const value = values.Find(kEmails);
    if (!value || PROP_TYPE(value->ulPropTag) != PT_MV_UNICODE)
        return;
    const UniqueSafeArray array(NewTextArray(values.Texts(kEmails)));
    if (array)
        contact.put_Emails(array.Get());
}

void PutWebsite(INContactItem& contact, const PropertyView& values)
{
    const wchar_t* text = values.Text(kPersonalWebsite);
    if (!text)
        text = values.Text(kBusinessWebsite);
    if (text)
        contact.put_Website(Bstr(text).Get());
}
} // namespace

void PutWindowsContactValues(INEntityItem& entity,
                             INContactItem& contact,
                             const PropertyView& values)
{
    if (const FILETIME* const time = values.Time(kLastModified))
        entity.put_LastModificationTime(CMAPIHelper::FileTimeToDate(*time));
    PutTexts(contact, values, kNames);
    PutPhones(contact, values, kFirstPhone);
    PutEmails(contact, values);
    PutWebsite(contact, values);
    for (const AddressColumns& row : kAddresses)
        PutAddress(contact, row.type, values, row.firstColumn);
    for (const DateColumn& row : kDates)
        if (const FILETIME* const time = values.Time(row.column))
            (contact.*row.put)(CMAPIHelper::FileTimeToDate(*time));
    PutTexts(contact, values, kAfterDates);
}
