#include "outlook/contacts/ContactValues.h"

#include "outlook/contacts/ContactFields.h"
#include "outlook/contacts/ContactText.h"
#include "outlook/contacts/OwnContact.h"
#include "platform/Bstr.h"
#include "platform/SafeArray.h"
#include "service/ItemAccess.h"
#include "support/DebugOutputCapture.h"
#include "support/TestZone.h"
#include "tests/automation/CollectionFixture.h"
#include "tests/automation/ItemProperties.h"

#include <gmock/gmock.h>

#include <array>
#include <deque>

using Microsoft::WRL::ComPtr;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{
// 100 ns since 1601, which is DATE -109205.
constexpr std::uint64_t kUnitsPerHour = 36'000'000'000;
constexpr std::uint64_t UnitsOf(int date)
{
    return static_cast<std::uint64_t>(date + 109205) * 24 * kUnitsPerHour;
}

// The values of a message that has none of them, until a test gives it some.
class Values
{
  public:
    Values()
    {
        for (SPropValue& value : m_values)
        {
            value.ulPropTag = PT_ERROR;
            value.Value.err = MAPI_E_NOT_FOUND;
        }
    }
    Values& Text(ULONG position, const wchar_t* text)
    {
        return Set(position, 0x3A06001F).Value.lpszW = const_cast<wchar_t*>(text), *this;
    }
    Values& Time(ULONG position, std::uint64_t units)
    {
        FILETIME& time = Set(position, 0x30080040).Value.ft;
        time.dwLowDateTime = static_cast<DWORD>(units);
        time.dwHighDateTime = static_cast<DWORD>(units >> 32);
        return *this;
    }
    Values& Texts(ULONG position, std::vector<const wchar_t*> texts)
    {
        auto& kept = m_lists.emplace_back(std::move(texts));
        Set(position, 0x8000101F).Value.MVszW = {static_cast<ULONG>(kept.size()),
                                                 const_cast<wchar_t**>(kept.data())};
        return *this;
    }
    SPropValue& Set(ULONG position, ULONG tag)
    {
        m_values[position].ulPropTag = tag;
        return m_values[position];
    }
    PropertyView View(ULONG count = 61) const { return {count, m_values.data()}; }

  private:
    std::array<SPropValue, 61> m_values = {};
    std::deque<std::vector<const wchar_t*>> m_lists;
};

class ContactValuesTest : public testing::Test
{
  protected:
    TextLines Put(bool hasLocalDates = true, double biasDays = 0.0, ULONG count = 61)
    {
        PutContactValues(*QueryItem<INEntityItem>(contact.Get()).Get(),
                         *contact.Get(),
                         values.View(count),
                         hasLocalDates,
                         biasDays);
        return TextOfContact(contact.Get());
    }
    DATE Modified()
    {
        DATE time = -1.0;
        QueryItem<INEntityItem>(contact.Get())->get_LastModificationTime(&time);
        return time;
    }

    Values values;
    ComPtr<INContactItem> contact = CreateObject<INContactItem>(CLSID_NContactItem);
};
} // namespace

TEST_F(ContactValuesTest, WhatIsAbsentIsNotSet)
{
    contact->put_FirstName(Bstr(L"kept").Get());
    EXPECT_THAT(Put(), ElementsAre("FirstName \"kept\""));
    EXPECT_EQ(0.0, Modified());
    // Nor is what was not delivered.
    values.Text(2, L"Public");
    EXPECT_THAT(Put(true, 0.0, 2), ElementsAre("FirstName \"kept\""));
    EXPECT_THAT(Put(true, 0.0, 3), ElementsAre("FirstName \"kept\"", "LastName \"Public\""));
}

// The order of the columns is another one.
TEST_F(ContactValuesTest, FieldsAreSetInThisOrder)
{
    for (ULONG i = 0; i < 61; ++i)
        values.Text(i, L"a");
    for (const ULONG time : {0, 51, 52, 59, 60})
        values.Time(time, UnitsOf(36526));
    const auto own = OwnContact::Make(contact);
    PutContactValues(*own.Get(), *own.Get(), values.View(), true, 0.0);
    std::vector<std::string> expected = {"put LastModificationTime",
                                         "put FirstName",
                                         "put LastName",
                                         "put MiddleName",
                                         "put JobTitle",
                                         "put CompanyName",
                                         "put InstantMessagingAddress"};
    for (int type = 0; type < 13; ++type)
        expected.push_back("put PhoneNumber " + std::to_string(type));
    for (const char* const put : {"put Emails",
                                  "put Website",
                                  "put DisplayName",
                                  "put Address 0",
                                  "put Address 1",
                                  "put Address 2",
                                  "put Birthday",
                                  "put Anniversary",
                                  "put Suffix"})
        expected.push_back(put);
    EXPECT_EQ(expected, own->calls);
}

