#include <KORVAutlwin/favourites/FavouritesTree.h>

#include <KORVAutlwin/favourites/AddCommandToFavouritesDlg.h>
#include <KORVAutlwin/favourites/CommandsListBox.h>
#include <KORVAutlwin/favourites/FavouriteApplication.h>
#include <KORVAutlwin/favourites/FavouriteCommandItem.h>
#include <KORVAutlwin/favourites/FavouriteFileItem.h>
#include <KORVAutlwin/favourites/FavouriteFolderItem.h>
#include <KORVAutlwin/favourites/FavouritesManager.h>
#include <KORVAutlwin/favourites/FavouritesTreeRows.h>
#include <KORVAutlwin/favourites/FavouritesTreeRules.h>
#include <KORVAutlwin/favourites/SeparatorItem.h>
#include <KORVAutlwin/frame/MenuResource.h>
#include <KORVAutlwin/frame/TsMenu.h>
#include <KORVAutlwin/frame/WinApp.h>
#include <KORVAutlwin/toolkit/DisplayColor.h>

#include <KORVAutl/LanguageString.h>
#include <KORVAutl/TsString.h>

#include <QApplication>
#include <QCursor>
#include <QFileDialog>
#include <QFileInfo>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMenu>
#include <QMimeData>
#include <QMouseEvent>
#include <QPainter>
#include <QStyledItemDelegate>
#include <QTimer>
#include <QToolTip>
#include <QUrl>

#include <algorithm>
#include <functional>
#include <set>

const char* const FavouritesTree::kMimeType = CommandsListBox::kMimeType;

namespace {

constexpr int kNormalImageRole = Qt::UserRole + 20;
constexpr int kSelectedImageRole = Qt::UserRole + 21;
// SM_CYSMICON plus 5.
constexpr int kItemHeight = 16 + 5;

FavouriteTreeNode* Node(const TsTreeCtrl& tree, HTREEITEM item)
{
    return reinterpret_cast<FavouriteTreeNode*>(tree.GetItemData(item));
}

} // namespace

// --- the rows as the favourites rules see them ----------------------------------------

class FavouritesTree::Rows : public FavouritesTreeRows
{
public:
    explicit Rows(FavouritesTree& tree) : tree(tree) {}

    FavouriteRow* GetRootItem() const override { return Row(tree.GetRootItem()); }
    FavouriteRow* GetNextItem(FavouriteRow* row) const override { return Row(tree.GetNextItem(row)); }
    FavouriteRow* GetParentItem(FavouriteRow* row) const override { return Row(tree.GetParentItem(row)); }
    FavouriteRow* GetChildItem(FavouriteRow* row) const override { return row ? Row(tree.GetChildItem(row)) : nullptr; }
    FavouriteRow* GetNextSiblingItem(FavouriteRow* row) const override { return Row(tree.GetNextSiblingItem(row)); }
    std::string GetItemText(FavouriteRow* row) const override { return tree.GetItemText(row); }
    void SetItemText(FavouriteRow* row, const std::string& text) override { tree.SetItemText(row, text.c_str()); }
    FavouriteTreeNode* GetItemData(FavouriteRow* row) const override { return Node(tree, row); }
    void SetItemData(FavouriteRow* row, FavouriteTreeNode* node) override
    {
        tree.SetItemData(row, reinterpret_cast<uintptr_t>(node));
    }
    FavouriteRow* InsertItem(const std::string& text, FavouriteRow* parent, FavouriteRow* after) override
    {
        return Row(tree.TsTreeCtrl::InsertItem(text.c_str(), 0, 0, parent, after ? Item(after) : TVI_LAST));
    }
    void DeleteItem(FavouriteRow* row) override { tree.TsTreeCtrl::DeleteItem(row); }
    int GetIndentLevel(FavouriteRow* row) const override { return tree.GetIndentLevel(row); }
    int GetItemStyle(FavouriteRow* row) const override { return tree.GetItemStyle(row); }
    void SetItemStyle(FavouriteRow* row, int style) override { tree.SetItemStyle(row, style); }
    void SetItemImages(FavouriteRow* row, const QImage& normal, const QImage& selected) override
    {
        QTreeWidgetItem* item = Q(row);
        item->setData(0, kNormalImageRole, QPixmap::fromImage(normal));
        item->setData(0, kSelectedImageRole, QPixmap::fromImage(selected));
        const QImage& shown = item->isExpanded() && !selected.isNull() ? selected : normal;
        item->setIcon(0, shown.isNull() ? QIcon() : QIcon(QPixmap::fromImage(shown)));
    }
    std::vector<unsigned int> GetToolbarIDs() const override { return tree.mToolBarIds; }
    FavouriteRow* GetSelectedItem() const override { return Row(tree.GetFirstSelectedItem()); }
    void SelectItem(FavouriteRow* row) override
    {
        tree.ClearSelection();
        Q(row)->setSelected(true);
        tree.setCurrentItem(Q(row));
        tree.EnsureVisible(row);
    }
    void OnItemAdded(FavouriteRow* row) override
    {
        SelectItem(row);
        // A new folder is named at once.
        if (tree.IsFolderNode(row))
            tree.OnFavouritesRename();
    }

private:
    FavouritesTree& tree;
};

