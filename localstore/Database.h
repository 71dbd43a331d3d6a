// Owners of a connection to the store database, its statements and its transactions.
//
// Units:   text in and out of this header is UTF-8 unless it is a path.
// Errors:  DatabaseError, and std::bad_alloc where memory ran out. Nothing is half done: a
//          transaction that was not committed leaves no trace.
// Thread:  one thread at a time per Database; several processes may have the same file open.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <unordered_map>

struct sqlite3;
struct sqlite3_stmt;

enum class DatabaseFailure
{
    CannotOpen, // the file or its folder cannot be made or opened
    NotAStore,  // a database, but of another program
    NewerStore, // written by a newer version of this software
    Corrupt,    // not a database, or a damaged one
    ReadOnly,   // the file or its folder refuses writing
    Busy,       // another process held the file longer than the busy timeout
    Full,       // the disk is full
    Disk,       // reading or writing failed
    Constraint, // a value that the schema does not allow
    Gone,       // another one deleted the object meanwhile
    Changed,    // another one changed the object meanwhile
    Other
};

class DatabaseError : public std::runtime_error
{
  public:
    DatabaseError(DatabaseFailure failure, const std::string& text)
        : std::runtime_error(text), m_failure(failure)
    {
    }
    DatabaseFailure Failure() const noexcept { return m_failure; }

  private:
    DatabaseFailure m_failure;
};

class Database;
struct DatabaseConnection;

// A prepared statement, taken from the connection's cache and given back at the end of the scope.
// Must not outlive its Database.
class Statement
{
  public:
    Statement(Statement&& other) noexcept;
    Statement& operator=(Statement&&) = delete;
    ~Statement();

    // Parameters count from 1 and are copied.
    Statement& Bind(int parameter, std::int64_t value);
    Statement& Bind(int parameter, std::string_view text);
    Statement& Bind(int parameter, std::span<const std::byte> bytes);
    Statement& BindNull(int parameter);

    // True while there is a row.
    bool Step();
    // Runs a statement to its end and makes it ready for new parameters.
    void Run();
    // Makes the statement ready to run again; parameters stay.
    void Reset() noexcept;

    // Columns of the current row count from 0. Spans and views live until the next Step or Reset.
    bool IsNull(int column) const noexcept;
    bool IsInteger(int column) const noexcept;
    bool IsBlob(int column) const noexcept;
    std::int64_t Integer(int column) const noexcept;
    std::span<const std::byte> Blob(int column) const;
    std::string_view Text(int column) const;

  private:
    friend class Database;
    Statement(DatabaseConnection& connection, std::string sql, sqlite3_stmt* handle) noexcept;
    void Check(int code) const;

    DatabaseConnection* m_connection;
    std::string m_sql;
    sqlite3_stmt* m_handle;
};

class Database
{
  public:
    // How long a writer waits for another process before it fails with Busy.
    static constexpr int kBusyTimeoutMs = 10000;

    // Opens the file, which is made (with its folder) when missing and allowed. A file that refuses
    // writing is opened for reading. The schema is not looked at: see StoreSchema.h. The path
    // ":memory:" gives a database of this connection alone.
    static Database Open(const std::wstring& path, bool mayCreate);

    Database(Database&&) noexcept;
    Database& operator=(Database&&) = delete;
    ~Database();

    // Whether it could be opened for reading only.
    bool IsReadOnly() const noexcept;
    // Runs statements whose rows do not matter. Throws DatabaseError.
    void Execute(const std::string& sql);
    // One statement, to be run many times. Throws DatabaseError.
    Statement Prepare(std::string_view sql);
    // The one integer that a query gives; 0 when it gives no row.
    std::int64_t QueryInteger(std::string_view sql);
    std::int64_t LastInsertId() const noexcept;
    // Rows that the last statement changed.
    std::int64_t Changes() const noexcept;
    // Copies every committed change from the log into the database file.
    void Checkpoint();

    // Write-ahead log with full flushing: what Commit returned from survives a kill and a power
    // cut.
    void UseWriteAheadLog();

  private:
    friend class Transaction;
    explicit Database(std::unique_ptr<DatabaseConnection> connection) noexcept;

    std::unique_ptr<DatabaseConnection> m_connection;
};

// One write transaction; rolled back unless Commit returned. The write lock is taken at once, so a
// transaction that began cannot fail half way for another process's sake.
class Transaction
{
  public:
    explicit Transaction(Database& database);
    ~Transaction();
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;

    // Throws DatabaseError; the changes are then rolled back at the end.
    void Commit();

  private:
    Database& m_database;
    bool m_open = true;
};
