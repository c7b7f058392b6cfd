// The registry store: Win32 semantics, and what SQLite must guarantee underneath
// (other processes, killed writers, read-only and damaged files).

#include <KORVAutlwin/platform/Registry.h>

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <chrono>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <string>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

std::string MakeTempDir()
{
    char pattern[] = "/tmp/korva-registry-XXXXXX";
    const char* made = ::mkdtemp(pattern);
    return made ? made : "";
}

// Runs `body` in a child process and returns what it reports ("" = all well).
std::string RunInChild(const std::function<std::string()>& body)
{
    int pipeFds[2];
    if (::pipe(pipeFds) != 0)
        return "pipe failed";
    const pid_t child = ::fork();
    if (child == 0) {
        ::close(pipeFds[0]);
        const std::string report = body();
        ssize_t ignored = ::write(pipeFds[1], report.data(), report.size());
        (void)ignored;
        ::_exit(0);
    }
    ::close(pipeFds[1]);
    std::string report;
    char buffer[512];
    for (ssize_t n; (n = ::read(pipeFds[0], buffer, sizeof(buffer))) > 0;)
        report.append(buffer, static_cast<std::size_t>(n));
    ::close(pipeFds[0]);
    int status = 0;
    ::waitpid(child, &status, 0);
    if (!WIFEXITED(status))
        report += " (child died)";
    return report;
}

// Collects mismatches inside a child process, where gtest assertions do not report.
struct Report
{
    std::string text;
    void Expect(LONG actual, LONG expected, const char* what)
    {
        if (actual != expected)
            text += std::string(what) + ": got " + std::to_string(actual) + ", expected " + std::to_string(expected) + "; ";
    }
};

std::string Bytes(const void* data, std::size_t size)
{
    return std::string(static_cast<const char*>(data), size);
}

class RegistryStoreTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        mDir = MakeTempDir();
        ASSERT_FALSE(mDir.empty());
        ::setenv("KORVA_REGISTRY_DIR", mDir.c_str(), 1);
        korva::RegistryStore::Reset();
        korva::RegistryStore::SetBusyTimeout(5000);
    }
    void TearDown() override
    {
        korva::RegistryStore::Reset();
        std::error_code ignored;
        fs::remove_all(mDir, ignored);
    }

    static LONG CreateKey(HKEY root, const char* path, REGSAM access, HKEY* key, DWORD* disposition = nullptr)
    {
        return RegCreateKeyExA(root, path, 0, nullptr, 0, access, nullptr, key, disposition);
    }
    static LONG ValueCount(HKEY key, DWORD* values)
    {
        return RegQueryInfoKeyA(key, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, values, nullptr, nullptr,
                                nullptr, nullptr);
    }
    static LONG SubKeyCount(HKEY key, DWORD* subKeys)
    {
        return RegQueryInfoKeyA(key, nullptr, nullptr, nullptr, subKeys, nullptr, nullptr, nullptr, nullptr, nullptr,
                                nullptr, nullptr);
    }
    static HKEY Create(HKEY root, const char* path, REGSAM access = KEY_ALL_ACCESS)
    {
        HKEY key = nullptr;
        EXPECT_EQ(CreateKey(root, path, access, &key), ERROR_SUCCESS) << path;
        return key;
    }
    static HKEY OpenKey(HKEY root, const char* path, REGSAM access)
    {
        HKEY key = nullptr;
        EXPECT_EQ(RegOpenKeyExA(root, path, 0, access, &key), ERROR_SUCCESS) << path;
        return key;
    }
    static LONG SetText(HKEY key, const char* name, const std::string& text)
    {
        return RegSetValueExA(key, name, 0, REG_SZ, reinterpret_cast<const BYTE*>(text.c_str()),
                              static_cast<DWORD>(text.size() + 1));
    }
    static LONG SetDword(HKEY key, const char* name, DWORD value)
    {
        return RegSetValueExA(key, name, 0, REG_DWORD, reinterpret_cast<const BYTE*>(&value), sizeof(value));
    }
    // The value's bytes, or "<error N>".
    static std::string Get(HKEY key, const char* name, DWORD* type = nullptr)
    {
        DWORD size = 0;
        LONG rc = RegQueryValueExA(key, name, nullptr, type, nullptr, &size);
        if (rc != ERROR_SUCCESS)
            return "<error " + std::to_string(rc) + ">";
        std::string data(size, '\0');
        rc = RegQueryValueExA(key, name, nullptr, type, reinterpret_cast<BYTE*>(data.data()), &size);
        return rc == ERROR_SUCCESS ? data : "<error " + std::to_string(rc) + ">";
    }
    static std::vector<std::string> SubKeys(HKEY key)
    {
        std::vector<std::string> names;
        char name[256];
        for (DWORD i = 0;; ++i) {
            DWORD length = sizeof(name);
            if (RegEnumKeyExA(key, i, name, &length, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS)
                break;
            names.emplace_back(name, length);
        }
        return names;
    }
    std::string FileOf(const char* root) const { return mDir + "/" + root + ".sqlite"; }

    std::string mDir;
};

