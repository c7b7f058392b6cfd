#pragma once
/// \class FavouritesManager
/// The application's side of favourites. The rows live in the tree; the
/// manager holds the pictures, loads and saves collections of rows through
/// the tree, and opens items. An application derives from it to decide what
/// happens when something is added, changed or opened.
///
/// A collection is the set of rows with one id; each goes to a file of its
/// own. -1 is used where no collection is named. Every forwarder does nothing
/// while no tree is attached.

#include <QImage>

#include <map>
#include <string>
#include <vector>

class ConfigurationSection;
class FavouriteItem;
class FavouritesTreeRows;

class FavouritesManager
{
public:
    /// Pictures in the order of an image list.
    using ImageList = std::vector<QImage>;
    /// Command id to index in the command pictures.
    using CommandImageMap = std::map<unsigned short, int>;

    /// Indices of the standard pictures.
    enum EStandardImage
    {
        eNoItem = 0,
        eFolder = 1,
        eFolderSelected = 2,
        eItem = 3,
        eGlobalItem = 4,
        eFolderAsItem = 5,
        eCommand = 7,
        eNoIcon = 8,
    };

    /// Loads the standard pictures: bitmap 16004 (16 by 16 each, RGB(255,0,255)
    /// transparent), else bitmap 16003. The command pictures start empty.
    FavouritesManager();
    virtual ~FavouritesManager();

    /// Writes `collection` to the favourites file `file` and returns whether it
    /// was written. Throws Exception for a file that cannot be read as one.
    virtual bool SaveFavourites(const std::string& file, int collection) const;
    /// Replaces `collection` with the items of the favourites file `file`
    /// (created empty when missing). True: the tree reports its own trouble.
    /// Throws Exception for a file that cannot be read as XML.
    virtual bool LoadFavourites(const std::string& file, int collection);
    /// The tree has been made.
    virtual void OnInitialUpdate();
    /// The tree goes.
    virtual void OnDestroy();
    /// Opens the items in order, owning and finally deleting them. Failures
    /// cost only their item and are shown together at the end.
    virtual void Open(std::vector<FavouriteItem*>* items);
    /// The pictures of `item`'s row, normal and selected; null for a text row.
    virtual void GetIcon(const FavouriteItem* item, QImage& normal, QImage& selected);
    /// Asked before `item` is added; may move it to another collection. False
    /// refuses it. Puts it outside any collection (-1) and accepts.
    virtual bool OnAddToFavourites(FavouriteItem* item, int& collection);
    /// Rows of `collection` were added, changed, moved or removed.
    virtual void OnFavouritesChanged(int collection);

    /// Reads a favourites file's items from `section` into `collection`.
    void LoadFavouriteNode(ConfigurationSection* section, int collection);
    /// Writes `collection` into `section`.
    void SaveFavouriteNode(ConfigurationSection* section, int collection) const;
    /// Removes the rows of `collection`.
    void DeleteFavouriteNode(int collection);
    /// Writes (`store`) or reads rows outside any collection.
    void Serialize(ConfigurationSection* section, bool store);
    /// Removes all rows.
    void RemoveAll();

    /// "FavouriteItem": one saved item.
    static const char* GetFavouriteItemSectionKey();
    /// "Favourites": the sub-section that holds the items.
    static const char* GetRootSectionKey();
    /// Adds the pictures of tool bar resource `toolbarId` to `images` and
    /// enters each button's command id in `map` with the index of its picture.
    /// False when there is no such tool bar or bitmap.
    static bool LoadToolBar(unsigned int toolbarId, ImageList& images, CommandImageMap& map);

    /// The tree this manager serves, null until one is attached.
    FavouritesTreeRows* GetFavouritesTree() const { return tree; }
    /// Called by the tree when it binds itself (FavouritesTreeRows::SetFavouritesManager).
    void SetFavouritesTree(FavouritesTreeRows* favouritesTree) { tree = favouritesTree; }
    const ImageList& GetStandardImages() const { return standardImages; }

private:
    void LoadCommandImageList();
    const QImage& StandardImage(int index) const;

    ImageList standardImages;
    ImageList commandImages;
    CommandImageMap commandImageMap;
    bool commandImagesLoaded = false;
    FavouritesTreeRows* tree = nullptr;
};
