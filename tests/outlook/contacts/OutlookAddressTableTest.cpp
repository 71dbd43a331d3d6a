// Loading and reading of Outlook's contacts. The sequences of calls were written down from the
// order of the steps, by hand.
#include "outlook/contacts/OutlookAddressTable.h"

#include "outlook/contacts/ContactTableFixture.h"
#include "support/DebugOutputCapture.h"
#include "support/TestZone.h"
#include "tests/service/FakeItem.h"

#include <gmock/gmock.h>

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
class OutlookAddressTableTest : public ContactTableTest
{
};

std::string Narrow(const std::wstring& text)
{
    return std::string(text.begin(), text.end());
}

Lines Rows(const std::string& folder, int count)
{
    const std::string rows = "IMAPITable(" + folder + " contents table).";
    return {"IMAPIFolder(" + folder + ").GetContentsTable(80000000)",
            rows + "SetColumns([0FFF0102 001A001F 30080040], 00000000)",
            rows + "GetRowCount(00000000)",
            rows + "QueryRows(" + std::to_string(count) + ", 00000000)"};
}

Lines Resolving(const std::string& name)
{
    return {"IMAPIFolder(contacts).OpenEntry(" + name + ", null, 00000002, type)",
            "IMessage(" + name + ").GetProps([0FFF0102 30080040], 80000000)"};
}

Lines Joined(std::initializer_list<Lines> parts)
{
    Lines all;
    for (const Lines& part : parts)
        all.insert(all.end(), part.begin(), part.end());
    return all;
}

// The calls up to the values of the columns, with every name known.
Lines ReadingColumns(const std::string& name)
{
    return {"IMAPIFolder(contacts).OpenEntry(" + name + ", null, 00000002, type)",
            std::string("IMAPIFolder(contacts).GetIDsFromNames([") + kAddressSetText +
                " 8062 8080 8082 8083 8084 8090 8092 8093 8094 80A0 80A2 80A3 80A4 80DE 80DF], "
                "00000000)",
            "IMessage(" + name + ").QueryInterface(IMAPIProp)",
            "IMessage(" + name + ").GetIDsFromNames([" + kAddressSetText +
                " 8049 8047 8046 8045 8048 804A 801B], 00000000)",
            std::string("IMAPIFolder(contacts).GetIDsFromNames([") + kPublicSetText +
                " \"Keywords\"], 00000000)",
            "IMessage(" + name +
                ").GetProps([30080040 3A06001F 3A11001F 3A44001F 3A17001F 3A16001F 80620000 "
                "3A57001F 3A1C001F 3A08001F 3A1B001F 3A09001F 3A2F001F 3A24001F 3A25001F 3A21001F "
                "3A1F001F 3A2E001F 3A1E001F 3A1D001F 80800000 80820000 80830000 80840000 80900000 "
                "80920000 80930000 80940000 80A00000 80A20000 80A30000 80A40000 3A51001F 3A5A001F "
                "3A5C001F 3A59001F 3A5D001F 3A5B001F 3A5E001F 8049001F 8047001F 8046001F 8045001F "
                "8048001F 804A001F 3A60001F 3A62001F 3A5F001F 3A63001F 3A61001F 3A64001F 3A420040 "
                "3A410040 3A05001F 3A1E001F 3A1D001F 10090102 80E2101F 3001001F 80DE0000 "
                "80DF0000], 80000000)"};
}

Lines ReadingAttachments(const std::string& name)
{
    const std::string rows = "IMAPITable(" + name + " attachments table).";
    return {"IMessage(" + name + ").QueryInterface(IMessage)",
            "IMessage(" + name + ").GetAttachmentTable(00000008)",
            rows + "SetColumns([0E210003 3704001F 3703001F 7FFF000B], 00000000)",
            rows + "GetRowCount(00000000)"};
}

std::string ReadingId(const std::string& name)
{
    return "IMessage(" + name + ").GetProps([0FFF0102 001A001F], 80000000)";
}
std::string ReadingBody(const std::string& name)
{
    return "IMessage(" + name + ").GetProps([1000001F], 80000000)";
}
std::string OpeningRtf(const std::string& name)
{
    return "IMessage(" + name + ").OpenProperty(10090102, IStream, 0, 00000000)";
}

