#include "client/CommandContext.h"

#include "client/core/CommaList.h"
#include "client/core/JsonValues.h"
#include "client/core/Unicode.h"

namespace pim
{
void Context::Print(const std::wstring& text) const
{
    if (!output.Write(text))
        throw Failure{kExitFailed, L"The output could not be written."};
}

void Context::Warn(const std::wstring& sentence) const
{
    errors.Write(L"pim: " + sentence + L"\n");
}

void CheckOptions(const std::wstring& problem)
{
    if (!problem.empty())
        throw Failure{kExitUsage, problem};
}

void PrintListJson(const Context& context,
                   const ProviderSession& session,
                   const ItemWords& words,
                   Json items)
{
    Json json;
    json["provider"] = TextOrNull(session.Name());
    json[Utf8FromWide(words.many)] = std::move(items);
    context.Print(JsonText(json));
}

void PrintNone(const Context& context, const ProviderSession& session, const ItemWords& words)
{
    const std::wstring where = session.Name() ? L" in " + OneLine(*session.Name()) : L"";
    context.Print(std::wstring(L"No ") + words.many + where + L".\n");
}

void WarnOfLeftOut(const Context& context, const ItemWords& words, unsigned count)
{
    if (count > 0)
        context.Warn(std::to_wstring(count) + L' ' + (count == 1 ? words.one : words.many) +
                     L" could not be opened.");
}

Json WriteResultJson(const WriteResult& result)
{
    return {{"id", TextJson(result.id)}, {"notKept", TextsJson(result.notKept)}};
}

int WarnOfNotKept(const Context& context, const WriteResult& result)
{
    if (result.notKept.empty())
        return kExitOk;
    context.Warn(L"The store kept another value than the one asked for: " +
                 CommaList(result.notKept) + L".");
    return kExitNotKept;
}

int PrintWritten(const Context& context, const wchar_t* verb, const WriteResult& result)
{
    context.Print(context.command.asJson ? JsonText(WriteResultJson(result))
                                         : std::wstring(verb) + L" " + OneLine(result.id) + L"\n");
    return WarnOfNotKept(context, result);
}

int PrintDeleted(const Context& context,
                 const std::vector<std::wstring>& deleted,
                 const std::vector<std::wstring>& notFound)
{
    if (context.command.asJson)
        context.Print(
            JsonText({{"deleted", TextsJson(deleted)}, {"notFound", TextsJson(notFound)}}));
    return notFound.empty() ? kExitOk : kExitNotFound;
}
} // namespace pim
