// The registry store on SQLite. One database per root; keys are rows of `keys`
// (id, parent, name), values rows of `vals` (key, name, type, data). Key ids come
// from AUTOINCREMENT and are never reused, so a handle on a deleted key can tell
// that its key is gone even after a key of the same name was created again.

#include <KORVAutlwin/platform/Registry.h>

#include <KORVAutlwin/platform/TsUnicode.h>

#include <sqlite3.h>

#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <mutex>
#include <string_view>
#include <unordered_map>
#include <vector>

#include <pthread.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

namespace korva {
namespace {

enum Hive { HiveUser = 0, HiveMachine = 1, HiveCount = 2 };

constexpr sqlite3_int64 kRootNode = 1;
constexpr std::size_t kMaxKeyNameLength = 255;
constexpr int kSchemaVersion = 1;
constexpr int kDefaultBusyTimeout = 5000;
constexpr REGSAM kWriteRights = KEY_SET_VALUE | KEY_CREATE_SUB_KEY | KEY_CREATE_LINK | DELETE | WRITE_DAC | WRITE_OWNER;

constexpr const char* kSchema =
    "CREATE TABLE IF NOT EXISTS keys("
    " id INTEGER PRIMARY KEY AUTOINCREMENT,"
    " parent INTEGER REFERENCES keys(id),"
    " name TEXT NOT NULL COLLATE NOCASE,"
    " UNIQUE(parent, name));"
    "CREATE TABLE IF NOT EXISTS vals("
    " key INTEGER NOT NULL REFERENCES keys(id) ON DELETE CASCADE,"
    " name TEXT NOT NULL COLLATE NOCASE,"
    " type INTEGER NOT NULL,"
    " data BLOB NOT NULL,"
    " PRIMARY KEY(key, name)) WITHOUT ROWID;"
    "INSERT OR IGNORE INTO keys(id, parent, name) VALUES(1, NULL, '');"
    "PRAGMA user_version = 1;";

enum Stmt {
    FindChild,
    KeyExists,
    InsertKey,
    HasChildren,
    DeleteKeyRow,
    EnumKey,
    KeyInfo,
    ValueInfo,
    GetValue,
    SetValue,
    DeleteValue,
    EnumValue,
    Begin,
    BeginRead,
    Commit,
    Rollback,
    StmtCount
};

constexpr const char* kSql[StmtCount] = {
    "SELECT id FROM keys WHERE parent = ?1 AND name = ?2",
    "SELECT 1 FROM keys WHERE id = ?1",
    "INSERT INTO keys(parent, name) VALUES(?1, ?2)",
    "SELECT 1 FROM keys WHERE parent = ?1 LIMIT 1",
    "DELETE FROM keys WHERE id = ?1",
    "SELECT name FROM keys WHERE parent = ?1 ORDER BY name LIMIT 1 OFFSET ?2",
    "SELECT count(*), coalesce(max(length(CAST(name AS BLOB))), 0) FROM keys WHERE parent = ?1",
    "SELECT count(*), coalesce(max(length(CAST(name AS BLOB))), 0), coalesce(max(length(data)), 0)"
    " FROM vals WHERE key = ?1",
    "SELECT type, data FROM vals WHERE key = ?1 AND name = ?2",
    "INSERT INTO vals(key, name, type, data) VALUES(?1, ?2, ?3, ?4)"
    " ON CONFLICT(key, name) DO UPDATE SET type = excluded.type, data = excluded.data",
    "DELETE FROM vals WHERE key = ?1 AND name = ?2",
    "SELECT name, type, data FROM vals WHERE key = ?1 ORDER BY name LIMIT 1 OFFSET ?2",
    "BEGIN IMMEDIATE",
    "BEGIN",
    "COMMIT",
    "ROLLBACK",
};

LONG FromSqlite(int rc, bool writing)
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

// A fork leaves the parent's SQLite connections unusable in the child; the
// child abandons them (without closing, which could disturb the parent's locks).
bool gForked = false;

void MakeDirectories(const std::string& path)
{
    for (std::size_t slash = path.find('/', 1); slash != std::string::npos; slash = path.find('/', slash + 1))
        ::mkdir(path.substr(0, slash).c_str(), 0755);
}

std::string HivePath(Hive hive)
{
    const char* dir = std::getenv("KORVA_REGISTRY_DIR");
    if (dir && *dir)
        return std::string(dir) + (hive == HiveUser ? "/HKCU.sqlite" : "/HKLM.sqlite");
    if (hive == HiveMachine)
        return "/var/lib/Tessmark/registry.sqlite";
    std::string base;
    const char* config = std::getenv("XDG_CONFIG_HOME");
    if (config && *config == '/') {
        base = config;
    } else {
        const char* home = std::getenv("HOME");
        if (!home || !*home) {
            const passwd* user = ::getpwuid(::getuid());
            home = user ? user->pw_dir : "/tmp";
        }
        base = std::string(home) + "/.config";
    }
    return base + "/Tessmark/registry.sqlite";
}

// One open database with its prepared statements.
class Connection
{
public:
    Connection(sqlite3* db, bool readOnly, bool absent, std::string path)
        : mDb(db), mReadOnly(readOnly), mAbsent(absent), mPath(std::move(path))
    {
    }
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;
    ~Connection()
    {
        for (sqlite3_stmt* statement : mStatements)
            sqlite3_finalize(statement);
        sqlite3_close_v2(mDb);
    }
    // After a fork: forget without touching the file.
    void Abandon()
    {
        mDb = nullptr;
        for (sqlite3_stmt*& statement : mStatements)
            statement = nullptr;
    }

