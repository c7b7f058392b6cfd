#include <KORVAutlwin/workspace/TsTabbedWorkspaceDropTarget.h>

#include <KORVAutlwin/workspace/TsTabbedWorkspace.h>

#include <QDragMoveEvent>

TsTabbedWorkspaceDropTarget::TsTabbedWorkspaceDropTarget(TsTabbedWorkspace& workspace)
    : QObject(&workspace), mWorkspace(workspace)
{
    workspace.setAcceptDrops(true);
    workspace.installEventFilter(this);
}

Qt::DropAction TsTabbedWorkspaceDropTarget::OnDragOver(const QMimeData*, Qt::KeyboardModifiers, const QPoint& point)
{
    mWorkspace.Tabs().OnDragOver(point);
    return Qt::IgnoreAction;
}

bool TsTabbedWorkspaceDropTarget::eventFilter(QObject* watched, QEvent* event)
{
    if (watched != &mWorkspace)
        return false;
    switch (event->type()) {
    case QEvent::DragEnter:
        // Entered, so that the moves arrive; each move is refused.
        event->accept();
        return true;
    case QEvent::DragMove: {
        auto* move = static_cast<QDragMoveEvent*>(event);
        move->setDropAction(OnDragOver(move->mimeData(), move->modifiers(), move->position().toPoint()));
        move->ignore();
        return true;
    }
    case QEvent::Drop:
        event->ignore();
        return true;
    default:
        return false;
    }
}
