#include "service/ItemIndex.h"

#include <functional>

void ItemIndex::Clear() noexcept
{
    m_entries.clear();
    m_changes.clear();
    m_sorted = true;
}

void ItemIndex::Append(std::wstring_view id)
{
    m_entries.push_back(Entry(Hash(id), m_entries.size()));
    m_sorted = false;
}

void ItemIndex::Change(std::size_t position, std::wstring_view id)
{
    m_changes.insert(Entry(Hash(id), position));
}

std::uint32_t ItemIndex::Hash(std::wstring_view id) noexcept
{
    const std::uint64_t hash = std::hash<std::wstring_view>()(id);
    return static_cast<std::uint32_t>(hash ^ hash >> 32);
}

void ItemIndex::Sort()
{
    if (m_sorted)
        return;
    std::ranges::sort(m_entries);
    m_sorted = true;
}
