#include <KORVAutlwin/workspace/HtmlBrowserView.h>

#include <KORVAutlwin/frame/GUIUtilities.h>
#include <KORVAutlwin/frame/TsApp.h>
#include <KORVAutlwin/workspace/HtmlText.h>
#include <KORVAutlwin/platform/UserIdentity.h>

#include <QChildEvent>
#include <QCoreApplication>
#include <QFileDialog>
#include <QInputDialog>
#include <QPrintDialog>
#include <QPrinter>
#include <QTimer>
#include <QVBoxLayout>
#include <QWebEnginePage>
#include <QWebEngineProfile>
#include <QWebEngineUrlRequestJob>
#include <QWebEngineUrlScheme>
#include <QWebEngineUrlSchemeHandler>
#include <QWebEngineView>

#include <cstdlib>
#include <memory>

namespace {

// Runs when the library is loaded, before the application object exists: the
// browser takes schemes and its sandbox setting only before it starts.
struct BrowserSetUp
{
    BrowserSetUp()
    {
        QWebEngineUrlScheme app("app");
        app.setSyntax(QWebEngineUrlScheme::Syntax::Path);
        // Not a local scheme: any page, generated or from a file, may follow its links.
        app.setFlags({});
        QWebEngineUrlScheme::registerScheme(app);
        QCoreApplication::setAttribute(Qt::AA_ShareOpenGLContexts);
        if (korva::UserId() == 0) {
            QByteArray flags = qgetenv("QTWEBENGINE_CHROMIUM_FLAGS");
            if (!flags.contains("--no-sandbox"))
                qputenv("QTWEBENGINE_CHROMIUM_FLAGS", (flags + " --no-sandbox").trimmed());
        }
    }
} const gBrowserSetUp;

// "app:" links are commands, taken by the views before any load starts; a
// resource that names one (an image, a frame) gets nothing.
class AppSchemeHandler : public QWebEngineUrlSchemeHandler
{
public:
    using QWebEngineUrlSchemeHandler::QWebEngineUrlSchemeHandler;
    void requestStarted(QWebEngineUrlRequestJob* job) override { job->fail(QWebEngineUrlRequestJob::RequestDenied); }
};

class BrowserPage : public QWebEnginePage
{
public:
    BrowserPage(HtmlBrowserView* host) : QWebEnginePage(host), mHost(host) {}

protected:
    bool acceptNavigationRequest(const QUrl& url, NavigationType, bool) override
    {
        bool cancel = false;
        mHost->OnBeforeNavigate2(url.toString(), cancel);
        return !cancel;
    }

private:
    HtmlBrowserView* mHost;
};

const DHtmlCommandRow kNoCommands[] = {{0, 0, 0, nullptr}};


} // namespace

HtmlBrowserView::HtmlBrowserView(QWidget* parent) : QWidget(parent)
{
    static AppSchemeHandler* handler = [] {
        auto* created = new AppSchemeHandler(QWebEngineProfile::defaultProfile());
        QWebEngineProfile::defaultProfile()->installUrlSchemeHandler("app", created);
        return created;
    }();
    (void)handler;
    // Printing is the browser host's own command, whatever a view's table says.
    OnCommand(ID_FILE_PRINT, [this] { ExecWB(OLECMDID_PRINT, 0); });
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    mBrowser = new QWebEngineView(this);
    mBrowser->setPage(new BrowserPage(this));
    // Our menus replace the browser's; it never shows its own.
    mBrowser->setContextMenuPolicy(Qt::PreventContextMenu);
    layout->addWidget(mBrowser);
    mBrowser->installEventFilter(this);
    connect(mBrowser, &QWebEngineView::loadStarted, this, [this] {
        ++mLoadSerial;
        mBusy = true;
        mReadyState = READYSTATE_LOADING;
    });
    connect(mBrowser, &QWebEngineView::loadFinished, this, [this](bool) {
        // Out of the browser's own dispatch: a handler that waits for a script's
        // answer there would never get it.
        const int serial = mLoadSerial;
        QMetaObject::invokeMethod(this, [this, serial] { DocumentLoaded(serial); }, Qt::QueuedConnection);
    });
}

void HtmlBrowserView::DocumentLoaded(int serial)
{
    if (serial != mLoadSerial)
        return;   // a newer load has started meanwhile
    mBusy = false;
    mReadyState = READYSTATE_COMPLETE;
    mHasDocument = true;
    WatchInputWindows();
    const QString url = mBrowser->url().toString();
    OnDocumentComplete(url);
    emit DocumentComplete(url);
}

HtmlBrowserView::~HtmlBrowserView() = default;

void HtmlBrowserView::Navigate2(const std::string& url, int)
{
    const QString text = QString::fromStdString(url);
    mBrowser->load(text.startsWith('/') ? QUrl::fromLocalFile(text) : QUrl(text));
    WatchInputWindows();
}

void HtmlBrowserView::Refresh2(int)
{
    mBrowser->reload();
}

bool HtmlBrowserView::LoadFromResource(unsigned int id)
{
    const std::string page = GUIUtilities::ReadResource(id);
    if (page.empty())
        return false;
    mBrowser->setHtml(QString::fromStdString(page));
    WatchInputWindows();
    return true;
}

std::string HtmlBrowserView::GetLocationURL() const
{
    return mBrowser->url().toString().toStdString();
}

