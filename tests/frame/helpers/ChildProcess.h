#pragma once
// Runs the failure helper program as a child process and looks at what it left.

#include "../../utl/TempDir.h"

#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace korva::test {

/// How a child ended: exit code or signal (-1 and 0 when they do not apply).
struct ChildEnd
{
    int exitCode = -1;
    int signal = 0;
};

/// Runs the helper with `mode` and `folder`, offscreen, and ends it after 20 s.
inline ChildEnd RunHelper(const std::string& mode, const std::string& folder)
{
    std::string program = KORVA_FAILURE_HELPER, modeArgument = mode, folderArgument = folder;
    char* argv[] = {program.data(), modeArgument.data(), folderArgument.data(), nullptr};
    setenv("QT_QPA_PLATFORM", "offscreen", 1);
    ChildEnd end;
    pid_t child = 0;
    if (posix_spawn(&child, program.c_str(), nullptr, nullptr, argv, environ) != 0)
        return end;
    int status = 0;
    if (!WaitFor([&] { return waitpid(child, &status, WNOHANG) == child; }, std::chrono::seconds(20))) {
        kill(child, SIGKILL);
        waitpid(child, &status, 0);
    }
    end.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    end.signal = WIFSIGNALED(status) ? WTERMSIG(status) : 0;
    return end;
}

} // namespace korva::test
