#pragma once
// The registry: a tree of named keys with typed values below two roots, with
// the operations, result codes and access rights of the Win32 registry API.
//
// On Linux each root is one SQLite database:
//   HKEY_CURRENT_USER   $XDG_CONFIG_HOME/Tessmark/registry.sqlite (default ~/.config)
//   HKEY_LOCAL_MACHINE  /var/lib/Tessmark/registry.sqlite
// With KORVA_REGISTRY_DIR set, both move: $KORVA_REGISTRY_DIR/HKCU.sqlite and
// $KORVA_REGISTRY_DIR/HKLM.sqlite. The environment is read at the first call
// and again after korva::RegistryStore::Reset().
//
// Behaviour a caller can rely on:
// - Key and value names are compared without ASCII case and kept with the case
//   they were first given; keys and values are enumerated in name order (ASCII
//   case folded). Key paths use "\\" between components; empty components are
//   skipped, except that RegCreateKeyExA refuses a leading "\\" as Win32 does.
// - The A functions take and give UTF-8 bytes and convert nothing. The W
//   functions take UTF-16 names; value data is stored and returned byte for
//   byte whichever function wrote it, so wide text is UTF-16LE in the store.
// - Every successful write is committed before the call returns: a process
//   killed at any moment loses nothing that was reported written. A power
//   failure may lose the commits since the last RegFlushKey, never the database.
// - Several processes may use one store at once; a call waits up to the busy
//   timeout (5 s by default) for another process's write. Every call sees what
//   any process committed before the call began: keys and values that a
//   process reads again are served from its memory only while the store's
//   WAL index shows no commit since they were read.
// - A root that the file system does not let this process write is opened read
//   only: opening or creating a key with any write right, and every write,
//   give ERROR_ACCESS_DENIED. A root whose file does not exist and cannot be
//   created is an empty, read-only root. The -wal and -shm files stay beside
//   the database when it is closed, so that readers without write access to
//   the folder can open it.
// - Failures of the store itself: still locked by another process after the
//   busy timeout: ERROR_CANTREAD for reads, ERROR_CANTWRITE for writes; disk
//   full or I/O error: ERROR_CANTWRITE / ERROR_CANTREAD; a file that cannot be
//   opened: ERROR_CANTOPEN.
// - Damage: a root's file is checked when the process first opens it, and any
//   damage that SQLite meets later counts as well. From then on every call on
//   that root gives ERROR_REGISTRY_CORRUPT, and neither the file nor its -wal
//   is written again (no commit, no checkpoint) until
//   RegistryStore::MoveAsideDamaged moves it aside or the store is reset. A
//   file that is no registry database counts as damaged.
// - A handle whose key was deleted (by anyone) gives ERROR_KEY_DELETED; a
//   handle that was never opened or is already closed gives
//   ERROR_INVALID_HANDLE (handle values are never reused, so closing twice is
//   harmless).
// - Keys have no class and no write time: classes read as empty texts, write
//   times as zero.
// - All functions are thread-safe.

#include <cstdint>
#include <string>
#include <vector>

struct HKEY__;
using HKEY = HKEY__*;
using LONG = std::int32_t;
using DWORD = std::uint32_t;
using BYTE = std::uint8_t;
using WCHAR = char16_t;
using REGSAM = DWORD;

/// A time stamp in 100-nanosecond intervals since 1601, in two halves.
struct FILETIME
{
    DWORD dwLowDateTime;
    DWORD dwHighDateTime;
};

// Predefined roots; RegCloseKey leaves them alone.
inline HKEY const HKEY_CURRENT_USER = reinterpret_cast<HKEY>(std::uintptr_t{0x80000001u});
inline HKEY const HKEY_LOCAL_MACHINE = reinterpret_cast<HKEY>(std::uintptr_t{0x80000002u});

