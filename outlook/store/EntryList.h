// The light list of a table: one entry per row, in the order of the rows, with an index beside it,
// so that finding an ID costs the same in a list of any length.
//
// Every text is kept once: most rows are known to clients under their own ID, and all rows of a
// folder share its key.
#pragma once

#include "platform/WindowsHeaders.h"
#include "service/ItemEntry.h"

#include <list>
#include <string>
#include <unordered_map>

class EntryList
{
  public:
    // The texts live as long as the list.
    class Entry
    {
      public:
        Entry(const std::wstring& folderKey,
              const std::wstring& rowEntryID,
              const std::wstring& clientEntryID,
              DATE utcLastModified) noexcept
            : m_folderKey(&folderKey), m_rowEntryID(&rowEntryID), m_clientEntryID(&clientEntryID),
              lastModified(utcLastModified)
        {
        }

        // See ItemEntry.
        const std::wstring& FolderKey() const noexcept { return *m_folderKey; }
        const std::wstring& RowEntryID() const noexcept { return *m_rowEntryID; }
        const std::wstring& ClientEntryID() const noexcept { return *m_clientEntryID; }

      private:
        const std::wstring* m_folderKey;
        const std::wstring* m_rowEntryID;
        const std::wstring* m_clientEntryID;

      public:
        DATE lastModified; // UTC; 0.0 when unknown
    };
    // Stays valid while entries are added, also at the end: entries are only ever added there.
    using Position = std::list<Entry>::iterator;

    EntryList() = default;
    EntryList(const EntryList&) = delete;
    EntryList& operator=(const EntryList&) = delete;

    // Adds an entry at the end and gives its place. With a folder key that is not empty the client
    // ID is mapped to it; the first key of an ID stays. Throws std::bad_alloc, with the list as it
    // was.
    Position Append(const std::wstring& folderKey,
                    const std::wstring& rowEntryID,
                    const std::wstring& clientEntryID,
                    DATE utcLastModified);

    Position Begin() noexcept { return m_entries.begin(); }
    Position End() noexcept { return m_entries.end(); }

    // The first entry with exactly this ID; End() where there is none.
    Position FindByRowEntryID(const std::wstring& id) { return First(id, &FirstEntries::row); }
    Position FindByClientEntryID(const std::wstring& id)
    {
        return First(id, &FirstEntries::client);
    }

    // The folder key that a client ID is mapped to; empty where it is not.
    const std::wstring& FolderKeyOf(const std::wstring& clientEntryID);

    // Replaces *entries by a copy.
    void CopyTo(std::list<ItemEntry>& entries) const;

  private:
    // The first entry that has the text in each role; the end of the list where none has.
    struct FirstEntries
    {
        Position row;
        Position client;
        Position clientInFolder;
    };
    using Texts = std::unordered_map<std::wstring, FirstEntries>;

    Texts::value_type& Keep(const std::wstring& text);
    Position First(const std::wstring& text, Position FirstEntries::*role);

    std::list<Entry> m_entries;
    Texts m_texts;
};
