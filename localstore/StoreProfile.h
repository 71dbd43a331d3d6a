// The profile of the embedded store: the user's identity, the usual folders and the roles that
// folders play.
//
// Roles are no mark on a folder: as in every message store they are properties with the folder's
// entry ID, on the store, the root folder or the inbox. The inbox is the receive folder of all
// message classes (the class "").
#pragma once

#include "localstore/Database.h"
#include "localstore/StoredProperties.h"
#include "localstore/StoreSchema.h"
#include "platform/WindowsHeaders.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

enum class RoleHolder
{
    Store,        // a property of the store
    RootAndInbox, // a property of both folders
    Receive       // no property: the receive folder of the class ""
};

struct FolderRole
{
    const char* name; // as in the JSON form of a store
    RoleHolder holder;
    std::uint16_t propertyId; // of PT_BINARY; 0 for the receive folder
};

// Every role, in the order of the JSON form.
std::span<const FolderRole> FolderRoles();
// Null where there is no role of that name.
const FolderRole* FindFolderRole(std::string_view name);

// The objects whose property names the role's folder: of those that are there, in the order in
// which they are asked. None for the receive folder.
std::vector<PropertyOwner> RoleHolders(Database& database, const FolderRole& role);

// The folder that plays the role, by the first holder that names one which exists.
std::optional<std::int64_t> FolderOfRole(Database& database, const FolderRole& role);
// Gives the role to that folder, on every holder that is there.
void SetFolderRole(Database& database, const FolderRole& role, std::int64_t folder);

// None where there is no such folder.
std::optional<std::int64_t> RootFolder(Database& database);
std::optional<std::int64_t> FolderOfEntryId(Database& database, std::span<const std::byte> entryId);
std::optional<Bytes> EntryIdOfFolder(Database& database, std::int64_t folder);

// In so many levels folders stand at most, the root in the first: a dump of them can be read again,
// and the database follows them all when it deletes the uppermost.
inline constexpr int kMostFolderLevels = 100;
// None where there is no such folder; no more than kMostFolderLevels.
std::optional<int> LevelOfFolder(Database& database, std::int64_t folder);

// A new folder with its display name and container class; an empty class is none. Without a parent
// it is the root.
std::int64_t AddFolder(Database& database,
                       std::optional<std::int64_t> parent,
                       const std::wstring& displayName,
                       const std::wstring& containerClass);

// 100 ns since 1601-01-01 UTC.
std::int64_t CurrentFileTime();

struct ProfileUser
{
    std::wstring account;
    std::wstring displayName;
};

// The user who runs this process; the account's name stands in for a missing display name. It may
// take the system a while to find out.
ProfileUser LoggedOnUser();

// Whether a store lacks something that EnsureDefaultProfile makes.
bool LacksProfile(Database& database);

// Makes what a store needs for a logon, where it is missing: the identity; the usual names of
// properties; a root with the subtree "Top of Personal Folders" and in it Inbox, Deleted Items,
// Calendar and Contacts. A store that has a root keeps its folders as they are. In one transaction.
// Returns: whether anything was made.
bool EnsureDefaultProfile(Database& database, const ProfileUser& user);
