#include <KORVAutl/TsFileUtl.h>

#include <KORVAutl/FNClass.h>
#include <KORVAutl/TsSystemInfo.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <random>

bool CreateFolder(const char* path)
{
    if (!path || !*path)
        return false;
    std::string partial;
    const std::string text = path;
    for (std::size_t i = 0; i <= text.size(); ++i) {
        if (i == text.size() || (text[i] == '/' && i > 0)) {
            partial = text.substr(0, i);
            if (mkdir(partial.c_str(), 0777) != 0 && errno != EEXIST)
                return false;
        }
    }
    return FileExist(path) == 1;
}

int FileExist(const char* path)
{
    struct stat info {};
    if (!path || stat(path, &info) != 0)
        return 0;
    return S_ISDIR(info.st_mode) ? 1 : 2;
}

std::string TsPathAppend(const char* directory, const char* name)
{
    std::string result = directory ? directory : "";
    std::string tail = name ? name : "";
    while (!tail.empty() && tail[0] == '/')
        tail.erase(0, 1);
    if (tail.empty())
        return result;
    if (!result.empty() && result.back() != '/')
        result += '/';
    return result + tail;
}

std::string TsGetDirectory(const char* path)
{
    const std::string text = path ? path : "";
    const auto slash = text.rfind('/');
    if (slash == std::string::npos)
        return std::string();
    return slash == 0 ? std::string("/") : text.substr(0, slash);
}

std::string TsGetFileName(const char* path)
{
    const std::string text = path ? path : "";
    const auto slash = text.rfind('/');
    return slash == std::string::npos ? text : text.substr(slash + 1);
}

std::string TsGetFileExtension(const char* path)
{
    const std::string extension = FNClass(path).GetExtension();
    return extension.empty() ? extension : extension.substr(1);
}

bool TsCopyFile(const char* source, const char* target, bool failIfExists)
{
    if (!source || !target)
        return false;
    if (failIfExists && FileExist(target))
        return false;
    const int in = open(source, O_RDONLY | O_CLOEXEC);
    if (in < 0)
        return false;
    struct stat info {};
    if (fstat(in, &info) != 0 || S_ISDIR(info.st_mode)) {
        close(in);
        return false;
    }
    std::string temporary = std::string(target) + ".XXXXXX";
    const int out = mkstemp(temporary.data());
    if (out < 0) {
        close(in);
        return false;
    }
    bool good = true;
    char buffer[65536];
    for (;;) {
        const ssize_t got = read(in, buffer, sizeof buffer);
        if (got == 0)
            break;
        if (got < 0) {
            if (errno == EINTR)
                continue;
            good = false;
            break;
        }
        for (ssize_t done = 0; done < got;) {
            const ssize_t put = write(out, buffer + done, static_cast<std::size_t>(got - done));
            if (put < 0 && errno == EINTR)
                continue;
            if (put <= 0) {
                good = false;
                break;
            }
            done += put;
        }
        if (!good)
            break;
    }
    good = good && fchmod(out, info.st_mode & 07777) == 0 && fsync(out) == 0;
    good = close(out) == 0 && good;
    close(in);
    // link() refuses an existing target, which keeps failIfExists honest against a racing writer.
    if (good)
        good = failIfExists ? link(temporary.c_str(), target) == 0 : rename(temporary.c_str(), target) == 0;
    unlink(temporary.c_str());
    return good;
}

std::string TsGetExecutableDirectory()
{
    return TsGetDirectory(TsSystemInfo::GetExecutablePath().c_str());
}

unsigned long long GetNearUniqueID()
{
    // Seeded per thread from the system's entropy, so two processes or threads
    // started at the same moment do not share a sequence.
    thread_local std::mt19937_64 generator{(static_cast<unsigned long long>(std::random_device{}()) << 32) ^
                                           std::random_device{}()};
    return generator();
}
