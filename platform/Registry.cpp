// The registry functions: their checks of arguments and rights, and their
// result codes, over the store (RegistryStore.h) and its SQLite layer.

#include <KORVAutlwin/platform/Registry.h>

#include <KORVAutlwin/platform/RegistryStore.h>
#include <KORVAutlwin/platform/SqliteQuery.h>
#include <KORVAutlwin/platform/SqliteTransaction.h>
#include <KORVAutlwin/platform/TsUnicode.h>

#include <algorithm>
#include <cstring>
#include <initializer_list>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace korva {
namespace {

using namespace registry;
using sqlite::Database;
using sqlite::Query;
using sqlite::Snapshot;
using sqlite::Transaction;
using sqlite::Win32Result;

constexpr std::size_t kMaxKeyNameLength = 255;
constexpr REGSAM kWriteRights = KEY_SET_VALUE | KEY_CREATE_SUB_KEY | KEY_CREATE_LINK | DELETE | WRITE_DAC | WRITE_OWNER;

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

// The common frame of every call: lock, resolve the handle, check the rights,
// open the database; then the steps that calls share on the call's key.
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
            mDatabase = store.Connect(mKey.hive, mError);
    }
    LONG Error() const { return mError; }
    Database& Db() const { return *mDatabase; }
    const OpenKey& Key() const { return mKey; }
    bool Predefined() const { return mPredefined; }

    // The frame's error; for a handle with write rights, a read-only root refuses.
    LONG Opening(REGSAM access) const
    {
        if (mError)
            return mError;
        return mDatabase->ReadOnly() && (access & kWriteRights) ? ERROR_ACCESS_DENIED : ERROR_SUCCESS;
    }
    HKEY NewHandle(sqlite3_int64 node, REGSAM access) const { return TheStore().NewHandle({mKey.hive, node, access}); }

    // The read cache of the call's database, if it may be used in this call.
    ReadCache* Cache()
    {
        if (!mCacheChecked) {
            mCacheChecked = true;
            ReadCache& cache = TheStore().CacheOf(mKey.hive);
            mCache = cache.Fresh(*mDatabase) ? &cache : nullptr;
        }
        return mCache;
    }

    // Finds the key at `parts` below the call's key; a walk of several steps
    // reads one state.
    LONG Find(const std::vector<std::string_view>& parts, sqlite3_int64& node)
    {
        ReadCache* cache = parts.empty() ? nullptr : Cache();
        if (cache && cache->FindKey(mKey.node, parts, node))
            return ERROR_SUCCESS;
        Snapshot snapshot(*mDatabase, parts.size() > 1);
        const LONG error = registry::Find(*mDatabase, mKey.node, parts, node);
        if (cache && error == ERROR_SUCCESS)
            cache->AddKey(mKey.node, parts, node);
        return error;
    }

    // Runs `statement` on the key and `second` (a name or an index); the row
    // stays readable in Row() to the end of the call.
    template <typename Second>
    int Run(Statement statement, const Second& second)
    {
        mQuery.emplace(*mDatabase, statement);
        mQuery->Bind(1, mKey.node);
        mQuery->Bind(2, second);
        return mQuery->Step();
    }
    // The frame's error, or Run's row; without a row `none`, unless the key
    // itself is gone.
    template <typename Second>
    LONG Read(Statement statement, const Second& second, LONG none)
    {
        if (mError)
            return mError;
        const int rc = Run(statement, second);
        if (rc == SQLITE_ROW)
            return ERROR_SUCCESS;
        return rc == SQLITE_DONE ? Missing(none) : Win32Result(rc, false);
    }
    const Query& Row() const { return *mQuery; }
    // `none` while the key exists, else why it does not.
    LONG Missing(LONG none) const
    {
        const LONG error = CheckExists(*mDatabase, mKey.node);
        return error ? error : none;
    }

    // The counts of `statement` (one row about the key) into those of `out`
    // that are asked for, column by column; runs nothing when none is.
    LONG Counts(Statement statement, std::initializer_list<DWORD*> out) const
    {
        if (std::none_of(out.begin(), out.end(), [](DWORD* target) { return target != nullptr; }))
            return ERROR_SUCCESS;
        Query query(*mDatabase, statement);
        query.Bind(1, mKey.node);
        const int rc = query.Step();
        if (rc != SQLITE_ROW)
            return Win32Result(rc, false);
        int column = 0;
        for (DWORD* target : out) {
            if (target)
                *target = static_cast<DWORD>(query.Int(column));
            ++column;
        }
        return ERROR_SUCCESS;
    }

