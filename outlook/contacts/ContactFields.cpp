#include "outlook/contacts/ContactFields.h"

#include "platform/Bstr.h"
#include "platform/SafeArray.h"
#include "service/Log.h"
#include "service/TimeConversions.h"

void PutTexts(INContactItem& contact,
              const PropertyView& values,
              std::span<const TextColumn> columns)
{
    for (const TextColumn& row : columns)
    {
        const wchar_t* const text = values.Text(row.column);
        if (!text)
            continue;
        if (row.trace)
            LogPrintf(row.trace, text);
        (contact.*row.put)(Bstr(text).Get());
    }
}

void PutPhones(INContactItem& contact, const PropertyView& values, ULONG firstColumn)
{
    for (ULONG type = 0; type < kPhoneTypes; ++type)
        if (const wchar_t* const number = values.Text(firstColumn + type))
            contact.put_PhoneNumber(static_cast<_tagNPhoneNumberType>(type), Bstr(number).Get());
}

void PutAddress(INContactItem& contact,
                _tagNAddressType type,
                const PropertyView& values,
                ULONG firstColumn)
{
    Bstr texts[kAddressFieldCount];
    _tagNAddress address = {};
    bool isPresent = false;
    for (ULONG i = 0; i < kAddressFieldCount; ++i)
    {
        const wchar_t* const text = values.Text(firstColumn + i);
        if (!text)
            continue;
        texts[i] = Bstr(text);
        address.*kAddressFields[i] = texts[i].Get();
        isPresent = true;
    }
    if (isPresent)
        contact.put_Address(type, address);
}

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

std::wstring TextIn(INContactItem& contact, ContactTextGet get)
{
    Bstr text;
    return SUCCEEDED((contact.*get)(text.Put())) ? TextOf(text.Get()) : std::wstring();
}

std::wstring PhoneIn(INContactItem& contact, _tagNPhoneNumberType type)
{
    Bstr number;
    return SUCCEEDED(contact.get_PhoneNumber(type, number.Put())) ? TextOf(number.Get())
                                                                  : std::wstring();
}

bool IsContactDate(DATE value)
{
    return value >= 0.000001 || value <= -0.00001;
}

bool ToFileTime(DATE date, FILETIME& time)
{
    SYSTEMTIME calendar = {};
    return DateToSystemTime(date, calendar) && SystemTimeToFileTime(&calendar, &time);
}

std::optional<std::array<Bstr, kAddressFieldCount>> AddressIn(INContactItem& contact,
                                                              _tagNAddressType type)
{
    _tagNAddress address = {};
    if (FAILED(contact.get_Address(type, &address)))
        return std::nullopt;
    std::array<Bstr, kAddressFieldCount> texts;
    for (std::size_t i = 0; i < kAddressFieldCount; ++i)
        texts[i] = Bstr::Adopt(address.*kAddressFields[i]);
    return texts;
}

std::vector<std::wstring> TextsIn(SAFEARRAY* array)
{
    VARTYPE type = VT_EMPTY;
    if (!array || SafeArrayGetDim(array) != 1 || FAILED(SafeArrayGetVartype(array, &type)) ||
        type != VT_BSTR)
        return {};
    const SafeArrayAccess<BSTR> elements(array);
    std::vector<std::wstring> texts;
    // A careless client's array may have elements and no memory for them.
    for (ULONG i = 0; elements.Data() && i < array->rgsabound[0].cElements; ++i)
        texts.push_back(TextOf(elements.Data()[i]));
    return texts;
}
