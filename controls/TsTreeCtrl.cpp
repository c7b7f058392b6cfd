#include <KORVAutlwin/controls/TsTreeCtrl.h>

#include <KORVAutlwin/frame/TsMessageBox.h>

#include <QApplication>
#include <QIODevice>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <QStyleOptionViewItem>

#include <algorithm>

namespace {

constexpr int kDataRole = Qt::UserRole;
constexpr int kCheckRole = Qt::UserRole + 1;
constexpr int kBoldRole = Qt::UserRole + 2;
constexpr int kImageRole = Qt::UserRole + 3;
constexpr int kSelectedImageRole = Qt::UserRole + 4;

// The comparison of the running SortChildren call; sorting runs on the UI thread only.
const std::function<int(HTREEITEM, HTREEITEM)>* gCompare = nullptr;

} // namespace

bool TsTreeCtrl::Item::operator<(const QTreeWidgetItem& other) const
{
    return gCompare ? (*gCompare)(H(this), H(&other)) < 0 : QTreeWidgetItem::operator<(other);
}

TsTreeCtrl::TsTreeCtrl(QWidget* parent, unsigned long style) : QTreeWidget(parent), mStyle(style)
{
    setHeaderHidden(true);
    setColumnCount(1);
    setDragEnabled(false);
    setExpandsOnDoubleClick(true);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setRootIsDecorated(style & TVS_LINESATROOT);
    setMouseTracking(true);
    SetStateImageList();
}

TsTreeCtrl::~TsTreeCtrl()
{
    if (mHoverTimer)
        killTimer(mHoverTimer);
}

void TsTreeCtrl::ModifyStyle(unsigned long remove, unsigned long add)
{
    mStyle = (mStyle & ~remove) | add;
    setRootIsDecorated(mStyle & TVS_LINESATROOT);
    SetStateImageList();
}

void TsTreeCtrl::SetStateImageList()
{
    // The check boxes are the style's own indicators; the index is kept per item.
    viewport()->update();
}

// --- the platform tree ------------------------------------------------------------

HTREEITEM TsTreeCtrl::InsertItem(const char* text, HTREEITEM parent, HTREEITEM after)
{
    return InsertItem(text, 0, 0, parent, after);
}

HTREEITEM TsTreeCtrl::InsertItem(const char* text, int image, int selectedImage, HTREEITEM parent, HTREEITEM after)
{
    Item* item = NewItem(text);
    if (image || selectedImage) {
        item->setData(0, kImageRole, image);
        item->setData(0, kSelectedImageRole, selectedImage);
    }
    Place(item, parent, after);
    return H(item);
}

TsTreeCtrl::Item* TsTreeCtrl::NewItem(const char* text)
{
    auto* item = new Item;
    item->setText(0, QString::fromUtf8(text ? text : ""));
    return item;
}

void TsTreeCtrl::Place(QTreeWidgetItem* item, HTREEITEM parent, HTREEITEM after)
{
    QTreeWidgetItem* owner = parent ? Q(parent) : invisibleRootItem();
    if (after == TVI_FIRST)
        owner->insertChild(0, item);
    else if (after == TVI_LAST || !after || Q(after)->parent() != (parent ? Q(parent) : nullptr))
        owner->addChild(item);
    else
        owner->insertChild(owner->indexOfChild(Q(after)) + 1, item);
}

HTREEITEM TsTreeCtrl::InsertItem(const std::string& text, HTREEITEM parent)
{
    return InsertItem(text.c_str(), 0, 0, parent, TVI_LAST);
}

void TsTreeCtrl::ForgetItem(QTreeWidgetItem* item)
{
    // What the control keeps about an item goes with it.
    mAppearance.erase(H(item));
    for (HTREEITEM* kept : {&mRangeAnchor, &mDragSource, &mDropTarget, &mDropHighlight, &mInsertMark, &mPressItem})
        if (*kept == H(item))
            *kept = nullptr;
    for (int i = 0; i < item->childCount(); ++i)
        ForgetItem(item->child(i));
}

bool TsTreeCtrl::DeleteItem(HTREEITEM item)
{
    if (!item)
        return false;
    ForgetItem(Q(item));
    delete Q(item);
    return true;
}

bool TsTreeCtrl::DeleteAllItems()
{
    mAppearance.clear();
    mRangeAnchor = mDragSource = mDropTarget = mDropHighlight = mInsertMark = mPressItem = nullptr;
    clear();
    return true;
}