private:
    std::lock_guard<std::mutex> mLock;
    OpenKey mKey{};
    bool mPredefined = false;
    LONG mError = ERROR_SUCCESS;
    Database* mDatabase = nullptr;
    bool mCacheChecked = false;
    ReadCache* mCache = nullptr;
    std::optional<Query> mQuery;   // reset before the lock is let go
};

bool TooLong(const std::vector<std::string_view>& parts)
{
    return std::any_of(parts.begin(), parts.end(),
                       [](std::string_view part) { return part.size() > kMaxKeyNameLength; });
}

// The type and data of a value: the data only if it fits in `*dataSize`
// bytes, its size in any case. False when it did not fit.
bool CopyValue(DWORD valueType, const void* valueData, DWORD size, DWORD* type, BYTE* data, DWORD* dataSize)
{
    if (type)
        *type = valueType;
    const bool fits = !data || *dataSize >= size;
    if (data && fits && size)
        std::memcpy(data, valueData, size);
    if (dataSize)
        *dataSize = size;
    return fits;
}

// CopyValue of a value row, with the type in column `typeColumn` and the data in the next.
bool CopyValue(const Query& row, int typeColumn, DWORD* type, BYTE* data, DWORD* dataSize)
{
    return CopyValue(static_cast<DWORD>(row.Int(typeColumn)), row.Blob(typeColumn + 1), row.Bytes(typeColumn + 1), type,
                     data, dataSize);
}

// Keys have no class and no write time.
void NoClass(char* keyClass, DWORD* classLength, FILETIME* lastWriteTime)
{
    if (keyClass && classLength && *classLength)
        keyClass[0] = '\0';
    if (classLength)
        *classLength = 0;
    if (lastWriteTime)
        *lastWriteTime = FILETIME{0, 0};
}

LONG QueryValue(HKEY key, std::string_view name, DWORD* reserved, DWORD* type, BYTE* data, DWORD* dataSize)
{
    if (reserved || (data && !dataSize))
        return ERROR_INVALID_PARAMETER;
    Call call(key, KEY_QUERY_VALUE);
    ReadCache* cache = call.Error() ? nullptr : call.Cache();
    if (const ReadCache::Value* known = cache ? cache->FindValue(call.Key().node, name) : nullptr)
        return CopyValue(known->type, known->data.data(), static_cast<DWORD>(known->data.size()), type, data, dataSize)
                   ? ERROR_SUCCESS
                   : ERROR_MORE_DATA;
    if (const LONG error = call.Read(GetValue, name, ERROR_FILE_NOT_FOUND))
        return error;
    const Query& row = call.Row();
    if (cache)
        cache->AddValue(call.Key().node, name, static_cast<DWORD>(row.Int(0)), row.Blob(1), row.Bytes(1));
    return CopyValue(row, 0, type, data, dataSize) ? ERROR_SUCCESS : ERROR_MORE_DATA;
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
} // namespace korva

using namespace korva;

LONG RegOpenKeyExA(HKEY key, const char* subKey, DWORD /*options*/, REGSAM access, HKEY* result)
{
    if (!result)
        return ERROR_INVALID_PARAMETER;
    *result = nullptr;
    Call call(key, 0);
    if (const LONG error = call.Opening(access))
        return error;
    sqlite3_int64 node = 0;
    if (const LONG error = call.Find(SplitPath(subKey), node))
        return error;
    *result = call.NewHandle(node, access);
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
    if (TooLong(parts))
        return ERROR_INVALID_PARAMETER;
    Call call(key, 0);
    LONG error = call.Opening(access);
    if (error)
        return error;
    Database& db = call.Db();

    // Opening an existing key needs no right on the parent; only creating does.
    sqlite3_int64 node = 0;
    error = call.Find(parts, node);
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
    *result = call.NewHandle(node, access);
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
    Database& db = call.Db();
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
            return Win32Result(rc, true);
    }
    {
        Query remove(db, DeleteKeyRow);
        remove.Bind(1, node);
        if ((error = Win32Result(remove.Step(), true)) != ERROR_SUCCESS)
            return error;
    }
    return transaction.Finish();
}

