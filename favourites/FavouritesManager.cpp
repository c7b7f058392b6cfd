#include <KORVAutlwin/favourites/FavouritesManager.h>

#include <KORVAutlwin/favourites/FavouriteApplication.h>
#include <KORVAutlwin/favourites/FavouriteCommandItem.h>
#include <KORVAutlwin/favourites/FavouriteFileItem.h>
#include <KORVAutlwin/favourites/FavouriteFolderItem.h>
#include <KORVAutlwin/favourites/FavouritesTreeRows.h>

#include <KORVAutl/Exception.h>
#include <KORVAutl/LanguageString.h>
#include <KORVAutl/ResourceModule.h>
#include <KORVAutl/TsString.h>
#include <KORVAutl/XMLSection.h>

#include <QAbstractFileIconProvider>
#include <QFileInfo>
#include <QGuiApplication>
#include <QIcon>

#include <memory>

namespace {

constexpr unsigned int kStandardBitmap = 16004;
constexpr unsigned int kStandardBitmapFallback = 16003;
constexpr QRgb kStandardMask = 0xFFFF00FF;   // RGB(255,0,255)
constexpr QRgb kButtonFace = 0xFFC0C0C0;     // the face tool bar bitmaps are drawn on
constexpr int kImageSize = 16;

// Texts of Open's failure summary and of a missing item.
constexpr unsigned int kSomeFailed = 16149;
constexpr unsigned int kNoneOpened = 16150;
constexpr unsigned int kOneFailed = 16151;
constexpr unsigned int kMissingItem = 16152;

// The framework's window arrangement commands: after them the user's arrangement stands.
constexpr int kWindowCascade = 0xE132;
constexpr int kWindowTileHorz = 0xE133;
constexpr int kWindowTileVert = 0xE134;

const char* FindResource(unsigned int id, const char* type, std::size_t& size)
{
    if (const char* data = LanguageString::GetModule()->FindResource(id, type, &size))
        return data;
    return korva::EnglishResourceModule().FindResource(id, type, &size);
}

QImage LoadBitmap(unsigned int id)
{
    std::size_t size = 0;
    const char* data = FindResource(id, "PNG", size);
    QImage picture;
    if (data)
        picture.loadFromData(reinterpret_cast<const uchar*>(data), static_cast<int>(size), "PNG");
    return picture;
}

// Cuts a strip into pictures `width` wide; pixels of `mask` become transparent.
// At most `limit` pictures (all with -1).
int AddStrip(const QImage& strip, int width, QRgb mask, FavouritesManager::ImageList& images, int limit = -1)
{
    if (strip.isNull() || width <= 0)
        return 0;
    const QImage picture = strip.convertToFormat(QImage::Format_ARGB32);
    int added = 0;
    for (int x = 0; x + width <= picture.width() && (limit < 0 || added < limit); x += width, ++added) {
        QImage image = picture.copy(x, 0, width, picture.height());
        for (int y = 0; y < image.height(); ++y) {
            auto* line = reinterpret_cast<QRgb*>(image.scanLine(y));
            for (int i = 0; i < width; ++i)
                if ((line[i] | 0xFF000000) == mask)
                    line[i] = 0;
        }
        images.push_back(image);
    }
    return added;
}

unsigned int Word(const unsigned char* data) { return data[0] | (data[1] << 8); }

} // namespace

FavouritesManager::FavouritesManager()
{
    if (AddStrip(LoadBitmap(kStandardBitmap), kImageSize, kStandardMask, standardImages) == 0)
        AddStrip(LoadBitmap(kStandardBitmapFallback), kImageSize, kStandardMask, standardImages);
}

FavouritesManager::~FavouritesManager()
{
    if (tree && tree->GetFavouritesManager() == this)
        tree->SetFavouritesManager(nullptr);
}

const char* FavouritesManager::GetFavouriteItemSectionKey() { return "FavouriteItem"; }
const char* FavouritesManager::GetRootSectionKey() { return "Favourites"; }

bool FavouritesManager::SaveFavourites(const std::string& file, int collection) const
{
    const std::unique_ptr<XMLSection> section(new XMLSection(file.c_str(), true));
    SaveFavouriteNode(section.get(), collection);
    return section->Flush();
}

bool FavouritesManager::LoadFavourites(const std::string& file, int collection)
{
    if (tree)
        DeleteFavouriteNode(collection);
    const std::unique_ptr<XMLSection> section(new XMLSection(file.c_str(), true));
    LoadFavouriteNode(section.get(), collection);
    // The tree reports its own trouble, and a bad file has thrown already.
    return true;
}

void FavouritesManager::OnInitialUpdate() {}
void FavouritesManager::OnDestroy() {}

bool FavouritesManager::OnAddToFavourites(FavouriteItem*, int& collection)
{
    collection = -1;
    return true;
}

void FavouritesManager::OnFavouritesChanged(int) {}

void FavouritesManager::LoadFavouriteNode(ConfigurationSection* section, int collection)
{
    if (tree)
        tree->Serialize(section, false, collection);
}

void FavouritesManager::SaveFavouriteNode(ConfigurationSection* section, int collection) const
{
    if (tree)
        tree->Serialize(section, true, collection);
}

void FavouritesManager::DeleteFavouriteNode(int collection)
{
    if (tree)
        tree->DeleteFavouriteNode(collection);
}

void FavouritesManager::Serialize(ConfigurationSection* section, bool store)
{
    if (tree)
        tree->Serialize(section, store, -1);
}

void FavouritesManager::RemoveAll()
{
    if (tree)
        tree->DeleteTree();
}

