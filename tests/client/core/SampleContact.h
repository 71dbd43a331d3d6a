// A contact with every field, for the tests of what is made of contacts.
#pragma once

#include "client/core/Contact.h"
#include "client/core/FixedZone.h"

inline pim::Contact FullContact()
{
    pim::Contact contact;
    contact.id = L"00AB";
    contact.folderId = L"00CD";
    contact.displayName = L"Bakken Oda Marie";
    contact.modifiedUtc = kMay1 + 8 * kHour;
    contact.firstName = L"Oda";
    contact.middleName = L"Marie";
    contact.lastName = L"Bakken";
    contact.suffix = L"PhD";
    contact.company = L"Fjordlab";
    contact.jobTitle = L"Head of testing";
    contact.instantMessaging = L"oda@chat.example";
    contact.website = L"https://fjordlab.example";
    contact.notes = L"Met in Oslo.\r\nLikes tea.";
    contact.picture = L"C:\\Temp\\pic1.tmp.png";
    contact.emails = {L"oda@example.org", L"oda.b@example.net"};
    contact.categories = {L"Business", L"Norway"};
    // 1984-06-12 is day 30845: 84 years of 365 days, 21 leap days, two days before 1900, and the
    // 163 days from January 1 to June 12 of a leap year.
    contact.birthday = 30845.0;
    contact.anniversary = kMay1 + 0.5;
    for (std::size_t i = 0; i < pim::kPhoneTypeCount; ++i)
        contact.phones[i] = L"+47 555 " + std::to_wstring(100 + i);
    contact.addresses[0] = {{L"Lia 8", L"Box 1", L"0150", L"Oslo", L"Viken", L"Norway"}};
    contact.addresses[2].emplace();
    contact.addresses[2]->city = L"Bergen";
    return contact;
}
