#include <KORVAutlwin/controls/TsTreeListCtrl.h>

#include <KORVAutlwin/controls/ListClipboard.h>
#include <KORVAutlwin/frame/TsMessageBox.h>
#include <KORVAutl/TsString.h>

#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QLayout>
#include <QMimeData>
#include <QScrollBar>

#include <new>

TsTreeListCtrl::TsTreeListCtrl(QWidget* parent) : QWidget(parent)
{
    setObjectName(QString::fromLatin1(kClassName));
    setAutoFillBackground(false); // the children cover all; nothing to erase
    mTree = new TsTreeCtrlEx(this, this, mTreeStyle);
    mTree->GetHeader()->setObjectName(QStringLiteral("header"));
    mTree->GetHeader()->setProperty("ctrlId", kHeaderId);
    mTree->setProperty("ctrlId", kTreeId);
    mScroller = new QScrollBar(Qt::Horizontal, this);
    mScroller->setProperty("ctrlId", kScrollerId);
    mScroller->setEnabled(false);
    mScroller->hide();
    mScroller->setSingleStep(TreeListRules::kScrollStep);

    mTree->SetUserHasCopiedDataCallBack([this] { OnUserCopiedData(); });
    connect(mTree->GetHeader(), &QHeaderView::sectionClicked, this, &TsTreeListCtrl::OnHeaderClick);
    connect(mTree, &TsTreeCtrlEx::DoubleClicked, this, &TsTreeListCtrl::DoubleClicked);
    connect(mTree, &TsTreeCtrlEx::SelChanged, this, &TsTreeListCtrl::SelChanged);
    // Every move of the scroller goes through the step rules, the thumb's too.
    connect(mScroller, &QAbstractSlider::actionTriggered, this, [this](int action) {
        int code = -1;
        switch (action) {
        case QAbstractSlider::SliderSingleStepSub: code = TreeListRules::SB_LINELEFT; break;
        case QAbstractSlider::SliderSingleStepAdd: code = TreeListRules::SB_LINERIGHT; break;
        case QAbstractSlider::SliderPageStepSub: code = TreeListRules::SB_PAGELEFT; break;
        case QAbstractSlider::SliderPageStepAdd: code = TreeListRules::SB_PAGERIGHT; break;
        case QAbstractSlider::SliderToMinimum: code = TreeListRules::SB_LEFT; break;
        case QAbstractSlider::SliderToMaximum: code = TreeListRules::SB_RIGHT; break;
        case QAbstractSlider::SliderMove: code = TreeListRules::SB_THUMBTRACK; break;
        default: return;
        }
        mScroller->setSliderPosition(TreeListRules::NewScrollPosition(
            code, mScroller->value(), mScroller->sliderPosition(), mScroller->maximum() + 1, TreeClientWidth()));
    });
    connect(mScroller, &QAbstractSlider::valueChanged, this, [this](int position) {
        // The offset is minus the position: the tree scrolls, the header follows.
        mTree->horizontalScrollBar()->setValue(position);
        mTree->GetHeader()->setOffset(position);
        mTree->viewport()->update();
    });
    connect(mTree->verticalScrollBar(), &QAbstractSlider::rangeChanged, this, [this] { ResetVertScrollBar(); });
    Initialize();
}

void TsTreeListCtrl::Initialize()
{
    mTree->ModifyStyle(~0ul, mTreeStyle);
    Layout();
    if (mSortType != eNoSort) {
        mSortColumn = 0;
        if (mSortType == eSortTopLevel)
            mTree->SortItems(0, mAscending, nullptr);
        else
            for (HTREEITEM item = mTree->GetRootItem(); item; item = mTree->GetNextSiblingItem(item))
                mTree->SortItems(0, mAscending, item);
        GetHeader()->SetSortArrow(0, mAscending);
    }
    ResetScrollBar();
}

