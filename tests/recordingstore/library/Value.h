// A property value with memory of its own, and its way from and to the records of MAPI.
#pragma once

#include "platform/WindowsHeaders.h"

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

using ByteString = std::vector<BYTE>;

struct Value
{
    ULONG type = PT_NULL;     // MV_FLAG included
    std::uint64_t bits = 0;   // of a number
    ByteString bytes;         // of a text (no terminator), binary or GUID
    std::vector<Value> items; // where the type has MV_FLAG

    bool operator==(const Value&) const = default;
};

// By property ID.
using Properties = std::map<USHORT, Value>;

// Gives zeroed memory that lives as long as what the values are written to. Throws std::bad_alloc.
using Allocator = std::function<void*(std::size_t bytes)>;

// Nothing for types that have no value here and for null pointers that need to be some.
std::optional<Value> ReadValue(const SPropValue& value);

// Writes the value; its type stays, the ID is that of the tag.
void WriteValue(const Value& value, USHORT id, const Allocator& allocate, SPropValue& out);
void WriteError(USHORT id, SCODE code, SPropValue& out);

// The value in that type: as it is for PT_UNSPECIFIED and its own, converted between the types of
// text by the system's ANSI code page; nothing for others.
std::optional<Value> InType(const Value& value, ULONG type);

Value TextValue(std::wstring_view text);
Value NumberValue(ULONG type, std::uint64_t bits);
Value BinaryValue(const ByteString& bytes);
std::wstring WideTextOf(const Value& value);

// Less than 0, 0 or greater, among values of one type; texts without regard to case where asked.
int CompareValues(const Value& left, const Value& right, bool ignoreCase = false);
