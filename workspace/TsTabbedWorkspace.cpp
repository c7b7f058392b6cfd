#include <KORVAutlwin/workspace/TsTabbedWorkspace.h>

#include <KORVAutlwin/frame/MenuResource.h>
#include <KORVAutlwin/frame/TessmaMDIFrame.h>
#include <KORVAutlwin/frame/TsMenu.h>
#include <KORVAutlwin/toolkit/DisplayColor.h>
#include <KORVAutlwin/workspace/TabCtrlStyles.h>
#include <KORVAutlwin/workspace/TabbedWorkspaceLayout.h>
#include <KORVAutlwin/workspace/TsTabbedClientWnd.h>
#include <KORVAutlwin/workspace/TsTabbedWorkspaceDropTarget.h>
#include <KORVAutlwin/workspace/TsTabbedWorkspaceWindowIdentifier.h>

#include <KORVAutl/Exception.h>

#include <QAbstractEventDispatcher>
#include <QApplication>
#include <QHBoxLayout>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMouseEvent>
#include <QPainter>
#include <QStyle>
#include <QToolButton>

#include <algorithm>
#include <memory>

namespace {

// Pixels of a tab's padding.
constexpr int kTabPadding = 12;
constexpr int kMinTabWidth = 40;
// The system's edge height and small icon size.
constexpr int kEdge = 2;
constexpr int kSmallIcon = 16;

QMdiSubWindow* Child(WorkspaceWindow window)
{
    return static_cast<QMdiSubWindow*>(const_cast<void*>(window));
}

TsTabbedWorkspaceWindowIdentifier& Defaults()
{
    static TsTabbedWorkspaceWindowIdentifier defaults;
    return defaults;
}

// The wait cursor for as long as the scope lasts.
struct WaitCursor
{
    WaitCursor() { QApplication::setOverrideCursor(Qt::WaitCursor); }
    ~WaitCursor() { QApplication::restoreOverrideCursor(); }
};

} // namespace

TsTabbedWorkspace::TsTabbedWorkspace(TsTabbedClientWnd* owner, TsTabbedWorkspaceWindowIdentifier* identifier,
                                     unsigned long style, QWidget* parent)
    : QWidget(parent),
      mOwner(owner),
      mIdentifier(identifier ? identifier : &Defaults()),
      mTabs(*this, korva::GetSysColor(COLOR_BTNFACE)),
      mStyle(style | TCS_OWNERDRAWFIXED)
{
    setProperty("ctrlId", kTabbedWorkspaceCtrlId);
    setFocusPolicy((mStyle & TCS_FOCUSNEVER) ? Qt::NoFocus : Qt::ClickFocus);
    setFont(QApplication::font("QMessageBox"));
    setAutoFillBackground(false);
    mDropTarget = new TsTabbedWorkspaceDropTarget(*this);
    // The idle moment: the loop is about to wait for events. An update that
    // finds nothing new posts nothing, so the loop does go to sleep.
    if (auto* dispatcher = QAbstractEventDispatcher::instance(thread()))
        connect(dispatcher, &QAbstractEventDispatcher::aboutToBlock, this, [this] { UpdateContents(); });
}

TsTabbedWorkspace::~TsTabbedWorkspace() = default;

QMdiArea* TsTabbedWorkspace::Client() const
{
    return mOwner && mOwner->GetParentFrame() ? mOwner->GetParentFrame()->GetMDIClient() : nullptr;
}

void TsTabbedWorkspace::UpdateContents()
{
    mTabs.UpdateContents();
}

std::vector<std::string> TsTabbedWorkspace::GetTabOrder() const
{
    return mTabs.GetTabOrder();
}

void TsTabbedWorkspace::SetTabOrder(const std::vector<std::string>& ids)
{
    mTabs.SetTabOrder(ids);
}

void TsTabbedWorkspace::SetActiveTab(int index)
{
    mTabs.SetActiveTab(index);
}

void TsTabbedWorkspace::SetActiveTab(const std::string& id)
{
    mTabs.SetActiveTab(id);
}

std::string TsTabbedWorkspace::GetTabWindowIdentifier(int index) const
{
    return mTabs.GetTabWindowIdentifier(index);
}

