#include <KORVAutlwin/help/CHHCtrl.h>

#include <KORVAutlwin/frame/CmdTarget.h>
#include <KORVAutlwin/frame/MenuResource.h>
#include <KORVAutlwin/frame/TsMenu.h>
#include <KORVAutlwin/frame/MessageBoxTypes.h>
#include <KORVAutlwin/frame/TsApp.h>
#include <KORVAutlwin/frame/WinApp.h>
#include <KORVAutlwin/help/ChmFileFinder.h>
#include <KORVAutlwin/help/ChmSchemeHandler.h>
#include <KORVAutlwin/help/HelpLinks.h>
#include <KORVAutlwin/workspace/HtmlBrowserView.h>

#include <KORVAutl/LanguageString.h>
#include <KORVAutl/TsString.h>

#include <QAction>
#include <QCoreApplication>
#include <QIcon>
#include <QMenu>
#include <QMouseEvent>
#include <QResizeEvent>
#include <QStyle>
#include <QToolBar>
#include <QWebEngineHistory>
#include <QWebEnginePage>
#include <QWebEngineProfile>
#include <QWebEngineView>

#include <cstdint>

// The browser of the pane: hands its navigations and loads to the pane.
class HelpBrowser : public HtmlBrowserView
{
public:
    HelpBrowser(CHHCtrl* pane) : HtmlBrowserView(pane), mPane(pane) {}
    void OnBeforeNavigate2(const QString& url, bool& cancel) override { mPane->BeforeNavigate2(QUrl(url), cancel); }
    void OnDocumentComplete(const QString& url) override { mPane->DocumentComplete(QUrl(url)); }
    // The right button's release in the page shows the pane's menu, and the browser never shows its own.
    bool PreTranslateMessage(QObject* window, QEvent* event) override
    {
        if (event->type() == QEvent::MouseButtonRelease && IsIEWindow(window) &&
            static_cast<QMouseEvent*>(event)->button() == Qt::RightButton) {
            mPane->OnContextMenu(static_cast<QMouseEvent*>(event)->globalPosition().toPoint());
            return true;
        }
        return HtmlBrowserView::PreTranslateMessage(window, event);
    }

private:
    CHHCtrl* mPane;
};

namespace {
constexpr int kToolBarHeight = 28;
constexpr int kToolBarHeightWithText = 43;
constexpr unsigned int kButtonLabels = 16121;
constexpr unsigned int kFileNotFound = 16116;
constexpr unsigned int kContextMenu = 16240;
constexpr unsigned int kMenuBack = 16269;

QStyle::StandardPixmap ButtonIcon(int bit)
{
    static const QStyle::StandardPixmap icons[] = {QStyle::SP_DirHomeIcon, QStyle::SP_ArrowBack,
                                                   QStyle::SP_ArrowForward, QStyle::SP_FileDialogDetailedView,
                                                   QStyle::SP_DialogCloseButton};
    return icons[bit];
}
} // namespace

CHHCtrl::CHHCtrl() = default;

CHHCtrl::~CHHCtrl() = default;

