#include "client/Commands.h"

#include "client/AppointmentAccess.h"
#include "client/Failure.h"
#include "client/Server.h"
#include "client/ServerRegistration.h"
#include "client/SystemZone.h"
#include "client/UserSession.h"
#include "client/core/AppointmentJson.h"
#include "client/core/AppointmentText.h"
#include "client/core/ItemIds.h"
#include "client/core/TextTable.h"
#include "client/core/Unicode.h"

#include <nlohmann/json.hpp>

#include <algorithm>

namespace pim
{
namespace
{
using Json = nlohmann::ordered_json;
using Microsoft::WRL::ComPtr;

// What every command works with.
struct Context
{
    const Command& command;
    const OutputStream& output;
    const OutputStream& errors;
    SystemZone zone;

    void Print(const std::wstring& text) const
    {
        if (!output.Write(text))
            throw Failure{kExitFailed, L"The output could not be written."};
    }
};

Json TextJson(const std::wstring& text)
{
    return Utf8FromWide(text);
}

Json TextsJson(const std::vector<std::wstring>& texts)
{
    Json list = Json::array();
    for (const std::wstring& text : texts)
        list.push_back(TextJson(text));
    return list;
}

int RunProviders(const Context& context)
{
    const Server server;
    const std::vector<std::wstring> names = server.Providers();
    const std::wstring preferred = server.DefaultProvider();
    const auto isDefault = [&](const std::wstring& name) {
        return StrCmpIW(name.c_str(), preferred.c_str()) == 0;
    };
    if (context.command.asJson)
    {
        Json json;
        json["default"] = preferred.empty() ? Json() : TextJson(preferred);
        json["providers"] = Json::array();
        for (const std::wstring& name : names)
            json["providers"].push_back({{"name", TextJson(name)},
                                         {"default", isDefault(name)},
                                         {"supported", IsKnownProvider(name)}});
        context.Print(JsonText(json));
        return kExitOk;
    }
    TextTable table({{L""}, {L""}});
    for (const std::wstring& name : names)
    {
        std::wstring notes = isDefault(name) ? L"default" : L"";
        if (!IsKnownProvider(name))
            notes += notes.empty() ? L"not supported" : L", not supported";
        table.AddRow({name, notes});
    }
    std::wstring text = names.empty() ? L"No mail client is installed.\n" : table.Format();
    if (!preferred.empty() && std::none_of(names.begin(), names.end(), isDefault))
        text += L"The default, " + OneLine(preferred) + L", is not installed.\n";
    context.Print(text);
    return kExitOk;
}

int RunWhoAmI(const Context& context)
{
    const Server server;
    const UserSession session(server, context.command.provider);
    const Identity user = session.User();
    context.Print(context.command.asJson ? JsonText(IdentityJson(user)) : IdentityTable(user));
    return kExitOk;
}

int RunFolders(const Context& context)
{
    const Server server;
    const UserSession session(server, context.command.provider);
    const std::vector<ContactFolder> folders = session.ContactFolders();
    context.Print(context.command.asJson ? JsonText(FoldersJson(folders)) : FolderTable(folders));
    return kExitOk;
}

int RunList(const Context& context)
{
    const Server server;
    const CalendarSession session(server, context.command.provider);
    const auto fields = context.command.asJson ? ReadFields::All : ReadFields::ForTable;
    std::vector<Appointment> items;
    {
        Progress progress(context.errors, L"Reading appointments");
        session.Walk([&](INAppointment* item) {
            items.push_back(ReadAppointment(item, fields));
            progress.Step();
        });
    }
    std::stable_sort(items.begin(), items.end(), [&](const auto& left, const auto& right) {
        return ComesBefore(left, right, context.zone);
    });
    if (context.command.asJson)
    {
        Json json;
        json["provider"] = session.ProviderName() ? TextJson(*session.ProviderName()) : Json();
        json["appointments"] = Json::array();
        for (const Appointment& item : items)
            json["appointments"].push_back(AppointmentJson(item, context.zone));
        context.Print(JsonText(json));
    }
    else
    {
        const std::wstring where =
            session.ProviderName() ? L" in " + OneLine(*session.ProviderName()) : L"";
        context.Print(items.empty()
                          ? L"No appointments" + where + L".\n"
                          : AppointmentTable(items,
                                             context.zone,
                                             {context.command.isWide, context.output.Columns()}));
    }
    return kExitOk;
}

// Finds items by what was typed; reads the IDs of the store at most once.
class ItemFinder
{
  public:
    ItemFinder(const CalendarSession& session, const OutputStream& errors)
        : m_session(session), m_errors(errors)
    {
    }