bool TsTreeListCtrl::SubclassDlgItem(QWidget* placeholder)
{
    if (!placeholder || !placeholder->parentWidget())
        return false;
    QWidget* dialog = placeholder->parentWidget();
    setParent(dialog);
    setGeometry(placeholder->geometry());
    setProperty("ctrlId", placeholder->property("ctrlId"));
    if (QLayout* layout = dialog->layout(); layout && layout->indexOf(placeholder) >= 0)
        delete layout->replaceWidget(placeholder, this);
    delete placeholder;
    Initialize();
    show();
    return true;
}

void TsTreeListCtrl::EnableSort(bool enable)
{
    GetHeader()->EnableSort(enable);
    mSortType = enable ? eSortTopLevel : eNoSort;
}

void TsTreeListCtrl::SetRedraw(int redraw)
{
    mLayoutEnabled = redraw != 0;
    mTree->setUpdatesEnabled(redraw != 0);
    GetHeader()->setUpdatesEnabled(redraw != 0);
    if (redraw) {
        ResetScrollBar();
        mTree->viewport()->update();
    }
}

void TsTreeListCtrl::SortTree(int col, bool ascending, HTREEITEM first)
{
    TreeListRules::SortTree(*mTree, mTree->Records(), col, ascending, first, mTree->GetGroupsFirst());
}

void TsTreeListCtrl::SetItemFloat(HTREEITEM item, int col, double value, std::string& text)
{
    mTree->SetItemText(item, col, TsString::ToString(value, "%g", text).c_str());
}

void TsTreeListCtrl::EnableColumnAutoSize(bool enable)
{
    mAutoSizeWidth = enable ? width() : -1;
}

// --- clipboard ----------------------------------------------------------------------------

std::optional<std::string> TsTreeListCtrl::MakeClipString() const
{
    try {
        return GetTextClipString();
    } catch (const std::bad_alloc&) {
        TsMessageBox(13331, MB_OK | MB_ICONERROR);
        return std::nullopt;
    }
}

std::optional<std::string> TsTreeListCtrl::MakeClipString(const std::vector<HTREEITEM>& items, int columns) const
{
    try {
        return TreeListRules::MakeClipString(*mTree, items, columns);
    } catch (const std::bad_alloc&) {
        TsMessageBox(13331, MB_OK | MB_ICONERROR);
        return std::nullopt;
    }
}

void TsTreeListCtrl::OnUserCopiedData()
{
    std::vector<HTREEITEM> items;
    for (HTREEITEM item = mTree->GetFirstSelectedItem(); item; item = mTree->GetNextSelectedItem(item))
        items.push_back(item);
    QClipboard* clipboard = QGuiApplication::clipboard();
    if (!clipboard)
        return;
    QApplication::setOverrideCursor(Qt::WaitCursor);
    const int columns = mTree->GetColumnCount();
    auto* mime = new QMimeData;
    // An empty head and its line end, then the rows, which begin with one of their own.
    if (const std::optional<std::string> rows = MakeClipString(items, columns))
        mime->setText(QString::fromStdString("\r\n" + *rows));
    const std::string block = ListClipboard::MakeHTMLClipStringFromText(ToHTML(items, columns));
    mime->setData(QStringLiteral("application/x-qt-windows-mime;value=\"%1\"")
                      .arg(QString::fromLatin1(ListClipboard::kHtmlFormatName)),
                  QByteArray(block.data(), static_cast<qsizetype>(block.size())));
    if (const size_t html = block.find("<html>"); html != std::string::npos)
        mime->setHtml(QString::fromStdString(block.substr(html)));
    clipboard->setMimeData(mime);
    QApplication::restoreOverrideCursor();
}

// --- header clicks ------------------------------------------------------------------------

void TsTreeListCtrl::OnHeaderClick(int col)
{
    if (mSortType == eNoSort)
        return;
    mAscending = col == mSortColumn ? !mAscending : true;
    mSortColumn = col;
    GetHeader()->SetSortArrow(col, mAscending);
    if (mSortType == eSortTopLevel)
        mTree->SortItems(col, mAscending, nullptr);
    else
        for (HTREEITEM item = mTree->GetRootItem(); item; item = mTree->GetNextSiblingItem(item))
            mTree->SortItems(col, mAscending, item);
}

