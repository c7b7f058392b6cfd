#include <KORVAutlwin/help/ChmMapIds.h>

#include <KORVAutlwin/help/ChmStorage.h>

#include <cstring>
#include <new>

namespace {
std::uint32_t LittleEndian32(const unsigned char* bytes)
{
    return std::uint32_t(bytes[0]) | std::uint32_t(bytes[1]) << 8 | std::uint32_t(bytes[2]) << 16 |
           std::uint32_t(bytes[3]) << 24;
}

// Reads exactly `size` bytes unless the stream ends or fails first.
unsigned long ReadFully(ChmStream& stream, unsigned char* buffer, unsigned long size)
{
    unsigned long done = 0;
    while (done < size) {
        const long got = stream.Read(buffer + done, size - done);
        if (got <= 0)
            break;
        done += static_cast<unsigned long>(got);
    }
    return done;
}
} // namespace

HRESULT ChmMapIds::ReadIdTable(ChmStream& stream, std::vector<ChmMapIdPair>& table)
{
    unsigned char head[4];
    if (ReadFully(stream, head, 4) < 4)
        return STG_E_READFAULT;
    const std::uint32_t length = LittleEndian32(head);
    // A length the stream can't hold is a damaged table, not a reason to allocate it.
    if (length > stream.Length())
        return STG_E_READFAULT;
    std::vector<unsigned char> bytes;
    try {
        bytes.resize(length);
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    }
    if (ReadFully(stream, bytes.data(), length) < length)
        return STG_E_READFAULT;
    table.clear();
    table.reserve(length / 8);
    for (std::uint32_t i = 0; i + 8 <= length; i += 8)
        table.push_back({LittleEndian32(&bytes[i]), LittleEndian32(&bytes[i + 4])});
    return S_OK;
}

HRESULT ChmMapIds::Load(const std::string& helpFile)
{
    if (mLoaded)
        return S_OK;
    const ChmStorage storage(helpFile);
    if (!storage.IsOpen())
        return STG_E_PATHNOTFOUND;
    const std::unique_ptr<ChmStream> stream = storage.OpenStream("#IVB");
    if (!stream)
        return STG_E_FILENOTFOUND;
    ++mReadCount;
    const HRESULT result = ReadIdTable(*stream, mTable);
    mLoaded = result == S_OK;
    return result;
}

HRESULT ChmMapIds::UrlOf(const std::string& helpFile, unsigned int id, std::string& url)
{
    if (helpFile.empty())
        return STG_E_PATHNOTFOUND;
    if (const HRESULT loaded = Load(helpFile); loaded != S_OK)
        return loaded;
    if (mTable.empty())
        return E_FAIL;
    const ChmMapIdPair* pair = nullptr;
    for (const ChmMapIdPair& entry : mTable)
        if (entry.id == id) {
            pair = &entry;
            break;
        }
    if (!pair)
        return E_FAIL;

    const ChmStorage storage(helpFile);
    if (!storage.IsOpen())
        return STG_E_PATHNOTFOUND;
    url = "its:" + helpFile + "::";
    // The room is looked at once, before reading: a long path of the help file
    // leaves no room, and the URL then ends at the prefix.
    if (kUrlRoom - std::min(kUrlRoom, url.size()) <= kPiece)
        return S_OK;
    const std::unique_ptr<ChmStream> strings = storage.OpenStream("#STRINGS");
    if (!strings || !strings->Seek(pair->offset))
        return S_OK;
    char piece[kPiece];
    for (;;) {
        const long got = strings->Read(piece, kPiece);
        if (got <= 0)
            break;
        const void* end = std::memchr(piece, '\0', static_cast<std::size_t>(got));
        url.append(piece, end ? static_cast<const char*>(end) - piece : got);
        if (end)
            break;
    }
    return S_OK;
}