// Each by itself: a field that refuses its value keeps nothing from the others.
TEST_F(ContactValuesTest, AFieldThatRefusesIsPassedOver)
{
    for (ULONG i = 0; i < 61; ++i)
        values.Text(i, L"a");
    const auto all = OwnContact::Make(CreateObject<INContactItem>(CLSID_NContactItem));
    PutContactValues(*all.Get(), *all.Get(), values.View(), true, 0.0);
    for (const std::string& refused : all->calls)
    {
        const auto own = OwnContact::Make(CreateObject<INContactItem>(CLSID_NContactItem));
        own->failing = {refused};
        PutContactValues(*own.Get(), *own.Get(), values.View(), true, 0.0);
        EXPECT_EQ(all->calls, own->calls) << refused;
    }
}

TEST_F(ContactValuesTest, EveryTextHasItsField)
{
    values.Text(1, L"John").Text(2, L"Public").Text(3, L"Q").Text(4, L"Clerk").Text(5, L"Acme");
    values.Text(6, L"john@im").Text(32, L"http://a").Text(53, L"Jr.").Text(58, L"J. P.");
    // What is asked for and not read.
    for (const ULONG position : {20, 21, 24, 25, 28, 29, 54, 55, 56})
        values.Text(position, L"unread");
    values.Text(23, L"unread").Text(27, L"unread").Text(31, L"unread");
    EXPECT_THAT(Put(),
                ElementsAre("FirstName \"John\"",
                            "MiddleName \"Q\"",
                            "LastName \"Public\"",
                            "Suffix \"Jr.\"",
                            "DisplayName \"J. P.\"",
                            "JobTitle \"Clerk\"",
                            "CompanyName \"Acme\"",
                            "InstantMessagingAddress \"john@im\"",
                            "Website \"http://a\""));
}

TEST_F(ContactValuesTest, TheDisplayNameNeedsNoOtherName)
{
    values.Text(58, L"Only shown");
    EXPECT_THAT(Put(), ElementsAre("DisplayName \"Only shown\""));
}

TEST_F(ContactValuesTest, AnEmptyTextIsAText)
{
    values.Text(1, L"");
    EXPECT_THAT(Put(), ElementsAre("FirstName \"\""));
}

TEST_F(ContactValuesTest, EveryPhoneNumberHasItsType)
{
    static constexpr const wchar_t* kNumbers[] = {L"n0",
                                                  L"n1",
                                                  L"n2",
                                                  L"n3",
                                                  L"n4",
                                                  L"n5",
                                                  L"n6",
                                                  L"n7",
                                                  L"n8",
                                                  L"n9",
                                                  L"n10",
                                                  L"n11",
                                                  L"n12"};
    for (ULONG type = 0; type < 13; ++type)
        values.Text(7 + type, kNumbers[type]);
    TextLines expected;
    for (int type = 0; type < 13; ++type)
        expected.push_back("Phone" + std::to_string(type) + " \"n" + std::to_string(type) + "\"");
    EXPECT_EQ(expected, Put());
}

TEST_F(ContactValuesTest, EmailsStandWithoutGaps)
{
    values.Text(22, L"a@b").Text(30, L"c@d");
    EXPECT_THAT(Put(), ElementsAre("Email \"a@b\"", "Email \"c@d\""));
}

TEST_F(ContactValuesTest, AnExchangeAddressGivesTheTextItWasEnteredAs)
{
    values.Text(22, L"/o=Acme/ou=X/cn=John").Text(23, L"john@acme");
    values.Text(26, L"b@c").Text(27, L"unread");
    values.Text(30, L"/o=Acme/cn=Jane").Text(31, L"jane@acme");
    EXPECT_THAT(Put(), ElementsAre("Email \"john@acme\"", "Email \"b@c\"", "Email \"jane@acme\""));
}