// --- layout and scrolling -------------------------------------------------------------------

int TsTreeListCtrl::TreeClientWidth() const
{
    return mTree->viewport()->width();
}

void TsTreeListCtrl::Layout()
{
    // From the top: the header, the tree, the scroller.
    const int headerHeight = QFontMetrics(GetHeader()->font()).boundingRect(QStringLiteral("A")).height() + 4;
    const int scrollerHeight = mScroller->isVisibleTo(this) ? mScroller->sizeHint().height() : 0;
    GetHeader()->setGeometry(0, 0, width(), headerHeight);
    mTree->setGeometry(0, headerHeight, width(), std::max(0, height() - headerHeight - scrollerHeight));
    if (scrollerHeight) {
        // Narrower by the tree's vertical scroller, when it shows.
        const QScrollBar* vertical = mTree->verticalScrollBar();
        const int narrower = vertical->isVisibleTo(mTree) ? vertical->sizeHint().width() : 0;
        mScroller->setGeometry(0, height() - scrollerHeight, width() - narrower, scrollerHeight);
    }
}

void TsTreeListCtrl::ResetScrollBar()
{
    if (!mLayoutEnabled)
        return;
    const int total = mTree->GetColumnsWidth();
    if (total > TreeClientWidth()) {
        mScroller->setEnabled(true);
        mScroller->show();
        Layout();
        const int client = TreeClientWidth();
        mScroller->setRange(0, std::max(0, total - client));
        mScroller->setPageStep(client);
        // The position is read back from the header's offset.
        mScroller->setValue(GetHeader()->offset());
    } else {
        mScroller->setEnabled(false);
        mScroller->hide();
        Layout();
        mScroller->setRange(0, 0);
        mTree->horizontalScrollBar()->setValue(0);
        GetHeader()->setOffset(0);
        mTree->viewport()->update();
    }
}

void TsTreeListCtrl::ResetVertScrollBar()
{
    // Showing the scroller changes the tree's height, which may bring this back.
    if (!mLayoutEnabled || mInVertReset)
        return;
    mInVertReset = true;
    Layout();
    ResetScrollBar();
    mInVertReset = false;
}

void TsTreeListCtrl::OnHScroll(int code, int thumb)
{
    mScroller->setValue(TreeListRules::NewScrollPosition(code, mScroller->value(), thumb, mScroller->maximum() + 1,
                                                         TreeClientWidth()));
}

void TsTreeListCtrl::OnColumnResized()
{
    // A shrinking total with the scroller at its end keeps the right edge at
    // the client edge: the scroller clamps its position to the new range.
    ResetScrollBar();
    mTree->viewport()->update();
}

void TsTreeListCtrl::resizeEvent(QResizeEvent*)
{
    if (mAutoSizeWidth >= 1) {
        std::vector<int> widths;
        for (int col = 0; col < mTree->GetColumnCount(); ++col)
            widths.push_back(mTree->GetColumnWidth(col));
        const int vscroll = mTree->verticalScrollBar()->sizeHint().width();
        if (TreeListRules::AutoSizeColumns(widths, mAutoSizeWidth, width(), vscroll)) {
            SetRedraw(false);
            for (int col = 0; col < static_cast<int>(widths.size()); ++col)
                mTree->SetColumnWidth(col, widths[static_cast<size_t>(col)]);
            SetRedraw(true);
        }
    }
    Layout();
    ResetScrollBar();
}

void TsTreeListCtrl::moveEvent(QMoveEvent*)
{
    Layout();
}

void TsTreeListCtrl::contextMenuEvent(QContextMenuEvent* event)
{
    emit ContextMenu(event->globalPos());
    event->ignore(); // the parent gets it unchanged
}