    sqlite3* Db() const { return mDb; }
    bool ReadOnly() const { return mReadOnly; }
    // An empty stand-in for a root whose file does not exist.
    bool Absent() const { return mAbsent; }
    const std::string& Path() const { return mPath; }

    // The cached statement, prepared on first use; null with `rc` set on failure.
    sqlite3_stmt* Get(Stmt which, int& rc)
    {
        if (!mStatements[which]) {
            rc = sqlite3_prepare_v3(mDb, kSql[which], -1, SQLITE_PREPARE_PERSISTENT, &mStatements[which], nullptr);
            if (rc != SQLITE_OK) {
                sqlite3_finalize(mStatements[which]);
                mStatements[which] = nullptr;
                return nullptr;
            }
        }
        return mStatements[which];
    }

private:
    sqlite3* mDb;
    bool mReadOnly;
    bool mAbsent;
    std::string mPath;
    sqlite3_stmt* mStatements[StmtCount] = {};
};

// One use of a cached statement; resets it when done.
class Query
{
public:
    Query(Connection& connection, Stmt which) : mStatement(connection.Get(which, mPrepare)) {}
    Query(const Query&) = delete;
    Query& operator=(const Query&) = delete;
    ~Query()
    {
        if (mStatement)
            sqlite3_reset(mStatement);
    }

    void Bind(int index, sqlite3_int64 value)
    {
        if (mStatement)
            sqlite3_bind_int64(mStatement, index, value);
    }
    void Bind(int index, std::string_view text)
    {
        if (mStatement)
            sqlite3_bind_text(mStatement, index, text.data() ? text.data() : "", static_cast<int>(text.size()),
                              SQLITE_STATIC);
    }
    void BindBlob(int index, const void* data, DWORD size)
    {
        if (mStatement)
            sqlite3_bind_blob64(mStatement, index, size ? data : "", size, SQLITE_STATIC);
    }
    // SQLITE_ROW, SQLITE_DONE or an error.
    int Step() { return mStatement ? sqlite3_step(mStatement) : mPrepare; }

    sqlite3_int64 Int(int column) const { return sqlite3_column_int64(mStatement, column); }
    std::string_view Text(int column) const
    {
        const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(mStatement, column));
        return {text ? text : "", static_cast<std::size_t>(sqlite3_column_bytes(mStatement, column))};
    }
    const void* Blob(int column) const { return sqlite3_column_blob(mStatement, column); }
    DWORD Bytes(int column) const { return static_cast<DWORD>(sqlite3_column_bytes(mStatement, column)); }

private:
    int mPrepare = SQLITE_OK;
    sqlite3_stmt* mStatement;
};

// Runs a statement that returns nothing.
int Run(Connection& connection, Stmt which)
{
    Query query(connection, which);
    const int rc = query.Step();
    return rc == SQLITE_DONE || rc == SQLITE_ROW ? SQLITE_OK : rc;
}

// A write transaction (BEGIN IMMEDIATE, so the busy timeout applies at its start
// and never to an upgrade half-way); rolled back unless committed.
class Transaction
{
public:
    explicit Transaction(Connection& connection) : mConnection(connection) {}
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;
    ~Transaction()
    {
        if (mOpen)
            Run(mConnection, Rollback);
    }
    LONG Start()
    {
        const int rc = Run(mConnection, Begin);
        mOpen = rc == SQLITE_OK;
        return FromSqlite(rc, true);
    }
    LONG Finish()
    {
        const int rc = Run(mConnection, Commit);
        if (rc == SQLITE_OK)
            mOpen = false;
        return FromSqlite(rc, true);
    }

private:
    Connection& mConnection;
    bool mOpen = false;
};

// The reads of one call in one read transaction: they see one state, and each
// transaction costs a lock round trip on the shared-memory file.
class Snapshot
{
public:
    Snapshot(Connection& connection, bool needed)
        : mConnection(connection),
          mOpen(needed && sqlite3_get_autocommit(connection.Db()) && Run(connection, BeginRead) == SQLITE_OK)
    {
    }
    Snapshot(const Snapshot&) = delete;
    Snapshot& operator=(const Snapshot&) = delete;
    ~Snapshot()
    {
        if (mOpen)
            Run(mConnection, Commit);
    }

private:
    Connection& mConnection;
    bool mOpen;
};

std::vector<std::string_view> SplitPath(const char* path)
{
    std::vector<std::string_view> parts;
    if (!path)
        return parts;
    std::string_view rest(path);
    while (!rest.empty()) {
        const std::size_t slash = rest.find('\\');
        const std::string_view part = rest.substr(0, slash);
        if (!part.empty())
            parts.push_back(part);
        if (slash == std::string_view::npos)
            break;
        rest.remove_prefix(slash + 1);
    }
    return parts;
}

struct OpenKey
{
    Hive hive;
    sqlite3_int64 node;
    REGSAM access;
};

class Store
{
public:
    std::mutex mMutex;

