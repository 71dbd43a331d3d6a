// What the values of a Windows contact mean for the item. Expected items were worked out by hand.
#include "windowscontacts/WindowsContactValues.h"

#include "outlook/contacts/ContactText.h"
#include "platform/Bstr.h"
#include "service/ItemAccess.h"
#include "windowscontacts/WindowsContactColumns.h"

#include <gmock/gmock.h>

#include <map>

using Microsoft::WRL::ComPtr;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

namespace
{
// Values by position; those that are not set are missing.
class Values
{
  public:
    Values()
    {
        for (const ULONG tag : WindowsContactColumnTags())
        {
            SPropValue value = {};
            value.ulPropTag = CHANGE_PROP_TYPE(tag, PT_ERROR);
            value.Value.err = MAPI_E_NOT_FOUND;
            m_values.push_back(value);
        }
    }
    SPropValue& At(ULONG position)
    {
        m_values[position].ulPropTag = WindowsContactColumnTags()[position];
        return m_values[position];
    }
    Values& Text(ULONG position, const wchar_t* text)
    {
        At(position).Value.lpszW = const_cast<wchar_t*>(text);
        return *this;
    }
    Values& Time(ULONG position, std::uint64_t time)
    {
        At(position).Value.ft = {static_cast<DWORD>(time), static_cast<DWORD>(time >> 32)};
        return *this;
    }

    ComPtr<INContactItem> Put(ULONG count = 45)
    {
        auto contact = ContactOf({});
        PutWindowsContactValues(*QueryItem<INEntityItem>(contact.Get()).Get(),
                                *contact.Get(),
                                PropertyView(count, m_values.data()));
        return contact;
    }

  private:
    std::vector<SPropValue> m_values;
};

// 25569 days are 1970-01-01.
constexpr std::uint64_t k1970 = 116444736000000000;
} // namespace

TEST(WindowsContactValuesTest, EveryPositionHasItsField)
{
    Values values;
    // Each text is its position.
    std::vector<std::wstring> texts;
    for (int i = 0; i < 45; ++i)
        texts.push_back(std::to_wstring(i));
    for (ULONG i = 1; i < 45; ++i)
        if (i != 22 && PROP_TYPE(WindowsContactColumnTags()[i]) == PT_UNICODE)
            values.Text(i, texts[i].c_str());
    const wchar_t* emails[] = {L"a@x", L"", L"c@x"};
    values.At(19).Value.MVszW = {3, const_cast<LPWSTR*>(emails)};
    values.Time(0, k1970).Time(42, k1970).Time(43, k1970 + 864'000'000'000);

    const auto contact = values.Put();
    EXPECT_THAT(TextOfContact(contact.Get()), testing::UnorderedElementsAreArray(LinesOf(R"_(
        FirstName "1"
        LastName "2"
        MiddleName "3"
        JobTitle "4"
        CompanyName "5"
        Phone0 "6"
        Phone1 "7"
        Phone2 "8"
        Phone3 "9"
        Phone4 "10"
        Phone5 "11"
        Phone6 "12"
        Phone7 "13"
        Phone8 "14"
        Phone9 "15"
        Phone10 "16"
        Phone11 "17"
        Phone12 "18"
        Email "a@x"
        Email ""
        Email "c@x"
        Website "23"
        Home.Country "24"
        Home.StateOrProvince "25"
        Home.City "26"
        Home.Street "27"
        Home.PostalCode "28"
        Home.PostOfficeBox "29"
        Business.Country "30"
        Business.StateOrProvince "31"
        Business.City "32"
        Business.Street "33"
        Business.PostalCode "34"
        Business.PostOfficeBox "35"
        Other.Country "36"
        Other.StateOrProvince "37"
        Other.City "38"
        Other.Street "39"
        Other.PostalCode "40"
        Other.PostOfficeBox "41"
        Birthday 25569
        Anniversary 25570
        Suffix "44")_")));
    DATE modified = 0.0;
    QueryItem<INEntityItem>(contact.Get())->get_LastModificationTime(&modified);
    EXPECT_EQ(25569.0, modified);
}

TEST(WindowsContactValuesTest, MissingValuesLeaveTheirFieldsAlone)
{
    EXPECT_THAT(TextOfContact(Values().Put().Get()), IsEmpty());
    SAFEARRAY* emails = nullptr;
    EXPECT_EQ(E_FAIL, Values().Put()->get_Emails(&emails));
    _tagNAddress address = {};
    EXPECT_EQ(E_FAIL, Values().Put()->get_Address(HomeAddress, &address));
}

TEST(WindowsContactValuesTest, ThePersonalPageIsPreferred)
{
    EXPECT_THAT(TextOfContact(Values().Text(22, L"own").Text(23, L"work").Put().Get()),
                ElementsAre("Website \"own\""));
    EXPECT_THAT(TextOfContact(Values().Text(22, L"own").Put().Get()),
                ElementsAre("Website \"own\""));
    EXPECT_THAT(TextOfContact(Values().Text(23, L"work").Put().Get()),
                ElementsAre("Website \"work\""));
    // One that is there but empty is there.
    EXPECT_THAT(TextOfContact(Values().Text(22, L"").Text(23, L"work").Put().Get()),
                ElementsAre("Website \"\""));
}

TEST(WindowsContactValuesTest, AnAddressNeedsOneOfItsFields)
{
    const auto contact = Values().Text(35, L"7").Put();
    EXPECT_THAT(TextOfContact(contact.Get()), ElementsAre("Business.PostOfficeBox \"7\""));
    _tagNAddress address = {};
    EXPECT_EQ(E_FAIL, contact->get_Address(HomeAddress, &address));
    EXPECT_EQ(E_FAIL, contact->get_Address(OtherAddress, &address));
    ASSERT_EQ(S_OK, contact->get_Address(BusinessAddress, &address));
    EXPECT_EQ(nullptr, address.City);
    SysFreeString(address.PostOfficeBox);
}

TEST(WindowsContactValuesTest, AnEmptyListOfEmailsIsThere)
{
    Values values;
    values.At(19).Value.MVszW = {0, nullptr};
    SAFEARRAY* emails = nullptr;
    ASSERT_EQ(S_OK, values.Put()->get_Emails(&emails));
    EXPECT_EQ(0u, emails->rgsabound[0].cElements);
    SafeArrayDestroy(emails);
}

TEST(WindowsContactValuesTest, WhatHasAnotherTypeIsMissing)
{
    Values values;
    for (ULONG i = 0; i < 45; ++i)
    {
        values.At(i).ulPropTag = CHANGE_PROP_TYPE(WindowsContactColumnTags()[i], PT_LONG);
        values.At(i).ulPropTag = CHANGE_PROP_TYPE(WindowsContactColumnTags()[i], PT_I8);
    }
    EXPECT_THAT(TextOfContact(values.Put().Get()), IsEmpty());
}

TEST(WindowsContactValuesTest, FewerValuesThanAskedForAreRead)
{
    Values values;
    values.Text(1, L"Oda").Text(44, L"Jr.");
    EXPECT_THAT(TextOfContact(values.Put(44).Get()), ElementsAre("FirstName \"Oda\""));
    EXPECT_THAT(TextOfContact(values.Put(1).Get()), IsEmpty());
    EXPECT_THAT(TextOfContact(values.Put(0).Get()), IsEmpty());
}