int TsTabbedWorkspace::GetItemCount() const
{
    return mTabs.GetItemCount();
}

int TsTabbedWorkspace::GetCurSel() const
{
    return mTabs.GetCurSel();
}

const std::vector<TsTabbedWorkspace::TabItem>& TsTabbedWorkspace::GetItems() const
{
    return mTabs.GetItems();
}

void TsTabbedWorkspace::SetOffset(unsigned long offset, bool recalcLayout)
{
    mOffset = offset;
    mRectsValid = false;
    if (recalcLayout)
        RecalcLayout();
}

void TsTabbedWorkspace::SetStyle(unsigned long style)
{
    mStyle = style;
    mRectsValid = false;
    update();
}

int TsTabbedWorkspace::GetStripExtent() const
{
    const int height = fontMetrics().height() + 8;
    if (TabbedWorkspaceLayout::SideOfStyle(mStyle) == TabbedWorkspaceLayout::eLeft ||
        TabbedWorkspaceLayout::SideOfStyle(mStyle) == TabbedWorkspaceLayout::eRight) {
        int width = kMinTabWidth;
        for (const TabItem& item : mTabs.GetItems())
            width = std::max(width, TabWidth(item));
        return width;
    }
    return height;
}

void TsTabbedWorkspace::OnDestroy()
{
    if (QMdiArea* client = Client())
        for (QMdiSubWindow* child : client->subWindowList())
            if (child->isHidden() && !mIdentifier->GetWindowIdentifier(child).empty())
                child->show();
    mIcons.clear();
    mIconKeys.clear();
}

// --- Geometry ---------------------------------------------------------------------

int TsTabbedWorkspace::TabWidth(const TabItem& item) const
{
    const int text = fontMetrics().horizontalAdvance(QString::fromStdString(item.text));
    return std::max(kMinTabWidth, text + kTabPadding + (item.image >= 0 ? kSmallIcon + 5 : 0));
}

void TsTabbedWorkspace::LayoutTabs()
{
    const auto side = TabbedWorkspaceLayout::SideOfStyle(mStyle);
    const QRect strip = TabbedWorkspaceLayout::ShrinkByOffset(rect(), static_cast<int>(mOffset));
    const int extent = GetStripExtent();
    const bool vertical = side == TabbedWorkspaceLayout::eLeft || side == TabbedWorkspaceLayout::eRight;
    const auto& items = mTabs.GetItems();
    mRects.assign(items.size(), QRect());
    int along = 0;
    for (std::size_t i = 0; i < items.size(); ++i) {
        const int length = vertical ? fontMetrics().height() + 8 : TabWidth(items[i]);
        mRects[i] = vertical ? QRect(0, along, extent, length) : QRect(along, 0, length, extent);
        along += length;
    }
    // The scroller, for a row longer than the strip.
    const int room = vertical ? strip.height() : strip.width() - 2;
    const bool overflow = !vertical && along > room;
    if (overflow && !mSpin) {
        mSpin = new QWidget(this);
        auto* layout = new QHBoxLayout(mSpin);
        layout->setContentsMargins(0, 0, 0, 0);
        layout->setSpacing(0);
        mSpinBack = new QToolButton(mSpin);
        mSpinBack->setArrowType(Qt::LeftArrow);
        mSpinOn = new QToolButton(mSpin);
        mSpinOn->setArrowType(Qt::RightArrow);
        layout->addWidget(mSpinBack);
        layout->addWidget(mSpinOn);
        connect(mSpinBack, &QToolButton::clicked, this, [this] { ScrollTabs(-1); });
        connect(mSpinOn, &QToolButton::clicked, this, [this] { ScrollTabs(1); });
    }
    if (!overflow)
        mFirstVisible = 0;
    mFirstVisible = std::clamp(mFirstVisible, 0, std::max(0, static_cast<int>(items.size()) - 1));
    const bool scrolled = !vertical && mFirstVisible < static_cast<int>(mRects.size());
    const int shift = scrolled ? mRects[mFirstVisible].left() : 0;
    const int across = side == TabbedWorkspaceLayout::eBottom ? strip.bottom() + 1 - extent
                       : side == TabbedWorkspaceLayout::eRight ? strip.right() + 1 - extent
                                                                : (vertical ? strip.left() : strip.top());
    for (QRect& r : mRects) {
        if (vertical)
            r.translate(across, strip.top());
        else
            r.translate(strip.left() + 2 - shift, across);
    }
    if (mSpin) {
        mSpin->setVisible(overflow);
        if (overflow) {
            const int size = extent - 4;
            mSpin->setGeometry(strip.right() + 1 - 2 * size, across + 2, 2 * size, size);
        }
    }
    mRectsValid = true;
}