    // The key behind a handle; ERROR_INVALID_HANDLE for an unknown one.
    LONG Resolve(HKEY key, OpenKey& target, bool& predefined)
    {
        predefined = key == HKEY_CURRENT_USER || key == HKEY_LOCAL_MACHINE;
        if (predefined) {
            target = {key == HKEY_CURRENT_USER ? HiveUser : HiveMachine, kRootNode, KEY_ALL_ACCESS};
            return ERROR_SUCCESS;
        }
        const auto found = mHandles.find(reinterpret_cast<std::uintptr_t>(key));
        if (found == mHandles.end())
            return ERROR_INVALID_HANDLE;
        target = found->second;
        return ERROR_SUCCESS;
    }

    HKEY NewHandle(const OpenKey& key)
    {
        const std::uintptr_t id = mNextHandle;
        mNextHandle += 4;
        mHandles.emplace(id, key);
        return reinterpret_cast<HKEY>(id);
    }

    bool CloseHandle(HKEY key) { return mHandles.erase(reinterpret_cast<std::uintptr_t>(key)) != 0; }

    // The open database of `hive`, opening it if needed; null with `error` set.
    Connection* Database(Hive hive, LONG& error)
    {
        if (gForked) {
            gForked = false;
            for (auto& connection : mConnections)
                if (connection) {
                    connection->Abandon();
                    connection.reset();
                }
        }
        std::unique_ptr<Connection>& connection = mConnections[hive];
        // A root that did not exist may have been created by now.
        if (connection && connection->Absent()) {
            struct stat info;
            if (::stat(connection->Path().c_str(), &info) == 0)
                connection.reset();
        }
        if (!connection)
            error = Open(hive, connection);
        return connection.get();
    }

    void Reset()
    {
        for (auto& connection : mConnections)
            connection.reset();
        mHandles.clear();
    }

    void SetBusyTimeout(int milliseconds)
    {
        mBusyTimeout = milliseconds;
        for (auto& connection : mConnections)
            if (connection)
                sqlite3_busy_timeout(connection->Db(), milliseconds);
    }

private:
    LONG Open(Hive hive, std::unique_ptr<Connection>& result)
    {
        static const bool atForkRegistered = [] {
            ::pthread_atfork(nullptr, nullptr, [] { gForked = true; });
            return true;
        }();
        (void)atForkRegistered;

        const std::string path = HivePath(hive);
        MakeDirectories(path);
        sqlite3* db = nullptr;
        int rc = sqlite3_open_v2(path.c_str(), &db, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX,
                                 nullptr);
        if (rc != SQLITE_OK) {
            sqlite3_close_v2(db);
            db = nullptr;
            struct stat info;
            if (::stat(path.c_str(), &info) != 0 && errno == ENOENT)
                return OpenAbsent(path, result);
            rc = sqlite3_open_v2(path.c_str(), &db, SQLITE_OPEN_READONLY | SQLITE_OPEN_NOMUTEX, nullptr);
            if (rc != SQLITE_OK) {
                sqlite3_close_v2(db);
                return FromSqlite(rc, false);
            }
        }
        sqlite3_extended_result_codes(db, 1);
        sqlite3_busy_timeout(db, mBusyTimeout);
        const bool readOnly = sqlite3_db_readonly(db, "main") == 1;
        // Keep -wal and -shm when the last connection closes, so that processes
        // without write access to the folder can still read a WAL database.
        int persist = 1;
        sqlite3_file_control(db, "main", SQLITE_FCNTL_PERSIST_WAL, &persist);

        // Two processes setting up a new file can meet in a lock that SQLite
        // refuses to wait for (it could deadlock); such a step is simply retried.
        int version = 0;
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(mBusyTimeout);
        while ((rc = Initialise(db, readOnly, version)) != SQLITE_OK && (rc & 0xFF) == SQLITE_BUSY &&
               std::chrono::steady_clock::now() < deadline)
            sqlite3_sleep(2);
        if (rc == SQLITE_OK && version == 0) {
            sqlite3_close_v2(db);
            return OpenAbsent(path, result);
        }
        if (rc != SQLITE_OK) {
            const LONG error = FromSqlite(rc, !readOnly);
            sqlite3_close_v2(db);
            return error;
        }
        if (version != kSchemaVersion) {
            sqlite3_close_v2(db);
            return ERROR_REGISTRY_CORRUPT;
        }
        result = std::make_unique<Connection>(db, readOnly, false, path);
        return ERROR_SUCCESS;
    }

