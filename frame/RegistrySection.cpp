#include <KORVAutlwin/frame/RegistrySection.h>

#include <KORVAutlwin/frame/WinApp.h>

#include <KORVAutl/Exception.h>
#include <KORVAutl/LanguageString.h>
#include <KORVAutl/TsString.h>
#include <KORVAutl/TsSystemInfo.h>
#include <KORVAutlwin/platform/TsUnicode.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <new>

namespace {

constexpr REGSAM kReadAccess = 0x20019;
constexpr REGSAM kWriteAccess = 0x20006;
constexpr REGSAM kDeleteTreeAccess = 0x10008;   // DELETE | KEY_ENUMERATE_SUB_KEYS
constexpr DWORD kSubKeyNameBuffer = 260;
constexpr DWORD kDeleteNameBuffer = 1024;
constexpr unsigned int kCannotCreate = 13274;
constexpr unsigned int kCannotOpen = 13275;

const char* Safe(const char* text)
{
    return text ? text : "";
}

std::string IndexedName(const char* name, int index)
{
    return TsString::Format("%s %d", Safe(name), index);
}

// Opens `path` below `root`, creating it on failure if asked. 0 on success,
// otherwise the string id of the failure.
unsigned int OpenKey(HKEY root, const char* path, REGSAM access, bool create, HKEY& key)
{
    if (RegOpenKeyExA(root, path, 0, access, &key) == ERROR_SUCCESS)
        return 0;
    if (!create)
        return kCannotOpen;
    return RegCreateKeyExA(root, path, 0, nullptr, 0, access, nullptr, &key, nullptr) == ERROR_SUCCESS
               ? 0
               : kCannotCreate;
}

// Removes the children of `key`. The index advances although the deleted child
// has left the list, so every second child stays; callers live with that.
bool DeleteChildren(HKEY key)
{
    DWORD longest = 0;
    if (RegQueryInfoKeyA(key, nullptr, nullptr, nullptr, nullptr, &longest, nullptr, nullptr, nullptr, nullptr,
                         nullptr, nullptr) != ERROR_SUCCESS)
        return false;
    // Room for the longest name and its terminator.
    std::vector<char> name(longest + 1);
    for (DWORD index = 0;; ++index) {
        DWORD length = longest + 1;
        if (RegEnumKeyExA(key, index, name.data(), &length, nullptr, nullptr, nullptr, nullptr) ==
            ERROR_NO_MORE_ITEMS)
            return true;
        HKEY child = nullptr;
        if (RegOpenKeyExA(key, name.data(), 0, kWriteAccess, &child) != ERROR_SUCCESS)
            return false;
        DeleteChildren(child);
        RegCloseKey(child);
        RegDeleteKeyA(key, name.data());
    }
}

} // namespace

RegistrySection::RegistrySection() : root(nullptr), current(nullptr), access(kReadAccess) {}

RegistrySection::RegistrySection(HKEY rootKey, const char* keyPath, unsigned long keyAccess, bool create)
    : root(rootKey), current(nullptr), access(static_cast<std::uint32_t>(keyAccess)), path(Safe(keyPath))
{
    if (const unsigned int failure = OpenKey(root, path.c_str(), access, create, current))
        throw Exception(LanguageString::Get(failure));
}

RegistrySection::~RegistrySection()
{
    if (current)
        RegCloseKey(current);
}

bool RegistrySection::Open(HKEY rootKey, const char* keyPath, unsigned long keyAccess, bool create)
{
    root = rootKey;
    path = Safe(keyPath);
    access = static_cast<std::uint32_t>(keyAccess);
    return OpenKey(root, path.c_str(), access, create, current) == 0;
}

ConfigurationSection* RegistrySection::Copy() const
{
    return new (std::nothrow) RegistrySection(current, "", access, false);
}

void RegistrySection::ChangeSection(const char* name)
{
    name = Safe(name);
    const std::size_t slash = path.rfind('\\');
    std::string newPath = slash == std::string::npos ? std::string() : path.substr(0, slash);
    newPath += name;
    // `name` is opened, `newPath` created: the same key for a one-component path.
    HKEY key = nullptr;
    if (RegOpenKeyExA(root, name, 0, access, &key) != ERROR_SUCCESS &&
        RegCreateKeyExA(root, newPath.c_str(), 0, nullptr, 0, access, nullptr, &key, nullptr) != ERROR_SUCCESS)
        return;
    RegCloseKey(current);
    current = key;
    path = std::move(newPath);
}

