#include <KORVAutlwin/workspace/TsHtmlView.h>

#include <KORVAutlwin/frame/GUIUtilities.h>
#include <KORVAutlwin/frame/MenuResource.h>
#include <KORVAutlwin/frame/MessageBoxTypes.h>
#include <KORVAutlwin/frame/TsApp.h>
#include <KORVAutlwin/frame/TsMenu.h>
#include <KORVAutlwin/frame/TsMessageBox.h>
#include <KORVAutlwin/workspace/HtmlText.h>
#include <KORVAutlwin/workspace/IHTMLDocumentUtilities.h>

#include <KORVAutl/LanguageString.h>

#include <QContextMenuEvent>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QKeyEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QPointer>
#include <QWebEnginePage>
#include <QWebEngineView>

namespace {

constexpr unsigned int kSaveFileTitle = 61443;

std::wstring Wide(const char* text)
{
    return text ? QString::fromUtf8(text).toStdWString() : std::wstring();
}

} // namespace

const DHtmlCommandRow TsHtmlView::m_commands[] = {
    {ID_EDIT_COPY, OLECMDID_COPY, 0, nullptr},
    {ID_FILE_PRINT, OLECMDID_PRINT2, 0, nullptr},
    {ID_EDIT_FIND, OLECMDID_FIND, 0, nullptr},
    {ID_FILE_PRINT_PREVIEW, OLECMDID_PRINTPREVIEW2, 0, nullptr},
    {0, 0, 0, nullptr},
};

TsHtmlView::TsHtmlView(QWidget* parent) : HtmlBrowserView(parent), mAccelerators(AcceleratorTable::Load(kAccelerators))
{
    OnCommand(ID_EDIT_SELECT_ALL, [this] { OnEditSelectAll(); });
    OnCommand(ID_FILE_SAVE_AS, [this] { OnFileSaveAs(); });
    OnCommand(ID_EDIT_FIND, [this] { OnEditFind(); });
}

TsHtmlView::~TsHtmlView() = default;

const DHtmlCommandRow* TsHtmlView::GetCommandTable() const
{
    return m_commands;
}

void TsHtmlView::SetHTML(const char* body, const char* css)
{
    mBody = Wide(body);
    mStyle = Wide(css);
    if (mStyle.empty() && body)
        mStyle = Wide(HtmlText::FindStyleInBody(body).c_str());
    if (!HasDocument()) {
        // One blank document is enough however often the content changes meanwhile.
        if (!mPending)
            Navigate2("about:blank", 0);
        mPending = 1;
    } else if (!GetBusy() && GetReadyState() == READYSTATE_COMPLETE) {
        PrivateSetHTML();
    } else {
        mPending = 1;
    }
}

void TsHtmlView::SetHTML(const char* body, unsigned int cssResource)
{
    SetHTML(body, GUIUtilities::ReadResource(cssResource).c_str());
}

void TsHtmlView::SetHTML(unsigned int bodyResource, unsigned int cssResource)
{
    if (cssResource == kNoPopupMenu) {
        LoadFromResource(bodyResource);
        return;
    }
    SetHTML(GUIUtilities::ReadResource(bodyResource).c_str(), GUIUtilities::ReadResource(cssResource).c_str());
}

void TsHtmlView::PrivateSetHTML()
{
    IHTMLDocument2 document(GetPage());
    if (!mStyle.empty())
        IHTMLDocumentUtilities::SetCSSText(&document, mStyle);
    const QString body = QString::fromStdWString(mBody);
    document.Evaluate(QStringLiteral("document.body.innerHTML = %1, true")
                          .arg(QString::fromUtf8(QByteArray("\"") +
                                                 body.toUtf8()
                                                     .replace("\\", "\\\\")
                                                     .replace("\"", "\\\"")
                                                     .replace("\n", "\\n")
                                                     .replace("\r", "\\r")
                                                     .replace("\xe2\x80\xa8", "\\u2028")
                                                     .replace("\xe2\x80\xa9", "\\u2029") +
                                                 "\"")));
    mBody.clear();
    mStyle.clear();
    mPending = 0;
}

void TsHtmlView::OnDocumentComplete(const QString&)
{
    if (mPending)
        PrivateSetHTML();
}

