// One group of contacts as the client holds it, as text for people and as JSON. Portable.
//
// JSON: id, name, groupId, folderId (text or null), modifiedUtc ("2024-04-30T17:20:00Z" or null),
// members and subgroups: arrays of objects with id (text) and name (text, null where it is not
// known); categories: an array of text.
#pragma once

#include "client/core/CivilTime.h"
#include "client/core/ItemTable.h"

#include <nlohmann/json_fwd.hpp>

#include <optional>
#include <span>
#include <string>
#include <vector>

namespace pim
{
struct GroupMember
{
    std::wstring id;
    std::optional<std::wstring> name;
};

struct ContactGroup
{
    std::optional<std::wstring> id;
    std::optional<std::wstring> name;
    std::optional<std::wstring> groupId;
    std::optional<std::wstring> folderId;
    std::optional<DATE> modifiedUtc;
    std::vector<GroupMember> members;
    std::vector<GroupMember> subgroups;
    std::vector<std::wstring> categories;
};

// The order of a list: by name, see NameOrder.h.
bool ComesBefore(const ContactGroup& left, const ContactGroup& right);

// A table with one line per group, in the given order: name, number of members, number of groups
// in it, ID.
std::wstring GroupTable(std::span<const ContactGroup> groups, const TableRoom& room);

// All that is known of one group, one line per field and member.
std::wstring GroupDetails(const ContactGroup& group, const ILocalZone& zone);

// The same as docs/pim.md tells it.
nlohmann::ordered_json GroupJson(const ContactGroup& group);
} // namespace pim
