// Loading, reading and the IDs of Windows contacts, with every call that they make.
#include "windowscontacts/WindowsContactFixture.h"

#include "outlook/contacts/OwnContact.h"
#include "support/DebugOutputCapture.h"
#include "tests/service/FakeItem.h"
#include "windowscontacts/WindowsContactColumns.h"

#include <array>
#include <cstddef>
#include <new>

using Microsoft::WRL::ComPtr;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using Calls = std::vector<std::string>;

namespace
{
const std::string kAllTags =
    "[30080040 3A06001F 3A11001F 3A44001F 3A17001F 3A16001F 3A57001F 3A1C001F 3A08001F 3A1B001F "
    "3A09001F 3A2F001F 3A24001F 3A25001F 3A21001F 3A1F001F 3A2E001F 3A1E001F 3A1D001F 3A56101F "
    "3A54101F 3A550003 3A50001F 3A51001F 3A5A001F 3A5C001F 3A59001F 3A5D001F 3A5B001F 3A5E001F "
    "3A26001F 3A28001F 3A27001F 3A29001F 3A2A001F 3A2B001F 3A60001F 3A62001F 3A5F001F 3A63001F "
    "3A61001F 3A64001F 3A420040 3A410040 3A05001F]";

class WindowsMailAddressTableTest : public WindowsContactTest
{
  protected:
    std::vector<std::wstring> RowIDs()
    {
        std::vector<std::wstring> ids;
        for (const ItemEntry& entry : Entries())
            ids.push_back(entry.rowEntryID);
        return ids;
    }
    std::vector<std::wstring> ClientIDs()
    {
        std::vector<std::wstring> ids;
        for (const ItemEntry& entry : Entries())
            ids.push_back(entry.clientEntryID);
        return ids;
    }
    BOOL TakeRow(std::vector<SPropValue> values, int callType)
    {
        BOOL goesOn = TRUE;
        return table->OnPropertyRow(
            static_cast<ULONG>(values.size()), values.data(), callType, &goesOn);
    }
    static SPropValue Binary(ULONG tag, std::vector<BYTE>& bytes)
    {
        SPropValue value = {};
        value.ulPropTag = tag;
        value.Value.bin = {static_cast<ULONG>(bytes.size()), bytes.data()};
        return value;
    }
    static SPropValue Time(ULONG tag, std::uint64_t time)
    {
        SPropValue value = {};
        value.ulPropTag = tag;
        value.Value.ft = {static_cast<DWORD>(time), static_cast<DWORD>(time >> 32)};
        return value;
    }
    static SPropValue Missing(ULONG tag)
    {
        SPropValue value = {};
        value.ulPropTag = CHANGE_PROP_TYPE(tag, PT_ERROR);
        return value;
    }
    static constexpr ULONG kModified = PR_LAST_MODIFICATION_TIME;
};
} // namespace

// --- Loading -------------------------------------------------------------------------------------

TEST_F(WindowsMailAddressTableTest, LoadingOpensEveryEntryForItsType)
{
    AddContact("ann");
    store.AddBookEntry("choir", {}, MAPI_DISTLIST);
    AddContact("bob", {}, kFirstDay + 1);
    OpenTable();
    table->GetItemIDs();
    EXPECT_THAT(store.Calls(kStoreUsualCalls | kStoreReleases),
                ElementsAre("IABContainer(book).GetContentsTable(80000000)",
                            "IMAPITable(book contents table).SetColumns([0FFF0102 001A001F "
                            "30080040], 00000000)",
                            "IMAPITable(book contents table).GetRowCount(00000000)",
                            "IMAPITable(book contents table).QueryRows(3, 00000000)",
                            "IABContainer(book).OpenEntry(ann, null, 00000002, type)",
                            "release IMailUser(ann)",
                            "IABContainer(book).OpenEntry(choir, null, 00000002, type)",
                            "release IDistList(choir)",
                            "IABContainer(book).OpenEntry(bob, null, 00000002, type)",
                            "release IMailUser(bob)",
                            "release IMAPITable(book contents table)"));
    EXPECT_THAT(RowIDs(), ElementsAre(IdOf("ann"), IdOf("bob")));
    EXPECT_THAT(ClientIDs(), ElementsAre(L"ann", L"bob"));
    EXPECT_EQ(L"", Entries().front().folderKey);
    EXPECT_EQ(kFirstDay, Entries().front().lastModified);
    EXPECT_EQ(kFirstDay + 1, Entries().back().lastModified);
}

