// The registry store: Win32 semantics, and what SQLite must guarantee underneath
// (other processes, killed writers, read-only and damaged files).

#include "utl/TempDir.h"

#include <KORVAutlwin/platform/Registry.h>

#include <sqlite3.h>

#include <cstdio>
#include <vector>

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;
using Names = std::vector<std::string>;
using Info = std::vector<DWORD>;

// Runs `body` in a child process; its failures print there and fail the child.
pid_t Spawn(const std::function<void()>& body)
{
    std::fflush(stdout);
    const pid_t child = ::fork();
    if (child == 0) {
        body();
        std::fflush(stdout);
        ::_exit(::testing::Test::HasFailure() ? 1 : 0);
    }
    return child;
}

// The child's wait status: 0 when it exited well.
int Wait(pid_t child)
{
    int status = -1;
    ::waitpid(child, &status, 0);
    return status;
}

class RegistryStoreTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ::setenv("KORVA_REGISTRY_DIR", mDir.Path().c_str(), 1);
        korva::RegistryStore::Reset();
    }
    void TearDown() override { korva::RegistryStore::Reset(); }   // also closes what a test left open

    static LONG CreateKey(HKEY root, const std::string& path, REGSAM access, HKEY* key, DWORD* disposition = nullptr)
    {
        return RegCreateKeyExA(root, path.c_str(), 0, nullptr, 0, access, nullptr, key, disposition);
    }
    // A handle on an existing key, or on a key made now with `create`.
    static HKEY Open(HKEY root, const std::string& path, REGSAM access = KEY_ALL_ACCESS, bool create = false)
    {
        HKEY key = nullptr;
        EXPECT_EQ(create ? CreateKey(root, path, access, &key) : RegOpenKeyExA(root, path.c_str(), 0, access, &key),
                  ERROR_SUCCESS)
            << path;
        return key;
    }
    static HKEY Create(HKEY root, const std::string& path) { return Open(root, path, KEY_ALL_ACCESS, true); }
    static LONG SetText(HKEY key, const char* name, const std::string& text)
    {
        return RegSetValueExA(key, name, 0, REG_SZ, reinterpret_cast<const BYTE*>(text.c_str()),
                              static_cast<DWORD>(text.size() + 1));
    }
    // The value's bytes (read into a larger buffer), or Err(code).
    static std::string Get(HKEY key, const char* name, DWORD* type = nullptr)
    {
        std::string data(4096, '\0');
        DWORD size = static_cast<DWORD>(data.size());
        const LONG rc = RegQueryValueExA(key, name, nullptr, type, reinterpret_cast<BYTE*>(data.data()), &size);
        return rc == ERROR_SUCCESS ? data.substr(0, size) : Err(rc);
    }
    // The name of value (or child) number `index` read into `length` bytes (0: no buffer), or Err(code).
    static std::string EnumValue(HKEY key, DWORD index, DWORD length = 256, bool children = false)
    {
        char name[256];
        char* buffer = length ? name : nullptr;
        const LONG rc = children ? RegEnumKeyExA(key, index, buffer, &length, nullptr, nullptr, nullptr, nullptr)
                                 : RegEnumValueA(key, index, buffer, &length, nullptr, nullptr, nullptr, nullptr);
        return rc == ERROR_SUCCESS ? std::string(name, length) : Err(rc);
    }
    static std::string EnumKey(HKEY key, DWORD index, DWORD size = 256) { return EnumValue(key, index, size, true); }
    static Names SubKeys(HKEY key)
    {
        Names names;
        for (std::string name; (name = EnumKey(key, static_cast<DWORD>(names.size()))).rfind("<error", 0) != 0;)
            names.push_back(name);
        return names;
    }
    // Sub-keys, longest sub-key name, values, longest value name, longest data; or the error alone.
    static Info InfoOf(HKEY key)
    {
        DWORD n[5] = {};
        const LONG rc = RegQueryInfoKeyA(key, nullptr, nullptr, nullptr, &n[0], &n[1], nullptr, &n[2], &n[3], &n[4],
                                         nullptr, nullptr);
        return rc == ERROR_SUCCESS ? Info(n, n + 5) : Info{static_cast<DWORD>(rc)};
    }
    std::string FileOf(const char* root) const { return mDir.File(std::string(root) + ".sqlite"); }
    static std::string Bytes(const void* data, std::size_t size) { return {static_cast<const char*>(data), size}; }
    static std::string Text(const std::string& text) { return text + '\0'; }   // a text value as stored
    static std::string Err(LONG rc) { return "<error " + std::to_string(rc) + ">"; }

    TempDir mDir;
};

