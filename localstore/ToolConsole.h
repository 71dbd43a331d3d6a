// What the commands of pimstore share: exit codes and output.
#pragma once

#include "platform/WindowsHeaders.h"

#include <string>
#include <string_view>

enum ExitCode
{
    kOk = 0,
    kFailed = 1,
    kUsage = 2,
    kTaken = 3,
    kOtherInstall = 4,
    kNoRights = 5,
    kWrongFile = 6
};

// A line of text: wide to a console, UTF-8 to files and pipes.
void PrintLine(DWORD stream, const std::wstring& line);
void Print(const std::wstring& line);
void PrintError(const std::wstring& line);
