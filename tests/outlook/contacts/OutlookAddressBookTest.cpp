// The address book object over Outlook: service manager, automation objects and tables over the
// real discovery and the recording store.
#include "outlook/contacts/ContactCalls.h"
#include "outlook/contacts/ContactTableFixture.h"
#include "platform/SafeArray.h"
#include "service/ServiceManager.h"
#include "support/RegistrySandbox.h"
#include "support/TypeLibraryRegistration.h"
#include "tests/automation/CollectionFixture.h"
#include "tests/outlook/OutlookInstallation.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>

using Microsoft::WRL::ComPtr;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

namespace
{
class OutlookAddressBookTest : public testing::Test
{
  protected:
    OutlookAddressBookTest() { Fill(&NameContactProperties); }
    // Knows the names that one names.
    void Fill(void (*nameProperties)(RecordingStore&))
    {
        store.AddUsualFolders();
        nameProperties(store);
        store.AddFolder("family", "contacts", L"IPF.Contact");
        // Else the logon would create it, and new messages would count from there.
        store.AddMessage("categories",
                         "calendar",
                         StoreProps().Text(PR_MESSAGE_CLASS_W, L"IPM.Configuration.CategoryList"),
                         true);
        store.AddIdentity(
            StoreProps().Text(0x3003001F, L"/o=Acme/cn=me").Text(0x39FE001F, L"me@acme"));
        AddContact("ann", "contacts", L"Ann", 45292.0);
        AddContact("bob", "family", L"Bob", 45293.0);
    }
    ~OutlookAddressBookTest() override
    {
        book.Reset();
        service.Reset();
        manager.StopService();
        EXPECT_EQ("", store.Complaints());
    }
    void AddContact(const char* name, const char* folder, const wchar_t* first, DATE utcModified)
    {
        store.AddMessage(
            name,
            folder,
            StoreProps().Text(PR_MESSAGE_CLASS_W, L"IPM.Contact").Text(0x3A06001F, first));
        const auto time = static_cast<std::uint64_t>(utcModified + 109205.0) * 864'000'000'000ull;
        store.SetTimes(name, time, time);
    }
    void AddList(const char* name, const wchar_t* listName)
    {
        const ULONG tag = PROP_TAG(PT_UNICODE, store.NameProperty(kAddressNames, 0x8053));
        store.AddMessage(
            name,
            "contacts",
            StoreProps().Text(PR_MESSAGE_CLASS_W, L"IPM.DistList").Text(tag, listName));
    }
    // As a client does.
    void Start()
    {
        service = CreateObject<INPersonalInformationService>(CLSID_NPersonalInformationService);
        ASSERT_TRUE(service);
        ASSERT_EQ(S_OK, service->StartService(Bstr(L"Microsoft Outlook").Get()));
        ASSERT_EQ(S_OK, service->GetAddressBook(book.GetAddressOf()));
        ASSERT_TRUE(book);
    }
    std::wstring IdOf(const char* name) const { return HexOf(store.EntryIdOf(name)); }
    static std::wstring TextIn(INContactItem* contact,
                               HRESULT (STDMETHODCALLTYPE INContactItem::*get)(BSTR*))
    {
        Bstr text;
        (contact->*get)(text.Put());
        return text ? TextOf(text.Get()) : L"(null)";
    }
    // First names of a walk.
    std::vector<std::wstring> Walk()
    {
        VARIANT_BOOL done = VARIANT_FALSE;
        EXPECT_EQ(S_OK, book->ResetItem(&done));
        std::vector<std::wstring> names;
        ComPtr<INContactItem> contact;
        while (names.size() < 50 && book->GetNextItem(contact.ReleaseAndGetAddressOf()) == S_OK)
            names.push_back(TextIn(contact.Get(), &INContactItem::get_FirstName));
        EXPECT_FALSE(contact);
        return names;
    }

    // Names of a walk over the groups.
    std::vector<std::wstring> Groups()
    {
        VARIANT_BOOL done = VARIANT_FALSE;
        EXPECT_EQ(S_OK, book->ResetGroup(&done));
        std::vector<std::wstring> names;
        ComPtr<INContactGroup> group;
        while (names.size() < 50 && book->GetNextGroup(group.ReleaseAndGetAddressOf()) == S_OK)
        {
            Bstr name;
            EXPECT_EQ(S_OK, group->get_Name(name.Put()));
            names.push_back(TextOf(name.Get()));
        }
        return names;
    }

