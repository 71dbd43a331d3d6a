// Contacts of the embedded address book, through the whole road of the server: the automation
// objects, the provider under both names and the built PimLocalBook.dll.
#include "automation/ClassObjects.h"
#include "platform/Bstr.h"
#include "service/ItemAccess.h"
#include "service/ServiceManager.h"
#include "tests/localstore/BookClient.h"
#include "tests/localstore/LooseBook.h"
#include "tests/outlook/contacts/ContactText.h"
#include "tests/support/ScopedRegistryValue.h"
#include "tests/support/TestModule.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>

using testing::Contains;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;
using testing::StartsWith;

namespace
{
constexpr wchar_t kLibraryKey[] = L"Software\\Microsoft\\WAB\\DLLPath";
constexpr wchar_t kShellFolders[] =
    L"Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\User Shell Folders";

class BookContactTest : public BookTest
{
  protected:
    void SetUp() override
    {
        BookTest::SetUp();
        ASSERT_EQ(S_OK,
                  m_classes.Register(GetObjectMap(), CLSCTX_LOCAL_SERVER, REGCLS_MULTIPLEUSE));
        m_libraryPath.Set(ProgramFolder() + L"PimLocalBook.dll");
        m_documents.Set(m_folder.Path(), REG_EXPAND_SZ);
    }
    void TearDown() override { GetServiceManager()->StopService(); }

    void Start(const wchar_t* provider)
    {
        ASSERT_EQ(S_OK, GetServiceManager()->StartService(provider));
    }
    static ComPtr<INAddressBook> OpenAddressBook()
    {
        ComPtr<INAddressBook> book;
        CoCreateInstance(CLSID_NAddressBook,
                         nullptr,
                         CLSCTX_ALL,
                         IID_INAddressBook,
                         reinterpret_cast<void**>(book.GetAddressOf()));
        return book;
    }
    static std::wstring Add(INAddressBook* book, INContactItem* contact)
    {
        Bstr id;
        EXPECT_EQ(S_OK, book->AddItem(contact, id.Put()));
        return TextOf(id.Get());
    }
    static ComPtr<INContactItem> ByID(INAddressBook* book, const std::wstring& id)
    {
        ComPtr<INContactItem> contact;
        book->GetItemByID(Bstr(std::wstring_view(id)).Get(), contact.GetAddressOf());
        return contact;
    }
    static std::wstring IdIn(INContactItem* contact)
    {
        Bstr id;
        contact->get_PersistentID(id.Put());
        return TextOf(id.Get());
    }
    static std::vector<std::wstring> FirstNames(INAddressBook* book)
    {
        VARIANT_BOOL done = VARIANT_FALSE;
        EXPECT_EQ(S_OK, book->ResetItem(&done));
        std::vector<std::wstring> names;
        ComPtr<INContactItem> contact;
        while (book->GetNextItem(contact.ReleaseAndGetAddressOf()) == S_OK && names.size() < 50)
        {
            Bstr name;
            contact->get_FirstName(name.Put());
            names.push_back(TextOf(name.Get()));
        }
        return names;
    }
    std::wstring NewPicture(const char* bytes)
    {
        const std::wstring path = m_folder.File(L"source.jpg");
        std::ofstream(std::filesystem::path(path), std::ios::binary) << bytes;
        return path;
    }

    static TextLines WholeContact()
    {
        return LinesOf(R"_(
            FirstName "Oda"
            MiddleName "Q"
            LastName "Bakken"
            Suffix "Jr."
            JobTitle "Cook"
            CompanyName "Inn"
            Website "http://a"
            Notes "two\x000Alines"
            Phone0 "0"
            Phone1 "1"
            Phone12 "12"
            Email "a@x"
            Email "b@x"
            Home.City "Bergen"
            Home.Country "Norway"
            Business.Street "Gate 1"
            Other.PostOfficeBox "7"
            Birthday 25569
            Anniversary 36526)_");
    }

    TestModule m_module;
    ClassObjects m_classes;
    ScopedRegistryValue m_libraryPath{HKEY_LOCAL_MACHINE, kLibraryKey, L""};
    ScopedRegistryValue m_documents{HKEY_CURRENT_USER, kShellFolders, L"Personal"};
};

// The lines without the picture's, which both sides have in different words.
TextLines WithoutPicture(TextLines lines)
{
    std::erase_if(lines, [](const std::string& line) { return line.starts_with("Picture"); });
    return lines;
}
} // namespace

