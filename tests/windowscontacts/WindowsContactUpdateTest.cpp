// Adding, updating and deleting Windows contacts, with every call that they make.
#include "windowscontacts/WindowsContactFixture.h"

#include "support/DebugOutputCapture.h"
#include "tests/service/FakeItem.h"

using Microsoft::WRL::ComPtr;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

namespace
{
const std::string kClearedTags =
    "[3A51001F 3A50001F 3A4C001F 3A59001F 3A5A001F 3A5B001F 3A5C001F 3A5D001F 3A5E001F 3A27001F "
    "3A26001F 3A2A001F 3A28001F 3A29001F 3A2B001F 3A5F001F 3A60001F 3A61001F 3A62001F 3A63001F "
    "3A64001F 3A08001F 3A1B001F 3A2E001F 3A24001F 3A1C001F 3A02001F 3A1E001F 3A57001F 3A09001F "
    "3A2F001F 3A25001F 3A1F001F 3A56101F 3A54101F 3A550003 3001001F 3A06001F 3A44001F 3A11001F "
    "3A45001F 3A420040 3A410040 3A16001F 3A18001F 3A17001F 3A19001F 660E001F 3A4F001F 3A48001F "
    "3A58101F 3A21001F 3A23001F 3A1D001F 3A4B001F 3A2D001F 3A2C001F 3003001F 3002001F]";

class WindowsContactUpdateTest : public WindowsContactTest
{
  protected:
    WindowsContactUpdateTest()
    {
        // Saves happen on 10 January.
        store.SetClock(FileTimeOf(kFirstDay + 9), 0);
    }
    static ComPtr<INContactItem> Oda()
    {
        return ContactOf(LinesOf(R"_(
            FirstName "Oda"
            LastName "Bakken"
            Email "a@x")_"));
    }
    // What she is in the book.
    static TextLines OdaStored()
    {
        return LinesOf(R"_(
            3001001F "OdaBakken"
            3A06001F "Oda"
            3A11001F "Bakken"
            3A54101F ["SMTP"]
            3A550003 0
            3A56101F ["a@x"])_");
    }
    // The saved properties without those that the store makes.
    std::vector<std::string> Stored(const char* name)
    {
        std::vector<std::string> lines;
        for (const std::string& line : store.PropsOf(name))
            if (line.compare(0, 4, "3008") != 0 && line.compare(0, 4, "3007") != 0 &&
                line.compare(0, 2, "0F") != 0)
                lines.push_back(line);
        return lines;
    }
};
} // namespace

// --- Adding --------------------------------------------------------------------------------------

TEST_F(WindowsContactUpdateTest, AddingMakesTheEntryFromTheTemplate)
{
    LoadTable();
    const auto contact = Oda();
    const std::wstring id = Add(contact.Get());
    EXPECT_THAT(
        store.Calls(kStoreUsualCalls | kStoreReleases),
        ElementsAre(
            "IAddrBook(address book).GetPAB()",
            "IAddrBook(address book).OpenEntry(book, null, 00000000, type)",
            "IABContainer(book).GetProps([36120102 36110102], 00000000)",
            "IABContainer(book).CreateEntry(<55736572>, 00000004)",
            "release IABContainer(book)",
            "IMailUser(new 1).SetProps({3A06001F \"Oda\", 3A11001F \"Bakken\", 3A56101F [\"a@x\"], "
            "3A54101F [\"SMTP\"], 3A550003 0, 3001001F \"OdaBakken\"}, problems)",
            "IMailUser(new 1).SaveChanges(00000004)",
            "IMailUser(new 1).GetProps([0FFF0102 30080040], 80000000)",
            "IABContainer(book).QueryInterface(IABContainer)",
            "IABContainer(book).OpenEntry(new 1, null, 00000010, type)",
            "IMailUser(new 1).GetProps([0FFF0102 30080040], 80000000)",
            "release IMailUser(new 1)",
            "release IMailUser(new 1)"));
    EXPECT_EQ(IdOf("new 1"), id);
    EXPECT_EQ(id, IdIn(contact.Get()));
    EXPECT_EQ(kFirstDay + 9, ModifiedIn(contact.Get())) << "the real time, unlike Outlook's lists";
    EXPECT_EQ(kFirstDay + 9, Entries().back().lastModified);
    EXPECT_EQ(contact.Get(), Current().Get());
    EXPECT_EQ(OdaStored(), Stored("new 1"));
}

TEST_F(WindowsContactUpdateTest, OutlookExpressTakesTheNewEntryAsItIs)
{
    LoadTable(true);
    const auto contact = Oda();
    EXPECT_EQ(IdOf("new 1"), Add(contact.Get()));
    EXPECT_EQ("IMailUser(new 1).GetProps([0FFF0102 30080040], 80000000)", store.Calls().back());
    EXPECT_EQ(0.0, ModifiedIn(contact.Get()));
    EXPECT_EQ(0.0, Entries().back().lastModified);
}

TEST_F(WindowsContactUpdateTest, TheNewEntryComesOnceMoreInTheWalk)
{
    AddContact("ann");
    LoadTable();
    Add(Oda().Get());
    table->GetNextItem();
    EXPECT_EQ(IdOf("new 1"), IdIn(Current().Get()));
    table->GetNextItem();
    EXPECT_FALSE(Current());
}

TEST_F(WindowsContactUpdateTest, AddingNeedsBothTemplates)
{
    for (const ULONG tag : {PR_DEF_CREATE_MAILUSER, PR_DEF_CREATE_DL})
    {
        store.RemoveProp("book", tag);
        LoadTable();
        EXPECT_EQ(L"", Add(Oda().Get()));
        EXPECT_EQ("IABContainer(book).GetProps([36120102 36110102], 00000000)",
                  store.Calls().back());
        store.SetProps("book", StoreProps().Bytes(tag, {'U', 's', 'e', 'r'}));
    }
    // Of another type they are none.
    store.SetProps("book", StoreProps().Text(CHANGE_PROP_TYPE(PR_DEF_CREATE_DL, PT_UNICODE), L"L"));
    LoadTable();
    EXPECT_EQ(L"", Add(Oda().Get()));
    EXPECT_THAT(store.ChildrenOf("book"), IsEmpty());
}

TEST_F(WindowsContactUpdateTest, ATableWithoutAnAddressBookAddsAndDeletesNothing)
{
    AddContact("ann");
    LoadTable();
    OpenWindowsTable bare(session->Container(), session->Helper(), false, nullptr);
    std::wstring folderID;
    EXPECT_EQ(L"", bare.AddItem(QueryItem<INEntityItem>(Oda().Get()).Get(), folderID));
    EXPECT_FALSE(bare.DeleteItem(IdOf("ann")));
    EXPECT_THAT(store.Calls(), IsEmpty());
}

TEST_F(WindowsContactUpdateTest, AnAddThatCannotBeSavedLeavesNothing)
{
    LoadTable();
    store.FailNext("IMailUser(new 1).SaveChanges", StoreFault::CallFailed);
    EXPECT_EQ(L"", Add(Oda().Get()));
    EXPECT_THAT(store.ChildrenOf("book"), IsEmpty());
    EXPECT_THAT(Entries(), IsEmpty());
}

// --- Updating ------------------------------------------------------------------------------------

TEST_F(WindowsContactUpdateTest, AnUpdateDeletesAndThenWrites)
{
    AddContact("ann", StoreProps().Text(0x3A06001F, L"Ann").Text(0x3A4F001F, L"nick"));
    LoadTable();
    const auto contact = Oda();
    EXPECT_TRUE(Update(contact.Get(), "ann"));
    EXPECT_THAT(store.Calls(kStoreUsualCalls | kStoreReleases),
                ElementsAre("IABContainer(book).OpenEntry(ann, null, 00000001, type)",
                            "IMailUser(ann).DeleteProps(" + kClearedTags + ")",
                            "IMailUser(ann).SetProps({3A06001F \"Oda\", 3A11001F \"Bakken\", "
                            "3A56101F [\"a@x\"], 3A54101F [\"SMTP\"], 3A550003 0, 3001001F "
                            "\"OdaBakken\"}, problems)",
                            "IMailUser(ann).SaveChanges(00000004)",
                            "IMailUser(ann).GetProps([0FFF0102 30080040], 80000000)",
                            "release IMailUser(ann)"));
    EXPECT_EQ(kFirstDay + 9, ModifiedIn(contact.Get()));
    EXPECT_EQ(kFirstDay + 9, Entries().back().lastModified);
    EXPECT_EQ(OdaStored(), Stored("ann"));
}

TEST_F(WindowsContactUpdateTest, TheWebsiteMovesToTheBusinessPage)
{
    AddContact("ann", StoreProps().Text(0x3A06001F, L"Ann").Text(0x3A50001F, L"http://own"));
    LoadTable();
    const auto contact = Read("ann");
    EXPECT_TRUE(Update(contact.Get(), "ann"));
    EXPECT_THAT(Stored("ann"),
                ElementsAre("3001001F \"Ann\"", "3A06001F \"Ann\"", "3A51001F \"http://own\""));
}

TEST_F(WindowsContactUpdateTest, NotesAndSuffixOutliveAnUpdateThatHasNone)
{
    AddContact("ann",
               StoreProps()
                   .Text(0x3A06001F, L"Ann")
                   .Text(0x3004001F, L"note")
                   .Text(0x3A05001F, L"Jr.")
                   .Text(0x3A17001F, L"Cook"));
    LoadTable();
    EXPECT_TRUE(Update(ContactOf(LinesOf(R"_(FirstName "Ann")_")).Get(), "ann"));
    EXPECT_THAT(
        Stored("ann"),
        ElementsAre(
            "3001001F \"Ann\"", "3004001F \"note\"", "3A05001F \"Jr.\"", "3A06001F \"Ann\""));
}

TEST_F(WindowsContactUpdateTest, ABusinessBoxComesBackAsTheState)
{
    AddContact("ann", StoreProps().Text(0x3A06001F, L"Ann").Text(0x3A2B001F, L"7"));
    LoadTable();
    const auto contact = Read("ann");
    EXPECT_THAT(
        TextOfContact(contact.Get()),
        ElementsAre(
            "FirstName \"Ann\"", "Notes \"\"", "Picture \"\"", "Business.PostOfficeBox \"7\""));
    EXPECT_TRUE(Update(contact.Get(), "ann"));
    EXPECT_THAT(Stored("ann"),
                ElementsAre("3001001F \"Ann\"", "3A06001F \"Ann\"", "3A28001F \"7\""));
}

TEST_F(WindowsContactUpdateTest, AnItemThatIsNoContactIsNotWritten)
{
    AddContact("ann", StoreProps().Text(0x3001001F, L"Ann"));
    LoadTable();
    const auto group = FakeItem::Make(IID_INContactGroup, IdOf("ann"));
    EXPECT_FALSE(table->UpdateItem(group.Get()));
    EXPECT_THAT(store.Calls(), Not(Contains(HasSubstr("DeleteProps"))));
    EXPECT_THAT(store.Calls(), Not(Contains(HasSubstr("SaveChanges"))));
}

TEST_F(WindowsContactUpdateTest, AFailedClearingIsNotNoticed)
{
    AddContact("ann", StoreProps().Text(0x3A17001F, L"Cook"));
    LoadTable();
    store.FailNext("IMailUser(ann).DeleteProps", StoreFault::CallFailed);
    EXPECT_TRUE(Update(ContactOf(LinesOf(R"_(FirstName "Ann")_")).Get(), "ann"));
    EXPECT_THAT(Stored("ann"),
                ElementsAre("3001001F \"Ann\"", "3A06001F \"Ann\"", "3A17001F \"Cook\""));
    EXPECT_FALSE(table->PrepareEntity()) << "nothing is open";
}

TEST_F(WindowsContactUpdateTest, AnUpdateTakesTheTablesOwnId)
{
    AddContact("ann");
    LoadTable();
    const auto contact = Oda();
    contact->put_PersistentID(Bstr(table->ToInternalID(L"ann")).Get());
    EXPECT_TRUE(table->UpdateItem(QueryItem<INEntityItem>(contact.Get()).Get()));
    // The client's one names no entry here.
    contact->put_PersistentID(Bstr(L"ann").Get());
    EXPECT_FALSE(table->UpdateItem(QueryItem<INEntityItem>(contact.Get()).Get()));
}

// --- Deleting ------------------------------------------------------------------------------------

TEST_F(WindowsContactUpdateTest, DeletingGoesThroughThePersonalContainer)
{
    AddContact("ann");
    AddContact("bob");
    LoadTable();
    EXPECT_TRUE(table->DeleteItem(IdOf("ann")));
    EXPECT_THAT(store.Calls(kStoreUsualCalls | kStoreReleases),
                ElementsAre("IAddrBook(address book).GetPAB()",
                            "IAddrBook(address book).OpenEntry(book, null, 00000000, type)",
                            "IABContainer(book).DeleteEntries([ann], 00000000)",
                            "release IABContainer(book)"));
    EXPECT_THAT(store.ChildrenOf("book"), ElementsAre("bob"));
    EXPECT_THAT(Entries(), SizeIs(2)) << "the entry stays in the list";
}

TEST_F(WindowsContactUpdateTest, AWarningOfTheDeletionIsASuccess)
{
    AddContact("ann");
    LoadTable();
    EXPECT_TRUE(table->DeleteItem(L"0A0B")) << "partial completion";
    store.FailNext("IABContainer(book).DeleteEntries", StoreFault::CallFailed);
    EXPECT_FALSE(table->DeleteItem(IdOf("ann")));
    store.FailNext("IAddrBook(address book).GetPAB", StoreFault::CallFailed);
    EXPECT_FALSE(table->DeleteItem(IdOf("ann")));
    store.FailNext("IAddrBook(address book).OpenEntry", StoreFault::NullOutput);
    EXPECT_FALSE(table->DeleteItem(IdOf("ann")));
    EXPECT_FALSE(table->DeleteItem(L""));
    EXPECT_THAT(store.ChildrenOf("book"), ElementsAre("ann"));
}
