#pragma once
// Glue between Qt's actions and controls and the command route. An action made
// by CreateCommandAction carries its command id and, when triggered, runs the
// command along the route of the main window. The CCmdUI classes below are what
// update handlers see when they enable, check or rename an action or a dialog
// control.

#include <KORVAutlwin/frame/CmdTarget.h>

class QAction;
class QObject;
class QString;
class QWidget;

namespace korva {

/// The property of a QAction that carries its command id.
inline constexpr const char* kCommandIdProperty = "commandId";
/// The property of a dialog control that carries its numeric control id.
inline constexpr const char* kControlIdProperty = "ctrlId";

/// The command id of `action` ("commandId"), 0 when it has none.
unsigned int GetCommandId(const QAction* action);
/// The control id of `widget` ("ctrlId"), 0 when it has none.
unsigned int GetControlId(const QWidget* widget);

/// Where the application's commands start: the main window when it is a command
/// target, else the application object; null without an application object.
CmdTarget* GetMainCommandTarget();
/// Runs command `id` along that route; false when nobody took it.
bool RouteCommand(unsigned int id);

/// A new action showing `text` whose "commandId" is `id`. Triggering it runs
/// the command along the main route as it is at that moment (RouteCommand).
QAction* CreateCommandAction(unsigned int id, const QString& text, QObject* parent);
/// True for an action made by CreateCommandAction: it runs its command itself,
/// so a menu that shows it must not route the command again.
bool RoutesItself(const QAction* action);

/// The CCmdUI of an action (a menu item, a tool button's action). Enable sets
/// the enabled state, SetCheck makes it checkable and (un)checks it (any
/// non-zero value checks), SetRadio does the same and shows a radio mark (the
/// action gets an exclusive group of its own unless it already has one),
/// SetText sets the whole text ("\t" separates a shortcut text in menus).
/// For the entry of a sub-menu only Enable applies: it is updated with the id
/// of the sub-menu's first item, whose check and text are not the entry's.
class ActionCmdUI : public CCmdUI
{
public:
    ActionCmdUI(QAction* action, unsigned int id, bool subMenuEntry = false);

    void Enable(bool on = true) override;
    void SetCheck(int check = 1) override;
    void SetRadio(bool on = true) override;
    void SetText(const char* text) override;

private:
    QAction* mAction;
    bool mSubMenuEntry;
};

/// Routes an update for `action`'s command id through `target`; nothing for an
/// action without a command id.
void UpdateCommandAction(QAction* action, CmdTarget* target, bool disableIfNoHandler);

/// The CCmdUI of a dialog control. Enable enables the widget (a focused control
/// that is disabled passes the focus on). SetCheck checks a checkable button;
/// 2 puts a check box into its third state. SetRadio checks or unchecks. SetText
/// sets the text of a button, label or line edit, or the title of a group box,
/// and only when it differs, so an edit keeps its cursor.
class ControlCmdUI : public CCmdUI
{
public:
    ControlCmdUI(QWidget* control, unsigned int id);

    void Enable(bool on = true) override;
    void SetCheck(int check = 1) override;
    void SetRadio(bool on = true) override;
    void SetText(const char* text) override;

private:
    QWidget* mControl;
};

/// The idle update of a dialog's controls: every widget inside `dialog` (not
/// inside a window of its own) with a non-zero "ctrlId" is updated with that id:
/// first by the dialog's own update handlers when the dialog is a command target
/// other than `target`, else along the route of `target`. `disableIfNoHandler`
/// disables only plain push buttons whose command nobody handles; check boxes,
/// radio buttons, toggle buttons and non-buttons are never disabled for that.
void UpdateDialogControls(QWidget* dialog, CmdTarget* target, bool disableIfNoHandler);

} // namespace korva
