#include <KORVAutlwin/controls/FilterListCtrlPopupBar.h>

#include <KORVAutlwin/controls/FilterRules.h>
#include <KORVAutlwin/controls/TsListCtrl.h>
#include <KORVAutl/TsString.h>
#include <KORVAutlwin/frame/WinApp.h>

#include <QApplication>
#include <QComboBox>
#include <QCursor>
#include <QEventLoop>
#include <QKeyEvent>
#include <QLineEdit>
#include <QSizeGrip>
#include <QStyle>
#include <QVBoxLayout>

#include <algorithm>

FilterListCtrlPopupBar::FilterListCtrlPopupBar(const FilterListItems& items, unsigned int initial, QWidget* parent)
    : QFrame(parent, Qt::Popup), mItems(&items), mInitialItem(initial)
{
    setObjectName(QStringLiteral("TsPopupStatic"));
    setFrameShape(QFrame::Box);
    if (WinApp* app = WinApp::GetApp()) {
        mWidth = app->GetProfileInt(FilterRules::kSection, "Width", 0);
        mHeight = app->GetProfileInt(FilterRules::kSection, "Height", 0);
        const int count = FilterRules::ClampFilterCount(app->GetProfileInt(FilterRules::kSection, "NumFilters", 0));
        for (int i = 0; i < count; ++i)
            mFilters.push_back(
                app->GetProfileString(FilterRules::kSection, TsString::Format("Filter%d", i).c_str(), ""));
    }
    mWidth = FilterRules::ClampWidth(mWidth);
    mHeight = FilterRules::ClampHeight(mHeight);
    resize(mWidth, mHeight);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(1, 1, 1, 1);
    layout->setSpacing(1);
    mCombo = new QComboBox(this);
    mCombo->setEditable(true);
    mCombo->setInsertPolicy(QComboBox::NoInsert);
    mCombo->setFont(QApplication::font("QMenu"));
    for (const std::string& filter : mFilters)
        mCombo->addItem(QString::fromStdString(filter));
    mCombo->setCurrentIndex(-1);
    mCombo->lineEdit()->setPlaceholderText(QStringLiteral("Type filter here"));
    mCombo->lineEdit()->installEventFilter(this);
    layout->addWidget(mCombo);

    mList = new TsListCtrl(this);
    mList->ModifyStyle(0, LVS_OWNERDATA);
    mList->SetTextCallback([this](int row, int) {
        return std::string(mItems->GetItemText(mVisibleItems[static_cast<size_t>(row)]));
    });
    mList->installEventFilter(this);
    layout->addWidget(mList, 1);
    auto* grip = new QSizeGrip(this);
    layout->addWidget(grip, 0, Qt::AlignRight | Qt::AlignBottom);
    layout->activate();
    const int scroller = mList->style()->pixelMetric(QStyle::PM_ScrollBarExtent, nullptr, mList);
    mList->InsertColumn(0, "Item", LVCFMT_LEFT, std::max(0, mList->GetClientWidth() - scroller));

    // Every item to start with; the initial one stays privileged until the first filter.
    mVisibleItems.resize(mItems->GetItemCount());
    for (unsigned int i = 0; i < mVisibleItems.size(); ++i)
        mVisibleItems[i] = i;
    mList->SetItemCount(static_cast<int>(mVisibleItems.size()));
    if (initial < mVisibleItems.size()) {
        mList->SetItemState(static_cast<int>(initial), LVIS_SELECTED | LVIS_FOCUSED, LVIS_SELECTED | LVIS_FOCUSED);
        mList->SetTopIndex(static_cast<int>(initial));
    }
    mList->GetListData().SetColumnTitle(0, FilterRules::VisibleTitle(static_cast<unsigned>(mVisibleItems.size()),
                                                                       mItems->GetItemCount())
                                               .c_str());

    connect(mCombo->lineEdit(), &QLineEdit::textEdited, this, [this] { mTimer.start(kFilterDelay, this); });
    connect(mCombo, qOverload<int>(&QComboBox::activated), this, [this](int index) {
        mTimer.stop();
        Filter(mCombo->itemText(index).toStdString().c_str());
    });
    connect(mList, &QAbstractItemView::doubleClicked, this, [this](const QModelIndex& index) { ChooseRow(index.row()); });
}

FilterListCtrlPopupBar::~FilterListCtrlPopupBar() = default;

