#include <KORVAutlwin/frame/TsMenu.h>

#include <KORVAutlwin/frame/CmdTarget.h>
#include <KORVAutlwin/frame/CommandAction.h>
#include <KORVAutlwin/frame/GUIUtilities.h>

#include <QAction>
#include <QPoint>

TsMenu::TsMenu(QWidget* parent) : QMenu(parent) {}

TsMenu::TsMenu(const QString& title, QWidget* parent) : QMenu(title, parent) {}

TsMenu::~TsMenu() = default;

unsigned int TsMenu::TrackPopupMenu(unsigned int flags, int x, int y, CmdTarget* owner)
{
    return TrackPopupMenu(this, flags, QPoint(x, y), owner);
}

unsigned int TsMenu::TrackPopupMenu(QMenu* menu, unsigned int flags, const QPoint& point, CmdTarget* owner)
{
    if (!menu)
        return 0;
    if (!(flags & TPM_NONOTIFY))
        GUIUtilities::EnableMenu(owner, menu);

    QPoint position = point;
    const QSize size = menu->sizeHint();
    if (flags & TPM_RIGHTALIGN)
        position.rx() -= size.width();
    else if (flags & TPM_CENTERALIGN)
        position.rx() -= size.width() / 2;
    if (flags & TPM_BOTTOMALIGN)
        position.ry() -= size.height();
    else if (flags & TPM_VCENTERALIGN)
        position.ry() -= size.height() / 2;

    // exec() keeps the menu on the screen.
    const QAction* chosen = menu->exec(position);
    const unsigned int id = korva::GetCommandId(chosen);
    // An action that routes itself has already run its command when triggered.
    if (id != 0 && owner && !(flags & TPM_RETURNCMD) && !korva::RoutesItself(chosen))
        owner->ExecuteCommand(id);
    return id;
}
