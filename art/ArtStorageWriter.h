#pragma once
/// \class korva::ArtStorageWriter
/// Writes a compound file that replaces another one in a single step. The
/// compound file library cannot change a file in place, so the new content goes
/// into a fresh file beside the target, the streams of the old file that were
/// not written anew are copied in, and the fresh file is renamed over the
/// target. Until Commit succeeds the target stays exactly as it was.

#include <KORVAutlwin/platform/AtomicFile.h>

#include <memory>
#include <set>
#include <string>

typedef struct _GsfOutfile GsfOutfile;
typedef struct _GsfOutput GsfOutput;

namespace korva {

class ArtStorageReader;

class ArtStorageWriter
{
public:
    /// Prepares the fresh file beside `path`; IsOpen() tells whether that worked.
    explicit ArtStorageWriter(const std::string& path);
    /// Without a successful Commit the fresh file is removed.
    ~ArtStorageWriter();
    ArtStorageWriter(const ArtStorageWriter&) = delete;
    ArtStorageWriter& operator=(const ArtStorageWriter&) = delete;

    bool IsOpen() const { return mRoot != nullptr; }

    /// Creates stream `name` in the root. Write it and close it (CloseStream, or
    /// by letting the last pointer go) before the next stream is created. Null
    /// for an empty name, a name of more than 31 characters (the limit of the
    /// format), a name already written here, or a closed writer.
    std::shared_ptr<GsfOutput> CreateStream(const std::string& name);
    /// Closes a stream of CreateStream; false when its content could not be
    /// written completely.
    bool CloseStream(const std::shared_ptr<GsfOutput>& stream);
    /// Creates, writes and closes stream `name` in one go.
    bool WriteStream(const std::string& name, const void* data, std::size_t size);

    /// Copies every root entry of `source` (streams and storages with all they
    /// hold) whose name was not written here, so that new streams replace old
    /// ones of the same name. False when a copy fails.
    bool CopyMissing(const ArtStorageReader& source);

    /// Finishes the fresh file and renames it over the target; false, with the
    /// target untouched, when any step fails. The writer is closed afterwards.
    bool Commit();

private:
    void Discard();

    AtomicFile mFile;
    GsfOutput* mSink = nullptr;
    GsfOutfile* mRoot = nullptr;
    std::set<std::string> mWritten;
    bool mFailed = false;
};

} // namespace korva
