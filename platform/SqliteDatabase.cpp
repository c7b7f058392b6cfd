// The registry store's SQLite layer: opening, the statement cache, result codes.

#include <KORVAutlwin/platform/SqliteDatabase.h>

#include <atomic>
#include <cstdlib>

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
    mIndex = nullptr;
    for (sqlite3_stmt*& statement : mStatements)
        statement = nullptr;
}

void Database::SetBusyTimeout(int milliseconds)
{
    sqlite3_busy_timeout(mDb, milliseconds);
}

void Database::MarkDamaged()
{
    mDamaged = true;
    if (mDb)
        sqlite3_db_config(mDb, SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
}

bool Database::WatchCommits()
{
    std::string mode;
    if (mReadOnly || ReadText("PRAGMA journal_mode", mode) != SQLITE_OK || mode != "wal")
        return false;
    sqlite3_file* file = nullptr;
    if (sqlite3_file_control(mDb, "main", SQLITE_FCNTL_FILE_POINTER, &file) != SQLITE_OK || !file ||
        !file->pMethods || file->pMethods->iVersion < 2 || !file->pMethods->xShmMap)
        return false;
    // The first region, which the connection has mapped already: nothing is created here.
    void volatile* region = nullptr;
    if (file->pMethods->xShmMap(file, 0, 32768, 0, &region) != SQLITE_OK || !region)
        return false;
    mIndex = static_cast<const volatile std::uint32_t*>(region);
    return true;
}

bool Database::ReadStamp(Stamp& stamp) const
{
    if (!mIndex)
        return false;
    // The header stands twice; a writer puts the second copy first, a reader
    // reads the first copy first: a difference is a write under way.
    Stamp second;
    for (std::size_t i = 0; i < stamp.size(); ++i)
        stamp[i] = mIndex[i];
    std::atomic_thread_fence(std::memory_order_seq_cst);
    for (std::size_t i = 0; i < second.size(); ++i)
        second[i] = mIndex[second.size() + i];
    const bool initialised = reinterpret_cast<const volatile unsigned char*>(mIndex)[12] != 0;
    return initialised && stamp == second;
}

int Database::Checkpoint()
{
    int rc = Exec("PRAGMA synchronous = FULL");
    if (rc == SQLITE_OK)
        rc = Note(sqlite3_wal_checkpoint_v2(mDb, "main", SQLITE_CHECKPOINT_FULL, nullptr, nullptr));
    if ((rc & 0xFF) == SQLITE_BUSY) {
        // A reader of another process still needs the WAL: make the WAL itself durable.
        sqlite3_file* wal = nullptr;
        rc = sqlite3_file_control(mDb, "main", SQLITE_FCNTL_JOURNAL_POINTER, &wal);
        if (rc == SQLITE_OK && wal && wal->pMethods)
            rc = wal->pMethods->xSync(wal, SQLITE_SYNC_FULL);
    }
    const int restored = Exec("PRAGMA synchronous = NORMAL");
    return rc == SQLITE_OK ? restored : rc;
}

int Database::Exec(const char* sql)
{
    return Note(sqlite3_exec(mDb, sql, nullptr, nullptr, nullptr));
}

int Database::ReadInt(const char* sql, int& value)
{
    std::string text;
    const int rc = ReadText(sql, text);
    if (rc == SQLITE_OK)
        value = std::atoi(text.c_str());
    return rc;
}

int Database::ReadText(const char* sql, std::string& value)
{
    sqlite3_stmt* statement = nullptr;
    int rc = Note(sqlite3_prepare_v2(mDb, sql, -1, &statement, nullptr));
    if (rc == SQLITE_OK) {
        rc = Note(sqlite3_step(statement));
        if (rc == SQLITE_ROW) {
            const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement, 0));
            value = text ? text : "";
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
    rc = Note(sqlite3_step(statement));
    sqlite3_reset(statement);
    return rc == SQLITE_DONE || rc == SQLITE_ROW ? SQLITE_OK : rc;
}

sqlite3_stmt* Database::Prepare(std::size_t slot, const char* sql, int& rc)
{
    rc = Note(sqlite3_prepare_v3(mDb, sql, -1, SQLITE_PREPARE_PERSISTENT, &mStatements[slot], nullptr));
    if (rc != SQLITE_OK) {
        sqlite3_finalize(mStatements[slot]);
        mStatements[slot] = nullptr;
        return nullptr;
    }
    return mStatements[slot];
}

} // namespace korva::sqlite