LONG RegDeleteValueA(HKEY key, const char* valueName)
{
    Call call(key, KEY_SET_VALUE);
    if (call.Error())
        return call.Error();
    if (call.Db().ReadOnly())
        return call.Run(GetValue, NameOf(valueName)) == SQLITE_ROW ? ERROR_ACCESS_DENIED : ERROR_FILE_NOT_FOUND;
    const int rc = call.Run(DeleteValue, NameOf(valueName));
    if (rc != SQLITE_DONE)
        return Win32Result(rc, true);
    return call.Db().Changes() ? ERROR_SUCCESS : call.Missing(ERROR_FILE_NOT_FOUND);
}

LONG RegEnumKeyExA(HKEY key, DWORD index, char* name, DWORD* nameLength, DWORD* /*reserved*/, char* keyClass,
                   DWORD* classLength, FILETIME* lastWriteTime)
{
    if (!nameLength)
        return ERROR_INVALID_PARAMETER;
    Call call(key, KEY_ENUMERATE_SUB_KEYS);
    if (const LONG error = call.Read(EnumKey, static_cast<sqlite3_int64>(index), ERROR_NO_MORE_ITEMS))
        return error;
    if (!CopyName(call.Row().Text(0), name, nameLength))
        return ERROR_MORE_DATA;
    NoClass(keyClass, classLength, lastWriteTime);
    return ERROR_SUCCESS;
}

LONG RegEnumValueA(HKEY key, DWORD index, char* valueName, DWORD* valueNameLength, DWORD* /*reserved*/, DWORD* type,
                   BYTE* data, DWORD* dataSize)
{
    if (!valueNameLength || (data && !dataSize))
        return ERROR_INVALID_PARAMETER;
    Call call(key, KEY_QUERY_VALUE);
    if (const LONG error = call.Read(EnumValue, static_cast<sqlite3_int64>(index), ERROR_NO_MORE_ITEMS))
        return error;
    const bool fits = CopyValue(call.Row(), 1, type, data, dataSize);
    if (!fits || !CopyName(call.Row().Text(0), valueName, valueNameLength))
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
    Snapshot snapshot(call.Db(), true);
    LONG error = CheckExists(call.Db(), call.Key().node);
    if (!error)
        error = call.Counts(KeyInfo, {subKeys, maxSubKeyLength});
    if (!error)
        error = call.Counts(ValueInfo, {values, maxValueNameLength, maxValueLength});
    if (error)
        return error;
    NoClass(keyClass, classLength, lastWriteTime);
    if (maxClassLength)
        *maxClassLength = 0;
    if (securityDescriptorSize)
        *securityDescriptorSize = 0;
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
    const auto* text = reinterpret_cast<const BYTE*>(data);
    const auto size = static_cast<DWORD>(std::strlen(data) + 1);
    const std::vector<std::string_view> parts = SplitPath(subKey);
    if (parts.empty())
        return SetValueEx(key, {}, REG_SZ, text, size);
    if (TooLong(parts))
        return ERROR_INVALID_PARAMETER;
    Call call(key, 0);
    if (call.Error())
        return call.Error();
    Database& db = call.Db();
    sqlite3_int64 node = 0;
    LONG error = call.Find(parts, node);
    if (error && error != ERROR_FILE_NOT_FOUND)
        return error;
    if (db.ReadOnly() || (error && !(call.Key().access & KEY_CREATE_SUB_KEY)))
        return ERROR_ACCESS_DENIED;
    Transaction transaction(db);
    bool created = false;
    if (!(error = transaction.Start()) && !(error = CreatePath(db, call.Key().node, parts, node, created)))
        error = StoreValue(db, node, {}, REG_SZ, text, size);
    return error ? error : transaction.Finish();
}

LONG RegFlushKey(HKEY key)
{
    Call call(key, 0);
    if (call.Error())
        return call.Error();
    // A read-only root has nothing of this process to flush.
    if (call.Db().ReadOnly())
        return ERROR_SUCCESS;
    return Win32Result(call.Db().Checkpoint(), true);
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
