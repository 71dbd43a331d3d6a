// The texts of arguments in the lines of the record.
#pragma once

#include "tests/recordingstore/library/Value.h"

#include <string>

std::string FlagsText(ULONG flags);
std::string TagsText(const SPropTagArray* tags);
std::string TagText(ULONG tag);
std::string InterfaceText(LPCIID interfaceId);
std::string WideArgument(const wchar_t* text);
std::string NarrowArgument(const char* text);
// The name of the entry's object, "none" or its bytes.
std::string EntryText(ULONG size, const void* entryId);
std::string EntriesText(const SBinaryArray* entries);
std::string ValuesText(ULONG count, const SPropValue* values);
// One stored value behind its tag, as ValuesText shows it.
std::string StoredText(USHORT id, const Value& value);
std::string RestrictionText(const SRestriction* restriction);
std::string SortText(const SSortOrderSet* sort);
std::string NamesText(ULONG count, LPMAPINAMEID* names);
// Interface(name) of an object of the library; "null", "foreign object".
std::string ObjectText(const void* object);