    // Settings of the connection, and the tables if the file has none yet.
    // `version` 0 afterwards: a read-only file without tables.
    static int Initialise(sqlite3* db, bool readOnly, int& version)
    {
        int rc = readOnly ? sqlite3_exec(db, "SELECT count(*) FROM sqlite_schema", nullptr, nullptr, nullptr)
                          : sqlite3_exec(db, "PRAGMA journal_mode = WAL", nullptr, nullptr, nullptr);
        if (rc == SQLITE_OK)
            rc = sqlite3_exec(db,
                              "PRAGMA synchronous = NORMAL; PRAGMA foreign_keys = ON;"
                              " PRAGMA journal_size_limit = 4194304",
                              nullptr, nullptr, nullptr);
        if (rc == SQLITE_OK)
            rc = UserVersion(db, version);
        if (rc != SQLITE_OK || version != 0 || readOnly)
            return rc;
        // Another process may be doing the same; the transaction makes one win.
        rc = sqlite3_exec(db, "BEGIN IMMEDIATE", nullptr, nullptr, nullptr);
        if (rc == SQLITE_OK) {
            rc = sqlite3_exec(db, kSchema, nullptr, nullptr, nullptr);
            rc = rc == SQLITE_OK ? sqlite3_exec(db, "COMMIT", nullptr, nullptr, nullptr) : rc;
            if (rc != SQLITE_OK)
                sqlite3_exec(db, "ROLLBACK", nullptr, nullptr, nullptr);
        }
        if (rc == SQLITE_OK)
            version = kSchemaVersion;
        return rc;
    }

    static int UserVersion(sqlite3* db, int& version)
    {
        sqlite3_stmt* statement = nullptr;
        int rc = sqlite3_prepare_v2(db, "PRAGMA user_version", -1, &statement, nullptr);
        if (rc == SQLITE_OK) {
            rc = sqlite3_step(statement);
            if (rc == SQLITE_ROW) {
                version = sqlite3_column_int(statement, 0);
                rc = SQLITE_OK;
            }
        }
        sqlite3_finalize(statement);
        return rc;
    }

    // An empty root that refuses writes, for a file that does not exist and
    // cannot be created.
    LONG OpenAbsent(const std::string& path, std::unique_ptr<Connection>& result)
    {
        sqlite3* db = nullptr;
        int rc = sqlite3_open_v2(":memory:", &db, SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX, nullptr);
        if (rc == SQLITE_OK)
            rc = sqlite3_exec(db, kSchema, nullptr, nullptr, nullptr);
        if (rc == SQLITE_OK)
            rc = sqlite3_exec(db, "PRAGMA query_only = 1", nullptr, nullptr, nullptr);
        if (rc != SQLITE_OK) {
            sqlite3_close_v2(db);
            return FromSqlite(rc, false);
        }
        result = std::make_unique<Connection>(db, true, true, path);
        return ERROR_SUCCESS;
    }

