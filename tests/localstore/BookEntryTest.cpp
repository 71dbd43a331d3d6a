// Entries of the embedded address book, made, read, changed and deleted through PimLocalBook.dll.
#include "tests/localstore/BookClient.h"

#include <gmock/gmock.h>

#include <string_view>

using testing::ElementsAre;
using testing::IsEmpty;

namespace
{

constexpr ULONG kEmails = 0x3A56101F;  // of mail users of address books
constexpr ULONG kPicture = 0x660E001F; // a path

class BookEntryTest : public BookTest
{
  protected:
    void SetUp() override
    {
        BookTest::SetUp();
        Open(book, library);
        container = OpenContainer(book.Get(), PersonalId(book.Get(), library.Get()));
    }

    // The bytes of a binary property; empty where there is none.
    std::vector<BYTE> Binary(IMAPIProp* object, ULONG tag)
    {
        ULONG count = 0;
        LPSPropValue value = nullptr;
        EXPECT_TRUE(SUCCEEDED(object->GetProps(Tags{tag}, MAPI_UNICODE, &count, &value)));
        std::vector<BYTE> bytes;
        if (value && value->ulPropTag == tag)
            bytes.assign(value->Value.bin.lpb, value->Value.bin.lpb + value->Value.bin.cb);
        library->FreeBuffer(value);
        return bytes;
    }
    // "-" where there is none.
    std::wstring Text(IMAPIProp* object, ULONG tag)
    {
        ULONG count = 0;
        LPSPropValue value = nullptr;
        EXPECT_TRUE(SUCCEEDED(object->GetProps(Tags{tag}, MAPI_UNICODE, &count, &value)));
        const std::wstring text = value && value->ulPropTag == tag ? value->Value.lpszW : L"-";
        library->FreeBuffer(value);
        return text;
    }
    LONGLONG Modified(IMAPIProp* object)
    {
        ULONG count = 0;
        LPSPropValue value = nullptr;
        EXPECT_EQ(S_OK, object->GetProps(Tags{PR_LAST_MODIFICATION_TIME}, 0, &count, &value));
        const LONGLONG time = value->Value.li.QuadPart;
        library->FreeBuffer(value);
        return time;
    }
    static void SetText(IMAPIProp* object, ULONG tag, const wchar_t* text)
    {
        SPropValue value = TextValue(tag, text);
        EXPECT_EQ(S_OK, object->SetProps(1, &value, nullptr));
    }

    ComPtr<IMAPIProp> NewEntry(ULONG templateTag = PR_DEF_CREATE_MAILUSER)
    {
        std::vector<BYTE> id = Binary(container.Get(), templateTag);
        ComPtr<IMAPIProp> entry;
        EXPECT_EQ(S_OK,
                  container->CreateEntry(static_cast<ULONG>(id.size()),
                                         reinterpret_cast<LPENTRYID>(id.data()),
                                         CREATE_REPLACE,
                                         entry.GetAddressOf()));
        return entry;
    }
    // A saved entry of that name; its entry ID.
    std::vector<BYTE> AddEntry(const wchar_t* name, ULONG templateTag = PR_DEF_CREATE_MAILUSER)
    {
        const auto entry = NewEntry(templateTag);
        SetText(entry.Get(), PR_DISPLAY_NAME_W, name);
        EXPECT_EQ(S_OK, entry->SaveChanges(FORCE_SAVE));
        return Binary(entry.Get(), PR_ENTRYID);
    }
    ComPtr<IMAPIProp> OpenBy(std::vector<BYTE> id, ULONG flags, ULONG wanted = MAPI_MAILUSER)
    {
        ULONG type = 0;
        ComPtr<IUnknown> object;
        EXPECT_EQ(S_OK, OpenResult(std::move(id), flags, &type, object.GetAddressOf()));
        EXPECT_EQ(wanted, type);
        // Opened without naming an interface, an entry comes under its own one.
        ComPtr<IMAPIProp> entry;
        if (object)
            entry = static_cast<IMAPIProp*>(object.Get());
        return entry;
    }
    HRESULT OpenResult(std::vector<BYTE> id, ULONG flags, ULONG* type, IUnknown** object)
    {
        return container->OpenEntry(static_cast<ULONG>(id.size()),
                                    reinterpret_cast<LPENTRYID>(id.data()),
                                    nullptr,
                                    flags,
                                    type,
                                    object);
    }
    HRESULT Delete(std::vector<std::vector<BYTE>> ids)
    {
        std::vector<SBinary> list;
        for (std::vector<BYTE>& id : ids)
            list.push_back({static_cast<ULONG>(id.size()), id.data()});
        SBinaryArray entries = {static_cast<ULONG>(list.size()), list.data()};
        return container->DeleteEntries(&entries, 0);
    }
    std::vector<std::wstring> Names()
    {
        ComPtr<IMAPITable> table;
        EXPECT_EQ(S_OK, container->GetContentsTable(MAPI_UNICODE, table.GetAddressOf()));
        EXPECT_EQ(S_OK, table->SetColumns(Tags{PR_DISPLAY_NAME_W}, 0));
        LPSRowSet rows = nullptr;
        EXPECT_EQ(S_OK, table->QueryRows(1000, 0, &rows));
        std::vector<std::wstring> names;
        for (ULONG i = 0; rows && i < rows->cRows; ++i)
        {
            const SPropValue& name = rows->aRow[i].lpProps[0];
            names.emplace_back(name.ulPropTag == PR_DISPLAY_NAME_W ? name.Value.lpszW : L"-");
            library->FreeBuffer(rows->aRow[i].lpProps);
        }
        library->FreeBuffer(rows);
        return names;
    }

