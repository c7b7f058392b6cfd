// Art collection files come from anywhere: plug-in folders, downloads, other
// programs. ReadArtInfo must turn whatever it is given into a description, a
// null result or an exception of the archive library or of IStreamDevice, and
// never crash. The first byte chooses what the rest is:
//   even: the whole file, compound file structure included;
//   odd:  the description only, put into a well-formed compound file, so that
//         the fuzzer spends its time on the archive.

#include <KORVAutlwin/art/ArtInfo.h>
#include <KORVAutlwin/art/ArtStorageWriter.h>

#include "FuzzCheck.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <memory>
#include <string>
#include <unistd.h>

namespace {

const std::string& Path()
{
    static const std::string path = "/tmp/fuzz_read_art_info." + std::to_string(getpid()) + ".tart";
    return path;
}

bool WriteFile(const std::string& path, const uint8_t* data, std::size_t size)
{
    FILE* file = std::fopen(path.c_str(), "wb");
    if (!file)
        return false;
    const bool written = std::fwrite(data, 1, size, file) == size;
    return std::fclose(file) == 0 && written;
}

} // namespace

// libgsf itself loses a few bytes on some damaged directories, inside
// gsf_infile_msole_new; that is no leak of ours. GLib and libgsf are built
// without frame pointers, so only the slow unwinder sees that frame.
extern "C" const char* __lsan_default_suppressions()
{
    return "leak:gsf_infile_msole_new\n";
}
extern "C" const char* __asan_default_options()
{
    return "fast_unwind_on_malloc=0";
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size)
{
    if (size == 0)
        return 0;
    const std::string& path = Path();
    std::remove(path.c_str());
    if (data[0] % 2 == 0) {
        if (!WriteFile(path, data + 1, size - 1))
            return 0;
    } else {
        korva::ArtStorageWriter writer(path);
        if (!writer.WriteStream("ArtInfo", data + 1, size - 1) || !writer.Commit())
            return 0;
    }

    std::unique_ptr<const ArtInfo> art;
    try {
        art.reset(ArtInfo::ReadArtInfo(path.c_str()));
    } catch (const std::exception&) {
        return 0;
    }
    if (!art)
        return 0;
    // What was read points at its file, and asking it for pictures is safe,
    // whether the streams exist or not.
    int asked = 0;
    for (std::size_t c = 0; c < art->GetCollections().size() && asked < 4; ++c) {
        const CollectionInfo& collection = art->GetCollections()[c];
        Check(collection.GetFile() == path);
        art->GetIcon(static_cast<int>(c));
        for (std::size_t p = 0; p < collection.GetPictures().size() && asked < 4; ++p, ++asked)
            art->GetImage(static_cast<int>(c), static_cast<int>(p));
    }
    return 0;
}
