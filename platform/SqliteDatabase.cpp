// The registry store's SQLite layer: opening, the statement cache, result codes.

#include <KORVAutlwin/platform/SqliteDatabase.h>

namespace korva::sqlite {
namespace {

constexpr const char* kControlSql[Database::ControlCount] = {
    "BEGIN IMMEDIATE",
    "BEGIN",
    "COMMIT",
    "ROLLBACK",
};

} // namespace

LONG Win32Result(int rc, bool writing)
{
    if (rc == SQLITE_CONSTRAINT_FOREIGNKEY)
        return ERROR_KEY_DELETED;
    switch (rc & 0xFF) {
    case SQLITE_OK:
    case SQLITE_ROW:
    case SQLITE_DONE:
        return ERROR_SUCCESS;
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
    case SQLITE_IOERR:
    case SQLITE_FULL:
        return writing ? ERROR_CANTWRITE : ERROR_CANTREAD;
    case SQLITE_READONLY:
    case SQLITE_PERM:
    case SQLITE_AUTH:
        return ERROR_ACCESS_DENIED;
    case SQLITE_CORRUPT:
    case SQLITE_NOTADB:
    case SQLITE_FORMAT:
    case SQLITE_ERROR:   // a table or column missing: not our database
        return ERROR_REGISTRY_CORRUPT;
    case SQLITE_CANTOPEN:
        return ERROR_CANTOPEN;
    case SQLITE_NOMEM:
        return ERROR_OUTOFMEMORY;
    default:
        return ERROR_REGISTRY_IO_FAILED;
    }
}

int Database::OpenFile(const std::string& path, Statements statements, int busyTimeout,
                       std::unique_ptr<Database>& result)
{
    sqlite3* db = nullptr;
    int rc = sqlite3_open_v2(path.c_str(), &db, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX,
                             nullptr);
    if (rc != SQLITE_OK) {
        sqlite3_close_v2(db);
        db = nullptr;
        rc = sqlite3_open_v2(path.c_str(), &db, SQLITE_OPEN_READONLY | SQLITE_OPEN_NOMUTEX, nullptr);
        if (rc != SQLITE_OK) {
            sqlite3_close_v2(db);
            return rc;
        }
    }
    sqlite3_extended_result_codes(db, 1);
    sqlite3_busy_timeout(db, busyTimeout);
    int persist = 1;
    sqlite3_file_control(db, "main", SQLITE_FCNTL_PERSIST_WAL, &persist);
    result = std::make_unique<Database>(db, sqlite3_db_readonly(db, "main") == 1, statements);
    return SQLITE_OK;
}

int Database::OpenMemory(Statements statements, std::unique_ptr<Database>& result)
{
    sqlite3* db = nullptr;
    const int rc = sqlite3_open_v2(":memory:", &db, SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX, nullptr);
    if (rc != SQLITE_OK) {
        sqlite3_close_v2(db);
        return rc;
    }
    result = std::make_unique<Database>(db, true, statements);
    return SQLITE_OK;
}

Database::Database(sqlite3* db, bool readOnly, Statements statements)
    : mDb(db), mReadOnly(readOnly), mSql(statements), mStatements(ControlCount + statements.size(), nullptr)
{
}

Database::~Database()
{
    for (sqlite3_stmt* statement : mStatements)
        sqlite3_finalize(statement);
    sqlite3_close_v2(mDb);
}

void Database::Abandon()
{
    mDb = nullptr;
    for (sqlite3_stmt*& statement : mStatements)
        statement = nullptr;
}

void Database::SetBusyTimeout(int milliseconds)
{
    sqlite3_busy_timeout(mDb, milliseconds);
}

int Database::Exec(const char* sql)
{
    return sqlite3_exec(mDb, sql, nullptr, nullptr, nullptr);
}

int Database::ReadInt(const char* sql, int& value)
{
    sqlite3_stmt* statement = nullptr;
    int rc = sqlite3_prepare_v2(mDb, sql, -1, &statement, nullptr);
    if (rc == SQLITE_OK) {
        rc = sqlite3_step(statement);
        if (rc == SQLITE_ROW) {
            value = sqlite3_column_int(statement, 0);
            rc = SQLITE_OK;
        }
    }
    sqlite3_finalize(statement);
    return rc;
}

int Database::Run(Control which)
{
    int rc = SQLITE_OK;
    sqlite3_stmt* statement = mStatements[which] ? mStatements[which] : Prepare(which, kControlSql[which], rc);
    if (!statement)
        return rc;
    rc = sqlite3_step(statement);
    sqlite3_reset(statement);
    return rc == SQLITE_DONE || rc == SQLITE_ROW ? SQLITE_OK : rc;
}

sqlite3_stmt* Database::Prepare(std::size_t slot, const char* sql, int& rc)
{
    rc = sqlite3_prepare_v3(mDb, sql, -1, SQLITE_PREPARE_PERSISTENT, &mStatements[slot], nullptr);
    if (rc != SQLITE_OK) {
        sqlite3_finalize(mStatements[slot]);
        mStatements[slot] = nullptr;
        return nullptr;
    }
    return mStatements[slot];
}

} // namespace korva::sqlite
