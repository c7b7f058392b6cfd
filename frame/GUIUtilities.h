#pragma once
// Small window helpers of the frame.

#include <string>
#include <vector>

class CmdTarget;
class QColor;
class QImage;
class QMdiSubWindow;
class QMenu;

namespace GUIUtilities {

/// The text of resource `id` of type "HTML" in the current resource module;
/// empty when that module has none.
std::string ReadResource(unsigned int id);

/// The picture resource `id` (type "PNG") of the current resource module, or of
/// the English module when the current one has none; a null image when neither has.
QImage LoadPicture(unsigned int id);

/// The colour of a COLORREF (0x00BBGGRR).
QColor FromColorRef(unsigned long colorRef);

/// Brings every item of `menu` up to date through the route of `target`, as a
/// frame does just before a menu opens. Separators and items without a command
/// id are skipped; items whose command nobody handles are disabled, except
/// system commands (ids from 0xF000). A sub-menu's entry is updated once with
/// the id of the sub-menu's first item (only enabling applies to it, and it is
/// never disabled for want of a handler), then the sub-menu itself is updated
/// the same way, to any depth. Nothing happens without a target or a menu.
void EnableMenu(CmdTarget* target, QMenu* menu);

/// Counts the MDI children of the main frame (a TessmaMDIFrame, or a main
/// window whose central widget is a QMdiArea), topmost first, and appends them
/// to `windows` unless that is null. With `visibleOnly`, hidden children are
/// skipped. 0 when the main window is no MDI frame or no child is active.
int GetMDIChildWnds(std::vector<QMdiSubWindow*>* windows, bool visibleOnly);

} // namespace GUIUtilities
