// The command line of pim. Portable.
#pragma once

#include "client/core/ContactArguments.h"
#include "client/core/ItemOptions.h"

#include <optional>
#include <string>
#include <vector>

namespace pim
{
// Exit codes of pim; its help tells them.
inline constexpr int kExitOk = 0;
inline constexpr int kExitFailed = 1;
inline constexpr int kExitUsage = 2;
inline constexpr int kExitNoServer = 3;
inline constexpr int kExitNotFound = 4;
inline constexpr int kExitNotKept = 5;

enum class CommandKind
{
    Providers,
    WhoAmI,
    Folders,
    List,
    Show,
    Add,
    Update,
    Rename,
    Delete,
    Doctor,
    Register,
    Unregister
};

// What the commands from List to Delete work on.
enum class ItemKind
{
    Appointment,
    Contact,
    Group,
    Category
};

struct Command
{
    CommandKind kind = CommandKind::Providers;
    ItemKind items = ItemKind::Appointment;
    std::optional<std::wstring> provider;
    bool asJson = false;
    bool isWide = false;
    bool forUser = false; // a registration among the user's own classes
    std::vector<std::wstring> ids;
    ItemOptions item; // of an appointment
    ContactOptions contact;
    std::wstring name; // of a group or a category
    std::optional<int> color;
    std::optional<std::wstring> pictureDirectory;
};

// Either a command, or what to print and the code to end with.
struct CommandLineResult
{
    std::optional<Command> command;
    int exitCode = kExitOk;
    std::wstring output; // for standard output: help, version
    std::wstring error;  // for standard error
};

// Takes the arguments behind the program's name, in UTF-8.
CommandLineResult ParseCommandLine(std::vector<std::string> arguments, const std::string& version);
} // namespace pim
