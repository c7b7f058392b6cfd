#pragma once
/// \class ChmMapIds
/// The map-id table of a compiled help file ("#IVB": a 32-bit little-endian byte
/// count n, then n / 8 pairs of map id and offset into "#STRINGS"), read once,
/// and the "its:" URL of a map id's topic. A later change of the help file does
/// not refresh the table. Results are the storage's codes of KORVAutl/HResult.h.

#include <KORVAutl/HResult.h>

#include <cstdint>
#include <string>
#include <vector>

class ChmStream;

/// One pair of the map-id table.
struct ChmMapIdPair
{
    std::uint32_t id;
    std::uint32_t offset;
};

class ChmMapIds
{
public:
    /// Room of a URL built by UrlOf, in bytes.
    static constexpr std::size_t kUrlRoom = 520;
    /// Size of one piece read from "#STRINGS".
    static constexpr std::size_t kPiece = 64;

    /// Reads a map-id table from `stream`: STG_E_READFAULT for fewer than 4 bytes
    /// of length or a short read of the pairs, E_OUTOFMEMORY when the length
    /// can't be had; the count of pairs is length / 8 (a remainder is read and ignored).
    static HRESULT ReadIdTable(ChmStream& stream, std::vector<ChmMapIdPair>& table);

    /// Reads the table of `helpFile` unless it was read before: STG_E_PATHNOTFOUND
    /// when the file can't be opened, STG_E_FILENOTFOUND without "#IVB", else as ReadIdTable.
    HRESULT Load(const std::string& helpFile);
    /// The URL "its:<helpFile>::<topic>" of map id `id`: STG_E_PATHNOTFOUND for an
    /// empty help file or one that can't be opened, E_FAIL for an empty table
    /// or an unknown id. A topic path that can't be read leaves the URL shorter.
    HRESULT UrlOf(const std::string& helpFile, unsigned int id, std::string& url);

    bool IsLoaded() const { return mLoaded; }
    /// Pairs in the table.
    int GetIdCount() const { return static_cast<int>(mTable.size()); }
    /// How often the table was read from a file (once at most, unless it failed).
    int GetReadCount() const { return mReadCount; }

private:
    std::vector<ChmMapIdPair> mTable;
    bool mLoaded = false;
    int mReadCount = 0;
};
