#include "localstore/NamedProperties.h"

#include <cstring>
#include <span>

namespace
{

std::span<const std::byte> BytesOf(const GUID& guid)
{
    return std::as_bytes(std::span(&guid, 1));
}

// The parameters that a name takes in a statement: the set, and the number or the text.
void BindName(Statement& statement, const PropertyName& name)
{
    statement.Bind(1, BytesOf(name.set));
    if (const LONG* number = std::get_if<LONG>(&name.name))
        statement.Bind(2, *number);
    else
        statement.Bind(2, std::as_bytes(std::span(std::get<std::wstring>(name.name))));
}

bool IsNumber(const PropertyName& name)
{
    return std::holds_alternative<LONG>(name.name);
}

} // namespace

bool operator<(const PropertyName& left, const PropertyName& right)
{
    const int order = std::memcmp(&left.set, &right.set, sizeof left.set);
    return order != 0 ? order < 0 : left.name < right.name;
}

bool operator==(const PropertyName& left, const PropertyName& right)
{
    return std::memcmp(&left.set, &right.set, sizeof left.set) == 0 && left.name == right.name;
}

std::optional<std::uint16_t> FindNamedProperty(Database& database, const PropertyName& name)
{
    Statement row = database.Prepare(IsNumber(name) ? "SELECT property_id FROM named_property "
                                                      "WHERE property_set = ?1 AND number = ?2"
                                                    : "SELECT property_id FROM named_property "
                                                      "WHERE property_set = ?1 AND name = ?2");
    BindName(row, name);
    if (!row.Step())
        return std::nullopt;
    return static_cast<std::uint16_t>(row.Integer(0));
}

std::uint16_t MakeNamedProperty(Database& database, const PropertyName& name)
{
    if (const auto found = FindNamedProperty(database, name))
        return *found;
    std::int64_t next =
        database.QueryInteger("SELECT coalesce(max(property_id) + 1, 32768) FROM named_property");
    if (next > kLastNamedProperty)
    {
        // Names are never taken out by this software; a gap can come from elsewhere only.
        next = database.QueryInteger(
            "SELECT min(property_id) + 1 FROM named_property AS one WHERE NOT EXISTS "
            "(SELECT 1 FROM named_property WHERE property_id = one.property_id + 1)");
        if (next > kLastNamedProperty)
            throw DatabaseError(DatabaseFailure::Full,
                                "the store has no room for another named property");
    }
    Statement insert = database.Prepare(
        IsNumber(name) ? "INSERT INTO named_property (property_set, number, property_id) "
                         "VALUES (?1, ?2, ?3)"
                       : "INSERT INTO named_property (property_set, name, property_id) "
                         "VALUES (?1, ?2, ?3)");
    BindName(insert, name);
    insert.Bind(3, next).Run();
    return static_cast<std::uint16_t>(next);
}

std::optional<PropertyName> NameOfProperty(Database& database, std::uint16_t propertyId)
{
    Statement row = database.Prepare(
        "SELECT property_set, number, name FROM named_property WHERE property_id = ?1");
    row.Bind(1, propertyId);
    if (!row.Step())
        return std::nullopt;
    PropertyName name{};
    const std::span<const std::byte> set = row.Blob(0);
    if (set.size() != sizeof name.set)
        throw DatabaseError(DatabaseFailure::Corrupt, "a named property's set is damaged");
    std::memcpy(&name.set, set.data(), sizeof name.set);
    if (!row.IsNull(1))
    {
        name.name = static_cast<LONG>(row.Integer(1));
        return name;
    }
    const std::span<const std::byte> bytes = row.Blob(2);
    if (bytes.size() % sizeof(wchar_t) != 0)
        throw DatabaseError(DatabaseFailure::Corrupt, "a named property's name is damaged");
    std::wstring text(bytes.size() / sizeof(wchar_t), L'\0');
    if (!bytes.empty())
        std::memcpy(text.data(), bytes.data(), bytes.size());
    name.name = std::move(text);
    return name;
}