TEST_F(WindowsMailAddressTableTest, AnEntryThatDoesNotOpenIsNotListed)
{
    AddContact("ann");
    AddContact("bob");
    OpenTable();
    store.FailNext("IABContainer(book).OpenEntry(ann", StoreFault::CallFailed);
    table->GetItemIDs();
    EXPECT_THAT(ClientIDs(), ElementsAre(L"bob"));
}

TEST_F(WindowsMailAddressTableTest, ARowWithoutAnEntryIdIsNotListed)
{
    AddContact("ann");
    AddContact("bob");
    store.RemoveProp("ann", PR_ENTRYID);
    OpenTable();
    table->GetItemIDs();
    EXPECT_THAT(ClientIDs(), ElementsAre(L"bob"));
}

TEST_F(WindowsMailAddressTableTest, AnEmptyBookIsAnEmptyWalk)
{
    LoadTable();
    table->GetNextItem();
    EXPECT_FALSE(Current());
    EXPECT_THAT(Entries(), IsEmpty());
}

TEST_F(WindowsMailAddressTableTest, OutlookExpressShowsTheIdsAsTheyAre)
{
    AddContact("ann");
    LoadTable(true);
    EXPECT_THAT(ClientIDs(), ElementsAre(IdOf("ann")));
    EXPECT_EQ(L"ann", table->ToInternalID(L"ann"));
    EXPECT_EQ(IdOf("ann"), table->ToClientID(IdOf("ann")));
}

TEST_F(WindowsMailAddressTableTest, AnIdWithoutTheMarkerIsTheClientsOwn)
{
    store.AddBookEntry("ann");
    store.AddBookEntry("bob");
    store.SetEntryId("bob", MarkedID(L""));
    LoadTable();
    EXPECT_THAT(ClientIDs(), ElementsAre(IdOf("ann"), IdOf("bob")));
    EXPECT_EQ(IdOf("ann"), table->ToInternalID(IdOf("ann")));
    EXPECT_EQ(IdOf("ann"), table->ToClientID(IdOf("ann")));
}

// --- IDs -----------------------------------------------------------------------------------------

TEST_F(WindowsMailAddressTableTest, IdsAreTranslatedByTheList)
{
    AddContact("ann");
    AddContact("bob");
    LoadTable();
    EXPECT_EQ(IdOf("bob"), table->ToInternalID(L"bob"));
    EXPECT_EQ(L"bob", table->ToClientID(IdOf("bob")));
    EXPECT_EQ(L"carl", table->ToInternalID(L"carl"));
    EXPECT_EQ(L"0A0B", table->ToClientID(L"0A0B"));
    EXPECT_EQ(L"", table->ToInternalID(L""));
    EXPECT_EQ(L"", table->ToClientID(L""));
    // Case and direction matter.
    EXPECT_EQ(L"Bob", table->ToInternalID(L"Bob"));
    EXPECT_EQ(IdOf("bob"), table->ToInternalID(IdOf("bob")));
    EXPECT_EQ(L"bob", table->ToClientID(L"bob"));
    EXPECT_THAT(store.Calls(), IsEmpty());
}

