#pragma once
/// \class CHHCtrl
/// The help pane: a browser with a small tool bar of its own (home, back,
/// forward, print, close: bits 0 to 4 of Create's `buttons`, commands 65280 to
/// 65284) that shows pages straight out of a compiled help file. It finds the
/// file where help files are kept, navigates by topic path or by map id (the
/// table read once), and turns links "app:<name>" (scheme in any case) into the
/// command that SetCmdMap maps the name to, posted to the main window.

#include <KORVAutlwin/help/ChmMapIds.h>
#include <KORVAutl/HResult.h>
#include <KORVAutlwin/workspace/HtmlBrowserView.h>

#include <QVariant>
#include <QWidget>

#include <map>
#include <string>

class QToolBar;
class QAction;
class QWebEngineView;
class QPainter;
class QUrl;
class QWebEnginePage;

/// Answers of QueryStatusWB.
inline constexpr unsigned long OLECMDF_SUPPORTED = 1;
inline constexpr unsigned long OLECMDF_ENABLED = 2;

/// Browser command states of OnCommandStateChange.
inline constexpr long CSC_NAVIGATEFORWARD = 1;
inline constexpr long CSC_NAVIGATEBACK = 2;

class CHHCtrl : public QWidget
{
    Q_OBJECT
public:
    /// Command ids of the tool bar: 65280 + bit.
    enum EToolCommand : unsigned int
    {
        ID_HH_HOME = 65280,
        ID_HH_BACK = 65281,
        ID_HH_FORWARD = 65282,
        ID_HH_PRINT = 65283,
        ID_HH_CLOSE = 65284,
    };

    CHHCtrl();
    ~CHHCtrl() override;

    /// Creates the pane in `parent` at `rect`. `home` is a topic path, a URL (with
    /// ":"), or a map id cast to a pointer (values below 65536). False on failure.
    virtual bool Create(QWidget* parent, const QRect& rect, unsigned long buttons, const char* home, bool showText);
    /// Takes the place and size of the child of `parent` whose "ctrlId" is `id`, destroys it, and creates there.
    virtual bool ReplaceControl(QWidget* parent, unsigned int id, unsigned long buttons, const char* home,
                                bool showText);
    /// Tool bar at the rectangle's top left, its size kept; the browser in the rest below it.
    void MoveWindow(QRect* rect, int repaint = 1);

    /// Finds `name` and makes it the help file; false, with a warning, when it can't be found.
    bool SetChmFile(const char* name);
    const std::string& GetChmFile() const { return m_helpFile; }
    /// The search of ChmFileFinder, with the prompt of "hh.ini" shown to the user.
    bool FindChmFile(const char* name, char* out);
    void SetHomeFile(const char* name) { m_homeFile = name ? name : ""; }

    /// Shows `topic` of the help file: STG_E_FILENOTFOUND without a help file.
    HRESULT NavigateChm(const char* topic, const char* frame = nullptr);
    /// Shows the topic of map id `id`: the results of ChmMapIds::UrlOf, else Navigate's.
    HRESULT NavigateChm(unsigned int id, const char* frame = nullptr);

