// Finds the components of one class in a tree, by file order and by ID. Portable.
//
// The tree owns the components. They are enumerated in the order of the last walk, those attached
// since behind them. An index that was never rebuilt has no tree and takes nothing.
#pragma once

#include "icalendar/VCalendar.h"
#include "icalendar/VObject.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

// T is a component with an Id().
template <typename T> class CVComponentIndex
{
  public:
    // Walks the tree of the root, which outlives the index, and lists every closed component of
    // that name and class, in file order. What lies below a component of that name is not walked,
    // also when its class is another. Nothing happens for an empty name or a null root.
    void Rebuild(std::wstring_view componentName, CVObject* root);

    // Gives the component to the first VCALENDAR among the root's children, which is made where
    // there is none, and lists it. False for a null component and for an index without a root; the
    // component is destroyed then.
    bool Attach(std::unique_ptr<T> component);

    // Takes the first component with exactly this ID out of the tree and the list, and destroys it.
    // One that holds zones or events of its own lives on, out of the tree, as long as this index:
    // another index may list those. False when there is no such component.
    bool RemoveByUid(std::wstring_view id);

    // Appends the components in the order of the list.
    void Snapshot(std::vector<T*>& list) const;

    // The first component in that order with exactly this ID; null when there is none. Costs a
    // search in a sorted list, which is made at need.
    T* Find(std::wstring_view id) const;

    std::size_t Size() const noexcept { return m_entries.size(); }

    // To be called after the ID of a listed component has changed.
    void IdsChanged() noexcept { m_sorted.clear(); }

  private:
    struct Entry
    {
        T* component;
        CVObject* parent;
    };

    static constexpr std::size_t kNotFound = static_cast<std::size_t>(-1);

    // Short IDs before long ones, so that most comparisons need no look at the text.
    static bool Less(std::wstring_view left, std::wstring_view right) noexcept
    {
        return left.size() != right.size() ? left.size() < right.size() : left < right;
    }

    std::size_t Position(std::wstring_view id) const;
    void Sort() const;
    static bool HoldsListable(const CVObject& component);

    std::wstring m_componentName;
    CVObject* m_root = nullptr;
    std::vector<Entry> m_entries;
    // Positions in m_entries by ID, equal ones in list order. Made at need: empty or complete.
    mutable std::vector<std::size_t> m_sorted;
    std::vector<std::unique_ptr<CVObject>> m_removed;
};

template <typename T>
void CVComponentIndex<T>::Rebuild(std::wstring_view componentName, CVObject* root)
{
    if (componentName.empty() || !root)
        return;
    m_componentName = componentName;
    m_root = root;
    m_entries.clear();
    m_sorted.clear();

    std::vector<CVObject*> parents{root};
    CVObject* next = root->FirstChild();
    while (!parents.empty())
    {
        if (!next)
        {
            next = parents.back()->NextSibling();
            parents.pop_back();
        }
        else if (next->Name() != m_componentName)
        {
            parents.push_back(next);
            next = next->FirstChild();
        }
        else
        {
            if (T* component = dynamic_cast<T*>(next))
                m_entries.push_back({component, parents.back()});
            next = next->NextSibling();
        }
    }
    m_entries.shrink_to_fit();
}

template <typename T> bool CVComponentIndex<T>::Attach(std::unique_ptr<T> component)
{
    if (!component || !m_root)
        return false;
    CVObject* calendar = m_root->FirstChild();
    while (calendar && calendar->Name() != L"VCALENDAR")
        calendar = calendar->NextSibling();
    if (!calendar)
    {
        auto made = std::make_unique<CVCalendar>();
        calendar = made.get();
        m_root->AddChild(std::move(made));
    }
    m_sorted.clear();
    m_entries.push_back({component.get(), calendar});
    calendar->AddChild(std::move(component));
    return true;
}

template <typename T> bool CVComponentIndex<T>::RemoveByUid(std::wstring_view id)
{
    const std::size_t position = Position(id);
    if (position == kNotFound)
        return false;
    const Entry entry = m_entries[position];
    const bool listable = HoldsListable(*entry.component);
    if (listable)
        m_removed.reserve(m_removed.size() + 1);
    std::unique_ptr<CVObject> removed = entry.parent->RemoveChild(entry.component);
    if (listable && removed)
        m_removed.push_back(std::move(removed));
    m_entries.erase(m_entries.begin() + static_cast<std::ptrdiff_t>(position));
    m_sorted.clear();
    return true;
}

template <typename T> void CVComponentIndex<T>::Snapshot(std::vector<T*>& list) const
{
    for (const Entry& entry : m_entries)
        list.push_back(entry.component);
}

template <typename T> T* CVComponentIndex<T>::Find(std::wstring_view id) const
{
    const std::size_t position = Position(id);
    return position == kNotFound ? nullptr : m_entries[position].component;
}

template <typename T> std::size_t CVComponentIndex<T>::Position(std::wstring_view id) const
{
    if (m_sorted.empty())
        Sort();
    const auto idAt = [this](std::size_t position) -> decltype(auto) {
        return m_entries[position].component->Id();
    };
    const auto found = std::ranges::lower_bound(m_sorted, id, Less, idAt);
    return found != m_sorted.end() && idAt(*found) == id ? *found : kNotFound;
}

template <typename T> void CVComponentIndex<T>::Sort() const
{
    // Components may make the text of their ID at every call.
    std::vector<std::wstring> ids;
    ids.reserve(m_entries.size());
    for (const Entry& entry : m_entries)
        ids.push_back(entry.component->Id());
    m_sorted.resize(m_entries.size());
    for (std::size_t i = 0; i < m_sorted.size(); ++i)
        m_sorted[i] = i;
    std::ranges::stable_sort(
        m_sorted, Less, [&ids](std::size_t position) { return std::wstring_view(ids[position]); });
}

// Whether anything below the component may be listed by an index, this one or another.
template <typename T> bool CVComponentIndex<T>::HoldsListable(const CVObject& component)
{
    std::vector<const CVObject*> parents{&component};
    const CVObject* next = component.FirstChild();
    while (next || parents.size() > 1)
    {
        if (!next)
        {
            next = parents.back()->NextSibling();
            parents.pop_back();
        }
        else if (next->Name() == L"VEVENT" || next->Name() == L"VTIMEZONE")
        {
            return true;
        }
        else
        {
            parents.push_back(next);
            next = next->FirstChild();
        }
    }
    return false;
}
