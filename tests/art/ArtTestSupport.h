#pragma once
// Helpers of the art tests: source pictures, collections, and compound files with descriptions of our own.

#include "../utl/TempDir.h"

#include <KORVAutl/UserComm.h>
#include <KORVAutlwin/art/ArtInfo.h>
#include <KORVAutlwin/art/ArtStorageWriter.h>

#include <QPainter>

#include <atomic>
#include <stdexcept>

namespace korva::test {

inline std::string WritePicture(const std::string& path, int width, int height, QColor left = Qt::red,
                                QColor right = Qt::blue)
{
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(right);
    QPainter(&image).fillRect(0, 0, width / 2, height, left);
    if (!image.save(QString::fromStdString(path), "PNG"))
        throw std::runtime_error("cannot write " + path);
    return path;
}

inline CollectionInfo MakeCollection(const std::string& artist, const std::vector<std::string>& titles,
                                     const std::string& portraitName = std::string())
{
    CollectionInfo collection;
    collection.SetArtistName(artist.c_str());
    collection.SetLifeSpan(("life of " + artist).c_str());
    collection.SetPortraitName(portraitName.c_str());
    for (const std::string& title : titles) {
        PictureInfo picture;
        picture.SetTitle(title.c_str());
        collection.AddPicture(picture);
    }
    return collection;
}

/// Saves `art` into `path` with `source` for every picture and `portrait` for every portrait, no rotation.
inline void SaveWithPicture(const ArtInfo& art, const std::string& path, const std::string& source,
                            const std::string& portrait = std::string())
{
    std::vector<std::vector<std::string>> pictures;
    std::vector<std::vector<int>> rotations;
    for (const CollectionInfo& collection : art.GetCollections()) {
        pictures.emplace_back(collection.GetPictures().size(), source);
        rotations.emplace_back(collection.GetPictures().size(), 0);
    }
    const std::size_t count = art.GetCollections().size();
    art.SaveToFile(path.c_str(), pictures, rotations, std::vector<std::string>(count, portrait),
                   std::vector<int>(count, 0));
}

inline void WriteArtFile(const std::string& path, const std::string& description, bool withDescription = true)
{
    korva::ArtStorageWriter writer(path);
    if (withDescription)
        writer.WriteStream("ArtInfo", description.data(), description.size());
    writer.WriteStream("other", "x", 1);
    if (!writer.Commit())
        throw std::runtime_error("cannot write " + path);
}

inline std::unique_ptr<const ArtInfo> Read(const std::string& path)
{
    return std::unique_ptr<const ArtInfo>(ArtInfo::ReadArtInfo(path.c_str()));
}

/// A line per collection: "artist|life|WxH|PWxPH|portrait|title:stream|..."; no stream names without `streams`.
inline std::string Describe(const ArtInfo& art, bool streams = true)
{
    std::string text;
    for (const CollectionInfo& c : art.GetCollections()) {
        text += c.GetArtistName() + "|" + c.GetLifeSpan() + "|" + std::to_string(c.GetMaxPictureWidth()) + "x" +
                std::to_string(c.GetMaxPictureHeight()) + "|" + std::to_string(c.GetMaxPortraitWidth()) + "x" +
                std::to_string(c.GetMaxPortraitHeight()) + (streams ? "|" + c.GetPortraitName() : "");
        for (const PictureInfo& picture : c.GetPictures())
            text += "|" + picture.GetTitle() + (streams ? ":" + picture.GetFileName() : "");
        text += "\n";
    }
    return text;
}

/// Whether the colour at `at` (read back from a JPEG) is `expected`, within the loss of the encoding.
inline bool Near(const QImage& image, QPoint at, QColor expected)
{
    const QColor actual = image.pixelColor(at);
    return std::max({std::abs(actual.red() - expected.red()), std::abs(actual.green() - expected.green()),
                     std::abs(actual.blue() - expected.blue())}) < 40;
}

/// How many calls of `wrong(thread, round)`, `rounds` on each of four threads at once, found something wrong.
inline int WrongOnFourThreads(int rounds, const std::function<bool(int, int)>& wrong)
{
    std::atomic<int> count{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([&, t] {
            for (int i = 0; i < rounds; ++i)
                count += wrong(t, i);
        });
    for (std::thread& thread : threads)
        thread.join();
    return count;
}

/// A user channel that keeps what it is told instead of showing it.
struct MessageCatcher
{
    std::vector<std::string> messages;
    TellingUserComm channel{[this](const char* text) { messages.emplace_back(text); }};
};

} // namespace korva::test
