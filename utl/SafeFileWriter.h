#pragma once
/// \class SafeFileWriter
/// Replaces a file's content so that a crash or a full disk never leaves a
/// half-written file behind: the new content goes to a temporary file in the
/// same folder, is forced to the disk, and is then renamed over the old file.
/// Readers see either the old or the new content, never a mixture.

#include <cstddef>
#include <string>

#include <sys/stat.h>

class SafeFileWriter
{
public:
    /// Writes `size` bytes of `data` as the new content of `path`.
    ///
    /// - The temporary file is "<folder>/.<name>.tmp-<pid>-<random>"; it is
    ///   removed again whenever a step fails, and the old file is then left
    ///   untouched. One left by a writer that was killed goes at the next write.
    /// - An existing file keeps its permission bits (and its owner, where the
    ///   process may set it); a new file gets 0666 less the umask.
    /// - A symbolic link at `path` is followed: the file it points to is
    ///   replaced and the link stays.
    /// - After the rename the folder is synchronised too, so the new name
    ///   survives a power loss.
    ///
    /// Returns true on success. On failure returns false and, if `error` is not
    /// null, stores a finished English text naming the step and the system's reason.
    static bool Write(const char* path, const char* data, std::size_t size, std::string* error = nullptr);
    static bool Write(const std::string& path, const std::string& content, std::string* error = nullptr)
    {
        return Write(path.c_str(), content.data(), content.size(), error);
    }
};

namespace korva {

/// Reads the whole file `path` into `content`. Returns 0, or the errno of the
/// failure (EISDIR for a folder). `info`, if not null, receives the file's
/// status as it was when it was opened, to tell later whether it changed.
int ReadWholeFile(const char* path, std::string& content, struct stat* info = nullptr);

} // namespace korva