TEST_F(WindowsMailAddressTableTest, TheFirstEntryOfAnIdentityCounts)
{
    AddContact("ann");
    store.AddBookEntry("twin");
    std::vector<BYTE> longer = MarkedID(L"ann");
    longer.push_back('x');
    longer.push_back(0);
    store.SetEntryId("twin", longer);
    LoadTable();
    EXPECT_THAT(ClientIDs(), ElementsAre(L"ann", L"ann"));
    EXPECT_EQ(IdOf("ann"), table->ToInternalID(L"ann"));
    EXPECT_EQ(L"ann", table->ToClientID(IdOf("twin")));
}

TEST_F(WindowsMailAddressTableTest, ResolvingAnIdToldNothingOfTheTime)
{
    OpenTable();
    std::vector<BYTE> marked = MarkedID(L"x");
    const SBinary id = {static_cast<ULONG>(marked.size()), marked.data()};
    DATE time = 7.0;
    EXPECT_EQ(L"x", table->ResolveClientID(L"HEX", id, time));
    EXPECT_EQ(0.0, time);
    time = 7.0;
    EXPECT_EQ(L"HEX", table->ResolveClientID(L"HEX", {id.cb, nullptr}, time));
    EXPECT_EQ(0.0, time);
    EXPECT_EQ(L"HEX", table->ResolveClientID(L"HEX", {0, id.lpb}, time));
    OpenTable(true);
    time = 7.0;
    EXPECT_EQ(L"HEX", table->ResolveClientID(L"HEX", id, time));
    EXPECT_EQ(0.0, time);
}

// --- Reading -------------------------------------------------------------------------------------

TEST_F(WindowsMailAddressTableTest, ReadingTakesThreeQuestions)
{
    AddContact("ann",
               StoreProps()
                   .Text(0x3A06001F, L"Ann")
                   .Text(0x3004001F, L"note")
                   .Text(0x660E001F, L"C:\\a.jpg"));
    LoadTable();
    table->GetNextItem();
    EXPECT_THAT(store.Calls(kStoreUsualCalls | kStoreReleases),
                ElementsAre("IABContainer(book).OpenEntry(ann, null, 00000002, type)",
                            "IMailUser(ann).GetProps(" + kAllTags + ", 80000000)",
                            "IMailUser(ann).GetProps([3004001F], 80000000)",
                            "IMailUser(ann).GetProps([660E001F], 80000000)",
                            "release IMailUser(ann)"));
    const auto contact = Current();
    EXPECT_THAT(TextOfContact(contact.Get()),
                ElementsAre("FirstName \"Ann\"", "Notes \"note\"", "Picture \"C:\\x005Ca.jpg\""));
    EXPECT_EQ(IdOf("ann"), IdIn(contact.Get()));
    EXPECT_EQ(kFirstDay, ModifiedIn(contact.Get()));
}

TEST_F(WindowsMailAddressTableTest, NotesAndPictureAreEmptyWhereThereAreNone)
{
    AddContact("ann");
    LoadTable();
    EXPECT_THAT(TextOfContact(Read("ann").Get()), ElementsAre("Notes \"\"", "Picture \"\""));
}

TEST_F(WindowsMailAddressTableTest, AFailedQuestionForTheNotesLeavesThemEmpty)
{
    AddContact("ann", StoreProps().Text(0x3004001F, L"note").Text(0x660E001F, L"a"));
    LoadTable();
    store.FailNext("IMailUser(ann).GetProps([3004001F]", StoreFault::CallFailed);
    EXPECT_THAT(TextOfContact(Read("ann").Get()), ElementsAre("Notes \"\"", "Picture \"a\""));
}

TEST_F(WindowsMailAddressTableTest, WhatIsNoContactIsNotFilled)
{
    AddContact("ann", StoreProps().Text(0x3A06001F, L"Ann"));
    LoadTable();
    ComPtr<INEntityItem> group;
    ASSERT_EQ(S_OK,
              CoCreateInstance(CLSID_NAppointment,
                               nullptr,
                               CLSCTX_ALL,
                               IID_INEntityItem,
                               reinterpret_cast<void**>(group.GetAddressOf())));
    table->FillItem(*group.Get(), PropertyView(0, nullptr));
    EXPECT_THAT(store.Calls(), IsEmpty());
    EXPECT_TRUE(table->ReadItem(*group.Get(), true).IsEmpty());
}

