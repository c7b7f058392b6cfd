#pragma once
/// \class HtmlBrowserView
/// The browser host that the HTML views stand on: a QWebEngineView filling the
/// widget, with the operations of a web browser control: Navigate2, Refresh2,
/// the ready state and the busy flag (from the load signals), browser commands
/// (ExecWB), a before-navigate hook, a document-complete hook, and pages loaded
/// from the HTML resources of the language module.
///
/// The host prints the page on ID_FILE_PRINT.
///
/// Every event that reaches the browser's windows passes PreTranslateMessage
/// first, so that a view can put the application's keys and menus in place of
/// the browser's. Commands routed to the view (CmdTarget) that it has no handler
/// for are looked up in its command table and run as browser commands.
///
/// The scheme "app" is registered with the browser when the library is loaded;
/// when the process runs as root, the browser's sandbox is turned off
/// (QtWebEngine refuses to start with it as root). A view that routes "app:"
/// links (RouteAppLink) posts the command that SetCmdMap maps the link's name to.

#include <KORVAutlwin/frame/CmdTarget.h>

#include <QString>
#include <QWidget>

#include <map>
#include <string>

class QWebEngineView;
class QWebEnginePage;

/// Standard command ids of the framework.
enum : unsigned int
{
    ID_FILE_SAVE_AS = 57604,
    ID_FILE_PRINT = 57607,
    ID_FILE_PRINT_PREVIEW = 57609,
    ID_EDIT_COPY = 57634,
    ID_EDIT_FIND = 57636,
    ID_EDIT_SELECT_ALL = 57642,
};

/// Browser commands of ExecWB, with the browser's numbers.
enum EBrowserCommand : int
{
    OLECMDID_SAVEAS = 4,
    OLECMDID_PRINT = 6,
    OLECMDID_COPY = 15,
    OLECMDID_SELECTALL = 17,
    OLECMDID_FIND = 67,
    OLECMDID_PRINTPREVIEW2 = 2003,
    OLECMDID_PRINT2 = 27,
};
inline constexpr int OLECMDEXECOPT_DONTPROMPTUSER = 2;
inline constexpr int READYSTATE_UNINITIALIZED = 0;
inline constexpr int READYSTATE_LOADING = 1;
inline constexpr int READYSTATE_COMPLETE = 4;
inline constexpr int REFRESH_NORMAL = 0;

/// One row of a view's command table: command id, browser command, option, handler.
struct DHtmlCommandRow
{
    unsigned int command;
    int browserCommand;
    unsigned int option;
    void (*handler)();
};

class HtmlBrowserView : public QWidget, public CmdTarget
{
    Q_OBJECT
public:
    explicit HtmlBrowserView(QWidget* parent = nullptr);
    ~HtmlBrowserView() override;

    /// Navigates to `url` (a path is taken as a local file). `flags` 2 keeps it out of the history.
    void Navigate2(const std::string& url, int flags = 0);
    /// Loads the page again (any level reloads from the server's view of the file).
    void Refresh2(int level = REFRESH_NORMAL);
    /// Shows the HTML resource `id` of the language module; false when there is none.
    bool LoadFromResource(unsigned int id);
    /// A load is under way.
    bool GetBusy() const { return mBusy; }
    /// READYSTATE_UNINITIALIZED before the first load, READYSTATE_LOADING during one,
    /// READYSTATE_COMPLETE after it.
    int GetReadyState() const { return mReadyState; }
    /// A document has been loaded once.
    bool HasDocument() const { return mHasDocument; }
    std::string GetLocationURL() const;
    /// Runs browser command `command` (EBrowserCommand); `option` 2 never asks the user.
    virtual void ExecWB(int command, int option);

    QWebEngineView* GetBrowser() const { return mBrowser; }
    QWebEnginePage* GetPage() const;
    /// True for a window of the browser that receives its input.
    static bool IsIEWindow(const QObject* window);

    /// The browser command of `command` in this view's table, or -1; sets `hasHandler` and `option`.
    int GetDHtmlCommandMapping(unsigned int command, int& hasHandler, unsigned int& option) const;
    /// Runs the handler of `command`'s row: 1 after a call, else 0.
    int ExecHandler(unsigned int command) const;

    bool OnCmdMsg(unsigned int id, ECmdCode code, CCmdUI* cmdUI) override;

    /// Called for every navigation; setting `cancel` stops it.
    virtual void OnBeforeNavigate2(const QString& url, bool& cancel);
    /// Called when a document has finished loading.
    virtual void OnDocumentComplete(const QString& url);
    /// Sees every event of the browser's windows first; true eats it.
    virtual bool PreTranslateMessage(QObject* window, QEvent* event);

    /// Commands of "app:" links: name -> command id, posted to `target` (null: the main window).
    void SetCmdMap(const std::map<std::string, unsigned int>& map, CmdTarget* target);
    /// Posts the command mapped to `name` (exact match); an unknown name does nothing.
    virtual void OnAppCmd(const char* name);

signals:
    /// A document has finished loading (after OnDocumentComplete).
    void DocumentComplete(const QString& url);

protected:
    /// The rows of this view's command table, ended by a row with browser command 0.
    virtual const DHtmlCommandRow* GetCommandTable() const;
    bool eventFilter(QObject* watched, QEvent* event) override;
    /// An "app:" link runs OnAppCmd with its name and is cancelled; other URLs are left alone.
    void RouteAppLink(const QString& url, bool& cancel);

private:
    void WatchInputWindows();
    void DocumentLoaded(int serial);

    QWebEngineView* mBrowser = nullptr;
    bool mBusy = false;
    bool mHasDocument = false;
    int mReadyState = READYSTATE_UNINITIALIZED;
    int mLoadSerial = 0;
    std::map<std::string, unsigned int> mCmdMap;
    CmdTarget* mCmdTarget = nullptr;
};
