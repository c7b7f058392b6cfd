#include <KORVAutl/SafeFileWriter.h>

#include <KORVAutlwin/platform/AtomicFile.h>

#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

void SetError(std::string* error, const std::string& step, const std::string& path, int code)
{
    if (error)
        *error = step + " " + path + ": " + std::strerror(code);
}

const char* StepText(korva::AtomicFile::EStep step)
{
    switch (step) {
    case korva::AtomicFile::eCreate: return "Cannot create a temporary file for";
    case korva::AtomicFile::eMode: return "Cannot set the permissions of the temporary file for";
    case korva::AtomicFile::eSync: return "Cannot force to the disk the temporary file for";
    case korva::AtomicFile::eClose: return "Cannot close the temporary file for";
    case korva::AtomicFile::eReplace: return "Cannot rename the temporary file over";
    default: return "Cannot write the temporary file for";
    }
}

} // namespace

bool SafeFileWriter::Write(const char* path, const char* data, std::size_t size, std::string* error)
{
    if (!path || !*path || (!data && size > 0)) {
        SetError(error, "Cannot write", path ? path : "(null)", EINVAL);
        return false;
    }
    korva::AtomicFile file(path, true);
    if (file.Write(data, size) && file.Commit())
        return true;
    SetError(error, StepText(file.FailedStep()), file.Target(), file.Error());
    return false;
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