    RecordingStore store;
    OutlookInstallation installation{RecordingStore::Path()};
    CServiceManager manager;
    const ScopedServiceManager current{manager};
    ComPtr<INPersonalInformationService> service;
    ComPtr<INAddressBook> book;
};
} // namespace

TEST_F(OutlookAddressBookTest, WalksTheContactsOfEveryFolder)
{
    Start();
    EXPECT_THAT(Walk(), ElementsAre(L"Ann", L"Bob"));
    ComPtr<INContactItem> contact;
    ASSERT_EQ(S_OK, book->GetItemByID(Bstr(IdOf("bob")).Get(), contact.GetAddressOf()));
    EXPECT_EQ(L"Bob", TextIn(contact.Get(), &INContactItem::get_FirstName));
    EXPECT_EQ(IdOf("bob"), TextIn(contact.Get(), &INContactItem::get_PersistentID));
    EXPECT_EQ(IdOf("family"), TextIn(contact.Get(), &INContactItem::get_ParentFolderID));
}

TEST_F(OutlookAddressBookTest, IsLoadedAndBeforeTheFirstContactWhenItIsMade)
{
    Start();
    ComPtr<INContactItem> contact;
    EXPECT_EQ(S_OK, book->GetNextItem(contact.GetAddressOf()));
    EXPECT_EQ(L"Ann", TextIn(contact.Get(), &INContactItem::get_FirstName));
}

TEST_F(OutlookAddressBookTest, ARefreshShowsEveryContactTwice)
{
    Start();
    EXPECT_EQ(S_OK, book->Refresh());
    EXPECT_THAT(Walk(), ElementsAre(L"Ann", L"Bob", L"Ann", L"Bob"));
}

TEST_F(OutlookAddressBookTest, AnEmptyStoreEndsTheWalkAtOnce)
{
    store.Remove("ann");
    store.Remove("bob");
    Start();
    EXPECT_THAT(Walk(), IsEmpty());
}

TEST_F(OutlookAddressBookTest, AStaleEntryGivesTheContactBeforeIt)
{
    Start();
    VARIANT_BOOL done = VARIANT_FALSE;
    EXPECT_EQ(S_OK, book->DeleteItem(Bstr(IdOf("bob")).Get(), &done));
    EXPECT_EQ(VARIANT_TRUE, done);
    EXPECT_THAT(Walk(), ElementsAre(L"Ann", L"Ann"));
}

TEST_F(OutlookAddressBookTest, TellsTheBasicsOfAllContacts)
{
    Start();
    const RegistrySandbox classes(HKEY_CLASSES_ROOT); // for the type library alone
    const TypeLibraryRegistration registration;
    ASSERT_EQ(S_OK, registration.Result());
    store.ClearRecord();
    UniqueSafeArray array;
    EXPECT_EQ(S_OK, book->GetAllItemsWithBasicInfo(array.Put()));
    ASSERT_TRUE(array);
    ASSERT_EQ(2u, array.Get()->rgsabound[0].cElements);
    {
        const SafeArrayAccess<_tagBasicContactInfo> records(array.Get());
        EXPECT_EQ(IdOf("ann"), records.Data()[0].bstrEntryID);
        EXPECT_EQ(IdOf("contacts"), records.Data()[0].bstrParentFolderEntryID);
        EXPECT_EQ(45292.0, records.Data()[0].dbLastModify);
        EXPECT_EQ(IdOf("bob"), records.Data()[1].bstrEntryID);
        EXPECT_EQ(IdOf("family"), records.Data()[1].bstrParentFolderEntryID);
        EXPECT_EQ(45293.0, records.Data()[1].dbLastModify);
    }
    // The store is not asked.
    EXPECT_THAT(store.Calls(), IsEmpty());
}

