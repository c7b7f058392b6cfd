#include <KORVAutlwin/help/ChmStorage.h>

#include <chm_lib.h>

#include <algorithm>
#include <cstring>

ChmStream::ChmStream(std::string bytes) : mLength(bytes.size()), mBytes(std::move(bytes)), mInMemory(true) {}

long ChmStream::Read(void* buffer, unsigned long size)
{
    const std::uint64_t count = std::min<std::uint64_t>(size, mLength - std::min(mPosition, mLength));
    if (count == 0)
        return 0;
    if (mInMemory) {
        std::memcpy(buffer, mBytes.data() + mPosition, count);
        mPosition += count;
        return static_cast<long>(count);
    }
    chmUnitInfo unit{};
    unit.start = mStart;
    unit.length = mLength;
    unit.space = static_cast<int>(mSpace);
    const LONGINT64 got = chm_retrieve_object(mFile.get(), &unit, static_cast<unsigned char*>(buffer),
                                              static_cast<LONGUINT64>(mPosition), static_cast<LONGINT64>(count));
    if (got <= 0)
        return -1;   // a damaged file: chmlib could not decompress the piece
    mPosition += static_cast<std::uint64_t>(got);
    return static_cast<long>(got);
}

bool ChmStream::Seek(std::uint64_t offset)
{
    if (offset > mLength)
        return false;
    mPosition = offset;
    return true;
}

std::uint64_t ChmStream::Length() const
{
    return mLength;
}

namespace {
// Names reach the storage as wide text in a buffer of 520 bytes: 259 UTF-16
// units and the terminator. A longer name can't be handed over at all.
bool FitsWideBuffer(const std::string& name)
{
    std::size_t units = 0;
    for (const char c : name) {
        const auto byte = static_cast<unsigned char>(c);
        if ((byte & 0xC0) != 0x80)
            units += byte >= 0xF0 ? 2 : 1;
    }
    return units < ChmStorage::kWideBufferBytes / 2;
}
} // namespace

ChmStorage::ChmStorage(const std::string& path)
{
    if (!FitsWideBuffer(path))
        return;
    if (chmFile* file = chm_open(path.c_str()))
        mFile.reset(file, chm_close);
}

std::unique_ptr<ChmStream> ChmStorage::OpenStream(const std::string& name) const
{
    if (!mFile || !FitsWideBuffer(name))
        return nullptr;
    const std::string path = name.starts_with('/') ? name : "/" + name;
    chmUnitInfo unit{};
    if (chm_resolve_object(mFile.get(), path.c_str(), &unit) != CHM_RESOLVE_SUCCESS)
        return nullptr;
    std::unique_ptr<ChmStream> stream(new ChmStream());
    stream->mFile = mFile;
    stream->mPath = path;
    stream->mStart = unit.start;
    stream->mLength = unit.length;
    stream->mSpace = static_cast<std::uint64_t>(unit.space);
    return stream;
}

bool ChmStorage::ReadStream(const std::string& name, std::string& out) const
{
    const std::unique_ptr<ChmStream> stream = OpenStream(name);
    if (!stream)
        return false;
    out.assign(stream->Length(), '\0');
    std::uint64_t done = 0;
    while (done < out.size()) {
        const long got = stream->Read(out.data() + done, static_cast<unsigned long>(out.size() - done));
        if (got <= 0)
            return false;
        done += static_cast<std::uint64_t>(got);
    }
    return true;
}

namespace {
int CollectName(chmFile*, chmUnitInfo* unit, void* context)
{
    const std::string path = unit->path;
    // "#..." and "$..." are the compiler's own tables, not files of the help's author.
    if (path.size() > 1 && path[1] != '#' && path[1] != '$' && !path.ends_with('/'))
        static_cast<std::vector<std::string>*>(context)->push_back(path.substr(1));
    return CHM_ENUMERATOR_CONTINUE;
}
} // namespace

std::vector<std::string> ChmStorage::GetFileNames() const
{
    std::vector<std::string> names;
    if (mFile)
        chm_enumerate(mFile.get(), CHM_ENUMERATE_NORMAL | CHM_ENUMERATE_FILES, CollectName, &names);
    return names;
}
