#include "localstore/StoreProfile.h"

#include "localstore/UsualNames.h"

#include <algorithm>
#include <cstring>
#include <iterator>

namespace
{

// clang-format off
constexpr FolderRole kRoles[] = {
    {"inbox",       RoleHolder::Receive,      0},
    {"subtree",     RoleHolder::Store,        0x35E0},
    {"outbox",      RoleHolder::Store,        0x35E2},
    {"wastebasket", RoleHolder::Store,        0x35E3},
    {"sent",        RoleHolder::Store,        0x35E4},
    {"calendar",    RoleHolder::RootAndInbox, 0x36D0},
    {"contacts",    RoleHolder::RootAndInbox, 0x36D1},
    {"journal",     RoleHolder::RootAndInbox, 0x36D2},
    {"notes",       RoleHolder::RootAndInbox, 0x36D3},
    {"tasks",       RoleHolder::RootAndInbox, 0x36D4},
    {"drafts",      RoleHolder::RootAndInbox, 0x36D7},
};

struct DefaultFolder
{
    const char* role;
    const wchar_t* displayName;
    const wchar_t* containerClass;
};

constexpr DefaultFolder kFolders[] = {
    {"inbox",       L"Inbox",         L"IPF.Note"},
    {"wastebasket", L"Deleted Items", L""},
    {"calendar",    L"Calendar",      L"IPF.Appointment"},
    {"contacts",    L"Contacts",      L"IPF.Contact"},
};
// clang-format on

// The system's number for the form of a user's name that people read (NameDisplay).
constexpr int kNameDisplay = 3;

constexpr std::uint8_t kFolderObject = MAPI_FOLDER;
constexpr std::uint8_t kUserObject = MAPI_MAILUSER;

void WriteText(Database& database, PropertyOwner owner, ULONG tag, const std::wstring& text)
{
    if (!text.empty())
        WriteProperty(database,
                      owner,
                      static_cast<std::uint16_t>(PROP_ID(tag)),
                      PropertyValue{PT_UNICODE, text});
}

std::optional<std::int64_t> ReceiveFolder(Database& database)
{
    Statement row = database.Prepare("SELECT folder FROM receive_folder WHERE message_class = ''");
    if (!row.Step())
        return std::nullopt;
    return row.Integer(0);
}

std::wstring AccountName()
{
    wchar_t name[257] = {};
    DWORD size = static_cast<DWORD>(std::size(name));
    return GetUserNameW(name, &size) ? name : L"";
}

// The name that the system shows for the user. From a library bound at need: it is no part of what
// the store needs otherwise.
std::wstring ShownName()
{
    const HMODULE library = LoadLibraryW(L"secur32.dll");
    if (!library)
        return {};
    using GetName = BOOLEAN(WINAPI*)(int, LPWSTR, PULONG);
    const auto getName = reinterpret_cast<GetName>(
        reinterpret_cast<void*>(GetProcAddress(library, "GetUserNameExW")));
    wchar_t name[1025] = {};
    ULONG size = static_cast<ULONG>(std::size(name)) - 1;
    const bool found = getName && getName(kNameDisplay, name, &size);
    FreeLibrary(library);
    return found ? name : L"";
}

void AddIdentity(Database& database, const ProfileUser& user)
{
    database.Prepare("INSERT INTO identity (id, entry_id) VALUES (1, ?1)")
        .Bind(1, NewEntryId(kUserObject))
        .Run();
    const PropertyOwner identity{OwnerKind::Identity, 1};
    WriteText(database, identity, PR_ACCOUNT_W, user.account);
    WriteText(database, identity, PR_DISPLAY_NAME_W, user.displayName);
    WriteText(database, identity, PR_TRANSMITABLE_DISPLAY_NAME_W, user.displayName);
}

void AddFolders(Database& database)
{
    const std::int64_t root = AddFolder(database, std::nullopt, L"Root", L"");
    const std::int64_t subtree = AddFolder(database, root, L"Top of Personal Folders", L"");
    SetFolderRole(database, *FindFolderRole("subtree"), subtree);
    for (const DefaultFolder& row : kFolders)
    {
        const std::int64_t folder =
            AddFolder(database, subtree, row.displayName, row.containerClass);
        SetFolderRole(database, *FindFolderRole(row.role), folder);
    }
    const PropertyOwner store{OwnerKind::Store, 0};
    if (!ReadProperty(database, store, PROP_ID(PR_DISPLAY_NAME_W)))
        WriteText(database, store, PR_DISPLAY_NAME_W, L"Personal Folders");
}

} // namespace

std::span<const FolderRole> FolderRoles()
{
    return kRoles;
}

const FolderRole* FindFolderRole(std::string_view name)
{
    const auto* const found =
        std::find_if(std::begin(kRoles), std::end(kRoles), [&](const FolderRole& role) {
            return role.name == name;
        });
    return found == std::end(kRoles) ? nullptr : found;
}

