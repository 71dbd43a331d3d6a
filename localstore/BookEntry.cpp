#include "localstore/BookEntry.h"

#include "localstore/BookEntryId.h"
#include "localstore/StoreProfile.h"
#include "localstore/StoreProperties.h"

#include <algorithm>

namespace
{

constexpr RowKind kEntries = {OwnerKind::BookEntry, "book_entry", IsComputedOfBookEntry};

// The object of an entry's type, under the interface of the base.
Microsoft::WRL::ComPtr<IMAPIProp> MakeEntry(std::shared_ptr<BookSession> session,
                                            BookEntryRow row,
                                            bool writable)
{
    const bool isList = row.objectType == MAPI_DISTLIST;
    auto state = std::make_shared<BookEntryState>(std::move(session), std::move(row), writable);
    if (isList)
        return MakeObject<BookDistributionList>(std::move(state));
    return MakeObject<BookUser>(std::move(state));
}

bool AnswersAs(ULONG objectType, const IID& iid)
{
    return objectType == MAPI_DISTLIST ? BookDistributionList::Answers(iid)
                                       : BookUser::Answers(iid);
}

void InsertRow(Database& database, BookEntryRow& row)
{
    row.entryId = NewBookEntryId();
    row.created = row.modified = CurrentFileTime();
    database
        .Prepare("INSERT INTO book_entry (entry_id, container, object_type, created, modified) "
                 "VALUES (?1, ?2, ?3, ?4, ?5)")
        .Bind(1, std::span<const std::byte>(row.entryId))
        .Bind(2, row.container)
        .Bind(3, static_cast<std::int64_t>(row.objectType))
        .Bind(4, row.created)
        .Bind(5, row.modified)
        .Run();
    row.id = database.LastInsertId();
}

} // namespace

std::optional<BookEntryRow> ReadBookEntryRow(const Statement& row)
{
    const auto entryId = row.Blob(1);
    if (!row.IsBlob(1) || entryId.empty() || entryId.size() > kLongestEntryId)
        return std::nullopt;
    BookEntryRow entry;
    entry.id = row.Integer(0);
    entry.entryId.assign(entryId.begin(), entryId.end());
    entry.container = row.Integer(2);
    entry.objectType = row.Integer(3) == MAPI_DISTLIST ? MAPI_DISTLIST : MAPI_MAILUSER;
    entry.created = row.Integer(4);
    entry.modified = row.Integer(5);
    return entry;
}

void PutBookEntryProperties(const BookEntryRow& entry, PropertyMap& properties)
{
    PutRowProperties(entry, properties);
    PutLong(properties, PR_OBJECT_TYPE, entry.objectType);
    PutLong(properties,
            PR_DISPLAY_TYPE,
            entry.objectType == MAPI_DISTLIST ? DT_PRIVATE_DISTLIST : DT_MAILUSER);
}

PropertyMap BookEntryState::Read(const PropertySelection& selection)
{
    PropertyMap properties = ReadRow(Session().Store(), kEntries, m_row.id, selection);
    Overlay(properties, m_changes, selection);
    PutBookEntryProperties(m_row, properties);
    return properties;
}

bool BookEntryState::IsComputed(std::uint16_t id) const
{
    return IsComputedOfBookEntry(id);
}

HRESULT BookEntryState::Save(ULONG flags)
{
    if (m_row.id != 0 && m_changes.empty())
        return S_OK;
    if (!IsWritable())
        return MAPI_E_NO_ACCESS;
    Database& database = Session().Store();
    BookEntryRow row = m_row;
    Transaction transaction(database);
    if (row.id == 0)
        InsertRow(database, row);
    else
        TouchRow(database, kEntries, row, (flags & FORCE_SAVE) != 0);
    WriteChanges(database, {OwnerKind::BookEntry, row.id}, m_changes);
    transaction.Commit();
    m_row = std::move(row);
    m_changes.clear();
    return S_OK;
}

HRESULT OpenBookEntry(const std::shared_ptr<BookSession>& session,
                      std::span<const std::byte> entryId,
                      const IID* iid,
                      bool writable,
                      ULONG& objectType,
                      IUnknown** object)
{
    Statement found = session->Store().Prepare(std::string("SELECT ") + kBookEntryColumns +
                                               " FROM book_entry WHERE entry_id = ?1");
    found.Bind(1, entryId);
    if (!found.Step())
        return MAPI_E_NOT_FOUND;
    std::optional<BookEntryRow> row = ReadBookEntryRow(found);
    if (!row)
        return MAPI_E_CORRUPT_STORE;
    if (iid && !AnswersAs(row->objectType, *iid))
        return MAPI_E_INTERFACE_NOT_SUPPORTED;
    objectType = row->objectType;
    *object = MakeEntry(session, std::move(*row), writable).Detach();
    return S_OK;
}

HRESULT NewBookEntry(const std::shared_ptr<BookSession>& session,
                     std::int64_t container,
                     std::span<const std::byte> templateId,
                     IMAPIProp** entry)
{
    for (const ULONG type : {MAPI_MAILUSER, MAPI_DISTLIST})
    {
        if (!std::ranges::equal(templateId, TemplateEntryId(static_cast<std::uint8_t>(type))))
            continue;
        BookEntryRow row;
        row.container = container;
        row.objectType = type;
        *entry = MakeEntry(session, std::move(row), true).Detach();
        return S_OK;
    }
    return MAPI_E_UNKNOWN_ENTRYID;
}
