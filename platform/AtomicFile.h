#pragma once
/// \class korva::AtomicFile
/// Replaces a file in one step: the new content goes to a temporary file in the
/// target's folder, is forced to the disk, and is renamed over the target; then
/// the folder is forced too, so that the new name survives a power loss. Readers
/// see the old content or the new one, never a mixture, and a failure leaves
/// the target as it was.
///
/// The temporary is "<folder>/.<name>.tmp-<pid>-<random>". A writer that was
/// killed leaves its temporary behind; the next writer of the same target
/// removes it once no process has that id any more. A live writer's is never touched.

#include <cstddef>
#include <cstdio>
#include <string>

#include <sys/types.h>

namespace korva {

class AtomicFile
{
public:
    /// The step that failed.
    enum EStep
    {
        eNoStep,
        eCreate,  ///< making the temporary
        eMode,    ///< giving it the permission bits
        eWrite,   ///< writing it
        eSync,    ///< forcing it to the disk
        eClose,   ///< closing it
        eReplace  ///< putting it in the target's place
    };

    /// Removes the stale temporaries of `target`, then makes a fresh one. An
    /// existing target lends it its permission bits and, where this process may
    /// give it away, its owner; for a new one it gets 0666 less the umask. With
    /// `followLinks`, a symbolic link at `target` is followed, so that the file it
    /// points to is replaced and the link stays. IsOpen() tells whether it worked.
    explicit AtomicFile(const std::string& target, bool followLinks = false);
    /// Abandons the temporary unless it was committed.
    ~AtomicFile();
    AtomicFile(const AtomicFile&) = delete;
    AtomicFile& operator=(const AtomicFile&) = delete;

    bool IsOpen() const { return mFd >= 0; }
    /// The temporary's descriptor, -1 when closed.
    int Fd() const { return mFd; }
    /// A stdio stream on the temporary, made at the first call; this object closes it.
    std::FILE* File();
    /// Gives the result the permission bits `mode` in place of the target's.
    bool SetMode(mode_t mode);
    /// Writes all of `data`, going on after interruptions.
    bool Write(const void* data, std::size_t size);

    /// Forces the temporary to the disk and puts it in the target's place; with
    /// `failIfExists`, an existing target is kept and the commit fails (EEXIST).
    /// False, with the temporary removed and the target untouched, when a step
    /// fails. The object is closed afterwards either way.
    bool Commit(bool failIfExists = false);
    /// Removes the temporary; the target stays as it was.
    void Abandon();

    /// The step that failed and the errno it failed with; eNoStep and 0 while all is well.
    EStep FailedStep() const { return mFailedStep; }
    int Error() const { return mError; }
    /// The file to replace, with links followed where asked.
    const std::string& Target() const { return mTarget; }
    /// The temporary's path while it exists.
    const std::string& Temporary() const { return mTemporary; }

    /// Removes the temporaries of `target` whose writer no longer runs.
    static void RemoveStaleTemporaries(const std::string& target);

private:
    bool Fail(EStep step, int error);

    std::string mTarget;
    std::string mTemporary;
    int mFd = -1;
    std::FILE* mFile = nullptr;
    EStep mFailedStep = eNoStep;
    int mError = 0;
};

} // namespace korva
