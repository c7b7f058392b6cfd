#include <KORVAutlwin/controls/TsListCtrl.h>

#include <KORVAutlwin/controls/CFlatHeaderCtrl.h>
#include <KORVAutlwin/controls/CInPlaceEdit.h>
#include <KORVAutlwin/controls/ListRules.h>
#include <KORVAutlwin/frame/MessageBoxTypes.h>
#include <KORVAutlwin/frame/TsMessageBox.h>
#include <KORVAutlwin/frame/WinApp.h>
#include <KORVAutlwin/toolkit/DisplayColor.h>
#include <KORVAutl/LanguageString.h>
#include <KORVAutl/TsString.h>

#include <QApplication>
#include <QClipboard>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QKeyEvent>
#include <QMimeData>
#include <QPainter>
#include <QScrollBar>
#include <QStyledItemDelegate>

#include <algorithm>

namespace {

constexpr int kEmptyTextGap = 10;
// Registered once per process; Qt needs no registration, the name is the format.
bool msHtmlFormatRegistered = false;

QColor Colour(COLORREF colour) { return korva::ToQColor(colour); }

} // namespace

// Paints each cell from the row's state bits and the list's colours.
class TsListItemDelegate : public QStyledItemDelegate
{
public:
    explicit TsListItemDelegate(TsListCtrl* list) : QStyledItemDelegate(list), mList(list) {}

protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override
    {
        QStyledItemDelegate::initStyleOption(option, index);
        mList->PrepaintItem(index.row(), index.column(), *option);
    }
    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override
    {
        QStyleOptionViewItem cell = option;
        initStyleOption(&cell, index);
        const QWidget* widget = cell.widget;
        QStyle* style = widget ? widget->style() : QApplication::style();
        style->drawControl(QStyle::CE_ItemViewItem, &cell, painter, widget);
        mList->PostpaintItem(painter, cell, index.row(), index.column());
    }

private:
    TsListCtrl* mList;
};

