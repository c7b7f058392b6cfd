#include <KORVAutlwin/art/ArtInfo.h>

#include <KORVAutlwin/art/ArtImage.h>
#include <KORVAutlwin/art/ArtStorageReader.h>
#include <KORVAutlwin/art/ArtStorageWriter.h>
#include <KORVAutlwin/art/IStreamDevice.h>

#include "ArtArchive.h"

#include <KORVAutl/Exception.h>
#include <KORVAutl/LanguageString.h>
#include <KORVAutl/TsFileUtl.h>
#include <KORVAutl/TsString.h>
#include <KORVAutl/UserComm.h>

#include <boost/archive/text_iarchive.hpp>
#include <boost/archive/text_oarchive.hpp>
#include <boost/iostreams/stream.hpp>

#include <cstdio>
#include <memory>
#include <unistd.h>

namespace {

constexpr unsigned int kInternalError = 32300;    // "Internal error in ArtInfo::SaveToFile"
constexpr unsigned int kCouldNotOpen = 32301;     // "The file %s could not be opened!"
constexpr unsigned int kReadingFailed = 32302;    // "Reading from %s failed."
constexpr unsigned int kCouldNotRead = 32303;     // "%s could not be read.\nThe file was skipped."
constexpr unsigned int kCouldNotSave = 32304;     // "The file %s could not be saved."
constexpr unsigned int kWritingFailed = 32305;    // "Writing to %s failed."

const char* const kDescriptionStream = "ArtInfo";

// Every text archive of the library starts with the length of its signature
// "serialization::archive". Checked before the library reads the signature,
// which would size a string by whatever number stands there.
constexpr std::size_t kSignatureLength = 22;

// The header that the archive library of release 1.42 writes (library version
// 7). Newer releases write their own version there, which older readers refuse
// although the text behind it is the same; so the header is ours.
constexpr const char* kArchiveHeader = "22 serialization::archive 7 ";

// Through the user channel: a box in an application, the error stream in a tool without one.
void TellUser(const std::string& text)
{
    if (UserComm* channel = UserComm::GetUserComm())
        channel->InformUser(text.c_str(), nullptr, 0);
    else
        std::fprintf(stderr, "%s\n", text.c_str());
}

} // namespace

ArtInfo::ArtInfo() = default;
ArtInfo::ArtInfo(const ArtInfo& other) = default;
ArtInfo& ArtInfo::operator=(const ArtInfo& other) = default;
ArtInfo::~ArtInfo() = default;

template <class Archive>
void ArtInfo::serialize(Archive& archive, const unsigned int version)
{
    korva::CheckArtClassVersion(version, "ArtInfo");
    korva::ArtVector<CollectionInfo> storedCollections(collections);
    archive & boost::serialization::make_nvp("collections", storedCollections);
}

template void ArtInfo::serialize(boost::archive::text_iarchive&, unsigned int);
template void ArtInfo::serialize(boost::archive::text_oarchive&, unsigned int);

const ArtInfo* ArtInfo::ReadArtInfo(const char* path)
{
    if (!path || FileExist(path) != 2)
        return nullptr;
    korva::ArtStorageReader storage(path);
    if (!storage.IsOpen())
        return nullptr;
    const std::shared_ptr<GsfInput> description = storage.OpenStream(kDescriptionStream);
    if (!description)
        return nullptr;
    auto art = std::make_unique<ArtInfo>();
    art->ReadFromIStream(description.get());
    for (CollectionInfo& collection : art->collections)
        collection.file = path;
    return art.release();
}

bool ArtInfo::ReadFromIStream(GsfInput* stream)
{
    if (!stream)
        return false;
    IStreamDevice device(stream);
    boost::iostreams::stream<IStreamDevice> in(device);
    // Failures of the device travel as themselves, not as a mere bad stream.
    in.exceptions(std::ios_base::badbit);
    std::size_t signatureLength = 0;
    if (!(in >> signatureLength) || signatureLength != kSignatureLength)
        throw boost::archive::archive_exception(boost::archive::archive_exception::invalid_signature);
    in.seekg(0);
    boost::archive::text_iarchive archive(in);
    korva::ArtArchiveSource::Attach(archive, in);
    ArtInfo loaded;
    archive >> loaded;
    collections = std::move(loaded.collections);
    return true;
}

bool ArtInfo::SaveToIStream(GsfOutput* stream) const
{
    if (!stream)
        return false;
    try {
        IStreamDevice device(stream);
        boost::iostreams::stream<IStreamDevice> out(device);
        out.exceptions(std::ios_base::badbit);
        out << kArchiveHeader;
        {
            boost::archive::text_oarchive archive(out, boost::archive::no_header);
            archive << *this;
        }
        out.flush();
        return out.good();
    } catch (const std::exception&) {
        return false;
    }
}

