// artpack: builds art collection files (".tart") from picture files, lists
// them and takes pictures out of them. The library reads these files; making
// them is left to this tool, which also fills in what a collection records
// about its pictures (largest sizes, the portrait's stream name).

#include <KORVAutlwin/art/ArtImage.h>
#include <KORVAutlwin/art/ArtInfo.h>

#include <KORVAutl/Exception.h>
#include <KORVAutl/TsFileUtl.h>
#include <KORVAutl/TsString.h>
#include <KORVAutl/UserComm.h>

#include <QImage>
#include <QString>

#include <algorithm>
#include <cstdio>
#include <exception>
#include <fstream>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

namespace {

const char* const kHelp = R"(Usage:
  artpack create FILE.tart COLLECTION...   write a new collection file (an existing one is replaced)
  artpack add FILE.tart COLLECTION...      append collections to FILE.tart (created when missing)
  artpack list FILE.tart                   show the collections and pictures of a file
  artpack extract FILE.tart C P OUTPUT     save picture P of collection C (both counted from 0;
                                           P may be "portrait") as OUTPUT, in the format its
                                           extension names (.png, .jpg, ...)
  artpack --help                           show this text

A COLLECTION is given by options, or read from a manifest:
  --artist NAME             start a collection by the artist NAME
  --life-span TEXT          the artist's life span, free text ("1840-1926")
  --portrait FILE           the artist's portrait (shrunk to fit 80 by 80 pixels)
  --portrait-rotation N     turn the portrait N quarter turns clockwise
  --picture FILE            add a painting (shrunk to fit 400 by 400 pixels)
  --title TEXT              the title of the painting before (default: its file name)
  --rotation N              turn the painting before N quarter turns clockwise
  --manifest FILE           read collections from FILE (see below)
  --base DIR                folder for relative paths of the manifests that follow
                            (default: each manifest's own folder)

A manifest has one "key = value" per line, with the option names above as keys
(without "--"); lines starting with "#" and empty lines are skipped. Each
"artist" line starts another collection:
  artist = Mira Halvorsen
  life-span = 1901-1977
  portrait = halvorsen.png
  picture = harbour.jpg
  title = Harbour at Dusk
  rotation = 1

Pictures are stored as JPEG at quality 75, never enlarged. Exit status: 0 done,
1 failed, 2 wrong use.
)";

// What the library tells the user goes to the terminal; a tool asks nothing.
struct ArtPackUserComm
{
    bool failed = false;
    TellingUserComm channel{[this](const char* text) {
        std::cerr << "artpack: " << text << "\n";
        failed = true;
    }};
};

struct PictureSource
{
    std::string path;
    std::string title;
    int rotation = 0;
};

struct CollectionSource
{
    std::string artist;
    std::string lifeSpan;
    std::string portrait;
    int portraitRotation = 0;
    std::vector<PictureSource> pictures;
};

class UsageError : public std::exception
{
public:
    explicit UsageError(std::string text) : mText(std::move(text)) {}
    const char* what() const noexcept override { return mText.c_str(); }

private:
    std::string mText;
};

std::string Trim(const std::string& text)
{
    const auto first = text.find_first_not_of(" \t\r");
    if (first == std::string::npos)
        return std::string();
    const auto last = text.find_last_not_of(" \t\r");
    return text.substr(first, last - first + 1);
}

int ToRotation(const std::string& text, const std::string& where)
{
    int value = 0;
    if (!TsString::ToInt(text.c_str(), value))
        throw UsageError(where + ": \"" + text + "\" is no number of quarter turns");
    return value;
}

std::string Resolve(const std::string& path, const std::string& base)
{
    if (path.empty() || path[0] == '/' || base.empty())
        return path;
    return TsPathAppend(base.c_str(), path.c_str());
}

std::string BaseName(const std::string& path)
{
    std::string name = TsGetFileName(path.c_str());
    const auto dot = name.rfind('.');
    return dot == std::string::npos || dot == 0 ? name : name.substr(0, dot);
}

// Gathers collections from options and manifest lines, which share their keys.
class CollectionReader
{
public:
    void Apply(const std::string& key, const std::string& value, const std::string& base, const std::string& where)
    {
        if (key == "artist") {
            mCollections.emplace_back();
            mCollections.back().artist = value;
            return;
        }
        if (key == "manifest") {
            ReadManifest(Resolve(value, base), where);
            return;
        }
        if (mCollections.empty())
            throw UsageError(where + ": \"" + key + "\" before the first \"artist\"");
        CollectionSource& collection = mCollections.back();
        if (key == "life-span")
            collection.lifeSpan = value;
        else if (key == "portrait")
            collection.portrait = Resolve(value, base);
        else if (key == "portrait-rotation")
            collection.portraitRotation = ToRotation(value, where);
        else if (key == "picture")
            collection.pictures.push_back({Resolve(value, base), BaseName(value), 0});
        else if (key == "title" || key == "rotation") {
            if (collection.pictures.empty())
                throw UsageError(where + ": \"" + key + "\" before the first \"picture\" of " + collection.artist);
            if (key == "title")
                collection.pictures.back().title = value;
            else
                collection.pictures.back().rotation = ToRotation(value, where);
        } else
            throw UsageError(where + ": unknown key \"" + key + "\"");
    }

