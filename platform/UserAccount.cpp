#include <KORVAutlwin/platform/UserAccount.h>

#include <vector>

#include <pwd.h>
#include <unistd.h>

namespace korva {

bool AccountExists(const std::string& name)
{
    if (name.empty())
        return false;
    const long suggested = sysconf(_SC_GETPW_R_SIZE_MAX);
    std::vector<char> buffer(suggested > 0 ? static_cast<size_t>(suggested) : 16384);
    passwd entry{};
    passwd* found = nullptr;
    return getpwnam_r(name.c_str(), &entry, buffer.data(), buffer.size(), &found) == 0 && found;
}

} // namespace korva
