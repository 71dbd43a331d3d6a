#include "localstore/BookEntries.h"

#include "localstore/BookEntry.h"
#include "localstore/StoreProperties.h"

namespace
{

constexpr ULONG kColumns[] = {
    PR_ENTRYID, PR_OBJECT_TYPE, PR_DISPLAY_NAME_W, PR_LAST_MODIFICATION_TIME};

class BookEntriesSource : public TableSource
{
  public:
    BookEntriesSource(std::shared_ptr<BookSession> session, std::int64_t container)
        : m_session(std::move(session)), m_container(container)
    {
    }

    std::vector<std::int64_t> Keys() override
    {
        Statement rows = m_session->Store().Prepare(
            "SELECT id FROM book_entry WHERE container = ?1 ORDER BY id");
        rows.Bind(1, m_container);
        std::vector<std::int64_t> keys;
        while (rows.Step())
            keys.push_back(rows.Integer(0));
        return keys;
    }

    void Read(std::span<const std::int64_t> keys,
              bool,
              const PropertySelection& selection,
              const RowVisitor& visit) override
    {
        Database& database = m_session->Store();
        const std::string select =
            std::string("SELECT ") + kBookEntryColumns + " FROM book_entry WHERE id = ?1";
        for (const std::int64_t key : keys)
        {
            Statement found = database.Prepare(select);
            found.Bind(1, key);
            if (!found.Step())
                continue;
            const std::optional<BookEntryRow> entry = ReadBookEntryRow(found);
            if (!entry)
                continue; // nobody could ask for it
            PropertyMap row =
                ReadStored(database, {OwnerKind::BookEntry, key}, selection, IsComputedOfBookEntry);
            PutBookEntryProperties(*entry, row);
            if (!visit(key, row))
                return;
        }
    }

    std::vector<ULONG> DefaultColumns() const override
    {
        return {std::begin(kColumns), std::end(kColumns)};
    }

  private:
    const std::shared_ptr<BookSession> m_session;
    const std::int64_t m_container;
};

} // namespace

std::unique_ptr<TableSource> MakeBookEntriesSource(std::shared_ptr<BookSession> session,
                                                   std::int64_t container)
{
    return std::make_unique<BookEntriesSource>(std::move(session), container);
}
