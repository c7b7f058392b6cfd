#pragma once
// Context menus and command states, without a menu of one's own.

#include <KORVAutlwin/frame/CmdTarget.h>

#include <QPoint>

class QWidget;

namespace GUI {

/// Shows the first sub-menu of menu resource `menuId` (see MenuResource) at the
/// screen position `point` and runs the chosen command on the command target:
///  1. (-1, -1), what the keyboard's menu key gives, becomes the top-left corner
///     of `wnd`'s client area (a scroll area's viewport, inside any frame) on
///     the screen, plus 5 in both directions.
///  2. The target is `commandTarget` if given, else `wnd`; a `wnd` that is no
///     command target stands for the nearest command target among its parents
///     within its window.
///  3. With `findFrame`, no `commandTarget`, and a `wnd` that is neither a dialog
///     (QDialog) nor a property page (TsPropertyPage, QWizardPage): when `wnd`'s
///     top window is a frame (a QMainWindow on the command route), the frame
///     becomes the target.
///  4. TsMenu::TrackPopupMenu with TPM_RIGHTBUTTON, which brings the items up to
///     date through the target first; then the menu is destroyed.
/// Returns the chosen command id, 0 when the user cancelled. Throws Exception
/// when the menu resource is missing, invalid, or has no sub-menu.
unsigned int DisplayContextMenu(QWidget* wnd, unsigned int menuId, QPoint point, bool findFrame = true,
                                CmdTarget* commandTarget = nullptr);

/// A CCmdUI that only records whether its command is enabled.
class Enabler : public CCmdUI
{
public:
    explicit Enabler(unsigned int commandId = 0);

    /// Whether the last update enabled the command; true at construction.
    bool enabled = true;

    /// Stores `on` in `enabled`.
    void Enable(bool on = true) override;
    /// Do nothing: only the enabled state counts.
    void SetCheck(int check = 1) override;
    void SetRadio(bool on = true) override;
    void SetText(const char* text) override;

    /// Whether command `commandId` is enabled at this moment: an update is routed
    /// through the current main window (the application when the main window is
    /// no command target), first disabling a command without any handler; if it
    /// is still enabled, it is routed once more without that. False for id 0, an
    /// id whose low 16 bits are 0xFFFF, and when there is no application object.
    static bool IsEnable(unsigned int commandId);
};

} // namespace GUI