// --- painting and label editing ---------------------------------------------------------

class FavouritesTree::Delegate : public QStyledItemDelegate
{
public:
    explicit Delegate(FavouritesTree& tree) : QStyledItemDelegate(&tree), tree(tree) {}

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override
    {
        QTreeWidgetItem* row = tree.itemFromIndex(index);
        FavouriteItem* item = tree.GetFavouriteItem(H(row));
        if (dynamic_cast<const SeparatorItem*>(item)) {
            // An etched line, 3 pixels high, through the row's middle.
            const int middle = option.rect.center().y();
            const QRect line(option.rect.left() + 2, middle - 1, option.rect.width() - 4, 3);
            painter->fillRect(line, korva::ToQColor(korva::GetSysColor(COLOR_BTNFACE)));
            painter->setPen(korva::ToQColor(korva::GetSysColor(COLOR_BTNSHADOW)));
            painter->drawLine(line.topLeft(), line.topRight());
            painter->setPen(korva::ToQColor(korva::GetSysColor(COLOR_BTNHIGHLIGHT)));
            painter->drawLine(line.bottomLeft(), line.bottomRight());
            return;
        }
        const bool hot = option.state & QStyle::State_MouseOver;
        const bool selected = row->isSelected() && !tree.IsLabelEditing();
        const bool enabled = item && item->Enable();
        int text = COLOR_WINDOWTEXT;
        int background = COLOR_WINDOW;
        if (selected) {
            text = enabled ? COLOR_HIGHLIGHTTEXT : COLOR_INACTIVECAPTIONTEXT;
            background = enabled ? COLOR_HIGHLIGHT : COLOR_INACTIVECAPTION;
        } else if (hot) {
            text = item && !enabled ? COLOR_GRAYTEXT : COLOR_HOTLIGHT;
            background = -1;
        } else if (item && !enabled) {
            text = COLOR_GRAYTEXT;
        }
        QStyleOptionViewItem shown(option);
        shown.state &= ~(QStyle::State_Selected | QStyle::State_MouseOver);
        if (background >= 0)
            painter->fillRect(option.rect, korva::ToQColor(korva::GetSysColor(background)));
        shown.palette.setColor(QPalette::Text, korva::ToQColor(korva::GetSysColor(text)));
        QStyledItemDelegate::paint(painter, shown, index);
    }

    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override
    {
        return QSize(QStyledItemDelegate::sizeHint(option, index).width(), kItemHeight);
    }

    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option, const QModelIndex& index) const override
    {
        // Only a rename starts an edit: a slow second click does not.
        if (!tree.mLabelEditAllowed)
            return nullptr;
        auto* edit = qobject_cast<QLineEdit*>(QStyledItemDelegate::createEditor(parent, option, index));
        if (edit)
            edit->setMaxLength(FavouritesTreeRules::kLabelLimit);
        return edit;
    }

    void setModelData(QWidget* editor, QAbstractItemModel*, const QModelIndex& index) const override
    {
        if (auto* edit = qobject_cast<QLineEdit*>(editor))
            tree.OnEndLabelEdit(H(tree.itemFromIndex(index)), edit->text().toStdString());
    }

private:
    FavouritesTree& tree;
};

// --- the tree ---------------------------------------------------------------------------

FavouritesTree::FavouritesTree(QWidget* parent, unsigned long style)
    : TsTreeCtrl(parent, style), mRows(std::make_unique<Rows>(*this))
{
    setItemDelegate(new Delegate(*this));
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setUniformRowHeights(true);
    setIconSize(QSize(16, 16));
    viewport()->setAttribute(Qt::WA_Hover); // hot rows are drawn in their own colour
    connect(this, &QTreeWidget::itemExpanded, this, [this](QTreeWidgetItem* item) { OnItemExpanding(item, true); });
    connect(this, &QTreeWidget::itemCollapsed, this, [this](QTreeWidgetItem* item) { OnItemExpanding(item, false); });
    RegisterCommands();
}