TsListCtrl::TsListCtrl(QWidget* parent)
    : QTreeView(parent), mData(new ListData(this)), mTextColor(korva::GetSysColor(COLOR_WINDOWTEXT)),
      mTextBkColor(korva::GetSysColor(COLOR_WINDOW)), mBkColor(korva::GetSysColor(COLOR_WINDOW)),
      mDisabledTextColor(korva::GetSysColor(COLOR_GRAYTEXT)), mDisabledTextBkColor(korva::GetSysColor(COLOR_BTNFACE)),
      mDisabledBkColor(korva::GetSysColor(COLOR_BTNFACE)), mMessageFont(QApplication::font("QMessageBox"))
{
    setModel(mData);
    setItemDelegate(new TsListItemDelegate(this));
    setRootIsDecorated(false);
    setItemsExpandable(false);
    setUniformRowHeights(true);
    setAllColumnsShowFocus(true);
    setSelectionMode(QAbstractItemView::NoSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setVerticalScrollMode(QAbstractItemView::ScrollPerItem);
    setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(false);
    // What the list adds to a subclassed window: selection always shown, full rows, label tips.
    mData->ModifyStyle(0, LVS_SHOWSELALWAYS);
    mData->SetExtendedStyle(mData->GetExtendedStyle() | LVS_EX_FULLROWSELECT | LVS_EX_LABELTIP);
    ConnectHeader();
    ApplyColors();
    // The view draws its focus frame on its current index: keep that on the focused row.
    connect(mData, &ListData::ItemStateChanged, this, [this](int row, unsigned int before, unsigned int after) {
        if ((after & LVIS_FOCUSED) && !(before & LVIS_FOCUSED) && selectionModel())
            selectionModel()->setCurrentIndex(mData->index(row, 0), QItemSelectionModel::NoUpdate);
    });
}

TsListCtrl::~TsListCtrl()
{
    if (!mPersistenceKey.empty() && WinApp::GetApp()) {
        std::vector<int> widths;
        for (int col = 0; col < GetColumnCount(); ++col)
            widths.push_back(GetColumnWidth(col));
        WinApp::GetApp()->WriteProfileString(kColumnWidthsSection, mPersistenceKey.c_str(),
                                             ListRules::FormatColumnWidths(widths).c_str());
    }
}

void TsListCtrl::ConnectHeader()
{
    QHeaderView* head = header();
    head->setStretchLastSection(false);
    head->setSectionsClickable(true);
    head->setSectionsMovable(false);
    head->setSectionResizeMode(mColumnSizingDisabled ? QHeaderView::Fixed : QHeaderView::Interactive);
    head->setHidden((GetStyle() & LVS_NOCOLUMNHEADER) != 0);
    // The divider's double click is ours to refuse.
    disconnect(head, &QHeaderView::sectionHandleDoubleClicked, this, nullptr);
    connect(head, &QHeaderView::sectionHandleDoubleClicked, this, [this](int col) {
        if (!mColumnSizingDisabled)
            AutoSizeColumn(col);
    });
    connect(head, &QHeaderView::sectionClicked, this, [this](int col) {
        if (QApplication::mouseButtons() & Qt::RightButton)
            return;
        OnHeaderItemClick(col);
    });
    connect(head, &QHeaderView::sectionResized, this, [this](int col, int, int width) {
        if (mSettingWidths)
            return;
        if (width >= 0 && width < mMinimumColumnSize) {
            mSettingWidths = true;
            header()->resizeSection(col, mMinimumColumnSize);
            mSettingWidths = false;
            width = mMinimumColumnSize;
        }
        mData->SetColumnWidth(col, width);
    });
}

void TsListCtrl::ApplyColumnWidthsToHeader()
{
    mSettingWidths = true;
    for (int col = 0; col < GetColumnCount(); ++col)
        header()->resizeSection(col, mData->GetColumnWidth(col));
    mSettingWidths = false;
}

void TsListCtrl::ModifyStyle(unsigned long remove, unsigned long add)
{
    mData->ModifyStyle(remove, add);
    header()->setHidden((GetStyle() & LVS_NOCOLUMNHEADER) != 0);
    viewport()->update();
}

void TsListCtrl::SetTextCallback(std::function<std::string(int row, int col)> callback)
{
    mData->SetTextCallback(std::move(callback));
}

int TsListCtrl::InsertColumn(int col, const char* title, int format, int width)
{
    const int at = mData->InsertColumn(col, title, format, width < 0 ? 100 : width);
    if (at >= 0)
        ApplyColumnWidthsToHeader();
    return at;
}

bool TsListCtrl::DeleteColumn(int col)
{
    return mData->DeleteColumn(col);
}

bool TsListCtrl::SetColumnWidth(int col, int width)
{
    if (!mData->SetColumnWidth(col, width))
        return false;
    mSettingWidths = true;
    header()->resizeSection(col, mData->GetColumnWidth(col));
    mSettingWidths = false;
    return true;
}

int TsListCtrl::RowHeight() const
{
    if (GetItemCount() > 0) {
        const int height = indexRowSizeHint(mData->index(0, 0));
        if (height > 0)
            return height;
    }
    return fontMetrics().height() + 4;
}

int TsListCtrl::GetClientWidth() const
{
    // The viewport follows a resize only later; the widget's own width is known at once.
    const int scroller = verticalScrollBar()->isVisible() ? verticalScrollBar()->width() : 0;
    return std::max(0, width() - 2 * frameWidth() - scroller);
}

int TsListCtrl::GetTopIndex() const
{
    return GetItemCount() > 0 ? verticalScrollBar()->value() : 0;
}

int TsListCtrl::GetCountPerPage() const
{
    return std::max(1, viewport()->height() / RowHeight());
}

QRect TsListCtrl::GetItemRect(int row) const
{
    if (row < 0 || row >= GetItemCount())
        return QRect();
    int total = 0;
    for (int col = 0; col < GetColumnCount(); ++col)
        total += GetColumnWidth(col);
    const int h = RowHeight();
    return QRect(-horizontalOffset(), (row - GetTopIndex()) * h, total, h);
}

int TsListCtrl::HitTest(const QPoint& point) const
{
    if (point.y() < 0 || point.y() >= viewport()->height())
        return -1;
    const int row = GetTopIndex() + point.y() / RowHeight();
    return row < GetItemCount() ? row : -1;
}

bool TsListCtrl::EnsureVisible(int row, bool partialOk)
{
    if (row < 0 || row >= GetItemCount())
        return false;
    if (partialOk && GetItemRect(row).intersects(viewport()->rect()))
        return true;
    scrollTo(mData->index(row, 0), QAbstractItemView::EnsureVisible);
    return true;
}

// --- columns ----------------------------------------------------------------

void TsListCtrl::SetColumns(const float* percents, const char** labels, int count)
{
    while (GetColumnCount() > 0)
        DeleteColumn(0);
    const int scroller = style()->pixelMetric(QStyle::PM_ScrollBarExtent, nullptr, this);
    const std::vector<int> widths = ListRules::PercentColumnWidths(GetClientWidth(), scroller, percents, count);
    for (int col = 0; col < count; ++col)
        InsertColumn(col, labels[col], LVCFMT_LEFT, widths[static_cast<size_t>(col)]);
}

int TsListCtrl::AddColumn(const char* label, int width, int format)
{
    const int count = GetColumnCount();
    if (width == -1)
        width = count > 0 ? GetColumnWidth(count - 1) : 0;
    return InsertColumn(count, label, format, width);
}

std::string TsListCtrl::GetColumnText(int col) const
{
    return col >= 0 && col < GetColumnCount() ? mData->GetColumn(col).title : std::string();
}

void TsListCtrl::AutoSizeColumn(int col, int minWidth, int maxWidth)
{
    const int first = col < 0 ? 0 : col, last = col < 0 ? GetColumnCount() - 1 : col;
    mData->SetRedraw(false);
    for (int c = first; c <= last && c < GetColumnCount(); ++c) {
        const int cells = sizeHintForColumn(c);
        const int withHeader = std::max(cells, header()->sectionSizeHint(c));
        int width = std::max(cells, withHeader);
        width = std::min(std::max(width, minWidth), maxWidth);
        SetColumnWidth(c, width);
    }
    mData->SetRedraw(true);
}

void TsListCtrl::EnableColumnAutoSize(bool enable, int threshold)
{
    if (!enable) {
        mAutoSizeLastWidth = -1;
        mAutoSizeThreshold = 0;
        return;
    }
    mAutoSizeLastWidth = GetClientWidth();
    mAutoSizeThreshold = threshold < 2 ? 1 : threshold;
}

void TsListCtrl::EnableSaveRestore(const char* key)
{
    mPersistenceKey = key ? key : "";
    if (mPersistenceKey.empty() || GetColumnCount() < 1 || !WinApp::GetApp())
        return;
    const std::string value = WinApp::GetApp()->GetProfileString(kColumnWidthsSection, mPersistenceKey.c_str(), "");
    std::vector<int> widths;
    if (!ListRules::ParseColumnWidths(value, GetColumnCount(), widths))
        return; // a different count leaves the widths alone
    for (size_t col = 0; col < widths.size(); ++col)
        SetColumnWidth(static_cast<int>(col), widths[col]);
}

bool TsListCtrl::SortItems(int column, bool ascending, int low, int high)
{
    mData->SetRedraw(false);
    const bool sorted = ListRules::SortItems(*mData, column, ascending, low, high);
    mData->SetRedraw(true);
    return sorted;
}

void TsListCtrl::OnHeaderItemClick(int column)
{
    if (mSortColumn >= 0 && !mFlatHeader)
        header()->setSortIndicatorShown(false);
    mSortAscending = column == mSortColumn ? !mSortAscending : 1;
    mSortColumn = column;
    if (!mData->IsOwnerData())
        SortItems(column, mSortAscending != 0, 0, -1);
    if (mFlatHeader)
        mFlatHeader->SetSortImage(column, mSortAscending);
    else {
        header()->setSortIndicatorShown(true);
        header()->setSortIndicator(column, mSortAscending ? Qt::AscendingOrder : Qt::DescendingOrder);
    }
    emit HeaderItemClick(column);
}

void TsListCtrl::resizeEvent(QResizeEvent* event)
{
    QTreeView::resizeEvent(event);
    if (mFlatHeader)
        mFlatHeader->ResizeWindow();
    std::vector<int> widths;
    for (int col = 0; col < GetColumnCount(); ++col)
        widths.push_back(GetColumnWidth(col));
    const int scroller = style()->pixelMetric(QStyle::PM_ScrollBarExtent, nullptr, this);
    if (ListRules::ProportionalResize(widths, mAutoSizeLastWidth, mAutoSizeThreshold, GetClientWidth(), scroller)) {
        mData->SetRedraw(false);
        for (size_t col = 0; col < widths.size(); ++col)
            SetColumnWidth(static_cast<int>(col), widths[col]);
        mData->SetRedraw(true);
        viewport()->update();
    }
}

// --- rows -------------------------------------------------------------------

int TsListCtrl::AddItem(const char* text, uintptr_t data)
{
    const int row = mData->InsertItem(GetItemCount(), text);
    if (row < 0)
        return row;
    mData->SetItemData(row, data);
    return row;
}

bool TsListCtrl::CopyRow(int from, int to)
{
    if (from == to || from < 0 || to < 0)
        return false;
    const int inserted = InsertItem(to, GetItemText(from, 0).c_str());
    if (inserted < 0)
        return false;
    // The insertion moved a source below it one row down.
    const int source = from >= inserted ? from + 1 : from;
    for (int col = 1; col < GetColumnCount(); ++col)
        SetItemText(inserted, col, GetItemText(source, col).c_str());
    if (mData->HasCheckBoxes())
        SetCheck(inserted, GetCheck(source));
    return true;
}

bool TsListCtrl::MoveRow(int from, int to)
{
    if (from == to || from < 0 || to < 0 || !CopyRow(from, to))
        return false;
    return DeleteItem(from > to ? from + 1 : from);
}

int TsListCtrl::HitTestEx(const QPoint& point, int* column) const
{
    if (column)
        *column = -1;
    const int count = GetItemCount();
    const int top = GetTopIndex();
    const int last = std::min(top + GetCountPerPage(), count - 1);
    for (int row = top; row <= last; ++row) {
        const QRect rect = GetItemRect(row);
        if (point.y() < rect.top() || point.y() > rect.bottom())
            continue;
        int left = rect.left();
        for (int col = 0; col < GetColumnCount(); ++col) {
            const int width = GetColumnWidth(col);
            if (point.x() >= left && point.x() <= left + width) {
                if (column)
                    *column = col;
                return row;
            }
            left += width;
        }
        return -1;
    }
    return -1;
}

void TsListCtrl::SetTopIndex(int row)
{
    verticalScrollBar()->setValue(std::max(0, row));
}

void TsListCtrl::SetColorItem(int index, const char* text, COLORREF colour)
{
    QPixmap square(16, 16);
    square.fill(Colour(colour));
    int image = index;
    if (index >= 0 && index < static_cast<int>(mImages.size()))
        mImages[static_cast<size_t>(index)] = square;
    else {
        mImages.push_back(square);
        image = static_cast<int>(mImages.size()) - 1;
    }
    if (text)
        InsertItem(index, text, image);
    viewport()->update();
}

const char* TsListCtrl::AddPool(const char* text)
{
    std::string& slot = mPool[mPoolNext];
    slot = text ? text : "";
    mPoolNext = (mPoolNext + 1) % 3;
    return slot.c_str();
}

// --- selection --------------------------------------------------------------

int TsListCtrl::GetSelIndex() const
{
    return GetNextItem(-1, LVIS_SELECTED);
}

int TsListCtrl::SetSelIndex(int row)
{
    return SetItemState(row, LVIS_SELECTED, LVIS_SELECTED) ? row : -1;
}

int TsListCtrl::GetSelIndexes(int* out, int max) const
{
    return ListRules::GetSelIndexes(*mData, out, max);
}

void TsListCtrl::GetSelIndexes(std::vector<int>& rows) const
{
    rows.clear();
    for (int row = GetNextItem(-1, LVIS_SELECTED); row != -1; row = GetNextItem(row, LVIS_SELECTED))
        rows.push_back(row);
}

void TsListCtrl::GetSelItemData(std::vector<uintptr_t>& data) const
{
    data.clear();
    for (int row = GetNextItem(-1, LVIS_SELECTED); row != -1; row = GetNextItem(row, LVIS_SELECTED))
        data.push_back(GetItemData(row));
}

void TsListCtrl::SetSelIndexes(const std::vector<int>& rows)
{
    ListRules::SetSelIndexes(*mData, rows);
}

void TsListCtrl::SelectAllItems(bool select)
{
    if (mData->IsSingleSelection())
        return;
    SetItemState(-1, select ? LVIS_SELECTED : 0, LVIS_SELECTED);
}

void TsListCtrl::ComplementSelection()
{
    ListRules::ComplementSelection(*mData);
}

void TsListCtrl::DeleteSelectedItems()
{
    std::vector<int> rows;
    GetSelIndexes(rows);
    for (auto row = rows.rbegin(); row != rows.rend(); ++row)
        DeleteItem(*row);
}

void TsListCtrl::SelectWithWildcards(const char* pattern, int column, bool caseSensitive)
{
    std::vector<int> hits;
    for (int row = 0; row < GetItemCount(); ++row)
        if (TsString::WildCardCompare(pattern, GetItemText(row, column).c_str(), caseSensitive))
            hits.push_back(row);
    SetSelIndexes(hits);
}

void TsListCtrl::SetSelection(int from, int to, const int* extra, int extraCount)
{
    ListRules::SetSelection(*mData, from, to, extra, extraCount);
}

void TsListCtrl::RedrawSelectedItems()
{
    viewport()->update();
}

// --- check boxes ------------------------------------------------------------

void TsListCtrl::CheckAllItems(bool check)
{
    for (int row = 0; row < GetItemCount(); ++row)
        SetCheck(row, check);
}

int TsListCtrl::GetCheckedItemCount() const
{
    if (!mData->HasCheckBoxes())
        return -1;
    int count = 0;
    for (int row = 0; row < GetItemCount(); ++row)
        count += GetCheck(row) ? 1 : 0;
    return count;
}

int TsListCtrl::GetCheckedItemData(unsigned long* out, int max) const
{
    return ListRules::GetCheckedItemData(*mData, out, max);
}

void TsListCtrl::GetCheckedIndexes(std::vector<int>& rows) const
{
    rows.clear();
    for (int row = 0; row < GetItemCount(); ++row)
        if (GetCheck(row))
            rows.push_back(row);
}

void TsListCtrl::SetCheckedIndexes(const std::vector<int>& rows, bool check)
{
    if (!mData->HasCheckBoxes())
        return;
    for (int row : rows)
        SetCheck(row, check);
}

// --- output -----------------------------------------------------------------

std::string TsListCtrl::ToString(const char* caption) const
{
    return ListClipboard::ToString(*this, AllItemsFormatter(caption, GetItemCount()));
}

std::string TsListCtrl::ToString(const std::vector<int>& rows) const
{
    return ListClipboard::ToString(*this, SelectedItemsFormatter(rows));
}

std::string TsListCtrl::ToHTML(const char* caption) const
{
    return ListClipboard::ToHTML(*this, AllItemsFormatter(caption, GetItemCount()));
}

std::string TsListCtrl::ToHTML(const std::vector<int>& rows) const
{
    return ListClipboard::ToHTML(*this, SelectedItemsFormatter(rows));
}

void TsListCtrl::AddToClipboard(const char* caption)
{
    AddToClipboardImpl(AllItemsFormatter(caption, GetItemCount()));
}

void TsListCtrl::AddToClipboard(const std::vector<int>& rows)
{
    AddToClipboardImpl(SelectedItemsFormatter(rows));
}

void TsListCtrl::CopySelection()
{
    std::vector<int> rows;
    GetSelIndexes(rows);
    AddToClipboard(rows);
}

std::string TsListCtrl::GetClipboardItemText(int row, int col) const
{
    return GetItemText(row, col);
}

void TsListCtrl::AddToClipboardImpl(const Formatter& formatter)
{
    msHtmlFormatRegistered = true;
    QClipboard* clipboard = QGuiApplication::clipboard();
    if (!clipboard)
        return;
    QApplication::setOverrideCursor(Qt::WaitCursor);
    auto* mime = new QMimeData;
    try {
        try {
            mime->setText(QString::fromStdString(ListClipboard::ToString(*this, formatter)));
        } catch (const std::bad_alloc&) {
            TsMessageBox(13288, MB_OK | MB_ICONERROR);
        }
        const std::string descriptor =
            ListClipboard::MakeHTMLClipStringFromText(ListClipboard::ToHTML(*this, formatter));
        const std::string block = ListClipboard::MakeClipboardBlock(descriptor);
        mime->setData(QStringLiteral("application/x-qt-windows-mime;value=\"%1\"")
                          .arg(QString::fromLatin1(ListClipboard::kHtmlFormatName)),
                      QByteArray(block.data(), static_cast<qsizetype>(block.size())));
        // The fragment in its document: from "<html>" (StartHTML) to the end (EndHTML).
        mime->setHtml(QString::fromStdString(descriptor.substr(descriptor.find("<html>"))));
    } catch (const std::exception&) {
        TsMessageBox(13287, MB_OK | MB_ICONERROR);
    }
    clipboard->setMimeData(mime);
    QApplication::restoreOverrideCursor();
}

// --- configuration ----------------------------------------------------------

void TsListCtrl::SetEmptyCtrlText(const char* text)
{
    mEmptyText = text ? text : "";
    viewport()->update();
}

void TsListCtrl::SetEmptyControlText(unsigned int id)
{
    SetEmptyCtrlText(LanguageString::Get(id));
}

void TsListCtrl::DisableColumnSizing(bool disable)
{
    mColumnSizingDisabled = disable;
    header()->setSectionResizeMode(disable ? QHeaderView::Fixed : QHeaderView::Interactive);
}

void TsListCtrl::SetRowColors(COLORREF text, COLORREF textBackground, COLORREF background)
{
    mTextColor = text;
    mTextBkColor = textBackground;
    mBkColor = background == CLR_NONE ? textBackground : background;
    ApplyColors();
}

void TsListCtrl::SetDisabledRowColors(COLORREF text, COLORREF textBackground, COLORREF background)
{
    mDisabledTextColor = text;
    mDisabledTextBkColor = textBackground;
    mDisabledBkColor = textBackground == CLR_NONE ? CLR_NONE : background;
    ApplyColors();
}

void TsListCtrl::EnableDisabledColors(bool enable)
{
    mDisabledColorsEnabled = enable;
    ApplyColors();
}

void TsListCtrl::EnableShortCuts(bool shortcuts, bool deleteShortcut)
{
    mShortcutsEnabled = shortcuts;
    mDeleteShortcutEnabled = deleteShortcut;
}

void TsListCtrl::EnableEditSubItems(bool edit, bool acceptEdits)
{
    mEditSubItems = edit;
    mAcceptEdits = acceptEdits;
}

void TsListCtrl::SubclassHeader(bool bold)
{
    if (mFlatHeader)
        return;
    mFlatHeader = new CFlatHeaderCtrl(this);
    setHeader(mFlatHeader);
    ConnectHeader();
    mFlatHeader->InitializeHeader(bold);
    ApplyColumnWidthsToHeader();
    if (mSortColumn >= 0)
        mFlatHeader->SetSortImage(mSortColumn, mSortAscending);
}

void TsListCtrl::ApplyColors()
{
    const bool disabled = !isEnabled() && mDisabledColorsEnabled;
    mAppliedBk = disabled ? mDisabledBkColor : mBkColor;
    mAppliedText = disabled ? mDisabledTextColor : mTextColor;
    mAppliedTextBk = disabled ? mDisabledTextBkColor : mTextBkColor;
    QPalette palette = this->palette();
    if (mAppliedBk != CLR_NONE)
        palette.setColor(QPalette::Base, Colour(mAppliedBk));
    palette.setColor(QPalette::Text, Colour(mAppliedText));
    setPalette(palette);
    viewport()->update();
}

void TsListCtrl::changeEvent(QEvent* event)
{
    QTreeView::changeEvent(event);
    if (event->type() == QEvent::EnabledChange)
        ApplyColors();
}

void TsListCtrl::PrepaintItem(int row, int col, QStyleOptionViewItem& option) const
{
    const unsigned int state = mData->GetItemState(row, LVIS_SELECTED | LVIS_FOCUSED);
    const bool showSelection = hasFocus() || (GetStyle() & LVS_SHOWSELALWAYS);
    option.state &= ~(QStyle::State_Selected | QStyle::State_HasFocus);
    if ((state & LVIS_SELECTED) && showSelection)
        option.state |= QStyle::State_Selected;
    if ((state & LVIS_FOCUSED) && hasFocus())
        option.state |= QStyle::State_HasFocus;
    // Rows look the same enabled and disabled: the control's colours decide.
    option.state |= QStyle::State_Enabled;
    option.palette.setColor(QPalette::Text, Colour(mAppliedText));
    if (mAppliedTextBk != CLR_NONE)
        option.backgroundBrush = QBrush(Colour(mAppliedTextBk));
    if (col == 0 && !mImages.empty()) {
        const int image = mData->GetItemImage(row);
        if (image >= 0 && image < static_cast<int>(mImages.size())) {
            option.icon = QIcon(mImages[static_cast<size_t>(image)]);
            option.features |= QStyleOptionViewItem::HasDecoration;
            option.decorationSize = QSize(16, 16);
        }
    }
}

void TsListCtrl::PostpaintItem(QPainter*, const QStyleOptionViewItem&, int, int) const {}

void TsListCtrl::paintEvent(QPaintEvent* event)
{
    QTreeView::paintEvent(event);
    if (GetItemCount() != 0 || mEmptyText.empty())
        return;
    QPainter painter(viewport());
    QRect rect = viewport()->rect();
    rect.setTop(rect.top() + kEmptyTextGap); // the header lies outside the viewport
    if (mAppliedBk != CLR_NONE)
        painter.fillRect(rect, Colour(mAppliedBk));
    painter.setFont(mMessageFont);
    painter.setPen(Colour(mDisabledTextColor));
    painter.drawText(rect, Qt::AlignHCenter | Qt::AlignTop | Qt::TextWordWrap,
                     QString::fromStdString(mEmptyText));
}

// --- mouse and keyboard -----------------------------------------------------

bool TsListCtrl::CheckBoxHit(int row, const QPoint& point) const
{
    if (!mData->HasCheckBoxes() || row < 0)
        return false;
    QStyleOptionViewItem option;
    initViewItemOption(&option);
    const QModelIndex index = mData->index(row, 0);
    option.rect = visualRect(index);
    option.features |= QStyleOptionViewItem::HasCheckIndicator;
    option.checkState = GetCheck(row) ? Qt::Checked : Qt::Unchecked;
    const QRect box = style()->subElementRect(QStyle::SE_ItemViewItemCheckIndicator, &option, this);
    return box.contains(point);
}

void TsListCtrl::ToggleSelectedChecks(int referenceRow)
{
    const bool check = !GetCheck(referenceRow);
    for (int row = GetNextItem(-1, LVIS_SELECTED); row != -1; row = GetNextItem(row, LVIS_SELECTED))
        SetCheck(row, check);
}

void TsListCtrl::ClickSelect(int row, Qt::KeyboardModifiers modifiers)
{
    if (row < 0) {
        if (!(modifiers & Qt::ControlModifier))
            SetItemState(-1, 0, LVIS_SELECTED);
        return;
    }
    if (mData->IsSingleSelection()) {
        SetSelection(row, row, nullptr, 0);
    } else if (modifiers & Qt::ControlModifier) {
        SetItemState(row, GetItemState(row, LVIS_SELECTED) ^ LVIS_SELECTED, LVIS_SELECTED);
        mSelectionMark = row;
    } else if ((modifiers & Qt::ShiftModifier) && mSelectionMark >= 0) {
        SetSelection(std::min(mSelectionMark, row), std::max(mSelectionMark, row), nullptr, 0);
    } else {
        SetSelection(row, row, nullptr, 0);
        mSelectionMark = row;
    }
    SetItemState(row, LVIS_FOCUSED, LVIS_FOCUSED);
}

void TsListCtrl::MoveFocusTo(int row, Qt::KeyboardModifiers modifiers)
{
    if (GetItemCount() == 0)
        return;
    row = std::clamp(row, 0, GetItemCount() - 1);
    if (modifiers & Qt::ControlModifier)
        SetItemState(row, LVIS_FOCUSED, LVIS_FOCUSED);
    else
        ClickSelect(row, modifiers & Qt::ShiftModifier);
    EnsureVisible(row, false);
}

void TsListCtrl::mousePressEvent(QMouseEvent* event)
{
    setFocus(Qt::MouseFocusReason);
    if (event->button() != Qt::LeftButton) {
        QTreeView::mousePressEvent(event);
        return;
    }
    mButtonFlags = event->modifiers();
    mLeftButtonDown = true;
    const QPoint point = event->position().toPoint();
    int col = -1;
    const int hitCol = HitTestEx(point, &col);
    const int row = HitTest(point);
    if (row >= 0)
        mDragAnchorRow = row;
    const bool selected = row >= 0 && GetItemState(row, LVIS_SELECTED);
    if (mData->HasCheckBoxes() && GetSelectedCount() > 1 && selected && CheckBoxHit(row, point)) {
        ToggleSelectedChecks(row);
        return;
    }
    if (mEditSubItems && mData->IsSingleSelection()) {
        if (row < 0)
            return;
        if (selected && hitCol >= 0)
            EditSubLabel(row, col);
        else
            SetItemState(row, LVIS_SELECTED | LVIS_FOCUSED, LVIS_SELECTED | LVIS_FOCUSED);
        return;
    }
    if (CheckBoxHit(row, point))
        SetCheck(row, !GetCheck(row));
    else
        ClickSelect(row, event->modifiers());
    OnClick(row, hitCol >= 0 ? col : -1, point);
    emit ItemClick(row, hitCol >= 0 ? col : -1);
}

void TsListCtrl::OnClick(int, int, const QPoint&) {}

void TsListCtrl::mouseDoubleClickEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton) {
        QTreeView::mouseDoubleClickEvent(event);
        return;
    }
    const QPoint point = event->position().toPoint();
    int col = -1;
    const int hitCol = HitTestEx(point, &col);
    const int row = HitTest(point);
    const bool selected = row >= 0 && GetItemState(row, LVIS_SELECTED);
    if (mData->HasCheckBoxes() && GetSelectedCount() > 1 && selected && CheckBoxHit(row, point)) {
        ToggleSelectedChecks(row);
        return;
    }
    if (mEditSubItems && !mData->IsSingleSelection() && selected && hitCol >= 0) {
        EditSubLabel(row, col);
        return;
    }
    if (row >= 0)
        emit doubleClicked(mData->index(row, std::max(col, 0)));
}

