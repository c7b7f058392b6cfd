#pragma once
// The workbench's tabbed workspace: the frame's MDI client gets a strip of
// tabs. All text windows share one tab, every other window has its own, and a
// "Desktop" tab is there without a window: chosen, it gets its page. The
// "Workspace" menu opens list and tree windows, switches the hiding of the
// other tabs' windows, and keeps and restores the tab order in the profile.

class TessmaMDIFrame;

/// Command ids of the workspace demos.
enum EWorkspaceDemo : unsigned int
{
    eDemoNewListWindow = 34200,
    eDemoNewTreeWindow = 34201,
    eDemoHideOtherTabs = 34202,  // checked while only the active tab's windows show
    eDemoSaveTabOrder = 34203,
    eDemoRestoreTabOrder = 34204,
    eDemoDesktopTab = 34205
};

/// The tab strip's context menu (a menu resource).
inline constexpr unsigned int kWorkspaceTabMenu = 34290;

/// Puts the tabbed workspace around `frame`'s MDI client and adds the
/// "&Workspace" menu with the commands above.
void AddWorkspaceDemos(TessmaMDIFrame& frame);
