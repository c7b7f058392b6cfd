#pragma once
// Runs the failure helper program as a child process and looks at what it left.

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace korva::test {

/// A fresh folder under /tmp, removed with everything in it at the end.
class TempFolder
{
public:
    TempFolder()
    {
        char pattern[] = "/tmp/korva-failure-XXXXXX";
        if (mkdtemp(pattern))
            mPath = pattern;
    }
    ~TempFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(mPath, ignored);
    }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    const std::string& Path() const { return mPath; }
    std::string File(const char* name) const { return mPath + "/" + name; }

private:
    std::string mPath;
};

/// How a child ended.
struct ChildEnd
{
    bool started = false;
    bool timedOut = false;
    bool exited = false;
    int exitCode = -1;
    int signal = 0;
};

/// Runs the helper with `mode` and `folder` (offscreen) and waits at most `timeout`.
inline ChildEnd RunHelper(const std::string& mode, const std::string& folder,
                          std::chrono::milliseconds timeout = std::chrono::seconds(20))
{
    ChildEnd end;
    std::vector<std::string> environment{"QT_QPA_PLATFORM=offscreen"};
    for (char** entry = environ; *entry; ++entry)
        if (std::string(*entry).rfind("QT_QPA_PLATFORM=", 0) != 0)
            environment.emplace_back(*entry);
    std::vector<char*> envp;
    for (std::string& entry : environment)
        envp.push_back(entry.data());
    envp.push_back(nullptr);
    std::string program = KORVA_FAILURE_HELPER;
    std::string modeArgument = mode;
    std::string folderArgument = folder;
    char* argv[] = {program.data(), modeArgument.data(), folderArgument.data(), nullptr};
    pid_t child = 0;
    if (posix_spawn(&child, program.c_str(), nullptr, nullptr, argv, envp.data()) != 0)
        return end;
    end.started = true;
    const auto deadline = std::chrono::steady_clock::now() + timeout;
    int status = 0;
    for (;;) {
        const pid_t done = waitpid(child, &status, WNOHANG);
        if (done == child)
            break;
        if (std::chrono::steady_clock::now() > deadline) {
            end.timedOut = true;
            kill(child, SIGKILL);
            waitpid(child, &status, 0);
            return end;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    end.exited = WIFEXITED(status);
    end.exitCode = end.exited ? WEXITSTATUS(status) : -1;
    end.signal = WIFSIGNALED(status) ? WTERMSIG(status) : 0;
    return end;
}

inline std::string ReadWholeFile(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    std::ostringstream content;
    content << in.rdbuf();
    return content.str();
}

/// True as soon as `path` exists; false after `timeout`.
inline bool WaitForFile(const std::string& path, std::chrono::milliseconds timeout)
{
    const auto deadline = std::chrono::steady_clock::now() + timeout;
    while (!std::filesystem::exists(path)) {
        if (std::chrono::steady_clock::now() > deadline)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return true;
}

} // namespace korva::test
