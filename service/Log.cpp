#include "service/Log.h"

#include "platform/ScopeExit.h"
#include "platform/WindowsHeaders.h"
#include "service/PathHelpers.h"

#include <cstdarg>
#include <cstdio>
#include <new>
#include <string>

namespace
{
constexpr std::size_t kPathLimit = 260;
constexpr DWORD kStateLength = 260;
constexpr std::size_t kFieldLength = 32;

// Without a lock: the server's calls come on one thread, and a second reading of the file by
// another thread would find the same.
bool g_checked = false;
bool g_enabled = false;

// Both go to the C library's own functions, whose formats are the platform's ("%s" is wide).
void FormatAndWrite(const wchar_t* format, va_list arguments)
{
    va_list measured;
    va_copy(measured, arguments);
    const int length = _vscwprintf(format, measured);
    va_end(measured);
    if (length < 0)
        return;
    const std::size_t size = static_cast<std::size_t>(length) + 1;
    const HANDLE heap = GetProcessHeap();
    auto* const text =
        static_cast<wchar_t*>(HeapAlloc(heap, HEAP_ZERO_MEMORY, size * sizeof(wchar_t)));
    if (!text)
        return;
    const ScopeExit release([&] { HeapFree(heap, 0, text); });
    vswprintf_s(text, size, format, arguments);
    WriteLogLine(text, L"Debug");
}
} // namespace

void LogPrintf(const wchar_t* format, ...)
{
    if (!g_checked)
    {
        g_enabled = LogEnabled();
        g_checked = true;
    }
    if (!g_enabled || !format)
        return;
    va_list arguments;
    va_start(arguments, format);
    FormatAndWrite(format, arguments);
    va_end(arguments);
}

bool LogEnabled()
{
    try
    {
        const std::wstring path =
            (GetExecutableDirectory() + L"PimAdvLog.ini").substr(0, kPathLimit);
        wchar_t state[kStateLength] = {};
        GetPrivateProfileStringW(L"Global", L"State", L"", state, kStateLength, path.c_str());
        return lstrcmpiW(state, L"on") == 0;
    }
    catch (const std::bad_alloc&)
    {
        return false;
    }
}

void WriteLogLine(const wchar_t* message, const wchar_t* level)
{
    try
    {
        wchar_t field[kFieldLength] = {};
        std::wstring line = L"PimStoreBridge\t";
        swprintf_s(field, kFieldLength, L"[%d]", static_cast<int>(GetCurrentThreadId()));
        line += field;

        SYSTEMTIME localTime{};
        GetLocalTime(&localTime);
        swprintf_s(field,
                   kFieldLength,
                   L"[%04d-%02d-%02d %02d:%02d:%02d.%03d]",
                   localTime.wYear,
                   localTime.wMonth,
                   localTime.wDay,
                   localTime.wHour,
                   localTime.wMinute,
                   localTime.wSecond,
                   localTime.wMilliseconds);
        line += L'\t';
        line += field;

        line += L'\t';
        line += level ? level : L"";
        line += L'\t';
        line += message ? message : L"";
        OutputDebugStringW(line.c_str());
    }
    catch (const std::bad_alloc&)
    {
        // The line is lost; nobody is told.
    }
}

void ResetLogForTests()
{
    g_checked = false;
    g_enabled = false;
}