void TsListCtrl::mouseMoveEvent(QMouseEvent* event)
{
    if (mDragSelectionAllowed && (event->buttons() & Qt::LeftButton) && hasFocus()) {
        mLastMouse = event->position().toPoint();
        if (!mDragRunning) {
            mSelectionSnapshot.reset();
            mDragRunning = true;
            if (mButtonFlags & Qt::ControlModifier) {
                mSelectionSnapshot = std::make_unique<std::vector<int>>();
                GetSelIndexes(*mSelectionSnapshot);
            }
            mDragTimer.start(50, this);
        }
        return;
    }
    QTreeView::mouseMoveEvent(event);
}

void TsListCtrl::mouseReleaseEvent(QMouseEvent* event)
{
    // The drag ends at the next tick, which finds the button up.
    if (event->button() == Qt::LeftButton)
        mLeftButtonDown = false;
    else
        QTreeView::mouseReleaseEvent(event);
}

void TsListCtrl::timerEvent(QTimerEvent* event)
{
    if (event->timerId() == mDragTimer.timerId())
        OnDragTimer();
    else
        QTreeView::timerEvent(event);
}

void TsListCtrl::StopDrag()
{
    mDragTimer.stop();
    mSelectionSnapshot.reset();
    mDragRunning = false;
}

