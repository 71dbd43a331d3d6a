// Contacts as JSON for programs, both ways. The names below are stable. Portable.
//
// A contact is an object with these members; a value that the server does not give is null.
//   id, folderId, displayName, modifiedUtc ("2024-04-30T17:20:00Z")   of the store's own making
//   firstName, middleName, lastName, suffix, company, jobTitle, instantMessaging, website, notes
//   emails, categories      arrays of text
//   birthday, anniversary   "1984-06-12", with the time of day where the store holds one
//   phones      an object: company, mobile, work, work2, home, home2, workFax, homeFax, pager,
//               other, assistant, car, radio
//   addresses   an object: home, business, other; each null or an object: street, postOfficeBox,
//               postalCode, city, state, country
//   picture     the path of a file with the picture
//
// Read back, what the store makes itself is passed over; null, or a member that is not there, asks
// for nothing; an empty text or array asks for the field to be cleared.
#pragma once

#include "client/core/Contact.h"

#include <nlohmann/json_fwd.hpp>

#include <string_view>

namespace pim
{
// The object above.
nlohmann::ordered_json ContactJson(const Contact& contact);

// What a file of contacts asks for.
struct ContactFile
{
    std::vector<Contact> contacts;
    std::wstring problem; // why the text holds no contacts, as a sentence; empty where it does
};

// Reads one contact, an array of them, or an object whose member contacts is such an array. Takes
// UTF-8, with or without a byte order mark.
ContactFile ReadContacts(std::string_view utf8);
} // namespace pim
