#include "client/core/CommandLine.h"

#include "client/core/AppointmentArguments.h"
#include "client/core/Arguments.h"
#include "client/core/Unicode.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <iterator>
#include <sstream>

namespace pim
{
namespace
{
constexpr const char* kAbout =
    "Shows and changes the personal information of this PC through the PimStoreBridge server.";

constexpr const char* kFooter =
    "Examples:\n"
    "  pim calendar list\n"
    "  pim calendar add --subject Planning --start \"2024-05-01 10:00\" --reminder 15\n"
    "  pim calendar update 0B7F --place \"Room 5\"\n"
    "  pim contacts add --first-name Oda --last-name Bakken --phone \"mobile=+47 555 01 234\"\n"
    "  pim contacts update 0A3C --picture oda.jpg\n"
    "  pim --json calendar list\n"
    "\n"
    "Times are local; a Z at the end makes a time UTC. An ID can be cut short as long as\n"
    "it means one item, and its opening brace can be left out.\n"
    "\n"
    "Exit codes:\n"
    "  0  done\n"
    "  1  the operation failed\n"
    "  2  the command line is wrong\n"
    "  3  the server cannot be reached or is not registered\n"
    "  4  no such item, or several items of which one was wanted\n"
    "  5  stored, but the store kept some old values; they are named\n";

// The texts of the options as typed, before they mean anything.
struct TypedOptions
{
    std::string provider;
    std::vector<std::string> ids;
    std::string name;
    std::string pictureDirectory;
    std::optional<int> color;
    AppointmentArguments appointment;
    ContactArguments contact;
    bool asJson = false;
    bool isWide = false;
    bool forUser = false;
};

// A command of the tree and what it means.
struct Choice
{
    CLI::App* app;
    CommandKind kind;
    ItemKind items = ItemKind::Appointment;
};

// How the help calls the items of one kind.
struct ItemWords
{
    ItemKind items;
    const char* command;
    const char* about;
    const char* one;
    const char* listed;
    const char* afterWriting = ""; // what else help says of commands that write
};
constexpr ItemWords kItemWords[] = {
    {ItemKind::Appointment,
     "calendar",
     "Show and change appointments",
     "an appointment",
     "List all appointments by their start"},
    {ItemKind::Contact,
     "contacts",
     "Show and change contacts",
     "a contact",
     "List all contacts by their names"},
    {ItemKind::Group,
     "groups",
     "Show and change groups of contacts",
     "a group",
     "List all groups by their names",
     "; the server does not list it as a group any longer"},
    {ItemKind::Category,
     "categories",
     "Show and change categories",
     "a category",
     "List all categories by their names"},
};

std::vector<std::wstring> WideList(const std::vector<std::string>& texts)
{
    std::vector<std::wstring> wide;
    std::transform(texts.begin(), texts.end(), std::back_inserter(wide), WideFromUtf8);
    return wide;
}

CommandLineResult Refuse(const std::string& text)
{
    CommandLineResult result;
    result.exitCode = kExitUsage;
    result.error = WideFromUtf8(text) + L"\nRun pim --help, or --help behind a command.\n";
    return result;
}

bool IsNamedOnly(ItemKind items)
{
    return items == ItemKind::Group || items == ItemKind::Category;
}

void AddItemOptions(CLI::App& command, ItemKind items, TypedOptions& typed)
{
    if (items == ItemKind::Contact)
        typed.contact.AddTo(command);
    else
        typed.appointment.AddTo(command);
}

void AddPictureDirectory(CLI::App& command, ItemKind items, TypedOptions& typed)
{
    if (items == ItemKind::Contact)
        command
            .add_option("--picture-dir",
                        typed.pictureDirectory,
                        "Save the pictures in this folder, which is made where it is missing")
            ->type_name("FOLDER");
}

void AddId(CLI::App& command, ItemKind items, TypedOptions& typed)
{
    command
        .add_option("ID",
                    typed.ids,
                    IsNamedOnly(items) ? "The item's ID, its beginning, or the name"
                                       : "The item's ID, or its beginning")
        ->required()
        ->expected(1)
        ->allow_extra_args(false);
}

void AddName(CLI::App& command, ItemKind items, TypedOptions& typed)
{
    command.add_option("NAME", typed.name, "The name")->required();
    if (items == ItemKind::Category)
        command.add_option("--color", typed.color, "The number of the color")->type_name("N");
}

// The commands that there are for each kind of item.
void AddItemCommands(CLI::App& app,
                     const ItemWords& words,
                     TypedOptions& typed,
                     std::vector<Choice>& choices)
{
    CLI::App* const parent = app.add_subcommand(words.command, words.about);
    parent->require_subcommand(1);
    const auto add = [&](const char* name, const std::string& about, CommandKind kind) {
        choices.push_back({parent->add_subcommand(name, about), kind, words.items});
        return choices.back().app;
    };
    const std::string one = words.one;

    CLI::App* const list = add("list", words.listed, CommandKind::List);
    list->add_flag("--wide", typed.isWide, "Cut no texts and no IDs");
    AddPictureDirectory(*list, words.items, typed);
    CLI::App* const show = add("show", "Show " + one, CommandKind::Show);
    AddId(*show, words.items, typed);
    AddPictureDirectory(*show, words.items, typed);
    CLI::App* const make =
        add("add", "Add " + one + "; its new ID is printed" + words.afterWriting, CommandKind::Add);
    if (IsNamedOnly(words.items))
    {
        AddName(*make, words.items, typed);
        CLI::App* const rename = add(
            "rename", "Give " + one + " another name" + words.afterWriting, CommandKind::Rename);
        AddId(*rename, words.items, typed);
        rename->add_option("NAME", typed.name, "The new name")->required();
    }
    else
    {
        AddItemOptions(*make, words.items, typed);
        CLI::App* const update =
            add("update", "Change what is given of " + one, CommandKind::Update);
        AddId(*update, words.items, typed);
        AddItemOptions(*update, words.items, typed);
    }
    add("delete", "Delete what has these IDs", CommandKind::Delete)
        ->add_option("ID",
                     typed.ids,
                     IsNamedOnly(words.items) ? "The items' IDs, their beginnings, or the names"
                                              : "The items' IDs, or their beginnings")
        ->required();
}

// Reads what belongs to the kind of item. Throws: UsageProblem.
void ReadItemOptions(const Choice& choice, const TypedOptions& typed, Command& command)
{
    if (choice.app->get_option_no_throw("NAME"))
        command.name = ReadLine(typed.name, "NAME");
    if (choice.app->get_option_no_throw("NAME") && command.name.empty())
        throw UsageProblem{"The name cannot be empty."};
    command.color = typed.color;
    if (!typed.pictureDirectory.empty())
        command.pictureDirectory = WideFromUtf8(typed.pictureDirectory);
    if (choice.kind != CommandKind::Add && choice.kind != CommandKind::Update)
        return;
    if (choice.items == ItemKind::Appointment)
    {
        command.item = typed.appointment.Read(*choice.app);
        if (choice.kind == CommandKind::Update && command.item.IsEmpty())
            throw UsageProblem{"Nothing to change was given."};
    }
    if (choice.items == ItemKind::Contact)
        command.contact = typed.contact.Read(*choice.app);
}
} // namespace

CommandLineResult ParseCommandLine(std::vector<std::string> arguments, const std::string& version)
{
    TypedOptions typed;
    CLI::App app(kAbout, "pim");
    app.footer(kFooter);
    app.set_version_flag("--version", "pim " + version, "Print the version and end");
    app.allow_windows_style_options(false);
    app.fallthrough();
    app.require_subcommand(1);
    app.add_option("--provider",
                   typed.provider,
                   "The mail client whose store to use; the default one where not given")
        ->type_name("NAME");
    app.add_flag("--json", typed.asJson, "Print JSON, for programs");

    std::vector<Choice> choices;
    const auto add = [&](const char* name, const char* about, CommandKind kind) {
        choices.push_back({app.add_subcommand(name, about), kind});
        return choices.back().app;
    };
    add("providers", "List the usable mail clients", CommandKind::Providers);
    add("whoami", "Tell who the mail user is", CommandKind::WhoAmI);
    add("folders", "List the contact folders", CommandKind::Folders);
    for (const ItemWords& words : kItemWords)
        AddItemCommands(app, words, typed, choices);
    add("doctor", "Tell why the server or a mail client does not work", CommandKind::Doctor);
    CLI::App* const enroll =
        add("register", "Register the server that lies beside this program", CommandKind::Register);
    CLI::App* const withdraw =
        add("unregister", "Take that registration back", CommandKind::Unregister);
    for (CLI::App* change : {enroll, withdraw})
        change->add_flag("--user", typed.forUser, "For this user alone; needs no administrator");

    CommandLineResult result;
    try
    {
        std::reverse(arguments.begin(), arguments.end());
        app.parse(arguments);
    }
    catch (const CLI::Success& success)
    {
        std::ostringstream output;
        app.exit(success, output, output);
        result.output = WideFromUtf8(output.str());
        return result;
    }
    catch (const CLI::Error& error)
    {
        return Refuse(error.what());
    }

    const auto choice = std::find_if(
        choices.begin(), choices.end(), [](const Choice& one) { return one.app->parsed(); });
    Command command;
    command.kind = choice->kind;
    command.items = choice->items;
    command.asJson = typed.asJson;
    command.isWide = typed.isWide;
    command.forUser = typed.forUser;
    command.ids = WideList(typed.ids);
    if (app.count("--provider") > 0)
        command.provider = WideFromUtf8(typed.provider);
    try
    {
        ReadItemOptions(*choice, typed, command);
    }
    catch (const UsageProblem& problem)
    {
        return Refuse(problem.text);
    }
    result.command = std::move(command);
    return result;
}
} // namespace pim
