#include <KORVAutlwin/frame/TessmaMDIFrame.h>

#include <KORVAutlwin/frame/CanGarbageCollect.h>
#include <KORVAutlwin/frame/FaultTranslation.h>
#include <KORVAutlwin/frame/MessageBoxTypes.h>
#include <KORVAutlwin/frame/TsStartWindow.h>
#include <KORVAutlwin/frame/TsStatusBar.h>
#include <KORVAutlwin/platform/FreeMemory.h>

#include <KORVAutl/LanguageString.h>
#include <KORVAutl/Log.h>
#include <KORVAutl/TsSystemInfo.h>

#include <QApplication>
#include <QCloseEvent>
#include <QDialog>
#include <QAction>
#include <QDockWidget>
#include <QGuiApplication>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QScreen>
#include <QThread>
#include <QTimerEvent>
#include <QToolBar>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>

TessmaMDIFrame* TessmaMDIFrame::msFrameInstance = nullptr;
char TessmaMDIFrame::msLowMemoryText[1024] = {};
bool TessmaMDIFrame::msInTimer = false;
bool TessmaMDIFrame::msWarnAboutMemory = true;
std::function<double()> TessmaMDIFrame::msFreeMemoryReader;
std::function<std::vector<QRect>()> TessmaMDIFrame::msWorkAreaSource;

namespace {

constexpr const char* kWindowPosSection = "WindowPos";

// showCmd values of the saved status.
constexpr int kShowNormal = 1;
constexpr int kShowMinimized = 2;
constexpr int kShowMaximized = 3;

std::string ApplicationName()
{
    if (const WinApp* app = WinApp::GetApp())
        return app->GetAppName();
    return TsSystemInfo::GetApplicationName();
}

// The window at the top of `window`'s chain of owners.
const QWidget* TopLevelOwner(const QWidget* window)
{
    const QWidget* top = window->window();
    while (const QWidget* owner = top->parentWidget())
        top = owner->window();
    return top;
}

bool IsFloating(const QWidget* bar)
{
    if (const auto* dock = qobject_cast<const QDockWidget*>(bar))
        return dock->isFloating();
    const auto* toolBar = qobject_cast<const QToolBar*>(bar);
    return toolBar && toolBar->isFloating();
}

// A dock widget shows its widget; a tool bar its items that are not separators.
bool HasVisibleContent(const QWidget* bar)
{
    if (const auto* dock = qobject_cast<const QDockWidget*>(bar))
        return dock->widget() && !dock->widget()->isHidden();
    for (const QAction* action : bar->actions())
        if (action->isVisible() && !action->isSeparator())
            return true;
    return false;
}

long long OverlapArea(const QRect& a, const QRect& b)
{
    const QRect common = a.intersected(b);
    return common.isEmpty() ? 0 : static_cast<long long>(common.width()) * common.height();
}

// Squared distance between two rectangles that do not overlap.
long long Distance(const QRect& a, const QRect& b)
{
    const long long dx = std::max({0, b.left() - a.right(), a.left() - b.right()});
    const long long dy = std::max({0, b.top() - a.bottom(), a.top() - b.bottom()});
    return dx * dx + dy * dy;
}

} // namespace

TessmaMDIFrame::TessmaMDIFrame(QWidget* parent) : TsFrameWnd(parent), mMdiArea(new QMdiArea(this))
{
    // Faults of this thread become exceptions; the application's guard shows them.
    korva::PrepareFaultHandling();
    msFrameInstance = this;
    mPreviousNewHandler = std::set_new_handler(&TessmaMDIFrame::NewHandler);
    SetExceptionsHandled(15);

    mMdiArea->setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    mMdiArea->setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    setCentralWidget(mMdiArea);

    OnCommand(ID_WINDOW_CASCADE, [this] { MDICascade(); });
    OnCommand(ID_WINDOW_TILE_HORZ, [this] { MDITile(); });
    const auto enableWithChildren = [this](CCmdUI* cmdUI) { cmdUI->Enable(MDIGetActive() != nullptr); };
    OnUpdateCommand(ID_WINDOW_CASCADE, enableWithChildren);
    OnUpdateCommand(ID_WINDOW_TILE_HORZ, enableWithChildren);

    mSplashTimer.start(kSplashDelay, Qt::PreciseTimer, this);  // a coarse timer may fire 5% early
    mMemoryTimer.start(kMemoryWatchInterval, this);
    setWindowTitle(QString::fromStdString(ApplicationName()));
}

