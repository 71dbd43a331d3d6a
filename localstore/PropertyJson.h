// A property in JSON: as text for a dump, and from a parsed node for a load.
// Format notes: docs/formats/store_json.md
#pragma once

#include "localstore/JsonNode.h"
#include "localstore/NamedProperties.h"
#include "localstore/StoredProperties.h"

#include <string>
#include <variant>

// The tag's upper half, or the name that a store gives an ID to.
using PropertyKey = std::variant<std::uint16_t, PropertyName>;

struct KeyedProperty
{
    PropertyKey key;
    PropertyValue value;
};

// One object on one line: {"tag": ..., "value": ...}.
std::string PropertyText(const PropertyKey& key, const PropertyValue& value);

// Throws JsonProblem.
KeyedProperty ReadPropertyJson(const JsonPlace& place);

// Single values.
std::string QuotedText(std::string_view utf8);
std::string TextValueText(const std::wstring& text);   // an object where it is no valid UTF-16
std::string HexText(std::span<const std::byte> bytes); // upper-case digits
std::string TimeText(std::uint64_t ticks);             // of 100 ns since 1601-01-01 UTC
std::wstring ReadTextValue(const JsonPlace& place);
Bytes ReadHex(const JsonPlace& place);
std::uint64_t ReadTime(const JsonPlace& place);
