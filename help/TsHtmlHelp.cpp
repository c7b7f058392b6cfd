#include <KORVAutlwin/help/TsHtmlHelp.h>

#include <KORVAutlwin/help/ChmContents.h>
#include <KORVAutlwin/help/ChmStorage.h>
#include <KORVAutlwin/help/HelpWindow.h>
#include <KORVAutlwin/frame/TsApp.h>

#include <QDialog>
#include <QToolTip>

TsHtmlHelp& TsHtmlHelp::Instance()
{
    // Never destroyed: the viewer may be asked for until the process ends.
    static TsHtmlHelp* instance = new TsHtmlHelp();
    return *instance;
}

TsHtmlHelp::TsHtmlHelp() = default;

TsHtmlHelp::~TsHtmlHelp() = default;

QWidget* TsHtmlHelp::HtmlHelp(QWidget* caller, const std::string& file, unsigned int command, const void* data)
{
    std::string path = file;
    std::string window, popup;
    if (const std::size_t at = path.find("::/"); at != std::string::npos) {
        popup = path.substr(at + 3);
        path.resize(at);
    }
    if (const std::size_t at = path.find('>'); at != std::string::npos) {
        window = path.substr(at + 1);
        path.resize(at);
    }
    if (command == HH_TP_HELP_WM_HELP) {
        // A popup beside the control, from the ".topic" sections of the popup file.
        const ChmStorage storage(path);
        std::string text;
        if (!caller || !storage.ReadStream(popup, text))
            return nullptr;
        const auto* table = static_cast<const ContextHelpTable*>(data);
        m_lastPopup = ChmContents::PopupText(text, table->ContextIdOf(caller->property("ctrlId").toULongLong()));
        if (m_lastPopup.empty())
            return nullptr;
        QToolTip::showText(caller->mapToGlobal(QPoint(0, caller->height())), QString::fromStdString(m_lastPopup),
                           caller);
        return caller;
    }
    // Owned by the main window, so that it goes with it; a window of its own all the same.
    if (!m_window)
        m_window = new HelpWindow(TsGetMainWnd());
    if (!m_window->Open(path))
        return nullptr;
    m_window->setWindowTitle(QString::fromStdString(window.empty() ? path : window));
    switch (command) {
    case HH_DISPLAY_TOC:
        m_window->ShowTab(HelpWindow::ETabContents);
        m_window->ShowDefaultTopic();
        break;
    case HH_DISPLAY_INDEX:
        m_window->ShowTab(HelpWindow::ETabIndex);
        break;
    case HH_DISPLAY_SEARCH:
        m_window->ShowTab(HelpWindow::ETabSearch);
        break;
    case HH_HELP_CONTEXT:
        m_window->ShowTab(HelpWindow::ETabContents);
        if (m_window->ShowMapId(static_cast<unsigned int>(reinterpret_cast<std::uintptr_t>(data))) != S_OK)
            return nullptr;
        break;
    default:
        m_window->ShowTab(HelpWindow::ETabContents);
        m_window->ShowDefaultTopic();
        break;
    }
    return m_window;
}

HelpWindow* TsHtmlHelp::GetWindow() const
{
    return m_window.data();
}

QWidget* TsHtmlHelp::DisplayDefaultTopic()
{
    return HtmlHelp(nullptr, m_helpFile, HH_DISPLAY_TOC, nullptr);
}

QWidget* TsHtmlHelp::DisplayIndex()
{
    return HtmlHelp(nullptr, m_helpFile, HH_DISPLAY_INDEX, nullptr);
}

QWidget* TsHtmlHelp::Search()
{
    HH_FTS_QUERY query;
    return HtmlHelp(nullptr, m_helpFile, HH_DISPLAY_SEARCH, &query);
}

QWidget* TsHtmlHelp::DisplayTopic(int id, const char* window)
{
    std::string file = m_helpFile;
    if (window)
        file += std::string(">") + window;
    if (id > 0)
        return HtmlHelp(nullptr, file, HH_HELP_CONTEXT, reinterpret_cast<const void*>(static_cast<std::uintptr_t>(id)));
    return HtmlHelp(nullptr, file, HH_DISPLAY_TOPIC, nullptr);
}

void TsHtmlHelp::FillContextHelpLookUpTable(QDialog* dialog)
{
    std::vector<ContextHelpTable::Pair> children;
    if (dialog)
        for (QWidget* child : dialog->findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly))
            children.emplace_back(child->property("ctrlId").toULongLong(),
                                  child->property("contextHelpId").toULongLong());
    m_table.FillContextHelpLookUpTable(children);
}

QWidget* TsHtmlHelp::DisplayContextHelp(QDialog* dialog, QWidget* control, const char* popupFile)
{
    FillContextHelpLookUpTable(dialog);
    return HtmlHelp(control, m_helpFile + "::/" + (popupFile ? popupFile : ""), HH_TP_HELP_WM_HELP, &m_table);
}

bool TsHtmlHelp::DisplayContextHelp(QDialog* dialog, const HELPINFO* helpInfo, const char* popupFile)
{
    if (!helpInfo || helpInfo->iContextType != HELPINFO_WINDOW || helpInfo->iCtrlId < 1)
        return false;
    DisplayContextHelp(dialog, helpInfo->hItemHandle, popupFile);
    return true;
}
