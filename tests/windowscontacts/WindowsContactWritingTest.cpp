// What contacts become in the Windows Address Book. Every list of values was worked out by hand;
// none comes out of this program.
#include "windowscontacts/WindowsContactWriting.h"

#include "outlook/contacts/ContactText.h"
#include "outlook/contacts/OwnContact.h"
#include "platform/SafeArray.h"
#include "windowscontacts/ContactParts.h"

#include <gmock/gmock.h>

#include <cmath>
#include <limits>
#include <string>

using testing::ElementsAreArray;

namespace
{
struct WritingCase
{
    const char* name;
    std::string contact; // see ContactText.h
    std::string values;
};

const WritingCase kCases[] = {
    {"WithoutAName", "", R"_(
        3A06001F "Untitled"
        3001001F "Untitled")_"},
    {"FirstAndLastNameRunTogether",
     R"_(
        FirstName "Oda"
        LastName "Bakken")_",
     R"_(
        3A06001F "Oda"
        3A11001F "Bakken"
        3001001F "OdaBakken")_"},
    {"AllPartsOfAName",
     R"_(
        FirstName "Oda"
        MiddleName "Q"
        LastName "Bakken"
        Suffix "Jr.")_",
     R"_(
        3A06001F "Oda"
        3A11001F "Bakken"
        3A44001F "Q"
        3A05001F "Jr."
        3001001F "OdaBakkenQJr.")_"},
    {"ASuffixAloneIsAName", R"_(Suffix "Jr.")_", R"_(
        3A05001F "Jr."
        3001001F "Jr.")_"},
    {"EmptyTextsCountAsNone",
     R"_(
        FirstName ""
        LastName ""
        JobTitle ""
        Notes ""
        Phone1 ""
        Website ""
        Home.City "")_",
     R"_(
        3A06001F "Untitled"
        3001001F "Untitled")_"},
    {"TextsAndWebsite",
     R"_(
        FirstName "Oda"
        JobTitle "Cook"
        CompanyName "Inn"
        Website "http://a"
        Notes "note"
        DisplayName "not written"
        InstantMessagingAddress "not written"
        GroupID "not written"
        Category "not written")_",
     R"_(
        3A06001F "Oda"
        3A17001F "Cook"
        3A16001F "Inn"
        3004001F "note"
        3A51001F "http://a"
        3001001F "Oda")_"},
    {"PhoneNumbersInTheOrderOfTheirTypes",
     std::string(R"(LastName "B")") + kAllPhones,
     R"(3A11001F "B")" + std::string(kAllPhoneValues) + R"(
        3001001F "B")"},
    {"EmailsWithTheirTypesAndTheDefault",
     R"_(
        MiddleName "Q"
        Email "a@x"
        Email ""
        Email "b@x"
        Email "c@x"
        Email "d@x")_",
     R"_(
        3A44001F "Q"
        3A56101F ["a@x", "", "b@x", "c@x", "d@x"]
        3A54101F ["SMTP", "SMTP", "SMTP", "SMTP", "SMTP"]
        3A550003 0
        3001001F "Q")_"},
    {"AllAddressesTheBusinessBoxUnderTheTagOfTheState",
     std::string(R"(LastName "B")") + kAllAddresses,
     R"(3A11001F "B")" + std::string(kAllAddressValues) + R"(
        3001001F "B")"},
    {"DatesAsTheyStand",
     std::string(R"(LastName "B")") + kBothDates,
     R"(3A11001F "B")" + std::string(kBothDateValues) + R"(
        3001001F "B")"},
};

class WindowsContactCaseTest : public testing::TestWithParam<WritingCase>
{
};

TextLines ValuesOf(INContactItem& contact)
{
    PropertyArray values = WindowsContactProperties(contact);
    return TextOfValues(values.Count(), values.Get());
}
} // namespace

TEST_P(WindowsContactCaseTest, GivesTheseValuesInThisOrder)
{
    const auto contact = ContactOf(LinesOf(GetParam().contact));
    EXPECT_THAT(ValuesOf(*contact.Get()), ElementsAreArray(LinesOf(GetParam().values)));
}

INSTANTIATE_TEST_SUITE_P(Contacts,
                         WindowsContactCaseTest,
                         testing::ValuesIn(kCases),
                         [](const auto& one) { return one.param.name; });

TEST(WindowsContactWritingTest, ADateAroundTheFirstIsNone)
{
    const struct
    {
        DATE date;
        bool isWritten;
    } cases[] = {{0.0, false},
                 {9e-07, false},
                 {1e-06, true},
                 {-9e-06, false},
                 {-1e-05, true},
                 {-1.0, true},
                 // 9999-12-31 is the last day, 657435 before the first the first.
                 {2958466.0, false},
                 {-657436.0, false},
                 {std::numeric_limits<double>::quiet_NaN(), false},
                 {std::numeric_limits<double>::infinity(), false}};
    for (const auto& one : cases)
    {
        const auto contact = ContactOf(LinesOf(R"_(LastName "B")_"));
        contact->put_Birthday(one.date);
        contact->put_Anniversary(one.date);
        EXPECT_EQ(one.isWritten ? 4u : 2u, ValuesOf(*contact.Get()).size()) << one.date;
    }
}

