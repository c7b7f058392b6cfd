#pragma once
/// \class FavouritesTree
/// The visible tree of favourites. It owns the items through the nodes of its
/// rows and is where the favourites file is read and written. On top of the
/// suite's tree control it adds: rows that open on a single click, rows that
/// are selected by hovering, drag and drop of favourites inside the tree and
/// of files and commands from outside (a file manager's `text/uri-list`, the
/// add-command dialog's list), separators drawn as etched lines, renaming with
/// F2, new folders, moving rows with commands, and the context menus 16093 and
/// 16094 (the latter while Ctrl is held). Rules that need no window live in
/// FavouritesTreeRows and FavouritesTreeRules.

#include <KORVAutlwin/controls/TsTreeCtrl.h>
#include <KORVAutlwin/frame/CmdTarget.h>

#include <memory>
#include <string>
#include <vector>

class AddCommandToFavouritesDlg;
class ConfigurationSection;
class FavouriteItem;
class FavouritesManager;
class FavouritesTreeRows;
struct FavouriteRow;

// Styles of the favourites tree, with the platform's numbers.
constexpr unsigned long TVS_EDITLABELS = 0x0008;
constexpr unsigned long TVS_NOTOOLTIPS = 0x0080;
constexpr unsigned long TVS_FULLROWSELECT = 0x1000;

class FavouritesTree : public TsTreeCtrl, public CmdTarget
{
    Q_OBJECT

public:
    /// The commands of the tree.
    enum ECommand : unsigned int
    {
        eAddCommand = 16178,
        eFolderAsItem = 16179,
        eNewFolder = 16180,
        eOpen = 16181,
        eRename = 16182,
        eBold = 16205,
        eMoveDown = 16206,
        eMoveLeft = 16207,
        eMoveRight = 16208,
        eMoveUp = 16209,
        eExport = 16272,
        eImport = 16274,
        eDelete = 21501,
    };
    /// The context menus: the usual one and the one shown while Ctrl is held.
    static constexpr unsigned int kMenu = 16093;
    static constexpr unsigned int kCtrlMenu = 16094;
    /// The MIME type of the clipboard format "TsFavourite" that the tree
    /// registers: a favourite dragged from outside the tree, such as a command
    /// of the add-command dialog, "<type>\n<command id>\n<name>".
    static const char* const kMimeType;

    explicit FavouritesTree(QWidget* parent = nullptr,
                            unsigned long style = TVS_HASBUTTONS | TVS_EDITLABELS | TVS_SHOWSELALWAYS | TVS_NOTOOLTIPS |
                                                  TVS_FULLROWSELECT);
    /// The manager hears OnDestroy first; then every row's data is freed.
    ~FavouritesTree() override;

    /// The rows as the manager and the favourites rules see them.
    FavouritesTreeRows& GetRows() const;
    /// Binds the manager to this tree and the tree to the manager.
    void SetFavouritesManager(FavouritesManager* manager);
    FavouritesManager* GetFavouritesManager() const;
    /// Reads (`store` false) or writes the rows of `collection` from or into a favourites file's section.
    void Serialize(ConfigurationSection* section, bool store, int collection);
    /// Adds `item`, taking it, beside the selected row (see FavouritesTreeRows::AddToFavourites).
    void AddToFavourites(FavouriteItem* item);
    /// Frees the data of all rows and removes them.
    void DeleteTree();
    /// Removes the rows of `collection`.
    void DeleteFavouriteNode(int collection);
    /// Whether files, folders and commands can be dropped on the tree from outside.
    void DragAcceptFiles(bool accept);

    static FavouriteRow* Row(HTREEITEM item) { return static_cast<FavouriteRow*>(item); }
    static HTREEITEM Item(FavouriteRow* row) { return row; }