    std::unique_ptr<Connection> mConnections[HiveCount];
    std::unordered_map<std::uintptr_t, OpenKey> mHandles;
    std::uintptr_t mNextHandle = 0x10000;
    int mBusyTimeout = kDefaultBusyTimeout;
};

// Lives to process end: sections in other statics may close keys at exit.
Store& TheStore()
{
    static Store* store = new Store;
    return *store;
}

// ---- Operations on an open database; the caller holds the store's mutex. ----

// ERROR_SUCCESS if `node` exists, ERROR_KEY_DELETED if not.
LONG CheckExists(Connection& connection, sqlite3_int64 node)
{
    if (node == kRootNode)
        return ERROR_SUCCESS;
    Query query(connection, KeyExists);
    query.Bind(1, node);
    const int rc = query.Step();
    if (rc == SQLITE_ROW)
        return ERROR_SUCCESS;
    return rc == SQLITE_DONE ? ERROR_KEY_DELETED : FromSqlite(rc, false);
}

// Follows `parts` from `node` as far as they exist; `matched` tells how far.
LONG Walk(Connection& connection, sqlite3_int64& node, const std::vector<std::string_view>& parts,
          std::size_t& matched)
{
    for (matched = 0; matched < parts.size(); ++matched) {
        Query query(connection, FindChild);
        query.Bind(1, node);
        query.Bind(2, parts[matched]);
        const int rc = query.Step();
        if (rc == SQLITE_DONE)
            return ERROR_SUCCESS;
        if (rc != SQLITE_ROW)
            return FromSqlite(rc, false);
        node = query.Int(0);
    }
    return ERROR_SUCCESS;
}

// Finds the key at `parts` below `start`: ERROR_FILE_NOT_FOUND if it does not
// exist, ERROR_KEY_DELETED if `start` itself is gone.
LONG Find(Connection& connection, sqlite3_int64 start, const std::vector<std::string_view>& parts,
          sqlite3_int64& node)
{
    node = start;
    std::size_t matched = 0;
    LONG error = parts.empty() ? ERROR_SUCCESS : Walk(connection, node, parts, matched);
    if (error != ERROR_SUCCESS)
        return error;
    if (matched == parts.size())
        return matched == 0 ? CheckExists(connection, start) : ERROR_SUCCESS;
    if (matched == 0 && (error = CheckExists(connection, start)) != ERROR_SUCCESS)
        return error;
    return ERROR_FILE_NOT_FOUND;
}

// Creates what is missing of `parts` below `start` inside the caller's transaction.
LONG CreatePath(Connection& connection, sqlite3_int64 start, const std::vector<std::string_view>& parts,
                sqlite3_int64& node, bool& created)
{
    created = false;
    LONG error = CheckExists(connection, start);
    if (error != ERROR_SUCCESS)
        return error;
    node = start;
    std::size_t matched = 0;
    if ((error = Walk(connection, node, parts, matched)) != ERROR_SUCCESS)
        return error;
    for (; matched < parts.size(); ++matched) {
        Query query(connection, InsertKey);
        query.Bind(1, node);
        query.Bind(2, parts[matched]);
        const int rc = query.Step();
        if (rc != SQLITE_DONE)
            return FromSqlite(rc, true);
        node = sqlite3_last_insert_rowid(connection.Db());
        created = true;
    }
    return ERROR_SUCCESS;
}

LONG StoreValue(Connection& connection, sqlite3_int64 node, std::string_view name, DWORD type, const BYTE* data,
                DWORD size)
{
    Query query(connection, SetValue);
    query.Bind(1, node);
    query.Bind(2, name);
    query.Bind(3, static_cast<sqlite3_int64>(type));
    query.BindBlob(4, data, size);
    return FromSqlite(query.Step(), true);
}

// The common frame of every call: lock, resolve the handle, check the rights,
// open the database.
class Call
{
public:
    Call(HKEY key, REGSAM needed) : mLock(TheStore().mMutex)
    {
        Store& store = TheStore();
        mError = store.Resolve(key, mKey, mPredefined);
        if (mError == ERROR_SUCCESS && (mKey.access & needed) != needed)
            mError = ERROR_ACCESS_DENIED;
        if (mError == ERROR_SUCCESS)
            mConnection = store.Database(mKey.hive, mError);
    }
    LONG Error() const { return mError; }
    Connection& Db() const { return *mConnection; }
    const OpenKey& Key() const { return mKey; }
    bool Predefined() const { return mPredefined; }

private:
    std::lock_guard<std::mutex> mLock;
    OpenKey mKey{};
    bool mPredefined = false;
    LONG mError = ERROR_SUCCESS;
    Connection* mConnection = nullptr;
};

LONG QueryValue(HKEY key, std::string_view name, DWORD* reserved, DWORD* type, BYTE* data, DWORD* dataSize)
{
    if (reserved || (data && !dataSize))
        return ERROR_INVALID_PARAMETER;
    Call call(key, KEY_QUERY_VALUE);
    if (call.Error())
        return call.Error();
    Query query(call.Db(), GetValue);
    query.Bind(1, call.Key().node);
    query.Bind(2, name);
    const int rc = query.Step();
    if (rc == SQLITE_DONE) {
        const LONG error = CheckExists(call.Db(), call.Key().node);
        return error ? error : ERROR_FILE_NOT_FOUND;
    }
    if (rc != SQLITE_ROW)
        return FromSqlite(rc, false);
    if (type)
        *type = static_cast<DWORD>(query.Int(0));
    const DWORD size = query.Bytes(1);
    if (data) {
        if (*dataSize < size) {
            *dataSize = size;
            return ERROR_MORE_DATA;
        }
        if (size)
            std::memcpy(data, query.Blob(1), size);
    }
    if (dataSize)
        *dataSize = size;
    return ERROR_SUCCESS;
}

LONG SetValueEx(HKEY key, std::string_view name, DWORD type, const BYTE* data, DWORD size)
{
    if (!data && size)
        return ERROR_INVALID_PARAMETER;
    Call call(key, KEY_SET_VALUE);
    if (call.Error())
        return call.Error();
    if (call.Db().ReadOnly())
        return ERROR_ACCESS_DENIED;
    return StoreValue(call.Db(), call.Key().node, name, type, data, size);
}

std::string_view NameOf(const char* name)
{
    return name ? std::string_view(name) : std::string_view();
}

std::string NameOf(const WCHAR* name)
{
    if (!name)
        return {};
    return Utf16ToUtf8(std::u16string(name));
}

// Copies `text` with a terminator into a buffer of `*length` bytes.
bool CopyName(std::string_view text, char* buffer, DWORD* length)
{
    if (!buffer || text.size() + 1 > *length)
        return false;
    std::memcpy(buffer, text.data(), text.size());
    buffer[text.size()] = '\0';
    *length = static_cast<DWORD>(text.size());
    return true;
}

} // namespace

