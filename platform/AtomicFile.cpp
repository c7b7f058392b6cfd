#include <KORVAutlwin/platform/AtomicFile.h>

#include <cctype>
#include <cerrno>
#include <climits>
#include <cstring>
#include <random>

#include <dirent.h>
#include <fcntl.h>
#include <limits.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

namespace korva {

namespace {

constexpr int kRandomDigits = 16;

std::string FolderOf(const std::string& path)
{
    const std::size_t slash = path.rfind('/');
    if (slash == std::string::npos)
        return ".";
    return slash == 0 ? "/" : path.substr(0, slash);
}

// Follows symbolic links at `path`. A chain that does not end (or loops) is left as it is.
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
        path = target[0] == '/' ? target : FolderOf(path) + "/" + target;
    }
    return path;
}

// ".<name>.tmp-": the name is cut to 200 bytes, so that with the process id and
// the random digits it stays within the file system's limit of one name.
std::string TemporaryPrefix(const std::string& target)
{
    const std::size_t slash = target.rfind('/');
    std::string name = slash == std::string::npos ? target : target.substr(slash + 1);
    if (name.size() > 200)
        name.resize(200);
    return "." + name + ".tmp-";
}

// The writer's process id in the rest of a temporary's name ("<pid>-<random>");
// 0 when the rest has another shape, so that other files are never touched.
pid_t WriterOf(const char* rest)
{
    long long pid = 0;
    const char* cursor = rest;
    for (; *cursor >= '0' && *cursor <= '9' && pid <= INT_MAX; ++cursor)
        pid = pid * 10 + (*cursor - '0');
    if (cursor == rest || *cursor != '-' || pid > INT_MAX)
        return 0;
    ++cursor;
    int digits = 0;
    for (; std::isxdigit(static_cast<unsigned char>(*cursor)); ++cursor)
        ++digits;
    return *cursor == '\0' && digits == kRandomDigits ? static_cast<pid_t>(pid) : 0;
}

// Only ESRCH says that nobody has the id; EPERM is someone else's live process.
bool IsRunning(pid_t pid)
{
    return pid == getpid() || kill(pid, 0) == 0 || errno != ESRCH;
}

} // namespace

AtomicFile::AtomicFile(const std::string& target, bool followLinks)
    : mTarget(followLinks ? ResolveLinks(target) : target)
{
    RemoveStaleTemporaries(mTarget);
    const std::string prefix =
        FolderOf(mTarget) + "/" + TemporaryPrefix(mTarget) + std::to_string(getpid()) + "-";
    std::random_device random;
    for (int attempt = 0; attempt < 16 && mFd < 0; ++attempt) {
        char digits[kRandomDigits + 1];
        std::snprintf(digits, sizeof digits, "%08x%08x", random(), random());
        mTemporary = prefix + digits;
        mFd = open(mTemporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (mFd < 0 && errno != EEXIST)
            break;
    }
    if (mFd < 0) {
        mTemporary.clear();
        Fail(eCreate, errno);
        return;
    }
    struct stat old;
    if (stat(mTarget.c_str(), &old) != 0 || !SetMode(old.st_mode & 07777))
        return;
    // The owner only where this process may give it away; an ordinary user's file stays theirs.
    const int ignored = fchown(mFd, old.st_uid, old.st_gid);
    (void)ignored;
}

AtomicFile::~AtomicFile()
{
    Abandon();
}

std::FILE* AtomicFile::File()
{
    if (!mFile && IsOpen()) {
        mFile = fdopen(mFd, "wb");
        if (!mFile)
            Fail(eCreate, errno);
    }
    return mFile;
}

bool AtomicFile::SetMode(mode_t mode)
{
    if (!IsOpen())
        return false;
    return fchmod(mFd, mode) == 0 || Fail(eMode, errno);
}

bool AtomicFile::Write(const void* data, std::size_t size)
{
    const char* bytes = static_cast<const char*>(data);
    while (size > 0 && IsOpen()) {
        const ssize_t written = write(mFd, bytes, size);
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            return Fail(eWrite, written < 0 ? errno : EIO);
        bytes += written;
        size -= static_cast<std::size_t>(written);
    }
    return IsOpen();
}

bool AtomicFile::Commit(bool failIfExists)
{
    if (!IsOpen())
        return false;
    if (mFile && std::fflush(mFile) != 0)
        return Fail(eWrite, errno);
    if (fsync(mFd) != 0)
        return Fail(eSync, errno);
    const int closed = mFile ? std::fclose(mFile) : close(mFd);
    mFile = nullptr;
    mFd = -1;
    if (closed != 0)
        return Fail(eClose, errno);
    // link() refuses an existing target, which keeps failIfExists honest against a racing writer.
    if ((failIfExists ? link(mTemporary.c_str(), mTarget.c_str()) : rename(mTemporary.c_str(), mTarget.c_str())) != 0)
        return Fail(eReplace, errno);
    if (failIfExists)
        unlink(mTemporary.c_str());
    mTemporary.clear();
    // Some file systems refuse to synchronise a folder; the content is in place all the same.
    const int folder = open(FolderOf(mTarget).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folder >= 0) {
        fsync(folder);
        close(folder);
    }
    return true;
}

void AtomicFile::Abandon()
{
    if (mFile)
        std::fclose(mFile);
    else if (mFd >= 0)
        close(mFd);
    mFile = nullptr;
    mFd = -1;
    if (!mTemporary.empty())
        unlink(mTemporary.c_str());
    mTemporary.clear();
}

bool AtomicFile::Fail(EStep step, int error)
{
    if (mFailedStep == eNoStep) {
        mFailedStep = step;
        mError = error;
    }
    Abandon();
    return false;
}

void AtomicFile::RemoveStaleTemporaries(const std::string& target)
{
    DIR* folder = opendir(FolderOf(target).c_str());
    if (!folder)
        return;
    const std::string prefix = TemporaryPrefix(target);
    while (const dirent* entry = readdir(folder)) {
        if (std::strncmp(entry->d_name, prefix.c_str(), prefix.size()) != 0)
            continue;
        const pid_t writer = WriterOf(entry->d_name + prefix.size());
        if (writer > 0 && !IsRunning(writer))
            unlinkat(dirfd(folder), entry->d_name, 0);
    }
    closedir(folder);
}

} // namespace korva
