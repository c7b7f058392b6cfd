#include <KORVAutlwin/audit/AuditTrailView.h>

#include <KORVAutlwin/audit/AuditTrailSettingsUI.h>
#include <KORVAutlwin/audit/AuditTrailStyleSheet.h>
#include <KORVAutlwin/frame/GUIUtilities.h>
#include <KORVAutlwin/frame/MenuResource.h>
#include <KORVAutlwin/frame/TsApp.h>
#include <KORVAutlwin/frame/TsMenu.h>

#include <KORVAutl/AuditTrail.h>

#include <QContextMenuEvent>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QKeyEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QThread>
#include <QWebEngineView>

#include <memory>

#include <unistd.h>

namespace {

// A browser that stays busy this long counts as one whose state can't be read.
constexpr qint64 kLongestWaitMs = 30000;

} // namespace

const DHtmlCommandRow AuditTrailView::m_commands[] = {
    {ID_EDIT_COPY, OLECMDID_COPY, 0, nullptr},
    {0, 0, 0, nullptr},
};

AuditTrailView::AuditTrailView(QWidget* parent) : HtmlBrowserView(parent)
{
    mBeginSession = AuditTrail::msAuditTrailBeginSession.connect([this](AuditTrail* t) { OnBCBeginSession(t); });
    mEventAdded = AuditTrail::msAuditTrailEventAdded.connect([this](AuditTrail* t) { OnBCEventAdded(t); });
    mEndSession = AuditTrail::msAuditTrailEndSession.connect([this](AuditTrail* t) { OnBCEndSession(t); });
    mProjectNameChanged =
        AuditTrail::msAuditTrailProjectNameChanged.connect([this](AuditTrail* t) { OnBCEventAdded(t); });
    mActiveAuditTrailChanged =
        AuditTrail::msAuditTrailActiveAuditTrailChanged.connect([this](AuditTrail* t) { OnBCAuditTrailChanged(t); });
    mDeleting = AuditTrail::msAuditTrailDeleting.connect([this](AuditTrail* t) { OnBCAuditTrailDestroyed(t); });
    OnCommand(ID_FILE_SAVE_AS, [this] { OnFileSaveAs(); });
    OnCommand(ID_EDIT_SELECT_ALL, [this] { OnEditSelectAll(); });
    // Does nothing: the entry keeps the command enabled while the view is active.
    OnCommand(ID_AUDIT_TRAIL_START, [] {});
}

AuditTrailView::~AuditTrailView() = default;

const DHtmlCommandRow* AuditTrailView::GetCommandTable() const
{
    return m_commands;
}

const char* AuditTrailView::GetXSLFileName()
{
    return AuditTrailStyleSheet::GetXSLFileName();
}

void AuditTrailView::SetAuditTrail(AuditTrail* trail)
{
    OnBCAuditTrailChanged(trail);
}

void AuditTrailView::Update()
{
    if (PrepareUpdateView()) {
        UpdateView();
        mShown = true;
    }
}

void AuditTrailView::Init(const char* xmlPath, bool update)
{
    mLoggingOn = true;
    if (!xmlPath) {
        mXmlPath.clear();
    } else {
        auto* app = dynamic_cast<TsApp*>(WinApp::GetApp());
        AuditTrailStyleSheet::Place(xmlPath, app ? app->GetAppDataDirectory() : std::string());
        mXmlPath = xmlPath;
        if (!update)
            return;
    }
    Update();
}

void AuditTrailView::SetDefaultResourceID(unsigned int id, bool load)
{
    mDefaultResource = id;
    if (load)
        LoadFromResource(id);
}

bool AuditTrailView::PrepareUpdateView()
{
    if (!GetBrowser())
        return false;
    // Never navigate a busy browser, yet keep the interface alive meanwhile.
    QElapsedTimer waited;
    waited.start();
    while (GetReadyState() == READYSTATE_LOADING && waited.elapsed() < kLongestWaitMs) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
        QThread::msleep(20);
    }
    if (!mTrail) {
        mLoggingOn = false;
        LoadFromResource(mDefaultResource);
        return false;
    }
    if (mTrail->GetSettings().mLogEvents > 0) {
        mLoggingOn = true;
        return true;
    }
    mLoggingOn = false;
    LoadFromResource(mNotOnResource);
    return false;
}

