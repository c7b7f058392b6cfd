#include <KORVAutlwin/platform/UserIdentity.h>

#include <cerrno>
#include <cstdlib>
#include <vector>

#include <pwd.h>
#include <unistd.h>

namespace korva {

namespace {

// The user database's entry of this process's user, with `text` holding its strings; null when there is none.
const passwd* OwnEntry(passwd& entry, std::vector<char>& text)
{
    passwd* found = nullptr;
    for (std::size_t size = 4096; size <= (1u << 20); size *= 4) {
        text.resize(size);
        const int error = getpwuid_r(getuid(), &entry, text.data(), text.size(), &found);
        if (error != ERANGE)
            return error == 0 ? found : nullptr;
    }
    return nullptr;
}

} // namespace

unsigned int UserId()
{
    return getuid();
}

std::string UserName()
{
    passwd entry;
    std::vector<char> text;
    const passwd* found = OwnEntry(entry, text);
    return found && found->pw_name ? found->pw_name : "";
}

bool UserIdOfName(const std::string& name, unsigned int& uid)
{
    passwd entry;
    passwd* found = nullptr;
    std::vector<char> text;
    for (std::size_t size = 4096; size <= (1u << 20); size *= 4) {
        text.resize(size);
        const int error = getpwnam_r(name.c_str(), &entry, text.data(), text.size(), &found);
        if (error != ERANGE)
            break;
    }
    if (!found)
        return false;
    uid = found->pw_uid;
    return true;
}

std::string HomeFolder()
{
    if (const char* home = std::getenv("HOME"); home && *home)
        return home;
    passwd entry;
    std::vector<char> text;
    const passwd* found = OwnEntry(entry, text);
    return found && found->pw_dir ? found->pw_dir : "";
}

std::string UserConfigFolder()
{
    if (const char* config = std::getenv("XDG_CONFIG_HOME"); config && *config == '/')
        return config;
    const std::string home = HomeFolder();
    return home.empty() ? home : home + "/.config";
}

} // namespace korva
