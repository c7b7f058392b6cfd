#pragma once
// A systemd-journald of the run's own, kept inside a folder of the caller's: the
// process enters a private mount namespace once, and each sandbox binds folders
// below `folder` over the places journald uses (/run/systemd/journal,
// /run/log/journal, /var/log/journal), starts journald there, and at the end
// stops it by its PID and takes the mounts down. The machine's own journal is
// never touched. Needs root; Unavailable() tells why a sandbox can't be had.
// The event log's tests run their journald in it as well.

#include <KORVAutlwin/platform/ChildProcess.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>

class JournalSandbox
{
public:
    static constexpr const char* kProgram = "/lib/systemd/systemd-journald";

    /// Empty when sandboxes can be made here, else the reason why not.
    static std::string Unavailable()
    {
        if (access(kProgram, X_OK) != 0 || access("/usr/bin/journalctl", X_OK) != 0)
            return "systemd-journald or journalctl is missing; scripts/install-deps installs them";
        static const std::string entered = [] {
            if (unshare(CLONE_NEWNS) != 0)
                return std::string("no private mount namespace: ") + std::strerror(errno);
            // Mounts made from now on stay in this process's namespace.
            if (mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0)
                return std::string("the mounts cannot be made private: ") + std::strerror(errno);
            return std::string();
        }();
        return entered;
    }

    /// Mounts the folders below `folder`; starts journald unless `start` is false.
    explicit JournalSandbox(const std::string& folder, bool start = true)
        : mFolder(folder)
    {
        for (const char* target : {"/run/systemd/journal", "/run/log/journal", "/var/log/journal"})
            Cover(target);
        if (start)
            Start();
    }

    ~JournalSandbox()
    {
        if (mJournald.Pid() != 0) {
            mJournald.Kill(SIGTERM);
            mJournald.Wait();
        }
        for (auto mount = mMounts.rbegin(); mount != mMounts.rend(); ++mount)
            umount2(mount->c_str(), MNT_DETACH);
    }

    JournalSandbox(const JournalSandbox&) = delete;
    JournalSandbox& operator=(const JournalSandbox&) = delete;

    /// Starts journald and waits for its socket; false when it ended or took too long.
    bool Start()
    {
        // journald's own notes go to stderr, errors only, not into the machine's kernel log.
        setenv("SYSTEMD_LOG_TARGET", "console", 1);
        setenv("SYSTEMD_LOG_LEVEL", "err", 1);
        mJournald.Spawn(kProgram, {"systemd-journald"});
        for (int i = 0; i < 2000 && !mJournald.HasEnded(); ++i) {
            if (access("/run/systemd/journal/socket", F_OK) == 0)
                return true;
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        return false;
    }

    /// The folder that holds the journal files, among others.
    const std::string& Folder() const { return mFolder; }

private:
    // Makes `target` a folder of ours: a bind over its nearest existing
    // ancestor, unless that ancestor is ours already.
    void Cover(const std::filesystem::path& target)
    {
        std::filesystem::path existing = target;
        while (!std::filesystem::exists(existing))
            existing = existing.parent_path();
        bool ours = false;
        for (const std::string& mount : mMounts)
            ours = ours || existing.string().rfind(mount, 0) == 0;
        if (!ours) {
            std::string source = mFolder + "/mount" + existing.string();
            std::replace(source.begin() + static_cast<long>(mFolder.size()) + 1, source.end(), '/', '-');
            std::filesystem::create_directories(source);
            if (mount(source.c_str(), existing.c_str(), nullptr, MS_BIND, nullptr) == 0)
                mMounts.push_back(existing.string());
        }
        std::error_code ignored;
        std::filesystem::create_directories(target, ignored);
    }

    std::string mFolder;
    std::vector<std::string> mMounts;
    korva::ChildProcess mJournald;
};
