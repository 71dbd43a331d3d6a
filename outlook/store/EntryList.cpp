#include "outlook/store/EntryList.h"

namespace
{
const std::wstring kNoKey;
}

EntryList::Position EntryList::Append(const std::wstring& folderKey,
                                      const std::wstring& rowEntryID,
                                      const std::wstring& clientEntryID,
                                      DATE utcLastModified)
{
    auto& folder = Keep(folderKey);
    auto& row = Keep(rowEntryID);
    auto& client = Keep(clientEntryID);
    const Position place =
        m_entries.emplace(m_entries.end(), folder.first, row.first, client.first, utcLastModified);

    const auto setFirst = [&](Position& first) {
        if (first == m_entries.end())
            first = place;
    };
    setFirst(row.second.row);
    setFirst(client.second.client);
    if (!folderKey.empty())
        setFirst(client.second.clientInFolder);
    return place;
}

EntryList::Texts::value_type& EntryList::Keep(const std::wstring& text)
{
    const Position none = m_entries.end();
    return *m_texts.try_emplace(text, FirstEntries{none, none, none}).first;
}

EntryList::Position EntryList::First(const std::wstring& text, Position FirstEntries::*role)
{
    const auto found = m_texts.find(text);
    return found == m_texts.end() ? m_entries.end() : found->second.*role;
}

const std::wstring& EntryList::FolderKeyOf(const std::wstring& clientEntryID)
{
    const Position first = First(clientEntryID, &FirstEntries::clientInFolder);
    return first == m_entries.end() ? kNoKey : first->FolderKey();
}

void EntryList::CopyTo(std::list<ItemEntry>& entries) const
{
    std::list<ItemEntry> copy;
    for (const Entry& entry : m_entries)
        copy.push_back(
            {entry.FolderKey(), entry.RowEntryID(), entry.ClientEntryID(), entry.lastModified});
    entries.swap(copy);
}
