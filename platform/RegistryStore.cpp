// The registry store: where each root's database is, how it is opened and set
// up, the handles, and the key operations.

#include <KORVAutlwin/platform/RegistryStore.h>

#include <KORVAutlwin/platform/UserIdentity.h>

#include <KORVAutlwin/platform/SqliteQuery.h>

#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <ctime>
#include <string_view>
#include <utility>

#include <pthread.h>
#include <sys/stat.h>
#include <unistd.h>

namespace korva::registry {
namespace {

constexpr int kSchemaVersion = 1;

// Up to this size the store gets the full check at its first opening; above
// it, the quick one, which misses only an index that disagrees with its table.
constexpr off_t kFullCheckLimit = 16 << 20;

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

constexpr const char* kSql[StatementCount] = {
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
};

// A fork leaves the parent's SQLite connections unusable in the child; the
// child abandons them.
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
    std::string base = UserConfigFolder();
    if (base.empty())
        base = "/tmp/.config";
    return base + "/Tessmark/registry.sqlite";
}

// The tables of kSchema as SQLite keeps their statements ("IF NOT EXISTS" is
// not kept), in name order, joined by ';'.
const std::string& StoredTables()
{
    static const std::string tables = [] {
        std::string text;
        const std::string_view schema = kSchema;
        const std::string_view create = "CREATE TABLE IF NOT EXISTS ";
        for (std::size_t at = schema.find(create); at != std::string_view::npos; at = schema.find(create, at + 1)) {
            const std::size_t end = schema.find(';', at);
            text += (text.empty() ? "" : ";") + std::string("CREATE TABLE ") +
                    std::string(schema.substr(at + create.size(), end - at - create.size()));
        }
        return text;
    }();
    return tables;
}

// Whether the file is sound, before anything is written to it. The full check
// also finds an index that no longer matches its table, which would make
// existing keys and values read as missing.
int CheckIntact(sqlite::Database& database, const std::string& path, bool& intact)
{
    struct stat info;
    const bool small = ::stat(path.c_str(), &info) != 0 || info.st_size <= kFullCheckLimit;
    std::string verdict;
    int version = 0;
    int rc = database.ReadText(small ? "PRAGMA integrity_check(1)" : "PRAGMA quick_check(1)", verdict);
    if (rc == SQLITE_OK)
        rc = database.ReadInt("PRAGMA user_version", version);
    // Version 0 is a new file, with nothing in it yet; with tables it is none of ours.
    if (rc == SQLITE_OK && version == 0) {
        int objects = 0;
        rc = database.ReadInt("SELECT count(*) FROM sqlite_schema", objects);
        if (rc == SQLITE_OK && objects != 0)
            database.MarkDamaged();
    }
    // The tables must be the ones this code makes, to the letter, and every
    // statement must find them: a store whose schema was changed is as damaged
    // as one with a broken page, and is found so before anything is written.
    if (rc == SQLITE_OK && version == kSchemaVersion) {
        std::string tables;
        rc = database.ReadText("SELECT group_concat(sql, ';') FROM (SELECT sql FROM sqlite_schema"
                               " WHERE type = 'table' AND name IN ('keys', 'vals') ORDER BY name)", tables);
        if (rc == SQLITE_OK && tables != StoredTables())
            database.MarkDamaged();
    }
    for (std::size_t which = 0; rc == SQLITE_OK && version == kSchemaVersion && which < StatementCount; ++which)
        database.Prepared(which, rc);
    // A version this code does not know is no registry store of its own either.
    intact = !database.Damaged() &&
             (rc != SQLITE_OK || (verdict == "ok" && (version == 0 || version == kSchemaVersion)));
    if (intact)
        return rc;
    database.MarkDamaged();
    return SQLITE_OK;
}

// "<file>.corrupt-<UTC time>", with a number added when that name is taken.
std::string AsideName(const std::string& file)
{
    const std::time_t now = std::time(nullptr);
    std::tm utc{};
    ::gmtime_r(&now, &utc);
    char stamp[32];
    std::strftime(stamp, sizeof stamp, "%Y%m%d-%H%M%S", &utc);
    const std::string base = file + ".corrupt-" + stamp;
    std::string name = base;
    struct stat info;
    for (int number = 2; ::lstat(name.c_str(), &info) == 0 || ::lstat((name + "-wal").c_str(), &info) == 0; ++number)
        name = base + "-" + std::to_string(number);
    return name;
}

// Moves the database with its -wal and -shm to a new name, the companions
// first: a WAL left behind would be replayed into the new, empty database.
// The new name, or empty when the database could not be moved.
std::string MoveAside(const std::string& file)
{
    const std::string target = AsideName(file);
    const char* const companions[] = {"-wal", "-shm"};
    for (const char* suffix : companions)
        ::rename((file + suffix).c_str(), (target + suffix).c_str());
    if (::rename(file.c_str(), target.c_str()) == 0)
        return target;
    for (const char* suffix : companions)
        ::rename((target + suffix).c_str(), (file + suffix).c_str());
    return {};
}

// Runs `step` until it is not refused as busy or the busy timeout is over.
// Two processes setting up a new file can meet in a lock that SQLite refuses
// to wait for (it could deadlock); such a step is simply retried.
template <typename Step>
int Retry(int busyTimeout, Step step)
{
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(busyTimeout);
    int rc;
    while ((rc = step()) != SQLITE_OK && (rc & 0xFF) == SQLITE_BUSY && std::chrono::steady_clock::now() < deadline)
        sqlite3_sleep(2);
    return rc;
}

// Settings of the connection, and the tables if the file has none yet.
// `version` 0 afterwards: a read-only file without tables.
int Initialise(sqlite::Database& database, int& version)
{
    int rc = database.ReadOnly() ? database.Exec("SELECT count(*) FROM sqlite_schema")
                                 : database.Exec("PRAGMA journal_mode = WAL");
    if (rc == SQLITE_OK)
        rc = database.Exec("PRAGMA synchronous = NORMAL; PRAGMA foreign_keys = ON;"
                           " PRAGMA journal_size_limit = 4194304");
    if (rc == SQLITE_OK)
        rc = database.ReadInt("PRAGMA user_version", version);
    if (rc != SQLITE_OK || version != 0 || database.ReadOnly())
        return rc;
    // Another process may be doing the same; the transaction makes one win.
    rc = database.Exec("BEGIN IMMEDIATE");
    if (rc == SQLITE_OK) {
        rc = database.Exec(kSchema);
        rc = rc == SQLITE_OK ? database.Exec("COMMIT") : rc;
        if (rc != SQLITE_OK)
            database.Exec("ROLLBACK");
    }
    if (rc == SQLITE_OK)
        version = kSchemaVersion;
    return rc;
}

// Follows `parts` from `node` as far as they exist; `matched` tells how far.
LONG Walk(sqlite::Database& database, sqlite3_int64& node, const std::vector<std::string_view>& parts,
          std::size_t& matched)
{
    for (matched = 0; matched < parts.size(); ++matched) {
        sqlite::Query query(database, FindChild);
        query.Bind(1, node);
        query.Bind(2, parts[matched]);
        const int rc = query.Step();
        if (rc == SQLITE_DONE)
            return ERROR_SUCCESS;
        if (rc != SQLITE_ROW)
            return sqlite::Win32Result(rc, false);
        node = query.Int(0);
    }
    return ERROR_SUCCESS;
}

} // namespace

