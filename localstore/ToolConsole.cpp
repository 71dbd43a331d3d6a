#include "localstore/ToolConsole.h"

#include "service/TextConversions.h"

void PrintLine(DWORD stream, const std::wstring& line)
{
    const HANDLE output = GetStdHandle(stream);
    const std::wstring text = line + L"\n";
    DWORD mode = 0;
    DWORD written = 0;
    if (GetConsoleMode(output, &mode))
    {
        WriteConsoleW(output, text.c_str(), static_cast<DWORD>(text.size()), &written, nullptr);
        return;
    }
    const std::string bytes = Utf8FromWide(text);
    WriteFile(output, bytes.c_str(), static_cast<DWORD>(bytes.size()), &written, nullptr);
}

void Print(const std::wstring& line)
{
    PrintLine(STD_OUTPUT_HANDLE, line);
}

void PrintError(const std::wstring& line)
{
    PrintLine(STD_ERROR_HANDLE, line);
}