TessmaMDIFrame::~TessmaMDIFrame()
{
    if (msFrameInstance == this) {
        msFrameInstance = nullptr;
        if (std::get_new_handler() == &TessmaMDIFrame::NewHandler)
            std::set_new_handler(mPreviousNewHandler);
    }
}

// --- MDI ---------------------------------------------------------------------

QMdiSubWindow* TessmaMDIFrame::MDIGetActive() const
{
    return mMdiArea->currentSubWindow();
}

QMdiSubWindow* TessmaMDIFrame::AddMDIChild(QWidget* view)
{
    QMdiSubWindow* child = mMdiArea->addSubWindow(view);
    child->setAttribute(Qt::WA_DeleteOnClose);
    child->show();
    mMdiArea->setActiveSubWindow(child);
    return child;
}

void TessmaMDIFrame::MDIActivate(QMdiSubWindow* child)
{
    mMdiArea->setActiveSubWindow(child);
}

void TessmaMDIFrame::MDICascade()
{
    mMdiArea->cascadeSubWindows();
}

void TessmaMDIFrame::MDITile()
{
    mMdiArea->tileSubWindows();
}

void TessmaMDIFrame::CloseAllChildWindows()
{
    // Hidden children count too (a tabbed workspace hides the other tabs'); a
    // child closed here stays in the list until it is deleted, so it is noted.
    std::set<QMdiSubWindow*> closed;
    for (;;) {
        QMdiSubWindow* child = MDIGetActive();
        if (!child || closed.count(child)) {
            child = nullptr;
            for (QMdiSubWindow* candidate : mMdiArea->subWindowList())
                if (!closed.count(candidate)) {
                    child = candidate;
                    break;
                }
        }
        if (!child)
            return;
        closed.insert(child);
        if (!child->close())
            return;
    }
}

// --- Dialogs -----------------------------------------------------------------

std::vector<QWidget*> TessmaMDIFrame::MyDialogs() const
{
    std::vector<QWidget*> dialogs;
    for (QWidget* window : QApplication::topLevelWidgets())
        if (window != this && qobject_cast<QDialog*>(window) && window->isVisible() && TopLevelOwner(window) == this)
            dialogs.push_back(window);
    return dialogs;
}

bool TessmaMDIFrame::CancelAllMyDialogs()
{
    try {
        for (QWidget* dialog : MyDialogs()) {
            QPointer<QWidget> alive(dialog);
            // A dialog that refuses to go ends the walk, as a handled close request does.
            if (alive && !alive->close())
                return true;
        }
        return true;
    } catch (...) {
        return false;
    }
}

void TessmaMDIFrame::EnableAllDialogs(bool enable)
{
    for (QWidget* dialog : MyDialogs())
        dialog->setEnabled(enable);
}

void TessmaMDIFrame::EnableModelessWindows(bool enable)
{
    EnableAllDialogs(enable);
}

// --- Memory --------------------------------------------------------------------

void TessmaMDIFrame::RegisterCanGarbageCollect(CanGarbageCollect* object)
{
    if (object)
        mCollectors.insert(object);
}

void TessmaMDIFrame::UnregisterCanGarbageCollect(CanGarbageCollect* object)
{
    mCollectors.erase(object);
}

void TessmaMDIFrame::FreeMemoryNow()
{
    // Found again after each call, so that an object may leave the set meanwhile.
    auto next = mCollectors.begin();
    while (next != mCollectors.end()) {
        CanGarbageCollect* object = *next;
        object->FreeMemoryNow();
        next = mCollectors.upper_bound(object);
    }
}

void TessmaMDIFrame::NewHandler()
{
    // Allocations that fail while the box is up fail at once.
    static std::atomic<bool> busy{false};
    TessmaMDIFrame* frame = msFrameInstance;
    if (!frame || busy.exchange(true))
        throw std::bad_alloc();
    struct Release
    {
        ~Release() { busy = false; }
    } release;

    frame->FreeMemoryNow();
    const WinApp* app = WinApp::GetApp();
    std::snprintf(msLowMemoryText, sizeof msLowMemoryText, "%s%s%s", LanguageString::Get(13289),
                  app ? app->GetAppName() : "", LanguageString::Get(13290));

    int answer = IDOK;
    if (QCoreApplication* application = QCoreApplication::instance();
        application && QThread::currentThread() == application->thread()) {
        try {
            answer = TsAfxMessageBox(msLowMemoryText, MB_OKCANCEL | MB_ICONEXCLAMATION);
        } catch (...) {
            answer = IDOK;
        }
    }
    if (answer != IDOK)
        std::exit(1);
    QMetaObject::invokeMethod(frame, [frame] { frame->OnTimer(eMemoryTimer); }, Qt::QueuedConnection);
    throw std::bad_alloc();
}

