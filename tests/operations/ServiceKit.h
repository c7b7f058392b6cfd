#pragma once
// What the service tests share: a temporary folder, a listener on a notify
// socket in it (the manager's end of the notify protocol), the sample service's
// program and the log lines a program wrote below a folder.

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <sstream>
#include <string>

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace service_kit {

inline std::string SampleService()
{
    return std::string(KORVA_BINARY_DIR) + "/bin/sampleservice";
}

class TempFolder
{
public:
    TempFolder()
    {
        std::string pattern = (std::filesystem::temp_directory_path() / "korva-service-XXXXXX").string();
        path = mkdtemp(pattern.data()) ? pattern : std::string();
    }
    ~TempFolder() { std::filesystem::remove_all(path); }
    std::string path;
};

/// The datagram socket that a manager binds for $NOTIFY_SOCKET.
class NotifyListener
{
public:
    explicit NotifyListener(const std::string& socketPath) : path(socketPath)
    {
        mFd = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        socketPath.copy(address.sun_path, sizeof address.sun_path - 1);
        if (bind(mFd, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0) {
            close(mFd);
            mFd = -1;
        }
    }
    ~NotifyListener()
    {
        if (mFd >= 0)
            close(mFd);
    }
    int Fd() const { return mFd; }

    /// The next message, or nothing when none came within `timeoutMs`.
    std::optional<std::string> Next(int timeoutMs = 10000)
    {
        pollfd ready{mFd, POLLIN, 0};
        if (poll(&ready, 1, timeoutMs) <= 0)
            return std::nullopt;
        char buffer[4096];
        const ssize_t got = recv(mFd, buffer, sizeof buffer, 0);
        return got < 0 ? std::nullopt : std::optional<std::string>(std::string(buffer, got));
    }

    const std::string path;

private:
    int mFd = -1;
};

/// Every log file below `folder`, one after another.
inline std::string LogText(const std::string& folder)
{
    std::string text;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder))
        if (entry.path().extension() == ".log") {
            std::ifstream file(entry.path());
            std::stringstream content;
            content << file.rdbuf();
            text += content.str();
        }
    return text;
}

} // namespace service_kit