bool RegistrySection::ChangeSubSection(const char* name, int index)
{
    return ChangeSubSection(IndexedName(name, index).c_str());
}

bool RegistrySection::ChangeSubSection(const char* name)
{
    name = Safe(name);
    HKEY key = nullptr;
    if (RegOpenKeyExA(current, name, 0, access, &key) != ERROR_SUCCESS)
        return false;
    RegCloseKey(current);
    current = key;
    path += '\\';
    path += name;
    return true;
}

ConfigurationSection* RegistrySection::CreateSubSection(const char* name, int index) const
{
    return new (std::nothrow) RegistrySection(current, IndexedName(name, index).c_str(), access, true);
}

ConfigurationSection* RegistrySection::CreateSubSection(const char* name) const
{
    return new (std::nothrow) RegistrySection(current, name, access, true);
}

bool RegistrySection::SupportsSubSections() const
{
    return true;
}

bool RegistrySection::DeleteKey(const char* key)
{
    return RegDeleteValueA(current, key) == ERROR_SUCCESS;
}

bool RegistrySection::DeleteSection()
{
    DeleteChildren(current);
    return RegDeleteKeyA(root, path.c_str()) == ERROR_SUCCESS;
}

bool RegistrySection::Flush() const
{
    // Every write is on disk already; this makes it survive a power cut as well.
    RegFlushKey(current);
    return true;
}

bool RegistrySection::IsEmpty() const
{
    char name[1] = {'\0'};
    DWORD length = 0;
    return RegEnumValueA(current, 0, name, &length, nullptr, nullptr, nullptr, nullptr) != ERROR_NO_MORE_ITEMS;
}

bool RegistrySection::HasSection(const char* name, int /*index*/) const
{
    HKEY key = nullptr;
    if (RegOpenKeyExA(current, Safe(name), 0, access, &key) != ERROR_SUCCESS)
        return false;
    RegCloseKey(key);
    return true;
}

bool RegistrySection::HasKey(const char* key) const
{
    return RegQueryValueExA(current, key, nullptr, nullptr, nullptr, nullptr) == ERROR_SUCCESS;
}

bool RegistrySection::ReadBool(const char* key, bool& value) const
{
    int number = 0;
    if (!ReadInt(key, number))
        return false;
    value = number != 0;
    return true;
}

bool RegistrySection::ReadInt(const char* key, int& value) const
{
    DWORD type = REG_NONE;
    DWORD number = 0;
    DWORD size = sizeof(number);
    if (RegQueryValueExA(current, key, nullptr, &type, reinterpret_cast<BYTE*>(&number), &size) != ERROR_SUCCESS ||
        type != REG_DWORD)
        return false;
    value = static_cast<int>(number);
    return true;
}

bool RegistrySection::ReadKey(const char* key, wchar_t* buffer, unsigned int count) const
{
    if (!buffer || count == 0)
        return false;
    const std::u16string name = korva::Utf8ToUtf16(Safe(key));
    DWORD size = count * 2;
    const LONG asked = RegQueryValueExW(current, name.c_str(), nullptr, nullptr, nullptr, &size);
    if (asked != ERROR_SUCCESS && asked != ERROR_MORE_DATA)
        return false;
    std::u16string units(count, u'\0');
    size = count * 2;
    if (RegQueryValueExW(current, name.c_str(), nullptr, nullptr, reinterpret_cast<BYTE*>(units.data()), &size) !=
        ERROR_SUCCESS)
        return false;
    units.resize(std::min<std::size_t>(units.find(u'\0'), count));
    const std::wstring text = korva::Utf16ToWide(units);
    if (text.size() + 1 > count)
        return false;
    std::memcpy(buffer, text.c_str(), (text.size() + 1) * sizeof(wchar_t));
    return true;
}

