#include "client/CategoryCommands.h"

#include "client/ItemFinder.h"
#include "client/ItemList.h"
#include "client/TextArray.h"
#include "client/core/Category.h"
#include "client/core/JsonValues.h"

namespace pim
{
namespace
{
using Categories = ItemCollection<CategoryKind>;
using Finder = ItemFinder<CategoryKind>;
using Microsoft::WRL::ComPtr;

std::wstring ReadName(INEntityItem* item)
{
    return GetText(TypedItem<INContactCategory>(item).Get(), &INContactCategory::get_Name)
        .value_or(L"");
}

Category ReadCategory(INEntityItem* item)
{
    const auto source = TypedItem<INContactCategory>(item);
    Category category;
    category.id = GetText(item, &INEntityItem::get_EntityID);
    category.name = GetText(source.Get(), &INContactCategory::get_Name);
    if (const auto color = GetValue(source.Get(), &INContactCategory::get_Color))
        category.color = static_cast<std::int32_t>(*color);
    category.lastUsedUtc = GetValue(item, &INEntityItem::get_LastModificationTime);
    UniqueSafeArray items;
    CheckServerIsThere(source->get_Items(items.Put()));
    category.items = TextsOf(items.Get());
    return category;
}

// The item of that ID after a reload. Stores that keep names alone give new IDs with each reload,
// so that the name is looked for too.
ComPtr<INEntityItem> FindAgain(Categories& categories,
                               const std::wstring& id,
                               const std::wstring& name)
{
    categories.Reload();
    ComPtr<INEntityItem> found = categories.Find(id);
    if (!found)
        categories.Walk([&](INEntityItem* item) {
            if (!found && ReadName(item) == name)
                found = item;
        });
    return found;
}

WriteResult CheckStored(Categories& categories,
                        const std::wstring& id,
                        const std::wstring& name,
                        const std::optional<int>& color)
{
    const auto item = FindAgain(categories, id, name);
    const Category kept = item ? ReadCategory(item.Get()) : Category();
    WriteResult result{kept.id.value_or(id), {}};
    if (kept.name != name)
        result.notKept.emplace_back(L"name");
    if (color && kept.color != *color)
        result.notKept.emplace_back(L"color");
    return result;
}
} // namespace

int ListCategories(const Context& context)
{
    return ListItems<CategoryKind, Category>(
        context,
        {ReadCategory,
         [](const auto& left, const auto& right) { return ComesBefore(left, right); },
         CategoryJson,
         [&](const auto& categories) { return CategoryTable(categories, context.Room()); }});
}

int ShowCategory(const Context& context)
{
    const Server server;
    const Categories categories(server, context.command.provider);
    const auto found =
        Finder(categories, context.errors, ReadName).Find(context.command.ids.front());
    const Category category = ReadCategory(found.item.Get());
    context.Print(context.command.asJson ? JsonText(CategoryJson(category))
                                         : CategoryDetails(category, context.zone));
    return kExitOk;
}

int AddCategory(const Context& context)
{
    const Command& command = context.command;
    const Server server;
    Categories categories(server, command.provider);
    const auto item = categories.NewItem();
    const auto category = TypedItem<INContactCategory>(item.Get());
    CheckPut(category->put_Name(Bstr(command.name).Get()), L"name");
    if (command.color)
        CheckPut(category->put_Color(*command.color), L"color");
    const std::wstring id = categories.Add(item.Get());
    return PrintWritten(
        context, L"Added", CheckStored(categories, id, command.name, command.color));
}

int RenameCategory(const Context& context)
{
    const std::wstring& name = context.command.name;
    const Server server;
    Categories categories(server, context.command.provider);
    const auto found =
        Finder(categories, context.errors, ReadName).Find(context.command.ids.front());
    CheckPut(TypedItem<INContactCategory>(found.item.Get())->put_Name(Bstr(name).Get()), L"name");
    categories.Update(found.item.Get());
    return PrintWritten(context, L"Renamed", CheckStored(categories, found.id, name, std::nullopt));
}

int DeleteCategories(const Context& context)
{
    const Server server;
    const Categories categories(server, context.command.provider);
    Finder finder(categories, context.errors, ReadName);
    return DeleteItems<CategoryKind>(context, finder, [&](const Finder::Found& found) {
        // Stores that keep names alone know their items by them.
        const std::wstring name = ReadName(found.item.Get());
        return categories.Delete(found.id) || categories.Delete(name);
    });
}
} // namespace pim
