#include "client/ContactAccess.h"

#include "client/PropertyAccess.h"
#include "client/TextArray.h"
#include "client/core/ContactText.h"

namespace pim
{
namespace
{
template <typename Value> struct Accessors
{
    HRESULT (STDMETHODCALLTYPE INContactItem::*get)(Value*);
    HRESULT (STDMETHODCALLTYPE INContactItem::*put)(Value);
};

// In the order of kContactTexts.
constexpr std::array<Accessors<BSTR>, kContactTextCount> kTexts = {{
    {&INContactItem::get_FirstName, &INContactItem::put_FirstName},
    {&INContactItem::get_MiddleName, &INContactItem::put_MiddleName},
    {&INContactItem::get_LastName, &INContactItem::put_LastName},
    {&INContactItem::get_Suffix, &INContactItem::put_Suffix},
    {&INContactItem::get_CompanyName, &INContactItem::put_CompanyName},
    {&INContactItem::get_JobTitle, &INContactItem::put_JobTitle},
    {&INContactItem::get_InstantMessagingAddress, &INContactItem::put_InstantMessagingAddress},
    {&INContactItem::get_Website, &INContactItem::put_Website},
    {&INContactItem::get_Notes, &INContactItem::put_Notes},
}};

// In the order of kContactDays.
constexpr std::array<Accessors<DATE>, kContactDayCount> kDays = {{
    {&INContactItem::get_Birthday, &INContactItem::put_Birthday},
    {&INContactItem::get_Anniversary, &INContactItem::put_Anniversary},
}};

// In the order of kContactLists.
constexpr std::array<Accessors<SAFEARRAY*>, kContactListCount> kLists = {{
    {&INContactItem::get_Emails, &INContactItem::put_Emails},
    {&INContactItem::get_CategoryIDs, &INContactItem::put_CategoryIDs},
}};

// In the order of kAddressParts.
constexpr std::array<BSTR _tagNAddress::*, kAddressPartCount> kParts = {
    &_tagNAddress::Street,
    &_tagNAddress::PostOfficeBox,
    &_tagNAddress::PostalCode,
    &_tagNAddress::City,
    &_tagNAddress::StateOrProvince,
    &_tagNAddress::Country};

// Owns the texts of the contract's record.
struct AddressRecord
{
    _tagNAddress value = {};

