// Properties of the store's objects: one row of the table property each.
#pragma once

#include "localstore/Database.h"
#include "localstore/StoreSchema.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <variant>
#include <vector>

// A value with its MAPI type, in a form that is free of MAPI memory.
//   fixed-size types   std::uint64_t: the bits, numbers sign-extended, 32-bit floats in the low
//   half strings            std::wstring for PT_UNICODE, Bytes (no terminator) for PT_STRING8
//   binary, class IDs  Bytes
//   multi-values       a vector of the same
struct PropertyValue
{
    std::uint16_t type = 0;
    std::variant<std::uint64_t,
                 Bytes,
                 std::wstring,
                 std::vector<std::uint64_t>,
                 std::vector<Bytes>,
                 std::vector<std::wstring>>
        data;

    bool operator==(const PropertyValue&) const = default;
};

struct PropertyOwner
{
    OwnerKind kind;
    std::int64_t id;
};

// Values of more bytes than this stand in large_value, so that rows stay small.
inline constexpr size_t kLargestInlineBytes = 1024;

// Properties by their ID (the upper half of a tag). Throws DatabaseError (Corrupt for a row that
// does not hold what its type says).
std::map<std::uint16_t, PropertyValue> ReadProperties(Database& database, PropertyOwner owner);
std::optional<PropertyValue> ReadProperty(Database& database,
                                          PropertyOwner owner,
                                          std::uint16_t propertyId);

// Replaces a value of any type under that ID. Constraint for a type that cannot be stored or that
// does not fit the value.
void WriteProperty(Database& database,
                   PropertyOwner owner,
                   std::uint16_t propertyId,
                   const PropertyValue& value);

// False where there was none.
bool DeleteProperty(Database& database, PropertyOwner owner, std::uint16_t propertyId);