std::string TsTreeCtrl::GetItemText(HTREEITEM item) const
{
    return item ? Q(item)->text(0).toStdString() : std::string();
}

bool TsTreeCtrl::SetItemText(HTREEITEM item, const char* text)
{
    if (!item)
        return false;
    Q(item)->setText(0, QString::fromUtf8(text ? text : ""));
    return true;
}

uintptr_t TsTreeCtrl::GetItemData(HTREEITEM item) const
{
    return item ? Q(item)->data(0, kDataRole).value<qulonglong>() : 0;
}

bool TsTreeCtrl::SetItemData(HTREEITEM item, uintptr_t data)
{
    if (!item)
        return false;
    Q(item)->setData(0, kDataRole, QVariant::fromValue<qulonglong>(data));
    return true;
}

unsigned int TsTreeCtrl::GetItemState(HTREEITEM item, unsigned int mask) const
{
    if (!item)
        return 0;
    unsigned int state = static_cast<unsigned int>(GetCheckIndex(item)) << 12;
    if (Q(item)->isSelected())
        state |= TVIS_SELECTED;
    if (Q(item)->data(0, kBoldRole).toBool())
        state |= TVIS_BOLD;
    if (Q(item)->isExpanded())
        state |= TVIS_EXPANDED;
    if (item == mDropHighlight)
        state |= TVIS_DROPHILITED;
    return state & mask;
}

bool TsTreeCtrl::SetItemState(HTREEITEM item, unsigned int state, unsigned int mask)
{
    if (!item)
        return false;
    if (mask & TVIS_SELECTED)
        Q(item)->setSelected(state & TVIS_SELECTED);
    if (mask & TVIS_BOLD) {
        Q(item)->setData(0, kBoldRole, bool(state & TVIS_BOLD));
        ApplyAppearance(item);
    }
    if (mask & TVIS_EXPANDED)
        Q(item)->setExpanded(state & TVIS_EXPANDED);
    if (mask & TVIS_STATEIMAGEMASK)
        SetCheckIndex(item, static_cast<int>((state & TVIS_STATEIMAGEMASK) >> 12));
    return true;
}

bool TsTreeCtrl::Expand(HTREEITEM item, unsigned int code)
{
    if (!item)
        return false;
    const bool open = code == TVE_EXPAND || (code == TVE_TOGGLE && !Q(item)->isExpanded());
    Q(item)->setExpanded(open);
    if (!mBkImage.isNull())
        viewport()->update(); // the image scrolls with the items
    return true;
}

void TsTreeCtrl::EnsureVisible(HTREEITEM item)
{
    if (item)
        scrollToItem(Q(item));
}

HTREEITEM TsTreeCtrl::GetSelectedItem() const
{
    return H(currentItem());
}

bool TsTreeCtrl::SelectItem(HTREEITEM item)
{
    setCurrentItem(Q(item));
    return true;
}

HTREEITEM TsTreeCtrl::HitTest(QPoint point, unsigned int* flags) const
{
    QTreeWidgetItem* item = itemAt(point);
    // Right of the last column the row goes on to the client edge.
    if (!item && point.x() >= 0 && point.x() < viewport()->width())
        item = itemAt(QPoint(columnViewportPosition(0) + columnWidth(0) - 1, point.y()));
    unsigned int where = TVHT_NOWHERE;
    if (item) {
        const QRect row = visualItemRect(item);
        if (point.x() < row.left()) {
            where = point.x() >= row.left() - indentation() && item->childCount() > 0 ? TVHT_ONITEMBUTTON
                                                                                       : TVHT_ONITEMINDENT;
        } else {
            int left = row.left();
            QStyleOptionViewItem option;
            const int margin = style()->pixelMetric(QStyle::PM_FocusFrameHMargin, &option, this) + 1;
            if (GetCheckIndex(H(item)) != 0) {
                left += style()->pixelMetric(QStyle::PM_IndicatorWidth, &option, this) + 2 * margin;
                if (point.x() < left)
                    where = TVHT_ONITEMSTATEICON;
            }
            if (where == TVHT_NOWHERE && !item->icon(0).isNull()) {
                left += iconSize().width() + 2 * margin;
                if (point.x() < left)
                    where = TVHT_ONITEMICON;
            }
            if (where == TVHT_NOWHERE) {
                const QFont font = item->font(0);
                left += QFontMetrics(font).horizontalAdvance(item->text(0)) + 2 * margin;
                where = point.x() < left ? TVHT_ONITEMLABEL : TVHT_ONITEMRIGHT;
            }
        }
    }
    if (flags)
        *flags = where;
    return where == TVHT_NOWHERE ? nullptr : H(item);
}