// Values above this size are read from the database each time; past the
// limits of entries and bytes the cache starts again.
constexpr std::size_t kMaxCachedValue = 4096;
constexpr std::size_t kMaxCachedEntries = 4096;
constexpr std::size_t kMaxCachedBytes = 1 << 20;

bool ReadCache::Fresh(const sqlite::Database& database)
{
    sqlite::Database::Stamp stamp;
    const bool readable = database.ReadStamp(stamp);
    if (!readable || !mHasStamp || stamp != mStamp) {
        // What is read from now on is at least as new as this stamp, and is
        // served while the stamp stays: then nobody has committed since.
        Clear();
        mStamp = stamp;
    }
    mHasStamp = readable;
    return readable;
}

const std::string& ReadCache::KeyOf(sqlite3_int64 owner, std::span<const std::string_view> names)
{
    mScratch.assign(reinterpret_cast<const char*>(&owner), sizeof owner);
    for (std::string_view name : names) {
        mScratch += '\\';
        for (char c : name)
            mScratch += (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c;
    }
    return mScratch;
}

void ReadCache::Clear()
{
    mKeys.clear();
    mValues.clear();
    mBytes = 0;
}

void ReadCache::MakeRoom(std::size_t bytes)
{
    mBytes += bytes;
    if (mKeys.size() + mValues.size() >= kMaxCachedEntries || mBytes > kMaxCachedBytes) {
        Clear();
        mBytes = bytes;
    }
}

bool ReadCache::FindKey(sqlite3_int64 start, const std::vector<std::string_view>& parts, sqlite3_int64& node)
{
    const auto found = mKeys.find(KeyOf(start, parts));
    if (found == mKeys.end())
        return false;
    node = found->second;
    return true;
}

void ReadCache::AddKey(sqlite3_int64 start, const std::vector<std::string_view>& parts, sqlite3_int64 node)
{
    KeyOf(start, parts);
    MakeRoom(mScratch.size());
    mKeys.insert_or_assign(mScratch, node);
}

const ReadCache::Value* ReadCache::FindValue(sqlite3_int64 node, std::string_view name)
{
    const auto found = mValues.find(KeyOf(node, {&name, 1}));
    return found == mValues.end() ? nullptr : &found->second;
}

void ReadCache::AddValue(sqlite3_int64 node, std::string_view name, DWORD type, const void* data, DWORD size)
{
    if (size > kMaxCachedValue)
        return;
    KeyOf(node, {&name, 1});
    MakeRoom(mScratch.size() + size);
    mValues.insert_or_assign(mScratch, Value{type, std::string(static_cast<const char*>(data), size)});
}

LONG Store::Resolve(HKEY key, OpenKey& target, bool& predefined) const
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

HKEY Store::NewHandle(const OpenKey& key)
{
    const std::uintptr_t id = mNextHandle;
    mNextHandle += 4;
    mHandles.emplace(id, key);
    return reinterpret_cast<HKEY>(id);
}

bool Store::CloseHandle(HKEY key)
{
    return mHandles.erase(reinterpret_cast<std::uintptr_t>(key)) != 0;
}

sqlite::Database* Store::Connect(Hive hive, LONG& error)
{
    if (gForked) {
        gForked = false;
        for (Root& root : mRoots) {
            if (root.database)
                root.database->Abandon();
            root = Root{};
        }
    }
    Root& root = mRoots[hive];
    if (root.database && root.database->Damaged())
        Damaged(root);
    if (root.damaged) {
        error = ERROR_REGISTRY_CORRUPT;
        return nullptr;
    }
    // A root that did not exist may have been created by now.
    if (root.database && root.missing) {
        struct stat info;
        if (::stat(root.file.c_str(), &info) == 0)
            root.database.reset();
    }
    if (!root.database)
        error = Open(hive, root);
    return root.database.get();
}

void Store::Reset()
{
    for (Root& root : mRoots)
        root = Root{};
    mHandles.clear();
}

void Store::SetBusyTimeout(int milliseconds)
{
    mBusyTimeout = milliseconds;
    for (Root& root : mRoots)
        if (root.database)
            root.database->SetBusyTimeout(milliseconds);
}

LONG Store::Open(Hive hive, Root& root)
{
    static const bool atForkRegistered = [] {
        ::pthread_atfork(nullptr, nullptr, [] { gForked = true; });
        return true;
    }();
    (void)atForkRegistered;

    root = Root{};
    root.file = HivePath(hive);
    const std::string& path = root.file;
    MakeDirectories(path);
    std::unique_ptr<sqlite::Database> database;
    int rc = sqlite::Database::OpenFile(path, kSql, mBusyTimeout, database);
    if (rc != SQLITE_OK) {
        struct stat info;
        if (::stat(path.c_str(), &info) != 0 && errno == ENOENT)
            return OpenMissing(path, root);
        return sqlite::Win32Result(rc, false);
    }

    // Damage is looked for before the first write, which could spread it.
    bool intact = true;
    rc = Retry(mBusyTimeout, [&] { return CheckIntact(*database, path, intact); });
    if (!intact) {
        root.database = std::move(database);
        return Damaged(root);
    }
    int version = 0;
    if (rc == SQLITE_OK)
        rc = Retry(mBusyTimeout, [&] { return Initialise(*database, version); });
    if (rc == SQLITE_OK && version == 0) {
        database.reset();
        return OpenMissing(path, root);
    }
    if (rc != SQLITE_OK)
        return sqlite::Win32Result(rc, !database->ReadOnly());
    if (version != kSchemaVersion)
        return ERROR_REGISTRY_CORRUPT;
    // Without it, the reads of this root are not cached.
    database->WatchCommits();
    root.database = std::move(database);
    return ERROR_SUCCESS;
}

// An empty root that refuses writes, for a file that does not exist and
// cannot be created.
LONG Store::OpenMissing(const std::string& path, Root& root)
{
    std::unique_ptr<sqlite::Database> database;
    int rc = sqlite::Database::OpenMemory(kSql, database);
    if (rc == SQLITE_OK)
        rc = database->Exec(kSchema);
    if (rc == SQLITE_OK)
        rc = database->Exec("PRAGMA query_only = 1");
    if (rc != SQLITE_OK)
        return sqlite::Win32Result(rc, false);
    root.database = std::move(database);
    root.file = path;
    root.missing = true;
    return ERROR_SUCCESS;
}

// Closes the damaged database without the checkpoint of a last connection and
// keeps the root refusing every call until the file is moved aside or the
// store is reset.
LONG Store::Damaged(Root& root)
{
    if (root.database)
        root.database->MarkDamaged();
    root.database.reset();
    root.damaged = true;
    return ERROR_REGISTRY_CORRUPT;
}

std::vector<RegistryStore::MovedAside> Store::MoveAsideDamaged()
{
    std::vector<RegistryStore::MovedAside> result;
    for (int hive = 0; hive < HiveCount; ++hive) {
        Root& root = mRoots[hive];
        // A file that does not exist is not created just to be looked at.
        struct stat info;
        if (!root.database && !root.damaged && ::stat(HivePath(static_cast<Hive>(hive)).c_str(), &info) != 0)
            continue;
        LONG error = ERROR_SUCCESS;
        Connect(static_cast<Hive>(hive), error);
        if (!root.damaged)
            continue;
        RegistryStore::MovedAside entry{root.file, MoveAside(root.file)};
        if (!entry.movedTo.empty()) {
            root = Root{};
            // Key ids start again in the new file: old handles would meet other keys.
            std::erase_if(mHandles, [hive](const auto& handle) { return handle.second.hive == hive; });
        }
        result.push_back(std::move(entry));
    }
    return result;
}

// Lives to process end: sections in other statics may close keys at exit.
Store& TheStore()
{
    static Store* store = new Store;
    return *store;
}

LONG CheckExists(sqlite::Database& database, sqlite3_int64 node)
{
    if (node == kRootNode)
        return ERROR_SUCCESS;
    sqlite::Query query(database, KeyExists);
    query.Bind(1, node);
    const int rc = query.Step();
    if (rc == SQLITE_ROW)
        return ERROR_SUCCESS;
    return rc == SQLITE_DONE ? ERROR_KEY_DELETED : sqlite::Win32Result(rc, false);
}

LONG Find(sqlite::Database& database, sqlite3_int64 start, const std::vector<std::string_view>& parts,
          sqlite3_int64& node)
{
    node = start;
    std::size_t matched = 0;
    LONG error = parts.empty() ? ERROR_SUCCESS : Walk(database, node, parts, matched);
    if (error != ERROR_SUCCESS)
        return error;
    if (matched == parts.size())
        return matched == 0 ? CheckExists(database, start) : ERROR_SUCCESS;
    if (matched == 0 && (error = CheckExists(database, start)) != ERROR_SUCCESS)
        return error;
    return ERROR_FILE_NOT_FOUND;
}

LONG CreatePath(sqlite::Database& database, sqlite3_int64 start, const std::vector<std::string_view>& parts,
                sqlite3_int64& node, bool& created)
{
    created = false;
    LONG error = CheckExists(database, start);
    if (error != ERROR_SUCCESS)
        return error;
    node = start;
    std::size_t matched = 0;
    if ((error = Walk(database, node, parts, matched)) != ERROR_SUCCESS)
        return error;
    for (; matched < parts.size(); ++matched) {
        sqlite::Query query(database, InsertKey);
        query.Bind(1, node);
        query.Bind(2, parts[matched]);
        const int rc = query.Step();
        if (rc != SQLITE_DONE)
            return sqlite::Win32Result(rc, true);
        node = database.LastInsertId();
        created = true;
    }
    return ERROR_SUCCESS;
}

LONG StoreValue(sqlite::Database& database, sqlite3_int64 node, std::string_view name, DWORD type, const BYTE* data,
                DWORD size)
{
    sqlite::Query query(database, SetValue);
    query.Bind(1, node);
    query.Bind(2, name);
    query.Bind(3, static_cast<sqlite3_int64>(type));
    query.BindBlob(4, data, size);
    return sqlite::Win32Result(query.Step(), true);
}

} // namespace korva::registry

namespace korva {

void RegistryStore::Reset()
{
    registry::Store& store = registry::TheStore();
    std::lock_guard<std::mutex> lock(store.mMutex);
    store.Reset();
}

std::string RegistryStore::GetPath(HKEY root)
{
    if (root == HKEY_CURRENT_USER)
        return registry::HivePath(registry::HiveUser);
    if (root == HKEY_LOCAL_MACHINE)
        return registry::HivePath(registry::HiveMachine);
    return {};
}

std::vector<RegistryStore::MovedAside> RegistryStore::MoveAsideDamaged()
{
    registry::Store& store = registry::TheStore();
    std::lock_guard<std::mutex> lock(store.mMutex);
    return store.MoveAsideDamaged();
}

void RegistryStore::SetBusyTimeout(int milliseconds)
{
    registry::Store& store = registry::TheStore();
    std::lock_guard<std::mutex> lock(store.mMutex);
    store.SetBusyTimeout(milliseconds);
}

} // namespace korva