TEST_F(OutlookAddressBookTest, AddsUpdatesAndDeletes)
{
    Start();
    const auto contact = ContactOf(LinesOf(R"(FirstName "Cid")"));
    const Bstr mine(L"mine");
    BSTR folderID = mine.Get();
    Bstr id;
    EXPECT_EQ(S_OK, book->AddItemEx(contact.Get(), &folderID, id.Put()));
    EXPECT_EQ(IdOf("new 1"), TextOf(id.Get()));
    EXPECT_EQ(mine.Get(), folderID); // the table tells no folder
    EXPECT_THAT(store.ChildrenOf("contacts"), Contains("new 1"));
    // The identity's stamp.
    EXPECT_THAT(store.PropsOf("new 1"), Contains("80E0001F \"/o=Acme/cn=me\""));
    EXPECT_THAT(store.PropsOf("new 1"), Contains("80E1001F \"me@acme\""));
    EXPECT_THAT(store.Calls(),
                Contains(std::string("IMAPIFolder(contacts).GetIDsFromNames([") + kCommonSetText +
                         " 8581 8580], 00000000)"));

    contact->put_FirstName(Bstr(L"Cyd").Get());
    VARIANT_BOOL done = VARIANT_FALSE;
    EXPECT_EQ(S_OK, book->UpdateItem(contact.Get(), &done));
    EXPECT_EQ(VARIANT_TRUE, done);
    EXPECT_THAT(store.PropsOf("new 1"), Contains("3A06001F \"Cyd\""));
    EXPECT_THAT(Walk(), ElementsAre(L"Ann", L"Bob", L"Cyd"));

    EXPECT_EQ(S_OK, book->DeleteItem(id.Get(), &done));
    EXPECT_FALSE(store.Exists("new 1"));
    Bstr second;
    EXPECT_EQ(S_OK, book->AddItem(contact.Get(), second.Put()));
    EXPECT_EQ(IdOf("new 2"), TextOf(second.Get()));
}