void TsTreeCtrl::SelectDropTarget(HTREEITEM item)
{
    mDropHighlight = item;
    viewport()->update();
}

void TsTreeCtrl::SetInsertMark(HTREEITEM item, bool)
{
    mInsertMark = item;
    viewport()->update();
}

// --- TreeAccess -----------------------------------------------------------------

HTREEITEM TsTreeCtrl::GetRootItem() const
{
    return H(topLevelItem(0));
}

HTREEITEM TsTreeCtrl::GetParentItem(HTREEITEM item) const
{
    return item ? H(Q(item)->parent()) : nullptr;
}

HTREEITEM TsTreeCtrl::GetChildItem(HTREEITEM item) const
{
    return item ? H(Q(item)->child(0)) : H(topLevelItem(0));
}

HTREEITEM TsTreeCtrl::GetNextSiblingItem(HTREEITEM item) const
{
    if (!item)
        return nullptr;
    QTreeWidgetItem* parent = Q(item)->parent();
    if (!parent)
        return H(topLevelItem(indexOfTopLevelItem(Q(item)) + 1));
    return H(parent->child(parent->indexOfChild(Q(item)) + 1));
}

HTREEITEM TsTreeCtrl::GetPrevSiblingItem(HTREEITEM item) const
{
    if (!item)
        return nullptr;
    QTreeWidgetItem* parent = Q(item)->parent();
    const int index = parent ? parent->indexOfChild(Q(item)) : indexOfTopLevelItem(Q(item));
    if (index <= 0)
        return nullptr;
    return parent ? H(parent->child(index - 1)) : H(topLevelItem(index - 1));
}

int TsTreeCtrl::GetCheckIndex(HTREEITEM item) const
{
    return item ? Q(item)->data(0, kCheckRole).toInt() : 0;
}

void TsTreeCtrl::SetCheckIndex(HTREEITEM item, int index)
{
    if (!item)
        return;
    QTreeWidgetItem* it = Q(item);
    it->setData(0, kCheckRole, index);
    // The box shows the index: none for 0, greyed for 5.
    if (index == TreeRules::eNoCheckBox) {
        it->setData(0, Qt::CheckStateRole, QVariant());
        return;
    }
    const Qt::CheckState shown = index == TreeRules::ePartlyChecked ? Qt::PartiallyChecked
                                 : TreeRules::GetCheck(*this, item)  ? Qt::Checked
                                                                     : Qt::Unchecked;
    it->setData(0, Qt::CheckStateRole, shown);
    const Qt::ItemFlags flags = it->flags() & ~(Qt::ItemIsUserCheckable | Qt::ItemIsAutoTristate);
    it->setFlags(index == TreeRules::eDisabled ? flags & ~Qt::ItemIsEnabled : flags | Qt::ItemIsEnabled);
}

void TsTreeCtrl::SortChildren(HTREEITEM parent, const std::function<int(HTREEITEM, HTREEITEM)>& compare)
{
    const auto* previous = gCompare;
    gCompare = &compare;
    (parent ? Q(parent) : invisibleRootItem())->sortChildren(0, Qt::AscendingOrder);
    gCompare = previous;
}

// --- selection --------------------------------------------------------------------

// The first selected item from `item` on (itself included), walking with `step`.
HTREEITEM TsTreeCtrl::FindSelected(HTREEITEM item, HTREEITEM (TsTreeCtrl::*step)(HTREEITEM) const) const
{
    for (; item; item = (this->*step)(item))
        if (Q(item)->isSelected())
            return item;
    return nullptr;
}

HTREEITEM TsTreeCtrl::GetFirstSelectedItem() const
{
    return FindSelected(GetRootItem(), &TsTreeCtrl::GetNextItem);
}

HTREEITEM TsTreeCtrl::GetNextSelectedItem(HTREEITEM item) const
{
    if (mSelectionState == eSingleSelection || !item)
        return nullptr;
    return FindSelected(GetNextItem(item), &TsTreeCtrl::GetNextItem);
}