    ComPtr<IAddrBook> book;
    ComPtr<IWABObject> library;
    ComPtr<IABContainer> container;
};

} // namespace

TEST_F(BookEntryTest, AnEntryIsThereOnceItIsSaved)
{
    const auto entry = NewEntry();
    ASSERT_TRUE(entry);
    EXPECT_THAT(Binary(entry.Get(), PR_ENTRYID), IsEmpty());
    SetText(entry.Get(), PR_DISPLAY_NAME_W, L"Oda");
    EXPECT_EQ(L"Oda", Text(entry.Get(), PR_DISPLAY_NAME_W)) << "its own changes it sees";
    EXPECT_THAT(Names(), IsEmpty());
    EXPECT_EQ(S_OK, entry->SaveChanges(FORCE_SAVE));
    EXPECT_THAT(Names(), ElementsAre(L"Oda"));
    EXPECT_GT(Modified(entry.Get()), 0);

    const auto again = OpenBy(Binary(entry.Get(), PR_ENTRYID), 2);
    EXPECT_EQ(L"Oda", Text(again.Get(), PR_DISPLAY_NAME_W));
    EXPECT_EQ(Binary(entry.Get(), PR_ENTRYID), Binary(again.Get(), PR_ENTRYID));
    EXPECT_EQ(Binary(entry.Get(), PR_ENTRYID), Binary(again.Get(), PR_RECORD_KEY));
}

// The text is  /GUID:"{8-4-4-4-12 digits}"  in 16-bit units: 7 + 38 + 1 of them.
TEST_F(BookEntryTest, EntryIdsCarryTheirIdentityAsText)
{
    const std::vector<BYTE> id = AddEntry(L"Oda");
    ASSERT_EQ(2u * (7 + 38 + 1), id.size());
    const std::wstring_view text(reinterpret_cast<const wchar_t*>(id.data()), id.size() / 2);
    EXPECT_EQ(L"/GUID:\"{", text.substr(0, 8));
    EXPECT_EQ(L"}\"", text.substr(44));
    GUID number = {};
    EXPECT_EQ(S_OK, CLSIDFromString(std::wstring(text.substr(7, 38)).c_str(), &number));
    EXPECT_NE(id, AddEntry(L"Per"));
}

