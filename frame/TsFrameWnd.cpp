#include <KORVAutlwin/frame/TsFrameWnd.h>

#include <KORVAutlwin/frame/CommandAction.h>
#include <KORVAutlwin/frame/GUIUtilities.h>
#include <KORVAutlwin/frame/WinApp.h>

#include <QMenu>
#include <QMenuBar>

TsFrameWnd::TsFrameWnd(QWidget* parent)
    : QMainWindow(parent), mExceptionsHandled(TsDialog::GetDefaultExceptionsHandled())
{
}

TsFrameWnd::~TsFrameWnd() = default;

bool TsFrameWnd::OnCmdMsg(unsigned int id, ECmdCode code, CCmdUI* cmdUI)
{
    if (CmdTarget* active = GetActiveCommandTarget())
        if (active->OnCmdMsg(id, code, cmdUI))
            return true;
    if (CmdTarget::OnCmdMsg(id, code, cmdUI))
        return true;
    WinApp* app = WinApp::GetApp();
    return app && app->OnCmdMsg(id, code, cmdUI);
}

QMenu* TsFrameWnd::AddCommandMenu(const QString& title)
{
    QMenu* menu = menuBar()->addMenu(title);
    connect(menu, &QMenu::aboutToShow, this, [this, menu] { GUIUtilities::EnableMenu(this, menu); });
    return menu;
}

QAction* TsFrameWnd::AddCommand(QMenu* menu, unsigned int id, const QString& text)
{
    QAction* action = korva::CreateCommandAction(id, text, menu);
    menu->addAction(action);
    return action;
}

CmdTarget* TsFrameWnd::GetActiveCommandTarget() const
{
    return nullptr;
}
