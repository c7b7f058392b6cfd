#include <KORVAutlwin/controls/TsTreeCtrlEx.h>

#include <KORVAutlwin/controls/TsTreeListCtrl.h>
#include <KORVAutlwin/toolkit/DisplayColor.h>

#include <QApplication>
#include <QHeaderView>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <QStandardItemModel>
#include <QStyledItemDelegate>

#include <climits>

namespace {
QColor Sys(int index) { return korva::ToQColor(korva::GetSysColor(index)); }

Qt::Alignment AlignmentOf(int align)
{
    return align == 1 ? Qt::AlignRight : align == 2 ? Qt::AlignHCenter : Qt::AlignLeft;
}
} // namespace

/// Paints each row across the columns: the platform part (check box, icon)
/// first, then the fill and the cells.
class TsTreeCtrlEx::RowPainter : public QStyledItemDelegate
{
public:
    explicit RowPainter(TsTreeCtrlEx* tree) : QStyledItemDelegate(tree), mTree(tree) {}

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override
    {
        QStyleOptionViewItem platform = option;
        initStyleOption(&platform, index);
        const bool selected = platform.state & QStyle::State_Selected;
        platform.state &= ~(QStyle::State_Selected | QStyle::State_HasFocus | QStyle::State_MouseOver);
        platform.text.clear();
        platform.backgroundBrush = QBrush();
        mTree->style()->drawControl(QStyle::CE_ItemViewItem, &platform, painter, mTree);
        if (selected)
            platform.state |= QStyle::State_Selected;
        mTree->PaintRow(*painter, platform, H(mTree->itemFromIndex(index)));
    }
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override
    {
        QSize size = QStyledItemDelegate::sizeHint(option, index);
        QFont bold = mTree->font();
        bold.setWeight(QFont::Bold);
        size.setHeight(std::max(size.height(), QFontMetrics(bold).height() + 2));
        size.setWidth(std::max(size.width(), mTree->mColumnsWidth));
        return size;
    }

private:
    TsTreeCtrlEx* mTree;
};

TsTreeCtrlEx::TsTreeCtrlEx(TsTreeListCtrl* owner, QWidget* parent, unsigned long style)
    : TsTreeCtrl(parent ? parent : owner, style), mOwner(owner)
{
    mHeader = new CNewHeaderCtrl(owner ? static_cast<QWidget*>(owner) : parent);
    mColumns = new QStandardItemModel(0, 0, this);
    mHeader->setModel(mColumns);
    setItemDelegate(new RowPainter(this));
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff); // the owner's scroller moves the columns
    header()->setStretchLastSection(true);
    setUniformRowHeights(true);
    connect(mHeader, &QHeaderView::sectionResized, this, [this] { OnColumnsChanged(); });
}

TsTreeCtrlEx::~TsTreeCtrlEx() = default;

TsTreeCtrl::Item* TsTreeCtrlEx::NewItem(const char*)
{
    // The platform item's text stays empty: the cells live in the record.
    return new ExItem;
}

// --- columns --------------------------------------------------------------------------

int TsTreeCtrlEx::InsertColumn(int index, const char* title, int align, int width, int)
{
    index = std::clamp(index, 0, mColumnCount);
    mColumns->insertColumn(index);
    mColumns->setHeaderData(index, Qt::Horizontal, QString::fromUtf8(title ? title : ""));
    mColumns->setHeaderData(index, Qt::Horizontal, static_cast<int>(AlignmentOf(align) | Qt::AlignVCenter),
                            Qt::TextAlignmentRole);
    mColumns->setHeaderData(index, Qt::Horizontal, align, Qt::UserRole);
    ++mColumnCount;
    if (width >= 0)
        mHeader->resizeSection(index, width);
    OnColumnsChanged();
    return index;
}

void TsTreeCtrlEx::ClearColumns()
{
    mColumns->setColumnCount(0);
    mColumnCount = 0;
    OnColumnsChanged();
}