double TessmaMDIFrame::ReadFreeMemory()
{
    korva::FreeMemory memory;
    if (!korva::ReadFreeMemory(memory))
        return std::numeric_limits<double>::quiet_NaN();
    return static_cast<double>(memory.available + memory.swapFree) /
           static_cast<double>(memory.total + memory.swapTotal);
}

bool TessmaMDIFrame::GetWarnAboutMemory()
{
    return msWarnAboutMemory;
}

void TessmaMDIFrame::SetWarnAboutMemory(bool warn)
{
    msWarnAboutMemory = warn;
}

void TessmaMDIFrame::WatchMemory()
{
    const double free = msFreeMemoryReader ? msFreeMemoryReader() : ReadFreeMemory();
    if (free < kLowMemory) {
        if (msWarnAboutMemory) {
            msWarnAboutMemory = false;
            const std::string text =
                std::string(LanguageString::Get(13291)) + ApplicationName() + LanguageString::Get(13292);
            Log::WriteMessage("TessmaMDIFrame", "OnTimer", "Free memory is low.", Log::eMilestone);
            TsAfxMessageBox(text.c_str(), MB_OK | MB_ICONEXCLAMATION);
        }
        FreeMemoryNow();
    } else if (!msWarnAboutMemory && free >= kMemoryRecovered && free <= 1.0) {
        msWarnAboutMemory = true;
    }
}

// --- Timers --------------------------------------------------------------------

void TessmaMDIFrame::timerEvent(QTimerEvent* event)
{
    if (event->timerId() == mMemoryTimer.timerId())
        OnTimer(eMemoryTimer);
    else if (event->timerId() == mSplashTimer.timerId())
        OnTimer(eSplashTimer);
    else
        TsFrameWnd::timerEvent(event);
}

void TessmaMDIFrame::OnTimer(unsigned int id)
{
    if (msInTimer)
        return;
    msInTimer = true;
    struct Leave
    {
        ~Leave() { msInTimer = false; }
    } leave;

    switch (id) {
    case eSplashTimer:
        mSplashTimer.stop();
        delete TsStartWindow::Instance();
        activateWindow();
        break;
    case eMemoryTimer:
        WatchMemory();
        break;
    default:
        break;
    }
}

// --- Status bar ------------------------------------------------------------------

QWidget* TessmaMDIFrame::GetMessageBar()
{
    if (!mStatusBar) {
        mStatusBar = new TsStatusBar(this);
        setStatusBar(mStatusBar);
    }
    return mStatusBar;
}

void TessmaMDIFrame::SetMessageText(const std::string& text)
{
    QWidget* bar = GetMessageBar();
    if (auto* access = dynamic_cast<TsStatusAccess*>(bar)) {
        const int index = access->CommandToIndex(0);
        if (index >= 0)
            access->SetPaneText(index, text, 1);
    } else if (auto* plain = qobject_cast<QStatusBar*>(bar)) {
        plain->showMessage(QString::fromStdString(text));
    }
}

// --- Window position ---------------------------------------------------------------

std::vector<QRect> TessmaMDIFrame::GetWorkAreas()
{
    if (msWorkAreaSource)
        return msWorkAreaSource();
    std::vector<QRect> areas;
    for (const QScreen* screen : QGuiApplication::screens())
        areas.push_back(screen->availableGeometry());
    return areas;
}

