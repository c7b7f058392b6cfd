#pragma once
// Small window helpers of the frame.

#include <string>

class CmdTarget;
class QMenu;

namespace GUIUtilities {

/// The text of resource `id` of type "HTML" in the current resource module;
/// empty when that module has none.
std::string ReadResource(unsigned int id);

/// Brings every item of `menu` up to date through the route of `target`, as a
/// frame does just before a menu opens. Separators and items without a command
/// id are skipped; items whose command nobody handles are disabled, except
/// system commands (ids from 0xF000). A sub-menu's entry is updated once with
/// the id of the sub-menu's first item (only enabling applies to it, and it is
/// never disabled for want of a handler), then the sub-menu itself is updated
/// the same way, to any depth. Nothing happens without a target or a menu.
void EnableMenu(CmdTarget* target, QMenu* menu);

} // namespace GUIUtilities
