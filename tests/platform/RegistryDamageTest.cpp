// A damaged registry file: found at the first opening or at the first damaged
// read, refused from then on without a byte written, moved aside at the next start.

#include "utl/TempDir.h"

#include <KORVAutlwin/platform/Registry.h>

#include <sqlite3.h>

#include <cstdint>

namespace {

namespace fs = std::filesystem;
constexpr int kPage = 4096;

class RegistryDamageTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ::setenv("KORVA_REGISTRY_DIR", mDir.Path().c_str(), 1);
        korva::RegistryStore::Reset();
        // Enough keys for a file of many pages; "Key 150" lies in the middle.
        for (int i = 0; i < 300; ++i)
            ASSERT_EQ(Set(("Key " + std::to_string(i)).c_str(), std::string(100, 'p').c_str()), ERROR_SUCCESS);
        korva::RegistryStore::Reset();   // the file alone holds everything now
    }
    void TearDown() override { korva::RegistryStore::Reset(); }

    std::string File() const { return mDir.File("HKCU.sqlite"); }
    // The bytes of the database and its -wal. (The -shm is an index that every
    // first reader rebuilds from these two.) Compared with EXPECT_TRUE: no dump of bytes.
    static std::string Files(const std::string& file) { return ReadFile(file) + '|' + ReadFile(file + "-wal"); }
    void Overwrite(long offset, const std::string& bytes) const
    {
        std::fstream file(File(), std::ios::binary | std::ios::in | std::ios::out);
        file.seekp(offset);
        file << bytes;
    }
    // The default value of a key below HKEY_CURRENT_USER, created if missing.
    static LONG Set(const char* key, const char* text) { return RegSetValueA(HKEY_CURRENT_USER, key, REG_SZ, text, 0); }
    // Every kind of call on the damaged root, each of which must be refused.
    void ExpectAllRefused() const
    {
        HKEY key = nullptr;
        DWORD size = 0;
        EXPECT_EQ(RegOpenKeyExA(HKEY_CURRENT_USER, "Key 150", 0, KEY_READ, &key), ERROR_REGISTRY_CORRUPT);
        EXPECT_EQ(RegCreateKeyExA(HKEY_CURRENT_USER, "New", 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key, nullptr),
                  ERROR_REGISTRY_CORRUPT);
        EXPECT_EQ(Set("Key 2", "x"), ERROR_REGISTRY_CORRUPT);
        EXPECT_EQ(RegQueryValueExA(HKEY_CURRENT_USER, "v", nullptr, nullptr, nullptr, &size), ERROR_REGISTRY_CORRUPT);
        EXPECT_EQ(RegDeleteKeyA(HKEY_CURRENT_USER, "Key 1"), ERROR_REGISTRY_CORRUPT);
        EXPECT_EQ(RegFlushKey(HKEY_CURRENT_USER), ERROR_REGISTRY_CORRUPT);
    }

    TempDir mDir;
};

