#include <KORVAutlwin/art/ArtStorageReader.h>

#include "ArtGsf.h"

#include <list>
#include <mutex>
#include <sys/stat.h>

namespace korva {

namespace {

// The files that ReadStreamOf keeps open, the most recent first.
class OpenFiles
{
public:
    bool Read(const std::string& path, const std::string& name, std::string& content)
    {
        struct stat now;
        const bool exists = stat(path.c_str(), &now) == 0;
        // gsf objects are not shared between threads, so the reading happens under the lock.
        const std::lock_guard<std::mutex> guard(mLock);
        auto it = mFiles.begin();
        while (it != mFiles.end() && it->path != path)
            ++it;
        if (it != mFiles.end() && (!exists || !Same(it->status, now))) {
            mFiles.erase(it);
            it = mFiles.end();
        }
        if (!exists)
            return false;
        if (it == mFiles.end()) {
            auto reader = std::make_unique<ArtStorageReader>(path);
            if (!reader->IsOpen())
                return false;
            mFiles.push_front({path, now, std::move(reader)});
            if (mFiles.size() > kKept)
                mFiles.pop_back();
        } else if (it != mFiles.begin()) {
            mFiles.splice(mFiles.begin(), mFiles, it);
        }
        return mFiles.front().reader->ReadStream(name, content);
    }

private:
    static constexpr std::size_t kKept = 4;

    struct File
    {
        std::string path;
        struct stat status;
        std::unique_ptr<ArtStorageReader> reader;
    };

    static bool Same(const struct stat& a, const struct stat& b)
    {
        return a.st_dev == b.st_dev && a.st_ino == b.st_ino && a.st_size == b.st_size &&
               a.st_mtim.tv_sec == b.st_mtim.tv_sec && a.st_mtim.tv_nsec == b.st_mtim.tv_nsec;
    }

    std::mutex mLock;
    std::list<File> mFiles;
};

} // namespace

bool ArtStorageReader::ReadStreamOf(const std::string& path, const std::string& name, std::string& content)
{
    // Lives to the end of the process: pictures are asked for until then.
    static OpenFiles* files = new OpenFiles;
    return files->Read(path, name, content);
}

ArtStorageReader::ArtStorageReader(const std::string& path)
{
    InitArtGsf();
    GError* error = nullptr;
    GsfPtr<GsfInput> input(gsf_input_stdio_new(path.c_str(), &error));
    if (error)
        g_error_free(error);
    if (!input)
        return;
    error = nullptr;
    mRoot = gsf_infile_msole_new(input.get(), &error);
    if (error)
        g_error_free(error);
}

ArtStorageReader::~ArtStorageReader()
{
    if (mRoot)
        g_object_unref(mRoot);
}

std::vector<std::string> ArtStorageReader::GetStreamNames() const
{
    std::vector<std::string> names;
    if (!mRoot)
        return names;
    const int count = gsf_infile_num_children(mRoot);
    for (int i = 0; i < count; ++i)
        if (const char* name = gsf_infile_name_by_index(mRoot, i))
            names.emplace_back(name);
    return names;
}

bool ArtStorageReader::HasStream(const std::string& name) const
{
    return OpenStream(name) != nullptr;
}

std::shared_ptr<GsfInput> ArtStorageReader::OpenStream(const std::string& name) const
{
    if (!mRoot)
        return nullptr;
    GsfPtr<GsfInput> child(gsf_infile_child_by_name(mRoot, name.c_str()));
    // A storage is listed among the children too, but holds no bytes of its own.
    if (!child || (GSF_IS_INFILE(child.get()) && gsf_infile_num_children(GSF_INFILE(child.get())) >= 0))
        return nullptr;
    return std::shared_ptr<GsfInput>(child.release(), GObjectRelease());
}

bool ArtStorageReader::ReadStream(const std::string& name, std::string& content, std::size_t maxSize) const
{
    const std::shared_ptr<GsfInput> stream = OpenStream(name);
    if (!stream)
        return false;
    const gsf_off_t size = gsf_input_size(stream.get());
    if (size < 0 || static_cast<unsigned long long>(size) > maxSize)
        return false;
    std::string bytes(static_cast<std::size_t>(size), '\0');
    if (size > 0 && !gsf_input_read(stream.get(), bytes.size(), reinterpret_cast<guint8*>(bytes.data())))
        return false;
    content = std::move(bytes);
    return true;
}

} // namespace korva