TEST_F(WindowsMailAddressTableTest, NothingIsFilledWithoutValuesOrAProvider)
{
    AddContact("ann", StoreProps().Text(0x3004001F, L"note"));
    LoadTable();
    const auto contact = ContactOf({});
    const auto item = QueryItem<INEntityItem>(contact.Get());
    SPropValue value = {};
    value.ulPropTag = 0x3A06001F;
    value.Value.lpszW = const_cast<wchar_t*>(L"Ann");
    table->FillItem(*item.Get(), PropertyView(45, nullptr));
    table->FillItem(*item.Get(), PropertyView(0, &value));
    session.reset();
    table->FillItem(*item.Get(), PropertyView(1, &value));
    EXPECT_THAT(TextOfContact(contact.Get()), IsEmpty());
}

TEST_F(WindowsMailAddressTableTest, ARowWithoutValuesChangesTheOpenContactInNothing)
{
    AddContact("ann", StoreProps().Text(0x3A06001F, L"Ann"));
    LoadTable();
    table->GetNextItem();
    const auto contact = Current();
    contact->put_Notes(Bstr(L"the client's").Get());
    store.ClearRecord();
    BOOL goesOn = TRUE;
    table->OnPropertyRow(0, nullptr, 10, &goesOn);
    table->OnPropertyRow(45, nullptr, 10, &goesOn);
    EXPECT_THAT(store.Calls(), IsEmpty()) << "no question for notes and picture";
    EXPECT_THAT(TextOfContact(contact.Get()),
                ElementsAre("FirstName \"Ann\"", "Notes \"the client's\"", "Picture \"\""));
}

// The ID comes first; notes and picture, which are asked for by themselves, come last.
TEST_F(WindowsMailAddressTableTest, FieldsAreSetInThisOrder)
{
    std::vector<SPropValue> values;
    for (const ULONG tag : WindowsContactColumnTags())
    {
        SPropValue value = {}; // a time of 0, a list of no texts
        value.ulPropTag = tag;
        if (PROP_TYPE(tag) == PT_UNICODE)
            value.Value.lpszW = const_cast<wchar_t*>(L"a");
        values.push_back(value);
    }
    LoadTable();
    const auto own = OwnContact::Make(ContactOf({}));
    own->put_EntityID(Bstr(L"0A").Get());
    own->calls.clear();
    table->FillItem(*own.Get(), PropertyView(static_cast<ULONG>(values.size()), values.data()));
    Calls expected = {"get string " + std::to_string(0x456E7472),
                      "put PersistentID",
                      "put LastModificationTime",
                      "put FirstName",
                      "put LastName",
                      "put MiddleName",
                      "put JobTitle",
                      "put CompanyName"};
    for (int type = 0; type < 13; ++type)
        expected.push_back("put PhoneNumber " + std::to_string(type));
    for (const char* const put : {"put Emails",
                                  "put Website",
                                  "put Address 0",
                                  "put Address 1",
                                  "put Address 2",
                                  "put Birthday",
                                  "put Anniversary",
                                  "put Suffix",
                                  "put Notes",
                                  "put Picture"})
        expected.push_back(put);
    EXPECT_EQ(expected, own->calls);

    // Without its ID the rest is set all the same.
    own->calls.clear();
    own->failing = {expected.front()};
    table->FillItem(*own.Get(), PropertyView(static_cast<ULONG>(values.size()), values.data()));
    expected.erase(expected.begin() + 1);
    EXPECT_EQ(expected, own->calls);
}

