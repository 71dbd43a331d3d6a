// pimstore: installs and removes the embedded stores, tells how they stand, and moves contents.
#include "localstore/BookComponent.h"
#include "localstore/Database.h"
#include "localstore/Installer.h"
#include "localstore/StoreCommands.h"
#include "localstore/StoreComponent.h"
#include "localstore/StorePath.h"
#include "localstore/StoreProfile.h"
#include "localstore/StoreSchema.h"
#include "localstore/ToolConsole.h"
#include "service/TextConversions.h"

#include <CLI/CLI.hpp>

#include <cstdio>
#include <string>
#include <vector>

namespace
{

constexpr char kExitCodes[] = R"(Exit codes:
  0  done, or nothing to do
  1  a failure of the system or of the store
  2  wrong arguments
  3  another product holds a registry value that is needed; nothing was changed
  4  installed from another place, or changed since; nothing was changed
  5  the rights do not suffice; nothing was changed
  6  the file to load cannot be read or is wrong; nothing was changed)";

struct OutcomeRow
{
    InstallOutcome outcome;
    ExitCode code;
};

constexpr OutcomeRow kOutcomes[] = {
    {InstallOutcome::Done, kOk},
    {InstallOutcome::Unchanged, kOk},
    {InstallOutcome::TakenByOther, kTaken},
    {InstallOutcome::OtherInstall, kOtherInstall},
    {InstallOutcome::AccessDenied, kNoRights},
    {InstallOutcome::Failed, kFailed},
};

int Tell(const InstallReport& report)
{
    const bool good =
        report.outcome == InstallOutcome::Done || report.outcome == InstallOutcome::Unchanged;
    for (const std::wstring& line : report.lines)
        good ? Print(line) : PrintError(line);
    for (const OutcomeRow& row : kOutcomes)
    {
        if (row.outcome == report.outcome)
            return row.code;
    }
    return kFailed;
}

// The folder of this program, with its trailing backslash; empty where it cannot be told.
std::wstring HomeFolder()
{
    std::wstring path(32768, L'\0');
    const DWORD length = GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
    if (length == 0 || length >= path.size())
        return {};
    path.resize(length);
    return path.substr(0, path.find_last_of(L'\\') + 1);
}

std::wstring LocalDataFolder()
{
    wchar_t folder[MAX_PATH] = {};
    if (FAILED(SHGetFolderPathW(nullptr, CSIDL_LOCAL_APPDATA, nullptr, SHGFP_TYPE_CURRENT, folder)))
        return {};
    return folder;
}

int InstallBook()
{
    const std::wstring localData = LocalDataFolder();
    if (localData.empty())
    {
        PrintError(L"The folder of your local application data cannot be told.");
        return kFailed;
    }
    ComponentPlan plan;
    std::wstring reason;
    if (!PlanBook(HomeFolder(), localData, plan, reason))
    {
        PrintError(reason);
        PrintError(L"Nothing was changed.");
        return kFailed;
    }
    SystemInstallTarget machine(HKEY_LOCAL_MACHINE);
    return Tell(Install(machine, plan));
}

int InstallStore()
{
    wchar_t programFiles[MAX_PATH] = {};
    if (!SHGetSpecialFolderPathW(nullptr, programFiles, CSIDL_PROGRAM_FILES, FALSE))
    {
        PrintError(L"The program files folder cannot be told.");
        return kFailed;
    }
    ComponentPlan plan;
    std::wstring reason;
    if (!PlanStore(HomeFolder(), programFiles, plan, reason))
    {
        PrintError(reason);
        PrintError(L"Nothing was changed.");
        return kFailed;
    }
    SystemInstallTarget machine(HKEY_LOCAL_MACHINE);
    const int code = Tell(Install(machine, plan));
    if (code != kOk)
        return code;
    // So that a logon works at once.
    Database database = OpenStore(StorePath());
    if (EnsureDefaultProfile(database, LoggedOnUser()))
        Print(L"Made the default profile in " + StorePath() + L".");
    return kOk;
}

int RemoveComponent(const wchar_t* component)
{
    SystemInstallTarget machine(HKEY_LOCAL_MACHINE);
    return Tell(Remove(machine, component));
}

// Runs what was asked for one after the other, and ends with the first failure.
int RunBoth(bool book, bool store, int (*runBook)(), int (*runStore)())
{
    const int code = book ? runBook() : int{kOk};
    return code == kOk && store ? runStore() : code;
}

std::wstring ValueText(const InstallTarget& target, const std::wstring& key)
{
    RegistryValue value;
    if (target.ReadValue(key, L"", value) != ERROR_SUCCESS)
        return L"none";
    return TextOfValue(value);
}