QWebEnginePage* HtmlBrowserView::GetPage() const
{
    return mBrowser->page();
}

void HtmlBrowserView::ExecWB(int command, int option)
{
    switch (command) {
    case OLECMDID_COPY:
        mBrowser->triggerPageAction(QWebEnginePage::Copy);
        break;
    case OLECMDID_SELECTALL:
        mBrowser->triggerPageAction(QWebEnginePage::SelectAll);
        break;
    case OLECMDID_SAVEAS: {
        // The browser's own save: the whole page with its files.
        const QString path = QFileDialog::getSaveFileName(this, tr("Save Page"), mBrowser->title(),
                                                          tr("Web page, complete (*.htm *.html)"));
        if (!path.isEmpty())
            mBrowser->page()->save(path);
        break;
    }
    case OLECMDID_PRINT:
    case OLECMDID_PRINT2:
    case OLECMDID_PRINTPREVIEW2: {
        auto* printer = new QPrinter(QPrinter::HighResolution);
        QPrintDialog dialog(printer, this);
        if (option != OLECMDEXECOPT_DONTPROMPTUSER && dialog.exec() != QDialog::Accepted) {
            delete printer;
            break;
        }
        connect(mBrowser, &QWebEngineView::printFinished, this, [printer](bool) { delete printer; },
                Qt::SingleShotConnection);
        mBrowser->print(printer);
        break;
    }
    case OLECMDID_FIND: {
        bool ok = false;
        const QString text = QInputDialog::getText(this, tr("Find"), tr("Find what:"), QLineEdit::Normal,
                                                   mBrowser->selectedText(), &ok);
        if (ok)
            mBrowser->findText(text);
        break;
    }
    default:
        break;
    }
}

bool HtmlBrowserView::IsIEWindow(const QObject* window)
{
    // The window that takes the browser's input is a child widget of the browser view.
    return window && window->isWidgetType() && qobject_cast<const QWebEngineView*>(window->parent()) &&
           (window->inherits("QQuickWidget") ||
            QByteArray(window->metaObject()->className()).contains("RenderWidgetHostViewQtDelegate"));
}

const DHtmlCommandRow* HtmlBrowserView::GetCommandTable() const
{
    return kNoCommands;
}

int HtmlBrowserView::GetDHtmlCommandMapping(unsigned int command, int& hasHandler, unsigned int& option) const
{
    for (const DHtmlCommandRow* row = GetCommandTable(); row->browserCommand != 0; ++row)
        if (row->command == command) {
            hasHandler = row->handler != nullptr;
            option = row->option;
            return row->browserCommand;
        }
    return -1;
}

int HtmlBrowserView::ExecHandler(unsigned int command) const
{
    for (const DHtmlCommandRow* row = GetCommandTable(); row->browserCommand != 0; ++row)
        if (row->command == command && row->handler) {
            row->handler();
            return 1;
        }
    return 0;
}

bool HtmlBrowserView::OnCmdMsg(unsigned int id, ECmdCode code, CCmdUI* cmdUI)
{
    if (CmdTarget::OnCmdMsg(id, code, cmdUI))
        return true;
    int hasHandler = 0;
    unsigned int option = 0;
    const int browserCommand = GetDHtmlCommandMapping(id, hasHandler, option);
    if (browserCommand < 0)
        return false;
    if (code == eCommand && !(hasHandler && ExecHandler(id)))
        ExecWB(browserCommand, static_cast<int>(option));
    if (code == eUpdate && cmdUI)
        cmdUI->Enable(true);
    return true;
}

void HtmlBrowserView::OnBeforeNavigate2(const QString&, bool&) {}

void HtmlBrowserView::OnDocumentComplete(const QString&) {}

bool HtmlBrowserView::PreTranslateMessage(QObject*, QEvent*)
{
    return false;
}

void HtmlBrowserView::SetCmdMap(const std::map<std::string, unsigned int>& map, CmdTarget* target)
{
    mCmdMap = map;
    mCmdTarget = target;
}

void HtmlBrowserView::RouteAppLink(const QString& url, bool& cancel)
{
    const std::string text = url.toStdString();
    if (HtmlText::IsAppCommand(text)) {
        OnAppCmd(text.c_str() + 4);
        cancel = true;
    }
}

void HtmlBrowserView::OnAppCmd(const char* name)
{
    const auto found = mCmdMap.find(name ? name : "");
    if (found == mCmdMap.end())
        return;
    CmdTarget* target = mCmdTarget ? mCmdTarget : dynamic_cast<CmdTarget*>(TsGetMainWnd());
    if (!target)
        return;
    const unsigned int id = found->second;
    // Posted: the command runs after the navigation has been cancelled.
    QMetaObject::invokeMethod(this, [target, id] { target->ExecuteCommand(id); }, Qt::QueuedConnection);
}

void HtmlBrowserView::WatchInputWindows()
{
    // The browser makes its input window when it first shows a page.
    for (QObject* child : mBrowser->children())
        if (IsIEWindow(child))
            child->installEventFilter(this);
    if (QWidget* proxy = mBrowser->focusProxy())
        proxy->installEventFilter(this);
}

bool HtmlBrowserView::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == mBrowser && event->type() == QEvent::ChildAdded)
        static_cast<QChildEvent*>(event)->child()->installEventFilter(this);
    if (PreTranslateMessage(watched, event))
        return true;
    return QWidget::eventFilter(watched, event);
}
