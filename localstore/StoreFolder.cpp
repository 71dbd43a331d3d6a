#include "localstore/StoreFolder.h"

#include "localstore/MapiValues.h"
#include "localstore/StoreMessage.h"
#include "localstore/StoreProfile.h"
#include "localstore/StoreProperties.h"
#include "localstore/StoreTable.h"

#include <algorithm>

namespace
{

// Deleting for good is what this store does anyway.
constexpr ULONG kDeleteHard = 0x00000010;
constexpr ULONG kTableFlags = MAPI_UNICODE | MAPI_DEFERRED_ERRORS | MAPI_ASSOCIATED;

std::optional<std::int64_t> FindSubfolder(Database& database,
                                          std::int64_t parent,
                                          const std::wstring& name)
{
    Statement rows = database.Prepare("SELECT id FROM folder WHERE parent = ?1 ORDER BY id");
    rows.Bind(1, parent);
    while (rows.Step())
    {
        const std::int64_t folder = rows.Integer(0);
        const auto value =
            ReadProperty(database, {OwnerKind::MessageFolder, folder}, PROP_ID(PR_DISPLAY_NAME_W));
        const auto* text = value ? std::get_if<std::wstring>(&value->data) : nullptr;
        if (text && lstrcmpiW(text->c_str(), name.c_str()) == 0)
            return folder;
    }
    return std::nullopt;
}

bool HasRows(Database& database, const char* sql, std::int64_t folder)
{
    Statement row = database.Prepare(sql);
    row.Bind(1, folder);
    return row.Step();
}

} // namespace

PropertyMap FolderState::Read(const PropertySelection& selection)
{
    return ReadFolder(Session(), m_id, IsWritable(), selection);
}

HRESULT FolderState::Change(PropertyChanges changes)
{
    if (changes.empty())
        return S_OK;
    Database& database = Session().Store();
    Transaction transaction(database);
    // Strictly later than before, so that every change shows.
    database.Prepare("UPDATE folder SET modified = max(?2, modified + 1) WHERE id = ?1")
        .Bind(1, m_id)
        .Bind(2, CurrentFileTime())
        .Run();
    if (database.Changes() == 0)
        return MAPI_E_OBJECT_DELETED;
    WriteChanges(database, {OwnerKind::MessageFolder, m_id}, changes);
    transaction.Commit();
    return S_OK;
}

bool FolderState::IsComputed(std::uint16_t id) const
{
    return IsComputedOfFolder(id);
}

HRESULT FolderState::Save(ULONG)
{
    return S_OK;
}

HRESULT StoreFolder::Open(const std::shared_ptr<StoreSession>& session,
                          std::span<const std::byte> entryId,
                          const IID* iid,
                          bool writable,
                          bool storeWritable,
                          IUnknown** object)
{
    const auto folder = FolderOfEntryId(session->Store(), entryId);
    if (!folder)
        return MAPI_E_NOT_FOUND;
    if (iid && !Answers(*iid))
        return MAPI_E_INTERFACE_NOT_SUPPORTED;
    *object = MakeObject<StoreFolder>(
                  std::make_shared<FolderState>(session, *folder, writable, storeWritable))
                  .Detach();
    return S_OK;
}

STDMETHODIMP StoreFolder::GetContentsTable(ULONG flags, LPMAPITABLE* table)
{
    if (!table)
        return MAPI_E_INVALID_PARAMETER;
    *table = nullptr;
    if (flags & ~kTableFlags)
        return MAPI_E_UNKNOWN_FLAGS;
    return Session().Run([&] {
        auto source = MakeContentsSource(
            State().SharedSession(), State().Id(), (flags & MAPI_ASSOCIATED) != 0);
        *table = MakeObject<StoreTable>(State().SharedSession(), std::move(source)).Detach();
        return S_OK;
    });
}

