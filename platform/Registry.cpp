// The registry functions: their checks of arguments and rights, and their
// result codes, over the store (RegistryStore.h) and its SQLite layer.

#include <KORVAutlwin/platform/Registry.h>

#include <KORVAutlwin/platform/RegistryStore.h>
#include <KORVAutlwin/platform/SqliteQuery.h>
#include <KORVAutlwin/platform/SqliteTransaction.h>
#include <KORVAutlwin/platform/TsUnicode.h>

#include <cstring>
#include <mutex>
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
            mDatabase = store.Connect(mKey.hive, mError);
    }
    LONG Error() const { return mError; }
    Database& Db() const { return *mDatabase; }
    const OpenKey& Key() const { return mKey; }
    bool Predefined() const { return mPredefined; }

private:
    std::lock_guard<std::mutex> mLock;
    OpenKey mKey{};
    bool mPredefined = false;
    LONG mError = ERROR_SUCCESS;
    Database* mDatabase = nullptr;
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
        return Win32Result(rc, false);
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
    Database& db = call.Db();
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
    Database& db = call.Db();
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
        return Win32Result(rc, true);
    if (db.Changes() == 0) {
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
        return Win32Result(rc, false);
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
        return Win32Result(rc, false);
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
    Database& db = call.Db();
    Snapshot snapshot(db, true);
    LONG error = CheckExists(db, call.Key().node);
    if (error)
        return error;
    if (subKeys || maxSubKeyLength) {
        Query query(db, KeyInfo);
        query.Bind(1, call.Key().node);
        const int rc = query.Step();
        if (rc != SQLITE_ROW)
            return Win32Result(rc, false);
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
            return Win32Result(rc, false);
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
    Database& db = call.Db();
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
