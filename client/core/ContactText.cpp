#include "client/core/ContactText.h"

#include "client/core/CommaList.h"
#include "client/core/FieldLines.h"

#include <algorithm>
#include <iterator>

namespace pim
{
namespace
{
constexpr ItemColumn kColumns[] = {
    {L"NAME", 32}, {L"COMPANY", 24}, {L"E-MAIL", 32}, {L"PHONE", 20}, {L"ID", 0}};

// What NameOf looks at, and the company.
constexpr std::optional<std::wstring> Contact::*kListedTexts[] = {
    &Contact::firstName, &Contact::middleName, &Contact::lastName, &Contact::company};

// The types whose number a list shows, best first.
constexpr const wchar_t* kListedPhones[] = {L"mobile", L"work", L"home", L"company"};

std::size_t PhoneTypeOf(const wchar_t* name)
{
    return std::size_t(FindContactType(kPhoneTypes, name) - kPhoneTypes.data());
}

std::wstring FirstOf(const std::optional<std::vector<std::wstring>>& texts)
{
    return texts && !texts->empty() ? texts->front() : std::wstring();
}

std::wstring ListedPhone(const Contact& contact)
{
    for (const wchar_t* name : kListedPhones)
    {
        const auto& number = contact.phones[PhoneTypeOf(name)];
        if (number && !number->empty())
            return *number;
    }
    return {};
}

// "Linnegatan 8, 413 04 Goteborg, Sweden"; a box and a state have their own places.
std::wstring AddressLine(const PostalAddress& address)
{
    std::wstring line;
    const auto add = [&](const std::optional<std::wstring>& text, const wchar_t* gap) {
        if (text && !text->empty())
            line += (line.empty() ? L"" : gap) + *text;
    };
    add(address.street, L", ");
    add(address.postOfficeBox, L", ");
    const std::size_t lengthBefore = line.size();
    add(address.postalCode, L", ");
    add(address.city, line.size() > lengthBefore ? L" " : L", ");
    add(address.state, L", ");
    add(address.country, L", ");
    return line;
}

std::optional<std::wstring> DayText(const std::optional<DATE>& date)
{
    const auto time = CivilFromDate(date);
    if (!time)
        return std::nullopt;
    return IsMidnight(*time) ? FormatDay(*time) : FormatDayAndClock(*time);
}
} // namespace

bool IsListed(const ContactText& field)
{
    return std::find(std::begin(kListedTexts), std::end(kListedTexts), field.value) !=
           std::end(kListedTexts);
}

bool IsListedPhone(std::size_t type)
{
    return std::any_of(std::begin(kListedPhones),
                       std::end(kListedPhones),
                       [&](const wchar_t* name) { return PhoneTypeOf(name) == type; });
}

std::wstring ContactTable(std::span<const Contact> contacts, const TableRoom& room)
{
    std::vector<ItemRow> rows;
    for (const Contact& contact : contacts)
        rows.push_back({NameOf(contact),
                        contact.company.value_or(L""),
                        FirstOf(contact.emails),
                        ListedPhone(contact),
                        contact.id.value_or(L"")});
    return FormatItemTable(kColumns, std::move(rows), room);
}

std::wstring ContactDetails(const Contact& contact, const ILocalZone& zone)
{
    FieldLines lines;
    lines.Add(L"Name", contact.displayName);
    for (const ContactText& field : kContactTexts)
    {
        if (field.value != &Contact::notes)
            lines.Add(field.title, contact.*field.value);
    }
    for (const std::wstring& email : contact.emails.value_or(std::vector<std::wstring>()))
        lines.Add(L"E-mail", email);
    for (std::size_t i = 0; i < kPhoneTypeCount; ++i)
        lines.Add(kPhoneTypes[i].title, contact.phones[i]);
    for (std::size_t i = 0; i < kAddressTypeCount; ++i)
    {
        if (contact.addresses[i])
            lines.Add(std::wstring(kAddressTypes[i].title) + L" address",
                      AddressLine(*contact.addresses[i]));
    }
    for (const ContactDay& field : kContactDays)
        lines.Add(field.title, DayText(contact.*field.value));
    lines.Add(L"Categories", CommaList(contact.categories.value_or(std::vector<std::wstring>())));
    lines.Add(L"Picture", contact.picture);
    lines.Add(L"Changed", LocalAndUtc(contact.modifiedUtc, zone));
    lines.Add(L"Folder", contact.folderId);
    lines.Add(L"ID", contact.id);
    return lines.Text() + ParagraphBelow(contact.notes);
}
} // namespace pim