void TsListCtrl::OnDragTimer()
{
    const int count = GetItemCount();
    if (count == 0) {
        mDragRunning = false;
        mDragTimer.stop();
        return;
    }
    if (mRowsPerPage < 0)
        mRowsPerPage = viewport()->height() / RowHeight();
    // Qt reports the primary button as the left one, whichever button is swapped.
    if (!mLeftButtonDown) {
        StopDrag();
        return;
    }
    mData->SetRedraw(false);
    const QPoint cursor = mLastMouse;
    const int top = GetTopIndex();
    ListRules::DragStep step = ListRules::ComputeDragStep(cursor.x(), cursor.y(), viewport()->width(),
                                                          viewport()->height(), top, mRowsPerPage, count);
    const int under = HitTest(QPoint(1, cursor.y()));
    if (under >= 0)
        step.target = under;
    if (step.direction != 0)
        SetTopIndex(top + step.direction);
    if (step.target >= 0) {
        int col = -1;
        const int hit = HitTestEx(cursor, &col);
        if (mData->IsSingleSelection()) {
            const int row = hit != -1 ? hit : step.target;
            SetSelection(row, row, nullptr, 0);
            SetItemState(row, LVIS_FOCUSED, LVIS_FOCUSED);
        } else {
            const std::vector<int>* snapshot = mSelectionSnapshot.get();
            SetSelection(std::min(mDragAnchorRow, step.target), std::max(mDragAnchorRow, step.target),
                         snapshot ? snapshot->data() : nullptr, snapshot ? static_cast<int>(snapshot->size()) : 0);
            SetItemState(-1, 0, LVIS_FOCUSED);
            int target = hit != -1 ? hit : step.target;
            target = std::min(target, count - 1);
            SetItemState(target, LVIS_FOCUSED, LVIS_FOCUSED);
            EnsureVisible(target, true);
        }
    }
    if (step.distance > 0) {
        const int scroller = style()->pixelMetric(QStyle::PM_ScrollBarExtent, nullptr, this);
        mDragTimer.start(ListRules::DragTimerDelay(step.distance, scroller), this);
    }
    mData->SetRedraw(true);
}