// One value of each kind, and which of its lines go with a field that cannot be had. The display
// name is made of what is left.
TEST(WindowsContactWritingTest, AFieldThatCannotBeHadIsLeftOut)
{
    const TextLines contact = LinesOf(R"_(
        FirstName "Oda"
        MiddleName "Q"
        LastName "Bakken"
        JobTitle "Cook"
        CompanyName "Inn"
        Suffix "Jr."
        Notes "note"
        Phone1 "mobile"
        Email "a@x"
        Website "http://a"
        Home.City "H"
        Business.City "B"
        Other.City "O"
        Birthday 25569
        Anniversary 25570)_");
    const TextLines all = LinesOf(R"_(
        3A06001F "Oda"
        3A11001F "Bakken"
        3A44001F "Q"
        3A17001F "Cook"
        3A16001F "Inn"
        3004001F "note"
        3A1C001F "mobile"
        3A56101F ["a@x"]
        3A54101F ["SMTP"]
        3A550003 0
        3A51001F "http://a"
        3A59001F "H"
        3A27001F "B"
        3A5F001F "O"
        3A420040 116444736000000000
        3A410040 116445600000000000
        3A05001F "Jr.")_");
    const struct
    {
        const char* get;
        std::size_t line; // the first of those that go
        std::size_t lines;
        const char* displayName;
    } fields[] = {{"get FirstName", 0, 1, "BakkenQJr."},
                  {"get LastName", 1, 1, "OdaQJr."},
                  {"get MiddleName", 2, 1, "OdaBakkenJr."},
                  {"get JobTitle", 3, 1, "OdaBakkenQJr."},
                  {"get CompanyName", 4, 1, "OdaBakkenQJr."},
                  {"get Notes", 5, 1, "OdaBakkenQJr."},
                  {"get PhoneNumber 1", 6, 1, "OdaBakkenQJr."},
                  {"get Emails", 7, 3, "OdaBakkenQJr."},
                  {"get Website", 10, 1, "OdaBakkenQJr."},
                  {"get Address 0", 11, 1, "OdaBakkenQJr."},
                  {"get Address 1", 12, 1, "OdaBakkenQJr."},
                  {"get Address 2", 13, 1, "OdaBakkenQJr."},
                  {"get Birthday", 14, 1, "OdaBakkenQJr."},
                  {"get Anniversary", 15, 1, "OdaBakkenQJr."},
                  {"get Suffix", 16, 1, "OdaBakkenQ"}};
    for (const auto& field : fields)
    {
        const auto own = OwnContact::Make(ContactOf(contact));
        own->failing = {field.get};
        TextLines expected = all;
        const auto first = expected.begin() + static_cast<std::ptrdiff_t>(field.line);
        expected.erase(first, first + static_cast<std::ptrdiff_t>(field.lines));
        expected.push_back("3001001F \"" + std::string(field.displayName) + '"');
        EXPECT_EQ(expected, ValuesOf(*own.Get())) << field.get;
    }
}

TEST(WindowsContactWritingTest, AsksForTheFieldsInThisOrderAndPutsNone)
{
    const auto own = OwnContact::Make(ContactOf({}));
    ValuesOf(*own.Get());
    std::vector<std::string> expected = {"get FirstName",
                                         "get LastName",
                                         "get MiddleName",
                                         "get JobTitle",
                                         "get CompanyName",
                                         "get Notes"};
    for (int type = 0; type < 13; ++type)
        expected.push_back("get PhoneNumber " + std::to_string(type));
    for (const char* const get : {"get Emails",
                                  "get Website",
                                  "get Address 0",
                                  "get Address 1",
                                  "get Address 2",
                                  "get Birthday",
                                  "get Anniversary",
                                  "get Suffix"})
        expected.push_back(get);
    EXPECT_EQ(expected, own->calls);
}

TEST(WindowsContactWritingTest, EmailsInAnArrayOfAnotherKindCountAsNone)
{
    const auto contact = ContactOf(LinesOf(R"_(LastName "B")_"));
    const UniqueSafeArray numbers(SafeArrayCreateVector(VT_I4, 0, 3));
    SAFEARRAYBOUND bounds[2] = {{2, 0}, {2, 0}};
    const UniqueSafeArray square(SafeArrayCreate(VT_BSTR, 2, bounds));
    for (const UniqueSafeArray* const odd : {&numbers, &square})
    {
        contact->put_Emails(odd->Get());
        EXPECT_THAT(ValuesOf(*contact.Get()),
                    testing::ElementsAre("3A11001F \"B\"", "3001001F \"B\""));
    }
}

TEST(WindowsContactWritingTest, AnArrayOfNoEmailsWritesNothing)
{
    const auto contact = ContactOf(LinesOf(R"_(LastName "B")_"));
    SAFEARRAY* const empty = SafeArrayCreateVector(VT_BSTR, 0, 0);
    contact->put_Emails(empty);
    SafeArrayDestroy(empty);
    EXPECT_EQ(2u, ValuesOf(*contact.Get()).size());
}

// More values than a contact of one text each would have: the array grows.
TEST(WindowsContactWritingTest, ALongListOfEmailsIsWrittenWhole)
{
    TextLines lines = {"LastName \"B\""};
    for (int i = 0; i < 500; ++i)
        lines.push_back("Email \"a@x\"");
    const auto contact = ContactOf(lines);
    PropertyArray values = WindowsContactProperties(*contact.Get());
    ASSERT_EQ(5u, values.Count());
    EXPECT_EQ(500u, values[1].Value.MVszW.cValues);
    EXPECT_EQ(500u, values[2].Value.MVszW.cValues);
    EXPECT_STREQ(L"SMTP", values[2].Value.MVszW.lppszW[499]);
}