HTREEITEM TsTreeCtrl::GetPrevSelectedItem(HTREEITEM item) const
{
    if (mSelectionState == eSingleSelection || !item)
        return nullptr;
    return FindSelected(GetPrevItem(item), &TsTreeCtrl::GetPrevItem);
}

int TsTreeCtrl::GetSelectedItemCount() const
{
    int count = 0;
    for (HTREEITEM item = GetRootItem(); item; item = GetNextItem(item))
        count += Q(item)->isSelected();
    return count;
}

void TsTreeCtrl::ClearSelection()
{
    if (mSelectionState == eSingleSelection)
        return;
    for (HTREEITEM item = GetRootItem(); item; item = GetNextItem(item))
        if (Q(item)->isSelected())
            Q(item)->setSelected(false);
    mRangeAnchor = nullptr;
}

void TsTreeCtrl::SetSelectionState(int state)
{
    mSelectionState = state;
    // In states 1 and 2 the control sets the selected bits itself.
    setSelectionMode(state == eSingleSelection ? QAbstractItemView::SingleSelection : QAbstractItemView::NoSelection);
}

int TsTreeCtrl::SelectItems(HTREEITEM first, HTREEITEM last)
{
    if (mSelectionState != eMultiSelection)
        return 0;
    QTreeWidgetItem* item = topLevelItem(0);
    while (item && H(item) != first && H(item) != last) {
        item->setSelected(false);
        item = itemBelow(item);
    }
    if (!item)
        return 0;
    setCurrentItem(Q(last));
    const HTREEITEM other = H(item) == first ? last : first;
    bool inside = true;
    for (; item; item = itemBelow(item)) {
        item->setSelected(inside);
        if (H(item) == other)
            inside = false;
    }
    return 1;
}

// --- appearance ----------------------------------------------------------------------

void TsTreeCtrl::ApplyAppearance(HTREEITEM item)
{
    QTreeWidgetItem* it = Q(item);
    const auto entry = mAppearance.find(item);
    const bool bold = it->data(0, kBoldRole).toBool();
    if (entry != mAppearance.end() && entry->second.colour != Appearance::CLR_NONE)
        it->setForeground(0, korva::ToQColor(entry->second.colour));
    else
        it->setData(0, Qt::ForegroundRole, QVariant());
    const bool ownFont = entry != mAppearance.end() && entry->second.font.lfFaceName[0] != '\0';
    if (!ownFont && !bold) {
        it->setData(0, Qt::FontRole, QVariant());
        return;
    }
    QFont font = ownFont ? korva::CreateFontIndirect(entry->second.font) : this->font();
    if (bold)
        font.setWeight(QFont::Bold);
    it->setFont(0, font);
}

void TsTreeCtrl::SetItemColor(HTREEITEM item, COLORREF colour)
{
    if (!item)
        return;
    mAppearance[item].colour = colour;
    ApplyAppearance(item);
}

COLORREF TsTreeCtrl::GetItemColor(HTREEITEM item) const
{
    const auto entry = mAppearance.find(item);
    return entry == mAppearance.end() ? Appearance::CLR_NONE : entry->second.colour;
}

void TsTreeCtrl::SetItemFont(HTREEITEM item, const LOGFONT& font)
{
    if (!item)
        return;
    mAppearance[item].font = font;
    ApplyAppearance(item);
}

int TsTreeCtrl::GetItemFont(HTREEITEM item, LOGFONT* font) const
{
    const auto entry = mAppearance.find(item);
    if (entry == mAppearance.end() || entry->second.font.lfFaceName[0] == '\0')
        return 0;
    if (font)
        *font = entry->second.font;
    return 1;
}

void TsTreeCtrl::SetItemBold(HTREEITEM item, bool bold)
{
    SetItemState(item, bold ? TVIS_BOLD : 0, TVIS_BOLD);
}

bool TsTreeCtrl::GetItemBold(HTREEITEM item) const
{
    return GetItemState(item, TVIS_BOLD) != 0;
}

int TsTreeCtrl::SetBkImage(const char* fileName)
{
    mBkImage = QPixmap();
    viewport()->setAutoFillBackground(true);
    QPixmap image;
    if (!fileName || !image.load(QString::fromUtf8(fileName)))
        return 0;
    mBkImage = image;
    viewport()->setAutoFillBackground(false);
    viewport()->update();
    return 1;
}

// --- structure --------------------------------------------------------------------------