// A message with RTF of some kind, so that its body is asked for.
StoreProps WithRtf(const StoreProps& props = {})
{
    StoreProps all = props;
    return all.Bytes(0x10090102, {0});
}
} // namespace

// --- Loading -----------------------------------------------------------------------------------

TEST_F(OutlookAddressTableTest, LoadsTheContactsOfEveryFolder)
{
    AddContact("ann", "contacts", {}, kFirstDay + 1);
    AddContact("bob", "family", {}, kFirstDay + 2);
    store.AddMessage("list", "family", StoreProps().Text(PR_MESSAGE_CLASS_W, L"IPM.DistList"));
    OpenTable();
    const ScopedLogSettings settings;
    DebugOutputCapture capture;
    table->GetItemIDs();
    EXPECT_THAT(store.Calls(),
                ElementsAreArray(Joined(
                    {Rows("contacts", 1), Resolving("ann"), Rows("family", 2), Resolving("bob")})));
    EXPECT_THAT(capture.TakeLogMessages(),
                ElementsAre("=====COutlookAddressTable::GetItemIDs",
                            "=====Folder Mode:Contacts, " + Narrow(IdOf("contacts")),
                            "==========pTable->QueryRows()! Rows = 1\r\n",
                            "=====Folder Mode:Family, " + Narrow(IdOf("family")),
                            "==========pTable->QueryRows()! Rows = 2\r\n"));
    const auto entries = Entries();
    ASSERT_EQ(2u, entries.size());
    EXPECT_EQ(IdOf("contacts"), entries.front().folderKey);
    EXPECT_EQ(IdOf("ann"), entries.front().rowEntryID);
    EXPECT_EQ(IdOf("ann"), entries.front().clientEntryID);
    EXPECT_EQ(kFirstDay + 1, entries.front().lastModified);
    EXPECT_EQ(IdOf("family"), entries.back().folderKey);
    EXPECT_EQ(IdOf("bob"), entries.back().rowEntryID);
    EXPECT_EQ(kFirstDay + 2, entries.back().lastModified);
}

TEST_F(OutlookAddressTableTest, WithoutAListOfFoldersItLoadsItsOwn)
{
    AddContact("ann", "contacts");
    AddContact("bob", "family");
    OpenTable(false);
    const ScopedLogSettings settings;
    DebugOutputCapture capture;
    table->GetItemIDs();
    EXPECT_THAT(store.Calls(), ElementsAreArray(Joined({Rows("contacts", 1), Resolving("ann")})));
    EXPECT_THAT(capture.TakeLogMessages(),
                ElementsAre("=====COutlookAddressTable::GetItemIDs",
                            "=====m_vctContactsFolders.empty()",
                            "==========pTable->QueryRows()! Rows = 1\r\n"));
    ASSERT_EQ(1u, Entries().size());
    EXPECT_EQ(L"", Entries().front().folderKey);
}

TEST_F(OutlookAddressTableTest, AFolderWithoutRowsIsPassedOver)
{
    AddContact("ann", "contacts");
    AddContact("bob", "family");
    OpenTable();
    store.FailNext("IMAPIFolder(contacts).GetContentsTable", StoreFault::CallFailed);
    table->GetItemIDs();
    ASSERT_EQ(1u, Entries().size());
    EXPECT_EQ(IdOf("bob"), Entries().front().rowEntryID);
}

TEST_F(OutlookAddressTableTest, TwoClassesAreContacts)
{
    const wchar_t* const classes[] = {L"IPM.Contact",
                                      L"IPM.Contact.SBE",
                                      L"IPM.Contact.Custom",
                                      L"IPM.Contact.SBE.2",
                                      L"IPM.contact",
                                      L"IPM.Contac",
                                      L"IPM.DistList",
                                      L""};
    for (std::size_t i = 0; i < std::size(classes); ++i)
        store.AddMessage(
            "m" + std::to_string(i), "contacts", StoreProps().Text(PR_MESSAGE_CLASS_W, classes[i]));
    store.AddMessage("none", "contacts");
    OpenTable();
    table->GetItemIDs();
    const auto entries = Entries();
    ASSERT_EQ(2u, entries.size());
    EXPECT_EQ(IdOf("m0"), entries.front().rowEntryID);
    EXPECT_EQ(IdOf("m1"), entries.back().rowEntryID);
}