// Result codes.
inline constexpr LONG ERROR_SUCCESS = 0;
inline constexpr LONG ERROR_FILE_NOT_FOUND = 2;
inline constexpr LONG ERROR_ACCESS_DENIED = 5;
inline constexpr LONG ERROR_INVALID_HANDLE = 6;
inline constexpr LONG ERROR_OUTOFMEMORY = 14;
inline constexpr LONG ERROR_INVALID_PARAMETER = 87;
inline constexpr LONG ERROR_BAD_PATHNAME = 161;
inline constexpr LONG ERROR_MORE_DATA = 234;
inline constexpr LONG ERROR_NO_MORE_ITEMS = 259;
inline constexpr LONG ERROR_BADKEY = 1010;
inline constexpr LONG ERROR_CANTOPEN = 1011;
inline constexpr LONG ERROR_CANTREAD = 1012;
inline constexpr LONG ERROR_CANTWRITE = 1013;
inline constexpr LONG ERROR_REGISTRY_CORRUPT = 1015;
inline constexpr LONG ERROR_REGISTRY_IO_FAILED = 1016;
inline constexpr LONG ERROR_KEY_DELETED = 1018;

// Access rights.
inline constexpr REGSAM KEY_QUERY_VALUE = 0x0001;
inline constexpr REGSAM KEY_SET_VALUE = 0x0002;
inline constexpr REGSAM KEY_CREATE_SUB_KEY = 0x0004;
inline constexpr REGSAM KEY_ENUMERATE_SUB_KEYS = 0x0008;
inline constexpr REGSAM KEY_NOTIFY = 0x0010;
inline constexpr REGSAM KEY_CREATE_LINK = 0x0020;
inline constexpr REGSAM DELETE = 0x00010000;
inline constexpr REGSAM READ_CONTROL = 0x00020000;
inline constexpr REGSAM WRITE_DAC = 0x00040000;
inline constexpr REGSAM WRITE_OWNER = 0x00080000;
inline constexpr REGSAM KEY_READ = 0x00020019;
inline constexpr REGSAM KEY_WRITE = 0x00020006;
inline constexpr REGSAM KEY_ALL_ACCESS = 0x000F003F;

// Value types.
inline constexpr DWORD REG_NONE = 0;
inline constexpr DWORD REG_SZ = 1;
inline constexpr DWORD REG_EXPAND_SZ = 2;
inline constexpr DWORD REG_BINARY = 3;
inline constexpr DWORD REG_DWORD = 4;

// Options and dispositions of RegCreateKeyExA. Every key is kept on disk.
inline constexpr DWORD REG_OPTION_NON_VOLATILE = 0;
inline constexpr DWORD REG_CREATED_NEW_KEY = 1;
inline constexpr DWORD REG_OPENED_EXISTING_KEY = 2;

/// Opens `subKey` below `key` with the rights `access` into `*result`. A null or
/// empty `subKey` opens a new handle on `key` itself. On failure `*result` is null.
/// ERROR_FILE_NOT_FOUND when the key does not exist.
LONG RegOpenKeyExA(HKEY key, const char* subKey, DWORD options, REGSAM access, HKEY* result);

/// Opens `subKey` below `key`, creating it and any missing key on the way
/// (which needs KEY_CREATE_SUB_KEY on `key`). `*disposition` (if not null)
/// receives REG_CREATED_NEW_KEY or REG_OPENED_EXISTING_KEY. An empty `subKey`
/// opens a new handle on `key`; a null one is ERROR_INVALID_PARAMETER, a leading
/// "\\" ERROR_BAD_PATHNAME, a component longer than 255 bytes
/// ERROR_INVALID_PARAMETER. `keyClass`, `options` and `security` are accepted and ignored.
LONG RegCreateKeyExA(HKEY key, const char* subKey, DWORD reserved, char* keyClass, DWORD options,
                     REGSAM access, const void* security, HKEY* result, DWORD* disposition);

/// Closes a handle. Predefined roots: success, nothing done.
LONG RegCloseKey(HKEY key);

/// Deletes `subKey` below `key` with its values. A key with children is not
/// deleted: ERROR_ACCESS_DENIED. An empty `subKey` deletes the key of `key`
/// itself, which needs DELETE on that handle.
LONG RegDeleteKeyA(HKEY key, const char* subKey);

/// Deletes one value (null or "": the default value). Needs KEY_SET_VALUE.
LONG RegDeleteValueA(HKEY key, const char* valueName);

