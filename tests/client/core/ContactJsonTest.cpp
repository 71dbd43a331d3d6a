#include "client/core/ContactJson.h"

#include "client/core/JsonValues.h"
#include "client/core/SampleContact.h"

#include <gmock/gmock.h>

using namespace pim;

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace
{
std::wstring Problem(std::string_view text)
{
    const ContactFile file = ReadContacts(text);
    EXPECT_THAT(file.contacts, IsEmpty());
    return file.problem;
}

// The one contact of the text.
Contact Read(std::string_view text)
{
    const ContactFile file = ReadContacts(text);
    EXPECT_EQ(file.problem, L"");
    EXPECT_EQ(file.contacts.size(), 1u);
    return file.contacts.empty() ? Contact() : file.contacts.front();
}
} // namespace

TEST(ContactJsonTest, GivesEveryMemberAlways)
{
    EXPECT_EQ(JsonText(ContactJson(Contact())), LR"({
  "id": null,
  "folderId": null,
  "displayName": null,
  "firstName": null,
  "middleName": null,
  "lastName": null,
  "suffix": null,
  "company": null,
  "jobTitle": null,
  "instantMessaging": null,
  "website": null,
  "notes": null,
  "emails": [],
  "categories": [],
  "birthday": null,
  "anniversary": null,
  "phones": {
    "company": null,
    "mobile": null,
    "work": null,
    "work2": null,
    "home": null,
    "home2": null,
    "workFax": null,
    "homeFax": null,
    "pager": null,
    "other": null,
    "assistant": null,
    "car": null,
    "radio": null
  },
  "addresses": {
    "home": null,
    "business": null,
    "other": null
  },
  "picture": null,
  "modifiedUtc": null
}
)");
}

TEST(ContactJsonTest, GivesEveryValue)
{
    EXPECT_EQ(JsonText(ContactJson(FullContact())), LR"({
  "id": "00AB",
  "folderId": "00CD",
  "displayName": "Bakken Oda Marie",
  "firstName": "Oda",
  "middleName": "Marie",
  "lastName": "Bakken",
  "suffix": "PhD",
  "company": "Fjordlab",
  "jobTitle": "Head of testing",
  "instantMessaging": "oda@chat.example",
  "website": "https://fjordlab.example",
  "notes": "Met in Oslo.\r\nLikes tea.",
  "emails": [
    "oda@example.org",
    "oda.b@example.net"
  ],
  "categories": [
    "Business",
    "Norway"
  ],
  "birthday": "1984-06-12",
  "anniversary": "2024-05-01T12:00:00",
  "phones": {
    "company": "+47 555 100",
    "mobile": "+47 555 101",
    "work": "+47 555 102",
    "work2": "+47 555 103",
    "home": "+47 555 104",
    "home2": "+47 555 105",
    "workFax": "+47 555 106",
    "homeFax": "+47 555 107",
    "pager": "+47 555 108",
    "other": "+47 555 109",
    "assistant": "+47 555 110",
    "car": "+47 555 111",
    "radio": "+47 555 112"
  },
  "addresses": {
    "home": {
      "street": "Lia 8",
      "postOfficeBox": "Box 1",
      "postalCode": "0150",
      "city": "Oslo",
      "state": "Viken",
      "country": "Norway"
    },
    "business": null,
    "other": {
      "street": null,
      "postOfficeBox": null,
      "postalCode": null,
      "city": "Bergen",
      "state": null,
      "country": null
    }
  },
  "picture": "C:\\Temp\\pic1.tmp.png",
  "modifiedUtc": "2024-05-01T08:00:00Z"
}
)");
}

TEST(ContactJsonTest, TakesBackWhatItGave)
{
    const std::string text = ContactJson(FullContact()).dump();
    const Contact wish = Read(text);
    EXPECT_THAT(FieldsNotKept(Contact(), FullContact(), wish), IsEmpty());
    EXPECT_EQ(wish.picture, L"C:\\Temp\\pic1.tmp.png");
    // The store's own values are not wished.
    EXPECT_FALSE(wish.id);
    EXPECT_FALSE(wish.folderId);
    EXPECT_FALSE(wish.displayName);
    EXPECT_FALSE(wish.modifiedUtc);
    EXPECT_FALSE(wish.addresses[1]);
}

