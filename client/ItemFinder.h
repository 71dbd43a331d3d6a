// Finds items of a store by what a person typed.
#pragma once

#include "client/ManyItems.h"
#include "client/core/ItemIds.h"
#include "client/core/LetterCase.h"
#include "client/core/Progress.h"
#include "client/core/Unicode.h"

namespace pim
{
// Reads the IDs of the store at most once. Items of a kind that has names are found by them too: an
// ID goes first.
template <typename Kind> class ItemFinder
{
  public:
    using Item = typename Kind::Item;
    // Reads an item's name; null for kinds that are found by their IDs alone.
    using ReadName = std::wstring (*)(Item*);

    ItemFinder(const ItemCollection<Kind>& items,
               const TextOutput& errors,
               ReadName readName = nullptr)
        : m_items(items), m_errors(errors), m_readName(readName)
    {
    }

    struct Found
    {
        std::wstring id;
        Microsoft::WRL::ComPtr<Item> item;
    };

    // Throws: Failure, where no item, or not one alone, is meant.
    Found Find(const std::wstring& typed)
    {
        if (auto item = m_items.Find(typed))
            return {typed, std::move(item)};
        Look();
        std::vector<std::wstring> matches = MatchItemIds(m_ids, typed);
        const wchar_t* what = L"\" is the beginning of several IDs:";
        if (matches.empty())
        {
            matches = MatchNames(typed);
            what = L"\" is the name of several items:";
        }
        if (matches.size() > 1)
            throw Failure{kExitNotFound, L"\"" + OneLine(typed) + what + MatchLines(matches)};
        auto item = matches.empty() ? nullptr : m_items.Find(matches.front());
        if (!item)
            throw Failure{kExitNotFound,
                          std::wstring(L"There is no ") + Kind::kWords.one +
                              (m_readName ? L" with the ID or name \"" : L" with the ID \"") +
                              OneLine(typed) + L"\". pim " + Kind::kCommand +
                              L" list shows the IDs."};
        return {matches.front(), std::move(item)};
    }

  private:
    void Look()
    {
        if (m_hasLooked)
            return;
        m_hasLooked = true;
        const std::wstring what = std::wstring(L"Looking through ") + Kind::kWords.many;
        Progress progress(m_errors, what.c_str());
        m_items.Walk([&](Item* item) {
            m_ids.push_back(ReadItemId(item));
            if (m_readName)
                m_names.push_back(m_readName(item));
            progress.Step();
        });
    }

    // The IDs of the items of that name.
    std::vector<std::wstring> MatchNames(const std::wstring& typed) const
    {
        std::vector<std::wstring> matches;
        for (std::size_t i = 0; i < m_names.size(); ++i)
        {
            if (IsSameIgnoringCase(m_names[i], typed))
                matches.push_back(m_ids[i]);
        }
        return matches;
    }

    const ItemCollection<Kind>& m_items;
    const TextOutput& m_errors;
    const ReadName m_readName;
    bool m_hasLooked = false;
    std::vector<std::wstring> m_ids;
    std::vector<std::wstring> m_names;
};

// Deletes what the command names, as DeleteEach does. deleteFound returns false where the store has
// no longer such an item.
template <typename Kind>
int DeleteItems(const Context& context,
                ItemFinder<Kind>& finder,
                const std::function<bool(const typename ItemFinder<Kind>::Found&)>& deleteFound)
{
    return DeleteEach(context, [&](const std::wstring& typed) {
        const auto found = finder.Find(typed);
        if (!deleteFound(found))
            throw Failure{kExitNotFound,
                          std::wstring(L"The store has no longer ") + Kind::kWords.aOne +
                              L" with the ID \"" + OneLine(found.id) + L"\"."};
        return found.id;
    });
}
} // namespace pim