void AuditTrailView::UpdateView()
{
    if (!GetBrowser())
        return;
    if (mXmlPath.empty()) {
        LoadFromResource(mDefaultResource);
        return;
    }
    if (access(mXmlPath.c_str(), R_OK) != 0) {
        if (mTrail)
            mTrail->Save();
        if (access(mXmlPath.c_str(), R_OK) != 0) {
            LoadFromResource(mDefaultResource);
            return;
        }
    }
    if (GetBusy())
        return;
    if (mNavigated) {
        Refresh2(REFRESH_NORMAL);
    } else {
        Navigate2(mXmlPath, 2);
        mNavigated = true;
    }
}

void AuditTrailView::OnBeforeNavigate2(const QString& url, bool& cancel)
{
    RouteAppLink(url, cancel);
    // The page about to be loaded shows every event.
    if (mTrail && mTrail->HasUnsavedEvents())
        mTrail->Save();
}

bool AuditTrailView::PreTranslateMessage(QObject* window, QEvent* event)
{
    if (mAccelerators.Translate(event, this))
        return true;
    if (!IsIEWindow(window) && window != GetBrowser())
        return false;
    switch (event->type()) {
    case QEvent::KeyPress:
        if (static_cast<QKeyEvent*>(event)->key() != Qt::Key_F5)
            return false;
        if (mTrail && mTrail->HasUnsavedEvents())
            mTrail->Save();
        // The browser shows the saved file.
        Refresh2(REFRESH_NORMAL);
        return true;
    case QEvent::ContextMenu:
        // The mouse's menu comes with the button's release; the keyboard's is placed near the top left.
        if (static_cast<QContextMenuEvent*>(event)->reason() != QContextMenuEvent::Mouse)
            OnContextMenu(this, QPoint(-1, -1));
        return true;
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
        return static_cast<QMouseEvent*>(event)->button() == Qt::RightButton;
    case QEvent::MouseButtonRelease: {
        const auto* mouse = static_cast<QMouseEvent*>(event);
        if (mouse->button() != Qt::RightButton)
            return false;
        OnContextMenu(this, mouse->globalPosition().toPoint());
        return true;
    }
    default:
        return false;
    }
}

void AuditTrailView::OnContextMenu(QWidget* window, QPoint point)
{
    if (point == QPoint(-1, -1))
        point = window->mapToGlobal(QPoint(5, 5));
    if (!MenuResource::Exists(kContextMenu))
        return;
    std::unique_ptr<QMenu> menu(MenuResource::Load(kContextMenu));
    const auto entries = menu->actions();
    QMenu* popup = entries.isEmpty() ? nullptr : entries.first()->menu();
    if (!popup)
        return;
    if (!mTrail)
        for (QAction* action : popup->actions())
            if (const unsigned int id = action->property("commandId").toUInt();
                id == ID_FILE_PRINT || id == ID_FILE_SAVE_AS)
                action->setEnabled(false);
    // No update round: the entries greyed above stay grey.
    TsMenu::TrackPopupMenu(popup, TPM_RIGHTBUTTON | (mTrail ? 0u : static_cast<unsigned int>(TPM_NONOTIFY)), point, this);
}

void AuditTrailView::OnFileSaveAs()
{
    AuditTrailSettingsUI::AuditTrailViewSaveAsDialog(mTrail);
}

void AuditTrailView::OnEditSelectAll()
{
    ExecWB(OLECMDID_SELECTALL, OLECMDEXECOPT_DONTPROMPTUSER);
}

void AuditTrailView::OnInitialUpdate()
{
    mInitialUpdateDone = true;
    mAccelerators = AcceleratorTable::Load(kAccelerators);
    if (!mShown)
        LoadFromResource(mDefaultResource);
}

void AuditTrailView::showEvent(QShowEvent* event)
{
    HtmlBrowserView::showEvent(event);
    if (!mInitialUpdateDone)
        OnInitialUpdate();
}

void AuditTrailView::OnBCBeginSession(AuditTrail* trail)
{
    if (trail != mTrail || !trail)
        return;
    // A session after an off period has a new file to navigate to.
    mNavigated = false;
    Update();
}

void AuditTrailView::OnBCEventAdded(AuditTrail*)
{
    // Events reach the file at the next save.
}

void AuditTrailView::OnBCEndSession(AuditTrail* trail)
{
    if (trail == mTrail && trail && trail->GetSettings().mLogEvents < 1)
        Update();
}

void AuditTrailView::OnBCAuditTrailChanged(AuditTrail* trail)
{
    mTrail = trail;
    if (trail) {
        mNavigated = false;
        Init(trail->GetFileName().c_str(), true);
    }
}

void AuditTrailView::OnBCAuditTrailDestroyed(AuditTrail* trail)
{
    if (trail != mTrail || !trail)
        return;
    mTrail = nullptr;
    Update();
}