bool CHHCtrl::Create(QWidget* parent, const QRect& rect, unsigned long buttons, const char* home, bool showText)
{
    // A home below 65536 can't be a readable pointer: it is a map id.
    if (reinterpret_cast<std::uintptr_t>(home) < 0x10000) {
        m_homeId = static_cast<unsigned int>(reinterpret_cast<std::uintptr_t>(home));
        m_homeFile.clear();
    } else {
        m_homeFile = home;
        m_homeId = 0;
    }
    setParent(parent);
    setGeometry(rect);
    m_toolBarHeight = 0;
    if (buttons != 0) {
        delete m_toolBar;
        m_toolBar = nullptr;
        std::vector<std::string> labels;
        if (showText) {
            const char* text = LanguageString::Get(kButtonLabels);
            if (!text || !*text)
                return false;
            TsString::SplitString(text, '|', labels);
        }
        m_toolBar = new QToolBar(this);
        m_toolBar->setObjectName("1");
        m_toolBar->setIconSize(QSize(20, 20));
        m_toolBar->setToolButtonStyle(showText ? Qt::ToolButtonTextUnderIcon : Qt::ToolButtonIconOnly);
        m_toolBarHeight = showText ? kToolBarHeightWithText : kToolBarHeight;
        for (int bit = 0; bit <= static_cast<int>(m_lastToolCommand - ID_HH_HOME); ++bit) {
            if (!(buttons & (1ul << bit)))
                continue;
            if (bit == 0 && m_homeFile.empty() && m_homeId == 0)
                continue;   // no home to go to
            const unsigned int id = ID_HH_HOME + bit;
            const QString label = bit < static_cast<int>(labels.size()) ? QString::fromStdString(labels[bit]) : QString();
            QAction* action = m_toolBar->addAction(style()->standardIcon(ButtonIcon(bit)), label);
            action->setData(id);
            action->setToolTip(label);
            connect(action, &QAction::triggered, this, [this, id] { OnCommand(id); });
        }
        m_toolBar->setGeometry(0, 0, rect.width(), m_toolBarHeight);
        m_toolBar->show();
    }
    if (!m_browser) {
        m_browser = new HelpBrowser(this);
        ChmSchemeHandler::Install(m_browser->GetPage()->profile());
        QWebEngineView* view = m_browser->GetBrowser();
        connect(view, &QWebEngineView::urlChanged, this, [this, view](const QUrl& url) {
            NavigateComplete2(url);
            OnCommandStateChange(CSC_NAVIGATEBACK, view->history()->canGoBack());
            OnCommandStateChange(CSC_NAVIGATEFORWARD, view->history()->canGoForward());
        });
        connect(view, &QWebEngineView::titleChanged, this,
                [this](const QString& title) { OnTitleChange(title.toUtf8().constData()); });
        connect(view, &QWebEngineView::loadStarted, this, [this] { OnDownloadBegin(); });
        connect(view, &QWebEngineView::loadFinished, this, [this] { OnDownloadComplete(); });
        connect(view, &QWebEngineView::loadProgress, this, [this](int progress) { OnProgressChange(progress, 100); });
        connect(m_browser->GetPage(), &QWebEnginePage::linkHovered, this,
                [this](const QString& link) { OnStatusTextChange(link.toUtf8().constData()); });
    }
    LayOut();
    show();
    return true;
}

bool CHHCtrl::ReplaceControl(QWidget* parent, unsigned int id, unsigned long buttons, const char* home, bool showText)
{
    if (!parent)
        return false;
    for (QWidget* child : parent->findChildren<QWidget*>()) {
        if (child->property("ctrlId").toUInt() == id) {
            const QRect rect = child->geometry();
            QWidget* holder = child->parentWidget();
            delete child;
            return Create(holder, rect, buttons, home, showText);
        }
    }
    return false;
}

void CHHCtrl::MoveWindow(QRect* rect, int)
{
    if (m_toolBar) {
        m_toolBar->move(rect->topLeft());
        rect->setTop(rect->top() + m_toolBar->height() + 2);
    }
    if (m_browser)
        m_browser->setGeometry(*rect);
}

void CHHCtrl::LayOut()
{
    if (m_toolBar)
        m_toolBar->setGeometry(0, 0, width(), m_toolBarHeight);
    const int top = m_toolBar ? m_toolBarHeight + 2 : 0;
    if (m_browser)
        m_browser->setGeometry(0, top, width(), std::max(0, height() - top));
}

void CHHCtrl::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    LayOut();
}

bool CHHCtrl::FindChmFile(const char* name, char* out)
{
    return ChmFileFinder::FindChmFile(name, out, [](const std::string& prompt) {
        return TsAfxMessageBox(prompt.c_str(), MB_OKCANCEL | MB_ICONERROR) == IDOK;
    });
}

bool CHHCtrl::SetChmFile(const char* name)
{
    char path[ChmFileFinder::kMaxPath] = {};
    if (FindChmFile(name, path)) {
        m_helpFile = path;
        return true;
    }
    TsAfxMessageBox(TsString::Format(kFileNotFound, name ? name : "").c_str(), MB_ICONWARNING);
    return false;
}

HRESULT CHHCtrl::NavigateChm(const char* topic, const char* frame)
{
    if (m_helpFile.empty())
        return STG_E_FILENOTFOUND;
    const std::string url = HelpLinks::TopicUrl(m_helpFile, topic ? topic : "");
    return Navigate(url.c_str(), 0, frame, nullptr, nullptr, 0);
}

HRESULT CHHCtrl::NavigateChm(unsigned int id, const char* frame)
{
    std::string url;
    if (const HRESULT result = m_ids.UrlOf(m_helpFile, id, url); result != S_OK)
        return result;
    return Navigate(url.c_str(), 0, frame, nullptr, nullptr, 0);
}

HRESULT CHHCtrl::Navigate(const char* url, unsigned long flags, const char*, const char*, const void*, unsigned long)
{
    if (!m_browser)
        return E_FAIL;
    m_refreshedUrl.clear();
    m_browser->Navigate2(url ? url : "", static_cast<int>(flags));
    return S_OK;
}