void TsTabbedWorkspace::ScrollTabs(int delta)
{
    mFirstVisible = std::clamp(mFirstVisible + delta, 0, std::max(0, GetItemCount() - 1));
    mRectsValid = false;
    update();
}

QRect TsTabbedWorkspace::GetItemRect(int index)
{
    if (!mRectsValid)
        LayoutTabs();
    return index >= 0 && index < static_cast<int>(mRects.size()) ? mRects[index] : QRect();
}

int TsTabbedWorkspace::HitTest(const QPoint& point)
{
    if (!mRectsValid)
        LayoutTabs();
    if (mSpin && mSpin->isVisible() && (mSpin->geometry().contains(point) || point.x() >= mSpin->geometry().left()))
        return -1;
    for (int i = 0; i < static_cast<int>(mRects.size()); ++i)
        if (mRects[i].contains(point))
            return i;
    return -1;
}

void TsTabbedWorkspace::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    mRectsValid = false;
}

// --- Drawing ----------------------------------------------------------------------------

void TsTabbedWorkspace::paintEvent(QPaintEvent*)
{
    if (!mRectsValid)
        LayoutTabs();
    QPainter painter(this);
    const QPalette& colours = palette();
    painter.fillRect(rect(), colours.color(QPalette::Button));

    const auto side = TabbedWorkspaceLayout::SideOfStyle(mStyle);
    const QRect panel =
        TabbedWorkspaceLayout::CalcClientRect(rect(), static_cast<int>(mOffset), GetStripExtent(), kPanelBorder, side)
            .adjusted(-kPanelBorder, -kPanelBorder, kPanelBorder - 1, kPanelBorder - 1);
    painter.setPen(colours.color(QPalette::Mid));
    painter.drawRect(panel);

    const QRect strip = TabbedWorkspaceLayout::ShrinkByOffset(rect(), static_cast<int>(mOffset));
    painter.setClipRect(mSpin && mSpin->isVisible() ? strip.adjusted(0, 0, -mSpin->width(), 0) : strip);
    for (int i = 0; i < GetItemCount(); ++i) {
        if (!mRects[i].intersects(strip))
            continue;
        const bool selected = i == GetCurSel();
        // The selected tab stands out by two pixels towards the strip's edge.
        const int top = side == TabbedWorkspaceLayout::eTop ? 2 : 0;
        const int bottom = side == TabbedWorkspaceLayout::eBottom ? -2 : 0;
        const QRect shape = selected ? mRects[i] : mRects[i].adjusted(1, top, -1, bottom);
        painter.setPen(colours.color(selected ? QPalette::Dark : QPalette::Mid));
        painter.setBrush(Qt::NoBrush);
        painter.save();
        painter.setClipRect(shape.adjusted(0, 0, 1, 1), Qt::IntersectClip);
        DrawItem(painter, i);
        painter.restore();
        painter.drawRect(shape.adjusted(0, 0, -1, -1));
    }
}

void TsTabbedWorkspace::DrawItem(QPainter& painter, int index)
{
    const TabItem& item = mTabs.GetItems()[index];
    QRect rc = mRects[index];
    painter.fillRect(rc, korva::ToQColor(item.colour));
    const bool selected = index == GetCurSel();
    if (item.image >= 0 && item.image < static_cast<int>(mIcons.size())) {
        if (selected)
            rc.translate(4, 4);
        const int top = rc.top() + std::max(0, (rc.height() - kSmallIcon) / 2 - (selected ? 4 : 0));
        mIcons[item.image].paint(&painter, QRect(rc.left() + 5, top, kSmallIcon, kSmallIcon));
        if (selected)
            rc.translate(-4, -2);
        rc.setLeft(rc.left() + kSmallIcon + 5);
    }
    painter.setPen(QColor(0, 0, 0));
    rc.setTop(rc.top() - kEdge);
    painter.drawText(rc, Qt::AlignCenter | Qt::TextSingleLine, QString::fromStdString(item.text));
}

