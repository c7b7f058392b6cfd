#pragma once
// Internal to platform/ (callers include Registry.h). The registry store behind
// the registry functions: the database of each root, the open handles, and the
// key operations on a database. One database per root; keys are rows of `keys`
// (id, parent, name), values rows of `vals` (key, name, type, data). Key ids
// come from AUTOINCREMENT and are never reused, so a handle on a deleted key
// can tell that its key is gone even after a key of the same name was created
// again.

#include <KORVAutlwin/platform/Registry.h>
#include <KORVAutlwin/platform/SqliteDatabase.h>

#include <cstdint>
#include <span>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace korva::registry {

enum Hive { HiveUser = 0, HiveMachine = 1, HiveCount = 2 };

/// The store's statements, named by their place in its table of SQL texts.
enum Statement {
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
    StatementCount
};

/// The key of a root.
inline constexpr sqlite3_int64 kRootNode = 1;

/// What a handle stands for.
struct OpenKey
{
    Hive hive;
    sqlite3_int64 node;
    REGSAM access;
};

/// What calls read from one database (keys found by path, values), kept while
/// the database's stamp shows no commit since they were read, by this process
/// or any other; any commit drops all of it. Names are kept folded as the
/// store compares them (ASCII case).
class ReadCache
{
public:
    /// A value as read: its type and data.
    struct Value
    {
        DWORD type;
        std::string data;
    };

    /// Whether the cache may serve and take entries in this call; call it once
    /// per call, before the call reads the database. False when the stamp
    /// cannot be read.
    bool Fresh(const sqlite::Database& database);
    bool FindKey(sqlite3_int64 start, const std::vector<std::string_view>& parts, sqlite3_int64& node);
    void AddKey(sqlite3_int64 start, const std::vector<std::string_view>& parts, sqlite3_int64 node);
    const Value* FindValue(sqlite3_int64 node, std::string_view name);
    void AddValue(sqlite3_int64 node, std::string_view name, DWORD type, const void* data, DWORD size);

private:
    // The lookup key of `owner` and `names` in mScratch.
    const std::string& KeyOf(sqlite3_int64 owner, std::span<const std::string_view> names);
    void Clear();
    // Counts `bytes` more; starts again past the limits.
    void MakeRoom(std::size_t bytes);

    sqlite::Database::Stamp mStamp{};
    bool mHasStamp = false;
    std::unordered_map<std::string, sqlite3_int64> mKeys;
    std::unordered_map<std::string, Value> mValues;
    std::size_t mBytes = 0;
    std::string mScratch;
};

/// The open handles and the database of each root. Every member but the mutex
/// wants the mutex held.
class Store
{
public:
    std::mutex mMutex;

    /// The key behind a handle; ERROR_INVALID_HANDLE for an unknown one.
    LONG Resolve(HKEY key, OpenKey& target, bool& predefined) const;
    HKEY NewHandle(const OpenKey& key);
    bool CloseHandle(HKEY key);

    /// The open database of `hive`, opening it if needed; null with `error` set.
    /// A damaged database gives ERROR_REGISTRY_CORRUPT from the moment the
    /// damage shows to the next Reset.
    sqlite::Database* Connect(Hive hive, LONG& error);

    /// Closes both databases and forgets every handle.
    void Reset();
    void SetBusyTimeout(int milliseconds);
    /// The read cache of `hive`'s database; meaningful after Connect.
    ReadCache& CacheOf(Hive hive) { return mRoots[hive].cache; }
    /// Moves the files of each damaged root aside (see RegistryStore::MoveAsideDamaged).
    std::vector<RegistryStore::MovedAside> MoveAsideDamaged();

private:
    struct Root
    {
        std::unique_ptr<sqlite::Database> database;
        // The database file; with `missing`, the file that did not exist and
        // that the empty stand-in in memory waits for.
        std::string file;
        bool missing = false;
        // The file was found damaged: nothing touches it any more.
        bool damaged = false;
        ReadCache cache;
    };

    LONG Open(Hive hive, Root& root);
    LONG OpenMissing(const std::string& path, Root& root);
    LONG Damaged(Root& root);

    Root mRoots[HiveCount];
    std::unordered_map<std::uintptr_t, OpenKey> mHandles;
    std::uintptr_t mNextHandle = 0x10000;
    int mBusyTimeout = 5000;
};

/// The one store of the process.
Store& TheStore();

// ---- Operations on an open database; the caller holds the store's mutex. ----

/// ERROR_SUCCESS if `node` exists, ERROR_KEY_DELETED if not.
LONG CheckExists(sqlite::Database& database, sqlite3_int64 node);

/// Finds the key at `parts` below `start`: ERROR_FILE_NOT_FOUND if it does not
/// exist, ERROR_KEY_DELETED if `start` itself is gone.
LONG Find(sqlite::Database& database, sqlite3_int64 start, const std::vector<std::string_view>& parts,
          sqlite3_int64& node);

/// Creates what is missing of `parts` below `start` inside the caller's transaction.
LONG CreatePath(sqlite::Database& database, sqlite3_int64 start, const std::vector<std::string_view>& parts,
                sqlite3_int64& node, bool& created);

/// Stores a value, replacing one of the same name.
LONG StoreValue(sqlite::Database& database, sqlite3_int64 node, std::string_view name, DWORD type, const BYTE* data,
                DWORD size);

} // namespace korva::registry