void RegistryStore::Reset()
{
    Store& store = TheStore();
    std::lock_guard<std::mutex> lock(store.mMutex);
    store.Reset();
}

std::string RegistryStore::GetPath(HKEY root)
{
    if (root == HKEY_CURRENT_USER)
        return HivePath(HiveUser);
    if (root == HKEY_LOCAL_MACHINE)
        return HivePath(HiveMachine);
    return {};
}

void RegistryStore::SetBusyTimeout(int milliseconds)
{
    Store& store = TheStore();
    std::lock_guard<std::mutex> lock(store.mMutex);
    store.SetBusyTimeout(milliseconds);
}

} // namespace korva

using namespace korva;

LONG RegOpenKeyExA(HKEY key, const char* subKey, DWORD /*options*/, REGSAM access, HKEY* result)
{
    if (!result)
        return ERROR_INVALID_PARAMETER;
    *result = nullptr;
    Call call(key, 0);
    if (call.Error())
        return call.Error();
    if (call.Db().ReadOnly() && (access & kWriteRights))
        return ERROR_ACCESS_DENIED;
    const std::vector<std::string_view> parts = SplitPath(subKey);
    sqlite3_int64 node = 0;
    LONG error = ERROR_SUCCESS;
    {
        Snapshot snapshot(call.Db(), parts.size() > 1);
        error = Find(call.Db(), call.Key().node, parts, node);
    }
    if (error)
        return error;
    *result = TheStore().NewHandle({call.Key().hive, node, access});
    return ERROR_SUCCESS;
}

LONG RegCreateKeyExA(HKEY key, const char* subKey, DWORD /*reserved*/, char* /*keyClass*/, DWORD /*options*/,
                     REGSAM access, const void* /*security*/, HKEY* result, DWORD* disposition)
{
    if (!result)
        return ERROR_INVALID_PARAMETER;
    *result = nullptr;
    if (!subKey)
        return ERROR_INVALID_PARAMETER;
    if (subKey[0] == '\\')
        return ERROR_BAD_PATHNAME;
    const std::vector<std::string_view> parts = SplitPath(subKey);
    for (std::string_view part : parts)
        if (part.size() > kMaxKeyNameLength)
            return ERROR_INVALID_PARAMETER;
    Call call(key, 0);
    if (call.Error())
        return call.Error();
    Connection& db = call.Db();
    if (db.ReadOnly() && (access & kWriteRights))
        return ERROR_ACCESS_DENIED;

    // Opening an existing key needs no right on the parent; only creating does.
    sqlite3_int64 node = 0;
    LONG error = ERROR_SUCCESS;
    {
        Snapshot snapshot(db, parts.size() > 1);
        error = Find(db, call.Key().node, parts, node);
    }
    bool created = false;
    if (error == ERROR_FILE_NOT_FOUND) {
        if (!(call.Key().access & KEY_CREATE_SUB_KEY) || db.ReadOnly())
            return ERROR_ACCESS_DENIED;
        Transaction transaction(db);
        error = transaction.Start();
        if (!error)
            error = CreatePath(db, call.Key().node, parts, node, created);
        if (!error)
            error = transaction.Finish();
    }
    if (error)
        return error;
    if (disposition)
        *disposition = created ? REG_CREATED_NEW_KEY : REG_OPENED_EXISTING_KEY;
    *result = TheStore().NewHandle({call.Key().hive, node, access});
    return ERROR_SUCCESS;
}

LONG RegCloseKey(HKEY key)
{
    if (key == HKEY_CURRENT_USER || key == HKEY_LOCAL_MACHINE)
        return ERROR_SUCCESS;
    Store& store = TheStore();
    std::lock_guard<std::mutex> lock(store.mMutex);
    return store.CloseHandle(key) ? ERROR_SUCCESS : ERROR_INVALID_HANDLE;
}

