#pragma once
/// \class CollectionInfo
/// One collection of an art file: an artist with life span and portrait, and
/// the artist's paintings. The tool that builds collections fills in the sizes
/// and the portrait's stream name; `file` is set when a collection is read from
/// a file and says where its pictures are.

#include <KORVAutlwin/art/PictureInfo.h>

#include <cstdint>
#include <string>
#include <vector>

namespace boost::serialization { class access; }
class ArtInfo;

class CollectionInfo
{
public:
    CollectionInfo() = default;

    /// The size of the widest and of the highest picture of the collection, in pixels.
    std::uint32_t GetMaxPictureWidth() const { return maxPictureWidth; }
    std::uint32_t GetMaxPictureHeight() const { return maxPictureHeight; }
    void SetMaxPictureSize(std::uint32_t width, std::uint32_t height);
    /// The size of the portrait, in pixels.
    std::uint32_t GetMaxPortraitWidth() const { return maxPortraitWidth; }
    std::uint32_t GetMaxPortraitHeight() const { return maxPortraitHeight; }
    void SetMaxPortraitSize(std::uint32_t width, std::uint32_t height);

    std::string GetArtistName() const { return artistName; }
    void SetArtistName(const char* name);
    /// Free text, such as "1840-1926".
    std::string GetLifeSpan() const { return lifeSpan; }
    void SetLifeSpan(const char* span);
    /// The name of the portrait's stream in the collection file.
    std::string GetPortraitName() const { return portraitName; }
    void SetPortraitName(const char* name);

    const std::vector<PictureInfo>& GetPictures() const { return pictures; }
    /// Appends a picture; give it its title (and so its stream name) first.
    void AddPicture(const PictureInfo& picture);

    /// The collection file the pictures are read from; empty for a collection
    /// made in memory. Never stored in a file.
    std::string GetFile() const { return file; }

private:
    friend class ArtInfo;
    friend class boost::serialization::access;
    // Both directions of the description, in the order of the fields below (`file` excepted).
    template <class Archive>
    void serialize(Archive& archive, unsigned int version);

    std::uint32_t maxPictureWidth = 0;
    std::uint32_t maxPictureHeight = 0;
    std::uint32_t maxPortraitWidth = 0;
    std::uint32_t maxPortraitHeight = 0;
    std::string artistName;
    std::string lifeSpan;
    std::string portraitName;
    std::vector<PictureInfo> pictures;
    std::string file;
};