void TsTreeCtrlEx::SetColumnWidth(int col, int width)
{
    if (col >= 0 && col < mColumnCount)
        mHeader->resizeSection(col, width);
}

int TsTreeCtrlEx::GetColumnWidth(int col) const
{
    return col >= 0 && col < mColumnCount ? mHeader->sectionSize(col) : 0;
}

int TsTreeCtrlEx::GetColumnAlign(int col) const
{
    return mColumns->headerData(col, Qt::Horizontal, Qt::UserRole).toInt();
}

int TsTreeCtrlEx::RecalcColumnsWidth()
{
    mColumnsWidth = 0;
    for (int col = 0; col < mColumnCount; ++col)
        mColumnsWidth += mHeader->sectionSize(col);
    return mColumnsWidth;
}

void TsTreeCtrlEx::SetColumnHeaderText(int col, const char* text)
{
    if (col >= 0 && col < mColumnCount)
        mColumns->setHeaderData(col, Qt::Horizontal, QString::fromUtf8(text ? text : ""));
}

bool TsTreeCtrlEx::GetColumnTitle(int col, std::string& title) const
{
    if (col < 0 || col >= mColumnCount)
        return false;
    title = mColumns->headerData(col, Qt::Horizontal).toString().toStdString();
    return true;
}

void TsTreeCtrlEx::OnColumnsChanged()
{
    RecalcColumnsWidth();
    // The tree's one column spans all of ours, so that it scrolls by their width.
    header()->setStretchLastSection(mColumnCount == 0);
    if (mColumnCount > 0)
        header()->resizeSection(0, std::max(mColumnsWidth, 1));
    if (mOwner)
        mOwner->OnColumnResized();
    viewport()->update();
}

void TsTreeCtrlEx::scrollContentsBy(int dx, int dy)
{
    TsTreeCtrl::scrollContentsBy(dx, dy);
    mOffset = -horizontalOffset();
    mHeader->setOffset(horizontalOffset());
}

// --- rows ---------------------------------------------------------------------------------

TreeItemRecord* TsTreeCtrlEx::GetRecord(HTREEITEM item) const
{
    return item ? static_cast<ExItem*>(Q(item))->record.get() : nullptr;
}

std::function<const TreeItemRecord*(HTREEITEM)> TsTreeCtrlEx::Records() const
{
    return [this](HTREEITEM item) -> const TreeItemRecord* { return GetRecord(item); };
}

void TsTreeCtrlEx::MarkParent(HTREEITEM parent)
{
    if (TreeItemRecord* record = GetRecord(parent))
        record->hasChildren = 1;
}

void TsTreeCtrlEx::Recount(HTREEITEM parent)
{
    if (TreeItemRecord* record = GetRecord(parent))
        record->hasChildren = ItemHasChildren(parent) ? 1 : 0;
}

HTREEITEM TsTreeCtrlEx::InsertItem(const char* text, int image, int selectedImage, HTREEITEM parent, HTREEITEM after)
{
    auto record = std::make_unique<TreeItemRecord>();
    record->SetCell(0, text ? text : "");
    MarkParent(parent);
    HTREEITEM item = TsTreeCtrl::InsertItem("", image, selectedImage, parent, after);
    static_cast<ExItem*>(Q(item))->record = std::move(record);
    if (mOwner)
        mOwner->ResetScrollBar();
    return item;
}

HTREEITEM TsTreeCtrlEx::InsertItem(int index, const char* text, HTREEITEM parent)
{
    HTREEITEM after = index <= 0 ? TVI_FIRST : GetTreeItem(index - 1);
    return InsertItem(text, 0, 0, parent, after ? after : TVI_LAST);
}

bool TsTreeCtrlEx::SetItemText(HTREEITEM item, int col, const char* text)
{
    TreeItemRecord* record = GetRecord(item);
    if (!record)
        return false;
    record->SetCell(col, text ? text : "");
    viewport()->update(visualItemRect(Q(item)));
    return true;
}