HTREEITEM TsTreeCtrl::CopyItem(HTREEITEM item, HTREEITEM parent, HTREEITEM after)
{
    if (!item)
        return nullptr;
    setUpdatesEnabled(false);
    HTREEITEM copy = InsertItem(Q(item)->text(0).toUtf8().constData(), Q(item)->data(0, kImageRole).toInt(),
                                Q(item)->data(0, kSelectedImageRole).toInt(), parent, after);
    CopyImages(item, copy);
    SetItemData(copy, GetItemData(item));
    SetCheckIndex(copy, GetCheckIndex(item));
    if (const auto entry = mAppearance.find(item); entry != mAppearance.end())
        mAppearance[copy] = entry->second;
    Q(copy)->setData(0, kBoldRole, Q(item)->data(0, kBoldRole));
    ApplyAppearance(copy);
    OnItemCopied(item, copy);
    setUpdatesEnabled(true);
    viewport()->update();
    return copy;
}

void TsTreeCtrl::CopyImages(HTREEITEM from, HTREEITEM to)
{
    Q(to)->setIcon(0, Q(from)->icon(0));
    Q(to)->setData(0, kImageRole, Q(from)->data(0, kImageRole));
    Q(to)->setData(0, kSelectedImageRole, Q(from)->data(0, kSelectedImageRole));
}

HTREEITEM TsTreeCtrl::CopyBranch(HTREEITEM item, HTREEITEM parent, HTREEITEM after)
{
    HTREEITEM copy = CopyItem(item, parent, after);
    if (!copy)
        return nullptr;
    for (HTREEITEM child = GetChildItem(item); child; child = GetNextSiblingItem(child))
        CopyBranch(child, copy, TVI_LAST);
    return copy;
}

void TsTreeCtrl::ExpandBranch(HTREEITEM item, unsigned int action)
{
    if (!item || !ItemHasChildren(item))
        return;
    Expand(item, action);
    for (HTREEITEM child = GetChildItem(item); child; child = GetNextSiblingItem(child))
        ExpandBranch(child, action);
}

void TsTreeCtrl::ExpandAll(unsigned int action)
{
    for (HTREEITEM item = GetRootItem(); item; item = GetNextSiblingItem(item))
        ExpandBranch(item, action);
    EnsureVisible(GetSelectedItem());
}

void TsTreeCtrl::DeleteSelectedItems(bool ask)
{
    HTREEITEM first = GetFirstSelectedItem();
    if (first && ask) {
        if (TsMessageBox(13329u, MB_YESNO) != IDYES)
            return;
        viewport()->update();
    }
    std::vector<HTREEITEM> selected;
    for (HTREEITEM item = first; item; item = GetNextSelectedItem(item))
        selected.push_back(item);
    for (HTREEITEM item : selected)
        DeleteItemData(item);
    // Children go with a deleted parent: delete from the end, skipping the gone ones.
    for (auto it = selected.rbegin(); it != selected.rend(); ++it) {
        bool parentGoes = false;
        for (HTREEITEM up = GetParentItem(*it); up && !parentGoes; up = GetParentItem(up))
            parentGoes = std::find(selected.begin(), selected.end(), up) != selected.end();
        if (!parentGoes)
            DeleteItem(*it);
    }
    setFocus();
    if (ask)
        viewport()->update();
}

void TsTreeCtrl::Serialize(QIODevice& archive, bool storing)
{
    if (storing) {
        const std::string text = TreeRules::StoreText(*this);
        archive.write(text.data(), static_cast<qint64>(text.size()));
    } else {
        const QByteArray text = archive.readAll();
        TreeRules::LoadText(*this, std::string(text.constData(), static_cast<size_t>(text.size())));
    }
}

HTREEITEM TsTreeCtrl::FindItem(const char* text, bool matchCase, bool down, bool wholeWord, HTREEITEM start)
{
    return TreeRules::FindItem(*this, text ? text : "", matchCase, down, wholeWord, start ? start : GetSelectedItem(),
                               [this](HTREEITEM item) { return IsFindValid(item); });
}

void TsTreeCtrl::CopySelection()
{
    if (mCopiedDataCallback)
        mCopiedDataCallback();
}

// --- mouse ------------------------------------------------------------------------------

void TsTreeCtrl::mousePressEvent(QMouseEvent* event)
{
    mPressPoint = event->position().toPoint();
    mPressItem = nullptr;
    if (event->button() == Qt::RightButton)
        OnRButtonDown(event);
    else if (event->button() == Qt::LeftButton)
        OnLButtonDown(event);
    else
        QTreeWidget::mousePressEvent(event);
}