TEST_F(OutlookAddressTableTest, ClientsKnowAContactByItsOwnId)
{
    AddContact("ann", "contacts", {}, kFirstDay + 3);
    store.SetRowEntryId("ann", {0, 0, 0, 0, 7});
    OpenTable();
    table->GetItemIDs();
    ASSERT_EQ(1u, Entries().size());
    EXPECT_EQ(L"0000000007", Entries().front().rowEntryID);
    EXPECT_EQ(IdOf("ann"), Entries().front().clientEntryID);
    EXPECT_EQ(kFirstDay + 3, Entries().front().lastModified);
}

TEST_F(OutlookAddressTableTest, AContactThatCannotBeOpenedHasTheTimeOfItsRow)
{
    AddContact("ann", "contacts", {}, kFirstDay + 3);
    OpenTable();
    store.FailNext("IMAPIFolder(contacts).OpenEntry(ann", StoreFault::CallFailed);
    table->GetItemIDs();
    ASSERT_EQ(1u, Entries().size());
    EXPECT_EQ(IdOf("ann"), Entries().front().rowEntryID);
    EXPECT_EQ(L"", Entries().front().clientEntryID);
    EXPECT_EQ(kFirstDay + 3, Entries().front().lastModified);
}

TEST_F(OutlookAddressTableTest, AContactThatTellsNoIdHasNoneForClients)
{
    AddContact("ann", "contacts");
    OpenTable();
    store.FailNext("IMessage(ann).GetProps", StoreFault::CallFailed);
    table->GetItemIDs();
    ASSERT_EQ(1u, Entries().size());
    EXPECT_EQ(L"", Entries().front().clientEntryID);
    EXPECT_EQ(kFirstDay, Entries().front().lastModified);
}

// --- Reading -----------------------------------------------------------------------------------

TEST_F(OutlookAddressTableTest, ReadsAContactInThisOrder)
{
    AddContact("ann", "contacts", WithRtf(StoreProps().Text(PR_BODY_W, L"A note")));
    LoadTable();
    table->GetNextItem();
    EXPECT_THAT(store.Calls(),
                ElementsAreArray(Joined({ReadingColumns("ann"),
                                         ReadingAttachments("ann"),
                                         {ReadingId("ann"), ReadingBody("ann")}})));
    ASSERT_TRUE(Current());
    EXPECT_EQ(Lines{"Notes \"A note\""}, TextOfContact(Current().Get()));
    table->GetNextItem();
    EXPECT_FALSE(Current());
}

TEST_F(OutlookAddressTableTest, ReadsAContactWithAPictureInThisOrder)
{
    AddContact("ann", "contacts", WithRtf(StoreProps().Text(PR_BODY_W, L"A note")));
    store.AddAttachment("ann",
                        StoreProps()
                            .Text(0x3704001F, L"Pic.jpg")
                            .Text(0x3703001F, L".jpg")
                            .Number(0x7FFF000B, 1)
                            .Bytes(0x37010102, {1, 2, 3}));
    LoadTable();
    table->GetNextItem();
    EXPECT_THAT(
        store.Calls(),
        ElementsAreArray(Joined({ReadingColumns("ann"),
                                 ReadingAttachments("ann"),
                                 {"IMAPITable(ann attachments table).QueryRows(1, 00000000)",
                                  "IMessage(ann).QueryInterface(IMessage)",
                                  "IMessage(ann).OpenAttach(0, IAttachment, 00000010)",
                                  "IAttach(ann#0).OpenProperty(37010102, IStream, 0, 00000000)",
                                  "IStream(ann#0 37010102 stream).Read(16384)",
                                  "IStream(ann#0 37010102 stream).Read(16384)",
                                  ReadingId("ann"),
                                  ReadingBody("ann")}})));
    ASSERT_TRUE(Current());
    EXPECT_TRUE(
        TextIn(Current().Get(), &INContactItem::get_Picture).starts_with(temporary.Folder()));
}

