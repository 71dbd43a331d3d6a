// What every command works with, and what commands on items share.
#pragma once

#include "client/Collections.h"
#include "client/Console.h"
#include "client/Failure.h"
#include "client/SystemZone.h"
#include "client/core/CommandLine.h"
#include "client/core/ItemTable.h"

#include <nlohmann/json.hpp>

#include <string>
#include <vector>

namespace pim
{
struct Context
{
    const Command& command;
    const OutputStream& output;
    const TextOutput& errors;
    SystemZone zone;

    // Throws: Failure, where not all of it could be written.
    void Print(const std::wstring& text) const;
    // A line on standard error, for what does not end the command.
    void Warn(const std::wstring& sentence) const;
    TableRoom Room() const { return {command.isWide, output.Columns()}; }
};

// Throws: Failure of usage, where there is a problem.
void CheckOptions(const std::wstring& problem);

// Prints a list as JSON: the provider, and the items below their word.
void PrintListJson(const Context& context,
                   const ProviderSession& session,
                   const ItemWords& words,
                   nlohmann::ordered_json items);
// Prints the sentence for a list without items.
void PrintNone(const Context& context, const ProviderSession& session, const ItemWords& words);

// Says on standard error how many items of a walk did not open, where any did not.
void WarnOfLeftOut(const Context& context, const ItemWords& words, unsigned count);

// What became of one item that was written.
struct WriteResult
{
    std::wstring id;
    std::vector<std::wstring> notKept; // fields whose value the store holds otherwise
};

// Members id and notKept, see docs/pim.md.
nlohmann::ordered_json WriteResultJson(const WriteResult& result);
// "Added 0A3C"; and what was not kept on standard error.
// Returns: the exit code.
int PrintWritten(const Context& context, const wchar_t* verb, const WriteResult& result);
// The same without the output. Returns: the exit code.
int WarnOfNotKept(const Context& context, const WriteResult& result);

// The end of a deletion: JSON where it is asked for.
// Returns: the exit code.
int PrintDeleted(const Context& context,
                 const std::vector<std::wstring>& deleted,
                 const std::vector<std::wstring>& notFound);
} // namespace pim