// All that adding a contact may have to do, the identity's stamp among it.
TEST_F(OutlookAddressBookTest, AddsInThisOrder)
{
    Start();
    const ScratchDirectory files;
    const std::wstring picture = files.File(L"a.png");
    std::ofstream(std::filesystem::path(picture), std::ios::binary) << "abc";
    store.ClearRecord();
    Bstr id;
    EXPECT_EQ(S_OK,
              book->AddItem(ContactOf(LinesOf(R"(
                                FirstName "Cid"
                                Email "a@b"
                                Business.City "Bonn"
                                Category "Friends"
                                Picture )" + QuotedText(picture)))
                                .Get(),
                            id.Put()));
    const std::string askFolder = "IMAPIFolder(contacts).GetIDsFromNames([";
    EXPECT_THAT(
        store.Calls(),
        ElementsAre(
            "IMAPIFolder(contacts).QueryInterface(IMAPIFolder)",
            "IMAPIFolder(contacts).CreateMessage(null, 00000000)",
            "IMessage(new 1).QueryInterface(IMAPIProp)",
            askFolder + kAddressSetText +
                " 8062 8083 8080 8084 8082 8093 8090 8094 8092 80A3 80A0 80A4 80A2 80DE 80DF 8005 "
                "8006 8028 8029], 00000000)",
            // The business address.
            "IMessage(new 1).QueryInterface(IMAPIProp)",
            std::string("IMessage(new 1).GetIDsFromNames([") + kAddressSetText +
                " 8049 8047 8046 8045 8048 804A 801B], 00000000)",
            // The stamp: the identity is read anew, then its names are asked for.
            "IMailUser(identity).GetProps([3A00001F 3002001F 3001001F 3A16001F 3003001F 3A06001F "
            "3A11001F 3A19001F 39FE001F 3A20001F], 80000000)",
            askFolder + kCommonSetText + " 8581 8580], 00000000)",
            // The picture.
            askFolder + kAddressSetText + " 8015], 00000000)",
            "IMessage(new 1).QueryInterface(IMessage)",
            "IMessage(new 1).CreateAttach(null, 00000000)",
            "IAttach(new 1#0).OpenProperty(37010102, IStream, 0, 00000003)",
            "IStream(new 1#0 37010102 stream).Write(3)",
            "IStream(new 1#0 37010102 stream).Commit(00000001)",
            MarkingPictureCall("new 1#0", "3"),
            "IAttach(new 1#0).SaveChanges(00000004)",
            // The categories.
            askFolder + kPublicSetText + " \"Keywords\"], 00000000)",
            "IMessage(new 1).SetProps({001A001F \"IPM.Contact\", 3A06001F \"Cid\", 3A17001F \"\", "
            "3A16001F \"\", 8083001F \"a@b\", 8080001F \"Cid (a@b)\", 8084001F \"a@b\", 8082001F "
            "\"SMTP\", 80290003 1, 80281003 [0], 8046001F \"Bonn\", 3001001F \"Cid\", 0037001F "
            "\"Cid\", 8005001F \"Cid\", 80060003 32823, 80E0001F \"/o=Acme/cn=me\", 80E1001F "
            "\"me@acme\", 8015000B 1, 10800003 512, 80E2101F [\"Friends\"]}, problems)",
            "IMessage(new 1).SaveChanges(00000004)",
            "IMessage(new 1).GetProps([0FFF0102 30080040], 80000000)",
            "IMAPIFolder(contacts).OpenEntry(new 1, null, 00000002, type)",
            "IMessage(new 1).GetProps([0FFF0102 30080040], 80000000)"));
}

TEST_F(OutlookAddressBookTest, AFailedLookupOfTheStampLeavesItOut)
{
    Start();
    store.FailNext(std::string("IMAPIFolder(contacts).GetIDsFromNames([") + kCommonSetText,
                   StoreFault::CallFailed);
    Bstr id;
    EXPECT_EQ(S_OK, book->AddItem(ContactOf(LinesOf(R"(FirstName "Cid")")).Get(), id.Put()));
    const auto props = store.PropsOf("new 1");
    EXPECT_THAT(props, Not(Contains(StartsWith("80E0"))));
    EXPECT_THAT(props, Not(Contains(StartsWith("80E1"))));
    EXPECT_THAT(props, Contains("3A06001F \"Cid\""));
    EXPECT_THAT(props, Contains("10800003 512")); // what stands behind it
}

TEST_F(OutlookAddressBookTest, EachTextOfTheStampNeedsItsName)
{
    // The name that is known has the first ID, 8000.
    const struct
    {
        void (*name)(RecordingStore&);
        std::vector<std::string> stamp;
    } cases[] = {
        {[](RecordingStore&) {}, {}},
        {[](RecordingStore& target) { target.NameProperty(kCommonNames, 0x8581); },
         {"8000001F \"/o=Acme/cn=me\""}},
        {[](RecordingStore& target) { target.NameProperty(kCommonNames, 0x8580); },
         {"8000001F \"me@acme\""}},
    };
    for (const auto& one : cases)
    {
        book.Reset();
        service.Reset();
        manager.StopService();
        store.Reset();
        Fill(one.name);
        Start();
        Bstr id;
        EXPECT_EQ(S_OK, book->AddItem(ContactOf({}).Get(), id.Put()));
        auto named = store.PropsOf("new 1");
        std::erase_if(named, [](const std::string& line) { return line[0] != '8'; });
        EXPECT_EQ(one.stamp, named);
    }
}

TEST_F(OutlookAddressBookTest, TextsOfTheIdentityThatAreMissingLeaveNoStamp)
{
    store.SetProps("identity", StoreProps().Text(0x39FE001F, L""));
    store.RemoveProp("identity", 0x3003001F);
    Start();
    Bstr id;
    EXPECT_EQ(S_OK, book->AddItem(ContactOf({}).Get(), id.Put()));
    EXPECT_THAT(store.PropsOf("new 1"), Not(Contains(StartsWith("80E0"))));
    EXPECT_THAT(store.PropsOf("new 1"), Not(Contains(StartsWith("80E1"))));
}

TEST_F(OutlookAddressBookTest, ReadsUpdatesAndDeletesGroups)
{
    AddList("friends", L"Friends");
    AddList("foes", L"Foes");
    Start();
    EXPECT_THAT(Groups(), ElementsAre(L"Friends", L"Foes"));
    ComPtr<INContactGroup> group;
    ASSERT_EQ(S_OK, book->GetGroupByID(Bstr(IdOf("friends")).Get(), group.GetAddressOf()));
    Bstr name;
    EXPECT_EQ(S_OK, group->get_Name(name.Put()));
    EXPECT_EQ(L"Friends", TextOf(name.Get()));
    group->put_Name(Bstr(L"Fellows").Get());
    VARIANT_BOOL done = VARIANT_FALSE;
    EXPECT_EQ(S_OK, book->UpdateGroup(group.Get(), &done));
    EXPECT_EQ(VARIANT_TRUE, done);
    EXPECT_THAT(Groups(), ElementsAre(L"Fellows", L"Foes"));
    EXPECT_EQ(S_OK, book->DeleteGroup(Bstr(IdOf("foes")).Get(), &done));
    EXPECT_EQ(VARIANT_TRUE, done);
    EXPECT_FALSE(store.Exists("foes"));
    // Lists are no contacts.
    EXPECT_THAT(Walk(), ElementsAre(L"Ann", L"Bob"));
}

TEST_F(OutlookAddressBookTest, ARefreshDoesNotLoadGroupsAgain)
{
    AddList("friends", L"Friends");
    Start();
    AddList("foes", L"Foes");
    EXPECT_EQ(S_OK, book->Refresh());
    EXPECT_THAT(Groups(), ElementsAre(L"Friends"));
}

// A new group goes to the table of contacts, which takes no group: the message is dropped unsaved.
TEST_F(OutlookAddressBookTest, AGroupCannotBeAdded)
{
    Start();
    store.ClearRecord();
    const auto group = CreateObject<INContactGroup>(CLSID_NContactGroup);
    group->put_Name(Bstr(L"Friends").Get());
    Bstr id;
    EXPECT_EQ(E_FAIL, book->AddGroup(group.Get(), id.Put()));
    EXPECT_THAT(store.Calls(),
                ElementsAre("IMAPIFolder(contacts).QueryInterface(IMAPIFolder)",
                            "IMAPIFolder(contacts).CreateMessage(null, 00000000)",
                            "IMessage(new 1).QueryInterface(IMAPIProp)"));
    EXPECT_THAT(store.ChildrenOf("contacts"), ElementsAre("family", "ann"));
}

TEST_F(OutlookAddressBookTest, AnEnumeratorOfGroupsAddsWhatIsNoGroupLater)
{
    AddList("friends", L"Friends");
    Start();
    ComPtr<INEnumerator> groups;
    ASSERT_EQ(S_OK, service->GetEnumerator(ContactGroup, groups.GetAddressOf()));
    const auto group = CreateObject<INContactGroup>(CLSID_NContactGroup);
    group->put_Name(Bstr(L"Foes").Get());
    Bstr id;
    EXPECT_EQ(S_OK, groups->AddItem(QueryItem<INEntityItem>(group.Get()).Get(), id.Put()));
    EXPECT_EQ(IdOf("new 1"), TextOf(id.Get()));
    EXPECT_THAT(store.PropsOf("new 1"), Contains("001A001F \"IPM.Appointment\""));
    ComPtr<INEntityItem> item;
    EXPECT_EQ(S_OK, groups->GetItemByID(id.Get(), item.GetAddressOf()));
    groups.Reset();
    ASSERT_EQ(S_OK, service->GetEnumerator(ContactGroup, groups.GetAddressOf()));
    EXPECT_EQ(S_OK, groups->GetNextItem(item.ReleaseAndGetAddressOf()));
    EXPECT_TRUE(QueryItem<INContactGroup>(item.Get()));
    EXPECT_EQ(E_FAIL, groups->GetNextItem(item.ReleaseAndGetAddressOf()));
    groups.Reset();
}

TEST_F(OutlookAddressBookTest, AnEnumeratorOfContactsIsLoadedToo)
{
    Start();
    ComPtr<INEnumerator> contacts;
    ASSERT_EQ(S_OK, service->GetEnumerator(AddressBook, contacts.GetAddressOf()));
    ASSERT_TRUE(contacts);
    ComPtr<INEntityItem> item;
    EXPECT_EQ(S_OK, contacts->GetNextItem(item.GetAddressOf()));
    EXPECT_EQ(L"Ann",
              TextIn(QueryItem<INContactItem>(item.Get()).Get(), &INContactItem::get_FirstName));
    contacts.Reset();
}

TEST_F(OutlookAddressBookTest, AfterAStopItAnswersWithFailures)
{
    Start();
    ComPtr<INContactItem> contact;
    ASSERT_EQ(S_OK, book->GetNextItem(contact.GetAddressOf()));
    EXPECT_EQ(S_OK, service->StopService());
    store.ClearRecord();
    VARIANT_BOOL done = VARIANT_FALSE;
    ComPtr<INContactItem> none;
    EXPECT_EQ(S_OK, book->Refresh());
    EXPECT_EQ(S_OK, book->ResetItem(&done));
    EXPECT_EQ(E_FAIL, book->GetNextItem(none.GetAddressOf()));
    EXPECT_EQ(E_FAIL, book->GetItemByID(Bstr(IdOf("ann")).Get(), none.GetAddressOf()));
    EXPECT_EQ(E_FAIL, book->UpdateItem(contact.Get(), &done));
    EXPECT_EQ(E_FAIL, book->DeleteItem(Bstr(IdOf("ann")).Get(), &done));
    Bstr id;
    EXPECT_EQ(E_FAIL, book->AddItem(contact.Get(), id.Put()));
    EXPECT_THAT(store.Calls(), IsEmpty());
    EXPECT_EQ(L"Ann", TextIn(contact.Get(), &INContactItem::get_FirstName));
}

TEST_F(OutlookAddressBookTest, GroupsAndCategoriesHeldOverAStopAnswerWithFailures)
{
    AddList("friends", L"Friends");
    store.SetProps(
        "categories",
        StoreProps().Bytes(0x7C080102, {'<', 'r', '>', '<', 'c', '/', '>', '<', '/', 'r', '>'}));
    Start();
    ComPtr<INContactGroup> group;
    ASSERT_EQ(S_OK, book->GetNextGroup(group.GetAddressOf()));
    ComPtr<INEnumerator> tables[2];
    ComPtr<INEntityItem> items[2];
    for (const int i : {0, 1})
    {
        const auto type = i == 0 ? ContactGroup : ContactCategory;
        ASSERT_EQ(S_OK, service->GetEnumerator(type, tables[i].GetAddressOf()));
        ASSERT_EQ(S_OK, tables[i]->GetNextItem(items[i].GetAddressOf()));
        VARIANT_BOOL done = VARIANT_FALSE;
        EXPECT_EQ(S_OK, tables[i]->ResetItem(&done));
    }
    EXPECT_EQ(S_OK, service->StopService());
    store.ClearRecord();
    VARIANT_BOOL done = VARIANT_FALSE;
    ComPtr<INContactGroup> none;
    EXPECT_EQ(S_OK, book->ResetGroup(&done));
    EXPECT_EQ(E_FAIL, book->GetNextGroup(none.GetAddressOf()));
    EXPECT_EQ(E_FAIL, book->GetGroupByID(Bstr(IdOf("friends")).Get(), none.GetAddressOf()));
    EXPECT_EQ(E_FAIL, book->UpdateGroup(group.Get(), &done));
    EXPECT_EQ(E_FAIL, book->DeleteGroup(Bstr(IdOf("friends")).Get(), &done));
    for (const int i : {0, 1})
    {
        INEnumerator& table = *tables[i].Get();
        ComPtr<INEntityItem> item;
        EXPECT_EQ(S_OK, table.Refresh());
        EXPECT_EQ(S_OK, table.ResetItem(&done));
        EXPECT_EQ(E_FAIL, table.GetNextItem(item.GetAddressOf()));
        EXPECT_EQ(E_FAIL, table.GetItemByID(Bstr(IdOf("friends")).Get(), item.GetAddressOf()));
        EXPECT_EQ(E_FAIL, table.UpdateItem(items[i].Get(), &done));
        EXPECT_EQ(E_FAIL, table.DeleteItem(Bstr(IdOf("friends")).Get(), &done));
        Bstr id;
        EXPECT_EQ(E_FAIL, table.AddItem(items[i].Get(), id.Put()));
    }
    EXPECT_THAT(store.Calls(), IsEmpty());
    EXPECT_TRUE(store.Exists("friends"));
}
