// What contacts become in the store; the whole lists stand in ContactWritingCases.h.
#include "outlook/contacts/ContactWriting.h"

#include "outlook/contacts/ContactTableFixture.h"
#include "outlook/contacts/ContactWritingCases.h"
#include "outlook/contacts/OwnContact.h"
#include "platform/SafeArray.h"

#include <gmock/gmock.h>

#include <cmath>
#include <fstream>
#include <limits>

using Microsoft::WRL::ComPtr;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;
using Lines = std::vector<std::string>;

namespace
{
class ContactWritingTest : public ContactTableTest
{
  protected:
    ContactWritingTest() { AddContact("ann", "contacts"); }
    ~ContactWritingTest() override { message.Reset(); }

    Lines Write(INContactItem* contact, bool isNew = false, const ContactSettings& settings = {})
    {
        if (!folder)
            Open();
        if (!message)
            message = OpenMessage("ann");
        store.ClearRecord();
        if (!failing.empty())
            store.FailNext(failing, fault);
        PropertyArray values =
            ContactProperties(*contact, isNew, settings, {*folder.Get(), message.Get(), Proxy()});
        return TextOfValues(values.Count(), values.Get());
    }
    Lines Write(const std::string& contact, bool isNew = false)
    {
        return Write(ContactOf(LinesOf(contact)).Get(), isNew);
    }
    // Only these names are known.
    void Know(const std::vector<LONG>& names)
    {
        message.Reset();
        Close();
        store.Reset();
        store.AddUsualFolders();
        for (const LONG name : names)
            store.NameProperty(kAddressNames, name);
        AddContact("ann", "contacts");
    }

    ComPtr<IMessage> message;
    std::string failing;
    StoreFault fault = StoreFault::CallFailed;
};

class ContactWritingCaseTest : public ContactWritingTest,
                               public testing::WithParamInterface<WritingCase>
{
};
} // namespace

TEST_P(ContactWritingCaseTest, GivesTheValuesInTheirOrder)
{
    const WritingCase& one = GetParam();
    const auto contact = ContactOf(LinesOf(one.contact));
    const ContactSettings settings = {{one.order, one.style}, one.biasMinutes / 60.0 / 24.0};
    EXPECT_EQ(LinesOf(one.values), Write(contact.Get(), one.isNew, settings));
    // The item is as it was.
    EXPECT_EQ(TextOfContact(ContactOf(LinesOf(one.contact)).Get()), TextOfContact(contact.Get()));
}

INSTANTIATE_TEST_SUITE_P(Items,
                         ContactWritingCaseTest,
                         testing::ValuesIn(kWritingCases),
                         [](const auto& one) { return std::string(one.param.name); });

TEST(ContactWritingCasesTest, AreAtLeastForty)
{
    EXPECT_GE(std::size(kWritingCases), 40u);
}

// --- Names that the store does not know --------------------------------------------------------