TEST_F(RegistryStoreTest, NamesCompareWithoutCaseAndKeepTheirFirstSpelling)
{
    HKEY key = nullptr;
    DWORD disposition = 0;
    ASSERT_EQ(CreateKey(HKEY_CURRENT_USER, "Software\\Acme\\Tool", KEY_ALL_ACCESS, &key, &disposition), ERROR_SUCCESS);
    EXPECT_EQ(disposition, REG_CREATED_NEW_KEY);
    ASSERT_EQ(SetText(key, "Value", "1"), ERROR_SUCCESS);
    ASSERT_EQ(SetText(key, "VALUE", "2"), ERROR_SUCCESS);
    ASSERT_EQ(CreateKey(HKEY_CURRENT_USER, "SOFTWARE\\acme\\TOOL", KEY_READ, &key, &disposition), ERROR_SUCCESS);
    EXPECT_EQ(std::tuple(disposition, EnumValue(key, 0), Get(key, "value")),
              std::tuple(REG_OPENED_EXISTING_KEY, "Value", Text("2")));

    // A trailing separator names the same key.
    key = Open(HKEY_CURRENT_USER, "software\\ACME\\tool\\");
    EXPECT_EQ(RegDeleteValueA(key, "vALUE"), ERROR_SUCCESS);
    EXPECT_EQ(RegDeleteValueA(key, "Value"), ERROR_FILE_NOT_FOUND);
    Create(HKEY_CURRENT_USER, "SOFTWARE\\ACME\\Other");
    HKEY software = Open(HKEY_CURRENT_USER, "software", KEY_READ);
    EXPECT_EQ(SubKeys(software), Names{"Acme"});

    // An empty sub-key is a second handle on the same key.
    HKEY again = Open(software, "");
    ASSERT_EQ(SetText(again, "Shared", "x"), ERROR_SUCCESS);
    EXPECT_EQ(Get(software, "Shared"), Text("x"));

    key = reinterpret_cast<HKEY>(0x1);
    EXPECT_EQ(RegOpenKeyExA(HKEY_CURRENT_USER, "Software\\Missing", 0, KEY_READ, &key), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(key, nullptr);
    EXPECT_EQ(RegOpenKeyExA(HKEY_CURRENT_USER, "Software", 0, KEY_READ, nullptr), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(CreateKey(HKEY_CURRENT_USER, "\\Software", KEY_READ, &key), ERROR_BAD_PATHNAME);
    Create(HKEY_CURRENT_USER, std::string(255, 'n'));
    EXPECT_EQ(CreateKey(HKEY_CURRENT_USER, std::string(256, 'n'), KEY_READ, &key), ERROR_INVALID_PARAMETER);
}

TEST_F(RegistryStoreTest, ValuesFollowTheSizeProtocolAndKeepTheirBytes)
{
    HKEY key = Create(HKEY_CURRENT_USER, "Sizes");
    const BYTE blob[10] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10};
    ASSERT_EQ(RegSetValueExA(key, "Blob", 0, REG_BINARY, blob, sizeof(blob)), ERROR_SUCCESS);

    // Too small: the size needed and the type come back; no buffer: the size alone; larger: the size used.
    BYTE data[32] = {};
    DWORD size = 4, type = REG_NONE;
    EXPECT_EQ(RegQueryValueExA(key, "Blob", nullptr, &type, data, &size), ERROR_MORE_DATA);
    EXPECT_EQ(std::tuple(size, type), std::tuple(10u, REG_BINARY));
    size = 0;
    EXPECT_EQ(RegQueryValueExA(key, "Blob", nullptr, nullptr, nullptr, &size), ERROR_SUCCESS);
    EXPECT_EQ(size, 10u);
    EXPECT_EQ(Get(key, "Blob"), Bytes(blob, sizeof(blob)));

    EXPECT_EQ(RegQueryValueExA(key, "Blob", nullptr, nullptr, data, nullptr), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(RegQueryValueExA(key, "Blob", nullptr, nullptr, nullptr, nullptr), ERROR_SUCCESS);
    EXPECT_EQ(Get(key, "Missing"), Err(ERROR_FILE_NOT_FOUND));

    // Null and empty names are the default value; empty data is a value too.
    ASSERT_EQ(SetText(key, nullptr, "default"), ERROR_SUCCESS);
    EXPECT_EQ(Get(key, ""), Text("default"));
    ASSERT_EQ(RegSetValueExA(key, "Empty", 0, REG_BINARY, nullptr, 0), ERROR_SUCCESS);
    EXPECT_EQ(Get(key, "Empty"), "");
    EXPECT_EQ(RegSetValueExA(key, "Bad", 0, REG_BINARY, nullptr, 3), ERROR_INVALID_PARAMETER);

    // Overwriting replaces type and size.
    ASSERT_EQ(SetText(key, "Blob", "t"), ERROR_SUCCESS);
    EXPECT_EQ((std::tuple{Get(key, "Blob", &type), type}), std::tuple(Text("t"), REG_SZ));

    // Wide names meet narrow ones; data stays as written, UTF-16 bytes unconverted.
    const std::u16string text = u"Wert \u2713 \U0001D11E";
    const std::string written(reinterpret_cast<const char*>(text.c_str()), (text.size() + 1) * 2);
    ASSERT_EQ(RegSetValueExW(key, u"Größe \U0001D11E", 0, REG_SZ, reinterpret_cast<const BYTE*>(written.data()),
                             static_cast<DWORD>(written.size())),
              ERROR_SUCCESS);
    size = sizeof(data);
    ASSERT_EQ(RegQueryValueExW(key, u"größe \U0001D11E", nullptr, nullptr, data, &size), ERROR_SUCCESS);
    EXPECT_EQ(std::tuple(Bytes(data, size), Get(key, "Größe \U0001D11E")), std::tuple(written, written));
}

TEST_F(RegistryStoreTest, EnumerationIsInNameOrderWithBufferRules)
{
    HKEY key = Create(HKEY_CURRENT_USER, "Order");
    for (const char* name : {"beta", "gamma", "Alpha", "ALPHA2"})
        Create(key, name);
    EXPECT_EQ(SubKeys(key), (Names{"Alpha", "ALPHA2", "beta", "gamma"}));
    EXPECT_EQ(EnumKey(key, 1, 7), "ALPHA2");   // room for the terminator is enough
    EXPECT_EQ(EnumKey(key, 1, 6), Err(ERROR_MORE_DATA));
    EXPECT_EQ(EnumKey(key, 4), Err(ERROR_NO_MORE_ITEMS));

    ASSERT_EQ(SetText(key, "b", "second"), ERROR_SUCCESS);
    ASSERT_EQ(SetText(key, "A", "1"), ERROR_SUCCESS);
    ASSERT_EQ(SetText(key, "Größe", "c"), ERROR_SUCCESS);
    char name[16];
    BYTE data[16] = {};
    DWORD length = sizeof(name), type = REG_NONE, size = 3;
    // Too small for the data: the size needed comes back.
    EXPECT_EQ(RegEnumValueA(key, 1, name, &length, nullptr, &type, data, &size), ERROR_MORE_DATA);
    EXPECT_EQ(size, 7u);
    length = sizeof(name);
    ASSERT_EQ(RegEnumValueA(key, 1, name, &length, nullptr, &type, data, &size), ERROR_SUCCESS);
    EXPECT_EQ(std::tuple(std::string(name, length), type, Bytes(data, size)), std::tuple("b", REG_SZ, Text("second")));
    // A name buffer of length 0 still tells a value from none.
    EXPECT_EQ(EnumValue(key, 0, 0), Err(ERROR_MORE_DATA));
    EXPECT_EQ(EnumValue(key, 3), Err(ERROR_NO_MORE_ITEMS));
    EXPECT_EQ(EnumValue(Open(key, "gamma", KEY_READ), 0, 0), Err(ERROR_NO_MORE_ITEMS));

    EXPECT_EQ(InfoOf(key), (Info{4, 6, 3, sizeof("Größe") - 1, 7}));   // UTF-8 bytes
    EXPECT_EQ(RegQueryInfoKeyA(key, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                               nullptr, nullptr),
              ERROR_SUCCESS);   // every out pointer may be null
}

TEST_F(RegistryStoreTest, AccessRightsAreEnforcedPerHandle)
{
    Create(HKEY_CURRENT_USER, "Rights\\Existing");
    HKEY all = Create(HKEY_CURRENT_USER, "Rights"), child = nullptr;
    ASSERT_EQ(SetText(all, "v", "x"), ERROR_SUCCESS);

    HKEY read = Open(HKEY_CURRENT_USER, "Rights", KEY_READ);
    EXPECT_EQ((std::vector<LONG>{SetText(read, "v", "y"), RegDeleteValueA(read, "v"),
                                 CreateKey(read, "New", KEY_READ, &child)}),
              std::vector<LONG>(3, ERROR_ACCESS_DENIED));
    // Opening an existing child through create needs no right on the parent.
    EXPECT_EQ(CreateKey(read, "Existing", KEY_READ, &child), ERROR_SUCCESS);
    EXPECT_EQ(RegSetValueA(read, "Missing", REG_SZ, "t", 1), ERROR_ACCESS_DENIED);

    HKEY write = Open(HKEY_CURRENT_USER, "Rights", KEY_WRITE);
    EXPECT_EQ((Names{Get(write, "v"), EnumValue(write, 0), EnumKey(write, 0)}), Names(3, Err(ERROR_ACCESS_DENIED)));
    EXPECT_EQ(InfoOf(write), Info{ERROR_ACCESS_DENIED});
    EXPECT_EQ(SetText(write, "v", "y"), ERROR_SUCCESS);
    Create(write, "Made");
    EXPECT_EQ(RegDeleteKeyA(write, ""), ERROR_ACCESS_DENIED);   // its own key needs DELETE

    EXPECT_EQ(SubKeys(Open(HKEY_CURRENT_USER, "Rights", KEY_ENUMERATE_SUB_KEYS)), (Names{"Existing", "Made"}));
    EXPECT_EQ(RegDeleteKeyA(Open(all, "Made", DELETE), ""), ERROR_SUCCESS);
    EXPECT_EQ(SubKeys(all), Names{"Existing"});
}

TEST_F(RegistryStoreTest, HandlesAreCheckedNeverReusedAndOutliveTheirKey)
{
    HKEY doomed = Create(HKEY_CURRENT_USER, "Doomed"), child = nullptr;
    ASSERT_EQ(SetText(doomed, "v", "x"), ERROR_SUCCESS);
    ASSERT_EQ(RegDeleteKeyA(HKEY_CURRENT_USER, "Doomed"), ERROR_SUCCESS);
    EXPECT_EQ((Names{Get(doomed, "v"), EnumKey(doomed, 0), EnumValue(doomed, 0)}), Names(3, Err(ERROR_KEY_DELETED)));
    EXPECT_EQ((std::vector<LONG>{RegDeleteValueA(doomed, "v"), CreateKey(doomed, "Child", KEY_READ, &child),
                                 RegOpenKeyExA(doomed, "", 0, KEY_READ, &child)}),
              std::vector<LONG>(3, ERROR_KEY_DELETED));
    EXPECT_EQ(InfoOf(doomed), Info{ERROR_KEY_DELETED});

    // A new key of the same name is another key: no values, and the old handle stays dead.
    HKEY reborn = Create(HKEY_CURRENT_USER, "Doomed");
    EXPECT_EQ(Get(reborn, "v"), Err(ERROR_FILE_NOT_FOUND));
    EXPECT_EQ(SetText(doomed, "v", "y"), ERROR_KEY_DELETED);
    EXPECT_EQ(RegCloseKey(doomed), ERROR_SUCCESS);
    EXPECT_EQ(RegCloseKey(doomed), ERROR_INVALID_HANDLE);
    EXPECT_EQ(SetText(doomed, "v", "y"), ERROR_INVALID_HANDLE);
    HKEY next = Create(HKEY_CURRENT_USER, "Doomed");
    EXPECT_NE(next, doomed);
    EXPECT_EQ(SetText(next, "v", "x"), ERROR_SUCCESS);
    EXPECT_EQ(RegCloseKey(HKEY_CURRENT_USER), ERROR_SUCCESS);

    // So is a key that another process deletes; and Reset invalidates every handle.
    EXPECT_EQ(Wait(Spawn([] { EXPECT_EQ(RegDeleteKeyA(HKEY_CURRENT_USER, "Doomed"), ERROR_SUCCESS); })), 0);
    EXPECT_EQ(SetText(reborn, "v", "x"), ERROR_KEY_DELETED);
    korva::RegistryStore::Reset();
    EXPECT_EQ(Get(next, "v"), Err(ERROR_INVALID_HANDLE));
}

TEST_F(RegistryStoreTest, DeleteKeyAndSetValueTakePaths)
{
    Create(HKEY_CURRENT_USER, "Parent\\Child");
    EXPECT_EQ(RegDeleteKeyA(HKEY_CURRENT_USER, "Parent"), ERROR_ACCESS_DENIED);   // it has a child
    EXPECT_EQ(RegDeleteKeyA(HKEY_CURRENT_USER, "Parent\\Missing"), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(RegDeleteKeyA(HKEY_CURRENT_USER, nullptr), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(RegDeleteKeyA(HKEY_CURRENT_USER, ""), ERROR_ACCESS_DENIED);
    EXPECT_EQ(RegDeleteKeyA(HKEY_CURRENT_USER, "Parent\\Child"), ERROR_SUCCESS);
    EXPECT_EQ(RegDeleteKeyA(HKEY_CURRENT_USER, "Parent"), ERROR_SUCCESS);
    EXPECT_TRUE(SubKeys(HKEY_CURRENT_USER).empty());

    // RegSetValueA makes the sub-key, stores the whole text whatever size it is given.
    ASSERT_EQ(RegSetValueA(HKEY_CURRENT_USER, "Sv\\Sub", REG_SZ, "text", 2), ERROR_SUCCESS);
    DWORD type = REG_NONE;
    EXPECT_EQ(Get(Open(HKEY_CURRENT_USER, "Sv\\Sub", KEY_READ), nullptr, &type), Text("text"));
    EXPECT_EQ(type, REG_SZ);
    EXPECT_EQ(RegSetValueA(HKEY_CURRENT_USER, "Sv", REG_DWORD, "text", 4), ERROR_INVALID_PARAMETER);
    ASSERT_EQ(RegSetValueA(HKEY_CURRENT_USER, nullptr, REG_SZ, "root", 0), ERROR_SUCCESS);
    EXPECT_EQ(Get(HKEY_CURRENT_USER, ""), Text("root"));
}

TEST_F(RegistryStoreTest, RootsAreSeparateFilesThatOutliveTheProcessState)
{
    ASSERT_EQ(SetText(HKEY_CURRENT_USER, "Where", "user"), ERROR_SUCCESS);
    ASSERT_EQ(SetText(HKEY_LOCAL_MACHINE, "Where", "machine"), ERROR_SUCCESS);
    korva::RegistryStore::Reset();
    EXPECT_EQ(Get(HKEY_CURRENT_USER, "Where"), Text("user"));
    EXPECT_EQ(Get(HKEY_LOCAL_MACHINE, "Where"), Text("machine"));
    EXPECT_TRUE(fs::exists(FileOf("HKCU")) && fs::exists(FileOf("HKLM")));
    EXPECT_EQ(korva::RegistryStore::GetPath(HKEY_CURRENT_USER), FileOf("HKCU"));
    EXPECT_EQ(korva::RegistryStore::GetPath(HKEY_LOCAL_MACHINE), FileOf("HKLM"));
    EXPECT_EQ(korva::RegistryStore::GetPath(reinterpret_cast<HKEY>(0x10000)), "");

    // Without the override, the usual places (in a child, which may change its environment freely).
    EXPECT_EQ(Wait(Spawn([] {
        ::unsetenv("KORVA_REGISTRY_DIR");
        ::setenv("XDG_CONFIG_HOME", "/somewhere/config", 1);
        EXPECT_EQ(korva::RegistryStore::GetPath(HKEY_CURRENT_USER), "/somewhere/config/Tessmark/registry.sqlite");
        EXPECT_EQ(korva::RegistryStore::GetPath(HKEY_LOCAL_MACHINE), "/var/lib/Tessmark/registry.sqlite");
        ::setenv("XDG_CONFIG_HOME", "relative", 1);   // not absolute: ignored
        ::setenv("HOME", "/home/probe", 1);
        EXPECT_EQ(korva::RegistryStore::GetPath(HKEY_CURRENT_USER), "/home/probe/.config/Tessmark/registry.sqlite");
    })), 0);
}

// The store must honour what the file system allows. Root passes every
// permission check, so the checks run in a child that has given up root;
// a test run without root runs them with the files made read-only instead.
bool AsUnprivileged(const std::string& dir, const std::function<void()>& body)
{
    ::chmod(dir.c_str(), 0755);   // mkdtemp's 0700 would shut out the unprivileged user entirely
    return Wait(Spawn([&] {
        if (::geteuid() == 0) {
            ASSERT_TRUE(::setgid(65534) == 0 && ::setuid(65534) == 0) << "cannot drop root";
        } else {
            for (const auto& entry : fs::directory_iterator(dir))
                ::chmod(entry.path().c_str(), 0444);
            ::chmod(dir.c_str(), 0555);
        }
        korva::RegistryStore::Reset();
        body();
    })) == 0;
}

TEST_F(RegistryStoreTest, RootsThatCannotBeWrittenAreReadOnly)
{
    Create(HKEY_LOCAL_MACHINE, "SOFTWARE\\Vendor");
    ASSERT_EQ(SetText(HKEY_LOCAL_MACHINE, "RootValue", "r"), ERROR_SUCCESS);
    korva::RegistryStore::Reset();
    EXPECT_TRUE(AsUnprivileged(mDir.Path(), [] {
        HKEY key = nullptr;
        EXPECT_EQ(Get(HKEY_LOCAL_MACHINE, "RootValue"), Text("r"));
        EXPECT_EQ(RegOpenKeyExA(HKEY_LOCAL_MACHINE, "SOFTWARE\\Vendor", 0, KEY_WRITE, &key), ERROR_ACCESS_DENIED);
        EXPECT_EQ(CreateKey(HKEY_LOCAL_MACHINE, "SOFTWARE\\Vendor", KEY_READ, &key), ERROR_SUCCESS);
        EXPECT_EQ(CreateKey(HKEY_LOCAL_MACHINE, "New", KEY_READ, &key), ERROR_ACCESS_DENIED);
        EXPECT_EQ(SetText(HKEY_LOCAL_MACHINE, "RootValue", "changed"), ERROR_ACCESS_DENIED);
        EXPECT_EQ(RegDeleteValueA(HKEY_LOCAL_MACHINE, "RootValue"), ERROR_ACCESS_DENIED);
        EXPECT_EQ(RegDeleteValueA(HKEY_LOCAL_MACHINE, "Missing"), ERROR_FILE_NOT_FOUND);
        EXPECT_EQ(RegDeleteKeyA(HKEY_LOCAL_MACHINE, "SOFTWARE\\Vendor"), ERROR_ACCESS_DENIED);
        EXPECT_EQ(RegSetValueA(HKEY_LOCAL_MACHINE, "SOFTWARE", REG_SZ, "x", 1), ERROR_ACCESS_DENIED);
        // A root without a file that cannot be made is empty.
        EXPECT_EQ(RegOpenKeyExA(HKEY_CURRENT_USER, "SOFTWARE", 0, KEY_READ, &key), ERROR_FILE_NOT_FOUND);
        EXPECT_EQ(CreateKey(HKEY_CURRENT_USER, "SOFTWARE", KEY_READ, &key), ERROR_ACCESS_DENIED);
        EXPECT_EQ(SetText(HKEY_CURRENT_USER, "v", "x"), ERROR_ACCESS_DENIED);
        EXPECT_EQ(InfoOf(HKEY_CURRENT_USER), (Info{0, 0, 0, 0, 0}));
    }));
    // Nothing changed on disk.
    EXPECT_EQ(Get(HKEY_LOCAL_MACHINE, "RootValue"), Text("r"));
    EXPECT_EQ(SubKeys(HKEY_LOCAL_MACHINE), Names{"SOFTWARE"});
    EXPECT_FALSE(fs::exists(FileOf("HKCU")));
}

TEST_F(RegistryStoreTest, DamagedFilesGiveCorruptAndAreLeftAlone)
{
    const std::string garbage(8192, '\x5A');
    std::ofstream(FileOf("HKCU"), std::ios::binary) << garbage;
    HKEY key = nullptr;
    EXPECT_EQ(RegOpenKeyExA(HKEY_CURRENT_USER, "x", 0, KEY_READ, &key), ERROR_REGISTRY_CORRUPT);
    EXPECT_EQ(SetText(HKEY_CURRENT_USER, "v", "x"), ERROR_REGISTRY_CORRUPT);
    EXPECT_EQ(ReadFile(FileOf("HKCU")), garbage);
    EXPECT_EQ(SetText(HKEY_LOCAL_MACHINE, "v", "x"), ERROR_SUCCESS);   // the other root is not affected

    // A registry whose pages after the first are damaged: the damage is reported when a call reaches it.
    Create(HKEY_LOCAL_MACHINE, "Key");
    korva::RegistryStore::Reset();
    std::fstream(FileOf("HKLM"), std::ios::in | std::ios::out | std::ios::binary).seekp(4096) << garbage;
    EXPECT_EQ(RegOpenKeyExA(HKEY_LOCAL_MACHINE, "Key", 0, KEY_READ, &key), ERROR_REGISTRY_CORRUPT);
}

TEST_F(RegistryStoreTest, LockedStoreTimesOutAndThenWaitsForTheLock)
{
    HKEY key = Create(HKEY_CURRENT_USER, "Locked"), child = nullptr;
    ASSERT_EQ(SetText(key, "old", "1"), ERROR_SUCCESS);
    sqlite3* other = nullptr;
    ASSERT_EQ(sqlite3_open(FileOf("HKCU").c_str(), &other), SQLITE_OK);
    ASSERT_EQ(sqlite3_exec(other, "BEGIN IMMEDIATE", nullptr, nullptr, nullptr), SQLITE_OK);

    korva::RegistryStore::SetBusyTimeout(100);
    EXPECT_EQ(SetText(key, "new", "2"), ERROR_CANTWRITE);
    EXPECT_EQ(CreateKey(key, "Child", KEY_READ, &child), ERROR_CANTWRITE);
    EXPECT_EQ(Get(key, "old"), Text("1"));   // readers are not blocked by a writer

    // With a longer timeout the write waits for the other writer to finish.
    korva::RegistryStore::SetBusyTimeout(10000);
    std::thread release([other] {
        std::this_thread::sleep_for(std::chrono::milliseconds(200));
        sqlite3_exec(other, "COMMIT", nullptr, nullptr, nullptr);
    });
    EXPECT_EQ(SetText(key, "new", "2"), ERROR_SUCCESS);
    release.join();
    sqlite3_close(other);
}

TEST_F(RegistryStoreTest, WritersInTwoProcessesKilledAtAnyMomentLoseNothingTheyReported)
{
    // Write number n of writer w is reported as w << 24 | n, into key "Shared\\<that number>".
    const auto name = [](std::uint32_t record) { return "Shared\\" + std::to_string(record); };
    const auto data = [](std::uint32_t record) { return std::string(300, 'k') + std::to_string(record); };
    for (const std::size_t killAfter : {1, 40, 600}) {
        // A new store each round: both writers also race to set it up.
        ::setenv("KORVA_REGISTRY_DIR", mDir.File(std::to_string(killAfter)).c_str(), 1);
        korva::RegistryStore::Reset();
        int gate[2], reports[2];
        ASSERT_EQ(::pipe(gate) | ::pipe(reports), 0);
        pid_t writers[2];
        for (std::uint32_t writer = 0; writer < 2; ++writer)
            writers[writer] = Spawn([&, writer] {
                ::close(gate[1]);
                for (char byte; ::read(gate[0], &byte, 1) > 0;) {
                }
                // Until killed; a failed write ends the writer early.
                for (std::uint32_t record = writer << 24;; ++record)
                    if (RegSetValueA(HKEY_CURRENT_USER, name(record).c_str(), REG_SZ, data(record).c_str(), 0) ||
                        ::write(reports[1], &record, sizeof(record)) != sizeof(record))
                        return;
            });
        ::close(gate[0]);
        ::close(gate[1]);   // both start now
        ::close(reports[1]);
        std::vector<std::uint32_t> written;
        std::uint32_t record = 0;
        while (written.size() < killAfter && ::read(reports[0], &record, sizeof(record)) == sizeof(record))
            written.push_back(record);
        for (pid_t writer : writers)
            ::kill(writer, SIGKILL);
        while (::read(reports[0], &record, sizeof(record)) == sizeof(record))
            written.push_back(record);
        ::close(reports[0]);
        for (pid_t writer : writers)
            EXPECT_TRUE(WIFSIGNALED(Wait(writer))) << "a writer stopped by itself, round " << killAfter;
        for (std::uint32_t n : written)
            ASSERT_EQ(Get(Open(HKEY_CURRENT_USER, name(n), KEY_READ), nullptr), Text(data(n))) << name(n);
    }
}

TEST_F(RegistryStoreTest, ThreadsShareTheStore)
{
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([t] {
            HKEY key = Create(HKEY_CURRENT_USER, "Threads\\T" + std::to_string(t));
            for (DWORD i = 0; i < 100; ++i)
                SetText(key, ("v" + std::to_string(i)).c_str(), "123");
        });
    for (std::thread& thread : threads)
        thread.join();
    for (int t = 0; t < 4; ++t)
        EXPECT_EQ(InfoOf(Open(HKEY_CURRENT_USER, "Threads\\T" + std::to_string(t), KEY_READ)), (Info{0, 0, 100, 3, 4}));
}

} // namespace