TEST_F(WindowsMailAddressTableTest, AWalkShowsContactsInTheOrderOfTheBook)
{
    AddContact("ann", StoreProps().Text(0x3A06001F, L"Ann"));
    store.AddBookEntry("choir", {}, MAPI_DISTLIST);
    AddContact("bob", StoreProps().Text(0x3A06001F, L"Bob"));
    LoadTable();
    std::vector<std::wstring> names;
    for (table->GetNextItem(); const auto contact = Current(); table->GetNextItem())
    {
        Bstr name;
        contact->get_FirstName(name.Put());
        names.push_back(TextOf(name.Get()));
    }
    EXPECT_THAT(names, ElementsAre(L"Ann", L"Bob"));
}

// --- Results of the walkers, one by one ----------------------------------------------------------

TEST_F(WindowsMailAddressTableTest, AnAddedEntryIsOpenedForItsOwnIdAndTime)
{
    AddContact("ann", {}, kFirstDay + 3);
    OpenTable();
    // The row may show another ID than the entry has itself.
    std::vector<BYTE> row = {9, 9, 9};
    store.SetRowEntryId("ann", row);
    EXPECT_TRUE(TakeRow({Binary(PR_ENTRYID, row), Time(kModified, FileTimeOf(1.0))}, 20));
    EXPECT_THAT(store.Calls(kStoreUsualCalls | kStoreReleases),
                ElementsAre("IABContainer(book).QueryInterface(IABContainer)",
                            "IABContainer(book).OpenEntry(ann (row), null, 00000010, type)",
                            "IMailUser(ann).GetProps([0FFF0102 30080040], 80000000)",
                            "release IMailUser(ann)"));
    ASSERT_THAT(Entries(), SizeIs(1));
    EXPECT_EQ(L"", Entries().back().folderKey);
    EXPECT_EQ(IdOf("ann"), Entries().back().rowEntryID);
    EXPECT_EQ(L"ann", Entries().back().clientEntryID);
    EXPECT_EQ(kFirstDay + 3, Entries().back().lastModified);
}

TEST_F(WindowsMailAddressTableTest, AnAddedEntryThatDoesNotOpenHasNoId)
{
    AddContact("ann");
    for (const char* const line : {"IABContainer(book).QueryInterface(IABContainer)",
                                   "IABContainer(book).OpenEntry(ann",
                                   "IMailUser(ann).GetProps"})
    {
        OpenTable();
        store.FailNext(line, StoreFault::CallFailed);
        std::vector<BYTE> id = store.EntryIdOf("ann");
        EXPECT_TRUE(TakeRow({Binary(PR_ENTRYID, id), Time(kModified, 1)}, 20)) << line;
        ASSERT_THAT(Entries(), SizeIs(1)) << line;
        EXPECT_EQ(L"", Entries().back().rowEntryID) << line;
        EXPECT_EQ(L"", Entries().back().clientEntryID) << line;
        EXPECT_EQ(0.0, Entries().back().lastModified) << line;
    }
}

TEST_F(WindowsMailAddressTableTest, ARowWithoutIdOrTimeAddsNothing)
{
    AddContact("ann");
    OpenTable();
    std::vector<BYTE> id = store.EntryIdOf("ann");
    EXPECT_FALSE(TakeRow({Missing(PR_ENTRYID), Time(kModified, 1)}, 20));
    EXPECT_FALSE(TakeRow({Binary(PR_ENTRYID, id), Missing(kModified)}, 20));
    EXPECT_THAT(Entries(), IsEmpty());
    EXPECT_THAT(store.Calls(), IsEmpty());
}

TEST_F(WindowsMailAddressTableTest, OutlookExpressTakesAnAddedRowAsItIs)
{
    AddContact("ann");
    OpenTable(true);
    std::vector<BYTE> id = store.EntryIdOf("ann");
    EXPECT_TRUE(TakeRow({Binary(PR_ENTRYID, id), Time(kModified, FileTimeOf(kFirstDay))}, 20));
    EXPECT_THAT(store.Calls(), IsEmpty());
    EXPECT_EQ(IdOf("ann"), Entries().back().rowEntryID);
    EXPECT_EQ(0.0, Entries().back().lastModified) << "the time read back is not used";
}

