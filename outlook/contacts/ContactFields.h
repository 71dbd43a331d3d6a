// The fields of a contact item that lists of contacts read and write alike, whatever store they lie
// over. What throws, throws std::bad_alloc only.
#pragma once

#include "outlook/store/PropertyView.h"
#include "platform/Bstr.h"
#include "platform/WindowsHeaders.h"

#include "PimStoreBridge.h"

#include <array>
#include <iterator>
#include <optional>
#include <span>
#include <string>
#include <vector>

inline constexpr std::size_t kPhoneTypes = 13;
inline constexpr std::size_t kAddressTypes = 3;

// The fields of an address in the order of their columns, which is not that of the record.
inline constexpr BSTR _tagNAddress::*kAddressFields[] = {
    &_tagNAddress::Country,
    &_tagNAddress::StateOrProvince,
    &_tagNAddress::City,
    &_tagNAddress::Street,
    &_tagNAddress::PostalCode,
    &_tagNAddress::PostOfficeBox,
};
inline constexpr std::size_t kAddressFieldCount = std::size(kAddressFields);

using AddressTags = std::array<ULONG, kAddressFieldCount>;

// --- From the values of a store into the item, by their positions. What is not there leaves its
// field alone.

struct TextColumn
{
    ULONG column;
    HRESULT (STDMETHODCALLTYPE INContactItem::*put)(BSTR);
    const wchar_t* trace; // a line of the log with the text; null for none
};

// Texts that are absent put nothing.
void PutTexts(INContactItem& contact,
              const PropertyView& values,
              std::span<const TextColumn> columns);
// Thirteen columns, by _tagNPhoneNumberType.
void PutPhones(INContactItem& contact, const PropertyView& values, ULONG firstColumn);
// Six columns, by kAddressFields.
void PutAddress(INContactItem& contact,
                _tagNAddressType type,
                const PropertyView& values,
                ULONG firstColumn);
// An array of the texts. Null where the system refuses.
SAFEARRAY* NewTextArray(std::span<const std::wstring> texts);

// --- Out of the item. Texts end at their first zero.

using ContactTextGet = HRESULT (STDMETHODCALLTYPE INContactItem::*)(BSTR*);

// Empty where the item refuses.
std::wstring TextIn(INContactItem& contact, ContactTextGet get);
std::wstring PhoneIn(INContactItem& contact, _tagNPhoneNumberType type);
// The texts of an address, by kAddressFields; nothing where the item refuses.
std::optional<std::array<Bstr, kAddressFieldCount>> AddressIn(INContactItem& contact,
                                                              _tagNAddressType type);
// The texts of a one-dimensional array of them; empty for anything else.
std::vector<std::wstring> TextsIn(SAFEARRAY* array);

// Whether a DATE stands for a day at all.
// Kept as it is: the limits differ. Pinned by ContactWritingTest and WindowsContactWritingTest.
bool IsContactDate(DATE value);
// False where a FILETIME cannot tell the date. No zone is looked at.
bool ToFileTime(DATE date, FILETIME& time);