FavouritesTree::~FavouritesTree()
{
    if (FavouritesManager* manager = GetFavouritesManager())
        manager->OnDestroy();
    delete mAddCommandDlg;
    for (HTREEITEM item = GetRootItem(); item; item = GetNextSiblingItem(item))
        DeleteItemData(item);
}

FavouritesTreeRows& FavouritesTree::GetRows() const { return *mRows; }
void FavouritesTree::SetFavouritesManager(FavouritesManager* manager) { mRows->SetFavouritesManager(manager); }
FavouritesManager* FavouritesTree::GetFavouritesManager() const { return mRows->GetFavouritesManager(); }

void FavouritesTree::Serialize(ConfigurationSection* section, bool store, int collection)
{
    mRows->Serialize(section, store, collection);
}

void FavouritesTree::AddToFavourites(FavouriteItem* item) { mRows->AddToFavourites(item); }

void FavouritesTree::DeleteTree()
{
    setUpdatesEnabled(false);
    mRows->DeleteTree();
    setUpdatesEnabled(true);
}

void FavouritesTree::DeleteFavouriteNode(int collection) { mRows->DeleteFavouriteNode(collection); }

void FavouritesTree::DragAcceptFiles(bool accept)
{
    setAcceptDrops(accept);
    viewport()->setAcceptDrops(accept);
}

// --- the base's hooks ---------------------------------------------------------------------

void FavouritesTree::DeleteSelectedItems(bool ask)
{
    std::set<int> collections;
    for (HTREEITEM item = GetFirstSelectedItem(); item; item = GetNextSelectedItem(item)) {
        collections.insert(GetDefaultCollectionID(item));
        if (!CanDeleteItem(item)) {
            const FavouriteApplication& application = FavouriteApplication::Get();
            if (application.messageBox)
                application.messageBox(TsString::Format(16170, GetItemText(item).c_str()), 0);
            Q(item)->setSelected(false);
            setFocus();
            break;
        }
    }
    TsTreeCtrl::DeleteSelectedItems(ask);
    if (FavouritesManager* manager = GetFavouritesManager())
        for (int collection : collections)
            manager->OnFavouritesChanged(collection);
}

void FavouritesTree::DeleteItemData(HTREEITEM item) { mRows->DeleteItemData(Row(item)); }
void FavouritesTree::DeleteChildItemData(HTREEITEM item) { mRows->DeleteChildItemData(Row(item)); }
bool FavouritesTree::CanDeleteItem(HTREEITEM item) { return GetFavouriteItem(item) != nullptr; }

bool FavouritesTree::DeleteItem(HTREEITEM item)
{
    DeleteItemData(item);
    return TsTreeCtrl::DeleteItem(item);
}

void FavouritesTree::OnItemCopied(HTREEITEM from, HTREEITEM to)
{
    const FavouriteTreeNode* source = Node(*this, from);
    if (!source) {
        SetItemData(to, 0);
        return;
    }
    const FavouriteTreeNode* parent = Node(*this, GetParentItem(to));
    const int collection = parent ? parent->collection : source->collection;
    FavouriteItem* copy = source->item ? source->item->Copy() : nullptr;
    SetItemData(to, reinterpret_cast<uintptr_t>(new FavouriteTreeNode{copy, collection}));
    if (FavouritesManager* manager = GetFavouritesManager()) {
        manager->OnFavouritesChanged(collection);
        if (collection != source->collection)
            manager->OnFavouritesChanged(source->collection);
    }
}

bool FavouritesTree::IsDropSource(HTREEITEM item)
{
    return GetSelectedItemCount() <= 1 && FavouritesTreeRules::IsDropSource(*mRows, Row(item));
}

HTREEITEM FavouritesTree::GetDropTarget(HTREEITEM item, bool& asChild)
{
    return FavouritesTreeRules::GetDropTarget(*mRows, Row(mDragSource), Row(item), asChild);
}

FavouriteItem* FavouritesTree::GetFavouriteItem(HTREEITEM item) const { return mRows->GetFavouriteItem(Row(item)); }

// --- rows -------------------------------------------------------------------------------