TEST_F(BookContactTest, WindowsMailAddsReadsChangesAndDeletesContacts)
{
    Start(L"Windows Mail");
    const auto book = OpenAddressBook();
    ASSERT_TRUE(book);
    EXPECT_THAT(FirstNames(book.Get()), IsEmpty());

    const std::wstring id = Add(book.Get(), ContactOf(WholeContact()).Get());
    // The client sees the identity in braces, not the bytes of the entry ID.
    GUID number = {};
    EXPECT_EQ(S_OK, CLSIDFromString(id.c_str(), &number)) << std::string(id.begin(), id.end());

    const auto read = ByID(book.Get(), id);
    ASSERT_TRUE(read);
    EXPECT_EQ(id, IdIn(read.Get()));
    EXPECT_THAT(WithoutPicture(TextOfContact(read.Get())),
                testing::UnorderedElementsAreArray(WholeContact()));

    read->put_FirstName(Bstr(L"Per").Get());
    read->put_JobTitle(nullptr);
    VARIANT_BOOL done = VARIANT_FALSE;
    EXPECT_EQ(S_OK, book->UpdateItem(read.Get(), &done));
    EXPECT_EQ(VARIANT_TRUE, done);
    const auto changed = ByID(book.Get(), id);
    ASSERT_TRUE(changed);
    EXPECT_THAT(TextOfContact(changed.Get()), Contains("FirstName \"Per\""));
    EXPECT_THAT(TextOfContact(changed.Get()), testing::Not(Contains(StartsWith("JobTitle"))));
    EXPECT_THAT(FirstNames(OpenAddressBook().Get()), ElementsAre(L"Per"));

    EXPECT_EQ(S_OK, book->DeleteItem(Bstr(std::wstring_view(id)).Get(), &done));
    EXPECT_EQ(VARIANT_TRUE, done);
    EXPECT_THAT(FirstNames(OpenAddressBook().Get()), IsEmpty());
}

TEST_F(BookContactTest, OutlookExpressShowsTheBytesOfTheIds)
{
    Start(L"Outlook Express");
    const auto book = OpenAddressBook();
    const std::wstring id = Add(book.Get(), ContactOf(WholeContact()).Get());
    // "/GUID:" as UTF-16LE, two digits per byte.
    EXPECT_EQ(L"2F0047005500490044003A002200", id.substr(0, 28));
    EXPECT_THAT(FirstNames(book.Get()), ElementsAre(L"Oda"));
    ASSERT_TRUE(ByID(book.Get(), id));
    VARIANT_BOOL done = VARIANT_FALSE;
    EXPECT_EQ(S_OK, book->DeleteItem(Bstr(std::wstring_view(id)).Get(), &done));
    EXPECT_THAT(FirstNames(OpenAddressBook().Get()), IsEmpty());
}

TEST_F(BookContactTest, APictureIsKeptAsACopy)
{
    Start(L"Windows Mail");
    const auto book = OpenAddressBook();
    const auto contact = ContactOf(LinesOf("FirstName \"Oda\""));
    contact->put_Picture(Bstr(NewPicture("picture")).Get());
    const std::wstring id = Add(book.Get(), contact.Get());
    Bstr path;
    ByID(book.Get(), id)->get_Picture(path.Put());
    EXPECT_EQ(m_folder.File(L"ContactImg\\Con"),
              TextOf(path.Get()).substr(0, m_folder.File(L"ContactImg\\Con").size()));
    EXPECT_EQ("picture", ReadWholeFile(TextOf(path.Get())));
    EXPECT_TRUE(GetFileAttributesW(m_folder.File(L"ContactImg").c_str()) & FILE_ATTRIBUTE_HIDDEN);
}

TEST_F(BookContactTest, DistributionListsAreNotShown)
{
    AddEntries(2);
    {
        Database database = OpenStore(m_path);
        database.Execute("UPDATE book_entry SET object_type = 8 WHERE id = "
                         "(SELECT min(id) FROM book_entry)");
    }
    Start(L"Windows Mail");
    EXPECT_EQ(1u, FirstNames(OpenAddressBook().Get()).size());
}

// Whatever a damaged file holds of one contact, the others are shown, and nothing is taken away.
TEST_F(BookContactTest, DamagedRowsHideNoOtherContact)
{
    Start(L"Windows Mail");
    {
        const auto book = OpenAddressBook();
        for (const char* const name : {"One", "Two", "Three", "Four", "Five"})
            Add(book.Get(), ContactOf({"FirstName \"" + std::string(name) + '"'}).Get());
    }
    GetServiceManager()->StopService();
    {
        Database database = OpenStore(m_path);
        DropEntryRules(database);
        database.Execute("UPDATE book_entry SET entry_id = NULL WHERE id = 1");
        database.Execute("UPDATE book_entry SET modified = 9223372036854775807, created = 'x', "
                         "object_type = 'x' WHERE id = 2");
        // A list of 4294967295 texts in the place of the display name.
        database.Execute("UPDATE property SET type = 4127, value = x'FFFFFFFF00000000' WHERE "
                         "owner_kind = 7 AND owner = 3 AND property_id = 12289");
        database.Execute("UPDATE book_entry SET container = NULL WHERE id = 4");
    }
    Start(L"Windows Mail");
    const auto book = OpenAddressBook();
    EXPECT_THAT(FirstNames(book.Get()), ElementsAre(L"Two", L"Three", L"Five"));
    const std::wstring id = Add(book.Get(), ContactOf(LinesOf("FirstName \"Six\"")).Get());
    EXPECT_TRUE(ByID(book.Get(), id));
    EXPECT_THAT(FirstNames(OpenAddressBook().Get()),
                ElementsAre(L"Two", L"Three", L"Five", L"Six"));
    Database database = OpenStore(m_path);
    EXPECT_EQ(6, database.QueryInteger("SELECT count(*) FROM book_entry"));
}