    void SetManifestBase(const std::string& base) { mManifestBase = base; }
    const std::vector<CollectionSource>& Collections() const { return mCollections; }

private:
    void ReadManifest(const std::string& path, const std::string& where)
    {
        std::ifstream in(path);
        if (!in)
            throw UsageError(where + ": the manifest " + path + " cannot be read");
        const std::string base = mManifestBase.empty() ? TsGetDirectory(path.c_str()) : mManifestBase;
        std::string line;
        for (int number = 1; std::getline(in, line); ++number) {
            const std::string text = Trim(line);
            if (text.empty() || text[0] == '#')
                continue;
            const std::string at = path + ":" + std::to_string(number);
            const auto equals = text.find('=');
            if (equals == std::string::npos)
                throw UsageError(at + ": a line must read \"key = value\"");
            const std::string key = Trim(text.substr(0, equals));
            if (key == "manifest" || key == "base")
                throw UsageError(at + ": \"" + key + "\" is an option only");
            Apply(key, Trim(text.substr(equals + 1)), base, at);
        }
    }

    std::vector<CollectionSource> mCollections;
    std::string mManifestBase;
};

std::vector<CollectionSource> ReadCollections(int argc, char** argv, int first)
{
    CollectionReader reader;
    for (int i = first; i < argc; ++i) {
        const std::string option = argv[i];
        if (option.rfind("--", 0) != 0)
            throw UsageError("\"" + option + "\" is no option (options start with \"--\")");
        if (i + 1 >= argc)
            throw UsageError(option + " needs a value");
        const std::string value = argv[++i];
        if (option == "--base")
            reader.SetManifestBase(value);
        else
            reader.Apply(option.substr(2), value, std::string(), option);
    }
    if (reader.Collections().empty())
        throw UsageError("no collection given (start one with --artist or --manifest)");
    return reader.Collections();
}

// Turns the sources into the collections to store, with the sizes they will have.
void BuildArtInfo(const std::vector<CollectionSource>& sources, ArtInfo& art,
                  std::vector<std::vector<std::string>>& pictures, std::vector<std::vector<int>>& rotations,
                  std::vector<std::string>& portraits, std::vector<int>& portraitRotations)
{
    for (const CollectionSource& source : sources) {
        CollectionInfo collection;
        collection.SetArtistName(source.artist.c_str());
        collection.SetLifeSpan(source.lifeSpan.c_str());
        unsigned int maxWidth = 0;
        unsigned int maxHeight = 0;
        pictures.emplace_back();
        rotations.emplace_back();
        for (const PictureSource& picture : source.pictures) {
            // An unreadable picture is left to the library, which names it in its failure.
            const QSize size = korva::ArtImage::StoredSize(picture.path.c_str(), picture.rotation,
                                                           ArtInfo::nMaxPixWidth, ArtInfo::nMaxPixHeight);
            if (size.isValid()) {
                maxWidth = std::max(maxWidth, static_cast<unsigned int>(size.width()));
                maxHeight = std::max(maxHeight, static_cast<unsigned int>(size.height()));
            }
            PictureInfo info;
            info.SetTitle(picture.title.c_str());
            collection.AddPicture(info);
            pictures.back().push_back(picture.path);
            rotations.back().push_back(picture.rotation);
        }
        collection.SetMaxPictureSize(maxWidth, maxHeight);
        if (!source.portrait.empty()) {
            const QSize size = korva::ArtImage::StoredSize(source.portrait.c_str(), source.portraitRotation,
                                                           ArtInfo::nMaxPortraitWidth, ArtInfo::nMaxPortraitHeight);
            if (size.isValid())
                collection.SetMaxPortraitSize(static_cast<unsigned int>(size.width()),
                                              static_cast<unsigned int>(size.height()));
            collection.SetPortraitName(std::to_string(GetNearUniqueID()).c_str());
        }
        portraits.push_back(source.portrait);
        portraitRotations.push_back(source.portraitRotation);
        art.AddCollection(collection);
    }
}

int Store(ArtPackUserComm& app, const std::string& file, bool replace, int argc, char** argv)
{
    const std::vector<CollectionSource> sources = ReadCollections(argc, argv, 3);
    ArtInfo art;
    std::vector<std::vector<std::string>> pictures;
    std::vector<std::vector<int>> rotations;
    std::vector<std::string> portraits;
    std::vector<int> portraitRotations;
    BuildArtInfo(sources, art, pictures, rotations, portraits, portraitRotations);

    // A new file is built beside the old one and takes its place only when complete.
    const std::string target = replace ? file + ".artpack-new" : file;
    if (replace)
        std::remove(target.c_str());
    try {
        art.SaveToFile(target.c_str(), pictures, rotations, portraits, portraitRotations);
    } catch (...) {
        if (replace)
            std::remove(target.c_str());
        throw;
    }
    if (app.failed) {
        if (replace)
            std::remove(target.c_str());
        return 1;
    }
    if (replace && std::rename(target.c_str(), file.c_str()) != 0) {
        std::remove(target.c_str());
        std::cerr << "artpack: " << file << " could not be replaced\n";
        return 1;
    }
    std::size_t count = 0;
    for (const CollectionSource& source : sources)
        count += source.pictures.size();
    std::cout << file << ": " << sources.size() << (sources.size() == 1 ? " collection" : " collections")
              << " with " << count << (count == 1 ? " picture" : " pictures") << " written\n";
    return 0;
}

std::unique_ptr<const ArtInfo> Read(const std::string& file)
{
    std::unique_ptr<const ArtInfo> art(ArtInfo::ReadArtInfo(file.c_str()));
    if (!art)
        std::cerr << "artpack: " << file << " is no art collection file\n";
    return art;
}

int List(const std::string& file)
{
    const std::unique_ptr<const ArtInfo> art = Read(file);
    if (!art)
        return 1;
    const std::vector<CollectionInfo>& collections = art->GetCollections();
    std::cout << file << ": " << collections.size() << (collections.size() == 1 ? " collection" : " collections")
              << "\n";
    for (std::size_t i = 0; i < collections.size(); ++i) {
        const CollectionInfo& collection = collections[i];
        std::cout << "collection " << i << ": " << collection.GetArtistName();
        if (!collection.GetLifeSpan().empty())
            std::cout << " (" << collection.GetLifeSpan() << ")";
        std::cout << "\n  pictures up to " << collection.GetMaxPictureWidth() << "x"
                  << collection.GetMaxPictureHeight() << "\n  portrait ";
        if (collection.GetPortraitName().empty())
            std::cout << "none\n";
        else
            std::cout << collection.GetMaxPortraitWidth() << "x" << collection.GetMaxPortraitHeight() << " in stream "
                      << collection.GetPortraitName() << "\n";
        const std::vector<PictureInfo>& pictures = collection.GetPictures();
        for (std::size_t j = 0; j < pictures.size(); ++j)
            std::cout << "  " << j << ": " << pictures[j].GetTitle() << " (stream " << pictures[j].GetFileName()
                      << ")\n";
    }
    return 0;
}

int Extract(const std::string& file, const std::string& collectionText, const std::string& pictureText,
            const std::string& output)
{
    int collection = 0;
    int picture = 0;
    const bool portrait = pictureText == "portrait";
    if (!TsString::ToInt(collectionText.c_str(), collection) ||
        (!portrait && !TsString::ToInt(pictureText.c_str(), picture)))
        throw UsageError("extract needs a collection number and a picture number or \"portrait\"");
    const std::unique_ptr<const ArtInfo> art = Read(file);
    if (!art)
        return 1;
    const QImage image = portrait ? art->GetIcon(collection) : art->GetImage(collection, picture);
    if (image.isNull()) {
        std::cerr << "artpack: " << file << " has no " << (portrait ? "portrait" : "picture " + pictureText)
                  << " in collection " << collectionText << "\n";
        return 1;
    }
    if (!image.save(QString::fromStdString(output))) {
        std::cerr << "artpack: " << output << " could not be written\n";
        return 1;
    }
    std::cout << output << ": " << image.width() << "x" << image.height() << "\n";
    return 0;
}

int Run(ArtPackUserComm& app, int argc, char** argv)
{
    const std::string command = argc > 1 ? argv[1] : "";
    if (command == "--help" || command == "-h" || command == "help") {
        std::cout << kHelp;
        return 0;
    }
    if (command == "create" || command == "add") {
        if (argc < 3)
            throw UsageError(command + " needs a file name");
        return Store(app, argv[2], command == "create", argc, argv);
    }
    if (command == "list") {
        if (argc != 3)
            throw UsageError("list needs exactly one file name");
        return List(argv[2]);
    }
    if (command == "extract") {
        if (argc != 6)
            throw UsageError("extract needs a file, a collection, a picture and an output file");
        return Extract(argv[2], argv[3], argv[4], argv[5]);
    }
    throw UsageError(command.empty() ? "no command given" : "unknown command \"" + command + "\"");
}

} // namespace

int main(int argc, char** argv)
{
    ArtPackUserComm app;
    try {
        return Run(app, argc, argv);
    } catch (const UsageError& error) {
        std::cerr << "artpack: " << error.what() << "\n(artpack --help tells how to use it)\n";
        return 2;
    } catch (const Exception& error) {
        std::cerr << "artpack: " << error.RecursiveWhy() << "\n";
    } catch (const std::exception& error) {
        std::cerr << "artpack: " << error.what() << "\n";
    }
    return 1;
}
