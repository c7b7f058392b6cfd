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