void CHHCtrl::GoBack()
{
    if (m_browser)
        m_browser->GetBrowser()->back();
}

void CHHCtrl::GoForward()
{
    if (m_browser)
        m_browser->GetBrowser()->forward();
}

void CHHCtrl::GoHome()
{
    OnCommand(ID_HH_HOME);
}

void CHHCtrl::Refresh()
{
    if (m_browser)
        m_browser->Refresh2();
}

void CHHCtrl::Stop()
{
    if (m_browser)
        m_browser->GetBrowser()->stop();
}

std::string CHHCtrl::GetLocationURL() const
{
    return m_browser ? m_browser->GetLocationURL() : std::string();
}

std::string CHHCtrl::GetLocationName() const
{
    return m_browser ? m_browser->GetBrowser()->title().toStdString() : std::string();
}

bool CHHCtrl::GetBusy() const
{
    return m_browser && m_browser->GetBusy();
}

int CHHCtrl::GetReadyState() const
{
    return m_browser ? m_browser->GetReadyState() : READYSTATE_UNINITIALIZED;
}

void CHHCtrl::OnCommand(unsigned int id)
{
    switch (id) {
    case ID_HH_HOME:
        if (!m_helpFile.empty() && !HelpLinks::IsUrlHome(m_homeFile)) {
            if (m_homeFile.empty())
                NavigateChm(m_homeId, nullptr);
            else
                NavigateChm(m_homeFile.c_str(), nullptr);
        } else {
            Navigate(m_homeFile.c_str());
        }
        break;
    case ID_HH_BACK:
        GoBack();
        break;
    case ID_HH_FORWARD:
        GoForward();
        break;
    case ID_HH_PRINT:
        OnFilePrint();
        break;
    case ID_HH_CLOSE:
        if (QWidget* parent = parentWidget())
            QMetaObject::invokeMethod(parent, "close", Qt::QueuedConnection);
        break;
    default:
        break;
    }
}

void CHHCtrl::OnContextMenu(const QPoint& point)
{
    if (!m_browser || !MenuResource::Exists(kContextMenu))
        return;
    std::unique_ptr<QMenu> menu(MenuResource::Load(kContextMenu));
    const auto actions = menu->actions();
    QMenu* popup = actions.isEmpty() ? nullptr : actions.first()->menu();
    if (!popup)
        return;
    const unsigned int chosen =
        TsMenu::TrackPopupMenu(popup, TPM_NONOTIFY | TPM_RETURNCMD | TPM_RIGHTBUTTON, point, m_browser);
    switch (chosen) {
    case kMenuBack:
        GoBack();
        break;
    case ID_EDIT_COPY:
        m_browser->ExecWB(OLECMDID_COPY, OLECMDEXECOPT_DONTPROMPTUSER);
        break;
    case ID_FILE_SAVE_AS:
        m_browser->ExecWB(OLECMDID_SAVEAS, OLECMDEXECOPT_DONTPROMPTUSER);
        break;
    case ID_FILE_PRINT:
        OnFilePrint();
        break;
    case ID_EDIT_FIND:
        // The browser's own find, once it has the focus.
        m_browser->GetBrowser()->setFocus();
        QMetaObject::invokeMethod(
            m_browser, [browser = m_browser] { browser->ExecWB(OLECMDID_FIND, 0); }, Qt::QueuedConnection);
        break;
    case ID_EDIT_SELECT_ALL:
        OnEditSelectAll();
        break;
    default:
        break;
    }
}

void CHHCtrl::OnFilePrint()
{
    if (m_browser)
        m_browser->ExecWB(OLECMDID_PRINT, 0);
}

void CHHCtrl::OnEditSelectAll()
{
    if (m_browser)
        m_browser->ExecWB(OLECMDID_SELECTALL, OLECMDEXECOPT_DONTPROMPTUSER);
}

void CHHCtrl::OnBeforeNavigate2(const char* url, unsigned long, const char*, const void*, const char*, bool& cancel)
{
    cancel = false;
    std::string name;
    if (HelpLinks::IsAppLink(url ? url : "", name)) {
        OnAppCmd(name.c_str());
        cancel = true;
    }
}

