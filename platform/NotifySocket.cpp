#include <KORVAutlwin/platform/NotifySocket.h>

#include <cstdlib>

#include <systemd/sd-daemon.h>

namespace korva {

bool NotifySocket::IsAvailable()
{
    const char* socket = std::getenv("NOTIFY_SOCKET");
    return socket && *socket;
}

int NotifySocket::Send(const std::string& state)
{
    if (state.empty())
        return EINVAL;
    if (!IsAvailable())
        return ENOENT;
    // Keep the variable: controls repeat the state later in the same process.
    const int result = sd_notify(0, state.c_str());
    if (result < 0)
        return -result;
    return result > 0 ? 0 : ENOENT;
}

} // namespace korva
