// What is read within its life stands as at the first read, whoever writes meanwhile; and the locks
// that each statement takes by itself elsewhere are taken once.
// Assumes: no transaction and no other snapshot of that connection begins or lives within it.
#pragma once

#include "localstore/Database.h"

class Snapshot
{
  public:
    explicit Snapshot(Database& database) : m_database(database)
    {
        m_database.Prepare("BEGIN").Run();
    }
    ~Snapshot()
    {
        try
        {
            m_database.Prepare("ROLLBACK").Run();
        }
        catch (...)
        {
            // The connection ended it by itself, as some failures do.
        }
    }
    Snapshot(const Snapshot&) = delete;
    Snapshot& operator=(const Snapshot&) = delete;

  private:
    Database& m_database;
};