TEST_F(BookEntryTest, KeepsValuesOfEveryKindThatContactsHave)
{
    std::vector<BYTE> id;
    {
        const auto entry = NewEntry();
        const wchar_t* emails[] = {L"a@x", L"b@x"};
        SPropValue values[3] = {};
        values[0].ulPropTag = kEmails;
        values[0].Value.MVszW = {2, const_cast<LPWSTR*>(emails)};
        values[1].ulPropTag = PR_BIRTHDAY;
        values[1].Value.ft = {7, 8};
        values[2] = LongValue(0x3A550003, 1);
        ASSERT_EQ(S_OK, entry->SetProps(3, values, nullptr));
        ASSERT_EQ(S_OK, entry->SaveChanges(FORCE_SAVE));
        id = Binary(entry.Get(), PR_ENTRYID);
    }
    const auto entry = OpenBy(id, 0);
    ULONG count = 0;
    LPSPropValue values = nullptr;
    ASSERT_EQ(
        S_OK,
        entry->GetProps(Tags{kEmails, PR_BIRTHDAY, 0x3A550003}, MAPI_UNICODE, &count, &values));
    ASSERT_EQ(3u, count);
    ASSERT_EQ(2u, values[0].Value.MVszW.cValues);
    EXPECT_STREQ(L"a@x", values[0].Value.MVszW.lppszW[0]);
    EXPECT_STREQ(L"b@x", values[0].Value.MVszW.lppszW[1]);
    EXPECT_EQ(7u, values[1].Value.ft.dwLowDateTime);
    EXPECT_EQ(8u, values[1].Value.ft.dwHighDateTime);
    EXPECT_EQ(1, values[2].Value.l);
    EXPECT_EQ(S_OK, library->FreeBuffer(values));
}

TEST_F(BookEntryTest, ChangesWaitForTheirSaveAndTimesGoForward)
{
    const std::vector<BYTE> id = AddEntry(L"one");
    const auto writer = OpenBy(id, MAPI_MODIFY);
    const LONGLONG before = Modified(writer.Get());
    SetText(writer.Get(), PR_DISPLAY_NAME_W, L"two");
    EXPECT_EQ(S_OK, writer->DeleteProps(Tags{kPicture}, nullptr));
    EXPECT_EQ(L"one", Text(OpenBy(id, 0).Get(), PR_DISPLAY_NAME_W));
    EXPECT_EQ(S_OK, writer->SaveChanges(FORCE_SAVE));
    EXPECT_EQ(L"two", Text(OpenBy(id, 0).Get(), PR_DISPLAY_NAME_W));
    EXPECT_GT(Modified(writer.Get()), before);
    EXPECT_EQ(id, Binary(writer.Get(), PR_ENTRYID));

    // Nothing to save changes nothing.
    const LONGLONG after = Modified(writer.Get());
    EXPECT_EQ(S_OK, writer->SaveChanges(FORCE_SAVE));
    EXPECT_EQ(after, Modified(OpenBy(id, 0).Get()));
}

TEST_F(BookEntryTest, ASaveIsLaterThanTheOneBeforeAlsoWhereTheClockIsBehind)
{
    const std::vector<BYTE> id = AddEntry(L"one");
    constexpr std::int64_t kYear2100 = 157'469'184'000'000'000;
    {
        Database database = OpenStore(m_path);
        database.Prepare("UPDATE book_entry SET modified = ?1").Bind(1, kYear2100).Run();
    }
    const auto writer = OpenBy(id, MAPI_MODIFY);
    SetText(writer.Get(), PR_DISPLAY_NAME_W, L"two");
    EXPECT_EQ(S_OK, writer->SaveChanges(FORCE_SAVE));
    EXPECT_EQ(kYear2100 + 1, Modified(OpenBy(id, 0).Get()));
}

TEST_F(BookEntryTest, DeletedPropertiesAreGone)
{
    const auto entry = NewEntry();
    SetText(entry.Get(), PR_DISPLAY_NAME_W, L"Oda");
    SetText(entry.Get(), kPicture, L"C:\\a.jpg");
    ASSERT_EQ(S_OK, entry->SaveChanges(FORCE_SAVE));
    // The type in the tag says nothing.
    EXPECT_EQ(S_OK,
              entry->DeleteProps(Tags{CHANGE_PROP_TYPE(kPicture, PT_STRING8), kEmails}, nullptr));
    ASSERT_EQ(S_OK, entry->SaveChanges(FORCE_SAVE));
    const auto again = OpenBy(Binary(entry.Get(), PR_ENTRYID), 0);
    EXPECT_EQ(L"-", Text(again.Get(), kPicture));
    EXPECT_EQ(L"Oda", Text(again.Get(), PR_DISPLAY_NAME_W));
}

