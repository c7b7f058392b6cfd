#pragma once
// What every suite uses: files, a fresh folder below the system's temporary folder (removed with its content at
// scope end), the text of a thrown exception, and waiting for a condition.

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <string>
#include <thread>

#include <sys/resource.h>

/// The whole content of a file; empty when it cannot be read.
inline std::string ReadFile(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

/// Replaces the content of a file.
inline void WriteFile(const std::string& path, const std::string& content)
{
    std::ofstream(path, std::ios::binary) << content;
}

/// The result of `write` run on a disk that is full after `bytes` bytes of any one file.
inline bool OnAFullDisk(rlim_t bytes, const std::function<bool()>& write)
{
    rlimit saved{};
    getrlimit(RLIMIT_FSIZE, &saved);
    rlimit limited{bytes, saved.rlim_max};
    const auto previous = std::signal(SIGXFSZ, SIG_IGN);   // a failed write, not the end of the process
    setrlimit(RLIMIT_FSIZE, &limited);
    const bool result = write();
    setrlimit(RLIMIT_FSIZE, &saved);
    std::signal(SIGXFSZ, previous);
    return result;
}

class Exception;

/// The text of the exception `action` throws, or "(nothing thrown)".
template <class Error = Exception>
std::string Thrown(const std::function<void()>& action)
{
    try {
        action();
    } catch (const Error& error) {
        return error.Why();
    }
    return "(nothing thrown)";
}

/// True as soon as `done` says so (polled without handling events); false after `timeout`.
inline bool WaitFor(const std::function<bool()>& done, std::chrono::milliseconds timeout)
{
    for (const auto deadline = std::chrono::steady_clock::now() + timeout; !done();) {
        if (std::chrono::steady_clock::now() > deadline)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

class TempDir
{
public:
    TempDir()
    {
        mPath = (std::filesystem::temp_directory_path() / "korva-test-XXXXXX").string();
        if (!mkdtemp(mPath.data()))
            std::abort();
    }
    ~TempDir()
    {
        std::error_code ignored;
        std::filesystem::permissions(mPath, std::filesystem::perms::owner_all, ignored);
        std::filesystem::remove_all(mPath, ignored);
    }
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;

    const std::string& Path() const { return mPath; }
    std::string File(const std::string& name) const { return mPath + "/" + name; }

private:
    std::string mPath;
};
