#pragma once
/// \class TsFrameWnd
/// The base of the suite's main windows: a QMainWindow on the command route and
/// with its own exception mask. Commands go to the active command target first
/// (the active child of an MDI frame), then to the frame's own handlers, then to
/// the application. Menus are brought up to date through the route just before
/// they open.

#include <KORVAutlwin/frame/CmdTarget.h>
#include <KORVAutlwin/frame/TsDialog.h>

#include <QMainWindow>

class QAction;
class QMenu;

class TsFrameWnd : public QMainWindow, public CmdTarget, public ExceptionGuardedWindow
{
    Q_OBJECT

public:
    explicit TsFrameWnd(QWidget* parent = nullptr);
    ~TsFrameWnd() override;

    /// The frame's exception mask: TsDialog's default at construction.
    int GetExceptionsHandled() const override { return mExceptionsHandled; }
    void SetExceptionsHandled(int mask) { mExceptionsHandled = mask; }

    /// Active target, then the frame itself, then the application.
    bool OnCmdMsg(unsigned int id, ECmdCode code, CCmdUI* cmdUI) override;

    /// A menu of the menu bar whose items are updated through the route before it opens.
    QMenu* AddCommandMenu(const QString& title);
    /// A command item of `menu` that routes command `id` when chosen.
    QAction* AddCommand(QMenu* menu, unsigned int id, const QString& text);

protected:
    /// The target that sees commands before the frame (an MDI frame's active child).
    virtual CmdTarget* GetActiveCommandTarget() const;

private:
    int mExceptionsHandled;
};
