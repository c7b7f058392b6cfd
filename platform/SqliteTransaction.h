#pragma once
// Internal to platform/ (the registry store's SQLite layer). A write
// transaction, and the read transaction of one call.

#include <KORVAutlwin/platform/SqliteDatabase.h>

namespace korva::sqlite {

/// A write transaction (BEGIN IMMEDIATE, so the busy timeout applies at its
/// start and never to an upgrade half-way); rolled back unless finished.
class Transaction
{
public:
    explicit Transaction(Database& database) : mDatabase(database) {}
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;
    ~Transaction()
    {
        if (mOpen)
            mDatabase.Run(Database::Rollback);
    }
    LONG Start()
    {
        const int rc = mDatabase.Run(Database::Begin);
        mOpen = rc == SQLITE_OK;
        return Win32Result(rc, true);
    }
    /// Commits: from ERROR_SUCCESS on, the writes survive the process being killed.
    LONG Finish()
    {
        const int rc = mDatabase.Run(Database::Commit);
        if (rc == SQLITE_OK)
            mOpen = false;
        return Win32Result(rc, true);
    }

private:
    Database& mDatabase;
    bool mOpen = false;
};

/// The reads of one call in one read transaction: they see one state, and each
/// transaction costs a lock round trip on the shared-memory file. Does nothing
/// when not `needed` or inside a transaction already.
class Snapshot
{
public:
    Snapshot(Database& database, bool needed)
        : mDatabase(database), mOpen(needed && database.Autocommit() && database.Run(Database::BeginRead) == SQLITE_OK)
    {
    }
    Snapshot(const Snapshot&) = delete;
    Snapshot& operator=(const Snapshot&) = delete;
    ~Snapshot()
    {
        if (mOpen)
            mDatabase.Run(Database::Commit);
    }

private:
    Database& mDatabase;
    bool mOpen;
};

} // namespace korva::sqlite
