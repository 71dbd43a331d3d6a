// The registry value in which Outlook 2003 keeps its categories: their names, each with a semicolon
// behind it.
#pragma once

#include "outlook/categories/RegistryCalls.h"

#include <string>

class MasterList
{
  public:
    // The calls outlive the object.
    explicit MasterList(RegistryCalls& calls = SystemRegistry()) : m_calls(calls) {}

    // The value's bytes as a text up to its first zero, whatever type it has: Outlook writes a
    // string, Write bytes. Empty where there is none, or where it can't be read, as one of more
    // than 16 MiB.
    std::wstring Read();

    // Stores the text with its terminator as REG_BINARY. A value that the last Read found and could
    // not read stays as it is, since the text lacks what it holds.
    // Kept as it is: where Outlook's key is missing the value goes below a key of its own name,
    // where Read does not look. Pinned by MasterListTest.
    void Write(const std::wstring& text);

  private:
    LSTATUS ReadValue(std::wstring& text);
    bool OpenForWriting(HKEY& key);

    RegistryCalls& m_calls;
    bool m_isUnread = false; // there is a value of which the last Read could not tell
};