std::vector<PropertyOwner> RoleHolders(Database& database, const FolderRole& role)
{
    std::vector<PropertyOwner> holders;
    if (role.holder == RoleHolder::Store)
        holders.push_back({OwnerKind::Store, 0});
    else if (role.holder == RoleHolder::RootAndInbox)
    {
        if (const auto inbox = ReceiveFolder(database))
            holders.push_back({OwnerKind::MessageFolder, *inbox});
        if (const auto root = RootFolder(database))
            holders.push_back({OwnerKind::MessageFolder, *root});
    }
    return holders;
}

std::optional<std::int64_t> FolderOfRole(Database& database, const FolderRole& role)
{
    if (role.holder == RoleHolder::Receive)
        return ReceiveFolder(database);
    for (const PropertyOwner& holder : RoleHolders(database, role))
    {
        const auto value = ReadProperty(database, holder, role.propertyId);
        const Bytes* entryId = value ? std::get_if<Bytes>(&value->data) : nullptr;
        if (!entryId || value->type != PT_BINARY)
            continue;
        if (const auto folder = FolderOfEntryId(database, *entryId))
            return folder;
    }
    return std::nullopt;
}

void SetFolderRole(Database& database, const FolderRole& role, std::int64_t folder)
{
    if (role.holder == RoleHolder::Receive)
    {
        database
            .Prepare("INSERT OR REPLACE INTO receive_folder (message_class, folder) "
                     "VALUES ('', ?1)")
            .Bind(1, folder)
            .Run();
        return;
    }
    const PropertyValue entryId{PT_BINARY, EntryIdOfFolder(database, folder).value()};
    for (const PropertyOwner& holder : RoleHolders(database, role))
        WriteProperty(database, holder, role.propertyId, entryId);
}

std::optional<std::int64_t> RootFolder(Database& database)
{
    Statement row = database.Prepare("SELECT id FROM folder WHERE parent IS NULL ORDER BY id");
    if (!row.Step())
        return std::nullopt;
    return row.Integer(0);
}

std::optional<std::int64_t> FolderOfEntryId(Database& database, std::span<const std::byte> entryId)
{
    Statement row = database.Prepare("SELECT id FROM folder WHERE entry_id = ?1");
    row.Bind(1, entryId);
    if (!row.Step())
        return std::nullopt;
    return row.Integer(0);
}

std::optional<Bytes> EntryIdOfFolder(Database& database, std::int64_t folder)
{
    Statement row = database.Prepare("SELECT entry_id FROM folder WHERE id = ?1");
    row.Bind(1, folder);
    if (!row.Step())
        return std::nullopt;
    const std::span<const std::byte> bytes = row.Blob(0);
    return Bytes(bytes.begin(), bytes.end());
}

std::optional<int> LevelOfFolder(Database& database, std::int64_t folder)
{
    // The limit ends it also where the parents of a damaged store go round in a circle.
    Statement row = database.Prepare(
        "WITH RECURSIVE up (parent) AS (SELECT parent FROM folder WHERE id = ?1 UNION ALL "
        "SELECT folder.parent FROM up JOIN folder ON folder.id = up.parent LIMIT ?2) "
        "SELECT count(*) FROM up");
    row.Bind(1, folder).Bind(2, kMostFolderLevels);
    const int level = row.Step() ? static_cast<int>(row.Integer(0)) : 0;
    return level > 0 ? std::optional(level) : std::nullopt;
}

std::int64_t AddFolder(Database& database,
                       std::optional<std::int64_t> parent,
                       const std::wstring& displayName,
                       const std::wstring& containerClass)
{
    Statement insert = database.Prepare("INSERT INTO folder (entry_id, parent, created, modified) "
                                        "VALUES (?1, ?2, ?3, ?3)");
    insert.Bind(1, NewEntryId(kFolderObject)).Bind(3, CurrentFileTime());
    if (parent)
        insert.Bind(2, *parent);
    else
        insert.BindNull(2);
    insert.Run();
    const std::int64_t folder = database.LastInsertId();
    WriteText(database, {OwnerKind::MessageFolder, folder}, PR_DISPLAY_NAME_W, displayName);
    WriteText(database, {OwnerKind::MessageFolder, folder}, PR_CONTAINER_CLASS_W, containerClass);
    return folder;
}

std::int64_t CurrentFileTime()
{
    FILETIME now{};
    GetSystemTimeAsFileTime(&now);
    return static_cast<std::int64_t>((std::uint64_t{now.dwHighDateTime} << 32) | now.dwLowDateTime);
}

ProfileUser LoggedOnUser()
{
    ProfileUser user{AccountName(), ShownName()};
    if (user.displayName.empty())
        user.displayName = user.account;
    return user;
}

bool LacksProfile(Database& database)
{
    return !RootFolder(database) || database.QueryInteger("SELECT count(*) FROM identity") == 0 ||
           LacksUsualNames(database);
}

bool EnsureDefaultProfile(Database& database, const ProfileUser& user)
{
    if (!LacksProfile(database))
        return false;
    Transaction transaction(database);
    // Another process may have been faster; inside the transaction the answer holds.
    if (!LacksProfile(database))
        return false;
    if (database.QueryInteger("SELECT count(*) FROM identity") == 0)
        AddIdentity(database, user);
    if (!RootFolder(database))
        AddFolders(database);
    if (LacksUsualNames(database))
        MakeUsualNames(database);
    transaction.Commit();
    return true;
}