// What was loaded may have entry IDs without an identity in them.
TEST_F(BookContactTest, AnIdWithoutAnIdentityIsShownAsItsBytes)
{
    AddEntries(1);
    Start(L"Windows Mail");
    const auto book = OpenAddressBook();
    VARIANT_BOOL done = VARIANT_FALSE;
    book->ResetItem(&done);
    ComPtr<INContactItem> contact;
    ASSERT_EQ(S_OK, book->GetNextItem(contact.GetAddressOf()));
    const std::wstring id = IdIn(contact.Get());
    EXPECT_EQ(L"0000000050530601", id.substr(0, 16));
    EXPECT_EQ(S_OK, book->DeleteItem(Bstr(std::wstring_view(id)).Get(), &done));
    EXPECT_THAT(FirstNames(OpenAddressBook().Get()), IsEmpty());
}

TEST_F(BookContactTest, EnumeratorsWalkTheContactsToo)
{
    AddEntries(3);
    Start(L"Windows Mail");
    // The next enumerator is of this type.
    GetServiceManager()->GetEnumerator(AddressBook);
    ComPtr<INEnumerator> enumerator;
    ASSERT_EQ(S_OK,
              CoCreateInstance(CLSID_NEnumerator,
                               nullptr,
                               CLSCTX_ALL,
                               IID_INEnumerator,
                               reinterpret_cast<void**>(enumerator.GetAddressOf())));
    VARIANT_BOOL done = VARIANT_FALSE;
    EXPECT_EQ(S_OK, enumerator->ResetItem(&done));
    int items = 0;
    ComPtr<INEntityItem> item;
    while (enumerator->GetNextItem(item.ReleaseAndGetAddressOf()) == S_OK && items < 50)
        ++items;
    EXPECT_EQ(3, items);
}

TEST_F(BookContactTest, ThereAreNoGroups)
{
    Start(L"Windows Mail");
    const auto book = OpenAddressBook();
    VARIANT_BOOL done = VARIANT_TRUE;
    EXPECT_EQ(E_FAIL, book->ResetGroup(&done));
    ComPtr<INContactGroup> group;
    EXPECT_EQ(E_FAIL, book->GetNextGroup(group.GetAddressOf()));
    EXPECT_FALSE(group);
    // A group to add goes to the contacts, which take none.
    ASSERT_EQ(S_OK,
              CoCreateInstance(CLSID_NContactGroup,
                               nullptr,
                               CLSCTX_ALL,
                               IID_INContactGroup,
                               reinterpret_cast<void**>(group.GetAddressOf())));
    Bstr id;
    EXPECT_EQ(E_FAIL, book->AddGroup(group.Get(), id.Put()));
    EXPECT_EQ(E_FAIL, book->UpdateGroup(group.Get(), &done));
    EXPECT_THAT(FirstNames(OpenAddressBook().Get()), IsEmpty());
}

TEST_F(BookContactTest, AReloadShowsWhatOthersAdded)
{
    Start(L"Windows Mail");
    const auto book = OpenAddressBook();
    AddEntries(2);
    EXPECT_THAT(FirstNames(book.Get()), IsEmpty());
    EXPECT_EQ(S_OK, book->Refresh());
    EXPECT_EQ(2u, FirstNames(book.Get()).size());
}

TEST_F(BookContactTest, ABookIsHeldOverAStop)
{
    AddEntries(1);
    Start(L"Windows Mail");
    const auto book = OpenAddressBook();
    VARIANT_BOOL done = VARIANT_FALSE;
    book->ResetItem(&done);
    ComPtr<INContactItem> contact;
    ASSERT_EQ(S_OK, book->GetNextItem(contact.GetAddressOf()));
    GetServiceManager()->StopService();
    EXPECT_THAT(FirstNames(book.Get()), IsEmpty());
    Bstr id;
    EXPECT_NE(S_OK, book->AddItem(contact.Get(), id.Put()));
    EXPECT_EQ(E_FAIL, book->UpdateItem(contact.Get(), &done));
}
