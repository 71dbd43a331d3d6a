#include "localstore/StoreProperties.h"

#include "localstore/StoreProfile.h"
#include "localstore/StoredObject.h"

#include <algorithm>
#include <span>

namespace
{

constexpr ULONG kOfStore[] = {PR_ENTRYID,
                              PR_RECORD_KEY,
                              PR_STORE_ENTRYID,
                              PR_STORE_RECORD_KEY,
                              PR_OBJECT_TYPE,
                              PR_ACCESS_LEVEL,
                              PR_STORE_SUPPORT_MASK,
                              PR_RESOURCE_FLAGS,
                              PR_DEFAULT_STORE,
                              PR_MDB_PROVIDER,
                              PR_PROVIDER_DISPLAY_W};

constexpr ULONG kOfFolder[] = {PR_ENTRYID,
                               PR_RECORD_KEY,
                               PR_PARENT_ENTRYID,
                               PR_STORE_ENTRYID,
                               PR_STORE_RECORD_KEY,
                               PR_OBJECT_TYPE,
                               PR_FOLDER_TYPE,
                               PR_ACCESS_LEVEL,
                               PR_CONTENT_COUNT,
                               PR_ASSOC_CONTENT_COUNT,
                               PR_SUBFOLDERS,
                               PR_CREATION_TIME,
                               PR_LAST_MODIFICATION_TIME};

constexpr ULONG kOfMessage[] = {PR_ENTRYID,
                                PR_RECORD_KEY,
                                PR_PARENT_ENTRYID,
                                PR_STORE_ENTRYID,
                                PR_STORE_RECORD_KEY,
                                PR_OBJECT_TYPE,
                                PR_ACCESS_LEVEL,
                                PR_HASATTACH,
                                PR_CREATION_TIME,
                                PR_LAST_MODIFICATION_TIME};

constexpr ULONG kOfAttachment[] = {
    PR_ATTACH_NUM, PR_OBJECT_TYPE, PR_ACCESS_LEVEL, PR_STORE_ENTRYID, PR_STORE_RECORD_KEY};

constexpr ULONG kOfIdentity[] = {PR_ENTRYID, PR_RECORD_KEY, PR_OBJECT_TYPE, PR_DISPLAY_TYPE};

constexpr ULONG kOfBookContainer[] = {PR_ENTRYID,
                                      PR_OBJECT_TYPE,
                                      PR_DISPLAY_TYPE,
                                      PR_CONTAINER_FLAGS,
                                      PR_DEF_CREATE_DL,
                                      PR_DEF_CREATE_MAILUSER};

constexpr ULONG kOfBookEntry[] = {PR_ENTRYID,
                                  PR_RECORD_KEY,
                                  PR_OBJECT_TYPE,
                                  PR_DISPLAY_TYPE,
                                  PR_CREATION_TIME,
                                  PR_LAST_MODIFICATION_TIME};

struct ComputedRow
{
    OwnerKind kind;
    std::span<const ULONG> tags;
};

constexpr ComputedRow kComputed[] = {{OwnerKind::Store, kOfStore},
                                     {OwnerKind::MessageFolder, kOfFolder},
                                     {OwnerKind::Message, kOfMessage},
                                     {OwnerKind::Attachment, kOfAttachment},
                                     {OwnerKind::Identity, kOfIdentity},
                                     {OwnerKind::BookContainer, kOfBookContainer},
                                     {OwnerKind::BookEntry, kOfBookEntry}};

// What this store's provider is called in tables of stores.
constexpr wchar_t kProviderName[] = L"PimStoreBridge Local Store";
// {C1E7A9D4-5B0E-4F0B-9C2E-6E1B7A4D3F58}, made for this provider alone.
constexpr unsigned char kProviderUid[16] = {
    0xD4, 0xA9, 0xE7, 0xC1, 0x0E, 0x5B, 0x0B, 0x4F, 0x9C, 0x2E, 0x6E, 0x1B, 0x7A, 0x4D, 0x3F, 0x58};

constexpr ULONG kStoreSupport = STORE_ENTRYID_UNIQUE | STORE_MODIFY_OK | STORE_CREATE_OK |
                                STORE_ATTACH_OK | STORE_MV_PROPS_OK | STORE_RTF_OK |
                                STORE_RESTRICTION_OK | STORE_SORT_OK;
// Texts of the store are Unicode.
constexpr ULONG kStoreUnicode = 0x00040000;

bool IsOneOf(std::span<const ULONG> tags, std::uint16_t id)
{
    return std::any_of(tags.begin(), tags.end(), [&](ULONG tag) { return PROP_ID(tag) == id; });
}

void Put(PropertyMap& properties, ULONG tag, PropertyValue value)
{
    properties.insert_or_assign(static_cast<std::uint16_t>(PROP_ID(tag)), std::move(value));
}

std::uint32_t Count(Database& database, const char* sql, std::int64_t folder)
{
    Statement row = database.Prepare(sql);
    row.Bind(1, folder);
    return row.Step() ? static_cast<std::uint32_t>(row.Integer(0)) : 0;
}

} // namespace

bool IsComputedOfStore(std::uint16_t id)
{
    return IsOneOf(kOfStore, id);
}

bool IsComputedOfFolder(std::uint16_t id)
{
    return IsOneOf(kOfFolder, id);
}

bool IsComputedOfMessage(std::uint16_t id)
{
    return IsOneOf(kOfMessage, id);
}

bool IsComputedOfAttachment(std::uint16_t id)
{
    return IsOneOf(kOfAttachment, id);
}

bool IsComputedOfIdentity(std::uint16_t id)
{
    return IsOneOf(kOfIdentity, id);
}

bool IsComputedOfBookContainer(std::uint16_t id)
{
    return IsOneOf(kOfBookContainer, id);
}