QRect TessmaMDIFrame::FitIntoNearestWorkArea(const QRect& rect, const std::vector<QRect>& areas)
{
    if (areas.empty())
        return rect;
    // The screen with the largest share of the window, else the nearest one.
    const QRect* best = &areas.front();
    long long bestOverlap = -1;
    long long bestDistance = std::numeric_limits<long long>::max();
    for (const QRect& area : areas) {
        const long long overlap = OverlapArea(rect, area);
        const long long distance = overlap > 0 ? 0 : Distance(rect, area);
        if (overlap > bestOverlap || (overlap == 0 && bestOverlap == 0 && distance < bestDistance)) {
            best = &area;
            bestOverlap = overlap;
            bestDistance = distance;
        }
    }
    QRect fitted = rect;
    if (fitted.right() > best->right())
        fitted.moveRight(best->right());
    if (fitted.bottom() > best->bottom())
        fitted.moveBottom(best->bottom());
    if (fitted.left() < best->left())
        fitted.moveLeft(best->left());
    if (fitted.top() < best->top())
        fitted.moveTop(best->top());
    return fitted;
}

bool TessmaMDIFrame::SaveWindowPosition() const
{
    WinApp* app = WinApp::GetApp();
    if (!app)
        return false;
    const int status = isMinimized() ? kShowMinimized : isMaximized() ? kShowMaximized : kShowNormal;
    const QRect normal = normalGeometry().isValid() ? normalGeometry() : geometry();
    // Edges as the window system keeps them: right and bottom lie just outside.
    return app->WriteProfileInt(kWindowPosSection, "Status", status) &&
           app->WriteProfileInt(kWindowPosSection, "Top", normal.top()) &&
           app->WriteProfileInt(kWindowPosSection, "Left", normal.left()) &&
           app->WriteProfileInt(kWindowPosSection, "Bottom", normal.top() + normal.height()) &&
           app->WriteProfileInt(kWindowPosSection, "Right", normal.left() + normal.width());
}

bool TessmaMDIFrame::LoadWindowPosition()
{
    const WinApp* app = WinApp::GetApp();
    if (!app)
        return false;
    const int status = app->GetProfileInt(kWindowPosSection, "Status", -1);
    const int top = app->GetProfileInt(kWindowPosSection, "Top", -1);
    const int left = app->GetProfileInt(kWindowPosSection, "Left", -1);
    const int bottom = app->GetProfileInt(kWindowPosSection, "Bottom", -1);
    const int right = app->GetProfileInt(kWindowPosSection, "Right", -1);
    if (status == -1 || top == -1 || left == -1 || bottom == -1 || right == -1)
        return false;
    if (right <= left || bottom <= top)
        return false;
    const QRect saved(QPoint(left, top), QSize(right - left, bottom - top));
    setGeometry(FitIntoNearestWorkArea(saved, GetWorkAreas()));
    Qt::WindowStates state = windowState() & ~(Qt::WindowMinimized | Qt::WindowMaximized);
    if (status == kShowMaximized)
        state |= Qt::WindowMaximized;
    else if (status == kShowMinimized)
        state |= Qt::WindowMinimized;
    setWindowState(state);
    return true;
}

void TessmaMDIFrame::setVisible(bool visible)
{
    if (visible && !mPositionApplied) {
        mPositionApplied = true;
        LoadWindowPosition();
    }
    TsFrameWnd::setVisible(visible);
    KeepSplashOnTop();
}

void TessmaMDIFrame::changeEvent(QEvent* event)
{
    TsFrameWnd::changeEvent(event);
    if (event->type() == QEvent::ActivationChange)
        KeepSplashOnTop();
}

// A window manager may raise the frame above the splash as it comes up or is
// activated; the splash stays in front for as long as it is shown.
void TessmaMDIFrame::KeepSplashOnTop()
{
    if (TsSplashWindow* splash = TsStartWindow::Instance(); splash && splash->isVisible())
        splash->raise();
}

void TessmaMDIFrame::closeEvent(QCloseEvent* event)
{
    // Only a frame that was on the screen has a position worth keeping.
    if (mPositionApplied)
        SaveWindowPosition();
    TsFrameWnd::closeEvent(event);
}

// --- Tool bars and docks -------------------------------------------------------------

std::vector<QWidget*> TessmaMDIFrame::MyBars() const
{
    std::vector<QWidget*> bars;
    for (QToolBar* bar : findChildren<QToolBar*>())
        if (bar->parentWidget() == this)
            bars.push_back(bar);
    for (QDockWidget* dock : findChildren<QDockWidget*>())
        if (dock->parentWidget() == this)
            bars.push_back(dock);
    return bars;
}