TEST_F(OutlookAddressTableTest, ReadsAContactWithoutRtfInThisOrder)
{
    AddContact("ann", "contacts", StoreProps().Text(PR_BODY_W, L"A note"));
    LoadTable();
    const ScopedLogSettings settings;
    DebugOutputCapture capture;
    table->GetNextItem();
    EXPECT_THAT(store.Calls(),
                ElementsAreArray(Joined({ReadingColumns("ann"),
                                         ReadingAttachments("ann"),
                                         {ReadingId("ann"), OpeningRtf("ann")}})));
    // The note is there, and not asked for.
    EXPECT_THAT(TextOfContact(Current().Get()), IsEmpty());
    EXPECT_THAT(capture.TakeLogMessages(),
                Contains("Get note Failed, Get from PR_RTF_COMPRESSED agian"));
    table.reset();
    EXPECT_THAT(capture.TakeLogMessages(), ElementsAre("CRichEditHelper::Uninit"));
}

TEST_F(OutlookAddressTableTest, ReadsEveryField)
{
    StoreProps props = WithRtf(StoreProps().Text(PR_BODY_W, L"Line\r\nline"));
    props.Text(0x3A06001F, L"John").Text(0x3A11001F, L"Public").Text(0x3A44001F, L"Q");
    props.Text(0x3A17001F, L"Clerk").Text(0x3A16001F, L"Acme").Text(0x8062001F, L"im");
    const ULONG phones[] = {0x3A57,
                            0x3A1C,
                            0x3A08,
                            0x3A1B,
                            0x3A09,
                            0x3A2F,
                            0x3A24,
                            0x3A25,
                            0x3A21,
                            0x3A1F,
                            0x3A2E,
                            0x3A1E,
                            0x3A1D};
    for (std::size_t i = 0; i < std::size(phones); ++i)
        props.Text(PROP_TAG(PT_UNICODE, phones[i]), L"n" + std::to_wstring(i));
    props.Text(0x8083001F, L"a@b").Text(0x8093001F, L"/o=X").Text(0x8094001F, L"b@c");
    props.Text(0x80A3001F, L"c@d").Text(0x3A51001F, L"http://a");
    props.Text(0x3A5A001F, L"hc").Text(0x3A5E001F, L"hp").Text(0x8049001F, L"bc");
    props.Text(0x804A001F, L"bp").Text(0x3A60001F, L"oc").Text(0x3A64001F, L"op");
    // The fixed tags of the business address stand back where its names are known.
    props.Text(0x3A27001F, L"not read");
    props.Time(0x80DE0040, FileTimeOf(32874)).Time(0x80DF0040, FileTimeOf(36526));
    props.Time(0x3A420040, 1).Time(0x3A410040, 1);
    props.Text(0x3A05001F, L"Jr.").Texts(0x80E2101F, {L"Friends", L"Work"});
    props.Text(0x3001001F, L"J. P.");
    AddContact("john", "contacts", props);
    LoadTable();
    Lines expected = {"FirstName \"John\"",
                      "MiddleName \"Q\"",
                      "LastName \"Public\"",
                      "Suffix \"Jr.\"",
                      "DisplayName \"J. P.\"",
                      "JobTitle \"Clerk\"",
                      "CompanyName \"Acme\"",
                      "InstantMessagingAddress \"im\"",
                      "Website \"http://a\"",
                      "Notes \"Line\\x000D\\x000Aline\""};
    for (int type = 0; type < 13; ++type)
        expected.push_back("Phone" + std::to_string(type) + " \"n" + std::to_string(type) + "\"");
    for (const char* const line : {"Email \"a@b\"",
                                   "Email \"b@c\"",
                                   "Email \"c@d\"",
                                   "Home.Country \"hc\"",
                                   "Home.PostOfficeBox \"hp\"",
                                   "Business.Country \"bc\"",
                                   "Business.PostOfficeBox \"bp\"",
                                   "Other.Country \"oc\"",
                                   "Other.PostOfficeBox \"op\"",
                                   "Birthday 32874",
                                   "Anniversary 36526",
                                   "Category \"Friends\"",
                                   "Category \"Work\""})
        expected.push_back(line);
    const auto contact = Read("john");
    ASSERT_TRUE(contact);
    EXPECT_EQ(expected, TextOfContact(contact.Get()));
    EXPECT_EQ(kFirstDay, LastModifiedOf(QueryItem<INEntityItem>(contact.Get()).Get()));
}

