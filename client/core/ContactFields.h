// The fields of a contact as tables: how each is called for people, on the command line and in
// JSON. Portable.
#pragma once

#include "client/core/Contact.h"

#include <array>
#include <span>
#include <string>
#include <string_view>

namespace pim
{
struct ContactText
{
    const wchar_t* title;
    const wchar_t* option; // without its hyphens
    const wchar_t* member; // of the JSON object
    std::optional<std::wstring> Contact::*value;
};
inline constexpr std::size_t kContactTextCount = 9;
extern const std::array<ContactText, kContactTextCount> kContactTexts;

struct ContactDay
{
    const wchar_t* title;
    const wchar_t* option;
    const wchar_t* member;
    std::optional<DATE> Contact::*value;
};
inline constexpr std::size_t kContactDayCount = 2;
extern const std::array<ContactDay, kContactDayCount> kContactDays;

struct ContactList
{
    const wchar_t* title; // of one entry
    const wchar_t* option;
    const wchar_t* member;
    std::optional<std::vector<std::wstring>> Contact::*value;
};
inline constexpr std::size_t kContactListCount = 2;
extern const std::array<ContactList, kContactListCount> kContactLists;

// A kind of telephone number or address; the place in the table is the contract's number of it.
// The name stands in JSON and on the command line.
struct ContactType
{
    const wchar_t* title;
    const wchar_t* name;
};
extern const std::array<ContactType, kPhoneTypeCount> kPhoneTypes;
extern const std::array<ContactType, kAddressTypeCount> kAddressTypes;

struct AddressPart
{
    const wchar_t* name;
    std::optional<std::wstring> PostalAddress::*value;
};
inline constexpr std::size_t kAddressPartCount = 6;
// In the order in which an address is written.
extern const std::array<AddressPart, kAddressPartCount> kAddressParts;

// The entry of that name, compared without regard to the case of the letters A to Z; null where
// there is none.
const ContactType* FindContactType(std::span<const ContactType> types, std::wstring_view name);
const AddressPart* FindAddressPart(std::wstring_view name);
// "home, business, other", for messages and help.
std::wstring ContactTypeNames(std::span<const ContactType> types);
std::wstring AddressPartNames();
} // namespace pim
