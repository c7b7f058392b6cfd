#pragma once
/// \class TsTabbedWorkspaceDropTarget
/// The tab strip as a drop target: data dragged from elsewhere over a tab brings
/// that tab's window to the top, so that the window under the cursor then takes
/// the drop. The strip itself never takes one.

#include <QObject>
#include <QPoint>

class QMimeData;
class TsTabbedWorkspace;

class TsTabbedWorkspaceDropTarget : public QObject
{
    Q_OBJECT

public:
    /// Registers with `workspace`, which owns it.
    explicit TsTabbedWorkspaceDropTarget(TsTabbedWorkspace& workspace);

    /// Activates the child of the tab at `point` (in the strip's coordinates),
    /// if there is one; always Qt::IgnoreAction.
    Qt::DropAction OnDragOver(const QMimeData* data, Qt::KeyboardModifiers keys, const QPoint& point);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    TsTabbedWorkspace& mWorkspace;
};
