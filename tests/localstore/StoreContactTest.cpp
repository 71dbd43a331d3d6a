// Contacts in the embedded store, as the server keeps them: what was added comes back, in every
// folder, with its picture. The calls behind it are tested on the recording store.
#include "localstore/StoreProfile.h"
#include "outlook/contacts/ScopedTemporaryFolder.h"
#include "outlook/store/EntryIdText.h"
#include "tests/localstore/StoreContactFixture.h"

#include <gmock/gmock.h>

#include <fstream>
#include <iterator>

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

namespace
{
constexpr ULONG kNickname = 0x3A4F001F;
constexpr ULONG kDepartment = 0x3A18001F;
constexpr ULONG kGeneration = 0x3A05001F;
constexpr ULONG kWebsite = 0x3A51001F;
constexpr ULONG kRtf = 0x10090102; // PR_RTF_COMPRESSED

// Every field that is written and read; the display name comes from the others.
const TextLines kEverything = LinesOf(R"(
    FirstName "John"
    MiddleName "Q"
    LastName "Public"
    Suffix "Jr."
    DisplayName "Public John Q"
    JobTitle "Clerk"
    CompanyName "Acme"
    InstantMessagingAddress "im:john"
    Website "http://example.org"
    Notes "Met at the fair.\x000D\x000A\x0009{Oslo}"
    Phone0 "0"
    Phone1 "1"
    Phone2 "2"
    Phone3 "3"
    Phone4 "4"
    Phone5 "5"
    Phone6 "6"
    Phone7 "7"
    Phone8 "8"
    Phone9 "9"
    Phone10 "10"
    Phone11 "11"
    Phone12 "12"
    Email "john@example.org"
    Email "public@example.net"
    Email "\x65E5@example.org"
    Home.Country "Norway"
    Home.StateOrProvince "Viken"
    Home.City "Moss"
    Home.Street "Storgata 1\x000D\x000A2. etg."
    Home.PostOfficeBox "17"
    Home.PostalCode "1530"
    Business.Country "Japan"
    Business.StateOrProvince "Tokyo"
    Business.City "\x4E2D\x592E"
    Business.Street "1-1"
    Business.PostOfficeBox "7"
    Business.PostalCode "100"
    Other.Country "Chile"
    Other.StateOrProvince "RM"
    Other.City "Santiago"
    Other.Street "Calle 1"
    Other.PostOfficeBox "3"
    Other.PostalCode "832"
    Birthday 25569
    Anniversary -10000
    Category "Friends"
    Category "\x5C71")");

std::string BytesOf(const std::wstring& path)
{
    std::ifstream file(std::filesystem::path(path), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::wstring PictureOf(INContactItem* contact)
{
    Bstr path;
    contact->get_Picture(path.Put());
    return TextOf(path.Get());
}

std::wstring NotesOf(INContactItem* contact)
{
    Bstr notes;
    contact->get_Notes(notes.Put());
    return TextOf(notes.Get());
}

// A store in which nobody has made names.
class NamelessStoreContactTest : public StoreContactTest
{
  protected:
    void SetUp() override
    {
        {
            Database database = OpenStore(m_path);
            EnsureDefaultProfile(database, LoggedOnUser());
            database.Execute("DELETE FROM named_property");
        }
        StoreContactTest::SetUp();
    }
};
} // namespace

TEST_F(StoreContactTest, EveryFieldOfAnAddedContactComesBack)
{
    OpenTable();
    const auto contact = ContactOf(kEverything);
    const std::wstring id = Add(contact.Get());
    ASSERT_EQ(48u, id.size()); // two digits for each of 24 bytes
    EXPECT_EQ(id, IdOf(contact.Get()));
    OpenTable();
    const auto read = Next();
    ASSERT_TRUE(read);
    EXPECT_EQ(kEverything, TextOfContact(read.Get()));
    EXPECT_EQ(id, IdOf(read.Get()));
    EXPECT_FALSE(Next());
}

TEST_F(StoreContactTest, EveryFieldOfAnUpdatedContactComesBack)
{
    const EntryBytes bytes = AddMessage(Contacts().Get(), L"IPM.Contact", L"old");
    OpenTable();
    const auto contact = ContactOf(kEverything);
    contact->put_PersistentID(Bstr(BytesToHex(bytes)).Get());
    EXPECT_EQ(TRUE, Update(contact.Get()));
    OpenTable();
    EXPECT_EQ(kEverything, TextOfContact(Next().Get()));
    EXPECT_EQ(L"Public John Q", Text(OpenMessage(bytes).Get(), PR_SUBJECT_W));
}

// Line ends of both kinds, a tab, letters beyond ASCII, a surrogate pair and what RTF takes for its
// own.
constexpr wchar_t kNote[] =
    L"Met at the fair.\r\n\r\n\tGr\u00FC\u00DFe \u65E5\u672C \xD83D\xDE00\n{back}\\par \\u252?\r\n";

// A fourth address, an address's empty slot and what the item cannot hold are lost.
TEST_F(StoreContactTest, WhatIsNotKeptIsLost)
{
    OpenTable();
    const std::wstring id = Add(ContactOf(LinesOf(R"(
        Email "a@b"
        Email ""
        Email "c@d"
        Email "e@f"
        Email "g@h"
        Notes "note"
        GroupID "group"
        DisplayName "of the client's own")"))
                                    .Get());
    EXPECT_THAT(TextOfContact(Read(id).Get()),
                ElementsAre("DisplayName \"\"",
                            "JobTitle \"\"",
                            "CompanyName \"\"",
                            "Notes \"note\"",
                            "Email \"a@b\"",
                            "Email \"c@d\"",
                            "Email \"e@f\""));
    EXPECT_EQ(L"note", Text(OpenMessage(HexToBytes(id)).Get(), PR_BODY_W));
}

TEST_F(StoreContactTest, ANoteComesBackToTheLetter)
{
    OpenTable();
    const auto contact = ContactOf(LinesOf(R"(FirstName "Ann")"));
    contact->put_Notes(Bstr(kNote).Get());
    const std::wstring id = Add(contact.Get());
    EXPECT_EQ(kNote, NotesOf(Read(id).Get()));
    // In a walk, too, and after each update with another one.
    OpenTable();
    EXPECT_EQ(kNote, NotesOf(Next().Get()));
    for (const std::wstring note : {L"second", L"third\r\nand last"})
    {
        const auto read = Read(id);
        read->put_Notes(Bstr(note).Get());
        EXPECT_EQ(TRUE, Update(read.Get()));
        EXPECT_EQ(note, NotesOf(Read(id).Get()));
    }
    // One that goes there as it came.
    const auto read = Read(id);
    EXPECT_EQ(TRUE, Update(read.Get()));
    EXPECT_EQ(L"third\r\nand last", NotesOf(Read(id).Get()));
}

// Who reads formatted bodies alone gets it without its plain form.
TEST_F(StoreContactTest, ANoteIsInItsRtfToTheLetter)
{
    OpenTable();
    const auto contact = ContactOf(LinesOf(R"(FirstName "Ann")"));
    contact->put_Notes(Bstr(kNote).Get());
    const std::wstring id = Add(contact.Get());
    const EntryBytes bytes = HexToBytes(id);
    const EntryBytes rtf = Binary(OpenMessage(bytes).Get(), kRtf);
    {
        const auto message = OpenMessage(bytes);
        SPropValue value = BinaryValue(kRtf, rtf.data(), rtf.size());
        ASSERT_EQ(S_OK, message->SetProps(1, &value, nullptr));
        Tags body{PR_BODY_W};
        ASSERT_EQ(S_OK, message->DeleteProps(body, nullptr));
        ASSERT_EQ(S_OK, message->SaveChanges(0));
    }
    // RTF knows one kind of line end.
    std::wstring expected = kNote;
    expected.replace(expected.find(L"\n{"), 1, L"\r\n");
    EXPECT_EQ(expected, NotesOf(Read(id).Get()));
}

// The update deletes the formatted note alone, so that the text stays where nobody reads it.
TEST_F(StoreContactTest, AnUpdateDeletesANicknameAndKeepsASuffixAndANote)
{
    const EntryBytes bytes = AddMessage(Contacts().Get(), L"IPM.Contact", L"old");
    {
        const auto message = OpenMessage(bytes);
        SPropValue values[] = {TextValue(kNickname, L"nick"),
                               TextValue(kDepartment, L"department"),
                               TextValue(kGeneration, L"Jr."),
                               TextValue(kWebsite, L"http://old"),
                               TextValue(PR_BODY_W, kNote)};
        ASSERT_EQ(S_OK, message->SetProps(std::size(values), values, nullptr));
        ASSERT_EQ(S_OK, message->SaveChanges(0));
    }
    OpenTable();
    const std::wstring id = BytesToHex(bytes);
    EXPECT_EQ(kNote, NotesOf(Read(id).Get()));
    const auto contact = ContactOf(LinesOf(R"(FirstName "Ann")"));
    contact->put_PersistentID(Bstr(id).Get());
    EXPECT_EQ(TRUE, Update(contact.Get()));
    const auto message = OpenMessage(bytes);
    for (const ULONG gone : {kNickname, kDepartment, kWebsite, kRtf})
        EXPECT_EQ(MAPI_E_NOT_FOUND, ValueError(message.Get(), gone)) << std::hex << gone;
    EXPECT_EQ(L"Jr.", Text(message.Get(), kGeneration));
    EXPECT_EQ(kNote, Text(message.Get(), PR_BODY_W));
    EXPECT_THAT(TextOfContact(Read(id).Get()),
                ElementsAre("FirstName \"Ann\"",
                            "Suffix \"Jr.\"",
                            "DisplayName \"Ann\"",
                            "JobTitle \"\"",
                            "CompanyName \"\""));
}

TEST_F(StoreContactTest, ADeletedContactIsGone)
{
    OpenTable();
    const std::wstring id = Add(ContactOf(LinesOf(R"(FirstName "Ann")")).Get());
    ASSERT_NE(L"", id);
    EXPECT_EQ(TRUE, table->DeleteItem(id));
    OpenTable();
    EXPECT_THAT(Entries(), IsEmpty());
    EXPECT_FALSE(Next());
    EXPECT_FALSE(Read(id));
    EXPECT_EQ(FALSE, Update(ContactOf(LinesOf(R"(FirstName "Ann")")).Get()));
}

// The server makes no names: what the store cannot keep under one is left out.
TEST_F(NamelessStoreContactTest, KeepsWhatAStoreWithoutNamesCan)
{
    OpenTable();
    const std::wstring id = Add(ContactOf(LinesOf(R"(
        FirstName "Ann"
        InstantMessagingAddress "im"
        Email "a@b"
        Business.City "Bonn"
        Category "Friends")"))
                                    .Get());
    EXPECT_THAT(TextOfContact(Read(id).Get()),
                ElementsAre("FirstName \"Ann\"",
                            "DisplayName \"Ann\"",
                            "JobTitle \"\"",
                            "CompanyName \"\"",
                            "Business.City \"Bonn\""));
}

// --- Pictures ------------------------------------------------------------------------------------

TEST_F(StoreContactTest, APictureGoesThereAndBack)
{
    const ScopedTemporaryFolder temporary;
    const ScratchDirectory files;
    OpenTable();
    // Longer than any one piece of a copy.
    std::string bytes;
    for (int i = 0; i < 40'000; ++i)
        bytes += static_cast<char>(i * 7 % 251);
    const std::wstring path = files.File(L"ann.png");
    std::ofstream(std::filesystem::path(path), std::ios::binary) << bytes;
    const auto contact = ContactOf(LinesOf("FirstName \"Ann\"\nPicture " + QuotedText(path)));
    const std::wstring id = Add(contact.Get());
    const std::wstring read = PictureOf(Read(id).Get());
    EXPECT_TRUE(read.starts_with(temporary.Folder())) << QuotedText(read);
    EXPECT_TRUE(read.ends_with(L".jpg"));
    EXPECT_EQ(bytes, BytesOf(read));
    // Written again from the file that reading made, there is one attachment and not two.
    const auto again = Read(id);
    EXPECT_EQ(TRUE, Update(again.Get()));
    EXPECT_EQ(bytes, BytesOf(PictureOf(Read(id).Get())));
    const auto message = OpenMessage(HexToBytes(id));
    ComPtr<IMAPITable> attachments;
    ASSERT_EQ(S_OK, message->GetAttachmentTable(0, attachments.GetAddressOf()));
    ULONG count = 0;
    EXPECT_EQ(S_OK, attachments->GetRowCount(0, &count));
    EXPECT_EQ(1u, count);
    // And an update without one takes it off.
    again->put_Picture(nullptr);
    EXPECT_EQ(TRUE, Update(again.Get()));
    EXPECT_EQ(L"", PictureOf(Read(id).Get()));
}

// --- Folders -------------------------------------------------------------------------------------

TEST_F(StoreContactTest, ContactsOfEveryFolderTellTheirs)
{
    const auto family = AddContactFolder(L"Family");
    const std::wstring ann = BytesToHex(AddMessage(Contacts().Get(), L"IPM.Contact", L"Ann"));
    const std::wstring bob = BytesToHex(AddMessage(family.Get(), L"IPM.Contact", L"Bob"));
    AddMessage(family.Get(), L"IPM.DistList", L"a list");
    OpenTable();
    const std::wstring contactsKey = HexIdOf(Contacts().Get());
    const std::wstring familyKey = HexIdOf(family.Get());
    ASSERT_EQ(2u, Entries().size());
    EXPECT_EQ(contactsKey, Entries().front().folderKey);
    EXPECT_EQ(ann, Entries().front().clientEntryID);
    EXPECT_EQ(familyKey, Entries().back().folderKey);
    EXPECT_EQ(bob, Entries().back().clientEntryID);
    const auto first = Next();
    EXPECT_EQ(ann, IdOf(first.Get()));
    EXPECT_EQ(contactsKey, FolderOf(first.Get()));
    const auto second = Next();
    EXPECT_EQ(bob, IdOf(second.Get()));
    EXPECT_EQ(familyKey, FolderOf(second.Get()));
    EXPECT_EQ(familyKey, FolderOf(Read(bob).Get()));
    EXPECT_FALSE(Next());
}

TEST_F(StoreContactTest, AContactOfAnotherFolderIsChangedAndDeletedThere)
{
    const auto family = AddContactFolder(L"Family");
    const EntryBytes bytes = AddMessage(family.Get(), L"IPM.Contact", L"Bob");
    OpenTable();
    const auto bob = Next();
    bob->put_FirstName(Bstr(L"Robert").Get());
    EXPECT_EQ(TRUE, Update(bob.Get()));
    EXPECT_EQ(L"Robert", Text(OpenMessage(bytes).Get(), PR_GIVEN_NAME_W));
    EXPECT_EQ(TRUE, table->DeleteItem(IdOf(bob.Get())));
    ComPtr<IMAPITable> rows;
    ASSERT_EQ(S_OK, family->GetContentsTable(MAPI_UNICODE, rows.GetAddressOf()));
    EXPECT_THAT(Column(rows.Get(), PR_SUBJECT_W), IsEmpty());
}

// New contacts go into the default folder; the table that added one does not tell it, a table that
// is made later does.
TEST_F(StoreContactTest, ANewTableKnowsTheFolderOfAnAddedContact)
{
    AddContactFolder(L"Family");
    OpenTable();
    const std::wstring id = Add(ContactOf(LinesOf(R"(FirstName "Ann")")).Get());
    EXPECT_EQ(L"", Entries().back().folderKey);
    EXPECT_EQ(L"", FolderOf(Read(id).Get()));
    OpenTable();
    EXPECT_EQ(HexIdOf(Contacts().Get()), FolderOf(Read(id).Get()));
}
