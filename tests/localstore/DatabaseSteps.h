// What databases do, as a number that is the same in every run: a measure of cost without a clock.
#pragma once

#include <sqlite3.h>

#include <cstdint>

// Counts the steps of the connections that are opened while it lives and end before it. One at a
// time.
class DatabaseSteps
{
  public:
    DatabaseSteps()
    {
        s_count = 0;
        sqlite3_auto_extension(reinterpret_cast<void (*)()>(&Watch));
    }
    ~DatabaseSteps() { sqlite3_cancel_auto_extension(reinterpret_cast<void (*)()>(&Watch)); }
    DatabaseSteps(const DatabaseSteps&) = delete;
    DatabaseSteps& operator=(const DatabaseSteps&) = delete;

    // In hundreds of instructions of SQLite's machine.
    std::int64_t Hundreds() const noexcept { return s_count; }

  private:
    static int Watch(sqlite3* connection, char**, const sqlite3_api_routines*)
    {
        sqlite3_progress_handler(connection, 100, &Count, nullptr);
        return SQLITE_OK;
    }
    static int Count(void*)
    {
        ++s_count;
        return 0; // go on
    }

    static inline std::int64_t s_count = 0;
};