TEST_F(BookEntryTest, TellsOfAnEntryThatChangedMeanwhile)
{
    const std::vector<BYTE> id = AddEntry(L"one");
    const auto first = OpenBy(id, MAPI_BEST_ACCESS);
    const auto second = OpenBy(id, MAPI_BEST_ACCESS);
    SetText(first.Get(), PR_DISPLAY_NAME_W, L"first");
    SetText(second.Get(), PR_DISPLAY_NAME_W, L"second");
    EXPECT_EQ(S_OK, first->SaveChanges(KEEP_OPEN_READWRITE));
    EXPECT_EQ(MAPI_E_OBJECT_CHANGED, second->SaveChanges(KEEP_OPEN_READWRITE));
    EXPECT_EQ(S_OK, second->SaveChanges(FORCE_SAVE));
    EXPECT_THAT(Names(), ElementsAre(L"second"));
}

TEST_F(BookEntryTest, OpenedForReadingItDoesNotChange)
{
    const std::vector<BYTE> id = AddEntry(L"one");
    // Flag 2 is the one that lists of items open their entries with.
    for (const ULONG flags : {0u, 2u})
    {
        const auto reader = OpenBy(id, flags);
        SPropValue value = TextValue(PR_DISPLAY_NAME_W, L"two");
        EXPECT_EQ(MAPI_E_NO_ACCESS, reader->SetProps(1, &value, nullptr));
        EXPECT_EQ(MAPI_E_NO_ACCESS, reader->DeleteProps(Tags{PR_DISPLAY_NAME_W}, nullptr));
    }
}

TEST_F(BookEntryTest, WhatTheStoreMakesItselfCannotBeSet)
{
    const auto entry = NewEntry();
    SPropValue values[] = {LongValue(PR_OBJECT_TYPE, 8), TextValue(PR_DISPLAY_NAME_W, L"Oda")};
    LPSPropProblemArray problems = nullptr;
    ASSERT_EQ(S_OK, entry->SetProps(2, values, &problems));
    ASSERT_NE(nullptr, problems);
    EXPECT_EQ(1u, problems->cProblem);
    EXPECT_EQ(0u, problems->aProblem[0].ulIndex);
    EXPECT_EQ(MAPI_E_COMPUTED, problems->aProblem[0].scode);
    EXPECT_EQ(S_OK, library->FreeBuffer(problems));
    EXPECT_EQ(L"Oda", Text(entry.Get(), PR_DISPLAY_NAME_W));
}

