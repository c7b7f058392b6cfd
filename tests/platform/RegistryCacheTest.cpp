// Keys and values that a process reads again come from memory only while
// nobody has committed since: another process's write shows in the next call.

#include "utl/TempDir.h"

#include <KORVAutlwin/platform/Registry.h>

#include <sys/wait.h>
#include <unistd.h>

namespace {

LONG Open(const char* path)
{
    HKEY key = nullptr;
    const LONG result = RegOpenKeyExA(HKEY_CURRENT_USER, path, 0, KEY_READ, &key);
    RegCloseKey(key);
    return result;
}

std::string Read(HKEY key, const char* name)
{
    char text[64] = "";
    DWORD size = sizeof text;
    const LONG result = RegQueryValueExA(key, name, nullptr, nullptr, reinterpret_cast<BYTE*>(text), &size);
    return result == ERROR_SUCCESS ? std::string(text) : "<error " + std::to_string(result) + ">";
}

} // namespace

TEST(RegistryCacheTest, AnotherProcessCommitShowsInTheNextCall)
{
    TempDir dir;
    ::setenv("KORVA_REGISTRY_DIR", dir.Path().c_str(), 1);
    korva::RegistryStore::Reset();
    HKEY key = nullptr;
    ASSERT_EQ(RegCreateKeyExA(HKEY_CURRENT_USER, "Software\\Kept", 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key, nullptr),
              ERROR_SUCCESS);
    ASSERT_EQ(RegSetValueExA(key, "Value", 0, REG_SZ, reinterpret_cast<const BYTE*>("old"), 4), ERROR_SUCCESS);
    ASSERT_EQ(RegSetValueA(HKEY_CURRENT_USER, "Software\\Gone", REG_SZ, "x", 0), ERROR_SUCCESS);
    // The second round is served from memory, in any case of the names.
    for (const char* name : {"Value", "VALUE"}) {
        EXPECT_EQ(Read(key, name), "old");
        EXPECT_EQ(Open("software\\gone"), ERROR_SUCCESS);
    }

    const pid_t child = ::fork();
    if (child == 0) {
        HKEY kept = nullptr;
        const bool done = RegOpenKeyExA(HKEY_CURRENT_USER, "SOFTWARE\\KEPT", 0, KEY_ALL_ACCESS, &kept) == 0 &&
                          RegSetValueExA(kept, "value", 0, REG_SZ, reinterpret_cast<const BYTE*>("new"), 4) == 0 &&
                          RegDeleteKeyA(HKEY_CURRENT_USER, "Software\\Gone") == 0;
        ::_exit(done ? 0 : 1);
    }
    int status = -1;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    ASSERT_EQ(status, 0);

    EXPECT_EQ(Read(key, "Value"), "new");
    EXPECT_EQ(Open("Software\\Gone"), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(Open("Software\\Kept"), ERROR_SUCCESS);
    RegCloseKey(key);
    korva::RegistryStore::Reset();
}
