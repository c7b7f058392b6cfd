#pragma once
/// \class korva::ArtCatalogue
/// The merged catalogue of art collections behind ProgressArt, without its lock
/// and its process-wide life, so that its rules can be used on any set of folders.
///
/// An artist number is an index into the collections. With two or more
/// collections one more number exists, equal to the number of collections: the
/// pseudo artist "<Random>" that stands for all of them. A picture number counts
/// within the artist's pictures or, for the pseudo artist, through the pictures
/// of all artists in file order; a negative picture number means the artist as
/// such, with no picture.

#include <KORVAutlwin/art/ArtInfo.h>

#include <QImage>
#include <QPoint>

#include <string>

namespace korva {

class ArtCatalogue
{
public:
    /// Appends the collections of every readable "*.tart" file in `folder`, in
    /// the order of the file names. A file that cannot be read is skipped
    /// without a word.
    void LoadPainters(const std::string& folder);
    /// Computes the largest sizes over all collections and makes artist 0 the
    /// preferred one when there is any artist.
    void Finish();

    /// The number of collections, plus 1 (the pseudo artist) if that is 2 or more.
    int GetNumArtists() const;
    /// -1 until Finish finds an artist.
    int GetPreferedArtist() const { return preferedArtist; }
    /// A number at or above GetNumArtists() becomes 0 if any artist exists, else -1.
    void SetPreferedArtist(int artist);
    /// The pictures of `artist`; for any higher number, of all artists together.
    int GetNumPaintings(int artist) const;

    /// The artist's name; "<Random>" for the pseudo artist with a negative
    /// picture; for a picture of the pseudo artist, the name of its artist;
    /// empty when the picture does not exist.
    std::string GetArtistName(int artist, int picture) const;
    /// Like GetArtistName, with an empty text for the pseudo artist as such.
    std::string GetArtistLifeSpan(int artist, int picture) const;
    /// The portrait of the artist (of the picture's artist for the pseudo
    /// artist); null when there is none. The caller owns the image.
    QImage GetArtistPortrait(int artist, int picture) const;
    /// The picture; null when it does not exist. The caller owns the image.
    QImage GetPainting(int artist, int picture) const;
    /// The picture's title; empty when it does not exist.
    std::string GetPaintingName(int artist, int picture) const;
    /// The largest maxPictureWidth (x) and maxPictureHeight (y) of all collections.
    QPoint GetMaxBitmapSize() const { return maxBitmapSize; }
    /// The largest maxPortraitWidth (x) and maxPortraitHeight (y) of all collections.
    QPoint GetMaxPortraitSize() const { return maxPortraitSize; }

    /// Turns (artist, picture) into a real artist and a number within its
    /// pictures; false when there is no such picture. A pseudo artist's
    /// picture is found by walking through the artists in order.
    bool ResolvePicture(int& artist, int& picture) const;

private:
    int NumCollections() const { return static_cast<int>(collections.GetCollections().size()); }
    const CollectionInfo& Collection(int artist) const { return collections.GetCollections()[static_cast<std::size_t>(artist)]; }
    int NumPictures(int artist) const { return static_cast<int>(Collection(artist).GetPictures().size()); }
    // ResolvePicture, and a picture number that names a picture (not the artist as such).
    bool ResolvePainting(int& artist, int& picture) const;

    ArtInfo collections;
    QPoint maxBitmapSize;
    QPoint maxPortraitSize;
    int preferedArtist = -1;
};

} // namespace korva
