#include "client/core/ContactText.h"

#include "client/core/SampleContact.h"

#include <gtest/gtest.h>

using namespace pim;

namespace
{
const FixedZone kZone(2);
}

TEST(ContactTextTest, ShowsALineForEachContact)
{
    Contact plain;
    plain.firstName = L"Ravi";
    plain.phones[4] = L"+46 555 1";
    plain.id = L"00EF";
    const Contact contacts[] = {FullContact(), plain, Contact()};
    EXPECT_EQ(ContactTable(contacts, TableRoom()),
              L"NAME              COMPANY   E-MAIL           PHONE        ID\n"
              L"Bakken Oda Marie  Fjordlab  oda@example.org  +47 555 101  00AB\n"
              L"Ravi                                         +46 555 1    00EF\n"
              L"\n");
}

TEST(ContactTextTest, ShowsTheFirstNumberOfTheBestType)
{
    Contact contact = FullContact();
    const auto shown = [&] {
        const std::wstring table = ContactTable({&contact, 1}, TableRoom());
        const std::size_t place = table.find(L"+47 555 ");
        return place != std::wstring::npos ? table.substr(place + 8, 3) : L"none";
    };
    EXPECT_EQ(shown(), L"101");
    contact.phones[1] = L"";
    EXPECT_EQ(shown(), L"102");
    contact.phones[2].reset();
    EXPECT_EQ(shown(), L"104");
    contact.phones[4].reset();
    EXPECT_EQ(shown(), L"100");
    contact.phones[0].reset();
    EXPECT_EQ(shown(), L"none");
}

TEST(ContactTextTest, ReadsForTheTableWhatItShows)
{
    // First name, middle name, last name, company.
    std::wstring texts;
    for (const ContactText& field : kContactTexts)
        texts += IsListed(field) ? L'1' : L'0';
    EXPECT_EQ(texts, L"111010000");
    // Company, mobile, work, home.
    std::wstring phones;
    for (std::size_t i = 0; i < kPhoneTypeCount; ++i)
        phones += IsListedPhone(i) ? L'1' : L'0';
    EXPECT_EQ(phones, L"1110100000000");
}

TEST(ContactTextTest, ShowsEveryFieldOfAContact)
{
    EXPECT_EQ(ContactDetails(FullContact(), kZone),
              L"Name:          Bakken Oda Marie\n"
              L"First name:    Oda\n"
              L"Middle name:   Marie\n"
              L"Last name:     Bakken\n"
              L"Suffix:        PhD\n"
              L"Company:       Fjordlab\n"
              L"Job title:     Head of testing\n"
              L"Chat:          oda@chat.example\n"
              L"Website:       https://fjordlab.example\n"
              L"E-mail:        oda@example.org\n"
              L"E-mail:        oda.b@example.net\n"
              L"Company phone: +47 555 100\n"
              L"Mobile:        +47 555 101\n"
              L"Work phone:    +47 555 102\n"
              L"Work phone 2:  +47 555 103\n"
              L"Home phone:    +47 555 104\n"
              L"Home phone 2:  +47 555 105\n"
              L"Work fax:      +47 555 106\n"
              L"Home fax:      +47 555 107\n"
              L"Pager:         +47 555 108\n"
              L"Other phone:   +47 555 109\n"
              L"Assistant:     +47 555 110\n"
              L"Car phone:     +47 555 111\n"
              L"Radio phone:   +47 555 112\n"
              L"Home address:  Lia 8, Box 1, 0150 Oslo, Viken, Norway\n"
              L"Other address: Bergen\n"
              L"Birthday:      1984-06-12\n"
              L"Anniversary:   2024-05-01 12:00\n"
              L"Categories:    Business, Norway\n"
              L"Picture:       C:\\Temp\\pic1.tmp.png\n"
              L"Changed:       2024-05-01 10:00 (2024-05-01 08:00 UTC)\n"
              L"Folder:        00CD\n"
              L"ID:            00AB\n"
              L"\n"
              L"Met in Oslo.\n"
              L"Likes tea.\n");
}

TEST(ContactTextTest, LeavesOutWhatIsNotThere)
{
    Contact contact;
    contact.lastName = L"Menon";
    contact.addresses[1].emplace();
    contact.birthday = kNoDay;
    EXPECT_EQ(ContactDetails(contact, kZone), L"Last name:  Menon\n");
    contact.addresses[1]->street = L"Kai 1";
    contact.addresses[1]->city = L"Bergen";
    EXPECT_EQ(ContactDetails(contact, kZone),
              L"Last name:        Menon\n"
              L"Business address: Kai 1, Bergen\n");
    contact.addresses[1].emplace();
    contact.addresses[1]->postalCode = L"413 04";
    contact.addresses[1]->country = L"Sweden";
    contact.notes = L"\r\n";
    EXPECT_EQ(ContactDetails(contact, kZone),
              L"Last name:        Menon\n"
              L"Business address: 413 04, Sweden\n"
              L"\n"
              L"\n");
}
