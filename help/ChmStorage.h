#pragma once
/// \class ChmStorage
/// A compiled help file (CHM) opened for reading through chmlib: the storage
/// whose streams ("#IVB", "#STRINGS", the pages) the help pane reads. Stream
/// names are given without the leading "/".

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

struct chmFile;

/// \class ChmStream
/// One stream of a ChmStorage, or a stream over bytes held in memory, read in
/// order from a position that Seek moves.
class ChmStream
{
public:
    /// A stream over `bytes`, standing for a stream of a storage.
    explicit ChmStream(std::string bytes);
    /// Reads up to `size` bytes; the count read (0 at the end), or -1 on a read failure.
    long Read(void* buffer, unsigned long size);
    /// Moves the read position to `offset` from the start; false beyond the end.
    bool Seek(std::uint64_t offset);
    /// The length of the stream in bytes.
    std::uint64_t Length() const;

private:
    friend class ChmStorage;
    ChmStream() = default;

    std::shared_ptr<chmFile> mFile;
    std::string mPath;
    std::uint64_t mStart = 0;
    std::uint64_t mLength = 0;
    std::uint64_t mSpace = 0;
    std::uint64_t mPosition = 0;
    std::string mBytes;
    bool mInMemory = false;
};

class ChmStorage
{
public:
    /// Size of the wide buffer that names are handed over in: a name of 260
    /// UTF-16 units or more can't be opened.
    static constexpr std::size_t kWideBufferBytes = 520;

    /// Opens `path`; IsOpen() tells whether that worked.
    explicit ChmStorage(const std::string& path);
    bool IsOpen() const { return mFile != nullptr; }
    /// Opens the stream `name` ("#IVB", "a/b.htm"); null when there is none.
    std::unique_ptr<ChmStream> OpenStream(const std::string& name) const;
    /// The whole stream `name` into `out`; false when it is missing or can't be read whole.
    bool ReadStream(const std::string& name, std::string& out) const;
    /// The names of the storage's own files (pages, pictures, contents), without
    /// the system's streams, in the storage's order.
    std::vector<std::string> GetFileNames() const;

private:
    std::shared_ptr<chmFile> mFile;
};
