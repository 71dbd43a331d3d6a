#include "client/core/ContactGroup.h"

#include "client/core/FieldLines.h"
#include "client/core/JsonValues.h"
#include "client/core/NameOrder.h"

namespace pim
{
namespace
{
constexpr ItemColumn kColumns[] = {{L"NAME", 40}, {L"MEMBERS", 0}, {L"SUBGROUPS", 0}, {L"ID", 0}};

Json MembersJson(const std::vector<GroupMember>& members)
{
    Json list = Json::array();
    for (const GroupMember& member : members)
        list.push_back({{"id", TextJson(member.id)}, {"name", TextOrNull(member.name)}});
    return list;
}

// The name, with the ID where there is none.
std::wstring MemberText(const GroupMember& member)
{
    return member.name.value_or(member.id);
}
} // namespace

bool ComesBefore(const ContactGroup& left, const ContactGroup& right)
{
    return IsBefore(left.name.value_or(L""), left.id, right.name.value_or(L""), right.id);
}

std::wstring GroupTable(std::span<const ContactGroup> groups, const TableRoom& room)
{
    std::vector<ItemRow> rows;
    for (const ContactGroup& group : groups)
        rows.push_back({group.name.value_or(L""),
                        std::to_wstring(group.members.size()),
                        std::to_wstring(group.subgroups.size()),
                        group.id.value_or(L"")});
    return FormatItemTable(kColumns, std::move(rows), room);
}

std::wstring GroupDetails(const ContactGroup& group, const ILocalZone& zone)
{
    FieldLines lines;
    lines.Add(L"Name", group.name);
    for (const GroupMember& member : group.members)
        lines.Add(L"Member", MemberText(member));
    for (const GroupMember& subgroup : group.subgroups)
        lines.Add(L"Subgroup", MemberText(subgroup));
    for (const std::wstring& category : group.categories)
        lines.Add(L"Category", category);
    lines.Add(L"Changed", LocalAndUtc(group.modifiedUtc, zone));
    lines.Add(L"Group ID", group.groupId);
    lines.Add(L"Folder", group.folderId);
    lines.Add(L"ID", group.id);
    return lines.Text();
}

Json GroupJson(const ContactGroup& group)
{
    Json json;
    json["id"] = TextOrNull(group.id);
    json["name"] = TextOrNull(group.name);
    json["groupId"] = TextOrNull(group.groupId);
    json["folderId"] = TextOrNull(group.folderId);
    json["modifiedUtc"] = UtcOrNull(group.modifiedUtc);
    json["members"] = MembersJson(group.members);
    json["subgroups"] = MembersJson(group.subgroups);
    json["categories"] = TextsJson(group.categories);
    return json;
}
} // namespace pim
