#pragma once
/// \class TsMenu
/// The popup menu of the widget kit.

#include <QMenu>

class CmdTarget;
class QPoint;

/// Flags of TrackPopupMenu, with the framework's numbers.
enum : unsigned int
{
    TPM_LEFTBUTTON = 0x0,
    TPM_RIGHTBUTTON = 0x2,
    TPM_LEFTALIGN = 0x0,
    TPM_CENTERALIGN = 0x4,
    TPM_RIGHTALIGN = 0x8,
    TPM_TOPALIGN = 0x0,
    TPM_VCENTERALIGN = 0x10,
    TPM_BOTTOMALIGN = 0x20,
    TPM_NONOTIFY = 0x80,
    TPM_RETURNCMD = 0x100,
};

class TsMenu : public QMenu
{
    Q_OBJECT

public:
    explicit TsMenu(QWidget* parent = nullptr);
    explicit TsMenu(const QString& title, QWidget* parent = nullptr);
    ~TsMenu() override;

    /// Shows this menu at the screen position (x, y) until the user chooses or
    /// cancels; see the static form.
    unsigned int TrackPopupMenu(unsigned int flags, int x, int y, CmdTarget* owner);

    /// Shows `menu` at the screen position `point` and waits until the user
    /// chooses an item or cancels. The menu is brought up to date through the
    /// route of `owner` first (GUIUtilities::EnableMenu), unless TPM_NONOTIFY is
    /// given. The alignment flags say which corner or edge of the menu lies at
    /// `point` (left and top by default); a menu that would leave the screen is
    /// moved back onto it. Either mouse button chooses, so TPM_RIGHTBUTTON needs
    /// nothing more. Returns the command id of the chosen item, 0 when the user
    /// cancelled or the item has none; without TPM_RETURNCMD the command is also
    /// run along the route of `owner` (not for an action of CreateCommandAction,
    /// which runs its command along the main route itself).
    static unsigned int TrackPopupMenu(QMenu* menu, unsigned int flags, const QPoint& point, CmdTarget* owner);
};
