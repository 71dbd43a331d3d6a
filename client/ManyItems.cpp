#include "client/ManyItems.h"

#include "client/core/JsonValues.h"
#include "client/core/Progress.h"
#include "client/core/Unicode.h"

#include <algorithm>

namespace pim
{
int AddItems(const Context& context,
             const wchar_t* what,
             const AdditionSteps& steps,
             CancelQuery isCancelled)
{
    std::vector<std::wstring> ids;
    std::vector<WriteResult> checked;
    std::optional<Failure> failure;
    const auto attempt = [&](const std::function<void()>& work) {
        try
        {
            work();
        }
        catch (const Failure& problem)
        {
            if (!failure)
                failure = problem;
        }
    };
    attempt([&] {
        Progress progress(context.errors, what);
        while (ids.size() < steps.count)
        {
            CheckNotCancelled(isCancelled);
            ids.push_back(steps.add(ids.size()));
            progress.Step();
        }
    });
    attempt([&] {
        steps.reload();
        while (checked.size() < ids.size())
        {
            CheckNotCancelled(isCancelled);
            checked.push_back(steps.check(checked.size(), ids[checked.size()]));
        }
    });

    Json list = Json::array();
    for (std::size_t i = 0; i < ids.size(); ++i)
    {
        if (!context.command.asJson)
            context.Print(L"Added " + OneLine(ids[i]) + L"\n");
        else if (i < checked.size())
            list.push_back(WriteResultJson(checked[i]));
        else
            list.push_back({{"id", TextJson(ids[i])}});
    }
    if (context.command.asJson)
        context.Print(JsonText({{"added", std::move(list)}}));
    int exitCode = kExitOk;
    for (const WriteResult& result : checked)
        exitCode = std::max(exitCode, WarnOfNotKept(context, result));
    if (failure)
        throw Failure(*failure);
    return exitCode;
}

int DeleteEach(const Context& context,
               const std::function<std::wstring(const std::wstring& typed)>& deleteItem,
               CancelQuery isCancelled)
{
    std::vector<std::wstring> deleted;
    std::vector<std::wstring> notFound;
    std::optional<Failure> failure;
    for (const std::wstring& typed : context.command.ids)
    {
        try
        {
            CheckNotCancelled(isCancelled);
            deleted.push_back(deleteItem(typed));
        }
        catch (const Failure& problem)
        {
            if (problem.exitCode != kExitNotFound)
            {
                failure = problem;
                break;
            }
            context.Warn(problem.text);
            notFound.push_back(typed);
            continue;
        }
        if (!context.command.asJson)
            context.Print(L"Deleted " + OneLine(deleted.back()) + L"\n");
    }
    const int exitCode = PrintDeleted(context, deleted, notFound);
    if (failure)
        throw Failure(*failure);
    return exitCode;
}
} // namespace pim
