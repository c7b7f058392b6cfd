#pragma once
/// \class ArtInfo
/// The collections of an art collection file (".tart") and the file format.
///
/// A file is an OLE compound file with everything in its root storage: the
/// stream "ArtInfo", a text archive describing all collections, and one JPEG
/// stream per picture (at most 400 by 400 pixels) and per portrait (at most 80
/// by 80), named by the picture's fileName and the collection's portraitName.
/// Reading loads only the description; every picture is fetched from the file
/// when it is asked for, so a file may be read by several processes at once.

#include <KORVAutlwin/art/CollectionInfo.h>

#include <QImage>

#include <string>
#include <vector>

namespace boost::serialization { class access; }
namespace korva { class ArtStorageWriter; }
typedef struct _GsfInput GsfInput;
typedef struct _GsfOutput GsfOutput;

class ArtInfo
{
public:
    static constexpr unsigned int nMaxPortraitWidth = 80;
    static constexpr unsigned int nMaxPortraitHeight = 80;
    static constexpr unsigned int nMaxPixWidth = 400;
    static constexpr unsigned int nMaxPixHeight = 400;

    ArtInfo();
    ArtInfo(const ArtInfo& other);
    ArtInfo& operator=(const ArtInfo& other);
    ~ArtInfo();

    /// Reads the description of the file `path`; the caller owns the result.
    /// Null when the file is missing, is no compound file or has no stream
    /// "ArtInfo". A damaged description throws what the archive library or
    /// IStreamDevice throws (boost::archive::archive_exception, among them
    /// unsupported_class_version for a class written by a newer release;
    /// IStreamDevice::IStreamDeviceError). Every collection read has `file` set
    /// to `path`.
    static const ArtInfo* ReadArtInfo(const char* path);

    /// Builds the file `path`, or extends it: the collections of this object go
    /// in behind those already there. For collection i, pictures[i][j] is the
    /// source file of its picture j and pictureRotations[i][j] that picture's
    /// clockwise quarter turns; portraits[i] is the source of its portrait (may
    /// be empty: no portrait) and portraitRotations[i] the portrait's turns (0
    /// when missing). Pictures are shrunk to fit 400 by 400, portraits 80 by 80,
    /// and stored as JPEG at quality 75.
    ///
    /// Throws Exception: "Internal error in ArtInfo::SaveToFile" when the sizes
    /// of the vectors do not match the collections; "Reading from %s failed."
    /// for an existing file whose description cannot be read; "%s could not be
    /// read.\nThe file was skipped." for a source that is no picture; "The file
    /// %s could not be saved." when a picture's stream cannot be written;
    /// "Writing to %s failed." when the description or the file cannot be
    /// written. When `path` cannot be opened or created for writing, the
    /// user is told "The file %s could not be opened!" through the user channel
    /// (the error stream when there is none) and the call returns.
    ///
    /// The file is replaced in one step (a new file beside it is renamed over
    /// it), so its old content is never damaged. After a failure in the middle,
    /// the file holds what was written so far: picture streams already written
    /// stay, but they are not in the description; a failed portrait leaves a
    /// readable file with the new collections, missing that portrait.
    void SaveToFile(const char* path, const std::vector<std::vector<std::string>>& pictures,
                    const std::vector<std::vector<int>>& pictureRotations, const std::vector<std::string>& portraits,
                    const std::vector<int>& portraitRotations) const;

    /// Appends a collection (no test for doubles).
    void AddCollection(const CollectionInfo& collection);
    /// Appends all collections of `other`.
    void AddArtInfo(const ArtInfo& other);
    /// Removes all collections.
    void Clear();
    const std::vector<CollectionInfo>& GetCollections() const { return collections; }

    /// The portrait of collection `collection`, read from the collection's
    /// file; a null image when there is none, the collection was made in memory
    /// or the index is out of range. The caller owns the image.
    QImage GetIcon(int collection) const;
    /// Picture `picture` of collection `collection`, likewise.
    QImage GetImage(int collection, int picture) const;

private:
    friend class boost::serialization::access;
    template <class Archive>
    void serialize(Archive& archive, unsigned int version);

    // Replaces the collections by the description in `stream`. False for a
    // null stream; a damaged description throws.
    bool ReadFromIStream(GsfInput* stream);
    // Writes the description into `stream`; false when that fails.
    bool SaveToIStream(GsfOutput* stream) const;
    // Stores the source picture, turned and shrunk, as the JPEG stream `streamName`.
    void SavePicture(korva::ArtStorageWriter& storage, const char* source, const char* streamName,
                     unsigned int maxHeight, unsigned int maxWidth, int rotation) const;
    // The picture in stream `streamName` of the compound file `file`; null on any failure.
    QImage GetBitMap(const char* file, const char* streamName) const;

    std::vector<CollectionInfo> collections;
};