void TsTreeCtrl::OnLButtonDown(QMouseEvent* event)
{
    unsigned int flags = 0;
    HTREEITEM hit = HitTest(mPressPoint, &flags);
    if (flags & OnItemFlags())
        mPressItem = hit;
    const bool ctrl = event->modifiers() & Qt::ControlModifier;
    const bool shift = event->modifiers() & Qt::ShiftModifier;
    if (mSelectionState == eMultiSelection) {
        setUpdatesEnabled(false);
        if (ctrl && hit) {
            const bool flipped = !Q(hit)->isSelected();
            DefaultMousePress(event);
            Q(hit)->setSelected(flipped);
            mRangeAnchor = nullptr;
        } else if (shift) {
            if (!mRangeAnchor)
                mRangeAnchor = GetSelectedItem();
            DefaultMousePress(event);
            if (mRangeAnchor && hit)
                SelectItems(mRangeAnchor, hit);
        } else {
            ClearSelection();
            mRangeAnchor = nullptr;
            mDragSource = nullptr;
            DefaultMousePress(event);
            if (hit && (flags & OnItemFlags())) {
                Q(hit)->setSelected(true);
                setCurrentItem(Q(hit));
            }
        }
        setUpdatesEnabled(true);
        viewport()->update();
    } else if (mSelectionState == eOneLeafPerParent) {
        setUpdatesEnabled(false);
        const bool leaf = hit && !ItemHasChildren(hit);
        if (leaf)
            for (HTREEITEM sibling = GetChildItem(GetParentItem(hit)); sibling; sibling = GetNextSiblingItem(sibling))
                if (sibling != hit)
                    Q(sibling)->setSelected(false);
        DefaultMousePress(event);
        if (HTREEITEM root = GetNextItem(nullptr))
            Q(root)->setSelected(false);
        if (hit)
            Q(hit)->setSelected(leaf);
        mRangeAnchor = nullptr;
        setUpdatesEnabled(true);
        viewport()->update();
    } else {
        if (hit && (flags & OnItemFlags()))
            setCurrentItem(Q(hit));
        if (hit && (flags & TVHT_ONITEMSTATEICON) && (mStyle & TVS_CHECKBOXES)) {
            SetCheck(hit, TreeRules::eToggle);
            OnSelectionChanged();
            return; // eaten
        }
        DefaultMousePress(event);
    }
    OnSelectionChanged();
}

void TsTreeCtrl::OnRButtonDown(QMouseEvent* event)
{
    HTREEITEM hit = HitTest(mPressPoint);
    if (hit && !Q(hit)->isSelected() && mSelectionState != eOneLeafPerParent) {
        if (mSelectionState == eMultiSelection)
            ClearSelection();
        mRangeAnchor = nullptr;
        Q(hit)->setSelected(true);
        setCurrentItem(Q(hit));
    }
    QTreeWidget::mousePressEvent(event);
    emit RButtonDown();
}

void TsTreeCtrl::mouseMoveEvent(QMouseEvent* event)
{
    const QPoint point = event->position().toPoint();
    // The hover timer is re-armed on every move, with or without a drag.
    if (mHoverTimer)
        killTimer(mHoverTimer);
    mHoverTimer = startTimer(kHoverDelay);
    mHoverPoint = point;

    if (!mDragging && (event->buttons() & Qt::LeftButton) && mPressItem && !(mStyle & TVS_DISABLEDRAGDROP) &&
        (point - mPressPoint).manhattanLength() >= QApplication::startDragDistance())
        BeginDrag(mPressItem, mPressPoint);
    if (!mDragging) {
        if (!(event->buttons() & Qt::LeftButton))
            QTreeWidget::mouseMoveEvent(event);
        return;
    }
    unsigned int flags = 0;
    HTREEITEM hit = HitTest(point, &flags);
    if (flags == TVHT_NOWHERE) {
        SelectDropTarget(nullptr);
        SetInsertMark(nullptr);
        mDropTarget = nullptr;
    } else {
        bool inside = false;
        HTREEITEM target = GetDropTarget(hit, inside);
        if (target != mDropTarget) {
            SelectDropTarget(inside ? target : nullptr);
            SetInsertMark(inside ? nullptr : target, true);
            mDropTarget = target;
        }
    }
    viewport()->update();
    RefreshDragCursor(event->modifiers() & Qt::ControlModifier);
}

