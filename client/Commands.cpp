#include "client/Commands.h"

#include "client/CalendarCommands.h"
#include "client/CategoryCommands.h"
#include "client/ContactCommands.h"
#include "client/DoctorCommand.h"
#include "client/GroupCommands.h"
#include "client/ServerRegistration.h"
#include "client/UserSession.h"
#include "client/core/JsonValues.h"
#include "client/core/TextTable.h"
#include "client/core/Unicode.h"

#include <algorithm>

namespace pim
{
namespace
{
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
        ItemKind items;
        int (*run)(const Context&);
    };
    // clang-format off
    constexpr Entry kEntries[] = {
        {CommandKind::Providers,  ItemKind::Appointment, RunProviders},
        {CommandKind::WhoAmI,     ItemKind::Appointment, RunWhoAmI},
        {CommandKind::Folders,    ItemKind::Appointment, RunFolders},
        {CommandKind::List,       ItemKind::Appointment, ListAppointments},
        {CommandKind::Show,       ItemKind::Appointment, ShowAppointment},
        {CommandKind::Add,        ItemKind::Appointment, AddAppointment},
        {CommandKind::Update,     ItemKind::Appointment, UpdateAppointment},
        {CommandKind::Delete,     ItemKind::Appointment, DeleteAppointments},
        {CommandKind::List,       ItemKind::Contact,     ListContacts},
        {CommandKind::Show,       ItemKind::Contact,     ShowContact},
        {CommandKind::Add,        ItemKind::Contact,     AddContacts},
        {CommandKind::Update,     ItemKind::Contact,     UpdateContact},
        {CommandKind::Delete,     ItemKind::Contact,     DeleteContacts},
        {CommandKind::List,       ItemKind::Group,       ListGroups},
        {CommandKind::Show,       ItemKind::Group,       ShowGroup},
        {CommandKind::Add,        ItemKind::Group,       AddGroup},
        {CommandKind::Rename,     ItemKind::Group,       RenameGroup},
        {CommandKind::Delete,     ItemKind::Group,       DeleteGroups},
        {CommandKind::List,       ItemKind::Category,    ListCategories},
        {CommandKind::Show,       ItemKind::Category,    ShowCategory},
        {CommandKind::Add,        ItemKind::Category,    AddCategory},
        {CommandKind::Rename,     ItemKind::Category,    RenameCategory},
        {CommandKind::Delete,     ItemKind::Category,    DeleteCategories},
        {CommandKind::Doctor,     ItemKind::Appointment, RunDoctor},
        {CommandKind::Register,   ItemKind::Appointment, RunRegister},
        {CommandKind::Unregister, ItemKind::Appointment, RunUnregister},
    };
    // clang-format on
    const Context context{command, output, errors, {}};
    const auto* const entry =
        std::find_if(std::begin(kEntries), std::end(kEntries), [&](const Entry& one) {
            return one.kind == command.kind && one.items == command.items;
        });
    return entry->run(context);
}
} // namespace pim