int Status()
{
    const SystemInstallTarget machine(HKEY_LOCAL_MACHINE);
    const auto installed = [&](const wchar_t* component) {
        const std::wstring home = InstalledHome(machine, component);
        return home.empty() ? std::wstring(L"not installed") : L"installed from " + home;
    };
    const std::wstring clients = std::wstring(kMailClients) + L"\\";
    Print(L"book                  " + installed(kBookComponent));
    Print(L"store                 " + installed(kStoreComponent));
    Print(L"address book library  " + ValueText(machine, kBookLibraryKey));
    Print(L"Windows Mail          " + ValueText(machine, clients + kWindowsMail + kOpenCommand));
    Print(L"Outlook Express       " + ValueText(machine, clients + kOutlookExpress + kOpenCommand));
    Print(L"Microsoft Outlook     " +
          ValueText(machine, clients + kMicrosoftOutlook + kOpenCommand));
    Print(L"default mail client   " + ValueText(machine, kMailClients));
    try
    {
        const std::wstring path = StorePath();
        Print(L"database              " + path);
        if (GetFileAttributesW(path.c_str()) == INVALID_FILE_ATTRIBUTES)
        {
            Print(L"                      not made yet; its first use makes it");
            return kOk;
        }
        Database database = OpenStore(path);
        Print(L"                      schema " +
              std::to_wstring(database.QueryInteger("PRAGMA user_version")) + L", " +
              std::to_wstring(database.QueryInteger("SELECT count(*) FROM book_entry")) +
              L" book entries, " +
              std::to_wstring(database.QueryInteger("SELECT count(*) FROM message")) +
              L" messages" + (database.IsReadOnly() ? L", read-only" : L""));
        return kOk;
    }
    catch (const DatabaseError& error)
    {
        PrintError(L"The store does not open: " + WideFromUtf8(error.what()));
        return kFailed;
    }
}

// What CLI11 would print, in the encoding of our own output.
int TellParseResult(const CLI::App& app, const CLI::ParseError& error)
{
    std::ostringstream out;
    std::ostringstream errors;
    const int code = app.exit(error, out, errors);
    for (const auto& [stream, text] :
         {std::pair{STD_OUTPUT_HANDLE, out.str()}, std::pair{STD_ERROR_HANDLE, errors.str()}})
    {
        std::wstring wide = WideFromUtf8(text);
        while (!wide.empty() && wide.back() == L'\n')
            wide.pop_back();
        if (!wide.empty())
            PrintLine(stream, wide);
    }
    return code == 0 ? kOk : kUsage;
}

int Run(int argc, wchar_t** argv)
{
    CLI::App app{"Installs and removes the embedded stores of PimStoreBridge.\n"
                 "The book is the embedded address book: installed, it stands in for the Windows "
                 "Address Book\nand makes the back ends \"Windows Mail\" and \"Outlook Express\" "
                 "usable.\nThe store is the embedded message store: installed, it makes the back "
                 "end \"Microsoft Outlook\"\nusable where no Outlook is.",
                 "pimstore"};
    app.set_version_flag("--version", PIM_VERSION);
    app.require_subcommand(1);
    app.footer(kExitCodes);

    bool book = false;
    bool store = false;
    const auto addComponents = [&](CLI::App* command) {
        auto* components = command->add_option_group("components", "What, at least one");
        components->add_flag("--book", book, "The embedded address book");
        components->add_flag("--store", store, "The embedded message store");
        components->require_option(1, 2);
        command->footer(kExitCodes);
    };
    CLI::App* install = app.add_subcommand(
        "install", "Write the registry values and make the folder that the server looks for");
    addComponents(install);
    CLI::App* remove =
        app.add_subcommand("remove", "Take back exactly what install wrote; data stays");
    addComponents(remove);
    CLI::App* status =
        app.add_subcommand("status", "Tell what is installed and whether the store opens");

    std::string loadPath;
    bool replace = false;
    CLI::App* load =
        app.add_subcommand("load", "Load a JSON file into the message store and the address book");
    load->add_option("FILE", loadPath, "The file")->required();
    load->add_flag("--replace", replace, "Empty both first, whatever the file holds");
    load->footer(kExitCodes);
    std::string dumpPath;
    CLI::App* dump =
        app.add_subcommand("dump", "Write the message store and the address book as JSON");
    dump->add_option("FILE", dumpPath, "Where to; standard output where it is left out");

    std::vector<std::string> arguments;
    for (int i = argc - 1; i > 0; --i)
        arguments.push_back(Utf8FromWide(argv[i]));
    try
    {
        app.parse(arguments);
    }
    catch (const CLI::ParseError& error)
    {
        return TellParseResult(app, error);
    }
    if (*install)
        return RunBoth(book, store, InstallBook, InstallStore);
    if (*remove)
        return RunBoth(
            book,
            store,
            [] { return RemoveComponent(kBookComponent); },
            [] { return RemoveComponent(kStoreComponent); });
    if (*load)
        return RunLoad(WideFromUtf8(loadPath), replace);
    if (*dump)
        return RunDump(WideFromUtf8(dumpPath));
    return *status ? Status() : kUsage;
}

} // namespace

int wmain(int argc, wchar_t** argv)
{
    try
    {
        return Run(argc, argv);
    }
    catch (const std::exception& error)
    {
        PrintError(L"pimstore failed: " + WideFromUtf8(error.what()));
        return kFailed;
    }
}
