// Adding, updating and deleting contacts through the table. The sequences of calls were written
// down from the order of the steps, by hand.
#include "outlook/contacts/ContactCalls.h"
#include "outlook/contacts/ContactTableFixture.h"
#include "support/DebugOutputCapture.h"
#include "support/RegistrySandbox.h"
#include "support/TestZone.h"

#include <gmock/gmock.h>

#include <fstream>

using Microsoft::WRL::ComPtr;
using testing::Contains;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;
using Lines = std::vector<std::string>;

namespace
{
class ContactUpdateTest : public ContactTableTest
{
  protected:
    BOOL Update(INContactItem* contact)
    {
        return table->UpdateItem(QueryItem<INEntityItem>(contact).Get());
    }
    std::wstring Add(INContactItem* contact)
    {
        return table->AddItem(QueryItem<INEntityItem>(contact).Get(), addedTo);
    }
    static void SetId(INContactItem* contact, const std::wstring& id)
    {
        contact->put_PersistentID(Bstr(std::wstring_view(id)).Get());
    }
    ComPtr<INContactItem> ContactFor(const char* name, const std::string& text)
    {
        auto contact = ContactOf(LinesOf(text));
        SetId(contact.Get(), IdOf(name));
        return contact;
    }
    // What the store holds of a contact, without the values that every contact has.
    Lines Stored(const char* name) const { return store.PropsOf(name); }

    std::wstring addedTo = L"untouched";
};

const std::string kAskFolder = std::string("IMAPIFolder(contacts).GetIDsFromNames([");

Lines Writing()
{
    return {kAskFolder + kAddressSetText +
                " 8062 8083 8080 8084 8082 8093 8090 8094 8092 80A3 80A0 80A4 80A2 80DE 80DF 8005 "
                "8006 8028 8029], 00000000)",
            kAskFolder + kAddressSetText + " 8015], 00000000)"};
}
void Append(Lines& lines, const Lines& more)
{
    lines.insert(lines.end(), more.begin(), more.end());
}
} // namespace

TEST_F(ContactUpdateTest, UpdatesInThisOrder)
{
    AddContact("ann", "contacts");
    AddContact("bob", "family");
    LoadTable();
    const auto contact = ContactFor("bob", R"(FirstName "Bob")");
    EXPECT_EQ(TRUE, Update(contact.Get()));
    // Opened through its own folder.
    Lines expected = {"IMAPIFolder(family).OpenEntry(bob, null, 00000001, type)"};
    Append(expected, ClearingCalls("bob"));
    Append(expected, SavingWithoutPictureCalls("bob"));
    Append(expected, Writing());
    Append(expected,
           {"IMessage(bob).SetProps({3A06001F \"Bob\", 3A17001F \"\", 3A16001F \"\", 3001001F "
            "\"Bob\", 0037001F \"Bob\", 8005001F \"Bob\", 80060003 32823, 10800003 512}, problems)",
            "IMessage(bob).SaveChanges(00000004)",
            "IMessage(bob).GetProps([0FFF0102 30080040], 80000000)"});
    EXPECT_THAT(store.Calls(), ElementsAreArray(expected));
}

