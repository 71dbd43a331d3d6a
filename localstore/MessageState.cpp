#include "localstore/MessageState.h"

#include "localstore/BodyForms.h"
#include "localstore/StoreProfile.h"

#include <algorithm>

namespace
{

constexpr ULONG kAttachmentColumns[] = {PR_ATTACH_NUM,
                                        PR_OBJECT_TYPE,
                                        PR_ATTACH_METHOD,
                                        PR_ATTACH_FILENAME_W,
                                        PR_ATTACH_SIZE,
                                        PR_RENDERING_POSITION};

constexpr RowKind kMessages = {OwnerKind::Message, "message", IsComputedOfMessage};

class AttachmentSource : public TableSource
{
  public:
    explicit AttachmentSource(std::shared_ptr<MessageState> message) : m_message(std::move(message))
    {
    }

    std::vector<std::int64_t> Keys() override { return m_message->AttachmentNumbers(); }
    void Read(std::span<const std::int64_t> keys,
              bool,
              const PropertySelection& selection,
              const RowVisitor& visit) override
    {
        for (const std::int64_t key : keys)
        {
            const auto number = static_cast<ULONG>(key);
            if (!m_message->HasAttachment(number))
                continue;
            if (!visit(key, m_message->ReadAttachment(number, selection)))
                return;
        }
    }
    std::vector<ULONG> DefaultColumns() const override
    {
        return {std::begin(kAttachmentColumns), std::end(kAttachmentColumns)};
    }

  private:
    const std::shared_ptr<MessageState> m_message;
};

std::optional<std::int64_t> AttachmentRow(Database& database,
                                          std::int64_t message,
                                          std::int64_t number)
{
    Statement row =
        database.Prepare("SELECT id FROM attachment WHERE message = ?1 AND number = ?2");
    row.Bind(1, message).Bind(2, number);
    return row.Step() ? std::optional(row.Integer(0)) : std::nullopt;
}

} // namespace

PropertyMap MessageState::Read(const PropertySelection& selection)
{
    PropertyMap properties = ReadRow(Session().Store(), kMessages, m_row.id, selection);
    Overlay(properties, m_changes, selection);
    PutMessageProperties(Session(), m_row, m_folderEntryId, IsWritable(), properties);
    if (selection.Has(PROP_ID(PR_HASATTACH)))
        PutBoolean(properties, PR_HASATTACH, !AttachmentNumbers().empty());
    return properties;
}

bool MessageState::IsComputed(std::uint16_t id) const
{
    return IsComputedOfMessage(id);
}

// Brings the row into the table; inside the transaction.
void MessageState::SaveRow(MessageRow& row, bool force)
{
    Database& database = Session().Store();
    if (row.id == 0)
    {
        row.entryId = NewEntryId(MAPI_MESSAGE);
        row.created = row.modified = CurrentFileTime();
        Statement folder = database.Prepare("SELECT 1 FROM folder WHERE id = ?1");
        folder.Bind(1, row.folder);
        if (!folder.Step())
            throw DatabaseError(DatabaseFailure::Gone, "the folder of the message was deleted");
        database
            .Prepare("INSERT INTO message (entry_id, folder, associated, created, modified) "
                     "VALUES (?1, ?2, ?3, ?4, ?5)")
            .Bind(1, std::span<const std::byte>(row.entryId))
            .Bind(2, row.folder)
            .Bind(3, row.associated)
            .Bind(4, row.created)
            .Bind(5, row.modified)
            .Run();
        row.id = database.LastInsertId();
        return;
    }
    TouchRow(database, kMessages, row, force);
}

void MessageState::SaveAttachments(std::int64_t message)
{
    Database& database = Session().Store();
    for (const auto& [number, change] : m_attachments)
    {
        if (change.deleted)
        {
            database.Prepare("DELETE FROM attachment WHERE message = ?1 AND number = ?2")
                .Bind(1, message)
                .Bind(2, number)
                .Run();
            continue;
        }
        auto attachment = AttachmentRow(database, message, number);
        if (change.isNew)
        {
            if (attachment)
                throw DatabaseError(DatabaseFailure::Changed,
                                    "another attachment of the message took the number meanwhile");
            database.Prepare("INSERT INTO attachment (message, number) VALUES (?1, ?2)")
                .Bind(1, message)
                .Bind(2, number)
                .Run();
            attachment = AttachmentRow(database, message, number);
        }
        if (attachment)
            WriteChanges(database, {OwnerKind::Attachment, *attachment}, change.changes);
    }
}

