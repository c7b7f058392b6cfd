#pragma once
/// \class TabbedWorkspaceTabs
/// The tab list of the tabbed workspace and its rules, without a window: one tab
/// per window identifier and one per non-window tab of the policy, rebuilt by
/// comparison with the MDI children at every idle moment; activation, which
/// hides the windows of the other tabs; the new order of a dragged tab; the
/// double click, the right click and the drag of outside data over a tab.
///
/// Identifiers of the children are remembered from the last update, so that a
/// child on its way out can give up its tab without the policy being asked
/// about a window that is half gone.

#include <KORVAutlwin/workspace/TabbedWorkspaceHost.h>

#include <boost/signals2/signal.hpp>

#include <string>
#include <utility>
#include <vector>

class TabbedWorkspaceTabs
{
public:
    /// One tab, in a vector in tab order.
    struct TabItem
    {
        /// Position of the tab; always its position in the vector.
        int index = 0;
        /// The window identifier; never empty.
        std::string identifier;
        std::string text;
        /// MDI children with this identifier, as counted by the last update.
        int windowCount = 0;
        /// References seen in the current update; a tab ending an update at 0 goes.
        int presentCount = 0;
        /// The tab's background, COLORREF.
        unsigned long colour = 0;
        /// Index into the strip's icons, -1 for none.
        int image = -1;
    };

    /// `host` must outlive the tab list. `buttonFace` is the colour of new tabs.
    TabbedWorkspaceTabs(TabbedWorkspaceHost& host, unsigned long buttonFace);

    // --- Following the child windows ------------------------------------------

    /// Brings the tabs in line with the non-window tabs of the policy and the
    /// MDI children; does nothing without a frame.
    void UpdateContents();
    /// Set when a child came or went or the client changed size; the next
    /// update then lays out the frame.
    void SetNeedsLayout() { mNeedsLayout = true; }
    bool GetNeedsLayout() const { return mNeedsLayout; }

    bool AddTabItem(const std::string& id);
    bool AddTabItem(WorkspaceWindow window);
    /// As AddTabItem(id), inserted at `position`; false for a negative position.
    bool AddTabItemAtPos(const std::string& id, int position);
    bool RemoveTabItem(const std::string& id, bool activateNeighbour);
    /// Gives up the tab reference of a child that is going, by the identifier
    /// it had at the last update; false for a child that the update did not see.
    bool RemoveTabItem(WorkspaceWindow window);

    // --- Tabs ----------------------------------------------------------------

    const std::vector<TabItem>& GetItems() const { return mItems; }
    int GetItemCount() const { return static_cast<int>(mItems.size()); }
    /// The index of the tab with `id`, -1 for none.
    int FindTab(const std::string& id) const;
    /// Empty for an index out of range.
    std::string GetTabWindowIdentifier(int index) const;
    std::vector<std::string> GetTabOrder() const;
    /// Moves the named tabs to the front in the given order; unknown
    /// identifiers are skipped, unnamed tabs stay behind the named ones.
    void SetTabOrder(const std::vector<std::string>& ids);
    /// Moves tab `from` to the insertion position `to` (counted before the removal).
    void ReorderTab(int from, int to);

    // --- Selection and activation ----------------------------------------------

    /// The selected tab, -1 for none.
    int GetCurSel() const { return mSelection; }
    /// Selects `index` (-1 for none) without further effect.
    void SetCurSel(int index);
    /// Nothing for an index not below the tab count.
    void SetActiveTab(int index);
    /// Selects the tab `id`, brings up its first window, and hides the windows
    /// of the other tabs when the policy says so.
    void SetActiveTab(const std::string& id);
    /// The user selected a tab: activates it and its first window, and tells
    /// the policy.
    void OnSelChange();
    /// The first MDI child in window order with identifier `id`, null for none.
    WorkspaceWindow GetFirstChild(const std::string& id);

    // --- Mouse ------------------------------------------------------------------

    /// A double click on tab `index` (-1 for none).
    void OnDoubleClickTab(int index);
    /// A right click on tab `index`: selects it if it is not selected.
    void OnRightClickTab(int index);
    /// Outside data dragged over `point`: the child of the tab there comes forward.
    void OnDragOver(const QPoint& point);

    /// A tab drag starts at `tab`.
    void BeginTabDrag(int tab);
    /// The dragging mouse is at `x`; the tab moves once it has gone far enough.
    void DragTabTo(int x);
    void EndTabDrag() { mDragging = false; }
    bool IsDragging() const { return mDragging; }
    int GetDragSource() const { return mDragSource; }
    int GetDragTarget() const { return mDragTarget; }

    /// Fired when an update or an addition made a new tab.
    boost::signals2::signal<void()>& TabsAdded() { return mTabsAdded; }

private:
    struct SeenWindow
    {
        WorkspaceWindow window = nullptr;
        std::string identifier;
        int tab = -1;
    };

    template <typename Source>
    bool AddReference(const std::string& id, const Source& source, int windows, int position);
    bool InsertItem(TabItem item, int position);
    void DeleteItem(int index);
    void HideNonActiveWindows(const std::string& id);
    int FindTabOf(std::size_t seen, WorkspaceWindow window, const std::string& id);

    TabbedWorkspaceHost& mHost;
    unsigned long mButtonFace;
    std::vector<TabItem> mItems;
    int mSelection = -1;
    bool mNeedsLayout = false;
    bool mDragging = false;
    int mDragSource = 0;
    int mDragTarget = 0;
    std::vector<WorkspaceWindow> mChildren;
    std::vector<SeenWindow> mSeen;
    std::string mId;
    std::string mText;
    boost::signals2::signal<void()> mTabsAdded;
};
