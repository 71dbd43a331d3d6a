// pim: shows and changes calendar, contacts, groups and categories of this PC, through the
// automation server alone, and registers that.
#include "client/Commands.h"
#include "client/Failure.h"
#include "client/Server.h"
#include "client/core/Unicode.h"

#include <exception>

namespace
{
int Run(int argumentCount, wchar_t** arguments)
{
    const pim::OutputStream output(STD_OUTPUT_HANDLE);
    const pim::OutputStream errors(STD_ERROR_HANDLE);
    std::vector<std::string> texts;
    for (int i = 1; i < argumentCount; ++i)
        texts.push_back(pim::Utf8FromWide(arguments[i]));
    const pim::CommandLineResult parsed = pim::ParseCommandLine(std::move(texts), PIM_VERSION);
    output.Write(parsed.output);
    if (!parsed.command)
    {
        if (!parsed.error.empty())
            errors.Write(L"pim: " + parsed.error);
        return parsed.exitCode;
    }
    try
    {
        pim::WatchForCancel();
        const pim::Apartment apartment;
        return pim::RunCommand(*parsed.command, output, errors);
    }
    catch (const pim::Failure& failure)
    {
        errors.Write(L"pim: " + failure.text + L"\n");
        return failure.exitCode;
    }
    catch (const std::exception& problem)
    {
        errors.Write(L"pim: " + pim::WideFromUtf8(problem.what()) + L"\n");
        return pim::kExitFailed;
    }
}
} // namespace

int wmain(int argumentCount, wchar_t** arguments)
{
    return Run(argumentCount, arguments);
}