    /// Loads `url` (a path is a local file); S_OK once asked.
    HRESULT Navigate(const char* url, unsigned long flags = 0, const char* frame = nullptr,
                     const char* headers = nullptr, const void* postData = nullptr, unsigned long size = 0);
    void GoBack();
    void GoForward();
    void GoHome();
    /// Searching the web is not for help pages: it does nothing.
    void GoSearch();
    void Refresh();
    void Refresh2(int level);
    void Stop();
    /// Runs browser command `command` (EBrowserCommand) with `option`.
    void ExecWB(int command, int option);
    /// Whether browser command `command` can run now: OLECMDF_SUPPORTED | OLECMDF_ENABLED, or OLECMDF_SUPPORTED.
    unsigned long QueryStatusWB(int command) const;
    /// A value the application keeps with the browser, by name.
    void PutProperty(const char* name, const QVariant& value);
    QVariant GetProperty(const char* name) const;
    std::string GetType() const;
    long GetLeft() const { return m_browser ? m_browser->x() : 0; }
    void SetLeft(long left);
    long GetTop() const { return m_browser ? m_browser->y() : 0; }
    void SetTop(long top);
    long GetHeight() const { return m_browser ? m_browser->height() : 0; }
    void SetHeight(long height);
    bool GetVisible() const { return m_browser && m_browser->isVisible(); }
    void SetVisible(bool visible);
    bool GetOffline() const { return m_offline; }
    void SetOffline(bool offline) { m_offline = offline; }
    bool GetSilent() const { return m_silent; }
    void SetSilent(bool silent) { m_silent = silent; }
    /// The page of the browser, which holds its document.
    QWebEnginePage* GetHtmlDocument() const;
    /// The window that holds the pane.
    QWidget* GetContainer() const { return parentWidget(); }
    QWidget* GetApplication() const;
    QWidget* GetParentBrowser() const { return nullptr; }
    bool GetTopLevelContainer() const { return false; }
    /// The full path of the running program.
    std::string GetFullName() const;
    bool GetRegisterAsDropTarget() const { return m_browser && m_browser->acceptDrops(); }
    void SetRegisterAsDropTarget(bool enable);
    std::string GetLocationURL() const;
    std::string GetLocationName() const;
    bool GetBusy() const;
    int GetReadyState() const;
    HtmlBrowserView* GetBrowser() const { return m_browser; }
    QToolBar* GetToolBarCtrl() const { return m_toolBar; }
    /// Replaces the map from "app:" names to command ids.
    void SetCmdMap(const std::map<std::string, unsigned int>& map) { m_cmdMap = map; }
    /// The map-id table, once read.
    const ChmMapIds& GetIdTable() const { return m_ids; }

    /// Runs the command of an "app:" link: posts the mapped id to the main window; nothing for an unknown name.
    virtual void OnAppCmd(const char* name);
    /// Every navigation passes here; "app:" links are taken as commands and cancelled.
    virtual void OnBeforeNavigate2(const char* url, unsigned long flags, const char* frame, const void* postData,
                                   const char* headers, bool& cancel);
    /// Loads the finished page once more, so that a page served before never shows stale.
    virtual void OnDocumentComplete(const char* url);
    /// Enables the forward or back button.
    virtual void OnCommandStateChange(long command, bool enable);
    virtual void OnNavigateComplete2(const char* url);
    virtual void OnTitleChange(const char* title);
    /// Hooks of the browser's events; they do nothing here.
    virtual void OnDraw(QPainter* painter);
    virtual void OnDownloadBegin();
    virtual void OnDownloadComplete();
    virtual void OnProgressChange(long progress, long progressMax);
    virtual void OnStatusTextChange(const char* text);
    virtual void OnPropertyChange(const char* property);
    /// A page asks for a new window: `cancel` is set to false, so that it opens.
    virtual void OnNewWindow2(void** dispatch, bool& cancel);
    virtual void OnQuit();
    virtual void OnVisible(bool visible);

    /// The browser's event entries: they turn the events' values into text and call the hooks above.
    void NavigateComplete2(const QUrl& url);
    void BeforeNavigate2(const QUrl& url, bool& cancel);
    void DocumentComplete(const QUrl& url);
    /// Tool bar commands.
    virtual void OnCommand(unsigned int id);
    /// The pane's own menu (16240) at `point` (global), in place of the browser's; runs the chosen command.
    virtual void OnContextMenu(const QPoint& point);
    void OnFilePrint();
    void OnEditSelectAll();

signals:
    /// A page of the pane has finished loading.
    void PageComplete(const QString& url);

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    friend class HelpBrowser;
    void LayOut();

    HtmlBrowserView* m_browser = nullptr;
    std::string m_helpFile;
    ChmMapIds m_ids;
    unsigned int m_lastToolCommand = ID_HH_CLOSE;
    std::string m_homeFile;
    unsigned int m_homeId = 0;
    QToolBar* m_toolBar = nullptr;
    std::map<std::string, unsigned int> m_cmdMap;
    int m_toolBarHeight = 0;
    std::string m_refreshedUrl;
    std::map<std::string, QVariant> m_properties;
    bool m_offline = false;
    bool m_silent = false;
};