bool RegistrySection::ReadKey(const char* key, std::wstring& value) const
{
    const std::u16string name = korva::Utf8ToUtf16(Safe(key));
    DWORD size = 0;
    const LONG asked = RegQueryValueExW(current, name.c_str(), nullptr, nullptr, nullptr, &size);
    if (asked != ERROR_SUCCESS && asked != ERROR_MORE_DATA)
        return false;
    std::u16string units(size + 1, u'\0');
    DWORD bytes = (size + 1) * sizeof(char16_t);
    if (RegQueryValueExW(current, name.c_str(), nullptr, nullptr, reinterpret_cast<BYTE*>(units.data()), &bytes) !=
        ERROR_SUCCESS)
        return false;
    units.resize(units.find(u'\0'));
    value = korva::Utf16ToWide(units);
    return true;
}

bool RegistrySection::ReadKey(const char* key, std::string& value) const
{
    DWORD size = 0;
    const LONG asked = RegQueryValueExA(current, key, nullptr, nullptr, nullptr, &size);
    if (asked != ERROR_SUCCESS && asked != ERROR_MORE_DATA)
        return false;
    std::vector<char> buffer(size + 1, '\0');
    DWORD bytes = size + 1;
    if (RegQueryValueExA(current, key, nullptr, nullptr, reinterpret_cast<BYTE*>(buffer.data()), &bytes) !=
        ERROR_SUCCESS)
        return false;
    value = buffer.data();
    return true;
}

bool RegistrySection::WriteBool(const char* key, bool value)
{
    return WriteInt(key, value ? 1 : 0);
}

bool RegistrySection::WriteInt(const char* key, int value)
{
    const DWORD number = static_cast<DWORD>(value);
    return RegSetValueExA(current, key, 0, REG_DWORD, reinterpret_cast<const BYTE*>(&number), sizeof(number)) ==
           ERROR_SUCCESS;
}

bool RegistrySection::WriteKey(const char* key, const wchar_t* value)
{
    const std::wstring text = value ? value : L"";
    const std::u16string units = korva::WideToUtf16(text);
    const std::u16string name = korva::Utf8ToUtf16(Safe(key));
    // Length in characters + 1, passed as a byte count: the settled size of this overload.
    return RegSetValueExW(current, name.c_str(), 0, REG_SZ, reinterpret_cast<const BYTE*>(units.c_str()),
                          static_cast<DWORD>(text.size() + 1)) == ERROR_SUCCESS;
}

bool RegistrySection::WriteKey(const char* key, const char* value)
{
    value = Safe(value);
    return RegSetValueExA(current, key, 0, REG_SZ, reinterpret_cast<const BYTE*>(value),
                          static_cast<DWORD>(std::strlen(value) + 1)) == ERROR_SUCCESS;
}

bool RegistrySection::WriteToSection(ConfigurationSection* /*target*/) const
{
    return false;
}