TEST_F(RegistryDamageTest, DamagedFileIsRefusedUntouchedAndMovedAsideAtTheNextStart)
{
    const auto size = static_cast<long>(fs::file_size(File()));
    const std::string content = ReadFile(File());
    const std::function<void()> damages[] = {
        [&] { Overwrite(size / 2 / kPage * kPage, std::string(kPage, '\x5A')); },   // a page in the middle
        [&] { fs::resize_file(File(), size / 2); },
        [&] { fs::resize_file(File(), size - 1000); },
        [&] { Overwrite(0, std::string(100, 'Z')); },                               // the header
        [&] { Overwrite(28, std::string("\0\0\x10\0", 4)); },                       // the page count
        [&] { Overwrite(60, std::string("\0\0\0\x07", 4)); },                       // an unknown version
        [&] { Overwrite(60, std::string(4, '\0')); },                               // tables without a version
        // One copy of a key name changed: the index no longer matches its table,
        // which a quick check misses and which made keys read as missing.
        [&] { Overwrite(static_cast<long>(content.find("Key 150")) + 4, "7"); },
        [&] { Overwrite(static_cast<long>(content.rfind("Key 150")) + 4, "7"); },
        [&] { Overwrite(size - 2 * kPage, content.substr(kPage, kPage)); },        // a page copied over another
        [&] { Overwrite(static_cast<long>(content.find("data BLOB")), "okta"); },  // a column renamed
    };
    for (std::size_t row = 0; row < std::size(damages); ++row) {
        SCOPED_TRACE("damage " + std::to_string(row));
        WriteFile(File(), content);
        damages[row]();
        const std::string before = Files(File());
        ExpectAllRefused();
        korva::RegistryStore::Reset();   // closing writes nothing either
        EXPECT_TRUE(Files(File()) == before);

        // The next start keeps the damaged file under a new name and begins empty.
        const auto moved = korva::RegistryStore::MoveAsideDamaged();
        ASSERT_EQ(moved.size(), 1u);
        EXPECT_EQ(moved[0].file, File());
        EXPECT_EQ(moved[0].movedTo.rfind(File() + ".corrupt-", 0), 0u) << moved[0].movedTo;
        EXPECT_TRUE(Files(moved[0].movedTo) == before);
        EXPECT_TRUE(fs::exists(moved[0].movedTo + "-shm"));
        HKEY key = nullptr;
        EXPECT_EQ(RegOpenKeyExA(HKEY_CURRENT_USER, "Key 150", 0, KEY_READ, &key), ERROR_FILE_NOT_FOUND);
        EXPECT_EQ(Set("Key 2", "x"), ERROR_SUCCESS);
        EXPECT_TRUE(korva::RegistryStore::MoveAsideDamaged().empty());
        korva::RegistryStore::Reset();
        for (const char* suffix : {"", "-wal", "-shm"})
            fs::remove(moved[0].movedTo + suffix);
    }
}

TEST_F(RegistryDamageTest, DamageMetAfterTheOpeningRefusesEverythingFromThenOn)
{
    HKEY key = nullptr;
    ASSERT_EQ(RegOpenKeyExA(HKEY_CURRENT_USER, "Key 3", 0, KEY_READ, &key), ERROR_SUCCESS);
    Overwrite(static_cast<long>(fs::file_size(File())) / 2 / kPage * kPage, std::string(kPage, '\x5A'));
    // Another writer makes this process read the file again.
    sqlite3* other = nullptr;
    ASSERT_EQ(sqlite3_open(File().c_str(), &other), SQLITE_OK);
    ASSERT_EQ(sqlite3_exec(other, "PRAGMA user_version = 1", nullptr, nullptr, nullptr), SQLITE_OK);
    sqlite3_close(other);
    LONG result = ERROR_SUCCESS;
    for (int i = 0; i < 300 && result != ERROR_REGISTRY_CORRUPT; ++i) {
        DWORD size = 0;
        result = RegOpenKeyExA(HKEY_CURRENT_USER, ("Key " + std::to_string(i)).c_str(), 0, KEY_READ, &key);
        if (result == ERROR_SUCCESS)
            result = RegQueryValueExA(key, nullptr, nullptr, nullptr, nullptr, &size);
    }
    ASSERT_EQ(result, ERROR_REGISTRY_CORRUPT);
    const std::string before = Files(File());
    ExpectAllRefused();
    korva::RegistryStore::Reset();
    EXPECT_TRUE(Files(File()) == before);
}

TEST_F(RegistryDamageTest, FlushPutsTheWritesIntoTheDatabaseFileItself)
{
    // Written, the text is in the -wal; flushed, in the database file, which holds it without the -wal.
    ASSERT_EQ(Set("Late", "written-before-the-power-cut"), ERROR_SUCCESS);
    EXPECT_EQ(ReadFile(File()).find("written-before-the-power-cut"), std::string::npos);
    EXPECT_EQ(RegFlushKey(HKEY_CURRENT_USER), ERROR_SUCCESS);
    EXPECT_NE(ReadFile(File()).find("written-before-the-power-cut"), std::string::npos);
    EXPECT_EQ(RegFlushKey(reinterpret_cast<HKEY>(std::uintptr_t{0x7777})), ERROR_INVALID_HANDLE);
}

} // namespace