TEST_F(RegistryStoreTest, NamesCompareWithoutCaseAndKeepTheirFirstSpelling)
{
    HKEY key = nullptr;
    DWORD disposition = 0;
    ASSERT_EQ(CreateKey(HKEY_CURRENT_USER, "Software\\Acme\\Tool", KEY_ALL_ACCESS, &key, &disposition), ERROR_SUCCESS);
    EXPECT_EQ(disposition, REG_CREATED_NEW_KEY);
    ASSERT_EQ(SetDword(key, "Value", 1), ERROR_SUCCESS);
    ASSERT_EQ(SetDword(key, "VALUE", 2), ERROR_SUCCESS);
    RegCloseKey(key);

    ASSERT_EQ(CreateKey(HKEY_CURRENT_USER, "SOFTWARE\\acme\\TOOL", KEY_READ, &key, &disposition), ERROR_SUCCESS);
    EXPECT_EQ(disposition, REG_OPENED_EXISTING_KEY);
    char name[16];
    DWORD length = sizeof(name);
    ASSERT_EQ(RegEnumValueA(key, 0, name, &length, nullptr, nullptr, nullptr, nullptr), ERROR_SUCCESS);
    EXPECT_STREQ(name, "Value");
    EXPECT_EQ(Get(key, "value"), Bytes("\x02\0\0\0", 4));
    RegCloseKey(key);

    // A trailing separator names the same key; the first spelling of a name stays.
    key = OpenKey(HKEY_CURRENT_USER, "software\\ACME\\tool\\", KEY_ALL_ACCESS);
    EXPECT_EQ(RegDeleteValueA(key, "vALUE"), ERROR_SUCCESS);
    EXPECT_EQ(RegDeleteValueA(key, "Value"), ERROR_FILE_NOT_FOUND);
    RegCloseKey(key);
    RegCloseKey(Create(HKEY_CURRENT_USER, "SOFTWARE\\ACME\\Other"));
    HKEY software = OpenKey(HKEY_CURRENT_USER, "software", KEY_READ);
    EXPECT_EQ(SubKeys(software), std::vector<std::string>{"Acme"});
    EXPECT_EQ(SubKeys(HKEY_CURRENT_USER), std::vector<std::string>{"Software"});

    // An empty sub-key is a second handle on the same key.
    HKEY again = OpenKey(software, "", KEY_ALL_ACCESS);
    ASSERT_NE(again, software);
    ASSERT_EQ(SetText(again, "Shared", "x"), ERROR_SUCCESS);
    EXPECT_EQ(Get(software, "Shared"), Bytes("x", 2));
    RegCloseKey(again);
    RegCloseKey(software);

    key = reinterpret_cast<HKEY>(0x1);
    EXPECT_EQ(RegOpenKeyExA(HKEY_CURRENT_USER, "Software\\Missing", 0, KEY_READ, &key), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(key, nullptr);
    EXPECT_EQ(RegOpenKeyExA(HKEY_CURRENT_USER, "Software", 0, KEY_READ, nullptr), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(CreateKey(HKEY_CURRENT_USER, "\\Software", KEY_READ, &key), ERROR_BAD_PATHNAME);
    RegCloseKey(Create(HKEY_CURRENT_USER, std::string(255, 'n').c_str()));
    EXPECT_EQ(CreateKey(HKEY_CURRENT_USER, std::string(256, 'n').c_str(), KEY_READ, &key), ERROR_INVALID_PARAMETER);
}

TEST_F(RegistryStoreTest, HandlesAreCheckedAndNeverReused)
{
    HKEY key = Create(HKEY_CURRENT_USER, "Handles");
    EXPECT_EQ(RegCloseKey(key), ERROR_SUCCESS);
    EXPECT_EQ(RegCloseKey(key), ERROR_INVALID_HANDLE);
    EXPECT_EQ(SetText(key, "v", "x"), ERROR_INVALID_HANDLE);
    HKEY next = Create(HKEY_CURRENT_USER, "Handles");
    EXPECT_NE(next, key);
    EXPECT_EQ(RegCloseKey(key), ERROR_INVALID_HANDLE);   // must not close `next`
    EXPECT_EQ(SetText(next, "v", "x"), ERROR_SUCCESS);

    EXPECT_EQ(RegCloseKey(nullptr), ERROR_INVALID_HANDLE);
    EXPECT_EQ(RegCloseKey(HKEY_CURRENT_USER), ERROR_SUCCESS);
    EXPECT_EQ(SetText(HKEY_CURRENT_USER, "StillOpen", "x"), ERROR_SUCCESS);

    // Reset invalidates what was open before it.
    korva::RegistryStore::Reset();
    EXPECT_EQ(Get(next, "v"), "<error 6>");
}

TEST_F(RegistryStoreTest, QueryValueFollowsTheSizeProtocol)
{
    HKEY key = Create(HKEY_CURRENT_USER, "Sizes");
    const BYTE blob[10] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10};
    ASSERT_EQ(RegSetValueExA(key, "Blob", 0, REG_BINARY, blob, sizeof(blob)), ERROR_SUCCESS);

    // Too small: the size needed and the type come back.
    BYTE small[4] = {};
    DWORD size = sizeof(small);
    DWORD type = REG_NONE;
    EXPECT_EQ(RegQueryValueExA(key, "Blob", nullptr, &type, small, &size), ERROR_MORE_DATA);
    EXPECT_EQ(size, 10u);
    EXPECT_EQ(type, REG_BINARY);
    BYTE large[20] = {};
    size = sizeof(large);
    EXPECT_EQ(RegQueryValueExA(key, "Blob", nullptr, nullptr, large, &size), ERROR_SUCCESS);
    EXPECT_EQ(size, 10u);
    EXPECT_EQ(std::memcmp(large, blob, sizeof(blob)), 0);

    EXPECT_EQ(RegQueryValueExA(key, "Blob", nullptr, nullptr, large, nullptr), ERROR_INVALID_PARAMETER);
    DWORD reserved = 0;
    EXPECT_EQ(RegQueryValueExA(key, "Blob", &reserved, nullptr, nullptr, &size), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(RegQueryValueExA(key, "Blob", nullptr, nullptr, nullptr, nullptr), ERROR_SUCCESS);
    EXPECT_EQ(RegQueryValueExA(key, "Missing", nullptr, nullptr, nullptr, &size), ERROR_FILE_NOT_FOUND);

    // Null and empty names are the default value; empty data is a value too.
    ASSERT_EQ(SetText(key, nullptr, "default"), ERROR_SUCCESS);
    EXPECT_EQ(Get(key, ""), Bytes("default", 8));
    ASSERT_EQ(RegSetValueExA(key, "Empty", 0, REG_BINARY, nullptr, 0), ERROR_SUCCESS);
    EXPECT_EQ(Get(key, "Empty"), "");
    EXPECT_EQ(RegSetValueExA(key, "Bad", 0, REG_BINARY, nullptr, 3), ERROR_INVALID_PARAMETER);

    // Overwriting replaces type and size.
    ASSERT_EQ(SetDword(key, "Blob", 7), ERROR_SUCCESS);
    EXPECT_EQ(Get(key, "Blob", &type), Bytes("\x07\0\0\0", 4));
    EXPECT_EQ(type, REG_DWORD);
}

TEST_F(RegistryStoreTest, EnumerationIsInNameOrderWithBufferRules)
{
    HKEY key = Create(HKEY_CURRENT_USER, "Order");
    for (const char* name : {"beta", "gamma", "Alpha", "ALPHA2"})
        RegCloseKey(Create(key, name));
    EXPECT_EQ(SubKeys(key), (std::vector<std::string>{"Alpha", "ALPHA2", "beta", "gamma"}));

    char name[16];
    DWORD length = 7;   // "ALPHA2" and its terminator
    EXPECT_EQ(RegEnumKeyExA(key, 1, name, &length, nullptr, nullptr, nullptr, nullptr), ERROR_SUCCESS);
    EXPECT_EQ(length, 6u);
    EXPECT_STREQ(name, "ALPHA2");
    length = 6;
    EXPECT_EQ(RegEnumKeyExA(key, 1, name, &length, nullptr, nullptr, nullptr, nullptr), ERROR_MORE_DATA);
    length = sizeof(name);
    EXPECT_EQ(RegEnumKeyExA(key, 4, name, &length, nullptr, nullptr, nullptr, nullptr), ERROR_NO_MORE_ITEMS);

    ASSERT_EQ(SetText(key, "b", "second"), ERROR_SUCCESS);
    ASSERT_EQ(SetDword(key, "A", 1), ERROR_SUCCESS);
    ASSERT_EQ(SetText(key, "Größe", "c"), ERROR_SUCCESS);
    DWORD type = REG_NONE;
    BYTE data[16] = {};
    DWORD size = sizeof(data);
    length = sizeof(name);
    ASSERT_EQ(RegEnumValueA(key, 1, name, &length, nullptr, &type, data, &size), ERROR_SUCCESS);
    EXPECT_STREQ(name, "b");
    EXPECT_EQ(length, 1u);
    EXPECT_EQ(type, REG_SZ);
    EXPECT_EQ(Bytes(data, size), Bytes("second", 7));

    // Too small for the data: the size needed comes back.
    size = 3;
    length = sizeof(name);
    EXPECT_EQ(RegEnumValueA(key, 1, name, &length, nullptr, nullptr, data, &size), ERROR_MORE_DATA);
    EXPECT_EQ(size, 7u);
    // A name buffer of length 0 still tells a value from none.
    length = 0;
    EXPECT_EQ(RegEnumValueA(key, 0, nullptr, &length, nullptr, nullptr, nullptr, nullptr), ERROR_MORE_DATA);
    length = sizeof(name);
    EXPECT_EQ(RegEnumValueA(key, 3, name, &length, nullptr, nullptr, nullptr, nullptr), ERROR_NO_MORE_ITEMS);
    HKEY leaf = OpenKey(key, "gamma", KEY_READ);
    length = 0;
    EXPECT_EQ(RegEnumValueA(leaf, 0, nullptr, &length, nullptr, nullptr, nullptr, nullptr), ERROR_NO_MORE_ITEMS);
    RegCloseKey(leaf);

    DWORD subKeys = 0, maxSubKey = 0, values = 0, maxValueName = 0, maxValue = 0;
    ASSERT_EQ(RegQueryInfoKeyA(key, nullptr, nullptr, nullptr, &subKeys, &maxSubKey, nullptr, &values, &maxValueName,
                               &maxValue, nullptr, nullptr),
              ERROR_SUCCESS);
    EXPECT_EQ(subKeys, 4u);
    EXPECT_EQ(maxSubKey, 6u);
    EXPECT_EQ(values, 3u);
    EXPECT_EQ(maxValueName, std::strlen("Größe"));   // bytes of UTF-8
    EXPECT_EQ(maxValue, 7u);
    RegCloseKey(key);
}

TEST_F(RegistryStoreTest, AccessRightsAreEnforcedPerHandle)
{
    RegCloseKey(Create(HKEY_CURRENT_USER, "Rights\\Existing"));
    HKEY all = Create(HKEY_CURRENT_USER, "Rights");
    ASSERT_EQ(SetText(all, "v", "x"), ERROR_SUCCESS);

    HKEY read = OpenKey(HKEY_CURRENT_USER, "Rights", KEY_READ);
    EXPECT_EQ(SetText(read, "v", "y"), ERROR_ACCESS_DENIED);
    EXPECT_EQ(RegDeleteValueA(read, "v"), ERROR_ACCESS_DENIED);
    HKEY child = nullptr;
    EXPECT_EQ(CreateKey(read, "New", KEY_READ, &child), ERROR_ACCESS_DENIED);
    // Opening an existing child through create needs no right on the parent.
    EXPECT_EQ(CreateKey(read, "Existing", KEY_READ, &child), ERROR_SUCCESS);
    RegCloseKey(child);
    EXPECT_EQ(Get(read, "v"), Bytes("x", 2));
    EXPECT_EQ(RegSetValueA(read, "Missing", REG_SZ, "t", 1), ERROR_ACCESS_DENIED);

    HKEY write = OpenKey(HKEY_CURRENT_USER, "Rights", KEY_WRITE);
    EXPECT_EQ(Get(write, "v"), "<error 5>");
    char name[16];
    DWORD length = sizeof(name);
    EXPECT_EQ(RegEnumValueA(write, 0, name, &length, nullptr, nullptr, nullptr, nullptr), ERROR_ACCESS_DENIED);
    DWORD count = 0;
    EXPECT_EQ(SubKeyCount(write, &count), ERROR_ACCESS_DENIED);
    EXPECT_EQ(SetText(write, "v", "y"), ERROR_SUCCESS);
    RegCloseKey(Create(write, "Made"));
    // Deleting the handle's own key needs DELETE.
    EXPECT_EQ(RegDeleteKeyA(write, ""), ERROR_ACCESS_DENIED);

    HKEY enumerate = OpenKey(HKEY_CURRENT_USER, "Rights", KEY_ENUMERATE_SUB_KEYS);
    EXPECT_EQ(SubKeys(enumerate), (std::vector<std::string>{"Existing", "Made"}));
    EXPECT_EQ(Get(enumerate, "v"), "<error 5>");

    HKEY deletable = OpenKey(all, "Made", DELETE);
    EXPECT_EQ(RegDeleteKeyA(deletable, ""), ERROR_SUCCESS);
    EXPECT_EQ(SubKeys(all), std::vector<std::string>{"Existing"});
}

TEST_F(RegistryStoreTest, WideNamesMeetNarrowNamesAndDataStaysAsWritten)
{
    HKEY key = Create(HKEY_CURRENT_USER, "Wide");
    const std::u16string text = u"Wert \u2713 \U0001D11E";
    ASSERT_EQ(RegSetValueExW(key, u"Größe \U0001D11E", 0, REG_SZ, reinterpret_cast<const BYTE*>(text.c_str()),
                             static_cast<DWORD>((text.size() + 1) * 2)),
              ERROR_SUCCESS);
    const std::string written(reinterpret_cast<const char*>(text.c_str()), (text.size() + 1) * 2);

    std::u16string read(text.size() + 1, u'x');
    DWORD size = static_cast<DWORD>(read.size() * 2);
    DWORD type = REG_NONE;
    ASSERT_EQ(RegQueryValueExW(key, u"größe \U0001D11E", nullptr, &type, reinterpret_cast<BYTE*>(read.data()), &size),
              ERROR_SUCCESS);
    EXPECT_EQ(type, REG_SZ);
    EXPECT_EQ(size, written.size());
    EXPECT_EQ(read, text + u'\0');

    // The same value under its UTF-8 name, with the UTF-16 bytes unconverted.
    EXPECT_EQ(Get(key, "Größe \U0001D11E"), written);
    char name[32];
    DWORD length = sizeof(name);
    ASSERT_EQ(RegEnumValueA(key, 0, name, &length, nullptr, nullptr, nullptr, nullptr), ERROR_SUCCESS);
    EXPECT_EQ(std::string(name, length), "Größe \U0001D11E");

    // And narrow data read through the wide function comes back byte for byte.
    ASSERT_EQ(SetText(key, "Narrow", "äb"), ERROR_SUCCESS);
    char bytes[8] = {};
    size = sizeof(bytes);
    ASSERT_EQ(RegQueryValueExW(key, u"NARROW", nullptr, nullptr, reinterpret_cast<BYTE*>(bytes), &size), ERROR_SUCCESS);
    EXPECT_EQ(Bytes(bytes, size), Bytes("äb", 4));
    RegCloseKey(key);
}

TEST_F(RegistryStoreTest, HandleOfADeletedKeyReportsKeyDeleted)
{
    HKEY doomed = Create(HKEY_CURRENT_USER, "Doomed");
    ASSERT_EQ(SetText(doomed, "v", "x"), ERROR_SUCCESS);
    ASSERT_EQ(RegDeleteKeyA(HKEY_CURRENT_USER, "Doomed"), ERROR_SUCCESS);

    EXPECT_EQ(Get(doomed, "v"), "<error 1018>");
    EXPECT_EQ(RegDeleteValueA(doomed, "v"), ERROR_KEY_DELETED);
    char name[16];
    DWORD length = sizeof(name);
    EXPECT_EQ(RegEnumKeyExA(doomed, 0, name, &length, nullptr, nullptr, nullptr, nullptr), ERROR_KEY_DELETED);
    DWORD count = 0;
    EXPECT_EQ(SubKeyCount(doomed, &count), ERROR_KEY_DELETED);
    HKEY child = nullptr;
    EXPECT_EQ(CreateKey(doomed, "Child", KEY_READ, &child), ERROR_KEY_DELETED);
    EXPECT_EQ(RegOpenKeyExA(doomed, "", 0, KEY_READ, &child), ERROR_KEY_DELETED);

    // A new key of the same name is another key: no values, and the old handle stays dead.
    HKEY reborn = Create(HKEY_CURRENT_USER, "Doomed");
    EXPECT_EQ(Get(reborn, "v"), "<error 2>");
    EXPECT_EQ(SetText(doomed, "v", "y"), ERROR_KEY_DELETED);
    EXPECT_EQ(RegCloseKey(doomed), ERROR_SUCCESS);

    // So is a key that another process deletes.
    const std::string report = RunInChild([] {
        Report r;
        r.Expect(RegDeleteKeyA(HKEY_CURRENT_USER, "Doomed"), ERROR_SUCCESS, "delete");
        return r.text;
    });
    EXPECT_EQ(report, "");
    EXPECT_EQ(SetText(reborn, "v", "x"), ERROR_KEY_DELETED);
}

TEST_F(RegistryStoreTest, DeleteKeyRefusesKeysWithChildren)
{
    RegCloseKey(Create(HKEY_CURRENT_USER, "Parent\\Child"));
    EXPECT_EQ(RegDeleteKeyA(HKEY_CURRENT_USER, "Parent"), ERROR_ACCESS_DENIED);
    EXPECT_EQ(SubKeys(HKEY_CURRENT_USER), std::vector<std::string>{"Parent"});
    EXPECT_EQ(RegDeleteKeyA(HKEY_CURRENT_USER, "Parent\\Missing"), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(RegDeleteKeyA(HKEY_CURRENT_USER, nullptr), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(RegDeleteKeyA(HKEY_CURRENT_USER, ""), ERROR_ACCESS_DENIED);
    EXPECT_EQ(RegDeleteKeyA(HKEY_CURRENT_USER, "Parent\\Child"), ERROR_SUCCESS);
    EXPECT_EQ(RegDeleteKeyA(HKEY_CURRENT_USER, "Parent"), ERROR_SUCCESS);
    EXPECT_TRUE(SubKeys(HKEY_CURRENT_USER).empty());
}

TEST_F(RegistryStoreTest, SetValueCreatesTheSubKeyAndStoresTheTerminator)
{
    ASSERT_EQ(RegSetValueA(HKEY_CURRENT_USER, "Sv\\Sub", REG_SZ, "text", 2), ERROR_SUCCESS);
    HKEY key = OpenKey(HKEY_CURRENT_USER, "Sv\\Sub", KEY_READ);
    DWORD type = REG_NONE;
    EXPECT_EQ(Get(key, nullptr, &type), Bytes("text", 5));
    EXPECT_EQ(type, REG_SZ);
    RegCloseKey(key);
    EXPECT_EQ(RegSetValueA(HKEY_CURRENT_USER, "Sv", REG_DWORD, "text", 4), ERROR_INVALID_PARAMETER);
    ASSERT_EQ(RegSetValueA(HKEY_CURRENT_USER, nullptr, REG_SZ, "root", 0), ERROR_SUCCESS);
    EXPECT_EQ(Get(HKEY_CURRENT_USER, ""), Bytes("root", 5));
}

TEST_F(RegistryStoreTest, RootsAreSeparateFilesThatOutliveTheProcessState)
{
    ASSERT_EQ(SetText(HKEY_CURRENT_USER, "Where", "user"), ERROR_SUCCESS);
    ASSERT_EQ(SetText(HKEY_LOCAL_MACHINE, "Where", "machine"), ERROR_SUCCESS);
    korva::RegistryStore::Reset();
    EXPECT_EQ(Get(HKEY_CURRENT_USER, "Where"), Bytes("user", 5));
    EXPECT_EQ(Get(HKEY_LOCAL_MACHINE, "Where"), Bytes("machine", 8));
    EXPECT_TRUE(fs::exists(FileOf("HKCU")));
    EXPECT_TRUE(fs::exists(FileOf("HKLM")));
    EXPECT_EQ(korva::RegistryStore::GetPath(HKEY_CURRENT_USER), FileOf("HKCU"));
    EXPECT_EQ(korva::RegistryStore::GetPath(HKEY_LOCAL_MACHINE), FileOf("HKLM"));

    const char* home = std::getenv("HOME");
    const std::string savedHome = home ? home : "";
    ::unsetenv("KORVA_REGISTRY_DIR");
    ::setenv("XDG_CONFIG_HOME", "/somewhere/config", 1);
    EXPECT_EQ(korva::RegistryStore::GetPath(HKEY_CURRENT_USER), "/somewhere/config/Tessmark/registry.sqlite");
    EXPECT_EQ(korva::RegistryStore::GetPath(HKEY_LOCAL_MACHINE), "/var/lib/Tessmark/registry.sqlite");
    ::setenv("XDG_CONFIG_HOME", "relative", 1);   // not absolute: ignored
    ::setenv("HOME", "/home/probe", 1);
    EXPECT_EQ(korva::RegistryStore::GetPath(HKEY_CURRENT_USER), "/home/probe/.config/Tessmark/registry.sqlite");
    EXPECT_EQ(korva::RegistryStore::GetPath(reinterpret_cast<HKEY>(0x10000)), "");
    ::unsetenv("XDG_CONFIG_HOME");
    if (home)
        ::setenv("HOME", savedHome.c_str(), 1);
    else
        ::unsetenv("HOME");
    ::setenv("KORVA_REGISTRY_DIR", mDir.c_str(), 1);
}

// The store must honour what the file system allows. Root passes every
// permission check, so the checks run in a child that has given up root;
// a test run without root runs them with the files made read-only instead.
std::string AsUnprivileged(const std::string& dir, const std::function<std::string()>& body)
{
    return RunInChild([&]() -> std::string {
        if (::geteuid() == 0) {
            if (::setgid(65534) != 0 || ::setuid(65534) != 0)
                return "cannot drop root";
        } else {
            for (const auto& entry : fs::directory_iterator(dir))
                ::chmod(entry.path().c_str(), 0444);
            ::chmod(dir.c_str(), 0555);
        }
        korva::RegistryStore::Reset();
        return body();
    });
}

TEST_F(RegistryStoreTest, RootThatCannotBeWrittenIsReadOnly)
{
    HKEY vendor = Create(HKEY_LOCAL_MACHINE, "SOFTWARE\\Vendor");
    ASSERT_EQ(SetText(vendor, "Setting", "on"), ERROR_SUCCESS);
    RegCloseKey(vendor);
    ASSERT_EQ(SetText(HKEY_LOCAL_MACHINE, "RootValue", "r"), ERROR_SUCCESS);
    korva::RegistryStore::Reset();
    ::chmod(mDir.c_str(), 0755);

    const std::string report = AsUnprivileged(mDir, [] {
        Report r;
        HKEY key = nullptr;
        r.Expect(RegOpenKeyExA(HKEY_LOCAL_MACHINE, "SOFTWARE\\Vendor", 0, KEY_READ, &key), ERROR_SUCCESS, "open read");
        if (Get(key, "Setting") != Bytes("on", 3))
            r.text += "value not readable: " + Get(key, "Setting") + "; ";
        RegCloseKey(key);
        r.Expect(RegOpenKeyExA(HKEY_LOCAL_MACHINE, "SOFTWARE\\Vendor", 0, KEY_WRITE, &key), ERROR_ACCESS_DENIED,
                 "open write");
        DWORD disposition = 0;
        r.Expect(CreateKey(HKEY_LOCAL_MACHINE, "SOFTWARE\\Vendor", KEY_READ, &key, &disposition),
                 ERROR_SUCCESS, "create existing");
        RegCloseKey(key);
        r.Expect(CreateKey(HKEY_LOCAL_MACHINE, "New", KEY_READ, &key), ERROR_ACCESS_DENIED, "create new");
        r.Expect(SetText(HKEY_LOCAL_MACHINE, "RootValue", "changed"), ERROR_ACCESS_DENIED, "set");
        r.Expect(RegDeleteValueA(HKEY_LOCAL_MACHINE, "RootValue"), ERROR_ACCESS_DENIED, "delete value");
        r.Expect(RegDeleteValueA(HKEY_LOCAL_MACHINE, "Missing"), ERROR_FILE_NOT_FOUND, "delete missing value");
        r.Expect(RegDeleteKeyA(HKEY_LOCAL_MACHINE, "SOFTWARE\\Vendor"), ERROR_ACCESS_DENIED, "delete key");
        r.Expect(RegSetValueA(HKEY_LOCAL_MACHINE, "SOFTWARE", REG_SZ, "x", 1), ERROR_ACCESS_DENIED, "set default");
        return r.text;
    });
    EXPECT_EQ(report, "");

    // Nothing changed on disk.
    EXPECT_EQ(Get(HKEY_LOCAL_MACHINE, "RootValue"), Bytes("r", 2));
    EXPECT_EQ(SubKeys(HKEY_LOCAL_MACHINE), std::vector<std::string>{"SOFTWARE"});
}

TEST_F(RegistryStoreTest, RootWithoutFileInAFolderThatCannotBeWrittenIsEmpty)
{
    ::chmod(mDir.c_str(), 0755);
    const std::string report = AsUnprivileged(mDir, [] {
        Report r;
        HKEY key = nullptr;
        r.Expect(RegOpenKeyExA(HKEY_LOCAL_MACHINE, "SOFTWARE", 0, KEY_READ, &key), ERROR_FILE_NOT_FOUND, "open");
        r.Expect(CreateKey(HKEY_LOCAL_MACHINE, "SOFTWARE", KEY_READ, &key), ERROR_ACCESS_DENIED, "create");
        r.Expect(SetText(HKEY_LOCAL_MACHINE, "v", "x"), ERROR_ACCESS_DENIED, "set");
        r.Expect(SubKeys(HKEY_LOCAL_MACHINE).empty() ? 0 : 1, 0, "children");
        DWORD values = 9;
        r.Expect(ValueCount(HKEY_LOCAL_MACHINE, &values), ERROR_SUCCESS, "info");
        r.Expect(static_cast<LONG>(values), 0, "value count");
        return r.text;
    });
    EXPECT_EQ(report, "");
    EXPECT_FALSE(fs::exists(FileOf("HKLM")));
}

TEST_F(RegistryStoreTest, DamagedFilesGiveCorruptAndAreLeftAlone)
{
    const std::string garbage(8192, '\x5A');
    {
        std::ofstream out(FileOf("HKCU"), std::ios::binary);
        out << garbage;
    }
    HKEY key = nullptr;
    EXPECT_EQ(RegOpenKeyExA(HKEY_CURRENT_USER, "x", 0, KEY_READ, &key), ERROR_REGISTRY_CORRUPT);
    EXPECT_EQ(CreateKey(HKEY_CURRENT_USER, "x", KEY_ALL_ACCESS, &key), ERROR_REGISTRY_CORRUPT);
    EXPECT_EQ(SetText(HKEY_CURRENT_USER, "v", "x"), ERROR_REGISTRY_CORRUPT);
    {
        std::ifstream in(FileOf("HKCU"), std::ios::binary);
        EXPECT_EQ(std::string(std::istreambuf_iterator<char>(in), {}), garbage);
    }
    // The other root is not affected.
    EXPECT_EQ(SetText(HKEY_LOCAL_MACHINE, "v", "x"), ERROR_SUCCESS);

    // A registry file cut in half: what cannot be read is reported, nothing crashes.
    const std::string payload(1000, 'p');
    for (int i = 0; i < 200; ++i) {
        const std::string name = "Key" + std::to_string(i);
        HKEY made = Create(HKEY_LOCAL_MACHINE, name.c_str());
        ASSERT_EQ(SetText(made, "data", payload), ERROR_SUCCESS);
        RegCloseKey(made);
    }
    korva::RegistryStore::Reset();
    fs::remove(FileOf("HKLM") + "-wal");
    fs::remove(FileOf("HKLM") + "-shm");
    fs::resize_file(FileOf("HKLM"), fs::file_size(FileOf("HKLM")) / 2);
    int corrupt = 0;
    for (int i = 0; i < 200; ++i) {
        const std::string name = "Key" + std::to_string(i);
        const LONG rc = RegOpenKeyExA(HKEY_LOCAL_MACHINE, name.c_str(), 0, KEY_READ, &key);
        if (rc == ERROR_SUCCESS) {
            const std::string value = Get(key, "data");
            RegCloseKey(key);
            if (value == "<error 1015>")
                ++corrupt;
            else
                EXPECT_EQ(value, payload + '\0') << name;
        } else {
            EXPECT_EQ(rc, ERROR_REGISTRY_CORRUPT) << name;
            ++corrupt;
        }
    }
    EXPECT_GT(corrupt, 0);
}

TEST_F(RegistryStoreTest, LockedStoreTimesOutAndThenWaitsForTheLock)
{
    HKEY key = Create(HKEY_CURRENT_USER, "Locked");
    ASSERT_EQ(SetText(key, "old", "1"), ERROR_SUCCESS);

    sqlite3* other = nullptr;
    ASSERT_EQ(sqlite3_open(FileOf("HKCU").c_str(), &other), SQLITE_OK);
    ASSERT_EQ(sqlite3_exec(other, "BEGIN IMMEDIATE", nullptr, nullptr, nullptr), SQLITE_OK);

    korva::RegistryStore::SetBusyTimeout(100);
    EXPECT_EQ(SetText(key, "new", "2"), ERROR_CANTWRITE);
    HKEY child = nullptr;
    EXPECT_EQ(CreateKey(key, "Child", KEY_READ, &child), ERROR_CANTWRITE);
    EXPECT_EQ(Get(key, "old"), Bytes("1", 2));   // readers are not blocked by a writer

    // With a longer timeout the write waits for the other writer to finish.
    korva::RegistryStore::SetBusyTimeout(10000);
    std::thread release([other] {
        std::this_thread::sleep_for(std::chrono::milliseconds(200));
        sqlite3_exec(other, "COMMIT", nullptr, nullptr, nullptr);
    });
    EXPECT_EQ(SetText(key, "new", "2"), ERROR_SUCCESS);
    release.join();
    sqlite3_close(other);
    EXPECT_EQ(Get(key, "new"), Bytes("2", 2));
    RegCloseKey(key);
}

TEST_F(RegistryStoreTest, TwoProcessesWriteOneNewStoreAtOnce)
{
    constexpr int kWrites = 150;
    int gate[2];
    ASSERT_EQ(::pipe(gate), 0);
    korva::RegistryStore::Reset();
    std::vector<pid_t> children;
    for (int process = 0; process < 2; ++process) {
        const pid_t child = ::fork();
        if (child == 0) {
            ::close(gate[1]);
            char byte;
            while (::read(gate[0], &byte, 1) > 0) {
            }
            int failures = 0;
            for (int i = 0; i < kWrites; ++i) {
                const std::string path = "Shared\\P" + std::to_string(process) + "\\K" + std::to_string(i);
                HKEY key = nullptr;
                failures += CreateKey(HKEY_CURRENT_USER, path.c_str(), KEY_ALL_ACCESS, &key) != ERROR_SUCCESS;
                const std::string name = "p" + std::to_string(process) + "_" + std::to_string(i);
                failures += RegSetValueA(HKEY_CURRENT_USER, "Shared", REG_SZ, name.c_str(), 0) != ERROR_SUCCESS;
                failures += SetDword(key, "i", static_cast<DWORD>(i)) != ERROR_SUCCESS;
                RegCloseKey(key);
            }
            ::_exit(failures == 0 ? 0 : 1);
        }
        children.push_back(child);
    }
    ::close(gate[0]);
    ::close(gate[1]);   // both start now
    for (pid_t child : children) {
        int status = 0;
        ::waitpid(child, &status, 0);
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    }
    for (int process = 0; process < 2; ++process)
        for (int i = 0; i < kWrites; ++i) {
            const std::string path = "Shared\\P" + std::to_string(process) + "\\K" + std::to_string(i);
            HKEY key = OpenKey(HKEY_CURRENT_USER, path.c_str(), KEY_READ);
            const DWORD expected = static_cast<DWORD>(i);
            EXPECT_EQ(Get(key, "i"), Bytes(&expected, 4)) << path;
            RegCloseKey(key);
        }
}



TEST_F(RegistryStoreTest, WriterKilledAtAnyMomentLosesNothingItReported)
{
    const std::string payload(300, 'k');
    for (const int killAfter : {1, 40, 400}) {
        korva::RegistryStore::Reset();
        int reports[2];
        ASSERT_EQ(::pipe(reports), 0);
        const pid_t child = ::fork();
        if (child == 0) {
            ::close(reports[0]);
            HKEY key = nullptr;
            const std::string path = "Killed\\Run" + std::to_string(killAfter);
            if (CreateKey(HKEY_CURRENT_USER, path.c_str(), KEY_ALL_ACCESS, &key) != ERROR_SUCCESS)
                ::_exit(1);
            for (std::uint32_t i = 0;; ++i) {
                const std::string name = "v" + std::to_string(i);
                if (SetText(key, name.c_str(), payload + std::to_string(i)) == ERROR_SUCCESS &&
                    ::write(reports[1], &i, sizeof(i)) != sizeof(i))
                    ::_exit(1);
            }
        }
        ::close(reports[1]);
        std::vector<std::uint32_t> written;
        std::uint32_t i = 0;
        while (static_cast<int>(written.size()) < killAfter && ::read(reports[0], &i, sizeof(i)) == sizeof(i))
            written.push_back(i);
        ::kill(child, SIGKILL);
        while (::read(reports[0], &i, sizeof(i)) == sizeof(i))
            written.push_back(i);
        ::close(reports[0]);
        int status = 0;
        ::waitpid(child, &status, 0);
        ASSERT_TRUE(WIFSIGNALED(status)) << "the writer stopped by itself";
        ASSERT_GE(static_cast<int>(written.size()), killAfter);

        const std::string path = "Killed\\Run" + std::to_string(killAfter);
        HKEY key = OpenKey(HKEY_CURRENT_USER, path.c_str(), KEY_READ);
        for (std::uint32_t n : written) {
            const std::string name = "v" + std::to_string(n);
            ASSERT_EQ(Get(key, name.c_str()), payload + std::to_string(n) + '\0') << name;
        }
        RegCloseKey(key);
    }
}

TEST_F(RegistryStoreTest, ThreadsShareTheStore)
{
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([t] {
            const std::string path = "Threads\\T" + std::to_string(t);
            HKEY key = nullptr;
            CreateKey(HKEY_CURRENT_USER, path.c_str(), KEY_ALL_ACCESS, &key);
            for (DWORD i = 0; i < 100; ++i)
                SetDword(key, ("v" + std::to_string(i)).c_str(), i);
            RegCloseKey(key);
        });
    for (std::thread& thread : threads)
        thread.join();
    for (int t = 0; t < 4; ++t) {
        HKEY key = OpenKey(HKEY_CURRENT_USER, ("Threads\\T" + std::to_string(t)).c_str(), KEY_READ);
        DWORD values = 0;
        EXPECT_EQ(ValueCount(key, &values), ERROR_SUCCESS);
        EXPECT_EQ(values, 100u);
        RegCloseKey(key);
    }
}

} // namespace
