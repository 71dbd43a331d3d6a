// The registry's classes as lines of text.
#pragma once

#include <set>
#include <string>

// Every key below HKEY_CLASSES_ROOT, the machine's and the user's, as "key", and every value as
// "key | name | text"; values that are no text as "key | name | (type N)". Keys that a runtime
// keeps once more for the other processor width are folded into the plain ones.
std::set<std::wstring> DumpClasses();

// The user's alone.
std::set<std::wstring> DumpUserClasses();
