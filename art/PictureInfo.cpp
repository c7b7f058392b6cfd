#include <KORVAutlwin/art/PictureInfo.h>

#include "ArtArchive.h"

#include <KORVAutl/TsFileUtl.h>

#include <boost/archive/text_iarchive.hpp>
#include <boost/archive/text_oarchive.hpp>

void PictureInfo::SetTitle(const char* newTitle)
{
    title = newTitle ? newTitle : "";
    fileName = std::to_string(GetNearUniqueID());
}

template <class Archive>
void PictureInfo::serialize(Archive& archive, const unsigned int version)
{
    korva::CheckArtClassVersion(version, "PictureInfo");
    korva::ArtCString storedTitle(title);
    korva::ArtCString storedFileName(fileName);
    archive & boost::serialization::make_nvp("title", storedTitle);
    archive & boost::serialization::make_nvp("fileName", storedFileName);
}

template void PictureInfo::serialize(boost::archive::text_iarchive&, unsigned int);
template void PictureInfo::serialize(boost::archive::text_oarchive&, unsigned int);