    // The item and its ID. Throws: Failure, where no item, or not one alone, is meant.
    struct Found
    {
        std::wstring id;
        ComPtr<INAppointment> item;
    };
    Found Find(const std::wstring& typed)
    {
        if (auto item = m_session.Find(typed))
            return {typed, std::move(item)};
        const std::vector<std::wstring> matches = MatchItemIds(Ids(), typed);
        if (matches.size() > 1)
        {
            std::wstring text = L"\"" + OneLine(typed) + L"\" is the beginning of several IDs:";
            for (const std::wstring& match : matches)
                text += L"\n  " + OneLine(match);
            throw Failure{kExitNotFound, text};
        }
        auto item = matches.empty() ? nullptr : m_session.Find(matches.front());
        if (!item)
            throw Failure{kExitNotFound,
                          L"There is no appointment with the ID \"" + OneLine(typed) +
                              L"\". pim calendar list shows the IDs."};
        return {matches.front(), std::move(item)};
    }

  private:
    const std::vector<std::wstring>& Ids()
    {
        if (!m_ids)
        {
            std::vector<std::wstring> ids;
            Progress progress(m_errors, L"Looking through appointments");
            m_session.Walk([&](INAppointment* item) {
                ids.push_back(ReadItemId(item));
                progress.Step();
            });
            m_ids = std::move(ids);
        }
        return *m_ids;
    }

