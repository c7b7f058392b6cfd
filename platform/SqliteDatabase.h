#pragma once
// Internal to platform/ (the registry store's SQLite layer; callers include
// Registry.h). One open SQLite database with its prepared statements, and the
// registry result code that an SQLite result code stands for.

#include <KORVAutlwin/platform/Registry.h>

#include <sqlite3.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace korva::sqlite {

/// The registry's result code for an SQLite result code; `writing` tells which
/// of ERROR_CANTWRITE and ERROR_CANTREAD a busy or failing file gives.
LONG Win32Result(int rc, bool writing);

/// One open database. The statements that Query runs come from the owner's
/// table of SQL texts, named by index; each is prepared on its first use and
/// kept to the end.
class Database
{
public:
    using Statements = std::span<const char* const>;

    /// The statements of Transaction and Snapshot.
    enum Control { Begin, BeginRead, Commit, Rollback, ControlCount };

    /// Opens the file at `path` for reading and writing, creating it; where the
    /// file system refuses that, for reading only. Sets extended result codes,
    /// the busy timeout, and keeps -wal and -shm when the last connection
    /// closes, so that processes without write access to the folder can still
    /// read a WAL database. SQLITE_OK with `result` set, or the last error.
    static int OpenFile(const std::string& path, Statements statements, int busyTimeout,
                        std::unique_ptr<Database>& result);
    /// A new, empty database in memory. It reports itself read only: the owner
    /// fills it and then makes it refuse writes.
    static int OpenMemory(Statements statements, std::unique_ptr<Database>& result);

    Database(sqlite3* db, bool readOnly, Statements statements);
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;
    ~Database();

    /// After a fork the parent's connection is unusable in the child: forget it
    /// without closing, which could disturb the parent's locks.
    void Abandon();

    bool ReadOnly() const { return mReadOnly; }
    void SetBusyTimeout(int milliseconds);

    /// Records a result of this connection: whatever reads as damage
    /// (Win32Result gives ERROR_REGISTRY_CORRUPT: a corrupt page, no database,
    /// a table or column missing) marks the database damaged for good, so that
    /// a call that reported damage is never followed by a write. Returns `rc`.
    int Note(int rc)
    {
        if (rc != SQLITE_OK && rc != SQLITE_ROW && rc != SQLITE_DONE &&
            Win32Result(rc, false) == ERROR_REGISTRY_CORRUPT)
            MarkDamaged();
        return rc;
    }
    /// From now on the connection writes nothing, not even the checkpoint that
    /// closing the last connection would make.
    void MarkDamaged();
    bool Damaged() const { return mDamaged; }
    /// The header of the WAL index as it stands in shared memory; every commit of
    /// any connection, in any process, changes it.
    using Stamp = std::array<std::uint32_t, 12>;
    /// Makes ReadStamp work, for a database in WAL mode whose index is in shared
    /// memory; false for any other.
    bool WatchCommits();
    /// Reads the stamp without a lock or a system call. Two equal stamps mean
    /// that nobody committed in between: the test by which SQLite itself keeps
    /// its page cache and its data_version. False when there is nothing to read
    /// or a writer is changing it just now.
    bool ReadStamp(Stamp& stamp) const;

    /// Copies the WAL into the database file and syncs both, so that what was
    /// committed survives a power cut. Where other readers keep the WAL from
    /// being copied, the WAL file itself is synced.
    int Checkpoint();
    /// Runs SQL text that returns nothing (several statements may follow each other).
    int Exec(const char* sql);
    /// The first column of the first row of `sql` as a number, or as text.
    int ReadInt(const char* sql, int& value);
    int ReadText(const char* sql, std::string& value);
    /// Rows changed by the last statement; the id the last insert gave.
    int Changes() const { return sqlite3_changes(mDb); }
    sqlite3_int64 LastInsertId() const { return sqlite3_last_insert_rowid(mDb); }
    /// True outside an explicit transaction.
    bool Autocommit() const { return sqlite3_get_autocommit(mDb) != 0; }

    /// The cached statement `which` of the owner's table; null with `rc` set
    /// when it cannot be prepared.
    sqlite3_stmt* Prepared(std::size_t which, int& rc)
    {
        sqlite3_stmt* statement = mStatements[ControlCount + which];
        return statement ? statement : Prepare(ControlCount + which, mSql[which], rc);
    }
    /// Runs a transaction statement: SQLITE_OK or the error.
    int Run(Control which);

private:
    sqlite3_stmt* Prepare(std::size_t slot, const char* sql, int& rc);

    sqlite3* mDb;
    bool mReadOnly;
    bool mDamaged = false;
    // The WAL index in shared memory, mapped by SQLite for the connection's life.
    const volatile std::uint32_t* mIndex = nullptr;
    Statements mSql;
    // The transaction statements first, then the owner's.
    std::vector<sqlite3_stmt*> mStatements;
};

} // namespace korva::sqlite
