// Entries of the embedded address book: mail users, and distribution lists, which are kept with
// their properties alone. Changes wait for SaveChanges.
#pragma once

#include "localstore/BookList.h"
#include "localstore/BookSession.h"
#include "localstore/SavedRow.h"
#include "localstore/WaitingObject.h"

#include <optional>

// An entry as a row of the table book_entry has it.
struct BookEntryRow : SavedRow
{
    std::int64_t container = 0;
    ULONG objectType = MAPI_MAILUSER; // or MAPI_DISTLIST
};

// What ReadBookEntryRow wants of a row, for a SELECT.
inline constexpr char kBookEntryColumns[] =
    "id, entry_id, container, object_type, created, modified";

// The row that the statement stands on. The file may come from anywhere: whatever is no
// distribution list counts as a mail user, and times may be any number.
// Returns: nothing for a row whose entry ID is none that OpenEntry takes.
std::optional<BookEntryRow> ReadBookEntryRow(const Statement& row);

// The properties that the store itself makes for an entry.
void PutBookEntryProperties(const BookEntryRow& entry, PropertyMap& properties);

class BookEntryState : public WaitingObject
{
  public:
    BookEntryState(std::shared_ptr<BookSession> session, BookEntryRow row, bool writable)
        : WaitingObject(std::move(session), writable), m_row(std::move(row))
    {
    }

    PropertyMap Read(const PropertySelection& selection) override;
    bool IsComputed(std::uint16_t id) const override;
    // Without FORCE_SAVE an entry that was changed by others since it was opened is refused with
    // MAPI_E_OBJECT_CHANGED. Nothing is written where nothing waits.
    HRESULT Save(ULONG flags) override;

  private:
    BookEntryRow m_row;
};

class BookUser : public StoreObject<BookEntryState, IMailUser, &IID_IMailUser>
{
  public:
    explicit BookUser(std::shared_ptr<BookEntryState> state) : StoreObject(std::move(state)) {}
};

class BookDistributionList : public BookList<BookEntryState, IDistList, &IID_IDistList>
{
  public:
    explicit BookDistributionList(std::shared_ptr<BookEntryState> state)
        : BookList(std::move(state))
    {
    }
};

// Opens the stored entry of that ID. Inside StoreSession::Run.
HRESULT OpenBookEntry(const std::shared_ptr<BookSession>& session,
                      std::span<const std::byte> entryId,
                      const IID* iid,
                      bool writable,
                      ULONG& objectType,
                      IUnknown** object);

// A new entry of the container, of the type that the template stands for. It comes to be when it is
// saved. Returns: S_OK; MAPI_E_UNKNOWN_ENTRYID for what is no template.
HRESULT NewBookEntry(const std::shared_ptr<BookSession>& session,
                     std::int64_t container,
                     std::span<const std::byte> templateId,
                     IMAPIProp** entry);
