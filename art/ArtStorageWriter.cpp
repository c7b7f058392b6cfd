#include <KORVAutlwin/art/ArtStorageWriter.h>

#include <KORVAutlwin/art/ArtStorageReader.h>

#include "ArtGsf.h"

namespace korva {

namespace {

// The format stores names of up to 31 UTF-16 code units.
constexpr std::size_t kMaxNameUnits = 31;

std::size_t Utf16Units(const std::string& text)
{
    std::size_t units = 0;
    for (unsigned char c : text) {
        if ((c & 0xC0) != 0x80)
            ++units;      // a lead byte starts a code point
        if ((c & 0xF8) == 0xF0)
            ++units;      // four-byte sequences need a surrogate pair
    }
    return units;
}

bool CopyEntries(GsfInfile* source, GsfOutfile* target, const std::set<std::string>* skip)
{
    const int count = gsf_infile_num_children(source);
    for (int i = 0; i < count; ++i) {
        const char* name = gsf_infile_name_by_index(source, i);
        if (!name || (skip && skip->count(name)))
            continue;
        GsfPtr<GsfInput> child(gsf_infile_child_by_index(source, i));
        if (!child)
            return false;
        const bool isStorage = GSF_IS_INFILE(child.get()) && gsf_infile_num_children(GSF_INFILE(child.get())) >= 0;
        GsfPtr<GsfOutput> copy(gsf_outfile_new_child(target, name, isStorage));
        if (!copy)
            return false;
        bool copied = isStorage ? CopyEntries(GSF_INFILE(child.get()), GSF_OUTFILE(copy.get()), nullptr)
                                : gsf_input_copy(child.get(), copy.get());
        copied = gsf_output_close(copy.get()) && copied;
        if (!copied)
            return false;
    }
    return true;
}

} // namespace

ArtStorageWriter::ArtStorageWriter(const std::string& path) : mFile(path)
{
    InitArtGsf();
    std::FILE* file = mFile.File();
    if (!file)
        return;
    // The sink leaves the FILE open, so that Commit can bring it to the disk before the rename.
    mSink = gsf_output_stdio_new_FILE(mFile.Temporary().c_str(), file, TRUE);
    if (mSink)
        mRoot = gsf_outfile_msole_new(mSink);
    if (!mRoot)
        Discard();
}

ArtStorageWriter::~ArtStorageWriter()
{
    Discard();
}

std::shared_ptr<GsfOutput> ArtStorageWriter::CreateStream(const std::string& name)
{
    if (!mRoot || name.empty() || Utf16Units(name) > kMaxNameUnits || mWritten.count(name))
        return nullptr;
    GsfOutput* stream = gsf_outfile_new_child(mRoot, name.c_str(), FALSE);
    if (!stream)
        return nullptr;
    mWritten.insert(name);
    return std::shared_ptr<GsfOutput>(stream, [](GsfOutput* output) {
        if (!gsf_output_is_closed(output))
            gsf_output_close(output);
        g_object_unref(output);
    });
}

bool ArtStorageWriter::CloseStream(const std::shared_ptr<GsfOutput>& stream)
{
    if (!stream)
        return false;
    const bool closed = !gsf_output_is_closed(stream.get()) && gsf_output_close(stream.get());
    if (!closed || gsf_output_error(stream.get()))
        mFailed = true;
    return !mFailed;
}

bool ArtStorageWriter::WriteStream(const std::string& name, const void* data, std::size_t size)
{
    const std::shared_ptr<GsfOutput> stream = CreateStream(name);
    if (!stream)
        return false;
    const bool written = size == 0 || gsf_output_write(stream.get(), size, static_cast<const guint8*>(data));
    if (!written)
        mFailed = true;
    return CloseStream(stream) && written;
}

bool ArtStorageWriter::CopyMissing(const ArtStorageReader& source)
{
    if (!mRoot || !source.GetRoot())
        return false;
    if (!CopyEntries(source.GetRoot(), mRoot, &mWritten)) {
        mFailed = true;
        return false;
    }
    return true;
}

bool ArtStorageWriter::Commit()
{
    if (!mRoot)
        return false;
    bool ok = !mFailed;
    // Closing the root writes the directory and the allocation tables.
    ok = gsf_output_close(GSF_OUTPUT(mRoot)) && ok;
    g_object_unref(mRoot);
    mRoot = nullptr;
    if (!gsf_output_is_closed(mSink))
        ok = gsf_output_close(mSink) && ok;
    g_object_unref(mSink);
    mSink = nullptr;
    if (ok)
        return mFile.Commit();
    Discard();
    return false;
}

void ArtStorageWriter::Discard()
{
    if (mRoot) {
        gsf_output_close(GSF_OUTPUT(mRoot));
        g_object_unref(mRoot);
        mRoot = nullptr;
    }
    if (mSink) {
        if (!gsf_output_is_closed(mSink))
            gsf_output_close(mSink);
        g_object_unref(mSink);
        mSink = nullptr;
    }
    mFile.Abandon();
}

} // namespace korva
