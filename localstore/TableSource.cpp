#include "localstore/TableSource.h"

#include "localstore/StoreProfile.h"
#include "localstore/StoreProperties.h"

#include <string>

namespace
{

constexpr ULONG kContentsColumns[] = {PR_ENTRYID,
                                      PR_INSTANCE_KEY,
                                      PR_OBJECT_TYPE,
                                      PR_MESSAGE_CLASS_W,
                                      PR_SUBJECT_W,
                                      PR_HASATTACH,
                                      PR_LAST_MODIFICATION_TIME};
constexpr ULONG kHierarchyColumns[] = {PR_ENTRYID,
                                       PR_INSTANCE_KEY,
                                       PR_OBJECT_TYPE,
                                       PR_DISPLAY_NAME_W,
                                       PR_CONTAINER_CLASS_W,
                                       PR_CONTENT_COUNT,
                                       PR_SUBFOLDERS};

// A message and one of its properties in a row; the message again with each further property.
enum Column
{
    kId,
    kEntryId,
    kCreated,
    kModified,
    kHasAttachment,
    kPropertyId,
    kValue // type, value, large
};

bool IsMadeByTable(std::uint16_t id)
{
    return id == PROP_ID(PR_INSTANCE_KEY) || IsComputedOfMessage(id);
}

class ContentsSource : public TableSource
{
  public:
    ContentsSource(std::shared_ptr<StoreSession> session, std::int64_t folder, bool associated)
        : m_session(std::move(session)), m_folder(folder), m_associated(associated)
    {
    }

    std::vector<std::int64_t> Keys() override
    {
        Statement rows = m_session->Store().Prepare(
            "SELECT id FROM message WHERE folder = ?1 AND associated = ?2 ORDER BY id");
        rows.Bind(1, m_folder).Bind(2, m_associated);
        std::vector<std::int64_t> keys;
        while (rows.Step())
            keys.push_back(rows.Integer(0));
        return keys;
    }

    void Read(std::span<const std::int64_t> keys,
              bool wholeRun,
              const PropertySelection& selection,
              const RowVisitor& visit) override
    {
        if (keys.empty())
            return;
        const std::string sql = Sql(selection);
        const auto folderEntryId = EntryIdOfFolder(m_session->Store(), m_folder);
        if (!folderEntryId)
            return; // the rows went with their folder
        if (wholeRun)
        {
            ReadRange(sql, keys, selection, *folderEntryId, visit);
            return;
        }
        for (const std::int64_t& key : keys)
        {
            if (!ReadRange(sql, std::span(&key, 1), selection, *folderEntryId, visit))
                return;
        }
    }

    std::vector<ULONG> DefaultColumns() const override
    {
        return {std::begin(kContentsColumns), std::end(kContentsColumns)};
    }

  private:
    // One statement for every number of rows.
    static std::string Sql(const PropertySelection& selection)
    {
        // Longer lists are not worth a text of their own: everything is read and chosen from.
        constexpr size_t kLongestList = 64;
        std::string list;
        bool joins = selection.IsAll();
        if (!selection.IsAll())
        {
            const auto ids = selection.Without(IsMadeByTable);
            joins = !ids.empty();
            if (ids.size() <= kLongestList)
            {
                for (const std::uint16_t id : ids)
                    list += (list.empty() ? "" : ",") + std::to_string(id);
            }
        }
        std::string sql = "SELECT m.id, m.entry_id, m.created, m.modified, ";
        sql += selection.Has(PROP_ID(PR_HASATTACH))
                   ? "EXISTS (SELECT 1 FROM attachment a WHERE a.message = m.id), "
                   : "0, ";
        sql += joins ? "p.property_id, p.type, p.value, p.large FROM message m LEFT JOIN property "
                       "p ON p.owner_kind = 3 AND p.owner = m.id"
                     : "NULL, NULL, NULL, NULL FROM message m";
        if (!list.empty())
            sql += " AND p.property_id IN (" + list + ")";
        return sql + " WHERE m.folder = ?1 AND m.associated = ?2 AND m.id BETWEEN ?3 AND ?4 "
                     "ORDER BY m.id";
    }

