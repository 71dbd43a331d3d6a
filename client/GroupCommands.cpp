#include "client/GroupCommands.h"

#include "client/ItemFinder.h"
#include "client/ItemList.h"
#include "client/TextArray.h"
#include "client/core/ContactGroup.h"
#include "client/core/JsonValues.h"

namespace pim
{
namespace
{
using Groups = ItemCollection<GroupKind>;
using Contacts = ItemCollection<ContactKind>;
using Finder = ItemFinder<GroupKind>;

constexpr long kContacts = 0;
constexpr long kSubgroups = 1;

std::vector<GroupMember> ReadMembers(INContactGroup* group, long kind)
{
    UniqueSafeArray array;
    CheckServerIsThere(group->get_Items(kind, array.Put()));
    std::vector<GroupMember> members;
    for (const std::wstring& id : TextsOf(array.Get()))
        members.push_back({id, std::nullopt});
    return members;
}

std::wstring ReadName(INEntityItem* item)
{
    return GetText(TypedItem<INContactGroup>(item).Get(), &INContactGroup::get_Name).value_or(L"");
}

ContactGroup ReadGroup(INEntityItem* item)
{
    const auto source = TypedItem<INContactGroup>(item);
    ContactGroup group;
    group.id = GetText(item, &INEntityItem::get_EntityID);
    group.name = GetText(source.Get(), &INContactGroup::get_Name);
    group.groupId = GetText(source.Get(), &INContactGroup::get_GroupID);
    group.folderId = GetText(item, &INEntityItem::get_FolderID);
    group.modifiedUtc = GetValue(item, &INEntityItem::get_LastModificationTime);
    group.members = ReadMembers(source.Get(), kContacts);
    group.subgroups = ReadMembers(source.Get(), kSubgroups);
    UniqueSafeArray categories;
    CheckServerIsThere(source->get_CategoryIDs(categories.Put()));
    group.categories = TextsOf(categories.Get());
    return group;
}

// Gives the members the names that the store has for their IDs.
void NameMembers(const Context& context,
                 const Server& server,
                 const Groups& groups,
                 ContactGroup& group)
{
    for (GroupMember& subgroup : group.subgroups)
    {
        if (const auto item = groups.Find(subgroup.id))
            subgroup.name = ReadName(item.Get());
    }
    if (group.members.empty())
        return;
    const Contacts contacts(server, context.command.provider);
    for (GroupMember& member : group.members)
    {
        if (const auto item = contacts.Find(member.id))
            member.name = GetText(item.Get(), &INContactItem::get_DisplayName);
    }
}

void PutName(INEntityItem* item, const std::wstring& name)
{
    CheckPut(TypedItem<INContactGroup>(item)->put_Name(Bstr(name).Get()), L"name");
}

// Looks for the group in the list: stores open by its ID also what they do not list as a group.
WriteResult CheckName(Groups& groups, const std::wstring& id, const std::wstring& wanted)
{
    groups.Reload();
    std::optional<std::wstring> kept;
    groups.Walk([&](INEntityItem* item) {
        if (ReadItemId(item) == id)
            kept = ReadName(item);
    });
    WriteResult result{id, {}};
    if (!kept)
        result.notKept.emplace_back(L"group");
    else if (*kept != wanted)
        result.notKept.emplace_back(L"name");
    return result;
}
} // namespace

int ListGroups(const Context& context)
{
    return ListItems<GroupKind, ContactGroup>(
        context,
        {ReadGroup,
         [](const auto& left, const auto& right) { return ComesBefore(left, right); },
         GroupJson,
         [&](const auto& groups) { return GroupTable(groups, context.Room()); }});
}

int ShowGroup(const Context& context)
{
    const Server server;
    const Groups groups(server, context.command.provider);
    const auto found = Finder(groups, context.errors, ReadName).Find(context.command.ids.front());
    ContactGroup group = ReadGroup(found.item.Get());
    NameMembers(context, server, groups, group);
    context.Print(context.command.asJson ? JsonText(GroupJson(group))
                                         : GroupDetails(group, context.zone));
    return kExitOk;
}

int AddGroup(const Context& context)
{
    const Server server;
    Groups groups(server, context.command.provider);
    const auto item = groups.NewItem();
    PutName(item.Get(), context.command.name);
    const std::wstring id = groups.Add(item.Get());
    return PrintWritten(context, L"Added", CheckName(groups, id, context.command.name));
}

int RenameGroup(const Context& context)
{
    const Server server;
    Groups groups(server, context.command.provider);
    const auto found = Finder(groups, context.errors, ReadName).Find(context.command.ids.front());
    PutName(found.item.Get(), context.command.name);
    groups.Update(found.item.Get());
    return PrintWritten(context, L"Renamed", CheckName(groups, found.id, context.command.name));
}

int DeleteGroups(const Context& context)
{
    const Server server;
    const Groups groups(server, context.command.provider);
    Finder finder(groups, context.errors, ReadName);
    return DeleteItems<GroupKind>(
        context, finder, [&](const Finder::Found& found) { return groups.Delete(found.id); });
}
} // namespace pim
