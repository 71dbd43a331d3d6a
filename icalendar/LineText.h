// Logical lines of an .ics file: a name with its parameters, a colon and a value. Portable.
#pragma once

#include <string>
#include <string_view>

// Divides a logical line at its first colon outside double quotes, after one line feed at its end
// was taken away. The parts are views into the line, not trimmed and not unescaped.
// Returns: false, with both parts untouched, for an empty line and one without such a colon.
bool SplitLine(std::wstring_view line, std::wstring_view& name, std::wstring_view& value);

// The line as it is written: name, colon and value, ended by CR LF. A text of more than 75 UTF-16
// code units is cut once, after the 75th, with CR LF and a blank; the rest is not folded again.
std::wstring FormatLine(std::wstring_view name, std::wstring_view value);

// The same, appended.
void AppendLine(std::wstring& out, std::wstring_view name, std::wstring_view value);
