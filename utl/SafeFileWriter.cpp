#include <KORVAutl/SafeFileWriter.h>

#include <KORVAutl/TsFileUtl.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

#include <fcntl.h>
#include <limits.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

void SetError(std::string* error, const std::string& step, const std::string& path, int code)
{
    if (error)
        *error = step + " " + path + ": " + std::strerror(code);
}

std::string DirectoryOf(const std::string& path)
{
    const std::size_t slash = path.rfind('/');
    if (slash == std::string::npos)
        return ".";
    if (slash == 0)
        return "/";
    return path.substr(0, slash);
}

// Follows symbolic links at `path` so that the rename replaces the file and
// not the link. A chain that does not end (or loops) is left as it is.
std::string ResolveLinks(std::string path)
{
    for (int hops = 0; hops < 40; ++hops) {
        struct stat info;
        if (lstat(path.c_str(), &info) != 0 || !S_ISLNK(info.st_mode))
            return path;
        std::string target(PATH_MAX, '\0');
        const ssize_t length = readlink(path.c_str(), target.data(), target.size());
        if (length <= 0 || static_cast<std::size_t>(length) >= target.size())
            return path;
        target.resize(static_cast<std::size_t>(length));
        path = target[0] == '/' ? target : DirectoryOf(path) + "/" + target;
    }
    return path;
}

bool WriteAll(int fd, const char* data, std::size_t size)
{
    while (size > 0) {
        const ssize_t written = ::write(fd, data, size);
        if (written < 0) {
            if (errno == EINTR)
                continue;
            return false;
        }
        if (written == 0) {
            errno = EIO;
            return false;
        }
        data += written;
        size -= static_cast<std::size_t>(written);
    }
    return true;
}

} // namespace

bool SafeFileWriter::Write(const char* path, const char* data, std::size_t size, std::string* error)
{
    if (!path || !*path || (!data && size > 0)) {
        SetError(error, "Cannot write", path ? path : "(null)", EINVAL);
        return false;
    }
    const std::string target = ResolveLinks(path);
    const std::string directory = DirectoryOf(target);
    std::string name = target.substr(target.rfind('/') == std::string::npos ? 0 : target.rfind('/') + 1);
    // Keep the temporary name within the file system's limit of one name.
    if (name.size() > 200)
        name.resize(200);

    struct stat old;
    const bool exists = stat(target.c_str(), &old) == 0;

    std::string temporary;
    int fd = -1;
    for (int attempt = 0; attempt < 16 && fd < 0; ++attempt) {
        char suffix[32];
        std::snprintf(suffix, sizeof suffix, ".%016llx.tmp", GetNearUniqueID());
        temporary = directory + "/." + name + suffix;
        fd = ::open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (fd < 0 && errno != EEXIST)
            break;
    }
    if (fd < 0) {
        SetError(error, "Cannot create a temporary file for", target, errno);
        return false;
    }

    const char* failedStep = nullptr;
    int reason = 0;
    auto fail = [&](const char* step) {
        failedStep = step;
        reason = errno;
    };
    if (exists) {
        // The new file takes the place of the old one, so it takes its
        // permissions; the owner only where the process may give it away.
        if (fchmod(fd, old.st_mode & 07777) != 0)
            fail("Cannot set the permissions of the temporary file for");
        else if (fchown(fd, old.st_uid, old.st_gid) != 0) {
            // Not permitted for an ordinary user; the file then belongs to them.
        }
    }
    if (!failedStep && !WriteAll(fd, data, size))
        fail("Cannot write the temporary file for");
    if (!failedStep && fsync(fd) != 0)
        fail("Cannot force to the disk the temporary file for");
    if (::close(fd) != 0 && !failedStep)
        fail("Cannot close the temporary file for");
    if (!failedStep && ::rename(temporary.c_str(), target.c_str()) != 0)
        fail("Cannot rename the temporary file over");
    if (failedStep) {
        ::unlink(temporary.c_str());
        SetError(error, failedStep, target, reason);
        return false;
    }

    // Make the rename itself durable. Some file systems refuse to synchronise
    // a folder; the content is in place all the same, so that is no failure.
    const int folder = ::open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folder >= 0) {
        fsync(folder);
        ::close(folder);
    }
    return true;
}

int korva::ReadWholeFile(const char* path, std::string& content, struct stat* info)
{
    content.clear();
    if (!path || !*path)
        return ENOENT;
    const int fd = ::open(path, O_RDONLY | O_CLOEXEC);
    if (fd < 0)
        return errno;
    struct stat status;
    int code = 0;
    if (fstat(fd, &status) != 0)
        code = errno;
    else if (S_ISDIR(status.st_mode))
        code = EISDIR;
    if (code == 0) {
        if (info)
            *info = status;
        if (S_ISREG(status.st_mode) && status.st_size > 0)
            content.reserve(static_cast<std::size_t>(status.st_size));
        char buffer[65536];
        for (;;) {
            const ssize_t count = ::read(fd, buffer, sizeof buffer);
            if (count < 0) {
                if (errno == EINTR)
                    continue;
                code = errno;
                break;
            }
            if (count == 0)
                break;
            content.append(buffer, static_cast<std::size_t>(count));
        }
    }
    ::close(fd);
    if (code != 0)
        content.clear();
    return code;
}