void TsListCtrl::focusInEvent(QFocusEvent* event)
{
    QTreeView::focusInEvent(event);
    // The view makes its first row current on focus; the focus frame belongs to the focused row only.
    if (GetNextItem(-1, LVIS_FOCUSED) < 0 && selectionModel())
        selectionModel()->clearCurrentIndex();
}

void TsListCtrl::focusOutEvent(QFocusEvent* event)
{
    mDragRunning = false;
    mDragTimer.stop();
    QTreeView::focusOutEvent(event);
    viewport()->update();
}

void TsListCtrl::keyPressEvent(QKeyEvent* event)
{
    const bool ctrl = event->modifiers() & Qt::ControlModifier, shift = event->modifiers() & Qt::ShiftModifier;
    const int key = event->key();
    switch (ListRules::DecideKey(key, ctrl, shift, mShortcutsEnabled, mDeleteShortcutEnabled,
                                 mData->HasCheckBoxes(), GetSelectedCount(), mData->IsSingleSelection())) {
    case ListRules::eDeleteSelected: DeleteSelectedItems(); return;
    case ListRules::eToggleChecks: ToggleSelectedChecks(GetSelIndex()); return;
    case ListRules::eCopySelection: CopySelection(); return;
    case ListRules::eCopyAll: AddToClipboard(static_cast<const char*>(nullptr)); return;
    case ListRules::eSelectAll: SelectAllItems(true); return;
    case ListRules::eComplement: ComplementSelection(); return;
    case ListRules::eIgnore: return;
    case ListRules::eDefaultKey: break;
    }
    // The platform list's own keys.
    const int focus = std::max(GetNextItem(-1, LVIS_FOCUSED), 0);
    const int page = GetCountPerPage();
    switch (key) {
    case Qt::Key_Up: MoveFocusTo(focus - 1, event->modifiers()); return;
    case Qt::Key_Down: MoveFocusTo(GetNextItem(-1, LVIS_FOCUSED) < 0 ? 0 : focus + 1, event->modifiers()); return;
    case Qt::Key_PageUp: MoveFocusTo(focus - page + 1, event->modifiers()); return;
    case Qt::Key_PageDown: MoveFocusTo(focus + page - 1, event->modifiers()); return;
    case Qt::Key_Home: MoveFocusTo(0, event->modifiers()); return;
    case Qt::Key_End: MoveFocusTo(GetItemCount() - 1, event->modifiers()); return;
    case Qt::Key_Space:
        if (mData->HasCheckBoxes() && GetItemCount() > 0) {
            SetCheck(focus, !GetCheck(focus));
            return;
        }
        break;
    default: break;
    }
    QTreeView::keyPressEvent(event);
}