LONG RegDeleteKeyA(HKEY key, const char* subKey)
{
    if (!subKey)
        return ERROR_INVALID_PARAMETER;
    const std::vector<std::string_view> parts = SplitPath(subKey);
    Call call(key, 0);
    if (call.Error())
        return call.Error();
    Connection& db = call.Db();
    if (parts.empty() && (call.Predefined() || !(call.Key().access & DELETE)))
        return ERROR_ACCESS_DENIED;

    sqlite3_int64 node = 0;
    if (db.ReadOnly()) {
        const LONG error = Find(db, call.Key().node, parts, node);
        return error ? error : ERROR_ACCESS_DENIED;
    }
    Transaction transaction(db);
    LONG error = transaction.Start();
    if (!error)
        error = Find(db, call.Key().node, parts, node);
    if (error)
        return error;
    {
        Query children(db, HasChildren);
        children.Bind(1, node);
        const int rc = children.Step();
        if (rc == SQLITE_ROW)
            return ERROR_ACCESS_DENIED;
        if (rc != SQLITE_DONE)
            return FromSqlite(rc, true);
    }
    {
        Query remove(db, DeleteKeyRow);
        remove.Bind(1, node);
        if ((error = FromSqlite(remove.Step(), true)) != ERROR_SUCCESS)
            return error;
    }
    return transaction.Finish();
}

LONG RegDeleteValueA(HKEY key, const char* valueName)
{
    Call call(key, KEY_SET_VALUE);
    if (call.Error())
        return call.Error();
    Connection& db = call.Db();
    if (db.ReadOnly()) {
        Query query(db, GetValue);
        query.Bind(1, call.Key().node);
        query.Bind(2, NameOf(valueName));
        return query.Step() == SQLITE_ROW ? ERROR_ACCESS_DENIED : ERROR_FILE_NOT_FOUND;
    }
    Query query(db, DeleteValue);
    query.Bind(1, call.Key().node);
    query.Bind(2, NameOf(valueName));
    const int rc = query.Step();
    if (rc != SQLITE_DONE)
        return FromSqlite(rc, true);
    if (sqlite3_changes(db.Db()) == 0) {
        const LONG error = CheckExists(db, call.Key().node);
        return error ? error : ERROR_FILE_NOT_FOUND;
    }
    return ERROR_SUCCESS;
}

LONG RegEnumKeyExA(HKEY key, DWORD index, char* name, DWORD* nameLength, DWORD* /*reserved*/, char* keyClass,
                   DWORD* classLength, FILETIME* lastWriteTime)
{
    if (!nameLength)
        return ERROR_INVALID_PARAMETER;
    Call call(key, KEY_ENUMERATE_SUB_KEYS);
    if (call.Error())
        return call.Error();
    Query query(call.Db(), EnumKey);
    query.Bind(1, call.Key().node);
    query.Bind(2, static_cast<sqlite3_int64>(index));
    const int rc = query.Step();
    if (rc == SQLITE_DONE) {
        const LONG error = CheckExists(call.Db(), call.Key().node);
        return error ? error : ERROR_NO_MORE_ITEMS;
    }
    if (rc != SQLITE_ROW)
        return FromSqlite(rc, false);
    if (!CopyName(query.Text(0), name, nameLength))
        return ERROR_MORE_DATA;
    if (keyClass && classLength && *classLength)
        keyClass[0] = '\0';
    if (classLength)
        *classLength = 0;
    if (lastWriteTime)
        *lastWriteTime = FILETIME{0, 0};
    return ERROR_SUCCESS;
}

LONG RegEnumValueA(HKEY key, DWORD index, char* valueName, DWORD* valueNameLength, DWORD* /*reserved*/, DWORD* type,
                   BYTE* data, DWORD* dataSize)
{
    if (!valueNameLength || (data && !dataSize))
        return ERROR_INVALID_PARAMETER;
    Call call(key, KEY_QUERY_VALUE);
    if (call.Error())
        return call.Error();
    Query query(call.Db(), EnumValue);
    query.Bind(1, call.Key().node);
    query.Bind(2, static_cast<sqlite3_int64>(index));
    const int rc = query.Step();
    if (rc == SQLITE_DONE) {
        const LONG error = CheckExists(call.Db(), call.Key().node);
        return error ? error : ERROR_NO_MORE_ITEMS;
    }
    if (rc != SQLITE_ROW)
        return FromSqlite(rc, false);
    if (type)
        *type = static_cast<DWORD>(query.Int(1));
    const DWORD size = query.Bytes(2);
    bool fits = true;
    if (data) {
        if (*dataSize < size)
            fits = false;
        else if (size)
            std::memcpy(data, query.Blob(2), size);
    }
    if (dataSize)
        *dataSize = size;
    if (!fits || !CopyName(query.Text(0), valueName, valueNameLength))
        return ERROR_MORE_DATA;
    return ERROR_SUCCESS;
}