// A day in January and one in July.
TEST_F(OutlookAddressTableTest, WithoutLocalDatesTheSystemsZoneIsTakenOff)
{
    const long long bias = TestZoneBiasUnits();
    AddContact("ann",
               "contacts",
               StoreProps()
                   .Time(0x3A420040, FileTimeOf(32874) + bias)
                   .Time(0x3A410040, FileTimeOf(41821) + bias));
    LoadTable();
    const auto contact = Read("ann");
    ASSERT_TRUE(contact);
    DATE date = 0.0;
    contact->get_Birthday(&date);
    EXPECT_NEAR(32874.0, date, 1e-9);
    contact->get_Anniversary(&date);
    EXPECT_NEAR(41821.0, date, 1e-9);
}

TEST_F(OutlookAddressTableTest, TheLocalDatesFollowEachReading)
{
    // The first reading finds the names; in the second their lookup fails.
    AddContact("ann",
               "contacts",
               StoreProps()
                   .Time(0x80DE0040, FileTimeOf(32874))
                   .Time(0x3A420040, FileTimeOf(10000) + kUnitsPerDay / 24 * 7 / 2));
    LoadTable();
    EXPECT_THAT(TextOfContact(Read("ann").Get()), ElementsAre("Birthday 32874"));
    store.FailNext("IMAPIFolder(contacts).GetIDsFromNames", StoreFault::CallFailed);
    DATE date = 0.0;
    Read("ann")->get_Birthday(&date);
    EXPECT_NEAR(10000.0, date, 1e-9);
}

// --- IDs and folders ---------------------------------------------------------------------------

TEST_F(OutlookAddressTableTest, AContactTellsItsIdAndItsFolder)
{
    AddContact("ann", "contacts");
    AddContact("bob", "family");
    store.SetRowEntryId("bob", {0, 0, 0, 0, 7});
    LoadTable();
    table->GetNextItem();
    EXPECT_EQ(IdOf("ann"), TextIn(Current().Get(), &INContactItem::get_PersistentID));
    EXPECT_EQ(IdOf("contacts"), TextIn(Current().Get(), &INContactItem::get_ParentFolderID));
    // Opened by the ID of its row, it tells its own.
    table->GetNextItem();
    EXPECT_EQ(IdOf("bob"), TextIn(Current().Get(), &INContactItem::get_PersistentID));
    EXPECT_EQ(IdOf("family"), TextIn(Current().Get(), &INContactItem::get_ParentFolderID));
}

TEST_F(OutlookAddressTableTest, AContactThatIsNotInTheListHasNoFolder)
{
    AddContact("ann", "contacts");
    OpenTable();
    const auto contact = Read("ann");
    ASSERT_TRUE(contact);
    EXPECT_EQ(IdOf("ann"), TextIn(contact.Get(), &INContactItem::get_PersistentID));
    EXPECT_EQ(L"", TextIn(contact.Get(), &INContactItem::get_ParentFolderID));
}

TEST_F(OutlookAddressTableTest, AnIdThatCannotBeReadLeavesTheOneItWasOpenedBy)
{
    AddContact("ann", "contacts");
    store.SetRowEntryId("ann", {0, 0, 0, 0, 7});
    LoadTable();
    store.FailNext(ReadingId("ann"), StoreFault::CallFailed);
    table->GetNextItem();
    EXPECT_EQ(L"0000000007", TextIn(Current().Get(), &INContactItem::get_PersistentID));
    EXPECT_EQ(L"", TextIn(Current().Get(), &INContactItem::get_ParentFolderID));
    // Both the ID and the class must be there.
    store.RemoveProp("ann", PR_MESSAGE_CLASS_W);
    table->ResetItem();
    table->GetNextItem();
    EXPECT_EQ(L"0000000007", TextIn(Current().Get(), &INContactItem::get_PersistentID));
}

// --- Notes -------------------------------------------------------------------------------------

TEST_F(OutlookAddressTableTest, ABodyOfALineBreakIsNoNote)
{
    AddContact("ann", "contacts", WithRtf(StoreProps().Text(PR_BODY_W, L"\r\n")));
    LoadTable();
    EXPECT_THAT(TextOfContact(Read("ann").Get()), IsEmpty());
    EXPECT_THAT(store.Calls(), Not(Contains(OpeningRtf("ann"))));
}