void TsListCtrl::wheelEvent(QWheelEvent* event)
{
    setFocus(Qt::OtherFocusReason); // an open editor commits before the view moves
    QTreeView::wheelEvent(event);
}

void TsListCtrl::scrollContentsBy(int dx, int dy)
{
    if (findChild<CInPlaceEdit*>())
        setFocus(Qt::OtherFocusReason);
    QTreeView::scrollContentsBy(dx, dy);
}

// --- in-cell editing --------------------------------------------------------

bool TsListCtrl::AcceptEdit(const char*, int, int)
{
    return mAcceptEdits;
}

int TsListCtrl::NotifyEndLabelEdit(int row, int col, const char* text)
{
    return mEndLabelEdit ? mEndLabelEdit(*this, row, col, text) : 0;
}

QLineEdit* TsListCtrl::EditSubLabel(int row, int col)
{
    if (!EnsureVisible(row, true) || col < 0 || col >= GetColumnCount() || GetColumnWidth(col) < 5)
        return nullptr;
    int offset = 0;
    for (int c = 0; c < col; ++c)
        offset += GetColumnWidth(c);
    QRect rect = GetItemRect(row);
    const int client = viewport()->width();
    if (rect.left() + offset < 0 || rect.left() + offset > client) {
        horizontalScrollBar()->setValue(horizontalScrollBar()->value() + rect.left() + offset);
        rect = GetItemRect(row);
    }
    const int left = rect.left() + offset + 4;
    int right = std::min(left + GetColumnWidth(col) - 3, client);
    const int format = mData->GetColumn(col).format & LVCFMT_JUSTIFYMASK;
    if (format == LVCFMT_RIGHT)
        right -= 6;
    SetItemState(row, LVIS_SELECTED | LVIS_FOCUSED, LVIS_SELECTED | LVIS_FOCUSED);
    setFocus(Qt::OtherFocusReason);
    auto* edit = new CInPlaceEdit(this, row, col, GetItemText(row, col));
    edit->setAlignment((format == LVCFMT_RIGHT    ? Qt::AlignRight
                        : format == LVCFMT_CENTER ? Qt::AlignHCenter
                                                  : Qt::AlignLeft) |
                       Qt::AlignVCenter);
    edit->setGeometry(left, rect.top(), std::max(0, right - left), rect.height());
    edit->show();
    edit->setFocus(Qt::OtherFocusReason);
    edit->selectAll();
    return edit;
}
