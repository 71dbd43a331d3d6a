// What the objects of one opening share: the connection to the store, its lock and the text of the
// last failure. Lives as long as any of them.
// Thread: any; one operation at a time.
#pragma once

#include "localstore/ComObject.h"
#include "localstore/Database.h"
#include "localstore/StoredProperties.h"
#include "platform/ScopedLock.h"
#include "platform/WindowsHeaders.h"

#include <string>

class StoreConnection
{
  public:
    // component: the library's name in the records of LastError.
    StoreConnection(Database database, const wchar_t* component)
        : m_database(std::move(database)), m_component(component)
    {
    }

    // Runs an operation under the lock; exceptions become results and are kept for LastError. The
    // lock does not nest: nothing that takes it may run inside.
    template <typename Body> HRESULT Run(Body&& body) noexcept
    {
        return Guarded([&] {
            const ScopedLock lock(m_lock);
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

  private:
    SRWLOCK m_lock = SRWLOCK_INIT;
    Database m_database;
    const wchar_t* m_component;
    HRESULT m_lastResult = S_OK;
    std::string m_lastText;
};
