#include <KORVAutlwin/help/ChmFileFinder.h>

#include <KORVAutl/IniFileSection.h>
#include <KORVAutl/TsFileUtl.h>
#include <KORVAutlwin/platform/Registry.h>

#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace {
// The next character of UTF-8 text: multi-byte characters are stepped over whole.
const char* CharNextA(const char* text)
{
    if (!*text)
        return text;
    const auto lead = static_cast<unsigned char>(*text);
    int length = lead < 0x80 ? 1 : (lead >> 5) == 6 ? 2 : (lead >> 4) == 14 ? 3 : (lead >> 3) == 30 ? 4 : 1;
    const char* next = text + 1;
    while (--length > 0 && (static_cast<unsigned char>(*next) & 0xC0) == 0x80)
        ++next;
    return next;
}

bool Exists(const std::string& path)
{
    return !path.empty() && FileExist(path.c_str()) != 0;
}

void Put(char* out, const std::string& path)
{
    const std::size_t size = std::min<std::size_t>(path.size(), ChmFileFinder::kMaxPath - 1);
    std::memcpy(out, path.data(), size);
    out[size] = '\0';
}

std::string FullPath(const std::string& path)
{
    return QFileInfo(QString::fromStdString(path)).absoluteFilePath().toStdString();
}

// A machine-wide string value of the registry store; empty when there is none.
bool ReadMachineString(const char* key, const char* value, char* buffer, DWORD& size)
{
    HKEY opened = nullptr;
    if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, key, 0, KEY_READ, &opened) != ERROR_SUCCESS)
        return false;
    DWORD type = 0;
    const LONG result = RegQueryValueExA(opened, value, nullptr, &type, reinterpret_cast<BYTE*>(buffer), &size);
    RegCloseKey(opened);
    return result == ERROR_SUCCESS && (type == REG_SZ || type == REG_EXPAND_SZ);
}
} // namespace

bool ChmFileFinder::FindChmFile(const char* name, char* out, const Prompt& prompt)
{
    const std::string given = name ? name : "";
    // 1. The name as given.
    if (Exists(given)) {
        Put(out, FullPath(given));
        return true;
    }
    // 2. Either separator ends a folder; the base is the file's own name.
    std::string copy = given;
    std::replace(copy.begin(), copy.end(), '\\', '/');
    const char* last = StrRChrA(copy.c_str(), '/');
    const std::string base = last ? std::string(last + 1) : copy;
    if (base.empty())
        return false;
    // 3. Beside the running program, before 4. the current folder.
    std::string candidate = TsPathAppend(TsGetExecutableDirectory().c_str(), base.c_str());
    if (Exists(candidate)) {
        Put(out, candidate);
        return true;
    }
    if (Exists(base)) {
        Put(out, FullPath(base));
        return true;
    }
    // 5. The folder that the machine's help settings name for this file.
    char folder[kMaxPath] = {};
    DWORD size = kMaxPath;
    if (ReadMachineString("Software\\Microsoft\\Windows\\HTML Help", base.c_str(), folder, size)) {
        std::string path(folder, strnlen(folder, kMaxPath));
        AddTrailingBackslash(path);
        path += base;
        if (Exists(path)) {
            Put(out, path);
            return true;
        }
    }
    // 6. The shared system folder's help.
    char shared[kMaxPath] = {};
    GetRegWindowsDirectory(shared);
    std::string help = shared;
    AddTrailingBackslash(help);
    help += "Help/" + base;
    if (Exists(help)) {
        Put(out, help);
        return true;
    }
    // 7. "hh.ini": path[,prompt].
    std::string entry;
    const IniFileSection ini(TsPathAppend(GetWindowsDirectory().c_str(), "hh.ini").c_str(), "files");
    ini.ReadKey(base.c_str(), entry);
    Put(out, entry);
    if (!*out)
        return false;
    if (char* comma = const_cast<char*>(StrChrA(out, ','))) {
        *comma = '\0';
        const std::string text = comma + 1;
        if (Exists(out))
            return true;
        // The medium with the file may not be inserted yet: ask until it is, or the user gives up.
        while (prompt && prompt(text) && !Exists(out)) {
        }
        return true;
    }
    return Exists(out);
}

void ChmFileFinder::GetRegWindowsDirectory(char* out)
{
    DWORD size = kMaxPath;
    out[0] = '\0';
    const bool read = ReadMachineString("Software\\Microsoft\\Windows\\CurrentVersion\\Setup", "SharedDir", out,
                                        size);
    if (!read || size == kMaxPath || !*out)
        Put(out, GetWindowsDirectory());
}

std::string ChmFileFinder::GetWindowsDirectory()
{
    const char* folder = std::getenv("KORVA_WINDOWS_DIR");
    return folder && *folder ? folder : "/usr/share";
}

void ChmFileFinder::AddTrailingBackslash(std::string& path)
{
    if (path.empty() || (path.back() != '\\' && path.back() != '/' && path.back() != ':'))
        path += '/';
}

const char* ChmFileFinder::StrChrA(const char* text, char c)
{
    for (; text && *text; text = CharNextA(text))
        if (*text == c)
            return text;
    return nullptr;
}

const char* ChmFileFinder::StrRChrA(const char* text, char c)
{
    const char* found = nullptr;
    for (; text && *text; text = CharNextA(text))
        if (*text == c)
            found = text;
    return found;
}