TEST_F(BookEntryTest, DistributionListsAreEntriesOfTheirOwnType)
{
    const std::vector<BYTE> list = AddEntry(L"Choir", PR_DEF_CREATE_DL);
    AddEntry(L"Oda");
    EXPECT_THAT(Names(), ElementsAre(L"Choir", L"Oda"));
    const auto opened = OpenBy(list, MAPI_BEST_ACCESS, MAPI_DISTLIST);
    EXPECT_EQ(L"Choir", Text(opened.Get(), PR_DISPLAY_NAME_W));
    ComPtr<IDistList> own;
    ASSERT_EQ(S_OK,
              opened->QueryInterface(IID_IDistList, reinterpret_cast<void**>(own.GetAddressOf())));
    EXPECT_EQ(static_cast<void*>(own.Get()), static_cast<void*>(opened.Get()));
    void* user = nullptr;
    EXPECT_EQ(E_NOINTERFACE, opened->QueryInterface(IID_IMailUser, &user));

    // Its members stand in its properties; as a container it has nothing to offer.
    IMAPITable* table = reinterpret_cast<IMAPITable*>(1);
    EXPECT_EQ(MAPI_E_NO_SUPPORT, own->GetContentsTable(0, &table));
    EXPECT_EQ(nullptr, table);
    IMAPIProp* entry = reinterpret_cast<IMAPIProp*>(1);
    EXPECT_EQ(MAPI_E_NO_SUPPORT, own->CreateEntry(0, nullptr, 0, &entry));
    EXPECT_EQ(nullptr, entry);
    EXPECT_EQ(MAPI_E_NO_SUPPORT, own->DeleteEntries(nullptr, 0));

    // Both types in the rows.
    ComPtr<IMAPITable> rowsTable;
    ASSERT_EQ(S_OK, container->GetContentsTable(MAPI_UNICODE, rowsTable.GetAddressOf()));
    ASSERT_EQ(S_OK, rowsTable->SetColumns(Tags{PR_OBJECT_TYPE, PR_DISPLAY_TYPE}, 0));
    LPSRowSet rows = nullptr;
    ASSERT_EQ(S_OK, rowsTable->QueryRows(10, 0, &rows));
    ASSERT_EQ(2u, rows->cRows);
    EXPECT_EQ(static_cast<LONG>(MAPI_DISTLIST), rows->aRow[0].lpProps[0].Value.l);
    EXPECT_EQ(static_cast<LONG>(DT_PRIVATE_DISTLIST), rows->aRow[0].lpProps[1].Value.l);
    EXPECT_EQ(static_cast<LONG>(MAPI_MAILUSER), rows->aRow[1].lpProps[0].Value.l);
    EXPECT_EQ(static_cast<LONG>(DT_MAILUSER), rows->aRow[1].lpProps[1].Value.l);
    for (ULONG i = 0; i < rows->cRows; ++i)
        library->FreeBuffer(rows->aRow[i].lpProps);
    library->FreeBuffer(rows);
}

TEST_F(BookEntryTest, DeletesWhatItFindsOfAList)
{
    const std::vector<BYTE> one = AddEntry(L"one");
    const std::vector<BYTE> two = AddEntry(L"two");
    AddEntry(L"three");
    const auto open = OpenBy(one, MAPI_MODIFY);
    EXPECT_EQ(S_OK, Delete({one}));
    EXPECT_EQ(MAPI_W_PARTIAL_COMPLETION, Delete({one, two}));
    EXPECT_EQ(MAPI_W_PARTIAL_COMPLETION, Delete({{}, {1, 2, 3}}));
    EXPECT_THAT(Names(), ElementsAre(L"three"));
    EXPECT_EQ(S_OK, Delete({}));

    ComPtr<IUnknown> gone;
    EXPECT_EQ(MAPI_E_NOT_FOUND, OpenResult(one, 0, nullptr, gone.GetAddressOf()));
    EXPECT_FALSE(gone);
    // One that is still open cannot come back.
    SetText(open.Get(), PR_DISPLAY_NAME_W, L"again");
    EXPECT_EQ(MAPI_E_OBJECT_DELETED, open->SaveChanges(FORCE_SAVE));
    EXPECT_THAT(Names(), ElementsAre(L"three"));
}

TEST_F(BookEntryTest, TheRootDeletesNoEntriesOfThePersonalContainer)
{
    std::vector<BYTE> id = AddEntry(L"one");
    SBinary element = {static_cast<ULONG>(id.size()), id.data()};
    SBinaryArray list = {1, &element};
    const ComPtr<IABContainer> root = OpenContainer(book.Get(), {});
    EXPECT_EQ(MAPI_W_PARTIAL_COMPLETION, root->DeleteEntries(&list, 0));
    EXPECT_THAT(Names(), ElementsAre(L"one"));
}

TEST_F(BookEntryTest, DeletingTakesTheValuesAlong)
{
    const auto entry = NewEntry();
    SetText(entry.Get(), PR_COMMENT_W, std::wstring(4000, L'x').c_str());
    ASSERT_EQ(S_OK, entry->SaveChanges(FORCE_SAVE));
    EXPECT_EQ(S_OK, Delete({Binary(entry.Get(), PR_ENTRYID)}));
    Database database = OpenStore(m_path);
    EXPECT_EQ(0, database.QueryInteger("SELECT count(*) FROM property WHERE owner_kind = 7"));
    EXPECT_EQ(0, database.QueryInteger("SELECT count(*) FROM large_value"));
}

