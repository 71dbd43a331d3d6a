// Rows of the address book's entries that no program of ours writes. The book stays up, shows
// whatever can be told of them and all the others, and takes nothing away.
#include "tests/localstore/LooseBook.h"
#include "tests/localstore/OwnBook.h"
#include "tests/localstore/StoreClient.h"

#include <gmock/gmock.h>

using testing::ElementsAre;

namespace
{

// Three entries, of which the second one is damaged.
class BookDamageTest : public testing::Test
{
  protected:
    BookDamageTest()
    {
        for (const wchar_t* name : {L"one", L"two", L"three"})
            m_ids.push_back(Add(name));
        DropEntryRules(m_book.Store());
        m_book.Store().Execute("CREATE TABLE kept AS SELECT * FROM book_entry WHERE id = 2");
    }
    Bytes Add(const wchar_t* name)
    {
        const auto entry = m_book.NewEntry();
        EXPECT_TRUE(SetName(entry.Get(), name));
        EXPECT_EQ(S_OK, entry->SaveChanges(FORCE_SAVE));
        return EntryIdOf(entry.Get());
    }
    static bool SetName(IMAPIProp* entry, const wchar_t* name)
    {
        SPropValue value = TextValue(PR_DISPLAY_NAME_W, name);
        return entry->SetProps(1, &value, nullptr) == S_OK;
    }
    // Mends the second row and damages it anew.
    void Damage(const std::string& assignment)
    {
        Database& database = m_book.Store();
        database.Execute("DELETE FROM book_entry WHERE id > 3 OR id = 2");
        database.Execute("INSERT INTO book_entry SELECT * FROM kept");
        database.Execute("UPDATE book_entry SET " + assignment + " WHERE id = 2");
    }
    std::int64_t Rows() { return m_book.Store().QueryInteger("SELECT count(*) FROM book_entry"); }

    // Of the next rows, few at a time; false at the end of the table.
    static bool AddNames(IMAPITable* table, std::vector<std::wstring>& names)
    {
        LPSRowSet rows = nullptr;
        EXPECT_EQ(S_OK, table->QueryRows(10, 0, &rows));
        if (!rows)
            return false;
        for (ULONG i = 0; i < rows->cRows; ++i)
        {
            SPropValue* const values = rows->aRow[i].lpProps;
            EXPECT_EQ(PR_ENTRYID, values[0].ulPropTag);
            EXPECT_EQ(PR_DISPLAY_NAME_W, values[2].ulPropTag);
            names.emplace_back(values[2].Value.lpszW);
            ChainedMemory::OfLibrary().Free(values);
        }
        const bool isMore = rows->cRows != 0;
        ChainedMemory::OfLibrary().Free(rows);
        return isMore;
    }
    // The names that a table of the container shows.
    std::vector<std::wstring> Names()
    {
        std::vector<std::wstring> names;
        ComPtr<IMAPITable> table;
        EXPECT_EQ(S_OK, m_book.Container().GetContentsTable(0, table.GetAddressOf()));
        Tags columns{PR_ENTRYID, PR_LAST_MODIFICATION_TIME, PR_DISPLAY_NAME_W};
        EXPECT_EQ(S_OK, table->SetColumns(columns, 0));
        while (AddNames(table.Get(), names) && names.size() < 100)
        {
        }
        return names;
    }
    // To be changed.
    HRESULT Open(const Bytes& id, ComPtr<IMAPIProp>& entry)
    {
        ULONG type = 0;
        ComPtr<IUnknown> object;
        const HRESULT result = m_book.Open(id, type, object.GetAddressOf());
        if (FAILED(result))
            return result;
        EXPECT_EQ(static_cast<ULONG>(MAPI_MAILUSER), type);
        return object->QueryInterface(IID_IMailUser, OutVoid(entry));
    }
    // The other entries can be opened, and one more can be made and deleted.
    void ExpectTheRestToWork()
    {
        const std::int64_t rows = Rows();
        for (const std::size_t other : {0, 2})
        {
            ComPtr<IMAPIProp> entry;
            EXPECT_EQ(S_OK, Open(m_ids[other], entry));
        }
        const Bytes added = Add(L"four");
        EXPECT_EQ(L"four", Names().back());
        EXPECT_EQ(S_OK, m_book.Delete(added));
        EXPECT_EQ(rows, Rows());
    }

    TempFolder m_folder;
    OwnBook m_book{m_folder.File(L"store.db")};
    std::vector<Bytes> m_ids;
};

} // namespace

TEST_F(BookDamageTest, AnEntryWithoutAnIdIsNotShownAndStays)
{
    for (const char* const id :
         {"NULL", "x''", "'text'", "7", "2.5", "zeroblob(4097)", "zeroblob(10000000)"})
    {
        SCOPED_TRACE(id);
        Damage(std::string("entry_id = ") + id);
        EXPECT_THAT(Names(), ElementsAre(L"one", L"three"));
        ExpectTheRestToWork();
        EXPECT_EQ(3, Rows());
        EXPECT_EQ(1,
                  m_book.Store().QueryInteger(std::string("SELECT count(*) FROM book_entry "
                                                          "WHERE id = 2 AND entry_id IS ") +
                                              id));
    }
}