    AddressRecord() = default;
    AddressRecord(const AddressRecord&) = delete;
    AddressRecord& operator=(const AddressRecord&) = delete;
    ~AddressRecord()
    {
        for (const auto part : kParts)
            SysFreeString(value.*part);
    }
};

std::optional<std::wstring> GetPhone(INContactItem* item, std::size_t type)
{
    Bstr number;
    const HRESULT result =
        item->get_PhoneNumber(static_cast<_tagNPhoneNumberType>(type), number.Put());
    return TakeText(result, number);
}

std::optional<std::vector<std::wstring>> GetTexts(INContactItem* item,
                                                  const Accessors<SAFEARRAY*>& access)
{
    UniqueSafeArray array;
    const HRESULT result = (item->*access.get)(array.Put());
    CheckServerIsThere(result);
    if (FAILED(result) || !array)
        return std::nullopt;
    return TextsOf(array.Get());
}

std::optional<PostalAddress> GetAddress(INContactItem* item, std::size_t type)
{
    AddressRecord record;
    const HRESULT result = item->get_Address(static_cast<_tagNAddressType>(type), &record.value);
    CheckServerIsThere(result);
    if (FAILED(result))
        return std::nullopt;
    PostalAddress address;
    for (std::size_t i = 0; i < kAddressPartCount; ++i)
    {
        if (const BSTR text = record.value.*kParts[i])
            address.*kAddressParts[i].value = WholeText(text);
    }
    return address;
}

// A null text is one that is not stored; an empty one may be.
BSTR NewTextOrNull(const std::optional<std::wstring>& text)
{
    return text && !text->empty() ? Bstr(*text).Detach() : nullptr;
}

void PutAddress(INContactItem* item, std::size_t type, const PostalAddress& address)
{
    AddressRecord record;
    for (std::size_t i = 0; i < kAddressPartCount; ++i)
        record.value.*kParts[i] = NewTextOrNull(address.*kAddressParts[i].value);
    CheckPut(item->put_Address(static_cast<_tagNAddressType>(type), record.value),
             std::wstring(L"address ") + kAddressTypes[type].name);
}

bool IsSame(const std::optional<PostalAddress>& left, const PostalAddress& right)
{
    for (const AddressPart& part : kAddressParts)
    {
        const auto before = left ? (*left).*part.value : std::nullopt;
        if (before.value_or(L"") != (right.*part.value).value_or(L""))
            return false;
    }
    return true;
}

template <typename Value>
bool IsChange(const std::optional<Value>& before, const std::optional<Value>& wanted)
{
    return wanted && wanted != before;
}
} // namespace

Contact ReadContact(INContactItem* item, ReadFields fields, bool withPicture)
{
    Contact contact;
    contact.id = GetText(item, &INContactItem::get_PersistentID);
    contact.displayName = GetText(item, &INContactItem::get_DisplayName);
    const bool isAll = fields == ReadFields::All;
    for (std::size_t i = 0; i < kContactTextCount; ++i)
    {
        if (isAll || IsListed(kContactTexts[i]))
            contact.*kContactTexts[i].value = GetText(item, kTexts[i].get);
    }
    for (std::size_t i = 0; i < kPhoneTypeCount; ++i)
    {
        if (isAll || IsListedPhone(i))
            contact.phones[i] = GetPhone(item, i);
    }
    contact.emails = GetTexts(item, kLists[0]);
    if (isAll || withPicture)
        contact.picture = GetText(item, &INContactItem::get_Picture);
    if (!isAll)
        return contact;

    contact.categories = GetTexts(item, kLists[1]);
    for (std::size_t i = 0; i < kContactDayCount; ++i)
        contact.*kContactDays[i].value = GetValue(item, kDays[i].get);
    for (std::size_t i = 0; i < kAddressTypeCount; ++i)
        contact.addresses[i] = GetAddress(item, i);
    contact.folderId = GetText(item, &INContactItem::get_ParentFolderID);
    if (const auto entity = EntityOf(item))
        contact.modifiedUtc = GetValue(entity.Get(), &INEntityItem::get_LastModificationTime);
    return contact;
}

void PutChanges(INContactItem* item, const Contact& before, const Contact& wanted)
{
    for (std::size_t i = 0; i < kContactTextCount; ++i)
    {
        const auto value = kContactTexts[i].value;
        if (IsChange(before.*value, wanted.*value))
            CheckPut((item->*kTexts[i].put)(Bstr(*(wanted.*value)).Get()), kContactTexts[i].option);
    }
    for (std::size_t i = 0; i < kContactDayCount; ++i)
    {
        const auto value = kContactDays[i].value;
        if (IsChange(before.*value, wanted.*value))
            CheckPut((item->*kDays[i].put)(*(wanted.*value)), kContactDays[i].option);
    }
    for (std::size_t i = 0; i < kContactListCount; ++i)
    {
        const auto value = kContactLists[i].value;
        if (IsChange(before.*value, wanted.*value))
            CheckPut((item->*kLists[i].put)(TextArray(*(wanted.*value)).Get()),
                     kContactLists[i].option);
    }
    for (std::size_t i = 0; i < kPhoneTypeCount; ++i)
    {
        if (IsChange(before.phones[i], wanted.phones[i]))
            CheckPut(item->put_PhoneNumber(static_cast<_tagNPhoneNumberType>(i),
                                           Bstr(*wanted.phones[i]).Get()),
                     std::wstring(L"phone ") + kPhoneTypes[i].name);
    }
    for (std::size_t i = 0; i < kAddressTypeCount; ++i)
    {
        if (wanted.addresses[i] && !IsSame(before.addresses[i], *wanted.addresses[i]))
            PutAddress(item, i, *wanted.addresses[i]);
    }
    if (IsChange(before.picture, wanted.picture))
        CheckPut(item->put_Picture(Bstr(*wanted.picture).Get()), L"picture");
}
} // namespace pim
