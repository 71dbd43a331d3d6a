// The list commands of all kinds of items.
#pragma once

#include "client/CommandContext.h"
#include "client/core/Progress.h"

#include <algorithm>
#include <functional>

namespace pim
{
// How values of one kind are read, put in order and shown.
template <typename Kind, typename Value> struct ListForm
{
    std::function<Value(typename Kind::Item*)> read;
    std::function<bool(const Value&, const Value&)> isBefore;
    std::function<nlohmann::ordered_json(const Value&)> json;
    std::function<std::wstring(const std::vector<Value>&)> table;
};

// Reads all items of the provider's store, with a count on terminals, and prints them in order.
// Returns: the exit code.
template <typename Kind, typename Value>
int ListItems(const Context& context, const ListForm<Kind, Value>& form)
{
    const Server server;
    const ItemCollection<Kind> items(server, context.command.provider);
    std::vector<Value> values;
    unsigned leftOut = 0;
    {
        const std::wstring what = std::wstring(L"Reading ") + Kind::kWords.many;
        Progress progress(context.errors, what.c_str());
        leftOut = items.Walk([&](typename Kind::Item* item) {
            values.push_back(form.read(item));
            progress.Step();
        });
    }
    std::stable_sort(values.begin(), values.end(), form.isBefore);
    if (context.command.asJson)
    {
        nlohmann::ordered_json list = nlohmann::ordered_json::array();
        for (const Value& value : values)
            list.push_back(form.json(value));
        PrintListJson(context, items.Session(), Kind::kWords, std::move(list));
    }
    else if (values.empty())
        PrintNone(context, items.Session(), Kind::kWords);
    else
        context.Print(form.table(values));
    WarnOfLeftOut(context, Kind::kWords, leftOut);
    return kExitOk;
}
} // namespace pim
