#include <KORVAutlwin/art/ArtCatalogue.h>

#include <KORVAutl/LanguageString.h>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <strings.h>
#include <vector>

namespace korva {

namespace {

constexpr unsigned int kRandomArtist = 32306; // "<Random>"

bool IsArtFile(const std::filesystem::directory_entry& entry)
{
    const std::string name = entry.path().filename().string();
    // Collections copied from other systems often arrive as ".TART"; the extension counts in any case.
    return name.size() > 5 && strcasecmp(name.c_str() + name.size() - 5, ".tart") == 0;
}

} // namespace

void ArtCatalogue::LoadPainters(const std::string& folder)
{
    std::vector<std::string> files;
    std::error_code error;
    for (std::filesystem::directory_iterator it(folder, error), end; !error && it != end; it.increment(error))
        if (IsArtFile(*it) && it->is_regular_file(error))
            files.push_back(it->path().string());
    std::sort(files.begin(), files.end());
    for (const std::string& file : files) {
        try {
            std::unique_ptr<const ArtInfo> art(ArtInfo::ReadArtInfo(file.c_str()));
            if (art)
                collections.AddArtInfo(*art);
        } catch (const std::exception&) {
            // A damaged file is no reason to do without the others.
        }
    }
}

void ArtCatalogue::Finish()
{
    for (const CollectionInfo& collection : collections.GetCollections()) {
        maxBitmapSize.setX(std::max<int>(maxBitmapSize.x(), static_cast<int>(collection.GetMaxPictureWidth())));
        maxBitmapSize.setY(std::max<int>(maxBitmapSize.y(), static_cast<int>(collection.GetMaxPictureHeight())));
        maxPortraitSize.setX(std::max<int>(maxPortraitSize.x(), static_cast<int>(collection.GetMaxPortraitWidth())));
        maxPortraitSize.setY(std::max<int>(maxPortraitSize.y(), static_cast<int>(collection.GetMaxPortraitHeight())));
    }
    if (GetNumArtists() > 0)
        preferedArtist = 0;
}

int ArtCatalogue::GetNumArtists() const
{
    const int count = NumCollections();
    return count >= 2 ? count + 1 : count;
}

void ArtCatalogue::SetPreferedArtist(int artist)
{
    if (artist >= GetNumArtists())
        artist = GetNumArtists() > 0 ? 0 : -1;
    preferedArtist = artist;
}

int ArtCatalogue::GetNumPaintings(int artist) const
{
    if (artist < 0)
        return 0;
    if (artist < NumCollections())
        return NumPictures(artist);
    int total = 0;
    for (int i = 0; i < NumCollections(); ++i)
        total += NumPictures(i);
    return total;
}

bool ArtCatalogue::ResolvePicture(int& artist, int& picture) const
{
    if (NumCollections() == 0 || artist < 0)
        return false;
    if (artist < NumCollections())
        return picture < NumPictures(artist);
    int current = 0;
    while (current < NumCollections() && picture >= NumPictures(current)) {
        picture -= NumPictures(current);
        ++current;
    }
    if (current == NumCollections())
        return false;
    artist = current;
    return true;
}

bool ArtCatalogue::ResolvePainting(int& artist, int& picture) const
{
    return picture >= 0 && ResolvePicture(artist, picture);
}

std::string ArtCatalogue::GetArtistName(int artist, int picture) const
{
    if (picture < 0 && artist >= 0) {
        if (artist < NumCollections())
            return Collection(artist).GetArtistName();
        return NumCollections() > 0 ? LanguageString::Get(kRandomArtist) : std::string();
    }
    return ResolvePicture(artist, picture) ? Collection(artist).GetArtistName() : std::string();
}

std::string ArtCatalogue::GetArtistLifeSpan(int artist, int picture) const
{
    if (picture < 0 && artist >= 0)
        return artist < NumCollections() ? Collection(artist).GetLifeSpan() : std::string();
    return ResolvePicture(artist, picture) ? Collection(artist).GetLifeSpan() : std::string();
}

QImage ArtCatalogue::GetArtistPortrait(int artist, int picture) const
{
    if (picture < 0 && artist >= 0 && artist < NumCollections())
        return collections.GetIcon(artist);
    return ResolvePicture(artist, picture) ? collections.GetIcon(artist) : QImage();
}

QImage ArtCatalogue::GetPainting(int artist, int picture) const
{
    return ResolvePainting(artist, picture) ? collections.GetImage(artist, picture) : QImage();
}

std::string ArtCatalogue::GetPaintingName(int artist, int picture) const
{
    if (!ResolvePainting(artist, picture))
        return std::string();
    return Collection(artist).GetPictures()[static_cast<std::size_t>(picture)].GetTitle();
}

} // namespace korva