// --- Mouse --------------------------------------------------------------------------------

void TsTabbedWorkspace::mousePressEvent(QMouseEvent* event)
{
    const QPoint point = event->position().toPoint();
    if (event->button() == Qt::RightButton) {
        OnRButtonDown(point, event->globalPosition().toPoint());
        return;
    }
    if (event->button() != Qt::LeftButton)
        return;
    // A tab control selects at the press and tells its parent.
    const int hit = HitTest(point);
    if (hit >= 0 && hit != GetCurSel()) {
        mTabs.SetCurSel(hit);
        OnSelChange();
    }
    mPressed = hit >= 0 && mIdentifier->UseDragAndDrop();
    mPressPoint = point;
    mPressTab = hit;
}

void TsTabbedWorkspace::mouseMoveEvent(QMouseEvent* event)
{
    const QPoint point = event->position().toPoint();
    if (mPressed && !mTabs.IsDragging() && (event->buttons() & Qt::LeftButton) &&
        (point - mPressPoint).manhattanLength() >= QApplication::startDragDistance()) {
        mPressed = false;
        mTabs.BeginTabDrag(mPressTab);
        grabMouse();
    }
    if (!mTabs.IsDragging())
        return;
    mTabs.DragTabTo(point.x());
    // Beyond the strip's ends, the scroller brings the next hidden tab in.
    if (mSpin && mSpin->isVisible()) {
        if (point.x() < 0)
            ScrollTabs(-1);
        else if (point.x() >= width())
            ScrollTabs(1);
    }
}

void TsTabbedWorkspace::mouseReleaseEvent(QMouseEvent* event)
{
    mPressed = false;
    if (event->button() == Qt::LeftButton && mTabs.IsDragging()) {
        releaseMouse();
        mTabs.EndTabDrag();
    }
}

void TsTabbedWorkspace::mouseDoubleClickEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton)
        mTabs.OnDoubleClickTab(HitTest(event->position().toPoint()));
}

void TsTabbedWorkspace::OnRButtonDown(const QPoint& point, const QPoint& globalPoint)
{
    mTabs.OnRightClickTab(HitTest(point));
    const unsigned int menuId = mIdentifier->GetMenuID();
    if (menuId == 0 || !MenuResource::Exists(menuId))
        return;
    try {
        std::unique_ptr<QMenu> menu(MenuResource::Load(menuId));
        const QList<QAction*> actions = menu->actions();
        if (actions.isEmpty() || !actions.front()->menu())
            return;
        TsMenu::TrackPopupMenu(actions.front()->menu(), TPM_RIGHTBUTTON, globalPoint, mOwner->GetParentFrame());
    } catch (const Exception&) {
        // A menu that does not parse is the application's mistake: no menu then.
    }
}

void TsTabbedWorkspace::OnSelChange()
{
    WaitCursor wait;
    mTabs.OnSelChange();
    emit SelChange();
}

// --- What the tab list asks of the windows --------------------------------------------------

std::string TsTabbedWorkspace::GetWindowIdentifier(WorkspaceWindow window)
{
    return mIdentifier->GetWindowIdentifier(Child(window));
}

int TsTabbedWorkspace::AddIcon(const QIcon& icon)
{
    if (icon.isNull())
        return -1;
    const auto known = std::find(mIconKeys.begin(), mIconKeys.end(), icon.cacheKey());
    if (known != mIconKeys.end())
        return static_cast<int>(known - mIconKeys.begin());
    mIconKeys.push_back(icon.cacheKey());
    mIcons.push_back(icon);
    return static_cast<int>(mIcons.size()) - 1;
}

int TsTabbedWorkspace::GetTabImage(const std::string& id)
{
    return AddIcon(mIdentifier->GetTabIcon(id.c_str()));
}

