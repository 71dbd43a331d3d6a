// The calls of the contact object that name a property by a number.
#include "support/Dispatch.h"
#include "tests/automation/ContactFixture.h"

#include <string>

using Microsoft::WRL::ComPtr;

namespace
{
// What each string index stands for, in the numbers that clients use.
const struct
{
    LONG index;
    const char* property;
    bool settable;
} kStringIndexes[] = {
    {0x436F6D70, "CompanyName", true},
    {0x456E7472, "PersistentID", false},
    {0x46697273, "FirstName", true},
    {0x47726F75, "GroupID", true},
    {0x496E7374, "InstantMessagingAddress", true},
    {0x4A6F6254, "JobTitle", true},
    {0x4B657949, "PersistentID", true},
    {0x4C617374, "LastName", true},
    {0x4D696464, "MiddleName", true},
    {0x4E6F7465, "Notes", true},
    {0x50657273, "PersistentID", true},
    {0x50696374, "Picture", true},
    {0x53756666, "Suffix", true},
    {0x57656273, "Website", true},
};

// None of them is an index: zero, "Disp", "Pare", "comp", "COMP", "Comq", "pmoC", "Anni", "Birt",
// and the highest and lowest numbers.
constexpr LONG kNoStringIndexes[] = {0,
                                     0x44697370,
                                     0x50617265,
                                     0x636F6D70,
                                     0x434F4D50,
                                     0x436F6D71,
                                     0x706D6F43,
                                     0x416E6E69,
                                     0x42697274,
                                     0x7FFFFFFF,
                                     static_cast<LONG>(0x80000000),
                                     -1};

constexpr LONG kCompany = 0x436F6D70;
constexpr LONG kAnni = 0x416E6E69;
constexpr LONG kBirt = 0x42697274;
constexpr LONG kLast = 0x4C617374;
constexpr LONG kEntr = 0x456E7472;
constexpr LONG kPers = 0x50657273;

class ContactIndexTest : public ContactFixture
{
  protected:
    Bstr TextAt(LONG index)
    {
        BSTR text = nullptr;
        EXPECT_EQ(S_OK, m_contact->GetStringByIndex(index, &text)) << std::hex << index;
        return Bstr::Adopt(text);
    }
};
} // namespace

TEST_F(ContactIndexTest, EveryStringIndexGivesItsProperty)
{
    PutOwnTexts(m_contact.Get());
    for (const auto& row : kStringIndexes)
    {
        const std::string name = row.property;
        EXPECT_EQ(L"only " + std::wstring(name.begin(), name.end()), TextAt(row.index).View());
    }
}

TEST_F(ContactIndexTest, EveryStringIndexSetsItsPropertyAndNoOther)
{
    for (const auto& row : kStringIndexes)
    {
        SCOPED_TRACE(row.property);
        PutOwnTexts(m_contact.Get());
        const Contact& target = TextNamed(row.property);
        const Bstr value({L"set\0cut", 7});
        if (!row.settable)
        {
            EXPECT_EQ(E_NOTIMPL, m_contact->SetStringByIndex(row.index, value.Get()));
            EXPECT_EQ(E_NOTIMPL, m_contact->SetStringByIndex(row.index, nullptr));
        }
        else
        {
            EXPECT_EQ(S_OK, m_contact->SetStringByIndex(row.index, value.Get()));
            EXPECT_EQ(L"set", Get(target, m_contact.Get()).View());
            // Null stands for an empty text, also where the property itself refuses null.
            EXPECT_EQ(S_OK, m_contact->SetStringByIndex(row.index, nullptr));
            const Bstr empty = Get(target, m_contact.Get());
            EXPECT_TRUE(empty);
            EXPECT_EQ(L"", empty.View());
            PutOwnTexts(std::initializer_list<Contact>{target}, m_contact.Get());
        }
        ExpectOwnTexts(m_contact.Get());
    }
}

TEST_F(ContactIndexTest, TheEntryIdCanBeReadByIndexButNotSet)
{
    EXPECT_EQ(S_OK, m_entity->put_EntityID(Bstr(L"id").Get()));
    EXPECT_EQ(L"id", TextAt(kEntr).View());
    EXPECT_EQ(E_NOTIMPL, m_contact->SetStringByIndex(kEntr, Bstr(L"other").Get()));
    EXPECT_EQ(L"id", TextAt(kEntr).View());
}

TEST_F(ContactIndexTest, ATextThatIsNullIsNullByIndexToo)
{
    for (const auto& row : kStringIndexes)
        EXPECT_FALSE(TextAt(row.index)) << row.property;
}