/// The name of child number `index` (name order). `*nameLength` is the buffer
/// size in bytes with the terminator; on success it receives the name's length
/// without it. ERROR_MORE_DATA (size left alone) when the name does not fit;
/// ERROR_NO_MORE_ITEMS past the last child. Needs KEY_ENUMERATE_SUB_KEYS.
LONG RegEnumKeyExA(HKEY key, DWORD index, char* name, DWORD* nameLength, DWORD* reserved,
                   char* keyClass, DWORD* classLength, FILETIME* lastWriteTime);

/// Value number `index` (name order): name as in RegEnumKeyExA, type, and data
/// as in RegQueryValueExA. ERROR_NO_MORE_ITEMS past the last value. Needs KEY_QUERY_VALUE.
LONG RegEnumValueA(HKEY key, DWORD index, char* valueName, DWORD* valueNameLength, DWORD* reserved,
                   DWORD* type, BYTE* data, DWORD* dataSize);

/// Counts and longest lengths (bytes, without terminator) of the children and
/// values of `key`. Every out pointer may be null. Needs KEY_QUERY_VALUE.
LONG RegQueryInfoKeyA(HKEY key, char* keyClass, DWORD* classLength, DWORD* reserved,
                      DWORD* subKeys, DWORD* maxSubKeyLength, DWORD* maxClassLength,
                      DWORD* values, DWORD* maxValueNameLength, DWORD* maxValueLength,
                      DWORD* securityDescriptorSize, FILETIME* lastWriteTime);

/// Reads a value (null or "" name: the default value). `*type` receives its
/// type. With `data` null and `dataSize` not null, `*dataSize` receives the size.
/// With a buffer too small: ERROR_MORE_DATA and the size needed in `*dataSize`.
/// `data` without `dataSize` is ERROR_INVALID_PARAMETER. Needs KEY_QUERY_VALUE.
LONG RegQueryValueExA(HKEY key, const char* valueName, DWORD* reserved, DWORD* type, BYTE* data,
                      DWORD* dataSize);
/// RegQueryValueExA with a UTF-16 value name.
LONG RegQueryValueExW(HKEY key, const WCHAR* valueName, DWORD* reserved, DWORD* type, BYTE* data,
                      DWORD* dataSize);

/// Sets the default value of `subKey` (created if missing; null or "": `key`
/// itself) to the text `data` with its terminator. `type` must be REG_SZ;
/// `dataSize` is ignored, as in Win32.
LONG RegSetValueA(HKEY key, const char* subKey, DWORD type, const char* data, DWORD dataSize);

/// Stores `dataSize` bytes of `data` with `type` as value `valueName` (null or
/// "": the default value), replacing any value of that name. Needs KEY_SET_VALUE.
LONG RegSetValueExA(HKEY key, const char* valueName, DWORD reserved, DWORD type, const BYTE* data,
                    DWORD dataSize);
/// Makes every write so far on the root of `key` durable against a power
/// failure too (a checkpoint of the WAL with a full sync). Needs no right.
LONG RegFlushKey(HKEY key);

/// RegSetValueExA with a UTF-16 value name.
LONG RegSetValueExW(HKEY key, const WCHAR* valueName, DWORD reserved, DWORD type, const BYTE* data,
                    DWORD dataSize);

namespace korva {

/// Control of the store behind the registry functions.
class RegistryStore
{
public:
    /// Closes both databases and invalidates every open handle (they give
    /// ERROR_INVALID_HANDLE from now on); the next call reads the environment
    /// again. For tests, and for a process that changes KORVA_REGISTRY_DIR.
    static void Reset();

    /// The database file of HKEY_CURRENT_USER or HKEY_LOCAL_MACHINE as the
    /// environment names it now; empty for any other handle.
    static std::string GetPath(HKEY root);

    /// How long a call waits for another process's write (milliseconds).
    static void SetBusyTimeout(int milliseconds);

    /// A damaged database file and the name it was moved to; `movedTo` is
    /// empty when it could not be moved (it stays damaged and refused).
    struct MovedAside
    {
        std::string file;
        std::string movedTo;
    };
    /// For the start of an application: opens each root whose file exists,
    /// which checks it, and renames the file of each damaged one to
    /// "<file>.corrupt-<UTC time>" (its -wal and -shm likewise), so that the
    /// root starts again empty. Handles on a moved root become invalid.
    /// Nothing is deleted. Returns the damaged roots, none when all is well.
    static std::vector<MovedAside> MoveAsideDamaged();
};

} // namespace korva
