// pim.exe as people run it.
#pragma once

#include "endtoend/CalendarFolder.h"
#include "endtoend/ChildProgram.h"

#include <gtest/gtest.h>

#include <string>

inline ProgramResult RunPim(const std::wstring& arguments)
{
    return RunAndRead(ProgramBeside(L"pim.exe") + L' ' + arguments);
}

// Runs a command that must do its work in silence on standard error, and gives its output.
inline std::string PimDone(const std::wstring& arguments)
{
    const ProgramResult result = RunPim(arguments);
    EXPECT_EQ(result.exitCode, 0u) << result.errors;
    EXPECT_EQ(result.errors, "");
    return result.output;
}