void FilterListCtrlPopupBar::Filter(const char* text)
{
    QApplication::setOverrideCursor(Qt::WaitCursor);
    std::vector<unsigned int> remembered;
    if (mList->GetSelectedCount() <= kMaxRememberedSelection)
        for (int row = mList->GetNextItem(-1, LVIS_SELECTED); row != -1; row = mList->GetNextItem(row, LVIS_SELECTED))
            remembered.push_back(mVisibleItems[static_cast<size_t>(row)]);

    FilterRules::Filter(*mItems, text, mInitialItem, mVisibleItems);
    mList->SetItemCount(static_cast<int>(mVisibleItems.size()));

    int first = -1;
    for (unsigned int item : remembered) {
        const auto at = std::lower_bound(mVisibleItems.begin(), mVisibleItems.end(), item);
        if (at == mVisibleItems.end() || *at != item)
            continue;
        const int row = static_cast<int>(at - mVisibleItems.begin());
        mList->SetItemState(row, LVIS_SELECTED, LVIS_SELECTED);
        if (first < 0)
            first = row;
    }
    if (first < 0 && !mVisibleItems.empty()) {
        first = 0;
        mList->SetItemState(0, LVIS_SELECTED, LVIS_SELECTED);
    }
    if (first >= 0) {
        mList->SetItemState(first, LVIS_FOCUSED, LVIS_FOCUSED);
        mList->EnsureVisible(first, false);
    }
    mList->GetListData().SetColumnTitle(
        0, FilterRules::VisibleTitle(static_cast<unsigned>(mVisibleItems.size()), mItems->GetItemCount()).c_str());
    QApplication::restoreOverrideCursor();
}

int FilterListCtrlPopupBar::FocusedRow() const
{
    const int focused = mList->GetNextItem(-1, LVIS_FOCUSED);
    return focused >= 0 ? focused : mList->GetSelIndex();
}

void FilterListCtrlPopupBar::ChooseRow(int row)
{
    if (row < 0 || row >= static_cast<int>(mVisibleItems.size()))
        return;
    mResult = static_cast<int>(mVisibleItems[static_cast<size_t>(row)]) + 1;
    FilterRules::RememberFilter(mFilters, mCombo->currentText().toStdString());
    WriteSettings();
    QApplication::beep();
    close();
}

void FilterListCtrlPopupBar::WriteSettings()
{
    WinApp* app = WinApp::GetApp();
    if (!app)
        return;
    // The present size, so that the user's resizing survives.
    app->WriteProfileInt(FilterRules::kSection, "Width", width());
    app->WriteProfileInt(FilterRules::kSection, "Height", height());
    app->WriteProfileInt(FilterRules::kSection, "NumFilters", static_cast<int>(mFilters.size()));
    for (size_t i = 0; i < mFilters.size(); ++i)
        app->WriteProfileString(FilterRules::kSection, TsString::Format("Filter%d", static_cast<int>(i)).c_str(),
                                mFilters[i].c_str());
}

int FilterListCtrlPopupBar::Track(const QPoint& at)
{
    move(at);
    show();
    activateWindow();
    mCombo->setFocus(Qt::PopupFocusReason);
    QEventLoop loop;
    mLoop = &loop;
    if (isVisible())
        loop.exec();
    mLoop = nullptr;
    return mResult;
}

void FilterListCtrlPopupBar::timerEvent(QTimerEvent* event)
{
    if (event->timerId() != mTimer.timerId()) {
        QFrame::timerEvent(event);
        return;
    }
    mTimer.stop();
    Filter(mCombo->currentText().toStdString().c_str());
}

void FilterListCtrlPopupBar::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Escape) {
        close();
        return;
    }
    QFrame::keyPressEvent(event);
}

bool FilterListCtrlPopupBar::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Return || key == Qt::Key_Enter) {
            if (mTimer.isActive()) {
                mTimer.stop();
                Filter(mCombo->currentText().toStdString().c_str());
            }
            ChooseRow(FocusedRow());
            return true;
        }
        // Arrows in the filter box walk the list.
        if (watched != mList && (key == Qt::Key_Up || key == Qt::Key_Down || key == Qt::Key_PageUp ||
                                 key == Qt::Key_PageDown)) {
            QApplication::sendEvent(mList, event);
            return true;
        }
    }
    return QFrame::eventFilter(watched, event);
}

void FilterListCtrlPopupBar::hideEvent(QHideEvent* event)
{
    QFrame::hideEvent(event);
    if (mLoop)
        mLoop->quit();
}

int TrackFilterListCtrlPopup(QWidget* parent, QPoint point, const FilterListItems& items, unsigned int initial)
{
    if (point == QPoint(-1, -1))
        point = parent ? parent->mapToGlobal(QPoint(0, 0)) + QPoint(5, 5) : QCursor::pos();
    FilterListCtrlPopupBar bar(items, initial, parent);
    return bar.Track(point) - 1;
}
