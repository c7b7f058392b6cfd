#include <KORVAutlwin/art/CollectionInfo.h>

#include "ArtArchive.h"

#include <boost/archive/text_iarchive.hpp>
#include <boost/archive/text_oarchive.hpp>

void CollectionInfo::SetMaxPictureSize(std::uint32_t width, std::uint32_t height)
{
    maxPictureWidth = width;
    maxPictureHeight = height;
}

void CollectionInfo::SetMaxPortraitSize(std::uint32_t width, std::uint32_t height)
{
    maxPortraitWidth = width;
    maxPortraitHeight = height;
}

void CollectionInfo::SetArtistName(const char* name)
{
    artistName = name ? name : "";
}

void CollectionInfo::SetLifeSpan(const char* span)
{
    lifeSpan = span ? span : "";
}

void CollectionInfo::SetPortraitName(const char* name)
{
    portraitName = name ? name : "";
}

void CollectionInfo::AddPicture(const PictureInfo& picture)
{
    pictures.push_back(picture);
}

template <class Archive>
void CollectionInfo::serialize(Archive& archive, const unsigned int version)
{
    korva::CheckArtClassVersion(version, "CollectionInfo");
    archive & BOOST_SERIALIZATION_NVP(maxPictureWidth);
    archive & BOOST_SERIALIZATION_NVP(maxPictureHeight);
    archive & BOOST_SERIALIZATION_NVP(maxPortraitWidth);
    archive & BOOST_SERIALIZATION_NVP(maxPortraitHeight);
    korva::ArtCString storedArtistName(artistName);
    korva::ArtCString storedLifeSpan(lifeSpan);
    korva::ArtCString storedPortraitName(portraitName);
    archive & boost::serialization::make_nvp("artistName", storedArtistName);
    archive & boost::serialization::make_nvp("lifeSpan", storedLifeSpan);
    archive & boost::serialization::make_nvp("portraitName", storedPortraitName);
    korva::ArtVector<PictureInfo> storedPictures(pictures);
    archive & boost::serialization::make_nvp("pictures", storedPictures);
}

template void CollectionInfo::serialize(boost::archive::text_iarchive&, unsigned int);
template void CollectionInfo::serialize(boost::archive::text_oarchive&, unsigned int);