void TsTreeCtrl::UpdateDropTarget(QPoint point)
{
    unsigned int flags = 0;
    HTREEITEM hit = HitTest(point, &flags);
    if (flags == TVHT_NOWHERE) {
        SelectDropTarget(nullptr);
        SetInsertMark(nullptr);
        mDropTarget = nullptr;
        return;
    }
    bool inside = false;
    HTREEITEM target = GetDropTarget(hit, inside);
    SelectDropTarget(inside ? target : nullptr);
    SetInsertMark(inside ? nullptr : target, true);
    mDropTarget = target;
}

HTREEITEM TsTreeCtrl::GetDropTarget(HTREEITEM item, bool&)
{
    if (!item || item == mDragSource || item == GetParentItem(mDragSource))
        return nullptr;
    for (HTREEITEM up = GetParentItem(item); up; up = GetParentItem(up))
        if (up == mDragSource)
            return nullptr; // a branch can't go into itself
    return item;
}

void TsTreeCtrl::RefreshDragCursor(bool ctrl)
{
    Qt::CursorShape shape = !mDropTarget ? Qt::ForbiddenCursor : ctrl ? Qt::DragCopyCursor : Qt::ArrowCursor;
    viewport()->setCursor(shape);
}

QPixmap TsTreeCtrl::CreateDragImageEx(HTREEITEM item)
{
    const QString text = Q(item)->text(0);
    const QFontMetrics metrics(font());
    QPixmap image(metrics.horizontalAdvance(text) + 4, visualItemRect(Q(item)).height());
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setPen(palette().color(QPalette::ButtonText));
    painter.drawText(image.rect(), Qt::AlignVCenter | Qt::AlignLeft, text);
    return image;
}

void TsTreeCtrl::BeginDrag(HTREEITEM item, QPoint point)
{
    mDragSource = item;
    mDropTarget = nullptr;
    // Only one item is ever dragged.
    if (GetSelectedItemCount() > 1) {
        ClearSelection();
        setCurrentItem(Q(item));
        viewport()->update();
    }
    if (!IsDropSource(item)) {
        mDragSource = nullptr;
        return;
    }
    mDragImage = CreateDragImageEx(item);
    mDragging = true;
    const QRect rect = visualItemRect(Q(item));
    mHotSpot = QPoint(horizontalScrollBar()->value() + point.x() - indentation() * GetIndentLevel(item),
                      point.y() - rect.top());
    viewport()->grabMouse();
}

void TsTreeCtrl::EndDrag()
{
    mDragging = false;
    mDragImage = QPixmap();
    viewport()->releaseMouse();
    viewport()->unsetCursor();
    viewport()->update();
}

void TsTreeCtrl::Drop(bool ctrl)
{
    EndDrag();
    bool inside = false;
    HTREEITEM target = mDropTarget ? GetDropTarget(mDropTarget, inside) : nullptr;
    SelectDropTarget(nullptr);
    SetInsertMark(nullptr);
    if (!target || !mDragSource)
        return;
    HTREEITEM copy = nullptr;
    if (inside) {
        Expand(target, TVE_EXPAND);
        EnsureVisible(target);
        copy = CopyBranch(mDragSource, target, TVI_LAST);
    } else {
        copy = CopyBranch(mDragSource, GetParentItem(target), target);
    }
    // A source that could not be copied stays where it is.
    if (!ctrl && copy)
        DeleteItem(mDragSource);
    mDragSource = nullptr;
    mDropTarget = nullptr;
    if (copy) {
        setCurrentItem(Q(copy));
        if (mSelectionState != eSingleSelection)
            Q(copy)->setSelected(true);
    }
}

void TsTreeCtrl::mouseReleaseEvent(QMouseEvent* event)
{
    mPressItem = nullptr;
    if (mDragging && event->button() == Qt::LeftButton) {
        QTreeWidget::mouseReleaseEvent(event);
        Drop(event->modifiers() & Qt::ControlModifier);
        return;
    }
    QTreeWidget::mouseReleaseEvent(event);
}