TessmaMDIFrame::DockState TessmaMDIFrame::GetDockState() const
{
    DockState dock{saveState(), {}};
    for (const QWidget* bar : MyBars())
        if (IsFloating(bar) && !bar->objectName().isEmpty())
            dock.floatingPositions[bar->objectName()] = bar->pos();
    return dock;
}

bool TessmaMDIFrame::SetDockState(const DockState& dock)
{
    if (!restoreState(dock.state))
        return false;
    for (QWidget* bar : MyBars()) {
        if (!IsFloating(bar))
            continue;
        // An empty floating window is a stray frame on the desktop.
        if (!HasVisibleContent(bar)) {
            bar->hide();
            continue;
        }
        const auto stored = dock.floatingPositions.find(bar->objectName());
        if (stored != dock.floatingPositions.end())
            bar->move(stored->second);
    }
    return true;
}

bool TessmaMDIFrame::SaveBarState(const char* profileName) const
{
    WinApp* app = WinApp::GetApp();
    if (!app || !profileName)
        return false;
    const DockState dock = GetDockState();
    // A fresh section, so that no name of an earlier state is left behind.
    app->WriteProfileString(profileName, nullptr, nullptr);
    int count = 0;
    for (const QWidget* bar : MyBars()) {
        if (bar->objectName().isEmpty())
            continue;
        const std::string key = "Bar" + std::to_string(count++);
        if (!app->WriteProfileString(profileName, key.c_str(), bar->objectName().toStdString().c_str()))
            return false;
        const auto floating = dock.floatingPositions.find(bar->objectName());
        if (floating == dock.floatingPositions.end())
            continue;
        const std::string position = std::to_string(floating->second.x()) + "," + std::to_string(floating->second.y());
        if (!app->WriteProfileString(profileName, (key + "Float").c_str(), position.c_str()))
            return false;
    }
    return app->WriteProfileInt(profileName, "BarCount", count) &&
           app->WriteProfileString(profileName, "State", dock.state.toBase64().constData());
}

bool TessmaMDIFrame::LoadBarState(const char* profileName)
{
    const WinApp* app = WinApp::GetApp();
    if (!app || !profileName)
        return false;
    const std::string state = app->GetProfileString(profileName, "State", "");
    if (state.empty())
        return false;
    DockState dock{QByteArray::fromBase64(QByteArray::fromStdString(state)), {}};
    const int count = app->GetProfileInt(profileName, "BarCount", 0);
    for (int i = 0; i < count; ++i) {
        const std::string key = "Bar" + std::to_string(i);
        const std::string name = app->GetProfileString(profileName, key.c_str(), "");
        int x = 0, y = 0;
        if (!name.empty() &&
            std::sscanf(app->GetProfileString(profileName, (key + "Float").c_str(), "").c_str(), "%d,%d", &x, &y) == 2)
            dock.floatingPositions[QString::fromStdString(name)] = QPoint(x, y);
    }
    return SetDockState(dock);
}

int TessmaMDIFrame::VerifyBarState(const char* profileName) const
{
    const WinApp* app = WinApp::GetApp();
    if (!app || !profileName)
        return 1;
    const std::vector<QWidget*> bars = MyBars();
    const int count = app->GetProfileInt(profileName, "BarCount", 0);
    for (int i = 0; i < count; ++i) {
        const std::string key = "Bar" + std::to_string(i);
        const QString name = QString::fromStdString(app->GetProfileString(profileName, key.c_str(), ""));
        if (name.isEmpty())
            continue;
        if (std::none_of(bars.begin(), bars.end(), [&name](const QWidget* bar) { return bar->objectName() == name; }))
            return 0;
    }
    return 1;
}

// --- Ending ----------------------------------------------------------------------------

void TessmaMDIFrame::OnCrash() {}

void TessmaMDIFrame::CleanupWindow()
{
    mMemoryTimer.stop();
    DestroyWindow();
}

void TessmaMDIFrame::DestroyWindow()
{
    mMemoryTimer.stop();
    mSplashTimer.stop();
    hide();
    if (testAttribute(Qt::WA_DeleteOnClose))
        deleteLater();
}

// --- Command route ---------------------------------------------------------------------

CmdTarget* TessmaMDIFrame::GetActiveCommandTarget() const
{
    QMdiSubWindow* child = MDIGetActive();
    if (!child)
        return nullptr;
    if (auto* target = dynamic_cast<CmdTarget*>(child))
        return target;
    return dynamic_cast<CmdTarget*>(child->widget());
}