TEST_F(ContactWritingTest, WithoutNamesTheirPropertiesAreNotWritten)
{
    Know({});
    EXPECT_EQ(LinesOf(R"_(
        3A17001F ""
        3A16001F ""
        3A28001F "NW"
        3A420040 116444736000000000
        3001001F ""
        0037001F ""
        10800003 512)_"),
              Write(R"_(
        InstantMessagingAddress "im"
        Email "a@b"
        Business.StateOrProvince "NW"
        Birthday 25569
        Category "Friends")_"));
}

TEST_F(ContactWritingTest, EachPropertyOfAnEmailIsWrittenByItself)
{
    Know({0x8083, 0x8082, 0x8029, 0x8028}); // 8000 to 8003
    EXPECT_THAT(Write(R"_(Email "a@b")_"),
                testing::IsSupersetOf(
                    {"8000001F \"a@b\"", "8001001F \"SMTP\"", "80020003 1", "80031003 [0]"}));
    // Without its address a slot is not used.
    Know({0x8080, 0x8093, 0x8029, 0x8028});
    const Lines values = Write("Email \"a@b\"\nEmail \"c@d\"");
    EXPECT_THAT(values,
                testing::IsSupersetOf(
                    {"8000001F \" (a@b)\"", "8001001F \"c@d\"", "80020003 2", "80031003 [1]"}));
    Know({0x8080, 0x8029, 0x8028});
    EXPECT_THAT(Write(R"_(Email "a@b")_"), Not(Contains(StartsWith("8001"))));
}

TEST_F(ContactWritingTest, AFailedLookupOfTheBusinessAddressLeavesItOut)
{
    failing = "IMessage(ann).GetIDsFromNames";
    EXPECT_THAT(Write(R"_(Business.City "Bonn")_"), testing::SizeIs(7));
    failing = "IMessage(ann).QueryInterface(IMAPIProp)";
    EXPECT_THAT(Write(R"_(Business.City "Bonn")_"), Contains("3A27001F \"Bonn\""));
}

TEST_F(ContactWritingTest, AFailedLookupLeavesOutWhatNeedsIt)
{
    failing = "IMAPIFolder(contacts).GetIDsFromNames";
    EXPECT_EQ(LinesOf(R"_(
        3A06001F "John"
        3A17001F ""
        3A16001F ""
        3001001F "John"
        0037001F "John"
        10800003 512
        80E2101F ["Friends"])_"),
              Write(R"_(
        FirstName "John"
        Email "a@b"
        Category "Friends")_"));
}

// --- Calls -------------------------------------------------------------------------------------

TEST_F(ContactWritingTest, AsksTheStoreInThisOrder)
{
    const std::string folderNames = std::string("IMAPIFolder(contacts).GetIDsFromNames([");
    Write(R"_(
        FirstName "John"
        Business.City "Bonn"
        Category "Friends")_");
    EXPECT_THAT(
        store.Calls(),
        ElementsAre(folderNames + kAddressSetText +
                        " 8062 8083 8080 8084 8082 8093 8090 8094 8092 80A3 80A0 80A4 80A2 80DE "
                        "80DF 8005 8006 8028 8029], 00000000)",
                    "IMessage(ann).QueryInterface(IMAPIProp)",
                    std::string("IMessage(ann).GetIDsFromNames([") + kAddressSetText +
                        " 8049 8047 8046 8045 8048 804A 801B], 00000000)",
                    folderNames + kAddressSetText + " 8015], 00000000)",
                    folderNames + kPublicSetText + " \"Keywords\"], 00000000)"));
    Write(R"_(FirstName "John")_");
    EXPECT_EQ(2u, store.Calls().size());
}

// --- Pictures ----------------------------------------------------------------------------------

TEST_F(ContactWritingTest, APictureBecomesAnAttachment)
{
    const ScratchDirectory files;
    const std::wstring path = files.File(L"a.png");
    std::ofstream(std::filesystem::path(path), std::ios::binary) << "abc";
    const Lines values = Write("Picture " + QuotedText(path));
    EXPECT_THAT(values,
                ElementsAre("3A17001F \"\"",
                            "3A16001F \"\"",
                            "3001001F \"\"",
                            "0037001F \"\"",
                            "8005001F \"\"",
                            "80060003 0",
                            "8015000B true",
                            "10800003 512"));
    EXPECT_THAT(store.Calls(), Contains("IMessage(ann).CreateAttach(null, 00000000)"));
    EXPECT_THAT(store.Calls(), Contains("IStream(ann#0 37010102 stream).Write(3)"));
    EXPECT_EQ("IAttach(ann#0).SaveChanges(00000004)", store.Calls().back());
}

// The mark is set all the same.
TEST_F(ContactWritingTest, APictureThatIsNoMoreLeavesAnEmptyAttachment)
{
    const Lines values = Write(R"_(Picture "C:\x005Cnone\x005Cgone.png")_");
    EXPECT_THAT(values, Contains("8015000B true"));
    EXPECT_EQ("IMessage(ann).CreateAttach(null, 00000000)", store.Calls().back());
}

TEST_F(ContactWritingTest, WithoutAnAttachmentThereIsNoMark)
{
    failing = "IMessage(ann).CreateAttach";
    EXPECT_THAT(Write(R"_(Picture "a")_"), Not(Contains(StartsWith("8015"))));
    fault = StoreFault::NullOutput;
    EXPECT_THAT(Write(R"_(Picture "a")_"), Not(Contains(StartsWith("8015"))));
    failing.clear();
    Know({});
    EXPECT_THAT(Write(R"_(Picture "a")_"), testing::SizeIs(5));
    EXPECT_THAT(store.Calls(), Not(Contains(StartsWith("IMessage(ann).CreateAttach"))));
}

// --- Items of a client's own -----------------------------------------------------------------

TEST_F(ContactWritingTest, TheCategoriesAreAllThatIsPutBack)
{
    const auto puts = [&](const std::string& text) {
        const auto own = OwnContact::Make(ContactOf(LinesOf(text)));
        Write(own.Get());
        Lines calls = own->calls;
        std::erase_if(calls, [](const std::string& call) { return call.starts_with("get "); });
        return calls;
    };
    EXPECT_THAT(puts("FirstName \"John\"\nEmail \"a@b\"\nCategory \"Friends\""),
                ElementsAre("put CategoryIDs"));
    EXPECT_THAT(puts("FirstName \"John\"\nEmail \"a@b\""), IsEmpty());
}

// What a field gives stands in the same places whether it is absent or cannot be had.
TEST_F(ContactWritingTest, AFieldThatCannotBeHadIsLeftOut)
{
    const struct
    {
        const char* get;
        const char* line; // of the field
    } fields[] = {{"get FirstName", "FirstName"},
                  {"get MiddleName", "MiddleName"},
                  {"get LastName", "LastName"},
                  {"get JobTitle", "JobTitle"},
                  {"get CompanyName", "CompanyName"},
                  {"get Suffix", "Suffix"},
                  {"get Notes", "Notes"},
                  {"get InstantMessagingAddress", "InstantMessagingAddress"},
                  {"get PhoneNumber 1", "Phone1"},
                  {"get Emails", "Email"},
                  {"get Website", "Website"},
                  {"get Address 0", "Home.City"},
                  {"get Address 1", "Business.City"},
                  {"get Address 2", "Other.City"},
                  {"get Birthday", "Birthday"},
                  {"get Anniversary", "Anniversary"},
                  {"get Picture", "Picture"},
                  {"get CategoryIDs", "Category"}};
    const Lines all = LinesOf(R"_(
        FirstName "John"
        MiddleName "Q"
        LastName "Public"
        JobTitle "Clerk"
        CompanyName "Acme"
        Suffix "Jr."
        Notes "note"
        InstantMessagingAddress "im"
        Phone1 "mobile"
        Email "a@b"
        Website "http://a"
        Home.City "H"
        Business.City "B"
        Other.City "O"
        Birthday 25569
        Anniversary 25570
        Picture "none"
        Category "Friends")_");
    ASSERT_EQ(std::size(fields), all.size());
    for (const auto& field : fields)
    {
        Lines others = all;
        std::erase_if(others, [&](const std::string& line) {
            return line.starts_with(std::string(field.line) + ' ');
        });
        ASSERT_EQ(all.size() - 1, others.size()) << field.line;
        const auto own = OwnContact::Make(ContactOf(all));
        own->failing = {field.get};
        EXPECT_EQ(Write(ContactOf(others).Get()), Write(own.Get())) << field.get;
    }
}

// --- Items that are odd ----------------------------------------------------------

TEST_F(ContactWritingTest, ArraysOfAnotherKindCountAsEmpty)
{
    const auto contact = ContactOf({});
    const UniqueSafeArray numbers(SafeArrayCreateVector(VT_I4, 0, 3));
    SAFEARRAYBOUND bounds[2] = {{2, 0}, {2, 0}};
    const UniqueSafeArray square(SafeArrayCreate(VT_BSTR, 2, bounds));
    for (const UniqueSafeArray* const odd : {&numbers, &square})
    {
        contact->put_Emails(odd->Get());
        contact->put_CategoryIDs(odd->Get());
        EXPECT_THAT(Write(contact.Get()), testing::SizeIs(7));
    }
}

TEST_F(ContactWritingTest, DatesThatNoTimeCanTellAreLeftOut)
{
    const auto contact = ContactOf({});
    for (const DATE date : {std::numeric_limits<double>::quiet_NaN(),
                            std::numeric_limits<double>::infinity(),
                            1e300,
                            -1e300,
                            -200000.0}) // the year 1352
    {
        contact->put_Birthday(date);
        contact->put_Anniversary(date);
        EXPECT_THAT(Write(contact.Get()), testing::SizeIs(7)) << date;
    }
}

TEST_F(ContactWritingTest, ALongTextIsWrittenWhole)
{
    const std::wstring text(100'000, L'x');
    const auto contact = ContactOf({});
    contact->put_Notes(Bstr(std::wstring_view(text)).Get());
    EXPECT_THAT(Write(contact.Get()), Contains("1000001F " + QuotedText(text)));
}

TEST_F(ContactWritingTest, WithoutAMessageWhatNeedsItIsLeftOut)
{
    Open();
    const auto contact = ContactOf(LinesOf("Picture \"a\"\nBusiness.City \"Bonn\""));
    PropertyArray values =
        ContactProperties(*contact.Get(), false, {}, {*folder.Get(), nullptr, Proxy()});
    const Lines lines = TextOfValues(values.Count(), values.Get());
    EXPECT_THAT(lines, Contains("3A27001F \"Bonn\""));
    EXPECT_THAT(lines, Not(Contains(StartsWith("8015"))));
}
