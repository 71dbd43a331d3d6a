#include "localstore/ToolConsole.h"

#include "service/TextConversions.h"

#include <iterator>

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

std::wstring SystemText(DWORD error)
{
    wchar_t buffer[512] = {};
    const DWORD length = FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
                                        nullptr,
                                        error,
                                        0,
                                        buffer,
                                        static_cast<DWORD>(std::size(buffer)),
                                        nullptr);
    std::wstring text(buffer, length);
    while (!text.empty() && (text.back() == L'\n' || text.back() == L'\r' || text.back() == L' '))
        text.pop_back();
    return text.empty() ? L"system error " + std::to_wstring(error) : text;
}
