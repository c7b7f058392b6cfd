#pragma once
// What the SysLog tests share: a temporary folder, a forked child for each
// process-wide start of SysLog, and a real rsyslogd on loopback ports.

#include "utl/TempDir.h"

#include <KORVAutlwin/platform/ChildProcess.h>

#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

/// A fresh folder, removed at scope end; the registry store and the log move into it.
class SysLogFolder : public TempDir
{
public:
    SysLogFolder()
    {
        setenv("KORVA_REGISTRY_DIR", Path().c_str(), 1);
        setenv("XDG_CONFIG_HOME", Path().c_str(), 1);
    }
};

/// Runs `body` in a forked child, whose SysLog starts afresh: the settings are
/// read once per process. Returns what `body` returned; a child that dies or
/// hangs fails the test.
inline std::string InChild(const std::function<std::string()>& body)
{
    std::FILE* out = std::tmpfile();
    const pid_t pid = fork();
    if (pid == 0) {
        alarm(20);
        const std::string result = body();
        std::fwrite(result.data(), 1, result.size(), out);
        std::fflush(out);
        _exit(0);
    }
    int status = 0;
    waitpid(pid, &status, 0);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << "the child ended with status " << status;
    std::string result(4096, '\0');
    std::rewind(out);
    result.resize(std::fread(result.data(), 1, result.size(), out));
    std::fclose(out);
    return result;
}

/// A socket bound to a free loopback port, which `port` receives.
inline int BoundSocket(int type, int& port)
{
    const int fd = socket(AF_INET, type, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof address);
    getsockname(fd, reinterpret_cast<sockaddr*>(&address), &length);
    port = ntohs(address.sin_port);
    return fd;
}

/// A loopback port that nothing listens on just now.
inline int FreePort(int type)
{
    int port = 0;
    close(BoundSocket(type, port));
    return port;
}

/// rsyslogd in the foreground, receiving on 127.0.0.1 over UDP and TCP and
/// writing each message's raw bytes as one line of a file.
class Rsyslogd
{
public:
    static std::string Program()
    {
        for (const char* path : {"/usr/sbin/rsyslogd", "/sbin/rsyslogd"})
            if (access(path, X_OK) == 0)
                return path;
        return {};
    }

    explicit Rsyslogd(const SysLogFolder& folder)
        : mUdpPort(FreePort(SOCK_DGRAM)), mTcpPort(FreePort(SOCK_STREAM)), mOutput(folder.File("received.log"))
    {
        const std::string conf = folder.File("rsyslog.conf");
        std::filesystem::create_directory(folder.File("work"));
        std::ostringstream text;
        text << "global(workDirectory=\"" << folder.File("work") << "\")\n"
             << "module(load=\"imudp\")\nmodule(load=\"imtcp\")\n"
             << "input(type=\"imudp\" port=\"" << mUdpPort << "\" address=\"127.0.0.1\")\n"
             << "input(type=\"imtcp\" port=\"" << mTcpPort << "\" address=\"127.0.0.1\")\n"
             << "template(name=\"raw\" type=\"string\" string=\"%rawmsg%\\n\")\n"
             << "action(type=\"omfile\" file=\"" << mOutput << "\" template=\"raw\")\n";
        WriteFile(conf, text.str());
        mProcess.Spawn(Program(), {"rsyslogd", "-n", "-f", conf, "-i", folder.File("rsyslogd.pid")});
    }

    ~Rsyslogd()
    {
        mProcess.Kill(SIGTERM);
        mProcess.Wait();
    }

    /// Waits until both ports are bound; false when rsyslogd ended or took too long.
    bool Listening()
    {
        for (int i = 0; i < 200 && !mProcess.HasEnded(); ++i) {
            if (Bound("/proc/net/udp", mUdpPort, "07") && Bound("/proc/net/tcp", mTcpPort, "0A"))
                return true;
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
        }
        return false;
    }

    /// The received lines whose text starts with `tag`, once `last` is among them (10 s at most).
    std::vector<std::string> Lines(const std::string& tag, const std::string& last)
    {
        std::vector<std::string> lines;
        for (int i = 0; i < 200; ++i) {
            lines.clear();
            std::istringstream in(ReadFile(mOutput));
            for (std::string line; std::getline(in, line);) {
                const auto close = line.find('>');
                if (close != std::string::npos && line.compare(close + 1, tag.size(), tag) == 0)
                    lines.push_back(line);
            }
            if (std::find(lines.begin(), lines.end(), last) != lines.end())
                break;
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
        }
        return lines;
    }

    const int mUdpPort;
    const int mTcpPort;

private:
    // A line of /proc/net/{udp,tcp} with the local address 127.0.0.1:port in `state`.
    static bool Bound(const char* table, int port, const char* state)
    {
        char local[32];
        std::snprintf(local, sizeof local, "0100007F:%04X 00000000:0000 %s", port, state);
        return ReadFile(table).find(local) != std::string::npos;
    }

    const std::string mOutput;
    korva::ChildProcess mProcess;
};