TEST(ContactJsonTest, WishesNothingWhereNothingStands)
{
    const Contact wish = Read(R"({"firstName": null, "phones": {"mobile": null},
        "addresses": {"home": null, "other": {"city": null}}, "emails": null})");
    EXPECT_FALSE(wish.firstName);
    EXPECT_FALSE(wish.phones[1]);
    EXPECT_FALSE(wish.addresses[0]);
    EXPECT_FALSE(wish.addresses[2]->city);
    EXPECT_FALSE(wish.emails);
    EXPECT_FALSE(wish.birthday);
}

TEST(ContactJsonTest, WishesFieldsClearedThatAreEmpty)
{
    const Contact wish = Read(R"({"notes": "", "emails": [], "birthday": "", "picture": "",
        "phones": {"MOBILE": ""}})");
    EXPECT_EQ(wish.notes, L"");
    EXPECT_THAT(*wish.emails, IsEmpty());
    EXPECT_EQ(wish.birthday, kNoDay);
    EXPECT_EQ(wish.picture, L"");
    EXPECT_EQ(wish.phones[1], L"");
}

TEST(ContactJsonTest, ReadsListsInTheirOrder)
{
    const std::string list = R"([{"lastName": "A"}, {"lastName": "B"}])";
    for (const std::string& text : {list, R"({"provider": "x", "contacts": )" + list + "}"})
    {
        const ContactFile file = ReadContacts(text);
        ASSERT_EQ(file.contacts.size(), 2u);
        EXPECT_EQ(file.contacts[0].lastName, L"A");
        EXPECT_EQ(file.contacts[1].lastName, L"B");
    }
    EXPECT_THAT(ReadContacts("[]").contacts, IsEmpty());
    EXPECT_EQ(ReadContacts("[]").problem, L"");
    EXPECT_EQ(Read("\xEF\xBB\xBF{\"lastName\": \"B\xC3\xA6k\"}").lastName,
              (std::wstring{L'B', wchar_t(0xE6), L'k'}));
}

TEST(ContactJsonTest, SaysWhereTheMistakeIs)
{
    EXPECT_EQ(Problem(""), L"it is no JSON in UTF-8.");
    EXPECT_EQ(Problem("{\"lastName\": \"\xFF\"}"), L"it is no JSON in UTF-8.");
    EXPECT_EQ(Problem("{\"lastName\": \"x\"} more"), L"it is no JSON in UTF-8.");
    EXPECT_EQ(Problem("7"), L"an object is needed here.");
    EXPECT_EQ(Problem("[{}, 7]"), L"1/: an object is needed here.");
    EXPECT_EQ(Problem(R"([{"lastname": "x"}])"), L"0/lastname: a contact has no such member.");
    EXPECT_EQ(Problem(R"({"lastName": 7})"), L"lastName: a text is needed here.");
    EXPECT_EQ(Problem(R"({"emails": "x"})"), L"emails: an array of texts is needed here.");
    EXPECT_EQ(Problem(R"({"emails": ["x", 7]})"), L"emails/1: a text is needed here.");
    EXPECT_EQ(Problem(R"({"birthday": "June"})"), L"birthday: a day as 1984-06-12 is needed here.");
    EXPECT_EQ(Problem(R"({"birthday": "1984-06-12T10:00Z"})"),
              L"birthday: a day as 1984-06-12 is needed here.");
    EXPECT_EQ(Problem(R"({"phones": []})"), L"phones: an object is needed here.");
    EXPECT_EQ(Problem(R"({"phones": {"cell": "1"}})"),
              L"phones/cell: there is no such type; there are company, mobile, work, work2, home, "
              L"home2, workFax, homeFax, pager, other, assistant, car, radio.");
    EXPECT_EQ(Problem(R"({"addresses": {"work": {}}})"),
              L"addresses/work: there is no such type; there are home, business, other.");
    EXPECT_EQ(Problem(R"({"addresses": {"home": {"zip": "1"}}})"),
              L"addresses/home/zip: an address has no such member.");
    EXPECT_EQ(Problem(R"({"addresses": {"home": {"city": 1}}})"),
              L"addresses/home/city: a text is needed here.");
    EXPECT_EQ(Problem(R"({"picture": {}})"), L"picture: a text is needed here.");
}

TEST(ContactJsonTest, TakesNestingOfAnyDepthForAMistake)
{
    EXPECT_NE(Problem(std::string(200000, '[')), L"");
    EXPECT_NE(Problem(std::string(200000, '[') + std::string(200000, ']')), L"");
}
