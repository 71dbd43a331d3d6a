// One contact as the client holds it: what the server gave, or what a person asks for. Portable.
#pragma once

#include "client/core/CivilTime.h"

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace pim
{
inline constexpr std::size_t kPhoneTypeCount = 13;
inline constexpr std::size_t kAddressTypeCount = 3;
// The DATE of a day that is not set.
inline constexpr DATE kNoDay = 0;

struct PostalAddress
{
    std::optional<std::wstring> street;
    std::optional<std::wstring> postOfficeBox;
    std::optional<std::wstring> postalCode;
    std::optional<std::wstring> city;
    std::optional<std::wstring> state;
    std::optional<std::wstring> country;
};

// A field is absent where reading it failed or where it has no value; in a wish it is absent where
// nothing is asked for, and an empty text, an empty list or kNoDay asks for the field to be
// cleared.
struct Contact
{
    // Of the store's own making: no client sets them.
    std::optional<std::wstring> id;
    std::optional<std::wstring> folderId;
    std::optional<std::wstring> displayName;
    std::optional<DATE> modifiedUtc;

    std::optional<std::wstring> firstName;
    std::optional<std::wstring> middleName;
    std::optional<std::wstring> lastName;
    std::optional<std::wstring> suffix;
    std::optional<std::wstring> company;
    std::optional<std::wstring> jobTitle;
    std::optional<std::wstring> instantMessaging;
    std::optional<std::wstring> website;
    std::optional<std::wstring> notes;
    // The path of a file with the picture.
    std::optional<std::wstring> picture;
    std::optional<std::vector<std::wstring>> emails;
    std::optional<std::vector<std::wstring>> categories;
    // Local days.
    std::optional<DATE> birthday;
    std::optional<DATE> anniversary;
    // By the numbers of the automation contract.
    std::array<std::optional<std::wstring>, kPhoneTypeCount> phones;
    std::array<std::optional<PostalAddress>, kAddressTypeCount> addresses;
};

// What a list shows as the name: the display name, else the parts of the name, the company or the
// first e-mail address; empty where there is none of them.
std::wstring NameOf(const Contact& contact);

// The order of a list: by NameOf, see NameOrder.h.
bool ComesBefore(const Contact& left, const Contact& right);

// Lays the wish over the contact; what the store makes itself stays.
void Apply(const Contact& wish, Contact& contact);

// The fields, by the names of their options, that were asked to change from before to wanted, and
// that a store nevertheless holds with another value. Of a picture only whether there is one
// counts.
std::vector<std::wstring> FieldsNotKept(const Contact& before,
                                        const Contact& wanted,
                                        const Contact& kept);
} // namespace pim
