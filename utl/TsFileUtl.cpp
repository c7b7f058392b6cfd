#include <KORVAutl/TsFileUtl.h>

#include <KORVAutlwin/platform/AtomicFile.h>
#include <KORVAutlwin/platform/DynamicLibrary.h>

#include <KORVAutl/FNClass.h>
#include <KORVAutl/TsSystemInfo.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
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
    korva::AtomicFile copy(target);
    bool good = copy.SetMode(info.st_mode & 07777);
    char buffer[65536];
    while (good) {
        const ssize_t got = read(in, buffer, sizeof buffer);
        if (got == 0)
            break;
        if (got < 0 && errno == EINTR)
            continue;
        good = got > 0 && copy.Write(buffer, static_cast<std::size_t>(got));
    }
    close(in);
    return good && copy.Commit(failIfExists);
}

std::string TsGetExecutableDirectory()
{
    return TsGetDirectory(TsSystemInfo::GetExecutablePath().c_str());
}

std::string TsGetLibraryDirectory()
{
    return TsGetDirectory(korva::GetModulePath(reinterpret_cast<const void*>(&TsGetLibraryDirectory)).c_str());
}

std::string TsGetCompanionProgramPath(const char* name)
{
    const std::string beside = TsPathAppend(TsGetExecutableDirectory().c_str(), name);
    if (::access(beside.c_str(), X_OK) == 0)
        return beside;
    const std::filesystem::path companions = TsPathAppend(TsGetLibraryDirectory().c_str(), KORVA_LIBDIR_TO_COMPANIONS);
    return (companions / name).lexically_normal().string();
}

std::string TsGetLibraryDataDirectory()
{
    const std::filesystem::path data = TsPathAppend(TsGetLibraryDirectory().c_str(), KORVA_LIBDIR_TO_DATA);
    return data.lexically_normal().string();
}

unsigned long long GetNearUniqueID()
{
    // Seeded per thread from the system's entropy, so two processes or threads
    // started at the same moment do not share a sequence.
    thread_local std::mt19937_64 generator{(static_cast<unsigned long long>(std::random_device{}()) << 32) ^
                                           std::random_device{}()};
    return generator();
}