// A contact with all that makes further calls.
TEST_F(ContactUpdateTest, UpdatesAddressPictureAndCategoriesInThisOrder)
{
    AddContact("ann", "contacts");
    store.AddAttachment("ann");
    LoadTable();
    const ScratchDirectory files;
    const std::wstring path = files.File(L"a.png");
    std::ofstream(std::filesystem::path(path), std::ios::binary) << "abc";
    const auto contact = ContactFor("ann", R"(
        Business.City "Bonn"
        Category "Friends"
        Picture )" + QuotedText(path));
    EXPECT_EQ(TRUE, Update(contact.Get()));
    Lines expected = {"IMAPIFolder(contacts).OpenEntry(ann, null, 00000001, type)"};
    Append(expected, ClearingCalls("ann"));
    Append(expected, {"IMessage(ann).DeleteAttach(0, 0, null, 00000000)"});
    Append(expected, SavingWithoutPictureCalls("ann"));
    Append(expected,
           {Writing()[0],
            "IMessage(ann).QueryInterface(IMAPIProp)",
            std::string("IMessage(ann).GetIDsFromNames([") + kAddressSetText +
                " 8049 8047 8046 8045 8048 804A 801B], 00000000)",
            Writing()[1],
            "IMessage(ann).QueryInterface(IMessage)",
            "IMessage(ann).CreateAttach(null, 00000000)",
            "IAttach(ann#1).OpenProperty(37010102, IStream, 0, 00000003)",
            "IStream(ann#1 37010102 stream).Write(3)",
            "IStream(ann#1 37010102 stream).Commit(00000001)",
            MarkingPictureCall("ann#1", "3"),
            "IAttach(ann#1).SaveChanges(00000004)",
            kAskFolder + kPublicSetText + " \"Keywords\"], 00000000)",
            "IMessage(ann).SetProps({3A17001F \"\", 3A16001F \"\", 8046001F \"Bonn\", 3001001F "
            "\"\", 0037001F \"\", 8005001F \"\", 80060003 0, 8015000B 1, 10800003 512, 80E2101F "
            "[\"Friends\"]}, problems)",
            "IMessage(ann).SaveChanges(00000004)",
            "IMessage(ann).GetProps([0FFF0102 30080040], 80000000)"});
    EXPECT_THAT(store.Calls(), ElementsAreArray(expected));
}

TEST_F(ContactUpdateTest, AddsInThisOrder)
{
    OpenTable();
    store.SetClock(FileTimeOf(kFirstDay + 9), 0);
    const auto contact = ContactOf(LinesOf(R"(FirstName "New")"));
    const std::wstring id = Add(contact.Get());
    Lines expected = {"IMAPIFolder(contacts).QueryInterface(IMAPIFolder)",
                      "IMAPIFolder(contacts).CreateMessage(null, 00000000)",
                      "IMessage(new 1).QueryInterface(IMAPIProp)"};
    for (const std::string& line : Writing())
        expected.push_back(line);
    expected.push_back(
        "IMessage(new 1).SetProps({001A001F \"IPM.Contact\", 3A06001F \"New\", 3A17001F \"\", "
        "3A16001F \"\", 3001001F \"New\", 0037001F \"New\", 8005001F \"New\", 80060003 32823, "
        "10800003 512}, problems)");
    expected.push_back("IMessage(new 1).SaveChanges(00000004)");
    expected.push_back("IMessage(new 1).GetProps([0FFF0102 30080040], 80000000)");
    // The new entry's ID is resolved like that of any row.
    expected.push_back("IMAPIFolder(contacts).OpenEntry(new 1, null, 00000002, type)");
    expected.push_back("IMessage(new 1).GetProps([0FFF0102 30080040], 80000000)");
    EXPECT_THAT(store.Calls(), ElementsAreArray(expected));
    EXPECT_EQ(IdOf("new 1"), id);
    EXPECT_EQ(L"", addedTo);
    EXPECT_EQ(id, TextIn(contact.Get(), &INContactItem::get_PersistentID));
    ASSERT_EQ(1u, Entries().size());
    EXPECT_EQ(L"", Entries().front().folderKey);
    EXPECT_EQ(0.0, Entries().front().lastModified);
    // What was added is read back.
    EXPECT_THAT(
        TextOfContact(Read("new 1").Get()),
        ElementsAre(
            "FirstName \"New\"", "DisplayName \"New\"", "JobTitle \"\"", "CompanyName \"\""));
}

// A further load appends the contact once more, with its folder. Its first entry, which has none,
// stays before that and is the one that is found.
TEST_F(ContactUpdateTest, ALoadAfterAnAdditionLeavesTheAddedEntryFirst)
{
    OpenTable();
    const std::wstring id = Add(ContactOf({}).Get());
    table->GetItemIDs();
    const auto entries = Entries();
    ASSERT_EQ(2u, entries.size());
    EXPECT_EQ(id, entries.front().clientEntryID);
    EXPECT_EQ(L"", entries.front().folderKey);
    EXPECT_EQ(id, entries.back().clientEntryID);
    EXPECT_EQ(IdOf("contacts"), entries.back().folderKey);
    EXPECT_EQ(L"", TextIn(Read("new 1").Get(), &INContactItem::get_ParentFolderID));
}