int FavouritesTree::GetItemStyle(HTREEITEM item) const
{
    // A folder opened only to show its empty-folder text counts as closed: it
    // could not be opened again when read back, and the idle update opens it anyway.
    bool favourites = false;
    for (HTREEITEM child = GetChildItem(item); child && !favourites; child = GetNextSiblingItem(child))
        favourites = Node(*this, child) != nullptr;
    return (GetItemBold(item) ? FavouritesTreeRows::kStyleBold : 0) |
           (favourites && GetItemState(item, TVIS_EXPANDED) ? FavouritesTreeRows::kStyleExpanded : 0);
}

void FavouritesTree::SetItemStyle(HTREEITEM item, int style)
{
    SetItemBold(item, style & FavouritesTreeRows::kStyleBold);
    // A row without children cannot be expanded.
    if ((style & FavouritesTreeRows::kStyleExpanded) && ItemHasChildren(item))
        Expand(item, TVE_EXPAND);
}

void FavouritesTree::GetSelCount(int& folders, int& items) const
{
    folders = items = 0;
    for (HTREEITEM item = GetFirstSelectedItem(); item; item = GetNextSelectedItem(item))
        ++(IsFolderNode(item) ? folders : items);
}

bool FavouritesTree::IsFolderNode(HTREEITEM item) const { return mRows->IsFolderNode(Row(item)); }
bool FavouritesTree::IsTrueFolderNode(HTREEITEM item) const { return mRows->IsTrueFolderNode(Row(item)); }

bool FavouritesTree::IsEnabled(HTREEITEM item) const
{
    FavouriteItem* favourite = GetFavouriteItem(item);
    return favourite && favourite->Enable();
}

int FavouritesTree::GetDefaultCollectionID(HTREEITEM item) const { return mRows->GetDefaultCollectionID(Row(item)); }

std::vector<HTREEITEM> FavouritesTree::GetSelectedItems() const
{
    std::vector<HTREEITEM> items;
    for (HTREEITEM item = GetFirstSelectedItem(); item; item = GetNextSelectedItem(item))
        items.push_back(item);
    return items;
}

void FavouritesTree::RenewIcons(HTREEITEM item)
{
    FavouritesManager* manager = GetFavouritesManager();
    if (!manager || !item)
        return;
    QImage normal;
    QImage selected;
    manager->GetIcon(GetFavouriteItem(item), normal, selected);
    mRows->SetItemImages(Row(item), normal, selected);
}

HTREEITEM FavouritesTree::MoveItem(HTREEITEM item, HTREEITEM parent, HTREEITEM after)
{
    setUpdatesEnabled(false);
    HTREEITEM copy = nullptr;
    if (ItemHasChildren(item)) {
        copy = CopyBranch(item, parent, after);
        // The copy keeps the expansion of the branch.
        std::function<void(HTREEITEM, HTREEITEM)> keep = [&](HTREEITEM from, HTREEITEM to) {
            for (HTREEITEM a = GetChildItem(from), b = GetChildItem(to); a && b;
                 a = GetNextSiblingItem(a), b = GetNextSiblingItem(b))
                keep(a, b);
            Q(to)->setExpanded(Q(from)->isExpanded());
        };
        keep(item, copy);
    } else {
        copy = CopyItem(item, parent, after);
    }
    DeleteItem(item);
    ClearSelection();
    Q(copy)->setSelected(true);
    setCurrentItem(Q(copy));
    setUpdatesEnabled(true);
    return copy;
}

void FavouritesTree::Changed(HTREEITEM item)
{
    if (FavouritesManager* manager = GetFavouritesManager())
        manager->OnFavouritesChanged(GetDefaultCollectionID(item));
}

// --- commands -----------------------------------------------------------------------------

