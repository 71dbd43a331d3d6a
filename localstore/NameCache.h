// What one connection knows of the store's map of named properties. A pair once made stays for the
// life of the store, so what was found is remembered and asked for no more; what other processes
// add is seen.
// Thread: as its Database, which has to outlive it.
#pragma once

#include "localstore/NamedProperties.h"

#include <map>
#include <vector>

class NameCache
{
  public:
    explicit NameCache(Database& database) : m_database(database) {}

    // The IDs of the names in their order. Nothing for a name that has none.
    std::vector<std::optional<std::uint16_t>> Find(const std::vector<PropertyName>& names);
    // The same, but missing names get their IDs, all in one transaction. Throws DatabaseError: Full
    // where every ID is taken; then none was made.
    std::vector<std::optional<std::uint16_t>> FindOrCreate(const std::vector<PropertyName>& names);
    // The name of an ID; null where it has none. The pointer lives until the next call.
    const PropertyName* NameOf(std::uint16_t id);
    // Every ID with its name.
    const std::map<std::uint16_t, PropertyName>& All();

  private:
    void Refresh();

    Database& m_database;
    // The database's own counter of what other connections wrote.
    std::int64_t m_seenVersion = -1;
    std::map<PropertyName, std::uint16_t> m_ids;
    std::map<std::uint16_t, PropertyName> m_names;
};
