#pragma once
/// \class FavouritesTreeRows
/// The rows of a favourites tree as the favourites file and the manager see
/// them, and the rules that work on them: reading and writing a collection
/// (Serialize), removing a collection, the default collection and parent of
/// new rows. The visible tree implements the row primitives on its control;
/// FavouritesDocument implements them in memory for programs without windows.
///
/// Every row holds a FavouriteTreeNode as its data, or null for a text row.
/// The rows own their nodes: DeleteItemData frees a row's node and item.

#include <KORVAutlwin/favourites/FavouriteTreeNode.h>

#include <QImage>

#include <string>
#include <vector>

class ConfigurationSection;
class FavouriteItem;
class FavouritesManager;

/// One row of a favourites tree; only the tree that made it knows what it is.
struct FavouriteRow;

/// The name under which the tree registers its clipboard format.
inline constexpr char kFavouriteClipboardFormatName[] = "TsFavourite";

class FavouritesTreeRows
{
public:
    /// Style bit of a row: bold.
    static constexpr int kStyleBold = 1;
    /// Style bit of a row: expanded.
    static constexpr int kStyleExpanded = 2;

    virtual ~FavouritesTreeRows();

    // --- Row primitives of the tree ----------------------------------------

    /// The first row at the top, null in an empty tree.
    virtual FavouriteRow* GetRootItem() const = 0;
    /// The row after `row` in depth-first order, whether expanded or not; null at the end.
    virtual FavouriteRow* GetNextItem(FavouriteRow* row) const = 0;
    /// The parent of `row`; null at the top.
    virtual FavouriteRow* GetParentItem(FavouriteRow* row) const = 0;
    /// The first child of `row`, null for a leaf.
    virtual FavouriteRow* GetChildItem(FavouriteRow* row) const = 0;
    /// The next row under the same parent, null for the last one.
    virtual FavouriteRow* GetNextSiblingItem(FavouriteRow* row) const = 0;
    virtual std::string GetItemText(FavouriteRow* row) const = 0;
    virtual void SetItemText(FavouriteRow* row, const std::string& text) = 0;
    /// The row's node, null for a text row.
    virtual FavouriteTreeNode* GetItemData(FavouriteRow* row) const = 0;
    virtual void SetItemData(FavouriteRow* row, FavouriteTreeNode* node) = 0;
    /// A new row with `text` and no node under `parent` (null: the top),
    /// behind `after`, or at the end of the parent when `after` is null.
    virtual FavouriteRow* InsertItem(const std::string& text, FavouriteRow* parent, FavouriteRow* after) = 0;
    /// Removes `row` and its subtree; their nodes are not freed (see DeleteItemData).
    virtual void DeleteItem(FavouriteRow* row) = 0;
    /// The depth of `row`: 0 at the top.
    virtual int GetIndentLevel(FavouriteRow* row) const = 0;
    /// kStyleBold and kStyleExpanded as the row has them now.
    virtual int GetItemStyle(FavouriteRow* row) const = 0;
    /// Makes the row bold or not and expands or collapses it; a row without
    /// children cannot be expanded.
    virtual void SetItemStyle(FavouriteRow* row, int style) = 0;
    /// The row's pictures, normal and selected (expanded for a folder).
    virtual void SetItemImages(FavouriteRow* row, const QImage& normal, const QImage& selected) = 0;
    /// The ids of the tool bar resources whose pictures commands take; the
    /// view sets them, a tree without one has none.
    virtual std::vector<unsigned int> GetToolbarIDs() const;

    /// The selected row (the first of several); null where nothing is selected
    /// or the tree has no selection.
    virtual FavouriteRow* GetSelectedItem() const;
    /// Makes `row` the selected row and brings it into view; nothing here.
    virtual void SelectItem(FavouriteRow* row);
    /// AddToFavourites made `row`: a visible tree selects it, brings it into
    /// view and starts renaming a new folder. Nothing here.
    virtual void OnItemAdded(FavouriteRow* row);

    // --- The favourites rules ----------------------------------------------

    /// Adds `item` as a new row, taking it: beside the selected row, or in the
    /// default parent of its type when nothing is selected; into a true folder
    /// at its end. The manager's OnAddToFavourites may move it to another
    /// collection or refuse it (the item then stays the caller's). A document
    /// that is already among the rows of that parent is selected instead, and
    /// the item is deleted. Then the manager hears OnFavouritesChanged.
    void AddToFavourites(FavouriteItem* item);

    /// Writes the rows of `collection` into `section` (`store`), or reads a
    /// favourites file's items from it into new rows of `collection`. An
    /// Exception on the way is shown to the user and not passed on; rows read
    /// before it stay.
    void Serialize(ConfigurationSection* section, bool store, int collection);

    /// Removes every top row of `collection`, with its subtree and their data.
    void DeleteFavouriteNode(int collection);
    /// Frees the data of `row` and of its subtree.
    void DeleteItemData(FavouriteRow* row);
    /// Frees the data of the children of `row` and of their subtrees.
    void DeleteChildItemData(FavouriteRow* row);
    /// Frees the data of all rows and removes them.
    void DeleteTree();

    /// The favourite of `row`, null for a text row.
    FavouriteItem* GetFavouriteItem(FavouriteRow* row) const;
    /// Any FavouriteFolderItem.
    bool IsFolderNode(FavouriteRow* row) const;
    /// A FavouriteFolderItem that is not treated as an item.
    bool IsTrueFolderNode(FavouriteRow* row) const;
    /// The last row in depth-first order, null in an empty tree.
    FavouriteRow* GetLastItem() const;
    /// The collection of `row` (its parent's for a text row); for a null row
    /// that of the last row; -1 without rows.
    int GetDefaultCollectionID(FavouriteRow* row) const;
    /// Where a new item of `type` goes in `collection`: the first folder of the
    /// collection that collects that type, else its first folder, else its
    /// first row if that is a folder, else that row's parent. Null without rows.
    FavouriteRow* GetDefaultParent(const std::string& type, int collection) const;

    /// Binds the manager to this tree and the tree to the manager.
    void SetFavouritesManager(FavouritesManager* manager);
    FavouritesManager* GetFavouritesManager() const { return manager; }

protected:
    FavouritesTreeRows() = default;
    FavouritesTreeRows(const FavouritesTreeRows&) = delete;
    FavouritesTreeRows& operator=(const FavouritesTreeRows&) = delete;

private:
    void Store(ConfigurationSection* section, int collection);
    void Load(ConfigurationSection* section, int collection);
    /// The icons the manager gives `item`, on `row`.
    void SetIcons(FavouriteRow* row, const FavouriteItem* item);

    FavouritesManager* manager = nullptr;
};