TEST_F(BookDamageTest, AnIdThatWasCutIsAnId)
{
    Damage("entry_id = substr(entry_id, 1, 5)");
    EXPECT_THAT(Names(), ElementsAre(L"one", L"two", L"three"));
    ComPtr<IMAPIProp> entry;
    const Bytes cut(m_ids[1].begin(), m_ids[1].begin() + 5);
    EXPECT_EQ(S_OK, Open(cut, entry));
    EXPECT_EQ(MAPI_E_NOT_FOUND, Open(m_ids[1], entry));
    EXPECT_EQ(S_OK, m_book.Delete(cut));
    EXPECT_THAT(Names(), ElementsAre(L"one", L"three"));
}

// Two rows of one ID: the one that the database finds stands for both until it is deleted.
TEST_F(BookDamageTest, AnIdThatIsThereTwiceIsShownTwice)
{
    Damage("entry_id = (SELECT entry_id FROM book_entry WHERE id = 1)");
    EXPECT_THAT(Names(), ElementsAre(L"one", L"two", L"three"));
    ExpectTheRestToWork();
}

TEST_F(BookDamageTest, AnEntryOfNoTypeIsAMailUser)
{
    // 4294967302 and 4294967304 are 6 and 8 in their lower halves.
    for (const char* const type :
         {"NULL", "0", "-1", "'text'", "x'08'", "4294967302", "4294967304", "6.5"})
    {
        SCOPED_TRACE(type);
        Damage(std::string("object_type = ") + type);
        EXPECT_THAT(Names(), ElementsAre(L"one", L"two", L"three"));
        ComPtr<IMAPIProp> entry;
        EXPECT_EQ(S_OK, Open(m_ids[1], entry));
        ExpectTheRestToWork();
        EXPECT_EQ(3, Rows());
    }
}

TEST_F(BookDamageTest, AnEntryWithAnyTimesIsReadChangedAndDeleted)
{
    for (const char* const column : {"created", "modified"})
        for (const char* const time : {"NULL",
                                       "0",
                                       "-1",
                                       "'text'",
                                       "x'FFFF'",
                                       "1e300",
                                       "9223372036854775807",
                                       "-9223372036854775808"})
        {
            SCOPED_TRACE(std::string(column) + " = " + time);
            Damage(std::string(column) + " = " + time);
            EXPECT_THAT(Names(), ElementsAre(L"one", L"two", L"three"));
            ExpectTheRestToWork();
            ComPtr<IMAPIProp> entry;
            ASSERT_EQ(S_OK, Open(m_ids[1], entry));
            EXPECT_TRUE(SetName(entry.Get(), L"zwei"));
            EXPECT_EQ(S_OK, entry->SaveChanges(KEEP_OPEN_READWRITE)) << "no one else changed it";
            EXPECT_THAT(Names(), ElementsAre(L"one", L"zwei", L"three"));
            // It has a time again, no earlier one.
            EXPECT_EQ(1,
                      m_book.Store().QueryInteger("SELECT typeof(modified) = 'integer' AND "
                                                  "modified > 0 FROM book_entry WHERE id = 2"));
            EXPECT_EQ(S_OK, m_book.Delete(m_ids[1]));
            EXPECT_THAT(Names(), ElementsAre(L"one", L"three"));

            // The trigger that takes an entry's properties along went with the rules.
            m_book.Store().Execute(
                "UPDATE property SET value = x'740077006F00' WHERE owner = 2 AND "
                "owner_kind = 7 AND property_id = 12289"); // "two", 0x3001
        }
}

// Each save is later than the one before, up to the last time there is.
TEST_F(BookDamageTest, ATimeOfTheFarFutureGoesOnToItsEnd)
{
    constexpr std::int64_t kLast = 9223372036854775807;
    for (const auto& [before, after] :
         {std::pair(std::int64_t{4000000000000000000}, std::int64_t{4000000000000000001}),
          {kLast - 1, kLast},
          {kLast, kLast}})
    {
        Damage("modified = " + std::to_string(before));
        ComPtr<IMAPIProp> entry;
        ASSERT_EQ(S_OK, Open(m_ids[1], entry));
        EXPECT_TRUE(SetName(entry.Get(), L"two"));
        EXPECT_EQ(S_OK, entry->SaveChanges(FORCE_SAVE));
        EXPECT_EQ(after,
                  m_book.Store().QueryInteger("SELECT modified FROM book_entry WHERE id = 2"));
    }
}

TEST_F(BookDamageTest, AnEntryOfNoContainerIsFoundByItsIdAlone)
{
    for (const char* const container : {"NULL", "0", "999", "'text'", "x'01'"})
    {
        SCOPED_TRACE(container);
        Damage(std::string("container = ") + container);
        EXPECT_THAT(Names(), ElementsAre(L"one", L"three"));
        ComPtr<IMAPIProp> entry;
        EXPECT_EQ(S_OK, Open(m_ids[1], entry));
        EXPECT_EQ(MAPI_W_PARTIAL_COMPLETION, m_book.Delete(m_ids[1])) << "it is another's";
        ExpectTheRestToWork();
        EXPECT_EQ(3, Rows());
    }
}

TEST_F(BookDamageTest, AllAtOnceLeaveTheOthers)
{
    for (int i = 0; i < 500; ++i)
        m_book.Store().Execute("INSERT INTO book_entry (entry_id, container, object_type, created, "
                               "modified) SELECT NULL, container, 'x', x'00', NULL FROM book_entry "
                               "WHERE id = 1");
    EXPECT_THAT(Names(), ElementsAre(L"one", L"two", L"three"));
    Add(L"four");
    EXPECT_THAT(Names(), ElementsAre(L"one", L"two", L"three", L"four"));
    EXPECT_EQ(504, Rows());
}
