// The child process of the tests that kill a writer of address book entries.
#pragma once

#include "localstore/StoredProperties.h"

#include <string>

// Writes entries into the personal container of the store of that path for ever, through the book's
// own objects: each is made, and then what WorkOfWritten says is done to it. Each time the call
// that stores it returned, a line goes to standard output: see TellDone. The arguments are those of
// RunMessageWriter; the stop is armed inside the last of the works on a number.
int RunEntryWriter(
    const std::wstring& path, int first, int step, int skip, int armAfter, int checkpoint);

enum class EntryWork
{
    Save,
    Change,
    Delete
};

// What becomes of the entry of a number after it was saved; Save where it is left alone.
EntryWork WorkOfWritten(int number);
// In the writer's lines: "save", "change", "delete".
const char* NameOf(EntryWork work);
// What the entry holds after its first save, or after its change.
PropertyMap PropertiesOfWritten(int number, bool isChanged);
