#include <KORVAutlwin/frame/GUI.h>

#include <KORVAutlwin/frame/CommandAction.h>
#include <KORVAutlwin/frame/MenuResource.h>
#include <KORVAutlwin/frame/TsMenu.h>

#include <KORVAutl/Exception.h>
#include <KORVAutl/TsString.h>

#include <QAbstractScrollArea>
#include <QAction>
#include <QDialog>
#include <QMainWindow>
#include <QMenu>
#include <QWizardPage>

#include <memory>

namespace {

constexpr unsigned int kNoSubMenu = 30604;   // "The menu resource %u has no sub-menu to show."

QPoint ClientTopLeftOnScreen(QWidget* wnd)
{
    if (auto* area = qobject_cast<QAbstractScrollArea*>(wnd))
        return area->viewport()->mapToGlobal(QPoint(0, 0));
    return wnd->mapToGlobal(wnd->contentsRect().topLeft());
}

// Every window of the framework receives commands; a plain Qt widget does not,
// so its nearest ancestor that does stands in for it.
CmdTarget* CommandTargetOf(QWidget* wnd)
{
    for (QWidget* widget = wnd; widget; widget = widget->isWindow() ? nullptr : widget->parentWidget())
        if (auto* target = dynamic_cast<CmdTarget*>(widget))
            return target;
    return nullptr;
}

bool IsDialogOrPage(QWidget* wnd)
{
    return qobject_cast<QDialog*>(wnd) || qobject_cast<QWizardPage*>(wnd) || wnd->inherits("TsPropertyPage");
}

} // namespace

namespace GUI {

unsigned int DisplayContextMenu(QWidget* wnd, unsigned int menuId, QPoint point, bool findFrame,
                                CmdTarget* commandTarget)
{
    if (point == QPoint(-1, -1) && wnd)
        point = ClientTopLeftOnScreen(wnd) + QPoint(5, 5);

    CmdTarget* target = commandTarget ? commandTarget : CommandTargetOf(wnd);
    if (findFrame && !commandTarget && wnd && !IsDialogOrPage(wnd)) {
        QWidget* top = wnd->window();
        if (qobject_cast<QMainWindow*>(top))
            if (auto* frame = dynamic_cast<CmdTarget*>(top))
                target = frame;
    }

    // Not owned by `wnd`: the chosen command may well destroy that window.
    std::unique_ptr<QMenu> menu(MenuResource::Load(menuId, nullptr));
    QMenu* popup = nullptr;
    const QList<QAction*> entries = menu->actions();
    if (!entries.isEmpty())
        popup = entries.front()->menu();
    if (!popup)
        throw Exception(TsString::Format(kNoSubMenu, menuId));
    return TsMenu::TrackPopupMenu(popup, TPM_RIGHTBUTTON, point, target);
}

Enabler::Enabler(unsigned int commandId) : CCmdUI(commandId) {}

void Enabler::Enable(bool on)
{
    CCmdUI::Enable(on);
    enabled = on;
}

void Enabler::SetCheck(int) {}

void Enabler::SetRadio(bool) {}

void Enabler::SetText(const char*) {}

bool Enabler::IsEnable(unsigned int commandId)
{
    if (commandId == 0 || (commandId & 0xFFFF) == 0xFFFF)
        return false;
    CmdTarget* target = korva::GetMainCommandTarget();
    if (!target)
        return false;
    Enabler enabler(commandId);
    enabler.DoUpdate(target, true);
    if (enabler.enabled)
        enabler.DoUpdate(target, false);
    return enabler.enabled;
}

} // namespace GUI