std::string TsTreeCtrlEx::GetItemText(HTREEITEM item, int col) const
{
    const TreeItemRecord* record = GetRecord(item);
    return record ? record->GetCell(col) : std::string();
}

uintptr_t TsTreeCtrlEx::GetItemData(HTREEITEM item) const
{
    const TreeItemRecord* record = GetRecord(item);
    return record ? record->data : 0;
}

bool TsTreeCtrlEx::SetItemData(HTREEITEM item, uintptr_t data)
{
    TreeItemRecord* record = GetRecord(item);
    if (!record)
        return false;
    record->data = data;
    return true;
}

void TsTreeCtrlEx::SetItemColor(HTREEITEM item, COLORREF colour, bool invalidate)
{
    if (TreeItemRecord* record = GetRecord(item))
        record->colour = colour;
    if (invalidate)
        viewport()->update();
}

void TsTreeCtrlEx::SetItemBold(HTREEITEM item, bool bold, bool invalidate)
{
    if (TreeItemRecord* record = GetRecord(item))
        record->bold = bold;
    if (invalidate)
        viewport()->update();
}

bool TsTreeCtrlEx::IsBold(HTREEITEM item) const
{
    const TreeItemRecord* record = GetRecord(item);
    return record && record->bold;
}

void TsTreeCtrlEx::SetItemGroup(HTREEITEM item, bool group, bool invalidate)
{
    TreeItemRecord* record = GetRecord(item);
    if (!record)
        return;
    record->group = group;
    Expand(item, TVE_EXPAND);
    if (mOwner)
        mOwner->ResetScrollBar();
    if (invalidate)
        viewport()->update();
}

bool TsTreeCtrlEx::IsGroup(HTREEITEM item) const
{
    const TreeItemRecord* record = GetRecord(item);
    return record && record->group;
}

void TsTreeCtrlEx::SetItemPriority(HTREEITEM item, int priority)
{
    if (TreeItemRecord* record = GetRecord(item))
        record->priority = priority;
}

int TsTreeCtrlEx::GetItemPriority(HTREEITEM item) const
{
    const TreeItemRecord* record = GetRecord(item);
    return record ? record->priority : -1;
}

HTREEITEM TsTreeCtrlEx::CopyItem(HTREEITEM item, HTREEITEM parent, HTREEITEM after)
{
    if (!item || ItemHasChildren(item))
        return nullptr;
    HTREEITEM copy = TsTreeCtrl::CopyItem(item, parent, after);
    if (const TreeItemRecord* record = GetRecord(item))
        *GetRecord(copy) = *record;
    else
        static_cast<ExItem*>(Q(copy))->record.reset();
    return copy;
}

HTREEITEM TsTreeCtrlEx::MoveItem(HTREEITEM item, HTREEITEM parent, HTREEITEM after)
{
    if (!item || ItemHasChildren(item))
        return nullptr;
    // The new item goes in beside the old one first, so that `after` may be the item itself.
    HTREEITEM moved = TsTreeCtrl::InsertItem("", 0, 0, parent, after);
    static_cast<ExItem*>(Q(moved))->record = std::move(static_cast<ExItem*>(Q(item))->record);
    CopyImages(item, moved);
    MarkParent(parent);
    DeleteItem(item);
    if (mOwner)
        mOwner->ResetScrollBar();
    return moved;
}

bool TsTreeCtrlEx::DeleteItem(HTREEITEM item)
{
    if (!item)
        return false;
    if (item == mLastClicked)
        mLastClicked = nullptr;
    HTREEITEM parent = GetParentItem(item);
    const bool deleted = TsTreeCtrl::DeleteItem(item); // the records go with the items
    Recount(parent);
    return deleted;
}