void CHHCtrl::OnAppCmd(const char* name)
{
    unsigned int id = 0;
    if (!HelpLinks::FindCommand(m_cmdMap, name ? name : "", id))
        return;
    // Posted: a navigation is under way when the link fires.
    QMetaObject::invokeMethod(
        this,
        [id] {
            if (auto* target = dynamic_cast<CmdTarget*>(TsGetMainWnd()))
                target->ExecuteCommand(id);
        },
        Qt::QueuedConnection);
}

void CHHCtrl::NavigateComplete2(const QUrl& url)
{
    OnNavigateComplete2(url.toString().toUtf8().constData());
}

void CHHCtrl::BeforeNavigate2(const QUrl& url, bool& cancel)
{
    const std::string text = url.toString().toStdString();
    OnBeforeNavigate2(text.c_str(), 0, nullptr, nullptr, nullptr, cancel);
}

void CHHCtrl::DocumentComplete(const QUrl& url)
{
    OnDocumentComplete(url.toString().toUtf8().constData());
    emit PageComplete(url.toString());
}

void CHHCtrl::OnDocumentComplete(const char* url)
{
    // Once per page: the refreshed page completes, too, and must not refresh again.
    if (m_refreshedUrl == url)
        return;
    m_refreshedUrl = url;
    Refresh();
}

void CHHCtrl::OnCommandStateChange(long command, bool enable)
{
    if (!m_toolBar)
        return;
    unsigned int id = 0;
    if (command == CSC_NAVIGATEFORWARD)
        id = ID_HH_FORWARD;
    else if (command == CSC_NAVIGATEBACK)
        id = ID_HH_BACK;
    for (QAction* action : m_toolBar->actions())
        if (id && action->data().toUInt() == id)
            action->setEnabled(enable);
}

void CHHCtrl::OnNavigateComplete2(const char*) {}

void CHHCtrl::OnTitleChange(const char*) {}

void CHHCtrl::OnDraw(QPainter*) {}

void CHHCtrl::OnDownloadBegin() {}

void CHHCtrl::OnDownloadComplete() {}

void CHHCtrl::OnProgressChange(long, long) {}

void CHHCtrl::OnStatusTextChange(const char*) {}

void CHHCtrl::OnPropertyChange(const char*) {}

void CHHCtrl::OnNewWindow2(void**, bool& cancel)
{
    cancel = false;
}

void CHHCtrl::OnQuit() {}

void CHHCtrl::OnVisible(bool) {}

void CHHCtrl::GoSearch() {}

void CHHCtrl::Refresh2(int level)
{
    if (m_browser)
        m_browser->Refresh2(level);
}

void CHHCtrl::ExecWB(int command, int option)
{
    if (m_browser)
        m_browser->ExecWB(command, option);
}

unsigned long CHHCtrl::QueryStatusWB(int command) const
{
    if (!m_browser)
        return 0;
    bool enabled = m_browser->HasDocument();
    if (command == OLECMDID_PRINT || command == OLECMDID_PRINT2 || command == OLECMDID_SAVEAS)
        enabled = enabled && !m_browser->GetBusy();
    return OLECMDF_SUPPORTED | (enabled ? OLECMDF_ENABLED : 0);
}

void CHHCtrl::PutProperty(const char* name, const QVariant& value)
{
    m_properties[name ? name : ""] = value;
    OnPropertyChange(name);
}

QVariant CHHCtrl::GetProperty(const char* name) const
{
    const auto found = m_properties.find(name ? name : "");
    return found == m_properties.end() ? QVariant() : found->second;
}

std::string CHHCtrl::GetType() const
{
    return "HTML Document";
}

void CHHCtrl::SetLeft(long left)
{
    if (m_browser)
        m_browser->move(static_cast<int>(left), m_browser->y());
}

void CHHCtrl::SetTop(long top)
{
    if (m_browser)
        m_browser->move(m_browser->x(), static_cast<int>(top));
}

void CHHCtrl::SetHeight(long height)
{
    if (m_browser)
        m_browser->resize(m_browser->width(), static_cast<int>(height));
}

void CHHCtrl::SetVisible(bool visible)
{
    if (m_browser) {
        m_browser->setVisible(visible);
        OnVisible(visible);
    }
}

QWebEnginePage* CHHCtrl::GetHtmlDocument() const
{
    return m_browser ? m_browser->GetPage() : nullptr;
}

QWidget* CHHCtrl::GetApplication() const
{
    return TsGetMainWnd();
}

std::string CHHCtrl::GetFullName() const
{
    return QCoreApplication::applicationFilePath().toStdString();
}

void CHHCtrl::SetRegisterAsDropTarget(bool enable)
{
    if (m_browser)
        m_browser->setAcceptDrops(enable);
}