    const CalendarSession& m_session;
    const OutputStream& m_errors;
    std::optional<std::vector<std::wstring>> m_ids;
};

int RunShow(const Context& context)
{
    const Server server;
    const CalendarSession session(server, context.command.provider);
    const auto found = ItemFinder(session, context.errors).Find(context.command.ids.front());
    const Appointment item = ReadAppointment(found.item.Get(), ReadFields::All);
    context.Print(context.command.asJson ? JsonText(AppointmentJson(item, context.zone))
                                         : AppointmentDetails(item, context.zone));
    return kExitOk;
}

// Prints what was done to the item, and what of it the store did not keep.
int PrintStored(const Context& context,
                const CalendarSession& session,
                const wchar_t* verb,
                const std::wstring& id,
                const Appointment& before,
                const Appointment& wanted)
{
    session.Reload();
    const auto item = session.Find(id);
    const Appointment kept =
        item ? ReadAppointment(item.Get(), ReadFields::All) : Appointment(before);
    const std::vector<std::wstring> notKept = FieldsNotKept(before, wanted, kept);
    if (context.command.asJson)
        context.Print(JsonText({{"id", TextJson(id)}, {"notKept", TextsJson(notKept)}}));
    else
        context.Print(std::wstring(verb) + L" " + OneLine(id) + L"\n");
    if (notKept.empty())
        return kExitOk;
    std::wstring names;
    for (const std::wstring& name : notKept)
        names += (names.empty() ? L"" : L", ") + name;
    context.errors.Write(L"pim: The store kept another value than the one asked for: " + names +
                         L".\n");
    return kExitNotKept;
}

void CheckOptions(const std::wstring& problem)
{
    if (!problem.empty())
        throw Failure{kExitUsage, problem};
}

int RunAdd(const Context& context)
{
    Appointment wanted;
    CheckOptions(MakeItem(context.command.item, context.zone, wanted));
    const Server server;
    const CalendarSession session(server, context.command.provider);
    const auto item = session.NewItem();
    PutChanges(item.Get(), Appointment(), wanted);
    const std::wstring id = session.Add(item.Get());
    return PrintStored(context, session, L"Added", id, Appointment(), wanted);
}

int RunUpdate(const Context& context)
{
    const Server server;
    const CalendarSession session(server, context.command.provider);
    const auto found = ItemFinder(session, context.errors).Find(context.command.ids.front());
    const Appointment before = ReadAppointment(found.item.Get(), ReadFields::All);
    Appointment wanted = before;
    CheckOptions(ChangeItem(context.command.item, context.zone, wanted));
    Appointment toPut = wanted;
    // A calendar file gives 0 for an item without an alarm, and taking that 0 back would add one;
    // no reminder, which takes no alarm away there, leaves the item as it is.
    if (session.IsFileStore() && !context.command.item.reminderMinutes &&
        before.reminderMinutes == 0u)
        toPut.reminderMinutes = kNoReminder;
    PutChanges(found.item.Get(), before, toPut);
    session.Update(found.item.Get());
    return PrintStored(context, session, L"Updated", found.id, before, wanted);
}

int RunDelete(const Context& context)
{
    const Server server;
    const CalendarSession session(server, context.command.provider);
    ItemFinder finder(session, context.errors);
    std::vector<std::wstring> deleted;
    std::vector<std::wstring> notDeleted;
    int exitCode = kExitOk;
    for (const std::wstring& typed : context.command.ids)
    {
        try
        {
            const std::wstring id = finder.Find(typed).id;
            if (!session.Delete(id))
                throw Failure{kExitNotFound,
                              L"The store has no longer an appointment with the ID \"" +
                                  OneLine(id) + L"\"."};
            deleted.push_back(id);
            if (!context.command.asJson)
                context.Print(L"Deleted " + OneLine(id) + L"\n");
        }
        catch (const Failure& failure)
        {
            // One ID that means nothing does not keep the others.
            if (failure.exitCode != kExitNotFound)
                throw;
            context.errors.Write(L"pim: " + failure.text + L"\n");
            notDeleted.push_back(typed);
            exitCode = failure.exitCode;
        }
    }
    if (context.command.asJson)
        context.Print(
            JsonText({{"deleted", TextsJson(deleted)}, {"notFound", TextsJson(notDeleted)}}));
    return exitCode;
}

int RunRegister(const Context& context)
{
    ChangeRegistration(RegistrationChange::Register, context.command.forUser);
    context.Print(context.command.forUser ? L"The server is registered for this user.\n"
                                          : L"The server is registered.\n");
    return kExitOk;
}

int RunUnregister(const Context& context)
{
    ChangeRegistration(RegistrationChange::Unregister, context.command.forUser);
    context.Print(context.command.forUser ? L"The server is no longer registered for this user.\n"
                                          : L"The server is no longer registered.\n");
    return kExitOk;
}
} // namespace

int RunCommand(const Command& command, const OutputStream& output, const OutputStream& errors)
{
    struct Entry
    {
        CommandKind kind;
        int (*run)(const Context&);
    };
    constexpr Entry kEntries[] = {
        {CommandKind::Providers, RunProviders},
        {CommandKind::WhoAmI, RunWhoAmI},
        {CommandKind::Folders, RunFolders},
        {CommandKind::List, RunList},
        {CommandKind::Show, RunShow},
        {CommandKind::Add, RunAdd},
        {CommandKind::Update, RunUpdate},
        {CommandKind::Delete, RunDelete},
        {CommandKind::Register, RunRegister},
        {CommandKind::Unregister, RunUnregister},
    };
    const Context context{command, output, errors, {}};
    const auto* const entry =
        std::find_if(std::begin(kEntries), std::end(kEntries), [&](const Entry& one) {
            return one.kind == command.kind;
        });
    return entry->run(context);
}
} // namespace pim