bool TsTreeCtrlEx::DeleteSubItems(HTREEITEM item)
{
    bool failed = false;
    while (HTREEITEM child = GetChildItem(item))
        if (!DeleteItem(child)) {
            failed = true;
            break;
        }
    return failed;
}

void TsTreeCtrlEx::MemDeleteAllItems(HTREEITEM first)
{
    for (HTREEITEM item = first; item; item = GetNextSiblingItem(item)) {
        MemDeleteAllItems(GetChildItem(item));
        DeleteItemData(item);
    }
}

void TsTreeCtrlEx::DeleteItemData(HTREEITEM item)
{
    if (item)
        static_cast<ExItem*>(Q(item))->record.reset();
}

bool TsTreeCtrlEx::DeleteAllItems()
{
    QApplication::setOverrideCursor(Qt::WaitCursor);
    setUpdatesEnabled(false);
    MemDeleteAllItems(GetRootItem());
    TsTreeCtrl::DeleteAllItems();
    mLastClicked = nullptr;
    setUpdatesEnabled(true);
    viewport()->update();
    if (mOwner)
        mOwner->ResetScrollBar();
    QApplication::restoreOverrideCursor();
    return true;
}

HTREEITEM TsTreeCtrlEx::FindParentItem(const char* text, int col, HTREEITEM start, unsigned long data) const
{
    const std::string wanted = text ? text : "";
    for (HTREEITEM item = start ? start : GetRootItem(); item; item = GetNextSiblingItem(item)) {
        const TreeItemRecord* record = GetRecord(item);
        if (record && record->GetCell(col) == wanted && (data == 0 || record->data == data))
            return item;
    }
    return nullptr;
}

bool TsTreeCtrlEx::Expand(HTREEITEM item, unsigned int code)
{
    const bool done = TsTreeCtrl::Expand(item, code);
    ResetVertScrollBar();
    return done;
}

void TsTreeCtrlEx::SortItems(int col, bool ascending, HTREEITEM parent)
{
    TreeListRules::SortItems(*this, Records(), col, ascending, parent, mGroupsFirst);
}

void TsTreeCtrlEx::ResetVertScrollBar()
{
    if (mOwner)
        mOwner->ResetVertScrollBar();
}

// --- painting -----------------------------------------------------------------------------

void TsTreeCtrlEx::DrawItemText(QPainter& painter, const std::string& text, const QRect& rect, int width,
                                int align) const
{
    if (text.empty())
        return;
    QRect area(QPoint(rect.left(), rect.top()), QPoint(rect.left() + width - 6, rect.bottom()));
    if (align == 0)
        area.setLeft(area.left() + 7);
    else if (align == 1)
        area.setRight(area.right() + 1);
    if (area.width() <= 0)
        return;
    const QString line = QString::fromStdString(text);
    painter.drawText(area, static_cast<int>(AlignmentOf(align) | Qt::AlignVCenter) | Qt::TextSingleLine,
                     painter.fontMetrics().elidedText(line, Qt::ElideRight, area.width()));
}

