#include <KORVAutlwin/art/ProgressArt.h>

#include <KORVAutl/TsFileUtl.h>

#include <algorithm>
#include <filesystem>
#include <vector>

bool ProgressArt::msInitialized = false;
std::mutex ProgressArt::msLock;
std::function<std::string()> ProgressArt::msPluginFolder;

korva::ArtCatalogue& ProgressArt::Catalogue()
{
    static korva::ArtCatalogue* catalogue = new korva::ArtCatalogue;
    return *catalogue;
}

void ProgressArt::SetPluginFolder(std::function<std::string()> folder)
{
    const std::lock_guard<std::mutex> guard(msLock);
    msPluginFolder = std::move(folder);
}

void ProgressArt::Init()
{
    const std::lock_guard<std::mutex> guard(msLock);
    if (msInitialized)
        return;
    msInitialized = true;
    korva::ArtCatalogue& catalogue = Catalogue();
    // The executable's folder, the application's plug-in folder and the installed
    // library's data folder; a folder met twice would bring every artist twice.
    std::vector<std::string> folders{TsGetExecutableDirectory()};
    if (msPluginFolder)
        folders.push_back(msPluginFolder());
    folders.push_back(TsGetLibraryDataDirectory());
    std::vector<std::string> loaded;
    for (const std::string& folder : folders) {
        std::error_code error;
        if (folder.empty() || !std::filesystem::is_directory(folder, error))
            continue;
        const bool seen = std::any_of(loaded.begin(), loaded.end(), [&](const std::string& earlier) {
            return std::filesystem::equivalent(folder, earlier, error);
        });
        if (seen)
            continue;
        catalogue.LoadPainters(folder);
        loaded.push_back(folder);
    }
    catalogue.Finish();
}

int ProgressArt::GetNumArtists()
{
    Init();
    const std::lock_guard<std::mutex> guard(msLock);
    return Catalogue().GetNumArtists();
}

int ProgressArt::GetPreferedArtist()
{
    Init();
    const std::lock_guard<std::mutex> guard(msLock);
    return Catalogue().GetPreferedArtist();
}

void ProgressArt::SetPreferedArtist(int artist)
{
    Init();
    const std::lock_guard<std::mutex> guard(msLock);
    Catalogue().SetPreferedArtist(artist);
}

int ProgressArt::GetNumPaintings(int artist)
{
    Init();
    const std::lock_guard<std::mutex> guard(msLock);
    return Catalogue().GetNumPaintings(artist);
}

std::string ProgressArt::GetArtistName(int artist, int picture)
{
    Init();
    const std::lock_guard<std::mutex> guard(msLock);
    return Catalogue().GetArtistName(artist, picture);
}

std::string ProgressArt::GetArtistLifeSpan(int artist, int picture)
{
    Init();
    const std::lock_guard<std::mutex> guard(msLock);
    return Catalogue().GetArtistLifeSpan(artist, picture);
}

QImage ProgressArt::GetArtistPortrait(int artist, int picture)
{
    Init();
    const std::lock_guard<std::mutex> guard(msLock);
    return Catalogue().GetArtistPortrait(artist, picture);
}

QImage ProgressArt::GetPainting(int artist, int picture)
{
    Init();
    const std::lock_guard<std::mutex> guard(msLock);
    return Catalogue().GetPainting(artist, picture);
}

std::string ProgressArt::GetPaintingName(int artist, int picture)
{
    Init();
    const std::lock_guard<std::mutex> guard(msLock);
    return Catalogue().GetPaintingName(artist, picture);
}

// The sizes are fixed once Init has run, so they are read without the lock.
QPoint ProgressArt::GetMaxBitmapSize()
{
    Init();
    return Catalogue().GetMaxBitmapSize();
}

QPoint ProgressArt::GetMaxPortraitSize()
{
    Init();
    return Catalogue().GetMaxPortraitSize();
}