void ArtInfo::SaveToFile(const char* path, const std::vector<std::vector<std::string>>& pictures,
                         const std::vector<std::vector<int>>& pictureRotations,
                         const std::vector<std::string>& portraits, const std::vector<int>& portraitRotations) const
{
    if (pictures.size() != collections.size() || pictureRotations.size() != collections.size())
        throw Exception(LanguageString::Get(kInternalError));

    const std::string target = path ? path : "";
    std::unique_ptr<korva::ArtStorageReader> old;
    std::unique_ptr<korva::ArtStorageWriter> storage;
    const int existing = FileExist(target.c_str());
    bool opened = existing == 0 || (existing == 2 && access(target.c_str(), W_OK) == 0);
    if (opened && existing) {
        old = std::make_unique<korva::ArtStorageReader>(target);
        opened = old->IsOpen();
    }
    if (opened) {
        storage = std::make_unique<korva::ArtStorageWriter>(target);
        opened = storage->IsOpen();
    }
    if (!opened) {
        // A file in use or out of reach is no failure of the caller's: the user is told, the call returns.
        TellUser(TsString::Format(kCouldNotOpen, target.c_str()));
        return;
    }

    ArtInfo merged;
    if (old) {
        const std::shared_ptr<GsfInput> description = old->OpenStream(kDescriptionStream);
        if (description) {
            bool read = false;
            try {
                read = merged.ReadFromIStream(description.get());
            } catch (const std::exception&) {
            }
            if (!read)
                throw Exception(TsString::Format(kReadingFailed, target.c_str()));
        }
    }

    // The new file takes what was written and every old stream that was not
    // written anew; nothing reaches the target until Commit.
    const auto finish = [&] { return (!old || storage->CopyMissing(*old)) && storage->Commit(); };
    bool keepOnFailure = true;
    try {
        for (std::size_t i = 0; i < collections.size(); ++i) {
            const CollectionInfo& collection = collections[i];
            if (pictures[i].size() != collection.pictures.size() ||
                pictureRotations[i].size() != collection.pictures.size())
                throw Exception(LanguageString::Get(kInternalError));
            for (std::size_t j = 0; j < collection.pictures.size(); ++j)
                SavePicture(*storage, pictures[i][j].c_str(), collection.pictures[j].GetFileName().c_str(),
                            nMaxPixHeight, nMaxPixWidth, pictureRotations[i][j]);
            merged.AddCollection(collection);
        }

        const std::shared_ptr<GsfOutput> description = storage->CreateStream(kDescriptionStream);
        bool written = description && merged.SaveToIStream(description.get());
        if (description)
            written = storage->CloseStream(description) && written;
        if (!written) {
            // A half-written description must never replace a good one.
            keepOnFailure = false;
            throw Exception(TsString::Format(kWritingFailed, target.c_str()));
        }

        // The portraits come after the description: a failed one leaves a
        // readable file that lacks only that portrait.
        for (std::size_t i = 0; i < portraits.size() && i < collections.size(); ++i)
            if (!portraits[i].empty())
                SavePicture(*storage, portraits[i].c_str(), collections[i].portraitName.c_str(), nMaxPortraitHeight,
                            nMaxPortraitWidth, i < portraitRotations.size() ? portraitRotations[i] : 0);
    } catch (...) {
        if (keepOnFailure)
            finish();
        throw;
    }
    if (!finish())
        throw Exception(TsString::Format(kWritingFailed, target.c_str()));
}

void ArtInfo::SavePicture(korva::ArtStorageWriter& storage, const char* source, const char* streamName,
                          unsigned int maxHeight, unsigned int maxWidth, int rotation) const
{
    const QImage image = korva::ArtImage::Prepare(source, rotation, maxWidth, maxHeight);
    if (image.isNull())
        throw Exception(TsString::Format(kCouldNotRead, source));
    const QByteArray jpeg = korva::ArtImage::EncodeJpeg(image);
    if (jpeg.isEmpty() || !storage.WriteStream(streamName, jpeg.constData(), static_cast<std::size_t>(jpeg.size())))
        throw Exception(TsString::Format(kCouldNotSave, streamName));
}

void ArtInfo::AddCollection(const CollectionInfo& collection)
{
    collections.push_back(collection);
}

void ArtInfo::AddArtInfo(const ArtInfo& other)
{
    // A copy first, so that adding an object to itself doubles it cleanly.
    const std::vector<CollectionInfo> added = other.collections;
    collections.insert(collections.end(), added.begin(), added.end());
}

void ArtInfo::Clear()
{
    collections.clear();
}

QImage ArtInfo::GetIcon(int collection) const
{
    if (collection < 0 || static_cast<std::size_t>(collection) >= collections.size())
        return QImage();
    const CollectionInfo& info = collections[static_cast<std::size_t>(collection)];
    return GetBitMap(info.file.c_str(), info.portraitName.c_str());
}

QImage ArtInfo::GetImage(int collection, int picture) const
{
    if (collection < 0 || static_cast<std::size_t>(collection) >= collections.size())
        return QImage();
    const CollectionInfo& info = collections[static_cast<std::size_t>(collection)];
    if (picture < 0 || static_cast<std::size_t>(picture) >= info.pictures.size())
        return QImage();
    return GetBitMap(info.file.c_str(), info.pictures[static_cast<std::size_t>(picture)].GetFileName().c_str());
}

QImage ArtInfo::GetBitMap(const char* file, const char* streamName) const
{
    if (!file || !*file || !streamName || !*streamName)
        return QImage();
    std::string jpeg;
    if (!korva::ArtStorageReader::ReadStreamOf(file, streamName, jpeg))
        return QImage();
    return korva::ArtImage::DecodeJpeg(jpeg.data(), jpeg.size());
}