void FavouritesTree::RegisterCommands()
{
    const auto one = [this] { return GetSelectedItemCount() == 1 ? GetFirstSelectedItem() : nullptr; };
    OnCommand(eAddCommand, [this] { OnFavouritesAddcommand(); });
    OnUpdateCommand(eAddCommand, [this](CCmdUI* ui) { ui->Enable(mAddCommandDlg != nullptr); });
    OnCommand(eDelete, [this] { OnFavouritesDelete(); });
    OnUpdateCommand(eDelete, [this](CCmdUI* ui) { ui->Enable(GetFirstSelectedItem() != nullptr); });
    OnCommand(eNewFolder, [this] { OnFavouritesNewfolder(); });
    OnUpdateCommand(eNewFolder, [](CCmdUI* ui) { ui->Enable(true); });
    OnCommand(eOpen, [this] { OnFavouritesOpen(); });
    OnUpdateCommand(eOpen, [this](CCmdUI* ui) { ui->Enable(GetFirstSelectedItem() != nullptr); });
    OnCommand(eRename, [this] { OnFavouritesRename(); });
    OnUpdateCommand(eRename, [one](CCmdUI* ui) { ui->Enable(one() != nullptr); });
    OnCommand(eFolderAsItem, [this] { OnFavouritesFolderAsItem(); });
    OnUpdateCommand(eFolderAsItem, [this](CCmdUI* ui) {
        int folders = 0;
        int items = 0;
        GetSelCount(folders, items);
        const auto* folder = dynamic_cast<const FavouriteFolderItem*>(GetFavouriteItem(GetFirstSelectedItem()));
        ui->Enable(folders == 1 && items == 0);
        ui->SetCheck(folder && folder->GetTreatAsItem());
    });
    OnCommand(eBold, [this] { OnFavouriteItemBold(); });
    OnUpdateCommand(eBold, [this](CCmdUI* ui) {
        HTREEITEM first = GetFirstSelectedItem();
        ui->Enable(first != nullptr);
        ui->SetCheck(first && GetItemBold(first));
    });
    OnCommand(eMoveDown, [this] { OnFavouriteItemMoveDown(); });
    OnUpdateCommand(eMoveDown, [this, one](CCmdUI* ui) {
        HTREEITEM item = one();
        ui->Enable(item && (GetNextSiblingItem(item) || GetParentItem(item)));
    });
    OnCommand(eMoveLeft, [this] { OnFavouriteItemMoveLeft(); });
    OnUpdateCommand(eMoveLeft, [this, one](CCmdUI* ui) { ui->Enable(one() && GetParentItem(one())); });
    OnCommand(eMoveRight, [this] { OnFavouriteItemMoveRight(); });
    OnUpdateCommand(eMoveRight, [this, one](CCmdUI* ui) {
        ui->Enable(one() && IsTrueFolderNode(GetPrevSiblingItem(one())));
    });
    OnCommand(eMoveUp, [this] { OnFavouriteItemMoveUp(); });
    OnUpdateCommand(eMoveUp, [this, one](CCmdUI* ui) { ui->Enable(one() && GetPrevSiblingItem(one())); });
    OnCommand(eExport, [this] { OnFavouritesExport(); });
    OnUpdateCommand(eExport, [](CCmdUI* ui) { ui->Enable(true); });
    OnCommand(eImport, [this] { OnFavouritesImport(); });
    OnUpdateCommand(eImport, [](CCmdUI* ui) { ui->Enable(true); });
}

void FavouritesTree::OnFavouritesAddcommand()
{
    if (mAddCommandDlg) {
        mAddCommandDlg->show();
        mAddCommandDlg->raise();
    }
}

void FavouritesTree::OnFavouritesDelete() { DeleteSelectedItems(true); }

void FavouritesTree::OnFavouritesNewfolder()
{
    const std::string name = FavouritesTreeRules::NewFolderName(*mRows);
    AddToFavourites(new FavouriteFolderItem(name.c_str(), nullptr));
}

void FavouritesTree::OnFavouritesOpen() { OpenSelectedFavourites(); }

void FavouritesTree::OnFavouritesRename()
{
    HTREEITEM item = GetFirstSelectedItem();
    if (!(GetStyle() & TVS_EDITLABELS) || !item)
        return;
    mLabelEditAllowed = true;
    Q(item)->setFlags(Q(item)->flags() | Qt::ItemIsEditable);
    editItem(Q(item));
    Q(item)->setFlags(Q(item)->flags() & ~Qt::ItemIsEditable);
    mLabelEditAllowed = false;
}

void FavouritesTree::OnEndLabelEdit(HTREEITEM item, const std::string& text)
{
    const std::string name = FavouritesTreeRules::LabelAfterEdit(text);
    FavouriteItem* favourite = GetFavouriteItem(item);
    // An empty name changes nothing.
    if (!name.empty() && favourite) {
        favourite->SetName(name.c_str());
        SetItemText(item, name.c_str());
        Changed(item);
    }
    emit LabelEditEnded();
}

void FavouritesTree::OnFavouritesFolderAsItem()
{
    HTREEITEM item = GetFirstSelectedItem();
    auto* folder = dynamic_cast<FavouriteFolderItem*>(GetFavouriteItem(item));
    if (!folder)
        return;
    folder->SetTreatAsItem(!folder->GetTreatAsItem());
    if (folder->GetTreatAsItem() && ItemHasChildren(item))
        Expand(item, TVE_COLLAPSE);
    RenewIcons(item);
    Changed(item);
}

