// A favourites file of 10,000 items (100 folders of 99 documents and
// commands), loaded into a tree and saved from it through FavouritesManager,
// each beside the floor in the same run: one QXmlStreamReader pass that reads
// every attribute of every item, and one QXmlStreamWriter pass that writes the
// same elements and attributes to a file.

#include <KORVAutlwin/favourites/FavouriteCommandItem.h>
#include <KORVAutlwin/favourites/FavouriteFileItem.h>
#include <KORVAutlwin/favourites/FavouriteFolderItem.h>
#include <KORVAutlwin/favourites/FavouritesDocument.h>
#include <KORVAutlwin/favourites/FavouritesManager.h>

#include <QFile>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

namespace {

constexpr int kFolders = 100;
constexpr int kPerFolder = 99;

char gFolder[64] = "/tmp/korva-bench-XXXXXX";

std::string File(const char* name)
{
    static const std::string folder = [] {
        const std::string made = ::mkdtemp(gFolder) ? gFolder : "/tmp";
        std::atexit([] {
            std::error_code ignored;
            std::filesystem::remove_all(gFolder, ignored);
        });
        return made;
    }();
    return folder + "/" + name;
}

// The tree of 10,000 rows, written once as the file both loads read.
struct Favourites
{
    FavouritesManager manager;
    FavouritesDocument tree;

    Favourites()
    {
        tree.SetFavouritesManager(&manager);
        for (int f = 0; f < kFolders; ++f) {
            FavouriteRow* folder = tree.InsertItem("Folder " + std::to_string(f), nullptr, nullptr);
            tree.SetItemData(folder, new FavouriteTreeNode{new FavouriteFolderItem("", "Nothing here"), 1});
            for (int i = 0; i < kPerFolder; ++i) {
                const std::string name = "Favourite " + std::to_string(f * kPerFolder + i);
                FavouriteItem* item = i % 3 ? static_cast<FavouriteItem*>(new FavouriteFileItem(
                                                  "", ("/srv/data/project/" + name + ".tsx").c_str()))
                                            : new FavouriteCommandItem("", 32768 + i);
                FavouriteRow* row = tree.InsertItem(name, folder, nullptr);
                tree.SetItemData(row, new FavouriteTreeNode{item, 1});
            }
            tree.SetItemStyle(folder, FavouritesTreeRows::kStyleExpanded);
        }
        manager.SaveFavourites(File("favourites.xml"), 1);
    }
};

Favourites& Shared()
{
    static Favourites favourites;
    return favourites;
}

void LoadFavourites(benchmark::State& state)
{
    Favourites& favourites = Shared();
    FavouritesManager manager;
    FavouritesDocument tree;
    tree.SetFavouritesManager(&manager);
    for (auto _ : state) {
        // Each load replaces the collection: the rows of the last round go first.
        manager.LoadFavourites(File("favourites.xml"), 1);
        benchmark::DoNotOptimize(tree.GetCount());
    }
    if (tree.GetCount() != favourites.tree.GetCount())
        state.SkipWithError("not every row was loaded");
}

void ReadFloor(benchmark::State& state)
{
    Shared();
    for (auto _ : state) {
        QFile file(QString::fromStdString(File("favourites.xml")));
        file.open(QIODevice::ReadOnly);
        QXmlStreamReader reader(&file);
        std::vector<std::string> values;
        while (reader.readNextStartElement() || !reader.atEnd()) {
            if (reader.isStartElement())
                for (const QXmlStreamAttribute& attribute : reader.attributes())
                    values.push_back(attribute.value().toString().toStdString());
            else
                reader.readNext();
        }
        benchmark::DoNotOptimize(values.size());
    }
}

void SaveFavourites(benchmark::State& state)
{
    Favourites& favourites = Shared();
    for (auto _ : state)
        benchmark::DoNotOptimize(favourites.manager.SaveFavourites(File("saved.xml"), 1));
}

void WriteFloor(benchmark::State& state)
{
    Favourites& favourites = Shared();
    FavouritesDocument& tree = favourites.tree;
    for (auto _ : state) {
        QFile file(QString::fromStdString(File("floor.xml")));
        file.open(QIODevice::WriteOnly | QIODevice::Truncate);
        QXmlStreamWriter writer(&file);
        writer.writeStartDocument();
        writer.writeStartElement("Tessmark");
        writer.writeStartElement("Favourites");
        for (FavouriteRow* row = tree.GetRootItem(); row; row = tree.GetNextItem(row)) {
            const FavouriteItem* item = tree.GetFavouriteItem(row);
            writer.writeStartElement("FavouriteItem");
            writer.writeAttribute("Name", QString::fromStdString(tree.GetItemText(row)));
            writer.writeAttribute("Type", QString::fromStdString(item->GetType()));
            if (const auto* document = dynamic_cast<const FavouriteFileItem*>(item))
                writer.writeAttribute("File", QString::fromStdString(document->GetFileName()));
            else if (const auto* command = dynamic_cast<const FavouriteCommandItem*>(item))
                writer.writeAttribute("CommandID", QString::number(command->GetCommandID()));
            else if (const auto* folder = dynamic_cast<const FavouriteFolderItem*>(item)) {
                writer.writeAttribute("TreatAsItem", folder->GetTreatAsItem() ? "1" : "0");
                writer.writeAttribute("EmptyFolderText", QString::fromStdString(folder->GetEmptyFolderText()));
                writer.writeAttribute("DefaultItemType", QString::fromStdString(folder->GetDefaultItemType()));
            }
            writer.writeAttribute("_IndentLevel", QString::number(tree.GetIndentLevel(row)));
            writer.writeAttribute("_Style", QString::number(tree.GetItemStyle(row)));
            writer.writeEndElement();
        }
        writer.writeEndDocument();
        file.close();
        benchmark::DoNotOptimize(file.size());
    }
}

} // namespace

BENCHMARK(LoadFavourites)->Unit(benchmark::kMillisecond);
BENCHMARK(ReadFloor)->Unit(benchmark::kMillisecond);
BENCHMARK(SaveFavourites)->Unit(benchmark::kMillisecond);
BENCHMARK(WriteFloor)->Unit(benchmark::kMillisecond);
