// The contacts of the message store as clients of other processes use them: a contact is added,
// read, changed and deleted, with its picture and its folder.
#include "endtoend/CalendarClient.h"
#include "endtoend/MessageStore.h"
#include "platform/SafeArray.h"

#include <gmock/gmock.h>

#include <fstream>
#include <iterator>

using Microsoft::WRL::ComPtr;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

namespace
{
constexpr wchar_t kOutlook[] = L"Microsoft Outlook";
const std::string kContacts = "0000000050530301F0000000000000000000000000000031";
const std::string kFamily = "0000000050530301F0000000000000000000000000000032";
const std::string kFriends = "0000000050530501E00000000000000000000000000000B1";
const std::string kBob = "0000000050530501E0000000000000000000000000000033";

std::wstring Wide(const std::string& text)
{
    return {text.begin(), text.end()};
}

// Contacts with one group, a folder in it with one contact, and a calendar.
std::string StoreText()
{
    return R"({"format": "PimStoreBridge store", "version": 1, "identity": {"properties": [
                  {"tag": "PR_EMAIL_ADDRESS_W", "value": "/o=Fjord/cn=oda"},
                  {"tag": "PR_SMTP_ADDRESS_W", "value": "oda@example.org"}]},
               "root": {"folders": [{"name": "Top", "roles": ["subtree"], "folders": [
                  {"name": "Contacts", "class": "IPF.Contact", "roles": ["contacts"],
                   "entryId": ")" +
           kContacts + R"(", "messages": [{"entryId": ")" + kFriends + R"(", "properties": [
                      {"tag": "PR_MESSAGE_CLASS_W", "value": "IPM.DistList"},
                      {"set": "PSETID_Address", "id": "0x8053", "type": "PT_UNICODE",
                       "value": "Friends"}]}], "folders": [
                      {"name": "Family", "class": "IPF.Contact", "entryId": ")" +
           kFamily + R"(", "messages": [{"entryId": ")" + kBob + R"(", "properties": [
                          {"tag": "PR_MESSAGE_CLASS_W", "value": "IPM.Contact"},
                          {"tag": "PR_GIVEN_NAME_W", "value": "Bob"}]}]}]},
                  {"name": "Calendar", "class": "IPF.Appointment", "roles": ["calendar"],
                   "associated": [{"properties": [
                      {"tag": "PR_MESSAGE_CLASS_W", "value": "IPM.Configuration.CategoryList"}]}]}
               ]}]}})";
}

using TextGet = HRESULT (STDMETHODCALLTYPE INContactItem::*)(BSTR*);

std::wstring TextIn(INContactItem* contact, TextGet get)
{
    Bstr text;
    (contact->*get)(text.Put());
    return text ? TextOf(text.Get()) : L"(null)";
}

