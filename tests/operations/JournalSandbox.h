#pragma once
// A real systemd-journald for tests and benchmarks, kept inside a folder of their
// own: the process enters a private mount namespace once, and each sandbox
// binds folders below `folder` over the places journald uses
// (/run/systemd/journal, /run/log/journal, /var/log/journal), starts journald
// there, and at the end stops it by its PID and takes the mounts down again.
// Nothing of the machine's own journal is touched. Needs root (or the right
// to make mount namespaces); Unavailable() tells why not.

#include <KORVAutlwin/platform/ChildProcess.h>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <map>
#include <string>
#include <thread>
#include <vector>

#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>

class JournalSandbox
{
public:
    /// One journal entry: field name to value (binary values as their bytes).
    using Entry = std::map<std::string, std::string>;

    /// Empty when sandboxes can be made here, else the reason why not.
    static std::string Unavailable()
    {
        if (Program().empty())
            return "systemd-journald is not installed; scripts/install-deps installs it";
        if (access("/usr/bin/journalctl", X_OK) != 0)
            return "journalctl is not installed";
        static const std::string entered = EnterNamespace();
        return entered;
    }

    static std::string Program()
    {
        for (const char* path : {"/lib/systemd/systemd-journald", "/usr/lib/systemd/systemd-journald"})
            if (access(path, X_OK) == 0)
                return path;
        return {};
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
        Stop();
        for (auto mount = mMounts.rbegin(); mount != mMounts.rend(); ++mount)
            umount2(mount->c_str(), MNT_DETACH);
    }

    JournalSandbox(const JournalSandbox&) = delete;
    JournalSandbox& operator=(const JournalSandbox&) = delete;

    /// Starts journald and waits until its socket is there; false when it ended or took too long.
    bool Start()
    {
        mJournald.Spawn(Program(), {"systemd-journald"});
        for (int i = 0; i < 500 && !mJournald.HasEnded(); ++i) {
            if (access("/run/systemd/journal/socket", F_OK) == 0)
                return true;
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        return false;
    }

    void Stop()
    {
        if (mJournald.Pid() == 0)
            return;
        mJournald.Kill(SIGTERM);
        mJournald.Wait();
        std::remove("/run/systemd/journal/socket");
    }

    /// The entries whose SYSLOG_IDENTIFIER is `identifier`, read with `journalctl -o json`
    /// once there are `count` of them or 10 s have passed.
    std::vector<Entry> Entries(const std::string& identifier, std::size_t count) const
    {
        return Matching("SYSLOG_IDENTIFIER=" + identifier, count);
    }

    /// The same for any journalctl match, "FIELD=value".
    std::vector<Entry> Matching(const std::string& match, std::size_t count) const
    {
        std::vector<Entry> entries;
        for (int i = 0; i < 200; ++i) {
            entries = Read(match);
            if (entries.size() >= count)
                break;
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
        }
        return entries;
    }

private:
    static std::string EnterNamespace()
    {
        if (unshare(CLONE_NEWNS) != 0)
            return std::string("no private mount namespace: ") + std::strerror(errno);
        // Mounts made from now on stay in this process's namespace.
        if (mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0)
            return std::string("the mounts cannot be made private: ") + std::strerror(errno);
        return {};
    }

    // Makes `target` a folder of ours: a bind over its nearest existing ancestor,
    // unless that ancestor is ours already.
    void Cover(const std::filesystem::path& target)
    {
        std::filesystem::path existing = target;
        while (!std::filesystem::exists(existing))
            existing = existing.parent_path();
        bool ours = false;
        for (const std::string& mount : mMounts)
            ours = ours || existing.string().rfind(mount, 0) == 0;
        if (!ours) {
            std::string name = existing.string();
            for (char& c : name)
                c = c == '/' ? '-' : c;
            const std::string source = mFolder + "/mount" + name;
            std::filesystem::create_directories(source);
            if (mount(source.c_str(), existing.c_str(), nullptr, MS_BIND, nullptr) == 0)
                mMounts.push_back(existing.string());
        }
        std::error_code ignored;
        std::filesystem::create_directories(target, ignored);
    }

    std::vector<Entry> Read(const std::string& match) const
    {
        std::string command = "/usr/bin/journalctl -q --no-pager -o json";
        for (const auto& file : std::filesystem::recursive_directory_iterator(mFolder))
            if (file.is_regular_file() && file.path().extension() == ".journal")
                command += " --file='" + file.path().string() + "'";
        command += " '" + match + "' 2>/dev/null";
        std::vector<Entry> entries;
        if (command.find("--file") == std::string::npos)
            return entries;
        FILE* pipe = popen(command.c_str(), "r");
        if (!pipe)
            return entries;
        std::string line;
        for (int c; (c = std::fgetc(pipe)) != EOF;) {
            if (c != '\n') {
                line += static_cast<char>(c);
                continue;
            }
            entries.push_back(ParseObject(line));
            line.clear();
        }
        pclose(pipe);
        return entries;
    }

    // One line of journalctl's JSON: an object whose values are strings, null,
    // or arrays of byte values (fields that aren't valid text).
    static Entry ParseObject(const std::string& text)
    {
        Entry entry;
        std::size_t at = 0;
        const auto skip = [&] {
            while (at < text.size() && (text[at] == ' ' || text[at] == ',' || text[at] == ':' || text[at] == '{'))
                ++at;
        };
        while (true) {
            skip();
            if (at >= text.size() || text[at] != '"')
                break;
            const std::string name = ParseString(text, at);
            skip();
            std::string value;
            if (text[at] == '"') {
                value = ParseString(text, at);
            } else if (text[at] == '[') {
                for (++at; at < text.size() && text[at] != ']';) {
                    char* end = nullptr;
                    value += static_cast<char>(std::strtol(text.c_str() + at, &end, 10));
                    at = static_cast<std::size_t>(end - text.c_str());
                    while (at < text.size() && (text[at] == ',' || text[at] == ' '))
                        ++at;
                }
                ++at;
            } else {
                while (at < text.size() && text[at] != ',' && text[at] != '}')
                    ++at;
            }
            entry[name] = value;
        }
        return entry;
    }

    static std::string ParseString(const std::string& text, std::size_t& at)
    {
        std::string value;
        for (++at; at < text.size() && text[at] != '"'; ++at) {
            if (text[at] != '\\') {
                value += text[at];
                continue;
            }
            const char escaped = text[++at];
            if (escaped == 'u') {
                const unsigned long code = std::stoul(text.substr(at + 1, 4), nullptr, 16);
                at += 4;
                if (code < 0x80) {
                    value += static_cast<char>(code);
                } else if (code < 0x800) {
                    value += static_cast<char>(0xC0 | code >> 6);
                    value += static_cast<char>(0x80 | (code & 0x3F));
                } else {
                    value += static_cast<char>(0xE0 | code >> 12);
                    value += static_cast<char>(0x80 | (code >> 6 & 0x3F));
                    value += static_cast<char>(0x80 | (code & 0x3F));
                }
            } else {
                const char* from = "nrtbf";
                const char* to = "\n\r\t\b\f";
                const char* hit = std::strchr(from, escaped);
                value += hit ? to[hit - from] : escaped;
            }
        }
        ++at;
        return value;
    }

    std::string mFolder;
    std::vector<std::string> mMounts;
    korva::ChildProcess mJournald;
};
