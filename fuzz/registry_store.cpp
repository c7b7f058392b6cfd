// A registry store file may be damaged by a crash, a full disk or a person.
// Whatever the file holds, the registry calls must not crash, and once a call
// has reported the store damaged, nothing may change the file.

#include <KORVAutlwin/platform/Registry.h>

#include "FuzzCheck.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>

#include <unistd.h>

namespace {

const std::string& Folder()
{
    static const std::string folder = [] {
        std::string pattern = (access("/dev/shm", W_OK) == 0 ? "/dev/shm" : "/tmp") + std::string("/reg-fuzz-XXXXXX");
        if (!mkdtemp(pattern.data()))
            std::abort();
        setenv("KORVA_REGISTRY_DIR", pattern.c_str(), 1);
        return pattern;
    }();
    return folder;
}

std::string Read(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    std::stringstream content;
    content << in.rdbuf();
    return content.str();
}

// Walks the keys below `key` depth first, reading every value; false once a
// call says the store is damaged.
bool Walk(HKEY key, int depth)
{
    char name[256];
    BYTE data[512];
    for (DWORD i = 0; i < 64; ++i) {
        DWORD length = sizeof name, type = 0, size = sizeof data;
        const LONG rc = RegEnumValueA(key, i, name, &length, nullptr, &type, data, &size);
        if (rc == ERROR_REGISTRY_CORRUPT)
            return false;
        if (rc != ERROR_SUCCESS && rc != ERROR_MORE_DATA)
            break;
    }
    for (DWORD i = 0; depth < 8 && i < 64; ++i) {
        DWORD length = sizeof name;
        const LONG rc = RegEnumKeyExA(key, i, name, &length, nullptr, nullptr, nullptr, nullptr);
        if (rc == ERROR_REGISTRY_CORRUPT)
            return false;
        if (rc != ERROR_SUCCESS)
            break;
        HKEY child = nullptr;
        const LONG opened = RegOpenKeyExA(key, name, 0, KEY_READ, &child);
        if (opened == ERROR_REGISTRY_CORRUPT)
            return false;
        if (opened != ERROR_SUCCESS)
            continue;
        const bool whole = Walk(child, depth + 1);
        RegCloseKey(child);
        if (!whole)
            return false;
    }
    return true;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string file = Folder() + "/HKCU.sqlite";
    for (const char* companion : {"", "-wal", "-shm"})
        unlink((file + companion).c_str());
    const std::string content(reinterpret_cast<const char*>(data), size);
    std::ofstream(file, std::ios::binary) << content;
    korva::RegistryStore::Reset();

    bool damaged = !Walk(HKEY_CURRENT_USER, 0);
    HKEY key = nullptr;
    LONG rc = RegCreateKeyExA(HKEY_CURRENT_USER, "Fuzz\\Written", 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key,
                              nullptr);
    damaged = damaged || rc == ERROR_REGISTRY_CORRUPT;
    if (rc == ERROR_SUCCESS) {
        const DWORD value = 7;
        rc = RegSetValueExA(key, "Value", 0, REG_DWORD, reinterpret_cast<const BYTE*>(&value), sizeof value);
        damaged = damaged || rc == ERROR_REGISTRY_CORRUPT;
        RegCloseKey(key);
    }
    korva::RegistryStore::Reset();
    if (damaged)
        Check(Read(file) == content);
    return 0;
}