TEST_F(BookEntryTest, NewEntriesNeedOneOfTheTwoTemplates)
{
    std::vector<BYTE> user = Binary(container.Get(), PR_DEF_CREATE_MAILUSER);
    std::vector<BYTE> list = Binary(container.Get(), PR_DEF_CREATE_DL);
    ASSERT_EQ(24u, user.size());
    ASSERT_EQ(24u, list.size());
    // The type stands where every ID of the store has it.
    EXPECT_EQ(MAPI_MAILUSER, user[6]);
    EXPECT_EQ(MAPI_DISTLIST, list[6]);
    const auto create = [&](std::vector<BYTE>& id, ULONG flags, IABContainer* from) {
        IMAPIProp* entry = reinterpret_cast<IMAPIProp*>(1);
        const HRESULT result = from->CreateEntry(
            static_cast<ULONG>(id.size()), reinterpret_cast<LPENTRYID>(id.data()), flags, &entry);
        if (SUCCEEDED(result))
            entry->Release();
        else
            EXPECT_EQ(nullptr, entry);
        return result;
    };
    EXPECT_EQ(S_OK, create(user, 0, container.Get()));
    EXPECT_EQ(S_OK, create(list, CREATE_CHECK_DUP_LOOSE, container.Get()));
    EXPECT_EQ(MAPI_E_UNKNOWN_FLAGS, create(user, 0x100, container.Get()));
    const ComPtr<IABContainer> root = OpenContainer(book.Get(), {});
    EXPECT_EQ(MAPI_E_NO_ACCESS, create(user, 0, root.Get())) << "entries are the personal one's";
    EXPECT_THAT(Binary(root.Get(), PR_DEF_CREATE_MAILUSER), IsEmpty());
    user[23] ^= 1;
    EXPECT_EQ(MAPI_E_UNKNOWN_ENTRYID, create(user, 0, container.Get()));
    user.pop_back();
    EXPECT_EQ(MAPI_E_UNKNOWN_ENTRYID, create(user, 0, container.Get()));
    user.clear();
    EXPECT_EQ(MAPI_E_INVALID_PARAMETER, create(user, 0, container.Get()));
    EXPECT_EQ(MAPI_E_INVALID_PARAMETER,
              container->CreateEntry(24, reinterpret_cast<LPENTRYID>(list.data()), 0, nullptr));
    EXPECT_THAT(Names(), IsEmpty()) << "none was saved";
}

TEST_F(BookEntryTest, RefusesWhatCannotBeDeletedOrOpened)
{
    EXPECT_EQ(MAPI_E_INVALID_PARAMETER, container->DeleteEntries(nullptr, 0));
    SBinaryArray list = {1, nullptr};
    EXPECT_EQ(MAPI_E_INVALID_PARAMETER, container->DeleteEntries(&list, 0));
    SBinary none = {};
    list = {0xFFFFFFFF, &none};
    EXPECT_EQ(MAPI_E_INVALID_PARAMETER, container->DeleteEntries(&list, 0));
    list = {1, &none};
    EXPECT_EQ(MAPI_E_UNKNOWN_FLAGS, container->DeleteEntries(&list, 1));

    const std::vector<BYTE> id = AddEntry(L"one");
    ULONG type = 9;
    IUnknown* object = reinterpret_cast<IUnknown*>(1);
    EXPECT_EQ(MAPI_E_UNKNOWN_FLAGS, OpenResult(id, 0x40000000, &type, &object));
    EXPECT_EQ(nullptr, object);
    std::vector<BYTE> copy = id;
    EXPECT_EQ(MAPI_E_INTERFACE_NOT_SUPPORTED,
              container->OpenEntry(static_cast<ULONG>(copy.size()),
                                   reinterpret_cast<LPENTRYID>(copy.data()),
                                   &IID_IABContainer,
                                   0,
                                   &type,
                                   &object));
    // Of the form of the book's own, but of nothing here.
    copy[20] ^= 1;
    EXPECT_EQ(MAPI_E_NOT_FOUND, OpenResult(copy, 0, &type, &object));
    EXPECT_EQ(MAPI_E_UNKNOWN_ENTRYID, OpenResult({1, 2, 3}, 0, &type, &object));
    // Outside of the template's work it names no object.
    EXPECT_EQ(MAPI_E_NOT_FOUND,
              OpenResult(Binary(container.Get(), PR_DEF_CREATE_MAILUSER), 0, &type, &object));
    EXPECT_EQ(0u, type);
}