void FavouritesTree::OnFavouriteItemBold()
{
    HTREEITEM first = GetFirstSelectedItem();
    if (!first)
        return;
    const bool bold = !GetItemBold(first);
    for (HTREEITEM item : GetSelectedItems())
        SetItemBold(item, bold);
    Changed(first);
}

void FavouritesTree::OnFavouriteItemMoveUp()
{
    HTREEITEM item = GetFirstSelectedItem();
    HTREEITEM before = item ? GetPrevSiblingItem(item) : nullptr;
    if (!before)
        return;
    HTREEITEM twoBefore = GetPrevSiblingItem(before);
    MoveItem(item, GetParentItem(item), twoBefore ? twoBefore : TVI_FIRST);
}

void FavouritesTree::OnFavouriteItemMoveDown()
{
    HTREEITEM item = GetFirstSelectedItem();
    if (!item)
        return;
    if (HTREEITEM next = GetNextSiblingItem(item))
        MoveItem(item, GetParentItem(item), next);
    else if (HTREEITEM parent = GetParentItem(item))
        MoveItem(item, GetParentItem(parent), parent);
}

void FavouritesTree::OnFavouriteItemMoveLeft()
{
    HTREEITEM item = GetFirstSelectedItem();
    if (HTREEITEM parent = item ? GetParentItem(item) : nullptr)
        MoveItem(item, GetParentItem(parent), parent);
}

void FavouritesTree::OnFavouriteItemMoveRight()
{
    HTREEITEM item = GetFirstSelectedItem();
    HTREEITEM before = item ? GetPrevSiblingItem(item) : nullptr;
    if (before && IsTrueFolderNode(before))
        MoveItem(item, before, TVI_LAST);
}

void FavouritesTree::OnFavouritesExport()
{
    FavouritesManager* manager = GetFavouritesManager();
    const QString file = QFileDialog::getSaveFileName(this, QString(), QStringLiteral("Favourites.xml"),
                                                      QStringLiteral("XML Files (*.xml)"));
    if (manager && !file.isEmpty())
        manager->SaveFavourites(file.toStdString(), GetDefaultCollectionID(GetRootItem()));
}

void FavouritesTree::OnFavouritesImport()
{
    FavouritesManager* manager = GetFavouritesManager();
    const QString file = QFileDialog::getOpenFileName(this, QString(), QStringLiteral("Favourites.xml"),
                                                      QStringLiteral("XML Files (*.xml)"));
    if (manager && !file.isEmpty())
        manager->LoadFavourites(file.toStdString(), GetDefaultCollectionID(GetRootItem()));
}

void FavouritesTree::OpenSelectedFavourites()
{
    std::vector<FavouriteRow*> rows;
    for (HTREEITEM item : GetSelectedItems())
        rows.push_back(Row(item));
    std::vector<FavouriteItem*> items = FavouritesTreeRules::GetSelectedFavouritesItems(*mRows, rows);
    FavouritesManager* manager = GetFavouritesManager();
    if (items.empty() || !manager) {
        for (FavouriteItem* item : items)
            delete item;
        return;
    }
    const bool hadFocus = hasFocus();
    manager->Open(&items);
    if (hadFocus && !hasFocus())
        setFocus();
}

void FavouritesTree::OnDropFiles(const std::vector<std::string>& paths)
{
    bool told = false;
    for (const std::string& path : paths) {
        if (QFileInfo(QString::fromStdString(path)).isDir()) {
            const FavouriteApplication& application = FavouriteApplication::Get();
            if (!told && application.messageBox)
                application.messageBox("Folders cannot be dropped as a favourite.", 0);
            told = true;
            continue;
        }
        const std::string name = QFileInfo(QString::fromStdString(path)).fileName().toStdString();
        AddToFavourites(new FavouriteFileItem(name.c_str(), path.c_str()));
    }
}

