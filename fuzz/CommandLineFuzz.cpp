// A command line gives a command, or a text and the code that goes with it, never both. What an
// appointment's options ask for makes an item whose end is not before its start, or a sentence that
// says why not; asked for once more, the same options change nothing.
#include "Require.h"

#include "client/core/CommandLine.h"
#include "tests/client/core/FixedZone.h"

#include <cstdint>
#include <string>
#include <vector>

namespace
{
// One argument a line; more than any command takes are left out.
std::vector<std::string> ArgumentsIn(const std::string& text)
{
    constexpr std::size_t kMostArguments = 40;
    std::vector<std::string> arguments;
    for (std::size_t at = 0; at < text.size() && arguments.size() < kMostArguments;)
    {
        const std::size_t end = std::min(text.find('\n', at), text.size());
        arguments.push_back(text.substr(at, end - at));
        at = end + 1;
    }
    return arguments;
}

void CheckItem(const pim::ItemOptions& options)
{
    const FixedZone zone(2);
    pim::Appointment item;
    if (!pim::MakeItem(options, zone, item).empty())
        return;
    Require(item.start && item.end && *item.start <= *item.end);
    pim::Appointment again = item;
    if (pim::ChangeItem(options, zone, again).empty())
        Require(pim::FieldsNotKept(item, again, item).empty());
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string text(reinterpret_cast<const char*>(data), size);
    const pim::CommandLineResult result = pim::ParseCommandLine(ArgumentsIn(text), "1.0");
    if (!result.command)
    {
        Require(result.output.empty() != result.error.empty());
        Require(result.exitCode == (result.error.empty() ? pim::kExitOk : pim::kExitUsage));
        return 0;
    }
    Require(result.output.empty() && result.error.empty() && result.exitCode == pim::kExitOk);
    const pim::Command& command = *result.command;
    Require(command.ids.size() <= size);
    if (command.items == pim::ItemKind::Appointment &&
        (command.kind == pim::CommandKind::Add || command.kind == pim::CommandKind::Update))
        CheckItem(command.item);
    return 0;
}