STDMETHODIMP StoreFolder::GetHierarchyTable(ULONG flags, LPMAPITABLE* table)
{
    if (!table)
        return MAPI_E_INVALID_PARAMETER;
    *table = nullptr;
    if (flags & CONVENIENT_DEPTH)
        return MAPI_E_NO_SUPPORT;
    if (flags & ~(MAPI_UNICODE | MAPI_DEFERRED_ERRORS))
        return MAPI_E_UNKNOWN_FLAGS;
    return Session().Run([&] {
        auto source = MakeHierarchySource(State().SharedSession(), State().Id());
        *table = MakeObject<StoreTable>(State().SharedSession(), std::move(source)).Detach();
        return S_OK;
    });
}

STDMETHODIMP StoreFolder::OpenEntry(ULONG entryIdBytes,
                                    LPENTRYID entryId,
                                    LPCIID iid,
                                    ULONG flags,
                                    ULONG* objectType,
                                    LPUNKNOWN* object)
{
    return Session().OpenEntry(
        entryIdBytes, entryId, iid, flags, true, State().IsStoreWritable(), objectType, object);
}

STDMETHODIMP StoreFolder::SetSearchCriteria(LPSRestriction, LPENTRYLIST, ULONG)
{
    return MAPI_E_NO_SUPPORT;
}

STDMETHODIMP StoreFolder::GetSearchCriteria(ULONG,
                                            LPSRestriction* restriction,
                                            LPENTRYLIST* containers,
                                            ULONG* state)
{
    return RefuseWith(restriction, containers, state);
}

STDMETHODIMP StoreFolder::CreateMessage(LPCIID iid, ULONG flags, LPMESSAGE* message)
{
    if (!message)
        return MAPI_E_INVALID_PARAMETER;
    *message = nullptr;
    if (flags & ~(MAPI_ASSOCIATED | MAPI_DEFERRED_ERRORS))
        return MAPI_E_UNKNOWN_FLAGS;
    if (iid && !StoreMessage::Answers(*iid))
        return MAPI_E_INTERFACE_NOT_SUPPORTED;
    if (!State().IsWritable())
        return MAPI_E_NO_ACCESS;
    return Session().Run([&] {
        MessageRow row;
        row.folder = State().Id();
        row.associated = (flags & MAPI_ASSOCIATED) != 0;
        const auto folderEntryId = EntryIdOfFolder(Session().Store(), row.folder);
        if (!folderEntryId)
            return MAPI_E_OBJECT_DELETED;
        auto state =
            std::make_shared<MessageState>(State().SharedSession(), row, *folderEntryId, true);
        *message = MakeObject<StoreMessage>(std::move(state)).Detach();
        return S_OK;
    });
}

STDMETHODIMP
StoreFolder::CopyMessages(LPENTRYLIST, LPCIID, LPVOID, ULONG, LPMAPIPROGRESS, ULONG)
{
    return MAPI_E_NO_SUPPORT;
}

STDMETHODIMP
StoreFolder::DeleteMessages(LPENTRYLIST entries, ULONG, LPMAPIPROGRESS, ULONG flags)
{
    if (const HRESULT result = CheckList(entries); FAILED(result))
        return result;
    if (flags & ~(MESSAGE_DIALOG | kDeleteHard))
        return MAPI_E_UNKNOWN_FLAGS;
    return Session().Run([&]() -> HRESULT {
        if (!State().IsWritable())
            return MAPI_E_NO_ACCESS;
        return DeleteRows(Session().Store(),
                          "DELETE FROM message WHERE entry_id = ?1 AND folder = ?2",
                          State().Id(),
                          *entries);
    });
}