std::string BytesOf(const std::wstring& path)
{
    std::ifstream file(std::filesystem::path(path), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

class MessageStoreContactsTest : public testing::Test
{
  protected:
    static void SetUpTestSuite()
    {
        s_store = std::make_unique<MessageStore>(RecordArrays::LeftToTheRuntime);
    }
    static void TearDownTestSuite() { s_store.reset(); }
    void SetUp() override
    {
        s_store->Load(StoreText());
        service = StartBackEnd(kOutlook);
        ASSERT_TRUE(service);
        ASSERT_EQ(S_OK, service->GetAddressBook(book.GetAddressOf()));
        ASSERT_TRUE(book);
    }
    void TearDown() override
    {
        book.Reset();
        if (service)
        {
            EXPECT_EQ(S_OK, service->StopService());
        }
    }

    ComPtr<INContactItem> Read(const std::wstring& id)
    {
        ComPtr<INContactItem> contact;
        EXPECT_EQ(S_OK, book->GetItemByID(Bstr(id).Get(), contact.GetAddressOf()));
        return contact;
    }
    // A contact in the server, as clients make them.
    static ComPtr<INContactItem> NewContact(const wchar_t* firstName)
    {
        auto contact = MakeInServer<INContactItem>(CLSID_NContactItem);
        contact->put_FirstName(Bstr(firstName).Get());
        return contact;
    }

    static inline std::unique_ptr<MessageStore> s_store;
    ComPtr<INPersonalInformationService> service;
    ComPtr<INAddressBook> book;
};
} // namespace

TEST_F(MessageStoreContactsTest, AContactIsAddedReadChangedAndDeleted)
{
    const auto contact = NewContact(L"Oda");
    contact->put_PhoneNumber(Mobile, Bstr(L"+47 900").Get());
    UniqueSafeArray emails(SafeArrayCreateVector(VT_BSTR, 0, 1));
    {
        const SafeArrayAccess<BSTR> texts(emails.Get());
        texts.Data()[0] = Bstr(L"oda@example.org").Detach();
    }
    contact->put_Emails(emails.Get());
    Bstr folderID;
    Bstr id;
    ASSERT_EQ(S_OK, book->AddItemEx(contact.Get(), folderID.Put(), id.Put()));
    EXPECT_FALSE(folderID); // the table names no folder for a new contact

    const auto read = Read(TextOf(id.Get()));
    ASSERT_TRUE(read);
    EXPECT_EQ(L"Oda", TextIn(read.Get(), &INContactItem::get_FirstName));
    EXPECT_EQ(TextOf(id.Get()), TextIn(read.Get(), &INContactItem::get_PersistentID));
    Bstr number;
    EXPECT_EQ(S_OK, read->get_PhoneNumber(Mobile, number.Put()));
    EXPECT_EQ(L"+47 900", number.View());
    UniqueSafeArray readEmails;
    ASSERT_EQ(S_OK, read->get_Emails(readEmails.Put()));
    EXPECT_EQ(L"oda@example.org", TextOf(SafeArrayAccess<BSTR>(readEmails.Get()).Data()[0]));
    // Who wrote it.
    EXPECT_THAT(s_store->Dump(),
                HasSubstr(R"("id": "0x8581", "type": "PT_UNICODE", "value": "/o=Fjord/cn=oda"})"));
    EXPECT_THAT(s_store->Dump(),
                HasSubstr(R"("id": "0x8580", "type": "PT_UNICODE", "value": "oda@example.org"})"));

    read->put_FirstName(Bstr(L"Odd").Get());
    VARIANT_BOOL done = VARIANT_FALSE;
    EXPECT_EQ(S_OK, book->UpdateItem(read.Get(), &done));
    EXPECT_EQ(VARIANT_TRUE, done);
    EXPECT_EQ(L"Odd", TextIn(Read(TextOf(id.Get())).Get(), &INContactItem::get_FirstName));
    EXPECT_EQ(S_OK, book->DeleteItem(id.Get(), &done));
    EXPECT_THAT(s_store->Dump(), Not(HasSubstr("Odd")));
}

TEST_F(MessageStoreContactsTest, AContactOfAnotherFolderTellsThatFolder)
{
    VARIANT_BOOL done = VARIANT_FALSE;
    ASSERT_EQ(S_OK, book->ResetItem(&done));
    ComPtr<INContactItem> bob;
    ASSERT_EQ(S_OK, book->GetNextItem(bob.GetAddressOf()));
    EXPECT_EQ(Wide(kBob), TextIn(bob.Get(), &INContactItem::get_PersistentID));
    EXPECT_EQ(Wide(kFamily), TextIn(bob.Get(), &INContactItem::get_ParentFolderID));
    ComPtr<INContactItem> none;
    EXPECT_EQ(E_FAIL, book->GetNextItem(none.GetAddressOf()));
    EXPECT_EQ(S_OK, book->DeleteItem(Bstr(Wide(kBob)).Get(), &done));
    EXPECT_THAT(s_store->Dump(), Not(HasSubstr(kBob)));
}

// Through files that both processes reach; the server leaves the one that it made.
TEST_F(MessageStoreContactsTest, APictureGoesThereAndBack)
{
    const ScratchDirectory files;
    const std::wstring path = files.File(L"oda.png");
    const std::string bytes(20'000, '\x5A');
    std::ofstream(std::filesystem::path(path), std::ios::binary) << bytes;
    const auto contact = NewContact(L"Oda");
    contact->put_Picture(Bstr(path).Get());
    Bstr id;
    ASSERT_EQ(S_OK, book->AddItem(contact.Get(), id.Put()));
    const std::wstring read = TextIn(Read(TextOf(id.Get())).Get(), &INContactItem::get_Picture);
    EXPECT_NE(path, read);
    EXPECT_EQ(bytes, BytesOf(read));
    // Beside it stands the file that reserved its name; both are the server's, which removes them
    // when they are a day old.
    std::error_code error;
    std::filesystem::remove(read, error);
    std::filesystem::remove(read.substr(0, read.rfind(L'.')), error);
}

TEST_F(MessageStoreContactsTest, GroupsAreReachedThroughTheAddressBook)
{
    const auto nameOf = [](INContactGroup* group) {
        Bstr name;
        group->get_Name(name.Put());
        return TextOf(name.Get());
    };
    VARIANT_BOOL done = VARIANT_FALSE;
    EXPECT_EQ(S_OK, book->ResetGroup(&done));
    EXPECT_EQ(VARIANT_TRUE, done);
    ComPtr<INContactGroup> group;
    ASSERT_EQ(S_OK, book->GetNextGroup(group.GetAddressOf()));
    EXPECT_EQ(L"Friends", nameOf(group.Get()));
    EXPECT_EQ(E_FAIL, book->GetNextGroup(group.ReleaseAndGetAddressOf()));
    EXPECT_FALSE(group);
    EXPECT_EQ(E_FAIL, book->GetGroupByID(Bstr(L"0A").Get(), group.ReleaseAndGetAddressOf()));
    ASSERT_EQ(S_OK, book->GetGroupByID(Bstr(Wide(kFriends)).Get(), group.ReleaseAndGetAddressOf()));
    EXPECT_EQ(L"Friends", nameOf(group.Get()));

    // One to add goes to the contacts, which take none.
    const auto added = MakeInServer<INContactGroup>(CLSID_NContactGroup);
    added->put_Name(Bstr(L"Added").Get());
    Bstr id;
    EXPECT_EQ(E_FAIL, book->AddGroup(added.Get(), id.Put()));
    EXPECT_THAT(s_store->Dump(), Not(HasSubstr("Added")));

    group->put_Name(Bstr(L"Foes").Get());
    done = VARIANT_FALSE;
    EXPECT_EQ(S_OK, book->UpdateGroup(group.Get(), &done));
    EXPECT_EQ(VARIANT_TRUE, done);
    EXPECT_THAT(s_store->Dump(), AllOf(HasSubstr("Foes"), Not(HasSubstr("Friends"))));
    done = VARIANT_FALSE;
    EXPECT_EQ(S_OK, book->DeleteGroup(Bstr(Wide(kFriends)).Get(), &done));
    EXPECT_EQ(VARIANT_TRUE, done);
    EXPECT_THAT(s_store->Dump(), Not(HasSubstr("Foes")));
}

TEST_F(MessageStoreContactsTest, TheFactoryMakesCollectionsOfTheRunningProvider)
{
    const auto factory = MakeInServer<INObjectFactory>(CLSID_NObjectFactory64);
    ASSERT_TRUE(factory);
    ComPtr<IUnknown> object;
    ComPtr<INAddressBook> contacts;
    ASSERT_EQ(S_OK, factory->CreateInstance(CLSID_NAddressBook, object.GetAddressOf()));
    ASSERT_EQ(S_OK, object.As(&contacts));
    ComPtr<INContactItem> bob;
    ASSERT_EQ(S_OK, contacts->GetNextItem(bob.GetAddressOf()));
    EXPECT_EQ(L"Bob", TextIn(bob.Get(), &INContactItem::get_FirstName));

    ComPtr<INCalendar> calendar;
    ASSERT_EQ(S_OK, factory->CreateInstance(CLSID_NCalendar, object.ReleaseAndGetAddressOf()));
    ASSERT_EQ(S_OK, object.As(&calendar));
    ComPtr<INAppointment> none;
    EXPECT_EQ(E_FAIL, calendar->GetNextAppointment(none.GetAddressOf()));
}
