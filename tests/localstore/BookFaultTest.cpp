// What the embedded address book does where its database cannot do what it should: it says so by
// the interface's codes, keeps what it has, and goes on.
#include "tests/localstore/OwnBook.h"
#include "tests/localstore/StoreClient.h"

#include <gmock/gmock.h>

namespace
{

class BookFaultTest : public testing::Test
{
  protected:
    // An unsaved entry with a comment.
    ComPtr<IMAPIProp> NewEntry(const std::wstring& comment)
    {
        ComPtr<IMAPIProp> entry = m_book.NewEntry();
        SPropValue value = TextValue(PR_COMMENT_W, comment.c_str());
        EXPECT_EQ(S_OK, entry->SetProps(1, &value, nullptr));
        return entry;
    }
    HRESULT ReadComment(IMAPIProp* entry)
    {
        Tags tags{PR_COMMENT_W};
        ULONG count = 0;
        SPropValue* values = nullptr;
        const HRESULT result = entry->GetProps(tags, MAPI_UNICODE, &count, &values);
        EXPECT_EQ(SUCCEEDED(result), values != nullptr);
        ChainedMemory::OfLibrary().Free(values);
        return result;
    }
    HRESULT Delete(IMAPIProp* entry) { return m_book.Delete(EntryIdOf(entry)); }
    std::int64_t Entries()
    {
        Database other = OpenStore(m_path);
        return other.QueryInteger("SELECT count(*) FROM book_entry");
    }

    TempFolder m_folder;
    const std::wstring m_path = m_folder.File(L"store.db");
    OwnBook m_book{m_path};
};

} // namespace

TEST_F(BookFaultTest, AFullDiskKeepsTheBookAndWhatWaits)
{
    const auto old = NewEntry(L"old");
    ASSERT_EQ(S_OK, old->SaveChanges(FORCE_SAVE));
    Database& database = m_book.Store();
    const std::int64_t pages = database.QueryInteger("PRAGMA page_count");
    database.Execute("PRAGMA max_page_count = " + std::to_string(pages + 5));
    const auto entry = NewEntry(std::wstring(100000, L'x'));
    EXPECT_EQ(MAPI_E_NOT_ENOUGH_DISK, entry->SaveChanges(FORCE_SAVE));
    EXPECT_EQ(1, Entries());
    EXPECT_EQ(S_OK, ReadComment(old.Get()));

    database.Execute("PRAGMA max_page_count = 1000000");
    EXPECT_EQ(S_OK, entry->SaveChanges(FORCE_SAVE)) << "what waited is still there";
    EXPECT_EQ(2, Entries());
}

TEST_F(BookFaultTest, ABookThatAnotherProcessHoldsIsBusy)
{
    m_book.Store().Execute("PRAGMA busy_timeout = 50");
    const auto old = NewEntry(L"old");
    ASSERT_EQ(S_OK, old->SaveChanges(FORCE_SAVE));
    const auto entry = NewEntry(L"one");
    {
        Database other = OpenStore(m_path);
        const Transaction held(other);
        EXPECT_EQ(MAPI_E_BUSY, entry->SaveChanges(FORCE_SAVE));
        EXPECT_EQ(MAPI_E_BUSY, Delete(old.Get()));
        // Reading goes on meanwhile.
        EXPECT_EQ(S_OK, ReadComment(old.Get()));
        ComPtr<IMAPITable> table;
        EXPECT_EQ(S_OK, m_book.Container().GetContentsTable(0, table.GetAddressOf()));
    }
    EXPECT_EQ(1, Entries());
    EXPECT_EQ(S_OK, entry->SaveChanges(FORCE_SAVE));
    EXPECT_EQ(2, Entries());
    EXPECT_EQ(S_OK, Delete(old.Get()));
    EXPECT_EQ(1, Entries());
}

TEST_F(BookFaultTest, ADamagedRowIsACorruptBook)
{
    const auto entry = NewEntry(L"one");
    ASSERT_EQ(S_OK, entry->SaveChanges(FORCE_SAVE));
    constexpr char kComment[] = " WHERE owner_kind = 7 AND property_id = 12292"; // 0x3004
    Database& database = m_book.Store();
    database.Execute("PRAGMA foreign_keys = OFF");
    // Text of half a unit; a number without one; a large value that is not there; no type at all.
    for (const char* damage : {"value = x'4100FF'",
                               "type = 3, value = NULL",
                               "value = NULL",
                               "type = 4096",
                               "type = 4127, value = x'FFFFFFFF00000000'"})
    {
        database.Execute(std::string("UPDATE property SET type = 31, value = x'4100'") + kComment);
        ASSERT_EQ(S_OK, ReadComment(entry.Get()));
        database.Execute("UPDATE property SET " + std::string(damage) + kComment);
        EXPECT_EQ(MAPI_E_CORRUPT_STORE, ReadComment(entry.Get())) << damage;
        ComPtr<IMAPITable> table;
        ASSERT_EQ(S_OK, m_book.Container().GetContentsTable(0, table.GetAddressOf()));
        Tags columns{PR_COMMENT_W};
        ASSERT_EQ(S_OK, table->SetColumns(columns, 0));
        LPSRowSet rows = nullptr;
        EXPECT_EQ(MAPI_E_CORRUPT_STORE, table->QueryRows(10, 0, &rows)) << damage;
        EXPECT_EQ(nullptr, rows);
    }
    // It can still be deleted.
    EXPECT_EQ(S_OK, Delete(entry.Get()));
    EXPECT_EQ(0, Entries());
}
