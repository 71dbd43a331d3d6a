#include "localstore/NameCache.h"

#include <algorithm>

// Adds what other connections made since the last time.
void NameCache::Refresh()
{
    const std::int64_t version = m_database.QueryInteger("PRAGMA data_version");
    if (version == m_seenVersion)
        return;
    std::vector<std::uint16_t> ids;
    {
        Statement rows = m_database.Prepare("SELECT property_id FROM named_property");
        while (rows.Step())
            ids.push_back(static_cast<std::uint16_t>(rows.Integer(0)));
    }
    for (const std::uint16_t id : ids)
    {
        if (m_names.contains(id))
            continue;
        const std::optional<PropertyName> name = NameOfProperty(m_database, id);
        if (!name)
            continue;
        m_ids.emplace(*name, id);
        m_names.emplace(id, *name);
    }
    m_seenVersion = version;
}

std::vector<std::optional<std::uint16_t>> NameCache::Find(const std::vector<PropertyName>& names)
{
    std::vector<std::optional<std::uint16_t>> ids;
    const auto read = [&] {
        ids.clear();
        for (const PropertyName& name : names)
        {
            const auto found = m_ids.find(name);
            ids.push_back(found == m_ids.end() ? std::nullopt : std::optional(found->second));
        }
        return std::find(ids.begin(), ids.end(), std::nullopt) == ids.end();
    };
    if (!read())
    {
        Refresh();
        read();
    }
    return ids;
}

std::vector<std::optional<std::uint16_t>> NameCache::FindOrCreate(
    const std::vector<PropertyName>& names)
{
    auto ids = Find(names);
    if (std::find(ids.begin(), ids.end(), std::nullopt) == ids.end())
        return ids;
    Transaction transaction(m_database);
    for (size_t i = 0; i < names.size(); ++i)
        ids[i] = MakeNamedProperty(m_database, names[i]);
    transaction.Commit();
    // The counter leaves this connection's own writes out.
    m_seenVersion = -1;
    return ids;
}

const PropertyName* NameCache::NameOf(std::uint16_t id)
{
    if (!m_names.contains(id))
        Refresh();
    const auto found = m_names.find(id);
    return found == m_names.end() ? nullptr : &found->second;
}

const std::map<std::uint16_t, PropertyName>& NameCache::All()
{
    Refresh();
    return m_names;
}
