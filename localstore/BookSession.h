// What the objects of one WABOpen share: the connection to the store, its lock and the text of the
// last failure. Lives as long as any of them.
// Thread: any; one operation at a time.
#pragma once

#include "localstore/ComObject.h"
#include "localstore/Database.h"
#include "localstore/StoredProperties.h"
#include "platform/WindowsHeaders.h"

#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <vector>

// What an entry ID leads to.
struct BookObject
{
    OwnerKind kind;
    std::int64_t id;
    ULONG objectType;
};

class BookSession
{
  public:
    explicit BookSession(Database database) : m_database(std::move(database)) {}

    // Runs an operation under the lock; exceptions become results and are kept for LastError.
    template <typename Body> HRESULT Run(Body&& body) noexcept
    {
        return Guarded([&] {
            const std::lock_guard lock(m_mutex);
            try
            {
                return body();
            }
            catch (const DatabaseError& error)
            {
                m_lastResult = ResultOf(error.Failure());
                m_lastText = error.what();
                throw;
            }
        });
    }

    // The record of the last failure if it is the result asked for; else S_OK and a null record.
    // MAPI_UNICODE decides the form of its texts, which hang on the record.
    HRESULT LastError(HRESULT result, ULONG flags, LPMAPIERROR* error) noexcept;

    // Only inside Run:
    Database& Store() noexcept { return m_database; }
    Bytes EntryIdOfContainer(std::int64_t id);
    std::int64_t ContainerOfRole(BookRole role);
    // MAPI_E_UNKNOWN_ENTRYID for an ID that is none of a book's, MAPI_E_NOT_FOUND for one whose
    // object is gone.
    HRESULT Find(std::span<const std::byte> entryId, BookObject& found);

    // Opens what an entry ID names, the root container for an empty one. Serves every OpenEntry.
    // Takes the lock itself.
    static HRESULT OpenEntry(const std::shared_ptr<BookSession>& session,
                             ULONG entryIdBytes,
                             const ENTRYID* entryId,
                             const IID* iid,
                             ULONG flags,
                             ULONG* objectType,
                             IUnknown** object) noexcept;

  private:
    std::mutex m_mutex;
    Database m_database;
    HRESULT m_lastResult = S_OK;
    std::string m_lastText;
};