TEST_F(ContactIndexTest, StringIndexesThatAreNoneAreRefused)
{
    for (const LONG index : kNoStringIndexes)
    {
        const Bstr leftOver(L"left over");
        BSTR out = leftOver.Get();
        EXPECT_EQ(E_NOTIMPL, m_contact->GetStringByIndex(index, &out)) << std::hex << index;
        EXPECT_EQ(leftOver.Get(), out);
        EXPECT_EQ(E_NOTIMPL, m_contact->SetStringByIndex(index, leftOver.Get()))
            << std::hex << index;
    }
    EXPECT_EQ(E_INVALIDARG, m_contact->GetStringByIndex(kCompany, nullptr));
}

TEST_F(ContactIndexTest, ValueIndexesReadAndSetTheDates)
{
    EXPECT_EQ(S_OK, m_contact->put_Anniversary(1.5));
    EXPECT_EQ(S_OK, m_contact->put_Birthday(2.5));
    EXPECT_EQ(S_OK, m_entity->put_LastModificationTime(3.5));
    const struct
    {
        LONG index;
        DATE before;
        DATE after;
    } rows[] = {{kAnni, 1.5, 10.25}, {kBirt, 2.5, 20.25}, {kLast, 3.5, 30.25}};
    for (const auto& row : rows)
    {
        Variant value;
        EXPECT_EQ(S_OK, m_contact->GetPropertyValue(row.index, value.Get()));
        EXPECT_EQ(VT_DATE, value.Type());
        EXPECT_EQ(row.before, value.Value().date);
        value.Get()->date = row.after;
        EXPECT_EQ(S_OK, m_contact->SetPropertyValue(row.index, value.Get()));
    }
    EXPECT_EQ(10.25, Get(kAnniversary, m_contact.Get()));
    EXPECT_EQ(20.25, Get(kBirthday, m_contact.Get()));
    EXPECT_EQ(30.25, Get(kModified, m_entity.Get()));
}

TEST_F(ContactIndexTest, TheIndexOfTheLastNameIsAlsoThatOfTheModificationTime)
{
    EXPECT_EQ(S_OK, m_contact->put_LastName(Bstr(L"Ng").Get()));
    EXPECT_EQ(S_OK, m_entity->put_LastModificationTime(4.0));
    EXPECT_EQ(L"Ng", TextAt(kLast).View());
    Variant value;
    EXPECT_EQ(S_OK, m_contact->GetPropertyValue(kLast, value.Get()));
    EXPECT_EQ(4.0, value.Value().date);
}

TEST_F(ContactIndexTest, ValueIndexesThatAreNoneAreRefused)
{
    for (const LONG index : {0L, kCompany, kPers, kAnni + 1, 0x616E6E69L, 0x7FFFFFFFL, -1L})
    {
        Variant value = Variant::Date(9.0);
        EXPECT_EQ(E_NOTIMPL, m_contact->GetPropertyValue(index, value.Get())) << std::hex << index;
        EXPECT_EQ(E_NOTIMPL, m_contact->SetPropertyValue(index, value.Get())) << std::hex << index;
        EXPECT_EQ(9.0, value.Value().date);
        Variant number(5L);
        EXPECT_EQ(E_NOTIMPL, m_contact->GetPropertyValue(index, number.Get()));
        EXPECT_EQ(VT_I4, number.Type()); // an output is written on success only
    }
}

TEST_F(ContactIndexTest, ADateMustComeAsADate)
{
    EXPECT_EQ(S_OK, m_contact->put_Birthday(2.5));
    DATE date = 9.0;
    Variant wrong[] = {Variant(L"2.5.1970"),
                       Variant(9.0),
                       Variant(9L),
                       Variant(),
                       Variant::Reference(VT_DATE, &date),
                       Variant::Reference(VT_VARIANT, Variant::Date(9.0).Get())};
    for (Variant& value : wrong)
        for (const LONG index : {kAnni, kBirt, kLast})
            EXPECT_EQ(E_INVALIDARG, m_contact->SetPropertyValue(index, value.Get()))
                << value.Type();
    for (const LONG index : {kAnni, kBirt, kLast})
    {
        EXPECT_EQ(E_INVALIDARG, m_contact->SetPropertyValue(index, nullptr));
        EXPECT_EQ(E_INVALIDARG, m_contact->GetPropertyValue(index, nullptr));
    }
    EXPECT_EQ(2.5, Get(kBirthday, m_contact.Get()));
    EXPECT_EQ(0.0, Get(kAnniversary, m_contact.Get()));
    EXPECT_EQ(0.0, Get(kModified, m_entity.Get()));
}