    // False where the visitor ended the reading.
    bool ReadRange(const std::string& sql,
                   std::span<const std::int64_t> keys,
                   const PropertySelection& selection,
                   const Bytes& folderEntryId,
                   const RowVisitor& visit)
    {
        Database& database = m_session->Store();
        Statement rows = database.Prepare(sql);
        rows.Bind(1, m_folder).Bind(2, m_associated).Bind(3, keys.front()).Bind(4, keys.back());
        size_t next = 0;
        bool more = rows.Step();
        while (more)
        {
            MessageRow message;
            message.id = rows.Integer(kId);
            message.folder = m_folder;
            message.associated = m_associated;
            message.created = rows.Integer(kCreated);
            message.modified = rows.Integer(kModified);
            const auto entryId = rows.Blob(kEntryId);
            message.entryId.assign(entryId.begin(), entryId.end());
            const bool hasAttachment = rows.Integer(kHasAttachment) != 0;
            // Messages that came after the keys were taken are no rows of the table.
            while (next < keys.size() && keys[next] < message.id)
                ++next;
            const bool wanted = next < keys.size() && keys[next] == message.id;

            PropertyMap properties;
            do
            {
                const auto id = static_cast<std::uint16_t>(rows.Integer(kPropertyId));
                if (wanted && !rows.IsNull(kPropertyId) && selection.Has(id))
                    properties.insert_or_assign(id, ReadValueColumns(database, rows, kValue));
                more = rows.Step();
            } while (more && rows.Integer(kId) == message.id);
            if (!wanted)
                continue;
            PutMessageProperties(
                *m_session, message, folderEntryId, !m_session->IsReadOnly(), properties);
            PutBinary(properties, PR_INSTANCE_KEY, message.entryId);
            PutBoolean(properties, PR_HASATTACH, hasAttachment);
            if (!visit(message.id, properties))
                return false;
        }
        return true;
    }

    const std::shared_ptr<StoreSession> m_session;
    const std::int64_t m_folder;
    const bool m_associated;
};

class HierarchySource : public TableSource
{
  public:
    HierarchySource(std::shared_ptr<StoreSession> session, std::int64_t folder)
        : m_session(std::move(session)), m_folder(folder)
    {
    }

    std::vector<std::int64_t> Keys() override
    {
        Statement rows =
            m_session->Store().Prepare("SELECT id FROM folder WHERE parent = ?1 ORDER BY id");
        rows.Bind(1, m_folder);
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
        for (const std::int64_t key : keys)
        {
            PropertyMap row;
            try
            {
                row = ReadFolder(*m_session, key, !m_session->IsReadOnly(), selection);
            }
            catch (const DatabaseError& error)
            {
                if (error.Failure() != DatabaseFailure::Gone)
                    throw;
                continue;
            }
            row.insert_or_assign(PROP_ID(PR_INSTANCE_KEY), row.at(PROP_ID(PR_ENTRYID)));
            if (!visit(key, row))
                return;
        }
    }

    std::vector<ULONG> DefaultColumns() const override
    {
        return {std::begin(kHierarchyColumns), std::end(kHierarchyColumns)};
    }

  private:
    const std::shared_ptr<StoreSession> m_session;
    const std::int64_t m_folder;
};

class FixedSource : public TableSource
{
  public:
    FixedSource(std::vector<PropertyMap> rows, std::vector<ULONG> columns)
        : m_rows(std::move(rows)), m_columns(std::move(columns))
    {
    }

    std::vector<std::int64_t> Keys() override
    {
        std::vector<std::int64_t> keys;
        for (size_t i = 0; i < m_rows.size(); ++i)
            keys.push_back(static_cast<std::int64_t>(i));
        return keys;
    }
    void Read(std::span<const std::int64_t> keys,
              bool,
              const PropertySelection&,
              const RowVisitor& visit) override
    {
        for (const std::int64_t key : keys)
        {
            if (!visit(key, m_rows[static_cast<size_t>(key)]))
                return;
        }
    }
    std::vector<ULONG> DefaultColumns() const override { return m_columns; }

  private:
    const std::vector<PropertyMap> m_rows;
    const std::vector<ULONG> m_columns;
};

} // namespace

std::unique_ptr<TableSource> MakeContentsSource(std::shared_ptr<StoreSession> session,
                                                std::int64_t folder,
                                                bool associated)
{
    return std::make_unique<ContentsSource>(std::move(session), folder, associated);
}

std::unique_ptr<TableSource> MakeHierarchySource(std::shared_ptr<StoreSession> session,
                                                 std::int64_t folder)
{
    return std::make_unique<HierarchySource>(std::move(session), folder);
}

std::unique_ptr<TableSource> MakeFixedSource(std::vector<PropertyMap> rows,
                                             std::vector<ULONG> columns)
{
    return std::make_unique<FixedSource>(std::move(rows), std::move(columns));
}
