#pragma once
/// \class TabbedWorkspaceHost
/// What the tab list of the tabbed workspace sees of the world: the MDI children
/// behind an opaque handle, the application's policy for them, and the few
/// things it asks of the tab strip and the frame. The window code implements it
/// on Qt; the rules in TabbedWorkspaceTabs never touch a widget.

#include <QPoint>
#include <QRect>

#include <string>
#include <vector>

/// An MDI child window, as the tab list knows it; null for none.
using WorkspaceWindow = const void*;

class TabbedWorkspaceHost
{
public:
    virtual ~TabbedWorkspaceHost() = default;

    // --- The policy (TsTabbedWorkspaceWindowIdentifier) --------------------

    virtual std::string GetWindowIdentifier(WorkspaceWindow window) = 0;
    /// The index of the tab icon for `id` in the strip's icon list, -1 for none;
    /// a new icon joins the list.
    virtual int GetTabImage(const std::string& id) = 0;
    virtual int GetTabImage(WorkspaceWindow window) = 0;
    virtual std::string GetTextForTabItem(const std::string& id) = 0;
    virtual std::string GetTextForTabItem(WorkspaceWindow window) = 0;
    virtual bool GetHideNonActiveWindows() = 0;
    virtual unsigned long GetTabColor(WorkspaceWindow window) = 0;
    virtual std::string GetNonWindowTabID(int n) = 0;
    virtual void OnSetActiveTab(const std::string& id) = 0;

    // --- The MDI client ------------------------------------------------------

    /// Whether the workspace has a frame; without one the tab list is not updated.
    virtual bool HasFrame() = 0;
    /// The active MDI child, null when there is none.
    virtual WorkspaceWindow GetActiveChild() = 0;
    /// Every MDI child in window order, the top one first, into `children`.
    virtual void GetChildren(std::vector<WorkspaceWindow>& children) = 0;
    /// Whether `window` is an MDI child.
    virtual bool IsMDIChild(WorkspaceWindow window) = 0;
    virtual bool IsVisible(WorkspaceWindow window) = 0;
    virtual bool IsMaximized(WorkspaceWindow window) = 0;
    /// Shows `window` without activating it.
    virtual void ShowNoActivate(WorkspaceWindow window) = 0;
    virtual void Hide(WorkspaceWindow window) = 0;
    /// Makes `window` the active child. With `inheritMaximized` false, a
    /// maximised active child does not hand its maximised state on.
    virtual void Activate(WorkspaceWindow window, bool inheritMaximized) = 0;
    virtual void Maximize(WorkspaceWindow window) = 0;
    /// Brings `window` back from maximised or minimised to its place.
    virtual void Restore(WorkspaceWindow window) = 0;

    // --- The tab strip and the frame -------------------------------------------

    /// Tabs, texts, colours or the selection changed: the strip repaints.
    virtual void TabStripChanged() = 0;
    /// The frame lays out the strip and the client again.
    virtual void RecalcLayout() = 0;
    /// Updates to the frame's windows are held back while `lock` is true.
    virtual void LockWindowUpdate(bool lock) = 0;
    /// Tells the strip's owner that the selection changed, as a user's
    /// selection does (it runs TabbedWorkspaceTabs::OnSelChange).
    virtual void SendSelChange() = 0;
    /// The rectangle of tab `index` in strip coordinates.
    virtual QRect GetItemRect(int index) = 0;
    /// The tab under `point`, -1 for none.
    virtual int HitTest(const QPoint& point) = 0;
};