void TsTreeCtrl::timerEvent(QTimerEvent* event)
{
    if (event->timerId() != mHoverTimer) {
        QTreeWidget::timerEvent(event);
        return;
    }
    killTimer(mHoverTimer); // fires once
    mHoverTimer = 0;
    if (!mDragging)
        return;
    HTREEITEM hit = HitTest(mHoverPoint);
    if (hit && ItemHasChildren(hit) && !Q(hit)->isExpanded())
        Expand(hit, TVE_EXPAND);
    UpdateDropTarget(mHoverPoint);
}

void TsTreeCtrl::focusOutEvent(QFocusEvent* event)
{
    if (mDragging) {
        EndDrag();
        SelectDropTarget(nullptr);
        SetInsertMark(nullptr);
    }
    QTreeWidget::focusOutEvent(event);
}

// --- keyboard ---------------------------------------------------------------------------

void TsTreeCtrl::keyPressEvent(QKeyEvent* event)
{
    const int key = event->key();
    const bool ctrl = event->modifiers() & Qt::ControlModifier;
    if (key == Qt::Key_Space && (mStyle & TVS_CHECKBOXES))
        SetCheck(GetSelectedItem(), TreeRules::eToggle);
    if (key == Qt::Key_Escape && mDragging) {
        EndDrag();
        SelectDropTarget(nullptr);
        SetInsertMark(nullptr);
        return;
    }
    if (key == Qt::Key_Delete && mDeleteEnabled) {
        DeleteSelectedItems(true);
        return;
    }
    if (key != Qt::Key_Up && key != Qt::Key_Down) {
        if (mDragging)
            RefreshDragCursor(ctrl);
        if (key == Qt::Key_C) {
            // Without Ctrl the key is dropped on purpose: no search-as-you-type jump.
            if (ctrl && mCopiedDataCallback)
                mCopiedDataCallback();
            return;
        }
        QTreeWidget::keyPressEvent(event);
        return;
    }
    if (event->modifiers() & Qt::ShiftModifier) {
        if (!mRangeAnchor)
            mRangeAnchor = GetSelectedItem();
        QKeyEvent plain(event->type(), key, Qt::NoModifier);
        QTreeWidget::keyPressEvent(&plain);
        HTREEITEM current = GetSelectedItem();
        if (mRangeAnchor && current)
            SelectItems(mRangeAnchor, current);
        OnSelectionChanged();
        return;
    }
    if (mDragging)
        ClearSelection();
    mRangeAnchor = nullptr;
    QTreeWidget::keyPressEvent(event);
    OnSelectionChanged();
}

void TsTreeCtrl::keyReleaseEvent(QKeyEvent* event)
{
    if (mDragging)
        RefreshDragCursor(event->modifiers() & Qt::ControlModifier);
    QTreeWidget::keyReleaseEvent(event);
}

// --- painting ---------------------------------------------------------------------------

void TsTreeCtrl::scrollContentsBy(int dx, int dy)
{
    QTreeWidget::scrollContentsBy(dx, dy);
    if (!mBkImage.isNull())
        viewport()->update(); // the image scrolls with the items
}

void TsTreeCtrl::paintEvent(QPaintEvent* event)
{
    if (!mBkImage.isNull()) {
        QPainter painter(viewport());
        painter.fillRect(viewport()->rect(), palette().color(QPalette::Base));
        // Tiles begin at the root item's top and move with the horizontal scroll.
        const int top = topLevelItem(0) ? visualItemRect(topLevelItem(0)).top() : 0;
        const int w = mBkImage.width(), h = mBkImage.height();
        const QPoint offset(((horizontalScrollBar()->value() % w) + w) % w, ((-top % h) + h) % h);
        painter.drawTiledPixmap(viewport()->rect(), mBkImage, offset);
    }
    QTreeWidget::paintEvent(event);
    QPainter painter(viewport());
    if (mDropHighlight) {
        QColor highlight = palette().color(QPalette::Highlight);
        highlight.setAlpha(90);
        painter.fillRect(visualItemRect(Q(mDropHighlight)), highlight);
    }
    if (mInsertMark) {
        const QRect rect = visualItemRect(Q(mInsertMark));
        painter.setPen(QPen(palette().color(QPalette::Text), 2));
        painter.drawLine(rect.left(), rect.bottom(), rect.right(), rect.bottom());
    }
    if (mDragging && !mDragImage.isNull()) {
        painter.setOpacity(0.6);
        painter.drawPixmap(mHoverPoint - mHotSpot + QPoint(horizontalScrollBar()->value(), 0), mDragImage);
    }
}
