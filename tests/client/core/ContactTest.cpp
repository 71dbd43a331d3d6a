#include "client/core/Contact.h"

#include "client/core/SampleContact.h"

#include <gmock/gmock.h>

using namespace pim;

using testing::ElementsAre;
using testing::IsEmpty;

TEST(ContactTest, IsCalledByTheFirstNameThatItHas)
{
    Contact contact = FullContact();
    EXPECT_EQ(NameOf(contact), L"Bakken Oda Marie");
    contact.displayName = L"";
    EXPECT_EQ(NameOf(contact), L"Oda Marie Bakken");
    contact.middleName.reset();
    EXPECT_EQ(NameOf(contact), L"Oda Bakken");
    contact.firstName = L"";
    contact.lastName = L"";
    EXPECT_EQ(NameOf(contact), L"Fjordlab");
    contact.company.reset();
    EXPECT_EQ(NameOf(contact), L"oda@example.org");
    contact.emails->clear();
    EXPECT_EQ(NameOf(contact), L"");
    EXPECT_EQ(NameOf(Contact()), L"");
}

TEST(ContactTest, StandsByNameWithNamelessOnesLast)
{
    const auto named = [](const wchar_t* name, const wchar_t* id) {
        Contact contact;
        contact.displayName = name;
        contact.id = id;
        return contact;
    };
    EXPECT_TRUE(ComesBefore(named(L"anna", L"9"), named(L"Bert", L"1")));
    EXPECT_FALSE(ComesBefore(named(L"Bert", L"1"), named(L"anna", L"9")));
    EXPECT_TRUE(ComesBefore(named(L"ANNA", L"1"), named(L"anna", L"2")));
    EXPECT_FALSE(ComesBefore(named(L"Anna", L"2"), named(L"anna", L"1")));
    EXPECT_TRUE(ComesBefore(named(L"zoe", L"2"), named(L"", L"1")));
    EXPECT_FALSE(ComesBefore(named(L"", L"1"), named(L"zoe", L"2")));
    EXPECT_FALSE(ComesBefore(named(L"", L"1"), named(L"", L"1")));
}

TEST(ContactTest, TakesOnlyWhatIsWished)
{
    Contact contact = FullContact();
    Apply(Contact(), contact);
    EXPECT_THAT(FieldsNotKept(Contact(), FullContact(), contact), IsEmpty());

    Contact wish;
    wish.company = L"";
    wish.emails.emplace();
    wish.birthday = kNoDay;
    wish.phones[3] = L"1";
    wish.addresses[0].emplace();
    wish.addresses[0]->state = L"";
    wish.addresses[1].emplace();
    wish.addresses[1]->street = L"Kai 1";
    wish.picture = L"";
    wish.id = L"another";
    wish.displayName = L"another";
    Apply(wish, contact);
    EXPECT_EQ(contact.company, L"");
    EXPECT_THAT(*contact.emails, IsEmpty());
    EXPECT_EQ(contact.birthday, kNoDay);
    EXPECT_EQ(contact.phones[3], L"1");
    EXPECT_EQ(contact.phones[2], L"+47 555 102");
    EXPECT_EQ(contact.addresses[0]->state, L"");
    EXPECT_EQ(contact.addresses[0]->street, L"Lia 8");
    EXPECT_EQ(contact.addresses[1]->street, L"Kai 1");
    EXPECT_EQ(contact.addresses[2]->city, L"Bergen");
    EXPECT_EQ(contact.picture, L"");
    EXPECT_EQ(contact.anniversary, kMay1 + 0.5);
    EXPECT_THAT(*contact.categories, ElementsAre(L"Business", L"Norway"));
    EXPECT_EQ(contact.id, L"00AB");
    EXPECT_EQ(contact.displayName, L"Bakken Oda Marie");
}

TEST(ContactTest, NamesEveryFieldThatAStoreDidNotKeep)
{
    Contact wanted = FullContact();
    wanted.addresses[1].emplace();
    wanted.addresses[1]->street = L"Kai 1";
    EXPECT_THAT(FieldsNotKept(Contact(), wanted, wanted), IsEmpty());
    EXPECT_THAT(FieldsNotKept(wanted, wanted, Contact()), IsEmpty());
    EXPECT_THAT(FieldsNotKept(Contact(), wanted, Contact()),
                ElementsAre(L"first-name",
                            L"middle-name",
                            L"last-name",
                            L"suffix",
                            L"company",
                            L"job-title",
                            L"im",
                            L"website",
                            L"notes",
                            L"birthday",
                            L"anniversary",
                            L"email",
                            L"category",
                            L"phone company",
                            L"phone mobile",
                            L"phone work",
                            L"phone work2",
                            L"phone home",
                            L"phone home2",
                            L"phone workFax",
                            L"phone homeFax",
                            L"phone pager",
                            L"phone other",
                            L"phone assistant",
                            L"phone car",
                            L"phone radio",
                            L"address home.street",
                            L"address home.postOfficeBox",
                            L"address home.postalCode",
                            L"address home.city",
                            L"address home.state",
                            L"address home.country",
                            L"address business.street",
                            L"address other.city",
                            L"picture"));
}

TEST(ContactTest, TakesAbsentAndEmptyForOne)
{
    Contact wanted;
    wanted.notes = L"";
    wanted.emails.emplace();
    wanted.birthday = kNoDay;
    wanted.picture = L"";
    wanted.addresses[0].emplace();
    wanted.addresses[0]->city = L"";
    EXPECT_THAT(FieldsNotKept(FullContact(), wanted, Contact()),
                testing::Not(testing::Contains(L"notes")));
    Contact before = FullContact();
    Contact cleared = before;
    cleared.suffix = L"";
    EXPECT_THAT(FieldsNotKept(before, cleared, before), ElementsAre(L"suffix"));
    Contact kept = before;
    kept.suffix.reset();
    EXPECT_THAT(FieldsNotKept(before, cleared, kept), IsEmpty());
}

TEST(ContactTest, TakesAnotherFileWithThePictureForThePicture)
{
    Contact wanted = FullContact();
    wanted.picture = L"C:\\mine.jpg";
    EXPECT_THAT(FieldsNotKept(Contact(), wanted, FullContact()), IsEmpty());
    Contact none = wanted;
    none.picture = L"";
    EXPECT_THAT(FieldsNotKept(wanted, none, FullContact()), ElementsAre(L"picture"));
}

TEST(ContactTest, ComparesDaysToTheSecond)
{
    Contact wanted;
    wanted.birthday = 30845.0;
    Contact kept = wanted;
    kept.birthday = 30845.0 + 0.4 / 86400;
    EXPECT_THAT(FieldsNotKept(Contact(), wanted, kept), IsEmpty());
    kept.birthday = 30845.0 + 1.0 / 86400;
    EXPECT_THAT(FieldsNotKept(Contact(), wanted, kept), ElementsAre(L"birthday"));
}