    // --- the base's hooks -------------------------------------------------------------
    void DeleteSelectedItems(bool ask) override;
    void DeleteItemData(HTREEITEM item) override;
    void OnItemCopied(HTREEITEM from, HTREEITEM to) override;
    bool IsDropSource(HTREEITEM item) override;
    HTREEITEM GetDropTarget(HTREEITEM item, bool& asChild) override;
    virtual FavouriteItem* GetFavouriteItem(HTREEITEM item) const;
    virtual void DeleteChildItemData(HTREEITEM item);
    /// A row may be deleted when it holds an item.
    virtual bool CanDeleteItem(HTREEITEM item);
    /// Frees the data of the row and its subtree before it goes.
    bool DeleteItem(HTREEITEM item) override;

    // --- rows -------------------------------------------------------------------------
    /// Bit 0 bold, bit 1 expanded.
    int GetItemStyle(HTREEITEM item) const;
    void SetItemStyle(HTREEITEM item, int style);
    /// Counts the selection: FavouriteFolderItem rows as folders, all others as items.
    void GetSelCount(int& folders, int& items) const;
    bool IsFolderNode(HTREEITEM item) const;
    bool IsTrueFolderNode(HTREEITEM item) const;
    bool IsEnabled(HTREEITEM item) const;
    int GetDefaultCollectionID(HTREEITEM item) const;
    /// The selected rows in order.
    std::vector<HTREEITEM> GetSelectedItems() const;
    /// Gives the row the pictures the manager has for its item.
    void RenewIcons(HTREEITEM item);
    /// Moves `item` with its subtree under `parent` behind `after` (TVI_FIRST, TVI_LAST).
    HTREEITEM MoveItem(HTREEITEM item, HTREEITEM parent, HTREEITEM after);

    // --- commands ------------------------------------------------------------------------
    void OnFavouritesAddcommand();
    void OnFavouritesDelete();
    void OnFavouritesNewfolder();
    void OnFavouritesOpen();
    void OnFavouritesRename();
    void OnFavouritesFolderAsItem();
    void OnFavouriteItemBold();
    void OnFavouriteItemMoveDown();
    void OnFavouriteItemMoveLeft();
    void OnFavouriteItemMoveRight();
    void OnFavouriteItemMoveUp();
    void OnFavouritesExport();
    void OnFavouritesImport();
    /// Opens copies of the selected favourites through the manager.
    void OpenSelectedFavourites();
    /// Adds each file as a favourite; folders are refused with one message.
    void OnDropFiles(const std::vector<std::string>& paths);
    /// Idle work: removes stale text rows and vanished files, and gives empty
    /// folders their text row.
    void UpdateAllItems();
    /// The tool tip of the row at a viewport point, cut at 1024 characters;
    /// false while a label is edited or over no row.
    bool OnToolTipNotify(QPoint point, std::string& text) const;
    /// Creates the add-command dialog from the menus `ids`.
    void EnableCommandItems(const unsigned int* ids, unsigned int count);
    AddCommandToFavouritesDlg* GetAddCommandDialog() const { return mAddCommandDlg; }
    /// The tool bars whose pictures commands take.
    void SetToolBarIDs(std::vector<unsigned int> ids) { mToolBarIds = std::move(ids); }
    const std::vector<unsigned int>& GetToolbarIDs() const { return mToolBarIds; }
    /// The context menu for the rows selected now (menu 16094 with `ctrl`);
    /// the caller owns it.
    QMenu* CreateContextMenu(bool ctrl);
    bool IsLabelEditing() const { return state() == QAbstractItemView::EditingState; }

signals:
    /// A row was renamed, or a rename ended without a change.
    void LabelEditEnded();

protected:
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void timerEvent(QTimerEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    bool viewportEvent(QEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    class Rows;
    class Delegate;
    friend class Delegate;

    void OnNMClick(QPoint point);
    void OnEndLabelEdit(HTREEITEM item, const std::string& text);
    void OnItemExpanding(QTreeWidgetItem* item, bool expand);
    void Changed(HTREEITEM item);
    bool AddDialogVisible() const;
    void RegisterCommands();

    std::unique_ptr<Rows> mRows;
    bool mHoverEnabled = true;
    bool mLabelEditAllowed = false;
    bool mContextMenuOpen = false;
    AddCommandToFavouritesDlg* mAddCommandDlg = nullptr;
    std::vector<unsigned int> mToolBarIds;
};
