// The map-id table and topic URLs, read with chmlib from help files that chmcmd
// compiled at build time, and from damaged copies of them.
#include <KORVAutlwin/help/ChmMapIds.h>
#include <KORVAutlwin/help/ChmStorage.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace fs = std::filesystem;

namespace {
const std::string kMapped = KORVA_HELP_CHM_DIR "/mapped.chm";

std::string CopyOf(const std::string& source, std::uintmax_t size, const std::string& name)
{
    const fs::path target = fs::temp_directory_path() / ("korva-help-" + std::to_string(getpid()) + "-" + name);
    fs::copy_file(source, target, fs::copy_options::overwrite_existing);
    if (size)
        fs::resize_file(target, size);
    return target.string();
}
} // namespace

TEST(ChmMapIds, ResultsOfRealAndDamagedFiles)
{
    const std::uintmax_t full = fs::file_size(kMapped);
    struct Row
    {
        std::string name, file;
        unsigned int id;
        HRESULT result;
        std::string topic;
    } rows[] = {
        {"first id", kMapped, 1001, S_OK, "/intro.htm"},
        {"id with the top bit", kMapped, 4000000000u, S_OK, "/sub/details.htm"},
        {"unknown id", kMapped, 7, E_FAIL, ""},
        {"no map table", KORVA_HELP_CHM_DIR "/unmapped.chm", 1001, STG_E_FILENOTFOUND, ""},
        {"missing file", KORVA_HELP_CHM_DIR "/missing.chm", 1001, STG_E_PATHNOTFOUND, ""},
        {"no help file", "", 1001, STG_E_PATHNOTFOUND, ""},
        {"cut in its header", CopyOf(kMapped, 40, "header.chm"), 1001, STG_E_PATHNOTFOUND, ""},
        {"cut in its content", CopyOf(kMapped, full / 2, "half.chm"), 1001, STG_E_READFAULT, ""},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        ChmMapIds ids;
        std::string url = "untouched";
        EXPECT_EQ(ids.UrlOf(row.file, row.id, url), row.result);
        EXPECT_EQ(url, row.result == S_OK ? "its:" + row.file + "::" + row.topic : "untouched");
    }
}

TEST(ChmMapIds, TableIsReadOnceAndKeptForALaterFile)
{
    ChmMapIds ids;
    std::string url;
    EXPECT_EQ(ids.UrlOf(kMapped, 7, url), E_FAIL);
    EXPECT_EQ(ids.UrlOf(kMapped, 7, url), E_FAIL);
    EXPECT_EQ(ids.GetReadCount(), 1);
    EXPECT_EQ(ids.GetIdCount(), 2);
    // Another file without a table: the first one's ids still count, and its
    // strings, which end before their offset, leave the URL at its prefix.
    EXPECT_EQ(ids.UrlOf(KORVA_HELP_CHM_DIR "/unmapped.chm", 1001, url), S_OK);
    EXPECT_EQ(url, "its:" KORVA_HELP_CHM_DIR "/unmapped.chm::");
}

TEST(ChmMapIds, HelpFilePathsUpTo259Characters)
{
    // The storage takes names as wide text in 520 bytes: 259 characters and the terminator.
    const fs::path folder = fs::temp_directory_path() / ("korva-help-long-" + std::to_string(getpid())) /
                            std::string(200, 'a');
    fs::create_directories(folder);
    for (const std::size_t length : {259u, 260u}) {
        const std::size_t name = length - folder.string().size() - 1;
        const fs::path file = folder / (std::string(name - 4, 'c') + ".chm");
        ASSERT_EQ(file.string().size(), length);
        fs::copy_file(kMapped, file, fs::copy_options::overwrite_existing);
        SCOPED_TRACE(length);
        ChmMapIds ids;
        std::string url;
        EXPECT_EQ(ids.UrlOf(file.string(), 1001, url), length < 260 ? S_OK : STG_E_PATHNOTFOUND);
        EXPECT_EQ(url, length < 260 ? "its:" + file.string() + "::/intro.htm" : "");
    }
    fs::remove_all(folder.parent_path());
}

TEST(ChmMapIds, TablesOfEveryLength)
{
    auto le = [](std::uint32_t v) { return std::string{char(v), char(v >> 8), char(v >> 16), char(v >> 24)}; };
    const std::string twoPairs = le(5) + le(0) + le(6) + le(12);
    struct Row
    {
        std::string name, bytes;
        HRESULT result;
        int count;
    } rows[] = {
        {"two pairs", le(16) + twoPairs, S_OK, 2},
        {"length 20, a rest of 4", le(20) + twoPairs + "rest", S_OK, 2},
        {"length 7, no pair", le(7) + "1234567", S_OK, 0},
        {"fewer than 4 bytes of length", "\x10\x00", STG_E_READFAULT, -1},
        {"shorter than its length", le(16) + le(5) + le(0), STG_E_READFAULT, -1},
        {"length far beyond the stream", le(0xFFFFFFF0u) + twoPairs, STG_E_READFAULT, -1},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        ChmStream stream(row.bytes);
        std::vector<ChmMapIdPair> table;
        EXPECT_EQ(ChmMapIds::ReadIdTable(stream, table), row.result);
        if (row.count >= 0) {
            EXPECT_EQ(static_cast<int>(table.size()), row.count);
        }
    }
}
