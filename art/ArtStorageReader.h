#pragma once
/// \class korva::ArtStorageReader
/// A compound file opened for reading: the streams of its root storage. Art
/// collection files keep everything in the root.

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

typedef struct _GsfInfile GsfInfile;
typedef struct _GsfInput GsfInput;

namespace korva {

class ArtStorageReader
{
public:
    /// Opens `path`; IsOpen() tells whether it is a readable compound file.
    explicit ArtStorageReader(const std::string& path);
    ~ArtStorageReader();
    ArtStorageReader(const ArtStorageReader&) = delete;
    ArtStorageReader& operator=(const ArtStorageReader&) = delete;

    bool IsOpen() const { return mRoot != nullptr; }

    /// The names of the root's entries (streams and storages) in the order the
    /// compound file library lists them, which is sorted by name, not the order
    /// in which they were written.
    std::vector<std::string> GetStreamNames() const;
    bool HasStream(const std::string& name) const;
    /// The root's stream `name`, released when the last pointer goes; null when
    /// there is no such stream. The stream stays readable after the reader is gone.
    std::shared_ptr<GsfInput> OpenStream(const std::string& name) const;
    /// The whole content of stream `name`; false when it is missing, unreadable
    /// or larger than `maxSize` bytes.
    bool ReadStream(const std::string& name, std::string& content, std::size_t maxSize = 64u << 20) const;

    /// The content of stream `name` of the compound file `path`, like
    /// ReadStream, safe to call from any thread. Opening a compound file reads
    /// its whole directory, which costs far more than reading one picture, so
    /// the last few files read this way stay open; a file is opened afresh
    /// when the one on disk is no longer the one that was opened (another
    /// inode, size or modification time), as when it was replaced.
    static bool ReadStreamOf(const std::string& path, const std::string& name, std::string& content);

    /// The root storage, owned by the reader; null when not open.
    GsfInfile* GetRoot() const { return mRoot; }

private:
    GsfInfile* mRoot = nullptr;
};

} // namespace korva