TEST_F(OutlookAddressTableTest, WithoutABodyRtfIsAsked)
{
    AddContact("ann", "contacts", WithRtf());
    LoadTable();
    EXPECT_THAT(TextOfContact(Read("ann").Get()), IsEmpty());
    EXPECT_THAT(store.Calls(), Contains(ReadingBody("ann")));
    EXPECT_THAT(store.Calls(), Contains(OpeningRtf("ann")));
}

TEST_F(OutlookAddressTableTest, ANoteComesOutOfRtfWhereThereIsNoBody)
{
    AddContact("ann", "contacts", StoreProps().Bytes(0x10090102, RtfOfANote()));
    LoadTable();
    EXPECT_THAT(TextOfContact(Read("ann").Get()), ElementsAre("Notes \"note\""));
    // An empty body is a body: the RTF is not asked.
    store.SetProps("ann", StoreProps().Text(PR_BODY_W, L""));
    EXPECT_THAT(TextOfContact(Read("ann").Get()), IsEmpty());
}

// --- After the end -----------------------------------------------------------------------------

TEST_F(OutlookAddressTableTest, AfterTheProvidersEndNothingIsTouched)
{
    AddContact("ann", "contacts");
    LoadTable();
    const auto contact = Read("ann");
    session->Helper()->Live().DetachAll();
    store.ClearRecord();
    const ScopedLogSettings settings;
    DebugOutputCapture capture;
    table->GetItemIDs();
    table->ResetItem();
    table->GetNextItem();
    table->GetItemByID(IdOf("ann"));
    std::wstring folderID;
    EXPECT_EQ(L"", table->AddItem(QueryItem<INEntityItem>(contact.Get()).Get(), folderID));
    EXPECT_EQ(FALSE, table->UpdateItem(QueryItem<INEntityItem>(contact.Get()).Get()));
    EXPECT_EQ(FALSE, table->DeleteItem(IdOf("ann")));
    EXPECT_THAT(store.Calls(), IsEmpty());
    EXPECT_THAT(capture.TakeLogMessages(), IsEmpty());
    // The folders are given up with the rest.
    folder.Reset();
    EXPECT_THAT(store.Leaks(), Not(Contains(StartsWith("IMAPIFolder"))));
}

TEST_F(OutlookAddressTableTest, WithoutAHelperOrAContainerItIsDead)
{
    Open();
    COutlookAddressTable noHelper(folder.Get(), nullptr, {});
    COutlookAddressTable noContainer(nullptr, session->Helper(), {});
    for (COutlookAddressTable* const dead : {&noHelper, &noContainer})
    {
        dead->GetItemIDs();
        dead->ResetItem();
        dead->GetNextItem();
        dead->GetItemByID(L"00");
        EXPECT_FALSE(CurrentItem(*dead));
        EXPECT_EQ(FALSE, dead->DeleteItem(L"00"));
        SPropValue value = {};
        BOOL goesOn = TRUE;
        for (const int type : {0, 10, 20, 30, 200, 210, -1})
            EXPECT_EQ(FALSE, dead->OnPropertyRow(1, &value, type, &goesOn));
        EXPECT_EQ(FALSE, dead->OnPropertyRow(4, nullptr, 200, &goesOn));
    }
    EXPECT_THAT(store.Calls(), IsEmpty());
}

namespace
{
// Opens what a client's item meets in its end.
class OpenContactTable : public COutlookAddressTable
{
  public:
    using COutlookAddressTable::COutlookAddressTable;
    using COutlookAddressTable::GetContainerForID;
    using COutlookAddressTable::m_pCurrentItem;
};
} // namespace

// The current item may hold the last reference to what owns the table.
TEST_F(OutlookAddressTableTest, ADetachedTableMayEndWithItsCurrentItem)
{
    AddContact("bob", "family");
    Open();
    auto ending = std::make_unique<OpenContactTable>(folder.Get(), session->Helper(), Folders());
    ending->GetItemIDs();
    const std::wstring bob = IdOf("bob");
    EXPECT_TRUE(ending->GetContainerForID(bob));
    auto item = FakeItem::Make(IID_NULL);
    item->onEnd = [&] {
        EXPECT_FALSE(ending->GetContainerForID(bob)) << "the folders were still in the table";
        ending.reset();
    };
    ending->m_pCurrentItem = item.Get();
    item.Reset();
    session->Helper()->Live().DetachAll();
    EXPECT_FALSE(ending);
}