std::vector<std::string> RegistrySection::GetSectionNames() const
{
    std::vector<std::string> names;
    DWORD count = 0;
    DWORD longest = 0;
    if (RegQueryInfoKeyA(current, nullptr, nullptr, nullptr, &count, &longest, nullptr, nullptr, nullptr, nullptr,
                         nullptr, nullptr) != ERROR_SUCCESS)
        return names;
    std::vector<char> name(longest + 1);
    for (DWORD index = 0; index < count; ++index) {
        DWORD length = longest + 1;
        if (RegEnumKeyExA(current, index, name.data(), &length, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS)
            break;
        names.emplace_back(name.data(), length);
    }
    return names;
}

std::vector<std::string> RegistrySection::GetKeyNames() const
{
    std::vector<std::string> names;
    DWORD count = 0;
    DWORD longest = 0;
    if (RegQueryInfoKeyA(current, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, &count, &longest, nullptr,
                         nullptr, nullptr) != ERROR_SUCCESS)
        return names;
    std::vector<char> name(longest + 1);
    for (DWORD index = 0; index < count; ++index) {
        DWORD length = longest + 1;
        if (RegEnumValueA(current, index, name.data(), &length, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS)
            break;
        names.emplace_back(name.data(), length);
    }
    return names;
}

const char* GetRegistryBaseKeyName()
{
    // One buffer for the life of the process, formatted anew on each call.
    static char name[1024];
    if (const WinApp* app = WinApp::GetApp()) {
        std::snprintf(name, sizeof name, "SOFTWARE\\%s\\%s", app->GetRegistryKey(), app->GetProfileName());
    } else {
        // Reading the version means reading the executable: once is enough.
        static const std::string version = TsSystemInfo::GetApplicationVersion(TsSystemInfo::eVersionShort);
        const std::string profile = TsSystemInfo::GetApplicationName() + "\\" + version;
        std::snprintf(name, sizeof name, "SOFTWARE\\%s\\%s", "Tessmark", profile.c_str());
    }
    return name;
}

bool TsSetRegKey(HKEY root, const char* subKey, const char* value, const char* valueName)
{
    value = Safe(value);
    const DWORD length = static_cast<DWORD>(std::strlen(value));
    if (!valueName)
        return RegSetValueA(root, subKey, REG_SZ, value, length) == ERROR_SUCCESS;
    HKEY key = nullptr;
    if (RegCreateKeyExA(root, subKey, 0, nullptr, 0, kWriteAccess, nullptr, &key, nullptr) != ERROR_SUCCESS)
        return false;
    const LONG written = RegSetValueExA(key, valueName, 0, REG_SZ, reinterpret_cast<const BYTE*>(value), length + 1);
    const LONG closed = RegCloseKey(key);
    return written == ERROR_SUCCESS && closed == ERROR_SUCCESS;
}

int TsDeleteRegKey(HKEY root, const char* subKey)
{
    if (!subKey || !*subKey)
        return ERROR_BADKEY;
    HKEY key = nullptr;
    LONG result = RegOpenKeyExA(root, subKey, 0, kDeleteTreeAccess, &key);
    if (result != ERROR_SUCCESS)
        return result;
    // Always child 0: each deletion moves the next child to the front.
    for (;;) {
        char name[kDeleteNameBuffer];
        DWORD length = kDeleteNameBuffer;
        result = RegEnumKeyExA(key, 0, name, &length, nullptr, nullptr, nullptr, nullptr);
        if (result == ERROR_NO_MORE_ITEMS) {
            result = RegDeleteKeyA(root, subKey);
            RegCloseKey(key);
            return result;
        }
        if (result == ERROR_SUCCESS)
            result = TsDeleteRegKey(key, name);
        if (result != ERROR_SUCCESS) {
            RegCloseKey(key);
            return result;
        }
    }
}

bool TsDeleteRegValue(HKEY root, const char* subKey, const char* valueName)
{
    HKEY key = nullptr;
    if (RegOpenKeyExA(root, subKey, 0, KEY_SET_VALUE, &key) != ERROR_SUCCESS)
        return true;   // no key, no value
    const LONG result = RegDeleteValueA(key, valueName);
    RegCloseKey(key);
    return result == ERROR_SUCCESS;
}

std::string TsGetRegKey(HKEY root, const char* subKey, const char* valueName, const char* defaultValue)
{
    const std::string fallback = Safe(defaultValue);
    HKEY key = nullptr;
    if (RegOpenKeyExA(root, subKey, 0, kReadAccess, &key) != ERROR_SUCCESS)
        return fallback;
    DWORD type = REG_NONE;
    DWORD size = 0;
    if (RegQueryValueExA(key, valueName, nullptr, &type, nullptr, &size) != ERROR_SUCCESS) {
        RegCloseKey(key);
        return fallback;
    }
    std::vector<char> buffer(std::max<std::size_t>(size + 1, sizeof(DWORD)), '\0');
    DWORD bytes = size + 1;
    const LONG result =
        RegQueryValueExA(key, valueName, nullptr, &type, reinterpret_cast<BYTE*>(buffer.data()), &bytes);
    RegCloseKey(key);
    if (result != ERROR_SUCCESS)
        return fallback;
    buffer[size] = '\0';
    if (type == REG_DWORD) {
        DWORD number = 0;
        std::memcpy(&number, buffer.data(), sizeof(number));
        return TsString::Format("%lu", static_cast<unsigned long>(number));
    }
    return buffer.data();
}

bool TsGetRegSubKeys(HKEY root, const char* subKey, std::vector<std::string>& names)
{
    HKEY key = nullptr;
    if (RegOpenKeyExA(root, subKey, 0, kReadAccess, &key) != ERROR_SUCCESS)
        return false;
    for (DWORD index = 0;; ++index) {
        char name[kSubKeyNameBuffer];
        DWORD length = kSubKeyNameBuffer;
        if (RegEnumKeyExA(key, index, name, &length, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS)
            break;
        names.emplace_back(name, length);
    }
    RegCloseKey(key);
    return true;
}