void FavouritesTree::UpdateAllItems()
{
    if (QApplication::mouseButtons() != Qt::NoButton || IsLabelEditing() || IsDragging())
        return;
    for (HTREEITEM item = GetRootItem(); item;) {
        HTREEITEM next = GetNextItem(item);
        HTREEITEM parent = GetParentItem(item);
        FavouriteItem* favourite = GetFavouriteItem(item);
        if (!Node(*this, item) && parent && Q(parent)->childCount() >= 2) {
            next = GetNextSiblingItem(item) ? GetNextSiblingItem(item) : GetNextItem(GetLastItem(item));
            DeleteItem(item);
        } else if (dynamic_cast<FavouriteFileItem*>(favourite) && !favourite->Enable()) {
            // Files that have gone leave the list by themselves.
            next = GetNextSiblingItem(item);
            for (HTREEITEM up = parent; !next && up; up = GetParentItem(up))
                next = GetNextSiblingItem(up);
            const int collection = GetDefaultCollectionID(item);
            DeleteItem(item);
            if (FavouritesManager* manager = GetFavouritesManager())
                manager->OnFavouritesChanged(collection);
        } else if (auto* folder = dynamic_cast<FavouriteFolderItem*>(favourite);
                   folder && !folder->GetTreatAsItem() && !folder->GetEmptyFolderText().empty() &&
                   !ItemHasChildren(item)) {
            HTREEITEM text = TsTreeCtrl::InsertItem(folder->GetEmptyFolderText().c_str(), 0, 0, item, TVI_LAST);
            RenewIcons(text);
            Expand(item, TVE_EXPAND);
            next = GetNextItem(text);
        }
        item = next;
    }
    viewport()->update();
}

bool FavouritesTree::OnToolTipNotify(QPoint point, std::string& text) const
{
    if (IsLabelEditing())
        return false;
    FavouriteItem* item = GetFavouriteItem(HitTest(point));
    if (!item)
        return false;
    text = FavouritesTreeRules::CutToolTipText(item->GetToolTipText());
    return true;
}

void FavouritesTree::EnableCommandItems(const unsigned int* ids, unsigned int count)
{
    delete mAddCommandDlg;
    mAddCommandDlg = new AddCommandToFavouritesDlg(mRows.get(), ids, count, this);
}

bool FavouritesTree::AddDialogVisible() const { return mAddCommandDlg && mAddCommandDlg->isVisible(); }

QMenu* FavouritesTree::CreateContextMenu(bool ctrl)
{
    std::unique_ptr<QMenu> menus(MenuResource::Load(ctrl ? kCtrlMenu : kMenu));
    QMenu* popup = menus->actions().value(0) ? menus->actions().value(0)->menu() : nullptr;
    if (!popup)
        return nullptr;
    popup->setParent(nullptr, popup->windowFlags());
    int folders = 0;
    int items = 0;
    GetSelCount(folders, items);
    QAction* open = nullptr;
    for (QAction* action : popup->actions())
        if (action->property("commandId").toUInt() == eOpen)
            open = action;
    if (open && items >= 2 && folders == 0)
        open->setText(QString::fromUtf8(LanguageString::Get(16119)));
    if (open && items == 0 && folders >= 1)
        open->setText(QString::fromUtf8(LanguageString::Get(16118)));
    if (items == 0 && folders == 1) {
        auto* asItem = new QAction(QString::fromUtf8(LanguageString::Get(eFolderAsItem)), popup);
        asItem->setProperty("commandId", static_cast<unsigned int>(eFolderAsItem));
        asItem->setCheckable(true);
        popup->insertAction(popup->actions().value(1), asItem);
    }
    return popup;
}

// --- mouse and keyboard ------------------------------------------------------------------

void FavouritesTree::OnNMClick(QPoint point)
{
    if ((QApplication::keyboardModifiers() & Qt::ControlModifier) || AddDialogVisible())
        return; // multi-select and picking
    unsigned int flags = 0;
    HTREEITEM item = HitTest(point, &flags);
    if (!item)
        return;
    if (IsTrueFolderNode(item)) {
        if (!(flags & TVHT_ONITEMBUTTON))
            Expand(item, TVE_TOGGLE);
    } else if ((flags & TVHT_ONITEMLABEL) && IsEnabled(item)) {
        QTimer::singleShot(0, this, [this] { ExecuteCommand(eOpen); });
    }
    Q(item)->setSelected(true);
}

void FavouritesTree::mouseReleaseEvent(QMouseEvent* event)
{
    const bool dragging = IsDragging();
    TsTreeCtrl::mouseReleaseEvent(event);
    if (!dragging && event->button() == Qt::LeftButton)
        OnNMClick(event->position().toPoint());
}

void FavouritesTree::mouseDoubleClickEvent(QMouseEvent* event)
{
    int count = 0;
    for (HTREEITEM item : GetSelectedItems())
        count += !IsTrueFolderNode(item);
    TsTreeCtrl::mouseDoubleClickEvent(event);
    if (count > 0)
        OpenSelectedFavourites();
}

