// The registry value in which Outlook 2003 keeps its categories: their names, each with a semicolon
// behind it.
#pragma once

#include <string>

// The value's bytes as a text up to its first zero, whatever type it has: Outlook writes a string,
// WriteMasterList bytes. Empty where there is none.
std::wstring ReadMasterList();

// Stores the text with its terminator as REG_BINARY.
// Kept as it is: where Outlook's key is missing the value goes below a key of its own name, where
// ReadMasterList does not look. Pinned by MasterListTest.
void WriteMasterList(const std::wstring& text);