TEST_F(ContactValuesTest, AnExchangeAddressWithoutThatTextIsDropped)
{
    values.Text(22, L"/o=Acme/cn=John").Text(26, L"/o=Acme/cn=Jane").Text(27, L"jane@acme");
    values.Text(30, L"c@d");
    EXPECT_THAT(Put(), ElementsAre("Email \"jane@acme\"", "Email \"c@d\""));
}

// The test has no anchor, and no other letter case.
TEST_F(ContactValuesTest, TheMarkOfAnExchangeAddressMayStandAnywhere)
{
    values.Text(22, L"john/office@acme").Text(23, L"as entered");
    values.Text(26, L"john@acme/o").Text(27, L"as entered too");
    values.Text(30, L"/O=Acme").Text(31, L"unread");
    EXPECT_THAT(
        Put(),
        ElementsAre("Email \"as entered\"", "Email \"as entered too\"", "Email \"/O=Acme\""));
}

TEST_F(ContactValuesTest, WithoutAnAddressThereIsNoList)
{
    values.Text(22, L"/o=Acme/cn=John").Text(20, L"John");
    EXPECT_THAT(Put(), IsEmpty());
    SAFEARRAY* emails = nullptr;
    EXPECT_EQ(E_FAIL, contact->get_Emails(&emails));
}

TEST_F(ContactValuesTest, EveryAddressHasItsFields)
{
    const wchar_t* const texts[] = {L"country", L"state", L"city", L"street", L"code", L"box"};
    for (ULONG i = 0; i < 6; ++i)
        values.Text(33 + i, texts[i]).Text(39 + i, texts[i]).Text(45 + i, texts[i]);
    TextLines expected;
    for (const char* const kind : {"Home.", "Business.", "Other."})
        for (const char* const field : {"Country \"country\"",
                                        "StateOrProvince \"state\"",
                                        "City \"city\"",
                                        "Street \"street\"",
                                        "PostOfficeBox \"box\"",
                                        "PostalCode \"code\""})
            expected.push_back(std::string(kind) + field);
    EXPECT_EQ(expected, Put());
}

TEST_F(ContactValuesTest, OneFieldMakesAnAddress)
{
    values.Text(38, L"12").Text(42, L"Main St").Text(45, L"Japan");
    EXPECT_THAT(Put(),
                ElementsAre("Home.PostOfficeBox \"12\"",
                            "Business.Street \"Main St\"",
                            "Other.Country \"Japan\""));
}

TEST_F(ContactValuesTest, AnAddressOfWhichAllIsAbsentIsNotSet)
{
    values.Text(41, L"Bonn");
    Put();
    _tagNAddress address = {};
    EXPECT_EQ(E_FAIL, contact->get_Address(HomeAddress, &address));
    EXPECT_EQ(E_FAIL, contact->get_Address(OtherAddress, &address));
}

// 32874 is 1990-01-01, 36526 is 2000-01-01.
TEST_F(ContactValuesTest, LocalDatesGoBeforeTheOthers)
{
    values.Time(51, UnitsOf(32873)).Time(52, UnitsOf(36525));
    values.Time(59, UnitsOf(32874)).Time(60, UnitsOf(36526));
    EXPECT_THAT(Put(true, 0.25), ElementsAre("Birthday 32874", "Anniversary 36526"));
}

TEST_F(ContactValuesTest, EachDateIsReplacedByItself)
{
    // Six hours west of UTC: local midnight is six o'clock there.
    values.Time(51, UnitsOf(32874) + 6 * kUnitsPerHour).Time(60, UnitsOf(36526));
    EXPECT_THAT(Put(true, 0.25), ElementsAre("Birthday 32874", "Anniversary 36526"));
    values.Time(59, UnitsOf(32870)).Time(52, UnitsOf(36530) + 6 * kUnitsPerHour);
    values.Set(60, PT_ERROR);
    EXPECT_THAT(Put(true, 0.25), ElementsAre("Birthday 32870", "Anniversary 36530"));
}

