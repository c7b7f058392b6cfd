#include <KORVAutlwin/art/ProgressArt.h>

#include <KORVAutl/TsFileUtl.h>

#include <filesystem>

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
    const std::string executableFolder = TsGetExecutableDirectory();
    catalogue.LoadPainters(executableFolder);
    if (msPluginFolder) {
        const std::string pluginFolder = msPluginFolder();
        // A plug-in folder that is the executable's own would bring every artist twice.
        std::error_code error;
        if (!pluginFolder.empty() && !std::filesystem::equivalent(pluginFolder, executableFolder, error))
            catalogue.LoadPainters(pluginFolder);
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