LONG RegQueryInfoKeyA(HKEY key, char* keyClass, DWORD* classLength, DWORD* /*reserved*/, DWORD* subKeys,
                      DWORD* maxSubKeyLength, DWORD* maxClassLength, DWORD* values, DWORD* maxValueNameLength,
                      DWORD* maxValueLength, DWORD* securityDescriptorSize, FILETIME* lastWriteTime)
{
    Call call(key, KEY_QUERY_VALUE);
    if (call.Error())
        return call.Error();
    Connection& db = call.Db();
    Snapshot snapshot(db, true);
    LONG error = CheckExists(db, call.Key().node);
    if (error)
        return error;
    if (subKeys || maxSubKeyLength) {
        Query query(db, KeyInfo);
        query.Bind(1, call.Key().node);
        const int rc = query.Step();
        if (rc != SQLITE_ROW)
            return FromSqlite(rc, false);
        if (subKeys)
            *subKeys = static_cast<DWORD>(query.Int(0));
        if (maxSubKeyLength)
            *maxSubKeyLength = static_cast<DWORD>(query.Int(1));
    }
    if (values || maxValueNameLength || maxValueLength) {
        Query query(db, ValueInfo);
        query.Bind(1, call.Key().node);
        const int rc = query.Step();
        if (rc != SQLITE_ROW)
            return FromSqlite(rc, false);
        if (values)
            *values = static_cast<DWORD>(query.Int(0));
        if (maxValueNameLength)
            *maxValueNameLength = static_cast<DWORD>(query.Int(1));
        if (maxValueLength)
            *maxValueLength = static_cast<DWORD>(query.Int(2));
    }
    if (keyClass && classLength && *classLength)
        keyClass[0] = '\0';
    if (classLength)
        *classLength = 0;
    if (maxClassLength)
        *maxClassLength = 0;
    if (securityDescriptorSize)
        *securityDescriptorSize = 0;
    if (lastWriteTime)
        *lastWriteTime = FILETIME{0, 0};
    return ERROR_SUCCESS;
}

LONG RegQueryValueExA(HKEY key, const char* valueName, DWORD* reserved, DWORD* type, BYTE* data, DWORD* dataSize)
{
    return QueryValue(key, NameOf(valueName), reserved, type, data, dataSize);
}

LONG RegQueryValueExW(HKEY key, const WCHAR* valueName, DWORD* reserved, DWORD* type, BYTE* data, DWORD* dataSize)
{
    return QueryValue(key, NameOf(valueName), reserved, type, data, dataSize);
}

LONG RegSetValueA(HKEY key, const char* subKey, DWORD type, const char* data, DWORD /*dataSize*/)
{
    if (type != REG_SZ || !data)
        return ERROR_INVALID_PARAMETER;
    const std::vector<std::string_view> parts = SplitPath(subKey);
    if (parts.empty())
        return SetValueEx(key, {}, REG_SZ, reinterpret_cast<const BYTE*>(data), static_cast<DWORD>(std::strlen(data) + 1));
    for (std::string_view part : parts)
        if (part.size() > kMaxKeyNameLength)
            return ERROR_INVALID_PARAMETER;
    Call call(key, 0);
    if (call.Error())
        return call.Error();
    Connection& db = call.Db();
    sqlite3_int64 node = 0;
    LONG error = ERROR_SUCCESS;
    {
        Snapshot snapshot(db, parts.size() > 1);
        error = Find(db, call.Key().node, parts, node);
    }
    if (error && error != ERROR_FILE_NOT_FOUND)
        return error;
    if (db.ReadOnly() || (error && !(call.Key().access & KEY_CREATE_SUB_KEY)))
        return ERROR_ACCESS_DENIED;
    Transaction transaction(db);
    bool created = false;
    if (!(error = transaction.Start()) && !(error = CreatePath(db, call.Key().node, parts, node, created)))
        error = StoreValue(db, node, {}, REG_SZ, reinterpret_cast<const BYTE*>(data),
                           static_cast<DWORD>(std::strlen(data) + 1));
    return error ? error : transaction.Finish();
}

LONG RegSetValueExA(HKEY key, const char* valueName, DWORD /*reserved*/, DWORD type, const BYTE* data, DWORD dataSize)
{
    return SetValueEx(key, NameOf(valueName), type, data, dataSize);
}

LONG RegSetValueExW(HKEY key, const WCHAR* valueName, DWORD /*reserved*/, DWORD type, const BYTE* data,
                    DWORD dataSize)
{
    return SetValueEx(key, NameOf(valueName), type, data, dataSize);
}