TEST_F(ContactValuesTest, WithoutThemTheZoneIsTakenOff)
{
    values.Time(59, UnitsOf(1)).Time(60, UnitsOf(1)); // asked by nobody
    // Twelve hours east, and three and a half west.
    values.Time(51, UnitsOf(32873) + 12 * kUnitsPerHour);
    values.Time(52, UnitsOf(36525) + 12 * kUnitsPerHour);
    EXPECT_THAT(Put(false, -0.5), ElementsAre("Birthday 32874", "Anniversary 36526"));
    values.Time(51, UnitsOf(32874) + 7 * kUnitsPerHour / 2);
    values.Time(52, UnitsOf(36526) + 7 * kUnitsPerHour / 2);
    Put(false, 210 / 60.0 / 24.0);
    DATE date = 0.0;
    contact->get_Birthday(&date);
    EXPECT_NEAR(32874.0, date, 1e-9);
    contact->get_Anniversary(&date);
    EXPECT_NEAR(36526.0, date, 1e-9);
}

// Also while saving is in force: the tests run in a zone of each half of the world.
TEST(ZoneBiasTest, IsThatOfTheSystemWithoutDaylightSaving)
{
    EXPECT_EQ(TestZoneBiasDays(), ZoneBiasDays());
}

// 2024-01-01 06:00.
TEST_F(ContactValuesTest, TheTimeOfTheLastChangeStaysUtc)
{
    values.Time(0, UnitsOf(45292) + 6 * kUnitsPerHour);
    Put(true, 0.5);
    EXPECT_EQ(45292.25, Modified());
}

TEST_F(ContactValuesTest, CategoriesKeepTheirOrder)
{
    values.Texts(57, {L"Friends", L"", L"\u5C71"});
    PutContactCategories(*contact.Get(), values.View());
    EXPECT_THAT(TextOfContact(contact.Get()),
                ElementsAre("Category \"Friends\"", "Category \"\"", "Category \"\\x5C71\""));
    EXPECT_THAT(Put(), testing::SizeIs(3)); // not touched by the other values
}

TEST_F(ContactValuesTest, WithoutCategoriesThereIsNoList)
{
    SAFEARRAY* categories = nullptr;
    PutContactCategories(*contact.Get(), values.View());
    EXPECT_EQ(E_FAIL, contact->get_CategoryIDs(&categories));
    values.Texts(57, {});
    PutContactCategories(*contact.Get(), values.View());
    EXPECT_EQ(E_FAIL, contact->get_CategoryIDs(&categories));
}

TEST_F(ContactValuesTest, ValuesOfAnotherTypeAreAbsent)
{
    for (ULONG position = 0; position < 61; ++position)
    {
        values.Set(position, 0x3A060003).Value.bin = {16, reinterpret_cast<BYTE*>(16)};
    }
    EXPECT_THAT(Put(), IsEmpty());
    PutContactCategories(*contact.Get(), values.View());
    EXPECT_THAT(TextOfContact(contact.Get()), IsEmpty());
    // Nor does a null harm.
    for (ULONG position = 1; position < 51; ++position)
        values.Text(position, nullptr);
    values.Texts(57, {nullptr});
    EXPECT_THAT(Put(), IsEmpty());
    PutContactCategories(*contact.Get(), values.View());
    EXPECT_THAT(TextOfContact(contact.Get()), ElementsAre("Category \"\""));
    values.Set(57, 0x8000101F).Value.MVszW = {5, nullptr};
    EXPECT_THAT(values.View().Texts(57), IsEmpty());
}

TEST_F(ContactValuesTest, FirstAndLastNameAreLogged)
{
    values.Text(1, L"John %s").Text(2, L"Public").Text(3, L"Q");
    const ScopedLogSettings settings;
    DebugOutputCapture capture;
    Put();
    EXPECT_THAT(capture.TakeLogMessages(),
                ElementsAre("===put_FirstName:John %s", "===put_LastName:Public"));
}

TEST_F(ContactValuesTest, AbsentNamesAreNotLogged)
{
    values.Text(3, L"Q");
    const ScopedLogSettings settings;
    DebugOutputCapture capture;
    Put();
    EXPECT_THAT(capture.TakeLogMessages(), IsEmpty());
}

TEST(TextArrayTest, HoldsTheTextsInTheirOrder)
{
    const std::wstring texts[] = {L"b", L"", L"a"};
    const UniqueSafeArray array(NewTextArray(texts));
    EXPECT_THAT(TextsOf(array.Get()), ElementsAre(L"b", L"", L"a"));
    const UniqueSafeArray none(NewTextArray({}));
    EXPECT_THAT(TextsOf(none.Get()), IsEmpty());
}
