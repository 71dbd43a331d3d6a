// Contacts as text for people. Portable.
#pragma once

#include "client/core/ContactFields.h"
#include "client/core/ItemTable.h"

#include <span>
#include <string>

namespace pim
{
// Whether the table needs the text, or the telephone number of that type.
bool IsListed(const ContactText& field);
bool IsListedPhone(std::size_t type);

// A table with one line per contact, in the given order: name, company, the first e-mail address,
// the first number that is there of mobile, work, home and company, ID.
std::wstring ContactTable(std::span<const Contact> contacts, const TableRoom& room);

// All that is known of one contact, one line per field, the notes at the end.
std::wstring ContactDetails(const Contact& contact, const ILocalZone& zone);
} // namespace pim