void TsHtmlView::OnBeforeNavigate2(const QString& url, bool& cancel)
{
    RouteAppLink(url, cancel);
}

bool TsHtmlView::PreTranslateMessage(QObject* window, QEvent* event)
{
    if (mAccelerators.Translate(event, this))
        return true;
    if (!IsIEWindow(window) && window != GetBrowser())
        return false;
    const QPoint topLeft = mapToGlobal(QPoint(0, 0));
    switch (event->type()) {
    case QEvent::KeyPress: {
        const auto* key = static_cast<QKeyEvent*>(event);
        if (key->key() == Qt::Key_F10 && key->modifiers() == Qt::ShiftModifier) {
            OnContextMenu(this, topLeft);
            return true;
        }
        if (!(key->modifiers() & Qt::ControlModifier))
            return false;
        switch (key->key()) {
        case Qt::Key_A: OnEditSelectAll(); return true;
        case Qt::Key_C: ExecWB(OLECMDID_COPY, 0); return true;
        case Qt::Key_F: OnEditFind(); return true;
        case Qt::Key_P: ExecWB(OLECMDID_PRINT2, 0); return true;
        case Qt::Key_S: OnFileSaveAs(); return true;
        default: return false;
        }
    }
    case QEvent::ContextMenu:
        // The mouse's menu comes with the button's release; only the keyboard's comes here.
        if (static_cast<QContextMenuEvent*>(event)->reason() != QContextMenuEvent::Mouse)
            OnContextMenu(this, topLeft);
        return true;
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

void TsHtmlView::OnContextMenu(QWidget* window, const QPoint& point)
{
    if (mPopupMenuID != kNoPopupMenu)
        DisplayContextMenu(window, mPopupMenuID, point);
}

void TsHtmlView::DisplayContextMenu(QWidget*, unsigned int id, const QPoint& point)
{
    if (!MenuResource::Exists(id))
        return;
    std::unique_ptr<QMenu> menu(MenuResource::Load(id));
    const auto actions = menu->actions();
    if (QMenu* popup = actions.isEmpty() ? nullptr : actions.first()->menu())
        TsMenu::TrackPopupMenu(popup, TPM_RIGHTBUTTON, point, this);
}

void TsHtmlView::OnEditSelectAll()
{
    ExecWB(OLECMDID_SELECTALL, OLECMDEXECOPT_DONTPROMPTUSER);
}

void TsHtmlView::OnEditFind()
{
    GetBrowser()->setFocus();
    ExecWB(OLECMDID_FIND, 0);
}

void TsHtmlView::OnFileSaveAs()
{
    if (GetLocationURL() != "about:blank") {
        ExecWB(OLECMDID_SAVEAS, OLECMDEXECOPT_DONTPROMPTUSER);
        return;
    }
    QFileDialog dialog(this, QString::fromUtf8(LanguageString::Get(kSaveFileTitle)));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setDefaultSuffix(QStringLiteral("htm"));
    dialog.setNameFilters({QStringLiteral("Web page (*.htm, *.html) (*.htm *.html)"),
                           QStringLiteral("All Files (*.*) (*)")});
    dialog.setOption(QFileDialog::DontUseNativeDialog);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return;
    const QString path = dialog.selectedFiles().first();
    std::string error;
    if (!SaveGeneratedPage(path.toStdString(), QFileInfo(path).completeBaseName().toStdString(), error))
        TsMessageBox(error.c_str(), MB_OK | MB_ICONEXCLAMATION);
}

bool TsHtmlView::SaveGeneratedPage(const std::string& path, const std::string& title, std::string& error)
{
    QFile file(QString::fromStdString(path));
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
        error = file.errorString().left(1024).toStdString();
        return false;
    }
    IHTMLDocument2 document(GetPage());
    const std::string html = HtmlText::Trim(
        document.Evaluate(QStringLiteral("document.body ? document.body.outerHTML : ''")).toString().toStdString());
    std::wstring css;
    IHTMLDocumentUtilities::GetCSSText(&document, css);
    const std::string page = HtmlText::ComposeSavedPage(title, HtmlText::Trim(QString::fromStdWString(css).toStdString()), html);
    if (file.write(page.data(), static_cast<qint64>(page.size())) != static_cast<qint64>(page.size())) {
        error = file.errorString().left(1024).toStdString();
        return false;
    }
    return true;
}
