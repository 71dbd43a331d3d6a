// Properties of the store's objects: one row of the table property each.
#pragma once

#include "localstore/Database.h"
#include "localstore/StoreSchema.h"

#include <algorithm>
#include <cstdint>
#include <map>
#include <optional>
#include <span>
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

// Properties by their ID (the upper half of a tag).
using PropertyMap = std::map<std::uint16_t, PropertyValue>;

// The property IDs that a reader wants.
class PropertySelection
{
  public:
    static PropertySelection All() { return PropertySelection(); }
    // In any order, also with repetitions.
    explicit PropertySelection(std::vector<std::uint16_t> ids) : m_all(false), m_ids(std::move(ids))
    {
        std::sort(m_ids.begin(), m_ids.end());
        m_ids.erase(std::unique(m_ids.begin(), m_ids.end()), m_ids.end());
    }

    bool IsAll() const noexcept { return m_all; }
    // Whether the property belongs to the selection.
    bool Has(std::uint16_t id) const noexcept
    {
        return m_all || std::binary_search(m_ids.begin(), m_ids.end(), id);
    }
    // Without those that the filter takes; ascending. Only for a selection that is not all.
    template <typename Filter> std::vector<std::uint16_t> Without(Filter&& filter) const
    {
        std::vector<std::uint16_t> rest;
        for (const std::uint16_t id : m_ids)
        {
            if (!filter(id))
                rest.push_back(id);
        }
        return rest;
    }

  private:
    PropertySelection() = default;

    bool m_all = true;
    std::vector<std::uint16_t> m_ids;
};

// Throw DatabaseError (Corrupt for a row that does not hold what its type says). One statement
// reads the owner's rows; large values are read only where they are wanted.
PropertyMap ReadProperties(Database& database, PropertyOwner owner);
PropertyMap ReadProperties(Database& database,
                           PropertyOwner owner,
                           const PropertySelection& selection);
// The value in the columns type, value and large of a statement's row.
PropertyValue ReadValueColumns(Database& database, const Statement& row, int firstColumn);
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
