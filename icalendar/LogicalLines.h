// The physical lines of an .ics file as logical ones. Portable.
//
// Every physical line is converted from UTF-8 by itself, up to its first NUL; a CR directly before
// its line feed is no part of it. There is no limit to its length and no test for a byte-order
// mark.
//
// Kept as it is, consequences included:
// - The first line delivered is an empty one, unless the file begins with a continuation.
// - A last line without a line feed is not delivered, unless it continues another.
// - An empty line has its predecessor delivered a second time, unless that was a continuation: then
//   it is skipped.
// - A character that a fold splits is converted in two halves and lost.
// Pinned by LogicalLinesTest.
#pragma once

#include <functional>
#include <string_view>

// Calls the function with each logical line; the view is good for that call alone. Repeated: the
// line is the one delivered just before, once more.
void ForEachLogicalLine(std::string_view bytes,
                        const std::function<void(std::wstring_view line, bool repeated)>& deliver);
