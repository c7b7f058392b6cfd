// Art collection files against plain JPEG files, in the same run.
//
// The break window shows a new picture every 15 seconds; each one costs
// GetImage: open the compound file, find the stream, read and decode the JPEG.
// Its peer is QImage decoding the very same JPEG bytes from a plain file, so
// the difference is what the collection file adds. Reading the description of
// a file with 200 pictures is what ProgressArt pays per file at start.

#include <KORVAutlwin/art/ArtInfo.h>
#include <KORVAutlwin/art/ArtStorageReader.h>

#include <QImage>
#include <QString>

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

namespace {

constexpr int kPictures = 200;
constexpr int kPicture = kPictures / 2;

char gFolder[64] = "/tmp/korva-art-bench-XXXXXX";

struct Files
{
    std::string collection;
    std::string plainJpeg;
};

// A painting-like source of 600 by 450 (stored at 400 by 300): smooth colour
// fields with fine detail, which is what JPEG sees in the shipped pictures.
QImage Source()
{
    QImage image(600, 450, QImage::Format_RGB32);
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            image.setPixel(x, y, qRgb((x * 255) / 600, (y * 255) / 450,
                                      static_cast<int>(127 + 120 * std::sin(x / 9.0) * std::cos(y / 13.0))));
    return image;
}

const Files& Prepare()
{
    static const Files files = [] {
        const std::string folder = ::mkdtemp(gFolder) ? gFolder : "/tmp";
        std::atexit([] {
            std::error_code ignored;
            std::filesystem::remove_all(gFolder, ignored);
        });
        const std::string source = folder + "/source.png";
        Source().save(QString::fromStdString(source), "PNG");

        ArtInfo art;
        CollectionInfo collection;
        collection.SetArtistName("Bench Painter");
        collection.SetLifeSpan("1900-1990");
        collection.SetMaxPictureSize(400, 300);
        for (int i = 0; i < kPictures; ++i) {
            PictureInfo picture;
            picture.SetTitle(("Study No. " + std::to_string(i)).c_str());
            collection.AddPicture(picture);
        }
        art.AddCollection(collection);
        Files made{folder + "/bench.tart", folder + "/plain.jpg"};
        art.SaveToFile(made.collection.c_str(), {std::vector<std::string>(kPictures, source)},
                       {std::vector<int>(kPictures, 0)}, {""}, {0});

        // The same bytes as the stream of the picture that GetImage reads.
        std::string jpeg;
        korva::ArtStorageReader(made.collection)
            .ReadStream(collection.GetPictures()[kPicture].GetFileName(), jpeg);
        std::ofstream(made.plainJpeg, std::ios::binary) << jpeg;
        return made;
    }();
    return files;
}

void BM_ReadArtInfo_200Pictures(benchmark::State& state)
{
    const Files& files = Prepare();
    for (auto _ : state) {
        std::unique_ptr<const ArtInfo> art(ArtInfo::ReadArtInfo(files.collection.c_str()));
        if (!art || art->GetCollections()[0].GetPictures().size() != kPictures)
            state.SkipWithError("description not read");
        benchmark::DoNotOptimize(art);
    }
}
BENCHMARK(BM_ReadArtInfo_200Pictures)->Unit(benchmark::kMicrosecond);

void BM_GetImage_ArtFile(benchmark::State& state)
{
    const Files& files = Prepare();
    std::unique_ptr<const ArtInfo> art(ArtInfo::ReadArtInfo(files.collection.c_str()));
    for (auto _ : state) {
        const QImage image = art->GetImage(0, kPicture);
        if (image.width() != 400)
            state.SkipWithError("picture not read");
        benchmark::DoNotOptimize(image.constBits());
    }
}
BENCHMARK(BM_GetImage_ArtFile)->Unit(benchmark::kMicrosecond);

void BM_DecodePlainJpeg_QImage(benchmark::State& state)
{
    const QString path = QString::fromStdString(Prepare().plainJpeg);
    for (auto _ : state) {
        const QImage image(path);
        if (image.width() != 400)
            state.SkipWithError("picture not read");
        benchmark::DoNotOptimize(image.constBits());
    }
}
BENCHMARK(BM_DecodePlainJpeg_QImage)->Unit(benchmark::kMicrosecond);

} // namespace