TEST_F(WindowsMailAddressTableTest, ATemplateBecomesTheOpenEntry)
{
    OpenTable();
    std::vector<BYTE> user = {'U', 's', 'e', 'r'};
    EXPECT_TRUE(TakeRow({Binary(PR_DEF_CREATE_MAILUSER, user)}, 200));
    EXPECT_THAT(store.Calls(),
                ElementsAre("IABContainer(book).QueryInterface(IABContainer)",
                            "IABContainer(book).CreateEntry(<55736572>, 00000004)"));
    EXPECT_TRUE(table->m_pCurrentEntity);
    table->m_pCurrentEntity.Reset();

    std::vector<BYTE> foreign = {1};
    EXPECT_FALSE(TakeRow({Binary(PR_DEF_CREATE_MAILUSER, foreign)}, 200));
    EXPECT_FALSE(table->m_pCurrentEntity);
    store.ClearRecord();
    EXPECT_FALSE(TakeRow({Missing(PR_DEF_CREATE_MAILUSER)}, 200));
    EXPECT_FALSE(TakeRow({}, 200));
    EXPECT_THAT(store.Calls(), IsEmpty());
}

TEST_F(WindowsMailAddressTableTest, UnknownWalksAreTheEnginesOwn)
{
    OpenTable();
    std::vector<BYTE> id = {1};
    for (const int callType : {1, 201, 210, -1})
        EXPECT_FALSE(TakeRow({Binary(PR_ENTRYID, id), Time(kModified, 1)}, callType));
    EXPECT_THAT(store.Calls(), IsEmpty());
}

// --- After the end of the provider ---------------------------------------------------------------

TEST_F(WindowsMailAddressTableTest, ADetachedTableAnswersWithFailures)
{
    AddContact("ann");
    LoadTable();
    table->GetNextItem();
    const auto contact = Current();
    session.reset();
    store.ClearRecord();
    EXPECT_FALSE(Current());
    table->GetItemIDs();
    table->ResetItem();
    table->GetNextItem();
    table->GetItemByID(IdOf("ann"));
    EXPECT_FALSE(Current());
    EXPECT_EQ(L"", Add(contact.Get()));
    EXPECT_FALSE(Update(contact.Get(), "ann"));
    EXPECT_FALSE(table->DeleteItem(IdOf("ann")));
    std::vector<BYTE> id = store.EntryIdOf("ann");
    for (const int callType : {0, 10, 20, 30, 200})
        EXPECT_FALSE(TakeRow({Binary(PR_ENTRYID, id), Time(kModified, 1)}, callType));
    EXPECT_THAT(Entries(), SizeIs(1)) << "the list stays";
    EXPECT_EQ(L"ann", table->ToClientID(IdOf("ann")));
    EXPECT_THAT(store.Calls(), IsEmpty());
}

namespace
{
class WindowsTableWithItem : public OpenWindowsTable
{
  public:
    using OpenWindowsTable::m_pCurrentItem;
    using OpenWindowsTable::OpenWindowsTable;
};
} // namespace

// The current item may hold the last reference to what owns the table: nothing is written to where
// the table was.
TEST_F(WindowsMailAddressTableTest, ADetachedTableMayEndWithItsCurrentItem)
{
    OpenTable();
    constexpr std::byte kFreed{0xDD};
    alignas(WindowsTableWithItem) std::array<std::byte, sizeof(WindowsTableWithItem)> memory;
    auto* const ending = new (memory.data())
        WindowsTableWithItem(session->Container(), session->Helper(), false, session->Book());
    auto item = FakeItem::Make(IID_NULL);
    item->onEnd = [&] {
        ending->~WindowsTableWithItem();
        memory.fill(kFreed);
    };
    ending->m_pCurrentItem = item.Get();
    item.Reset();
    session->Helper()->Live().DetachAll();
    EXPECT_THAT(memory, Each(kFreed));
}