// All that an addition makes further calls for, but for the identity's stamp.
TEST_F(ContactUpdateTest, AddsAddressPictureAndCategoriesInThisOrder)
{
    OpenTable();
    const ScratchDirectory files;
    const std::wstring path = files.File(L"a.png");
    std::ofstream(std::filesystem::path(path), std::ios::binary) << "abc";
    Add(ContactOf(LinesOf(R"(
        Business.City "Bonn"
        Category "Friends"
        Picture )" + QuotedText(path)))
            .Get());
    EXPECT_THAT(
        store.Calls(),
        ElementsAre("IMAPIFolder(contacts).QueryInterface(IMAPIFolder)",
                    "IMAPIFolder(contacts).CreateMessage(null, 00000000)",
                    "IMessage(new 1).QueryInterface(IMAPIProp)",
                    Writing()[0],
                    "IMessage(new 1).QueryInterface(IMAPIProp)",
                    std::string("IMessage(new 1).GetIDsFromNames([") + kAddressSetText +
                        " 8049 8047 8046 8045 8048 804A 801B], 00000000)",
                    Writing()[1],
                    "IMessage(new 1).QueryInterface(IMessage)",
                    "IMessage(new 1).CreateAttach(null, 00000000)",
                    "IAttach(new 1#0).OpenProperty(37010102, IStream, 0, 00000003)",
                    "IStream(new 1#0 37010102 stream).Write(3)",
                    "IStream(new 1#0 37010102 stream).Commit(00000001)",
                    MarkingPictureCall("new 1#0", "3"),
                    "IAttach(new 1#0).SaveChanges(00000004)",
                    kAskFolder + kPublicSetText + " \"Keywords\"], 00000000)",
                    "IMessage(new 1).SetProps({001A001F \"IPM.Contact\", 3A17001F \"\", 3A16001F "
                    "\"\", 8046001F \"Bonn\", 3001001F \"\", 0037001F \"\", 8005001F \"\", "
                    "80060003 0, 8015000B 1, 10800003 512, 80E2101F [\"Friends\"]}, problems)",
                    "IMessage(new 1).SaveChanges(00000004)",
                    "IMessage(new 1).GetProps([0FFF0102 30080040], 80000000)",
                    "IMAPIFolder(contacts).OpenEntry(new 1, null, 00000002, type)",
                    "IMessage(new 1).GetProps([0FFF0102 30080040], 80000000)"));
}

TEST_F(ContactUpdateTest, TheCountOfValuesIsLogged)
{
    OpenTable();
    const ScopedLogSettings settings;
    DebugOutputCapture capture;
    Add(ContactOf({}).Get());
    EXPECT_EQ("========COutlookAddressTable::ReadItem return PropertyValues [8]\r\n",
              capture.TakeLogMessages().front());
}

TEST_F(ContactUpdateTest, AnItemThatIsNoContactWritesNothing)
{
    AddContact("ann", "contacts", StoreProps().Text(0x3001001F, L"Ann"));
    store.AddAttachment("ann");
    LoadTable();
    ComPtr<INEntityItem> group;
    CoCreateInstance(CLSID_NContactGroup,
                     nullptr,
                     CLSCTX_ALL,
                     IID_INEntityItem,
                     reinterpret_cast<void**>(group.GetAddressOf()));
    ASSERT_TRUE(group);
    const Lines before = Stored("ann");
    group->put_EntityID(Bstr(IdOf("ann")).Get());
    EXPECT_EQ(FALSE, table->UpdateItem(group.Get()));
    EXPECT_EQ(before, Stored("ann"));
    EXPECT_TRUE(store.Exists("ann#0"));
    EXPECT_THAT(store.Calls(),
                ElementsAre("IMAPIFolder(contacts).OpenEntry(ann, null, 00000001, type)"));
    EXPECT_EQ(L"", table->AddItem(group.Get(), addedTo));
    EXPECT_EQ(1u, store.ChildrenOf("contacts").size() - 1); // beside "family"
    EXPECT_THAT(store.Calls(), Not(Contains(StartsWith("IMessage(new 1).SetProps"))));
    EXPECT_THAT(store.Calls(), Not(Contains(StartsWith("IMessage(new 1).SaveChanges"))));
}

// --- What an update keeps and loses --------------------------------------------------------------

TEST_F(ContactUpdateTest, ANicknameIsGoneAndASuffixAndANoteOutliveTheirClearing)
{
    AddContact("ann",
               "contacts",
               StoreProps()
                   .Text(0x3A4F001F, L"nick")
                   .Text(0x3A18001F, L"department")
                   .Text(0x3A05001F, L"Jr.")
                   .Text(PR_BODY_W, L"note")
                   .Bytes(0x10090102, {0}));
    LoadTable();
    const auto contact = Read("ann");
    contact->put_Suffix(nullptr);
    contact->put_Notes(nullptr);
    EXPECT_EQ(TRUE, Update(contact.Get()));
    EXPECT_THAT(Stored("ann"), Not(Contains(StartsWith("3A4F"))));
    EXPECT_THAT(Stored("ann"), Not(Contains(StartsWith("3A18"))));
    EXPECT_THAT(Stored("ann"), Contains("3A05001F \"Jr.\""));
    EXPECT_THAT(Stored("ann"), Contains("1000001F \"note\""));
    // The RTF went, so that the note is there and no longer read.
    EXPECT_THAT(
        TextOfContact(Read("ann").Get()),
        ElementsAre("Suffix \"Jr.\"", "DisplayName \"\"", "JobTitle \"\"", "CompanyName \"\""));
}

TEST_F(ContactUpdateTest, EveryFieldComesBackAfterIt)
{
    AddContact("ann", "contacts");
    LoadTable();
    const Lines written = LinesOf(R"(
        FirstName "John"
        MiddleName "Q"
        LastName "Public"
        Suffix "Jr."
        JobTitle "Clerk"
        CompanyName "Acme"
        InstantMessagingAddress "im"
        Website "http://a"
        Phone0 "n0"
        Phone1 "n1"
        Phone2 "n2"
        Phone3 "n3"
        Phone4 "n4"
        Phone5 "n5"
        Phone6 "n6"
        Phone7 "n7"
        Phone8 "n8"
        Phone9 "n9"
        Phone10 "n10"
        Phone11 "n11"
        Phone12 "n12"
        Email "a@b"
        Email "c@d"
        Email "e@f"
        Home.Country "hc"
        Home.StateOrProvince "hs"
        Home.City "hi"
        Home.Street "ht"
        Home.PostOfficeBox "hp"
        Home.PostalCode "ho"
        Business.Country "bc"
        Business.StateOrProvince "bs"
        Business.City "bi"
        Business.Street "bt"
        Business.PostOfficeBox "bp"
        Business.PostalCode "bo"
        Other.Country "oc"
        Other.StateOrProvince "os"
        Other.City "oi"
        Other.Street "ot"
        Other.PostOfficeBox "op"
        Other.PostalCode "oo"
        Birthday 25569
        Anniversary 36526
        Category "Friends"
        Category "Work")");
    const auto contact = ContactOf(written);
    SetId(contact.Get(), IdOf("ann"));
    EXPECT_EQ(TRUE, Update(contact.Get()));
    Lines expected = written;
    expected.insert(expected.begin() + 4, "DisplayName \"Public John Q\"");
    EXPECT_EQ(expected, TextOfContact(Read("ann").Get()));
}

// A note is written as plain text alone, and reading wants RTF beside it.
TEST_F(ContactUpdateTest, ANoteNeedsRtfToComeBack)
{
    OpenTable();
    const auto contact = ContactOf(LinesOf(R"(Notes "note")"));
    ASSERT_NE(L"", Add(contact.Get()));
    EXPECT_THAT(Stored("new 1"), Contains("1000001F \"note\""));
    EXPECT_THAT(TextOfContact(Read("new 1").Get()), Not(Contains(StartsWith("Notes"))));
    store.SetProps("new 1", StoreProps().Bytes(0x10090102, {0}));
    EXPECT_THAT(TextOfContact(Read("new 1").Get()), Contains("Notes \"note\""));
}

TEST_F(ContactUpdateTest, APictureGoesThereAndBack)
{
    AddContact("ann", "contacts");
    store.AddAttachment("ann", StoreProps().Text(0x3704001F, L"old"));
    LoadTable();
    const ScratchDirectory files;
    const std::wstring path = files.File(L"a.png");
    std::ofstream(std::filesystem::path(path), std::ios::binary) << "picture";
    const auto contact = ContactFor("ann", "Picture " + QuotedText(path));
    EXPECT_EQ(TRUE, Update(contact.Get()));
    EXPECT_THAT(Stored("ann"), Contains("8015000B 1"));
    ASSERT_EQ(1u, store.ChildrenOf("ann").size());
    const std::wstring read = TextIn(Read("ann").Get(), &INContactItem::get_Picture);
    std::ifstream file(std::filesystem::path(read), std::ios::binary);
    EXPECT_EQ("picture", std::string(std::istreambuf_iterator<char>(file), {}));
    EXPECT_TRUE(read.ends_with(L".jpg"));
    file.close();
    // An update without one takes it off.
    const auto without = ContactFor("ann", "");
    EXPECT_EQ(TRUE, Update(without.Get()));
    EXPECT_THAT(Stored("ann"), Contains("8015000B 0"));
    EXPECT_THAT(store.ChildrenOf("ann"), IsEmpty());
}

TEST_F(ContactUpdateTest, WhatTheUserChoseForNamesCounts)
{
    OpenTable();
    {
        RegistrySandbox registry(HKEY_CURRENT_USER);
        const DWORD order = 0x8017;
        const wchar_t key[] = L"Software\\Microsoft\\Office\\14.0\\Outlook\\Contact";
        registry.SetValue(key, L"FileAsOrder", REG_DWORD, &order, sizeof order);
        registry.SetText(key, L"NameParserStyle", L"E");
        Add(ContactOf(LinesOf("FirstName \"John\"\nLastName \"Public\"")).Get());
    }
    EXPECT_THAT(Stored("new 1"), Contains("3001001F \"John Public\""));
    EXPECT_THAT(Stored("new 1"), Contains("8005001F \"Public, John\""));
    EXPECT_THAT(Stored("new 1"), Contains("80060003 32791"));
}

// 1970-01-01 and 2014-07-01, which are (25569 + 109205) and (41821 + 109205) days of
// 864000000000 units. Whether the zone saves daylight on the day or now makes no difference.
TEST_F(ContactUpdateTest, DatesAreWrittenWithTheSystemsZone)
{
    OpenTable();
    Add(ContactOf(LinesOf("Birthday 25569\nAnniversary 41821")).Get());
    const auto inUtc = [](long long local) { return std::to_string(local + TestZoneBiasUnits()); };
    EXPECT_THAT(Stored("new 1"), Contains("3A420040 " + inUtc(116444736000000000)));
    EXPECT_THAT(Stored("new 1"), Contains("80DE0040 116444736000000000"));
    EXPECT_THAT(Stored("new 1"), Contains("3A410040 " + inUtc(130486464000000000)));
    EXPECT_THAT(Stored("new 1"), Contains("80DF0040 130486464000000000"));
}

// --- Deleting ------------------------------------------------------------------------------------

TEST_F(ContactUpdateTest, DeletesInTheFolderThatTheContactIsIn)
{
    AddContact("ann", "contacts");
    AddContact("bob", "family");
    LoadTable();
    EXPECT_EQ(TRUE, table->DeleteItem(IdOf("bob")));
    EXPECT_THAT(store.Calls(),
                ElementsAre("IMAPIFolder(family).QueryInterface(IMAPIFolder)",
                            "IMAPIFolder(family).DeleteMessages([bob], 0, null, 00000000)"));
    EXPECT_FALSE(store.Exists("bob"));
    store.ClearRecord();
    EXPECT_EQ(TRUE, table->DeleteItem(IdOf("ann")));
    EXPECT_THAT(store.Calls(),
                ElementsAre("IMAPIFolder(contacts).QueryInterface(IMAPIFolder)",
                            "IMAPIFolder(contacts).DeleteMessages([ann], 0, null, 00000000)"));
}

// --- Attachment rows that are to be filled -------------------------------------------------------

namespace
{
// Opens what the engine would call.
class OpenTableForRows : public COutlookAddressTable
{
  public:
    using COutlookAddressTable::COutlookAddressTable;
    using COutlookAddressTable::FillItem;
    using COutlookAddressTable::m_pCurrentEntity;
    using COutlookAddressTable::m_pCurrentItem;
    using COutlookAddressTable::PrepareEntity;
};
} // namespace

TEST_F(ContactUpdateTest, ARowOfAPictureCanBeFilled)
{
    AddContact("ann", "contacts");
    Open();
    OpenTableForRows rows(folder.Get(), session->Helper(), {});
    const ScratchDirectory files;
    const std::wstring path = files.File(L"a.png");
    std::ofstream(std::filesystem::path(path), std::ios::binary) << "abc";
    rows.m_pCurrentEntity = OpenMessage("ann").Get();
    const auto contact = ContactOf(LinesOf("Picture " + QuotedText(path)));
    rows.m_pCurrentItem = QueryItem<INEntityItem>(contact.Get()).Get();
    SPropValue row[4] = {};
    row[0].ulPropTag = PR_ATTACH_NUM;
    row[1].ulPropTag = 0x3704001F;
    row[1].Value.lpszW = const_cast<wchar_t*>(L"a");
    row[2] = row[1];
    row[3].ulPropTag = 0x7FFF000B;
    store.ClearRecord();
    BOOL goesOn = TRUE;
    rows.OnPropertyRow(4, row, 210, &goesOn);
    EXPECT_EQ(TRUE, goesOn); // no picture
    EXPECT_THAT(store.Calls(), IsEmpty());
    row[3].Value.b = 1;
    rows.OnPropertyRow(4, row, 210, &goesOn);
    EXPECT_EQ(FALSE, goesOn);
    EXPECT_THAT(store.Calls(), Contains("IMessage(ann).CreateAttach(null, 00000000)"));
    EXPECT_THAT(store.Calls(), Contains("IStream(ann#0 37010102 stream).Write(3)"));
    EXPECT_EQ("IAttach(ann#0).SaveChanges(00000004)", store.Calls().back());
    // A value that is missing makes it no picture.
    goesOn = TRUE;
    for (ULONG i = 0; i < 4; ++i)
    {
        SPropValue cut[4];
        std::copy(std::begin(row), std::end(row), cut);
        cut[i].ulPropTag = PT_ERROR;
        for (const int type : {200, 210})
            rows.OnPropertyRow(4, cut, type, &goesOn);
        rows.OnPropertyRow(i, row, 210, &goesOn);
    }
    EXPECT_EQ(TRUE, goesOn);
}

TEST_F(ContactUpdateTest, WithoutAnOpenMessageThereIsNothingToPrepareOrFill)
{
    Open();
    OpenTableForRows rows(folder.Get(), session->Helper(), {});
    EXPECT_FALSE(rows.PrepareEntity());
    const auto contact = ContactOf({});
    const auto item = QueryItem<INEntityItem>(contact.Get());
    SPropValue name = {};
    name.ulPropTag = 0x3A06001F;
    name.Value.lpszW = const_cast<wchar_t*>(L"Ann");
    SPropValue values[] = {name, name};
    rows.FillItem(*item.Get(), PropertyView(2, values));
    EXPECT_THAT(TextOfContact(contact.Get()), IsEmpty());
    EXPECT_THAT(store.Calls(), IsEmpty());
    // Nor without values.
    AddContact("ann", "contacts");
    rows.m_pCurrentEntity = OpenMessage("ann").Get();
    store.ClearRecord();
    rows.FillItem(*item.Get(), PropertyView(2, nullptr));
    EXPECT_THAT(TextOfContact(contact.Get()), IsEmpty());
    EXPECT_THAT(store.Calls(), IsEmpty());
    rows.FillItem(*item.Get(), PropertyView(2, values));
    EXPECT_THAT(TextOfContact(contact.Get()), ElementsAre("FirstName \"Ann\""));
}
