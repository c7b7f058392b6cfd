#pragma once
/// \class TsHtmlHelp
/// The process-wide door to the help viewer (HelpWindow): one object, made at
/// the first call, that shows the contents, the index, the search, a topic by
/// map id, or the context help of a dialog's control out of the help file set
/// with SetHelpFile. Every call goes through one function, HtmlHelp, with the
/// viewer's command numbers; a call without a readable help file gives null.

#include <KORVAutlwin/help/ContextHelpTable.h>

#include <QPoint>
#include <QPointer>

#include <string>

class QDialog;
class QWidget;
class HelpWindow;

/// Commands of HtmlHelp, with the viewer's numbers.
enum EHtmlHelpCommand : unsigned int
{
    HH_DISPLAY_TOPIC = 0x0000,
    HH_DISPLAY_TOC = 0x0001,
    HH_DISPLAY_INDEX = 0x0002,
    HH_DISPLAY_SEARCH = 0x0003,
    HH_HELP_CONTEXT = 0x000F,
    HH_TP_HELP_WM_HELP = 0x0011,
};

/// The help request of a window: a control (iCtrlId, hItemHandle) asking for help at MousePos.
struct HELPINFO
{
    unsigned int cbSize = sizeof(HELPINFO);
    int iContextType = 1;   ///< 1: a window, 2: a menu
    int iCtrlId = 0;
    QWidget* hItemHandle = nullptr;
    unsigned long dwContextId = 0;
    QPoint MousePos;
};
inline constexpr int HELPINFO_WINDOW = 1;

/// The search query of HH_DISPLAY_SEARCH; zeroed, only its size is looked at.
struct HH_FTS_QUERY
{
    int cbStruct = sizeof(HH_FTS_QUERY);
    bool fUniCodeStrings = false;
    const char* pszSearchQuery = nullptr;
};

class TsHtmlHelp
{
public:
    /// The one object, created at the first call; it lives to the end of the process.
    static TsHtmlHelp& Instance();
    virtual ~TsHtmlHelp();

    void SetHelpFile(const char* path) { m_helpFile = path ? path : ""; }
    const std::string& GetHelpFile() const { return m_helpFile; }

    /// The contents; the viewer's window, or null.
    QWidget* DisplayDefaultTopic();
    QWidget* DisplayIndex();
    QWidget* Search();
    /// The topic of map id `id` when above 0, else the default topic; `window` names
    /// the viewer's window type, appended to the file as ">window".
    QWidget* DisplayTopic(int id, const char* window = nullptr);
    /// The context help of `control` in `dialog`, from `popupFile` in the help file.
    QWidget* DisplayContextHelp(QDialog* dialog, QWidget* control, const char* popupFile);
    /// For a window's help request with a control id of at least 1: the form above, and true.
    bool DisplayContextHelp(QDialog* dialog, const HELPINFO* helpInfo, const char* popupFile);

    /// The dialog's table of control and context ids (property "ctrlId" and "contextHelpId" of its children).
    void FillContextHelpLookUpTable(QDialog* dialog);
    const ContextHelpTable& GetContextTable() const { return m_table; }
    /// The viewer, once a call has made it.
    HelpWindow* GetWindow() const;
    /// The text of the last context help shown.
    const std::string& GetLastPopupText() const { return m_lastPopup; }

protected:
    TsHtmlHelp();
    /// The one function every call goes through: `file` may end in ">window" or "::/popup file".
    QWidget* HtmlHelp(QWidget* caller, const std::string& file, unsigned int command, const void* data);

private:
    std::string m_helpFile;
    ContextHelpTable m_table;
    QPointer<HelpWindow> m_window;
    std::string m_lastPopup;
};