const QImage& FavouritesManager::StandardImage(int index) const
{
    static const QImage none;
    return index >= 0 && index < static_cast<int>(standardImages.size()) ? standardImages[index] : none;
}

void FavouritesManager::GetIcon(const FavouriteItem* item, QImage& normal, QImage& selected)
{
    if (!item) {
        normal = selected = StandardImage(eNoItem);
        return;
    }
    normal = selected = QImage();
    const auto* folder = dynamic_cast<const FavouriteFolderItem*>(item);
    if (folder) {
        if (!folder->GetTreatAsItem()) {
            normal = StandardImage(eFolder);
            selected = StandardImage(eFolderSelected);
        } else {
            normal = StandardImage(eFolderAsItem);
        }
    } else if (item->GetType() != "RootItem") {
        bool looked = false;
        if (const auto* command = dynamic_cast<const FavouriteCommandItem*>(item)) {
            looked = true;
            if (!commandImagesLoaded)
                LoadCommandImageList();
            const auto found = commandImageMap.find(static_cast<unsigned short>(command->GetCommandID()));
            normal = found != commandImageMap.end() && found->second < static_cast<int>(commandImages.size())
                         ? commandImages[found->second]
                         : StandardImage(eCommand);
        } else if (const auto* file = dynamic_cast<const FavouriteFileItem*>(item)) {
            looked = true;
            // The desktop's icon of the document's kind needs a running GUI.
            if (qGuiApp && !file->GetFileName().empty()) {
                static QAbstractFileIconProvider provider;
                const QIcon icon = provider.icon(QFileInfo(QString::fromStdString(file->GetFileName())));
                if (!icon.isNull())
                    normal = icon.pixmap(kImageSize, kImageSize).toImage();
            }
        }
        if (looked && normal.isNull())
            normal = StandardImage(eNoIcon);
    }
    if (normal.isNull())
        normal = StandardImage(item->IsGlobal() ? eGlobalItem : eItem);
    if (selected.isNull())
        selected = normal;
}

void FavouritesManager::LoadCommandImageList()
{
    if (tree)
        for (unsigned int toolbarId : tree->GetToolbarIDs())
            LoadToolBar(toolbarId, commandImages, commandImageMap);
    commandImagesLoaded = true;
}

bool FavouritesManager::LoadToolBar(unsigned int toolbarId, ImageList& images, CommandImageMap& map)
{
    // The tool bar resource: version, width, height and item count, then one
    // command id per item (0 a separator), each a little-endian 16-bit word.
    std::size_t size = 0;
    const auto* data = reinterpret_cast<const unsigned char*>(FindResource(toolbarId, "TOOLBAR", size));
    if (!data || size < 8)
        return false;
    const int width = static_cast<int>(Word(data + 2));
    const unsigned int itemCount = Word(data + 6);
    if (width <= 0 || size < 8 + 2 * static_cast<std::size_t>(itemCount))
        return false;
    const QImage bitmap = LoadBitmap(toolbarId);
    if (bitmap.isNull())
        return false;

    int index = static_cast<int>(images.size());
    const int added = AddStrip(bitmap, width, kButtonFace, images);
    const int end = index + added;
    for (unsigned int i = 0; i < itemCount && index < end; ++i) {
        const unsigned int commandId = Word(data + 8 + 2 * i);
        if (commandId != 0)
            map[static_cast<unsigned short>(commandId)] = index++;
    }
    return true;
}

void FavouritesManager::Open(std::vector<FavouriteItem*>* itemsToOpen)
{
    const std::vector<FavouriteItem*> items = itemsToOpen ? *itemsToOpen : std::vector<FavouriteItem*>();
    const FavouriteApplication& application = FavouriteApplication::Get();

    const std::vector<QWidget*> noted = application.getMDIChildWnds ? application.getMDIChildWnds()
                                                                     : std::vector<QWidget*>();
    const bool lock = items.size() > 1 && application.lockWindowUpdate;
    if (lock)
        application.lockWindowUpdate(true);

    std::vector<QWidget*> frames;
    bool tileAfterwards = true;
    int opened = 0;
    std::string failures;
    for (std::size_t i = 0; i < items.size(); ++i) {
        FavouriteItem* item = items[i];
        try {
            if (!item)
                throw Exception(TsString::Format(kMissingItem, static_cast<int>(i + 1)));
            if (!item->Enable())
                throw Exception("Not available.");
            if (QWidget* frame = item->Open())
                frames.push_back(frame);
            ++opened;
            if (const auto* command = dynamic_cast<const FavouriteCommandItem*>(item)) {
                const int id = command->GetCommandID();
                if (id == kWindowCascade || id == kWindowTileHorz || id == kWindowTileVert)
                    tileAfterwards = false;
            }
        } catch (const Exception& e) {
            const std::string text = e.RecursiveWhy();
            const std::string line = item ? item->GetName() + ": " + text : text;
            failures += failures.empty() ? line : "\r\n" + line;
            if (!item)
                break;
        }
    }

    if (frames.size() > 1 && application.arrangeOpenedFrames)
        application.arrangeOpenedFrames(noted, frames, tileAfterwards);
    if (lock)
        application.lockWindowUpdate(false);
    if (!failures.empty() && application.showDetails) {
        const unsigned int summary = items.size() == 1 ? kOneFailed : opened > 0 ? kSomeFailed : kNoneOpened;
        application.showDetails(LanguageString::Get(summary), failures);
    }
    for (FavouriteItem* item : items)
        delete item;
}