STDMETHODIMP StoreFolder::CreateFolder(
    ULONG type, LPTSTR name, LPTSTR comment, LPCIID iid, ULONG flags, LPMAPIFOLDER* folder)
{
    if (!folder)
        return MAPI_E_INVALID_PARAMETER;
    *folder = nullptr;
    if (!name)
        return MAPI_E_INVALID_PARAMETER;
    if (flags & ~(MAPI_UNICODE | MAPI_DEFERRED_ERRORS | OPEN_IF_EXISTS))
        return MAPI_E_UNKNOWN_FLAGS;
    if (type != FOLDER_GENERIC)
        return MAPI_E_NO_SUPPORT;
    if (iid && !Answers(*iid))
        return MAPI_E_INTERFACE_NOT_SUPPORTED;
    return Session().Run([&] {
        if (!State().IsWritable())
            return MAPI_E_NO_ACCESS;
        const std::wstring displayName = WideFromCaller(name, flags);
        if (displayName.empty())
            return MAPI_E_INVALID_PARAMETER;
        Database& database = Session().Store();
        Transaction transaction(database);
        const std::optional<int> level = LevelOfFolder(database, State().Id());
        if (!level)
            return MAPI_E_OBJECT_DELETED;
        auto id = FindSubfolder(database, State().Id(), displayName);
        if (id && !(flags & OPEN_IF_EXISTS))
            return MAPI_E_COLLISION;
        if (!id && *level == kMostFolderLevels)
            return MAPI_E_TOO_COMPLEX;
        if (!id)
        {
            id = AddFolder(database, State().Id(), displayName, L"");
            if (comment)
                WriteProperty(database,
                              {OwnerKind::MessageFolder, *id},
                              PROP_ID(PR_COMMENT_W),
                              {PT_UNICODE, WideFromCaller(comment, flags)});
        }
        auto made = MakeObject<StoreFolder>(std::make_shared<FolderState>(
            State().SharedSession(), *id, true, State().IsStoreWritable()));
        transaction.Commit();
        *folder = made.Detach();
        return S_OK;
    });
}

STDMETHODIMP StoreFolder::CopyFolder(
    ULONG, LPENTRYID, LPCIID, LPVOID, LPTSTR, ULONG, LPMAPIPROGRESS, ULONG)
{
    return MAPI_E_NO_SUPPORT;
}

STDMETHODIMP StoreFolder::DeleteFolder(
    ULONG entryIdBytes, LPENTRYID entryId, ULONG, LPMAPIPROGRESS, ULONG flags)
{
    if (flags & ~(DEL_MESSAGES | DEL_FOLDERS | FOLDER_DIALOG | kDeleteHard))
        return MAPI_E_UNKNOWN_FLAGS;
    std::span<const std::byte> bytes;
    if (const HRESULT result = ReadEntryId(entryIdBytes, entryId, bytes); FAILED(result))
        return result;
    return Session().Run([&] {
        if (!State().IsWritable())
            return MAPI_E_NO_ACCESS;
        Database& database = Session().Store();
        Transaction transaction(database);
        Statement row =
            database.Prepare("SELECT id FROM folder WHERE entry_id = ?1 AND parent = ?2");
        row.Bind(1, bytes).Bind(2, State().Id());
        if (!row.Step())
            return MAPI_E_NOT_FOUND;
        const std::int64_t folder = row.Integer(0);
        row.Reset();
        if (!(flags & DEL_FOLDERS) &&
            HasRows(database, "SELECT 1 FROM folder WHERE parent = ?1", folder))
            return MAPI_E_HAS_FOLDERS;
        if (!(flags & DEL_MESSAGES) &&
            HasRows(database, "SELECT 1 FROM message WHERE folder = ?1", folder))
            return MAPI_E_HAS_MESSAGES;
        database.Prepare("DELETE FROM folder WHERE id = ?1").Bind(1, folder).Run();
        transaction.Commit();
        return S_OK;
    });
}

STDMETHODIMP StoreFolder::SetReadFlags(LPENTRYLIST, ULONG, LPMAPIPROGRESS, ULONG)
{
    return MAPI_E_NO_SUPPORT;
}

STDMETHODIMP StoreFolder::GetMessageStatus(ULONG, LPENTRYID, ULONG, ULONG* status)
{
    return RefuseWith(status);
}

STDMETHODIMP StoreFolder::SetMessageStatus(ULONG, LPENTRYID, ULONG, ULONG, ULONG* oldStatus)
{
    return RefuseWith(oldStatus);
}

STDMETHODIMP StoreFolder::SaveContentsSort(LPSSortOrderSet, ULONG)
{
    return MAPI_E_NO_SUPPORT;
}

STDMETHODIMP StoreFolder::EmptyFolder(ULONG, LPMAPIPROGRESS, ULONG)
{
    return MAPI_E_NO_SUPPORT;
}
