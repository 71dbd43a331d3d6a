#include "automation/CommandLine.h"

#include <gtest/gtest.h>

#include <ostream>

namespace
{
struct Row
{
    const wchar_t* text;
    ServerSwitch expected;
};

void PrintTo(const Row& row, std::ostream* stream)
{
    for (const wchar_t* c = row.text; *c; ++c)
        *stream << static_cast<char>(*c);
}

constexpr ServerSwitch None = ServerSwitch::None;
constexpr ServerSwitch Reg = ServerSwitch::RegServer;
constexpr ServerSwitch Unreg = ServerSwitch::UnregServer;

// clang-format off
const Row kRows[] = {
    {L"",                                                    None},
    {L"server.exe",                                          None},
    {L"\"C:\\Program Files\\server.exe\"",                   None},
    {L"server.exe -Embedding",                               None},
    {L"server.exe -RegServer",                               Reg},
    {L"server.exe /RegServer",                               Reg},
    {L"server.exe /regserver",                               Reg},
    {L"server.exe -REGSERVER",                               Reg},
    {L"server.exe -UnregServer",                             Unreg},
    {L"server.exe /UNREGSERVER",                             Unreg},
    // A word ends at a blank, a tab or the end of the text, and nowhere else.
    {L"server.exe -RegServer -Embedding",                    Reg},
    {L"server.exe -RegServer\t",                             Reg},
    {L"server.exe -RegServerX",                              None},
    {L"server.exe -RegServer\"",                             None},
    {L"server.exe -RegServer\n",                             None},
    {L"server.exe -RegServe",                                None},
    {L"server.exe - RegServer",                              None},
    {L"server.exe -UnregServer2 -RegServer",                 Reg},
    {L"server.exe -Embedding/RegServer",                     Reg},
    {L"server.exe --RegServer",                              Reg},
    {L"server.exe -/UnregServer",                            Unreg},
    {L"server.exe -",                                        None},
    // The first switch decides.
    {L"server.exe -RegServer -UnregServer",                  Reg},
    {L"server.exe -UnregServer -RegServer",                  Unreg},
    // Without "-" or "/" in front it is no switch.
    {L"server.exe RegServer",                                None},
    {L"server.exe \"RegServer\"",                            None},
    {L"server.exe -\"RegServer\"",                           None},
    {L"server.exe xRegServer",                               None},
    // The path counts as text like any other.
    {L"C:\\pim-bridge\\server.exe -RegServer",               Reg},
    {L"C:/pim/bridge/server.exe /UnregServer",               Unreg},
    {L"C:\\pim-bridge\\server.exe",                          None},
    {L"\"C:\\my-RegServer tools\\server.exe\" -Embedding",   Reg},
    {L"\"C:\\my-RegServer\\server.exe\" -Embedding",         None},
    {L"\"C:\\a-UnregServer b\\server.exe\" -RegServer",      Unreg},
    // Letters beyond ASCII never match by folding: U+017F is a long s, U+212A the Kelvin sign.
    {L"server.exe -Reg\u017ferver",                          None},
};
// clang-format on

class CommandLineTest : public testing::TestWithParam<Row>
{
};
} // namespace

TEST_P(CommandLineTest, FindsTheFirstSwitch)
{
    EXPECT_EQ(GetParam().expected, ParseCommandLine(GetParam().text));
}

INSTANTIATE_TEST_SUITE_P(Table, CommandLineTest, testing::ValuesIn(kRows));
