#include <KORVAutlwin/frame/GUIUtilities.h>

#include <KORVAutlwin/frame/CmdTarget.h>
#include <KORVAutlwin/frame/CommandAction.h>
#include <KORVAutlwin/frame/TessmaMDIFrame.h>
#include <KORVAutlwin/frame/WinApp.h>

#include <KORVAutl/LanguageString.h>
#include <KORVAutl/ResourceModule.h>

#include <QAction>
#include <QColor>
#include <QImage>
#include <QMainWindow>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenu>

namespace {

// System commands (close, move, size ...) are the window manager's and stay
// enabled without a handler.
constexpr unsigned int kFirstSystemCommand = 0xF000;

} // namespace

namespace GUIUtilities {

std::string ReadResource(unsigned int id)
{
    std::size_t size = 0;
    const char* data = LanguageString::GetModule()->FindResource(id, "HTML", &size);
    return data ? std::string(data, size) : std::string();
}

QImage LoadPicture(unsigned int id)
{
    std::size_t size = 0;
    const char* data = LanguageString::GetModule()->FindResource(id, "PNG", &size);
    if (!data)
        data = korva::EnglishResourceModule().FindResource(id, "PNG", &size);
    QImage picture;
    if (data)
        picture.loadFromData(reinterpret_cast<const uchar*>(data), static_cast<int>(size), "PNG");
    return picture;
}

QColor FromColorRef(unsigned long colorRef)
{
    return QColor(static_cast<int>(colorRef & 0xFF), static_cast<int>((colorRef >> 8) & 0xFF),
                  static_cast<int>((colorRef >> 16) & 0xFF));
}

void EnableMenu(CmdTarget* target, QMenu* menu)
{
    if (!target || !menu)
        return;
    for (QAction* action : menu->actions()) {
        if (action->isSeparator())
            continue;
        if (QMenu* subMenu = action->menu()) {
            const QList<QAction*> items = subMenu->actions();
            const unsigned int firstId = items.isEmpty() ? 0 : korva::GetCommandId(items.front());
            if (firstId != 0) {
                korva::ActionCmdUI entry(action, firstId, true);
                entry.DoUpdate(target, false);
            }
            EnableMenu(target, subMenu);
            continue;
        }
        const unsigned int id = korva::GetCommandId(action);
        if (id == 0)
            continue;
        korva::ActionCmdUI item(action, id);
        item.DoUpdate(target, id < kFirstSystemCommand);
    }
}

int GetMDIChildWnds(std::vector<QMdiSubWindow*>* windows, bool visibleOnly)
{
    const WinApp* app = WinApp::GetApp();
    QWidget* main = app ? app->GetMainWnd() : nullptr;
    QMdiArea* area = nullptr;
    if (const auto* frame = dynamic_cast<const TessmaMDIFrame*>(main))
        area = frame->GetMDIClient();
    else if (const auto* window = qobject_cast<const QMainWindow*>(main))
        area = qobject_cast<QMdiArea*>(window->centralWidget());
    if (!area || !area->currentSubWindow())
        return 0;
    // Stacking order lists the topmost child last.
    const QList<QMdiSubWindow*> children = area->subWindowList(QMdiArea::StackingOrder);
    int count = 0;
    for (auto child = children.crbegin(); child != children.crend(); ++child) {
        if (visibleOnly && (*child)->isHidden())
            continue;
        ++count;
        if (windows)
            windows->push_back(*child);
    }
    return count;
}

} // namespace GUIUtilities
