// The store's map of named properties: a property set with a number or a name, and the ID from
// 0x8000 on that stands for it in this store.
//
// Names are compared as they are, letter case included. Everything here throws DatabaseError.
#pragma once

#include "localstore/Database.h"
#include "platform/WindowsHeaders.h"

#include <cstdint>
#include <optional>
#include <string>
#include <variant>

inline constexpr std::uint16_t kFirstNamedProperty = 0x8000;
inline constexpr std::uint16_t kLastNamedProperty = 0xFFFE;

struct PropertyName
{
    GUID set;
    std::variant<LONG, std::wstring> name;
};

// By set, then numbers before names: the same in every store, unlike the order of IDs.
bool operator<(const PropertyName& left, const PropertyName& right);
bool operator==(const PropertyName& left, const PropertyName& right);

// The ID of the name; empty where the store has none for it.
std::optional<std::uint16_t> FindNamedProperty(Database& database, const PropertyName& name);

// The ID of the name, which is made where missing. Full where all IDs are taken. Outside of a
// transaction another process may be faster: the result is then Constraint.
std::uint16_t MakeNamedProperty(Database& database, const PropertyName& name);

// The name behind an ID; empty where there is none.
std::optional<PropertyName> NameOfProperty(Database& database, std::uint16_t propertyId);
