#include "localstore/Database.h"

#include "platform/WindowsHeaders.h"
#include "service/TextConversions.h"

#include <sqlite3.h>

#include <new>
#include <utility>

namespace
{

struct FailureOfCode
{
    int code;
    DatabaseFailure failure;
};

constexpr FailureOfCode kFailures[] = {
    {SQLITE_CANTOPEN, DatabaseFailure::CannotOpen},
    {SQLITE_PERM, DatabaseFailure::CannotOpen},
    {SQLITE_NOTADB, DatabaseFailure::Corrupt},
    {SQLITE_CORRUPT, DatabaseFailure::Corrupt},
    {SQLITE_FORMAT, DatabaseFailure::Corrupt},
    {SQLITE_READONLY, DatabaseFailure::ReadOnly},
    {SQLITE_BUSY, DatabaseFailure::Busy},
    {SQLITE_LOCKED, DatabaseFailure::Busy},
    {SQLITE_PROTOCOL, DatabaseFailure::Busy},
    {SQLITE_FULL, DatabaseFailure::Full},
    {SQLITE_IOERR, DatabaseFailure::Disk},
    {SQLITE_CONSTRAINT, DatabaseFailure::Constraint},
};

[[noreturn]] void Throw(int code, sqlite3* handle)
{
    const int primary = code & 0xFF;
    if (primary == SQLITE_NOMEM)
        throw std::bad_alloc();
    DatabaseFailure failure = DatabaseFailure::Other;
    for (const FailureOfCode& row : kFailures)
    {
        if (row.code == primary)
            failure = row.failure;
    }
    throw DatabaseError(failure, handle ? sqlite3_errmsg(handle) : sqlite3_errstr(code));
}

// Unknown results are fine: the open that follows tells what is wrong.
void MakeParentFolder(const std::wstring& path)
{
    const size_t slash = path.find_last_of(L"\\/");
    if (slash != std::wstring::npos && slash > 0)
        SHCreateDirectoryExW(nullptr, path.substr(0, slash).c_str(), nullptr);
}

// The mark says what the user wants, also where the rights of the process would go further.
bool IsMarkedReadOnly(const std::wstring& path)
{
    const DWORD attributes = GetFileAttributesW(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY) != 0;
}

} // namespace

struct DatabaseConnection
{
    sqlite3* handle = nullptr;
    // Statements that nobody uses, by their text. One text in use twice gets a second statement.
    std::unordered_map<std::string, sqlite3_stmt*> idle;

    ~DatabaseConnection()
    {
        for (const auto& [sql, statement] : idle)
            sqlite3_finalize(statement);
        sqlite3_close(handle);
    }

    void GiveBack(std::string&& sql, sqlite3_stmt* statement) noexcept
    {
        // Callers choose the columns of tables, and with them the texts.
        constexpr size_t kMostIdle = 200;
        try
        {
            if (idle.size() < kMostIdle && idle.try_emplace(std::move(sql), statement).second)
                return;
        }
        catch (...)
        {
            // No memory to remember it: it is made anew at its next use.
        }
        sqlite3_finalize(statement);
    }
};

Statement::Statement(DatabaseConnection& connection, std::string sql, sqlite3_stmt* handle) noexcept
    : m_connection(&connection), m_sql(std::move(sql)), m_handle(handle)
{
}

Statement::Statement(Statement&& other) noexcept
    : m_connection(other.m_connection), m_sql(std::move(other.m_sql)),
      m_handle(std::exchange(other.m_handle, nullptr))
{
}

Statement::~Statement()
{
    if (!m_handle)
        return;
    sqlite3_reset(m_handle);
    sqlite3_clear_bindings(m_handle);
    m_connection->GiveBack(std::move(m_sql), m_handle);
}

void Statement::Check(int code) const
{
    if (code != SQLITE_OK)
        Throw(code, sqlite3_db_handle(m_handle));
}

Statement& Statement::Bind(int parameter, std::int64_t value)
{
    Check(sqlite3_bind_int64(m_handle, parameter, value));
    return *this;
}

Statement& Statement::Bind(int parameter, std::string_view text)
{
    Check(sqlite3_bind_text64(m_handle,
                              parameter,
                              text.data() ? text.data() : "",
                              text.size(),
                              SQLITE_TRANSIENT,
                              SQLITE_UTF8));
    return *this;
}

Statement& Statement::Bind(int parameter, std::span<const std::byte> bytes)
{
    // A null address would bind NULL; an empty value is a value.
    Check(bytes.empty() ? sqlite3_bind_zeroblob(m_handle, parameter, 0)
                        : sqlite3_bind_blob64(
                              m_handle, parameter, bytes.data(), bytes.size(), SQLITE_TRANSIENT));
    return *this;
}

Statement& Statement::BindNull(int parameter)
{
    Check(sqlite3_bind_null(m_handle, parameter));
    return *this;
}

bool Statement::Step()
{
    const int code = sqlite3_step(m_handle);
    if (code == SQLITE_ROW)
        return true;
    if (code != SQLITE_DONE)
        Throw(code, sqlite3_db_handle(m_handle));
    return false;
}

void Statement::Run()
{
    while (Step())
    {
    }
    sqlite3_reset(m_handle);
}

void Statement::Reset() noexcept
{
    sqlite3_reset(m_handle);
}

bool Statement::IsNull(int column) const noexcept
{
    return sqlite3_column_type(m_handle, column) == SQLITE_NULL;
}

bool Statement::IsInteger(int column) const noexcept
{
    return sqlite3_column_type(m_handle, column) == SQLITE_INTEGER;
}

bool Statement::IsBlob(int column) const noexcept
{
    return sqlite3_column_type(m_handle, column) == SQLITE_BLOB;
}