int TsTabbedWorkspace::GetTabImage(WorkspaceWindow window)
{
    return AddIcon(mIdentifier->GetTabIcon(static_cast<const QWidget*>(Child(window))));
}

std::string TsTabbedWorkspace::GetTextForTabItem(const std::string& id)
{
    return mIdentifier->GetTextForTabItem(id.c_str());
}

std::string TsTabbedWorkspace::GetTextForTabItem(WorkspaceWindow window)
{
    return mIdentifier->GetTextForTabItem(static_cast<const QWidget*>(Child(window)));
}

bool TsTabbedWorkspace::GetHideNonActiveWindows()
{
    return mIdentifier->GetHideNonActiveWindows();
}

unsigned long TsTabbedWorkspace::GetTabColor(WorkspaceWindow window)
{
    return mIdentifier->GetTabColor(Child(window));
}

std::string TsTabbedWorkspace::GetNonWindowTabID(int n)
{
    return mIdentifier->GetNonWindowTabID(n);
}

void TsTabbedWorkspace::OnSetActiveTab(const std::string& id)
{
    mIdentifier->OnSetActiveTab(id);
}

bool TsTabbedWorkspace::HasFrame()
{
    return Client() != nullptr;
}

WorkspaceWindow TsTabbedWorkspace::GetActiveChild()
{
    // The client leaves no child current once the current one closed while the
    // others were hidden; an MDI client always has one while any is left: the top.
    QMdiArea* client = Client();
    if (QMdiSubWindow* current = client->currentSubWindow())
        return current;
    const QList<QMdiSubWindow*> stacked = client->subWindowList(QMdiArea::StackingOrder);
    return stacked.isEmpty() ? nullptr : stacked.back();
}

void TsTabbedWorkspace::GetChildren(std::vector<WorkspaceWindow>& children)
{
    // Window order: the top child first.
    const QList<QMdiSubWindow*> stacked = Client()->subWindowList(QMdiArea::StackingOrder);
    children.assign(stacked.rbegin(), stacked.rend());
}

bool TsTabbedWorkspace::IsMDIChild(WorkspaceWindow window)
{
    QMdiArea* client = Client();
    return client && Child(window)->parentWidget() == client->viewport();
}

bool TsTabbedWorkspace::IsVisible(WorkspaceWindow window)
{
    return !Child(window)->isHidden();
}

bool TsTabbedWorkspace::IsMaximized(WorkspaceWindow window)
{
    return Child(window)->isMaximized();
}

void TsTabbedWorkspace::ShowNoActivate(WorkspaceWindow window)
{
    Child(window)->show();
}

void TsTabbedWorkspace::Hide(WorkspaceWindow window)
{
    Child(window)->hide();
}

void TsTabbedWorkspace::Activate(WorkspaceWindow window, bool inheritMaximized)
{
    QMdiArea* client = Client();
    const bool dontMaximize = client->testOption(QMdiArea::DontMaximizeSubWindowOnActivation);
    client->setOption(QMdiArea::DontMaximizeSubWindowOnActivation, dontMaximize || !inheritMaximized);
    // The client activates only children that are shown.
    if (Child(window)->isHidden())
        Child(window)->show();
    client->setActiveSubWindow(Child(window));
    client->setOption(QMdiArea::DontMaximizeSubWindowOnActivation, dontMaximize);
}

void TsTabbedWorkspace::Maximize(WorkspaceWindow window)
{
    Child(window)->showMaximized();
}

void TsTabbedWorkspace::Restore(WorkspaceWindow window)
{
    Child(window)->showNormal();
}

void TsTabbedWorkspace::TabStripChanged()
{
    mRectsValid = false;
    update();
}

void TsTabbedWorkspace::RecalcLayout()
{
    if (mOwner)
        mOwner->RecalcLayout();
}

void TsTabbedWorkspace::LockWindowUpdate(bool lock)
{
    if (mOwner && mOwner->GetParentFrame())
        mOwner->GetParentFrame()->setUpdatesEnabled(!lock);
}

void TsTabbedWorkspace::SendSelChange()
{
    OnSelChange();
}