void TsTreeCtrlEx::PaintRow(QPainter& painter, const QStyleOptionViewItem& option, HTREEITEM item) const
{
    TreeItemRecord* record = GetRecord(item);
    if (!record)
        return;
    // A child of a group counts as a group itself.
    if (const TreeItemRecord* parent = GetRecord(GetParentItem(item)); parent && parent->group)
        record->group = true;
    const QRect row = option.rect;
    const int labelLeft = style()->subElementRect(QStyle::SE_ItemViewItemText, &option, this).left();
    QFont font = this->font();
    if (record->bold)
        font.setWeight(QFont::Bold);
    painter.save();
    painter.setFont(font);
    const std::string cell0 = record->GetCell(0);
    const int columnsLeft = -horizontalOffset();
    const int right = mColumnCount > 1 ? columnsLeft + mColumnsWidth
                                       : labelLeft + QFontMetrics(font).horizontalAdvance(QString::fromStdString(cell0)) + 14;
    const QRect fill(QPoint(labelLeft, row.top()), QPoint(right, row.bottom()));
    const bool selected = option.state & QStyle::State_Selected;
    QColor text = record->colour == TreeItemRecord::kWindowTextColour ? Sys(COLOR_WINDOWTEXT)
                                                                      : korva::ToQColor(record->colour);
    if (selected) {
        painter.fillRect(fill, Sys(COLOR_HIGHLIGHT));
        if (record->colour == TreeItemRecord::kWindowTextColour)
            text = Sys(COLOR_HIGHLIGHTTEXT);
    } else {
        painter.fillRect(fill, Sys(COLOR_WINDOW));
    }
    painter.setPen(text);
    const int width0 = mColumnCount > 0 ? columnsLeft + GetColumnWidth(0) - labelLeft : right - labelLeft;
    DrawItemText(painter, cell0, QRect(labelLeft, row.top(), width0, row.height()), width0,
                 record->group ? 0 : GetColumnAlign(0));
    int x = columnsLeft + GetColumnWidth(0);
    for (int col = 1; col < mColumnCount; ++col) {
        const int width = GetColumnWidth(col);
        painter.setClipRect(QRect(x, row.top(), width, row.height()));
        DrawItemText(painter, record->GetCell(col), QRect(x, row.top(), width, row.height()), width,
                     GetColumnAlign(col));
        x += width;
    }
    painter.restore();
}

// --- mouse and keys -------------------------------------------------------------------------

void TsTreeCtrlEx::OnLButtonDown(QMouseEvent* event)
{
    setUpdatesEnabled(false);
    unsigned int flags = 0;
    HTREEITEM hit = HitTest(mPressPoint, &flags);
    mLastClicked = hit;
    const bool plain = !(event->modifiers() & (Qt::ControlModifier | Qt::ShiftModifier));
    if (mSelectionState == eMultiSelection && plain && (flags & TVHT_ONITEMBUTTON)) {
        DefaultMousePress(event); // opening a branch keeps the selection
        OnSelectionChanged();
    } else {
        TsTreeCtrl::OnLButtonDown(event);
    }
    if (mSelectionState == eSingleSelection && hit && (flags & OnItemFlags()))
        setCurrentItem(Q(hit));
    setUpdatesEnabled(true);
    viewport()->update();
    // The selection of states 1 and 2 is made here by hand: tell the owner.
    if (mSelectionState != eSingleSelection)
        emit SelChanged();
}

void TsTreeCtrlEx::OnRButtonDown(QMouseEvent* event)
{
    mLastClicked = nullptr;
    TsTreeCtrl::OnRButtonDown(event);
}

void TsTreeCtrlEx::mouseDoubleClickEvent(QMouseEvent* event)
{
    const QPoint point = event->position().toPoint();
    unsigned int flags = 0;
    HTREEITEM hit = HitTest(point, &flags);
    if (flags & TVHT_ONITEMBUTTON) {
        QTreeWidget::mouseDoubleClickEvent(event);
        return;
    }
    if (hit && (flags & TVHT_ONITEMSTATEICON) && (mStyle & TVS_CHECKBOXES)) {
        SetCheck(hit, TreeRules::eToggle);
    } else if (mColumnCount == 0 || point.x() < -horizontalOffset() + GetColumnWidth(0)) {
        // Only the first column opens and closes a branch.
        QTreeWidget::mouseDoubleClickEvent(event);
        ResetVertScrollBar();
    }
    setFocus();
    emit DoubleClicked();
}

void TsTreeCtrlEx::keyPressEvent(QKeyEvent* event)
{
    TsTreeCtrl::keyPressEvent(event);
    ResetVertScrollBar();
}

void TsTreeCtrlEx::focusInEvent(QFocusEvent* event)
{
    mLastClicked = nullptr;
    TsTreeCtrl::focusInEvent(event);
}
