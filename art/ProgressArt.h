#pragma once
/// \class ProgressArt
/// The process-wide catalogue of the pictures that decorate progress: every
/// ".tart" file beside the application's executable and in the application's
/// plug-in folder, merged into one list of artists and their paintings. The
/// break window asks for pictures from its own thread, so every operation is
/// guarded by one mutex; the pictures are read from disk while it is held.
///
/// The files are looked for at the first call, once; a file added later is seen
/// at the next start. Artist and picture numbers follow korva::ArtCatalogue:
/// with two or more collections the artist number GetNumArtists()-1 is the
/// pseudo artist "<Random>", whose pictures run through those of all artists.
/// Images belong to the caller.

#include <KORVAutlwin/art/ArtCatalogue.h>

#include <QImage>
#include <QPoint>

#include <functional>
#include <mutex>
#include <string>

class ProgressArt
{
public:
    ProgressArt() = delete;

    /// Where the application keeps its plug-ins: asked once, at the first load.
    /// The application object sets it; without one only the executable's folder is searched.
    static void SetPluginFolder(std::function<std::string()> folder);
    /// Loads the collections, once; every other operation runs it first.
    static void Init();

    static int GetNumArtists();
    static int GetPreferedArtist();
    /// A number at or above GetNumArtists() becomes 0 if any artist exists, else -1.
    /// Keeping the choice between runs is the application's business.
    static void SetPreferedArtist(int artist);
    static int GetNumPaintings(int artist);
    static std::string GetArtistName(int artist, int picture);
    static std::string GetArtistLifeSpan(int artist, int picture);
    static QImage GetArtistPortrait(int artist, int picture);
    static QImage GetPainting(int artist, int picture);
    static std::string GetPaintingName(int artist, int picture);
    /// The largest picture and portrait sizes of all collections; (0, 0) without any.
    static QPoint GetMaxBitmapSize();
    static QPoint GetMaxPortraitSize();

private:
    // Lives to the end of the process: the break window may still ask late.
    static korva::ArtCatalogue& Catalogue();

    static bool msInitialized;
    static std::mutex msLock;
    static std::function<std::string()> msPluginFolder;
};
