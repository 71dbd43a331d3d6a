// The one trace of the server: lines to the debugger channel, off unless PimAdvLog.ini beside the
// executable says "on" under [Global] State. The decision is taken once per process. Fails
// silently in every case and never changes the caller's course.
#pragma once

// Formats as the platform's wide printf does and writes one line, at level "Debug". HRESULTs go as
// "%p" with Hr(code). Nothing for a null format.
void LogPrintf(const wchar_t* format, ...);

// Whether the settings file turns the trace on, read anew.
bool LogEnabled();

// One line: program name, thread, local time, level word and message, with tabs between.
void WriteLogLine(const wchar_t* message, const wchar_t* level);

// An HRESULT as the unsigned pointer-sized value that "%p" takes.
inline const void* Hr(long result)
{
    return reinterpret_cast<const void*>(
        static_cast<unsigned long long>(static_cast<unsigned long>(result)));
}

// Forgets the decision, so that the next LogPrintf reads the settings file. For in-process tests.
void ResetLogForTests();