void FavouritesTree::mouseMoveEvent(QMouseEvent* event)
{
    if (!IsLabelEditing()) {
        mHoverEnabled = !(event->modifiers() & Qt::ControlModifier) && !AddDialogVisible();
        // Hovering selects: a multiple selection ends when the mouse moves on.
        if (mHoverEnabled && !mContextMenuOpen && !IsDragging() && GetSelectedItemCount() > 1 &&
            !(event->buttons() & Qt::LeftButton))
            ClearSelection();
        if (IsDragging())
            QToolTip::hideText();
    }
    TsTreeCtrl::mouseMoveEvent(event);
}

void FavouritesTree::timerEvent(QTimerEvent* event)
{
    if (event->timerId() == mHoverTimer && !IsDragging() && !IsLabelEditing() && mHoverEnabled) {
        const QPoint point = viewport()->mapFromGlobal(QCursor::pos());
        unsigned int flags = 0;
        HTREEITEM item = HitTest(point, &flags);
        if (point == mHoverPoint && item && (flags & TVHT_ONITEMLABEL) && !Q(item)->isSelected()) {
            ClearSelection();
            Q(item)->setSelected(true);
            setCurrentItem(Q(item));
        }
    }
    TsTreeCtrl::timerEvent(event);
}

void FavouritesTree::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_F2 && event->modifiers() == Qt::NoModifier) {
        OnFavouritesRename();
        return;
    }
    if ((event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) && !IsLabelEditing()) {
        OpenSelectedFavourites();
        return;
    }
    TsTreeCtrl::keyPressEvent(event);
}

void FavouritesTree::contextMenuEvent(QContextMenuEvent* event)
{
    setFocus();
    const bool byMouse = event->reason() == QContextMenuEvent::Mouse;
    if (byMouse && !HitTest(event->pos()))
        return;
    std::unique_ptr<QMenu> menu(CreateContextMenu(QApplication::keyboardModifiers() & Qt::ControlModifier));
    if (!menu)
        return;
    mContextMenuOpen = true;
    TsMenu::TrackPopupMenu(menu.get(), TPM_RIGHTBUTTON, event->globalPos(), this);
    mContextMenuOpen = false;
}

void FavouritesTree::OnItemExpanding(QTreeWidgetItem* item, bool expand)
{
    const auto* folder = dynamic_cast<const FavouriteFolderItem*>(GetFavouriteItem(H(item)));
    if (!folder)
        return;
    if (folder->GetTreatAsItem()) {
        if (expand)
            item->setExpanded(false); // a folder that acts as an item does not open
        return;
    }
    const QPixmap image = item->data(0, expand ? kSelectedImageRole : kNormalImageRole).value<QPixmap>();
    if (!image.isNull())
        item->setIcon(0, QIcon(image));
}

bool FavouritesTree::viewportEvent(QEvent* event)
{
    if (event->type() == QEvent::ToolTip) {
        auto* help = static_cast<QHelpEvent*>(event);
        std::string text;
        if (OnToolTipNotify(help->pos(), text))
            QToolTip::showText(help->globalPos(), QString::fromStdString(text), viewport());
        else
            QToolTip::hideText();
        return true;
    }
    return TsTreeCtrl::viewportEvent(event);
}

// --- drops from outside ---------------------------------------------------------------------

void FavouritesTree::dragEnterEvent(QDragEnterEvent* event)
{
    if (event->mimeData()->hasUrls() || event->mimeData()->hasFormat(kMimeType))
        event->acceptProposedAction();
}

void FavouritesTree::dragMoveEvent(QDragMoveEvent* event)
{
    if (event->mimeData()->hasUrls() || event->mimeData()->hasFormat(kMimeType))
        event->acceptProposedAction();
}

void FavouritesTree::dropEvent(QDropEvent* event)
{
    const QMimeData* data = event->mimeData();
    if (data->hasFormat(kMimeType)) {
        // "<type>\n<command id>\n<name>" from the add-command dialog.
        const QStringList parts = QString::fromUtf8(data->data(kMimeType)).split('\n');
        if (parts.size() >= 3 && parts[0] == QLatin1String("CommandItem"))
            AddToFavourites(new FavouriteCommandItem(parts.mid(2).join('\n').toUtf8().constData(), parts[1].toUInt()));
    } else {
        std::vector<std::string> paths;
        for (const QUrl& url : data->urls())
            if (url.isLocalFile())
                paths.push_back(url.toLocalFile().toStdString());
        OnDropFiles(paths);
    }
    event->acceptProposedAction();
}