TEST_F(BookEntryTest, TheBookAndItsContainersKeepTheirProperties)
{
    SPropValue value = TextValue(PR_DISPLAY_NAME_W, L"Mine");
    EXPECT_EQ(MAPI_E_NO_ACCESS, container->SetProps(1, &value, nullptr));
    EXPECT_EQ(MAPI_E_NO_ACCESS, container->DeleteProps(Tags{PR_DISPLAY_NAME_W}, nullptr));
    EXPECT_EQ(MAPI_E_NO_ACCESS, book->SetProps(1, &value, nullptr));
    EXPECT_EQ(S_OK, container->SaveChanges(0)) << "nothing waits";
    EXPECT_EQ(S_OK, book->SaveChanges(0));
    EXPECT_EQ(L"Contacts", Text(container.Get(), PR_DISPLAY_NAME_W));
}

TEST_F(BookEntryTest, AReadOnlyStoreTakesNoEntries)
{
    const std::vector<BYTE> id = AddEntry(L"one");
    const std::vector<BYTE> personal = PersonalId(book.Get(), library.Get());
    std::vector<BYTE> user = Binary(container.Get(), PR_DEF_CREATE_MAILUSER);
    container.Reset();
    book.Reset();
    library.Reset();
    ASSERT_TRUE(SetFileAttributesW(m_path.c_str(), FILE_ATTRIBUTE_READONLY));
    Open(book, library);
    container = OpenContainer(book.Get(), personal);
    IMAPIProp* entry = nullptr;
    EXPECT_EQ(MAPI_E_NO_ACCESS,
              container->CreateEntry(24, reinterpret_cast<LPENTRYID>(user.data()), 0, &entry));
    EXPECT_EQ(MAPI_E_NO_ACCESS, Delete({id}));
    ComPtr<IUnknown> object;
    EXPECT_EQ(MAPI_E_NO_ACCESS, OpenResult(id, MAPI_MODIFY, nullptr, object.GetAddressOf()));
    EXPECT_THAT(Names(), ElementsAre(L"one"));
    container.Reset();
    book.Reset();
    library.Reset();
    SetFileAttributesW(m_path.c_str(), FILE_ATTRIBUTE_NORMAL);
}

TEST_F(BookEntryTest, AnotherOpeningSeesWhatIsSaved)
{
    ComPtr<IAddrBook> otherBook;
    ComPtr<IWABObject> otherLibrary;
    Open(otherBook, otherLibrary);
    const std::vector<BYTE> id = AddEntry(L"one");
    ComPtr<IUnknown> object;
    ULONG type = 0;
    std::vector<BYTE> copy = id;
    ASSERT_EQ(S_OK,
              otherBook->OpenEntry(static_cast<ULONG>(copy.size()),
                                   reinterpret_cast<LPENTRYID>(copy.data()),
                                   &IID_IMailUser,
                                   0,
                                   &type,
                                   object.GetAddressOf()));
    EXPECT_EQ(static_cast<ULONG>(MAPI_MAILUSER), type);
}

TEST_F(BookEntryTest, AnEntryOutlivesTheBook)
{
    const auto entry = NewEntry();
    container.Reset();
    EXPECT_EQ(0u, book.Reset());
    SetText(entry.Get(), PR_DISPLAY_NAME_W, L"Oda");
    EXPECT_EQ(S_OK, entry->SaveChanges(FORCE_SAVE));
    EXPECT_EQ(L"Oda", Text(entry.Get(), PR_DISPLAY_NAME_W));
}
