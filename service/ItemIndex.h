// Finds items of a list by their ID without walking it: an index of hashes that refers into the
// list. It tells candidates, the caller compares. Portable.
//
// Costs 8 bytes per item and one search in a sorted list per lookup, however many items share an
// ID.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <set>
#include <string_view>
#include <vector>

class ItemIndex
{
  public:
    static constexpr std::size_t kNotFound = static_cast<std::size_t>(-1);

    // Forgets everything.
    void Clear() noexcept;

    // Takes the ID of the item behind those taken so far. Lookups come after the last Append.
    void Append(std::wstring_view id);

    // Gives back the memory that was set aside for more of them.
    void ShrinkToFit() { m_entries.shrink_to_fit(); }

    // The item at that position has another ID from now on. Its former ID stays a candidate that
    // the caller's comparison refuses.
    void Change(std::size_t position, std::wstring_view id);

    // The first position at or behind the start whose item may have that ID and for which
    // matches(position) says so; kNotFound when there is none.
    template <typename Matches>
    std::size_t Find(std::wstring_view id, std::size_t start, Matches matches)
    {
        Sort();
        const std::uint32_t hash = Hash(id);
        auto known = std::ranges::lower_bound(m_entries, Entry(hash, start));
        auto changed = m_changes.lower_bound(Entry(hash, start));
        for (;;)
        {
            const bool isKnown = known != m_entries.end() && HashOf(*known) == hash;
            const bool isChanged = changed != m_changes.end() && HashOf(*changed) == hash;
            if (!isKnown && !isChanged)
                return kNotFound;
            const std::uint64_t entry =
                isKnown && (!isChanged || *known <= *changed) ? *known++ : *changed++;
            if (matches(PositionOf(entry)))
                return PositionOf(entry);
        }
    }

  private:
    // The hash in the upper half, so that equal hashes stand together in the order of the list.
    static std::uint32_t Hash(std::wstring_view id) noexcept;
    static std::uint64_t Entry(std::uint32_t hash, std::size_t position) noexcept
    {
        return std::uint64_t{hash} << 32 | static_cast<std::uint32_t>(position);
    }
    static std::uint32_t HashOf(std::uint64_t entry) noexcept
    {
        return static_cast<std::uint32_t>(entry >> 32);
    }
    static std::size_t PositionOf(std::uint64_t entry) noexcept
    {
        return static_cast<std::uint32_t>(entry);
    }

    void Sort();

    std::vector<std::uint64_t> m_entries;
    std::set<std::uint64_t> m_changes;
    bool m_sorted = true;
};