bool IsComputedOfBookEntry(std::uint16_t id)
{
    return IsOneOf(kOfBookEntry, id);
}

bool IsComputedOf(OwnerKind kind, std::uint16_t id)
{
    return std::any_of(std::begin(kComputed), std::end(kComputed), [&](const ComputedRow& row) {
        return row.kind == kind && IsOneOf(row.tags, id);
    });
}

void PutLong(PropertyMap& properties, ULONG tag, ULONG value)
{
    Put(properties, tag, {PT_LONG, std::uint64_t{value}});
}

void PutBoolean(PropertyMap& properties, ULONG tag, bool value)
{
    Put(properties, tag, {PT_BOOLEAN, std::uint64_t{value ? 1u : 0u}});
}

void PutBinary(PropertyMap& properties, ULONG tag, const Bytes& value)
{
    Put(properties, tag, {PT_BINARY, value});
}

void PutTime(PropertyMap& properties, ULONG tag, std::int64_t value)
{
    Put(properties, tag, {PT_SYSTIME, static_cast<std::uint64_t>(value)});
}

void PutText(PropertyMap& properties, ULONG tag, const wchar_t* value)
{
    Put(properties, tag, {PT_UNICODE, std::wstring(value)});
}

void PutStoreProperties(const StoreSession& session, bool writable, PropertyMap& properties)
{
    const auto uid = std::as_bytes(std::span(kProviderUid));
    PutBinary(properties, PR_ENTRYID, session.StoreEntryId());
    PutBinary(properties, PR_STORE_ENTRYID, session.StoreEntryId());
    PutBinary(properties, PR_RECORD_KEY, session.StoreUid());
    PutBinary(properties, PR_STORE_RECORD_KEY, session.StoreUid());
    PutLong(properties, PR_OBJECT_TYPE, MAPI_STORE);
    PutLong(properties, PR_ACCESS_LEVEL, writable ? MAPI_MODIFY : 0);
    PutLong(properties, PR_STORE_SUPPORT_MASK, kStoreSupport | kStoreUnicode);
    PutLong(properties, PR_RESOURCE_FLAGS, STATUS_DEFAULT_STORE);
    PutBoolean(properties, PR_DEFAULT_STORE, true);
    PutBinary(properties, PR_MDB_PROVIDER, Bytes(uid.begin(), uid.end()));
    PutText(properties, PR_PROVIDER_DISPLAY_W, kProviderName);
}

PropertyMap ReadFolder(StoreSession& session,
                       std::int64_t folder,
                       bool writable,
                       const PropertySelection& selection)
{
    Database& database = session.Store();
    PropertyMap properties =
        ReadStored(database, {OwnerKind::MessageFolder, folder}, selection, IsComputedOfFolder);

    Statement row = database.Prepare(
        "SELECT f.entry_id, coalesce(p.entry_id, f.entry_id), f.parent, f.created, f.modified "
        "FROM folder f LEFT JOIN folder p ON p.id = f.parent WHERE f.id = ?1");
    row.Bind(1, folder);
    if (!row.Step())
        throw DatabaseError(DatabaseFailure::Gone, "the folder was deleted");
    const auto entryId = row.Blob(0);
    PutBinary(properties, PR_ENTRYID, Bytes(entryId.begin(), entryId.end()));
    PutBinary(properties, PR_RECORD_KEY, Bytes(entryId.begin(), entryId.end()));
    const auto parent = row.Blob(1);
    PutBinary(properties, PR_PARENT_ENTRYID, Bytes(parent.begin(), parent.end()));
    PutLong(properties, PR_FOLDER_TYPE, row.IsNull(2) ? FOLDER_ROOT : FOLDER_GENERIC);
    PutTime(properties, PR_CREATION_TIME, row.Integer(3));
    PutTime(properties, PR_LAST_MODIFICATION_TIME, row.Integer(4));
    PutBinary(properties, PR_STORE_ENTRYID, session.StoreEntryId());
    PutBinary(properties, PR_STORE_RECORD_KEY, session.StoreUid());
    PutLong(properties, PR_OBJECT_TYPE, MAPI_FOLDER);
    PutLong(properties, PR_ACCESS_LEVEL, writable ? MAPI_MODIFY : 0);

    if (selection.Has(PROP_ID(PR_CONTENT_COUNT)))
        PutLong(properties,
                PR_CONTENT_COUNT,
                Count(database,
                      "SELECT count(*) FROM message WHERE folder = ?1 AND associated = 0",
                      folder));
    if (selection.Has(PROP_ID(PR_ASSOC_CONTENT_COUNT)))
        PutLong(properties,
                PR_ASSOC_CONTENT_COUNT,
                Count(database,
                      "SELECT count(*) FROM message WHERE folder = ?1 AND associated = 1",
                      folder));
    if (selection.Has(PROP_ID(PR_SUBFOLDERS)))
        PutBoolean(
            properties,
            PR_SUBFOLDERS,
            Count(database, "SELECT EXISTS (SELECT 1 FROM folder WHERE parent = ?1)", folder) != 0);
    return properties;
}

void PutMessageProperties(const StoreSession& session,
                          const MessageRow& message,
                          const Bytes& folderEntryId,
                          bool writable,
                          PropertyMap& properties)
{
    PutRowProperties(message, properties);
    PutBinary(properties, PR_PARENT_ENTRYID, folderEntryId);
    PutBinary(properties, PR_STORE_ENTRYID, session.StoreEntryId());
    PutBinary(properties, PR_STORE_RECORD_KEY, session.StoreUid());
    PutLong(properties, PR_OBJECT_TYPE, MAPI_MESSAGE);
    PutLong(properties, PR_ACCESS_LEVEL, writable ? MAPI_MODIFY : 0);
}