std::int64_t Statement::Integer(int column) const noexcept
{
    return sqlite3_column_int64(m_handle, column);
}

std::span<const std::byte> Statement::Blob(int column) const
{
    const void* bytes = sqlite3_column_blob(m_handle, column);
    const int size = sqlite3_column_bytes(m_handle, column);
    if (!bytes)
    {
        if (sqlite3_errcode(sqlite3_db_handle(m_handle)) == SQLITE_NOMEM)
            throw std::bad_alloc();
        return {};
    }
    return {static_cast<const std::byte*>(bytes), static_cast<size_t>(size)};
}

std::string_view Statement::Text(int column) const
{
    const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(m_handle, column));
    const int size = sqlite3_column_bytes(m_handle, column);
    return text ? std::string_view(text, static_cast<size_t>(size)) : std::string_view();
}

Database::Database(std::unique_ptr<DatabaseConnection> connection) noexcept
    : m_connection(std::move(connection))
{
}

Database::Database(Database&&) noexcept = default;
Database::~Database() = default;

Database Database::Open(const std::wstring& path, bool mayCreate)
{
    if (path.empty() || path.find(L'\0') != std::wstring::npos)
        throw DatabaseError(DatabaseFailure::CannotOpen, "the path of the store is empty");
    if (mayCreate && path != L":memory:")
        MakeParentFolder(path);

    auto connection = std::make_unique<DatabaseConnection>();
    int flags = SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_EXRESCODE | SQLITE_OPEN_PRIVATECACHE;
    if (IsMarkedReadOnly(path))
        flags |= SQLITE_OPEN_READONLY;
    else
        flags |= SQLITE_OPEN_READWRITE | (mayCreate ? SQLITE_OPEN_CREATE : 0);
    const int code =
        sqlite3_open_v2(Utf8FromWide(path).c_str(), &connection->handle, flags, nullptr);
    if (code != SQLITE_OK)
        Throw(code, connection->handle);

    // The file may come from anywhere: its schema gets no powers beyond storing.
    sqlite3_db_config(connection->handle, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
    sqlite3_db_config(connection->handle, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
    sqlite3_busy_timeout(connection->handle, kBusyTimeoutMs);

    Database database(std::move(connection));
    database.Execute("PRAGMA cell_size_check = ON");
    database.Execute("PRAGMA foreign_keys = ON");
    database.Execute("PRAGMA synchronous = FULL");
    // KiB, filled as pages are read. The usual 2 MiB do not hold the index of 100,000 entry IDs, so
    // that nearly every message that is opened would have a page read for it.
    database.Execute("PRAGMA cache_size = -8192");
    return database;
}

bool Database::IsReadOnly() const noexcept
{
    return sqlite3_db_readonly(m_connection->handle, "main") == 1;
}

void Database::Execute(const std::string& sql)
{
    const int code = sqlite3_exec(m_connection->handle, sql.c_str(), nullptr, nullptr, nullptr);
    if (code != SQLITE_OK)
        Throw(code, m_connection->handle);
}

Statement Database::Prepare(std::string_view sql)
{
    std::string key(sql);
    if (const auto found = m_connection->idle.find(key); found != m_connection->idle.end())
    {
        sqlite3_stmt* handle = found->second;
        m_connection->idle.erase(found);
        return Statement(*m_connection, std::move(key), handle);
    }
    sqlite3_stmt* handle = nullptr;
    const int code = sqlite3_prepare_v3(m_connection->handle,
                                        key.c_str(),
                                        static_cast<int>(key.size()),
                                        SQLITE_PREPARE_PERSISTENT,
                                        &handle,
                                        nullptr);
    if (code != SQLITE_OK)
        Throw(code, m_connection->handle);
    return Statement(*m_connection, std::move(key), handle);
}

std::int64_t Database::QueryInteger(std::string_view sql)
{
    Statement statement = Prepare(sql);
    return statement.Step() ? statement.Integer(0) : 0;
}

std::int64_t Database::LastInsertId() const noexcept
{
    return sqlite3_last_insert_rowid(m_connection->handle);
}

std::int64_t Database::Changes() const noexcept
{
    return sqlite3_changes64(m_connection->handle);
}

void Database::Checkpoint()
{
    const int code = sqlite3_wal_checkpoint_v2(
        m_connection->handle, "main", SQLITE_CHECKPOINT_TRUNCATE, nullptr, nullptr);
    if (code != SQLITE_OK)
        Throw(code, m_connection->handle);
}

void Database::UseWriteAheadLog()
{
    const auto inLogMode = [this] {
        Statement mode = Prepare("PRAGMA journal_mode");
        return mode.Step() && mode.Text(0) == "wal";
    };
    if (IsReadOnly() || inLogMode())
        return;
    // The change of mode needs the file alone for a moment and does not always wait for it.
    const ULONGLONG giveUpAt = GetTickCount64() + kBusyTimeoutMs;
    for (;;)
    {
        try
        {
            Execute("PRAGMA journal_mode = WAL");
            return;
        }
        catch (const DatabaseError& error)
        {
            if (error.Failure() != DatabaseFailure::Busy || GetTickCount64() >= giveUpAt)
                throw;
        }
        Sleep(20);
    }
}

Transaction::Transaction(Database& database) : m_database(database)
{
    m_database.Execute("BEGIN IMMEDIATE");
}

Transaction::~Transaction()
{
    // Some failures end the transaction by themselves; a rollback is then refused, harmlessly.
    if (m_open)
        sqlite3_exec(m_database.m_connection->handle, "ROLLBACK", nullptr, nullptr, nullptr);
}

void Transaction::Commit()
{
    m_database.Execute("COMMIT");
    m_open = false;
}
