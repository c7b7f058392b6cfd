#pragma once
// Internal to platform/ (the registry store's SQLite layer). One use of a
// cached statement: bind, step, read the columns; reset when done.

#include <KORVAutlwin/platform/SqliteDatabase.h>

#include <cstddef>
#include <string_view>

namespace korva::sqlite {

/// Runs statement `which` of the database's table. A statement that could not
/// be prepared binds nothing and steps to the preparing error.
class Query
{
public:
    Query(Database& database, std::size_t which) : mDatabase(database), mStatement(database.Prepared(which, mPrepare))
    {
    }
    Query(const Query&) = delete;
    Query& operator=(const Query&) = delete;
    ~Query()
    {
        if (mStatement)
            sqlite3_reset(mStatement);
    }

    // Bound texts and blobs are not copied: they must outlive the query.
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
    /// SQLITE_ROW, SQLITE_DONE or an error.
    int Step() { return mStatement ? mDatabase.Note(sqlite3_step(mStatement)) : mPrepare; }

    sqlite3_int64 Int(int column) const { return sqlite3_column_int64(mStatement, column); }
    std::string_view Text(int column) const
    {
        const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(mStatement, column));
        return {text ? text : "", static_cast<std::size_t>(sqlite3_column_bytes(mStatement, column))};
    }
    const void* Blob(int column) const { return sqlite3_column_blob(mStatement, column); }
    DWORD Bytes(int column) const { return static_cast<DWORD>(sqlite3_column_bytes(mStatement, column)); }

private:
    Database& mDatabase;
    int mPrepare = SQLITE_OK;   // declared before the statement: its initialiser sets it
    sqlite3_stmt* mStatement;
};

} // namespace korva::sqlite