HRESULT MessageState::Save(ULONG flags)
{
    if (m_row.id != 0 && m_changes.empty() && m_attachments.empty())
        return S_OK;
    if (!IsWritable())
        return MAPI_E_NO_ACCESS;
    MessageRow row = m_row;
    Transaction transaction(Session().Store());
    SaveRow(row, (flags & FORCE_SAVE) != 0);
    const PropertyOwner owner{OwnerKind::Message, row.id};
    WriteChanges(Session().Store(), owner, m_changes);
    FollowBodyChange(Session().Store(), owner, m_changes);
    SaveAttachments(row.id);
    transaction.Commit();
    m_row = std::move(row);
    m_changes.clear();
    m_attachments.clear();
    return S_OK;
}

std::optional<std::int64_t> MessageState::AttachmentId(ULONG number)
{
    return m_row.id == 0 ? std::nullopt : AttachmentRow(Session().Store(), m_row.id, number);
}

std::vector<std::int64_t> MessageState::AttachmentNumbers()
{
    std::vector<std::int64_t> numbers;
    if (m_row.id != 0)
    {
        Statement rows =
            Session().Store().Prepare("SELECT number FROM attachment WHERE message = ?1");
        rows.Bind(1, m_row.id);
        while (rows.Step())
        {
            const auto change = m_attachments.find(static_cast<ULONG>(rows.Integer(0)));
            if (change == m_attachments.end())
                numbers.push_back(rows.Integer(0));
        }
    }
    for (const auto& [number, change] : m_attachments)
    {
        if (!change.deleted)
            numbers.push_back(number);
    }
    std::sort(numbers.begin(), numbers.end());
    return numbers;
}

bool MessageState::HasAttachment(ULONG number)
{
    const auto change = m_attachments.find(number);
    return change == m_attachments.end() ? AttachmentId(number).has_value()
                                         : !change->second.deleted;
}

ULONG MessageState::NewAttachmentNumber()
{
    if (m_row.id != 0)
    {
        Statement row = Session().Store().Prepare(
            "SELECT coalesce(max(number), -1) FROM attachment WHERE message = ?1");
        row.Bind(1, m_row.id);
        if (row.Step())
            m_lastNumber = std::max(m_lastNumber, row.Integer(0));
    }
    return static_cast<ULONG>(++m_lastNumber);
}

PropertyMap MessageState::ReadAttachment(ULONG number, const PropertySelection& selection)
{
    PropertyMap properties;
    if (const auto id = AttachmentId(number))
        properties = ReadStored(
            Session().Store(), {OwnerKind::Attachment, *id}, selection, IsComputedOfAttachment);
    if (const auto change = m_attachments.find(number); change != m_attachments.end())
        Overlay(properties, change->second.changes, selection);
    PutLong(properties, PR_ATTACH_NUM, number);
    PutLong(properties, PR_OBJECT_TYPE, MAPI_ATTACH);
    PutLong(properties, PR_ACCESS_LEVEL, IsWritable() ? MAPI_MODIFY : 0);
    PutBinary(properties, PR_STORE_ENTRYID, Session().StoreEntryId());
    PutBinary(properties, PR_STORE_RECORD_KEY, Session().StoreUid());
    return properties;
}

void MessageState::ChangeAttachment(ULONG number, bool isNew, PropertyChanges&& changes)
{
    const auto [change, isFirst] = m_attachments.try_emplace(number);
    if (isFirst)
        change->second.isNew = isNew;
    MoveChanges(change->second.changes, std::move(changes));
}

bool MessageState::DeleteAttachment(ULONG number)
{
    if (!HasAttachment(number))
        return false;
    m_attachments.insert_or_assign(number, AttachmentChange{true, false, {}});
    // Used up, also behind the save that takes the attachment away.
    m_lastNumber = std::max<std::int64_t>(m_lastNumber, number);
    return true;
}

PropertyMap AttachmentState::Read(const PropertySelection& selection)
{
    if (!m_isNew && !m_message->HasAttachment(m_number))
        throw DatabaseError(DatabaseFailure::Gone, "the attachment was deleted");
    PropertyMap properties = m_message->ReadAttachment(m_number, selection);
    Overlay(properties, m_changes, selection);
    return properties;
}

bool AttachmentState::IsComputed(std::uint16_t id) const
{
    return IsComputedOfAttachment(id);
}

HRESULT AttachmentState::Save(ULONG)
{
    if (!m_isNew && m_changes.empty())
        return S_OK;
    if (!IsWritable())
        return MAPI_E_NO_ACCESS;
    if (!m_isNew && !m_message->HasAttachment(m_number))
        return MAPI_E_OBJECT_DELETED;
    m_message->ChangeAttachment(m_number, m_isNew, std::move(m_changes));
    m_isNew = false;
    return S_OK;
}

std::unique_ptr<TableSource> MakeAttachmentSource(std::shared_ptr<MessageState> message)
{
    return std::make_unique<AttachmentSource>(std::move(message));
}
