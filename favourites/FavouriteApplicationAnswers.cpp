// The window layer's answers to what favourites ask of the running
// application, installed when the library loads.

#include <KORVAutlwin/favourites/FavouriteApplication.h>

#include <KORVAutlwin/frame/DetailsDialog.h>
#include <KORVAutlwin/frame/GUI.h>
#include <KORVAutlwin/frame/GUIUtilities.h>
#include <KORVAutlwin/frame/TessmaMDIFrame.h>
#include <KORVAutlwin/frame/TsApp.h>
#include <KORVAutlwin/frame/WinApp.h>

#include <QMainWindow>
#include <QMdiArea>
#include <QMdiSubWindow>

namespace {

QWidget* MainWindow()
{
    const WinApp* app = WinApp::GetApp();
    return app ? app->GetMainWnd() : nullptr;
}

QMdiArea* MdiClient(QWidget* main)
{
    if (const auto* frame = dynamic_cast<const TessmaMDIFrame*>(main))
        return frame->GetMDIClient();
    if (const auto* window = qobject_cast<const QMainWindow*>(main))
        return qobject_cast<QMdiArea*>(window->centralWidget());
    return nullptr;
}

QWidget* RunCommand(int commandId)
{
    QWidget* main = MainWindow();
    QMdiArea* client = MdiClient(main);
    QWidget* before = client ? client->activeSubWindow() : nullptr;
    if (commandId > 0)
        if (auto* target = dynamic_cast<CmdTarget*>(main))
            target->ExecuteCommand(static_cast<unsigned int>(commandId));
    if (!client)
        return nullptr;
    QWidget* after = client->activeSubWindow();
    return after != before ? after : nullptr;
}

void ArrangeOpenedFrames(const std::vector<QWidget*>& noted, const std::vector<QWidget*>& opened, bool tile)
{
    for (QWidget* frame : opened)
        if (frame->isMinimized())
            frame->showNormal();
    if (tile) {
        if (QMdiArea* client = MdiClient(MainWindow())) {
            // Only the new frames are tiled: the others hide meanwhile.
            for (QWidget* window : noted)
                window->hide();
            client->tileSubWindows();
            for (QWidget* window : noted)
                window->show();
        }
    }
    for (QWidget* frame : opened)
        frame->raise();
}

const bool answersInstalled = [] {
    FavouriteApplication& application = FavouriteApplication::Get();
    application.isCommandEnabled = [](unsigned int commandId) {
        return MainWindow() && GUI::Enabler::IsEnable(commandId);
    };
    application.runCommand = RunCommand;
    application.messageBox = [](const std::string& text, unsigned int type) { TsAfxMessageBox(text.c_str(), type); };
    application.writeAppInfo = TsApp::WriteAppInfo;
    application.getMDIChildWnds = [] {
        std::vector<QMdiSubWindow*> children;
        GUIUtilities::GetMDIChildWnds(&children, false);
        return std::vector<QWidget*>(children.begin(), children.end());
    };
    application.lockWindowUpdate = [](bool lock) {
        if (QWidget* main = MainWindow())
            main->setUpdatesEnabled(!lock);
    };
    application.arrangeOpenedFrames = ArrangeOpenedFrames;
    application.showDetails = [](const std::string& summary, const std::string& details) {
        DetailsDialog(summary.c_str(), details.c_str(), nullptr, MB_ICONERROR);
    };
    return true;
}();

} // namespace
