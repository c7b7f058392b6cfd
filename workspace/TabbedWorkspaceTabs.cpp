#include <KORVAutlwin/workspace/TabbedWorkspaceTabs.h>

#include <algorithm>

namespace {

// Right edge as the window system counts it: just outside the rectangle.
int Right(const QRect& rect)
{
    return rect.x() + rect.width();
}

} // namespace

TabbedWorkspaceTabs::TabbedWorkspaceTabs(TabbedWorkspaceHost& host, unsigned long buttonFace)
    : mHost(host), mButtonFace(buttonFace)
{
}

// --- Following the child windows ---------------------------------------------------

void TabbedWorkspaceTabs::UpdateContents()
{
    if (!mHost.HasFrame())
        return;
    bool changed = mNeedsLayout;
    bool added = false;
    bool colourChanged = false;
    for (TabItem& item : mItems)
        item.windowCount = item.presentCount = 0;

    for (int n = 1;; ++n) {
        const std::string id = mHost.GetNonWindowTabID(n);
        if (id.empty())
            break;
        if (const int index = FindTab(id); index >= 0) {
            TabItem& item = mItems[index];
            ++item.presentCount;
            mText = mHost.GetTextForTabItem(id);
            if (mText != item.text) {
                item.text = mText;
                changed = true;
                mHost.TabStripChanged();
            }
        } else {
            AddTabItem(id);
            added = changed = true;
        }
    }

    int activeIndex = -1;
    const WorkspaceWindow active = mHost.GetActiveChild();
    mChildren.clear();
    if (active)
        mHost.GetChildren(mChildren);
    std::size_t seen = 0;
    for (const WorkspaceWindow window : mChildren) {
        mId = mHost.GetWindowIdentifier(window);
        const int index = FindTabOf(seen++, window, mId);
        if (mId.empty())
            continue;
        if (index >= 0) {
            TabItem& item = mItems[index];
            if (item.presentCount == 0) {
                const unsigned long colour = mHost.GetTabColor(window);
                if (colour != item.colour) {
                    item.colour = colour;
                    colourChanged = true;
                }
            }
            ++item.windowCount;
            ++item.presentCount;
            mText = mHost.GetTextForTabItem(window);
            if (mText != item.text) {
                item.text = mText;
                changed = true;
                mHost.TabStripChanged();
            }
            if (window == active)
                activeIndex = index;
        } else {
            AddTabItem(window);
            added = changed = true;
        }
    }
    mSeen.resize(seen);

    for (std::size_t position = 0; position < mItems.size();) {
        if (mItems[position].presentCount != 0) {
            ++position;
            continue;
        }
        // One reference, so that the removal releases the tab.
        mItems[position].presentCount = 1;
        const std::string id = mItems[position].identifier;
        RemoveTabItem(id, true);
        changed = true;
        if (activeIndex >= static_cast<int>(position))
            --activeIndex;
    }

    if (activeIndex >= 0 && mSelection != activeIndex) {
        SetCurSel(activeIndex);
        const std::string id = mItems[activeIndex].identifier;
        SetActiveTab(id);
    } else if (!changed) {
        if (colourChanged)
            mHost.TabStripChanged();
        return;
    }
    mHost.RecalcLayout();
    mNeedsLayout = false;
    if (added)
        mTabsAdded();
    if (colourChanged)
        mHost.TabStripChanged();
}

// The tab of the `seen`-th child of this update: what the last update found for
// the same child and identifier, checked, else a search.
int TabbedWorkspaceTabs::FindTabOf(std::size_t seen, WorkspaceWindow window, const std::string& id)
{
    if (seen >= mSeen.size())
        mSeen.emplace_back();
    SeenWindow& entry = mSeen[seen];
    if (entry.window != window || entry.identifier != id) {
        entry.window = window;
        entry.identifier = id;
        entry.tab = -1;
    }
    if (entry.tab < 0 || entry.tab >= GetItemCount() || mItems[entry.tab].identifier != id)
        entry.tab = FindTab(id);
    return entry.tab;
}

// One more reference to the tab of `id`, or a new tab at `position` that takes
// its image and text from `source` (the identifier or the window).
template <typename Source>
bool TabbedWorkspaceTabs::AddReference(const std::string& id, const Source& source, int windows, int position)
{
    if (const int index = FindTab(id); index >= 0) {
        mItems[index].windowCount += windows;
        ++mItems[index].presentCount;
        return false;
    }
    TabItem item;
    item.identifier = id;
    item.image = mHost.GetTabImage(source);
    item.text = mHost.GetTextForTabItem(source);
    item.windowCount = windows;
    item.presentCount = 1;
    return InsertItem(std::move(item), position);
}

bool TabbedWorkspaceTabs::AddTabItem(const std::string& id)
{
    return AddTabItemAtPos(id, GetItemCount());
}

bool TabbedWorkspaceTabs::AddTabItem(WorkspaceWindow window)
{
    if (!window || !mHost.IsMDIChild(window))
        return false;
    const std::string id = mHost.GetWindowIdentifier(window);
    if (id.empty())
        return false;
    return AddReference(id, window, 1, GetItemCount());
}

bool TabbedWorkspaceTabs::AddTabItemAtPos(const std::string& id, int position)
{
    if (position < 0 || id.empty())
        return false;
    return AddReference(id, id, 0, std::min(position, GetItemCount()));
}

bool TabbedWorkspaceTabs::RemoveTabItem(const std::string& id, bool activateNeighbour)
{
    if (id.empty())
        return false;
    const int index = FindTab(id);
    if (index < 0)
        return false;
    // A dragged tab goes however many references it has: it comes back at once.
    if (--mItems[index].presentCount >= 1 && !mDragging)
        return false;
    DeleteItem(index);
    if (activateNeighbour && !mItems.empty()) {
        const std::string neighbour = mItems[index > 0 ? index - 1 : 0].identifier;
        SetActiveTab(neighbour);
    }
    return true;
}

bool TabbedWorkspaceTabs::RemoveTabItem(WorkspaceWindow window)
{
    const auto entry = std::find_if(mSeen.begin(), mSeen.end(),
                                    [window](const SeenWindow& seen) { return seen.window == window; });
    if (entry == mSeen.end())
        return false;
    const std::string id = entry->identifier;
    mSeen.erase(entry);
    if (const int index = FindTab(id); index >= 0)
        --mItems[index].windowCount;
    return RemoveTabItem(id, true);
}

bool TabbedWorkspaceTabs::InsertItem(TabItem item, int position)
{
    item.colour = mButtonFace;
    mItems.insert(mItems.begin() + position, std::move(item));
    for (int i = position; i < GetItemCount(); ++i)
        mItems[i].index = i;
    // A new tab selects nothing: the update that follows the active child does.
    if (mSelection >= position)
        ++mSelection;
    mHost.TabStripChanged();
    return true;
}

void TabbedWorkspaceTabs::DeleteItem(int index)
{
    mItems.erase(mItems.begin() + index);
    for (int i = index; i < GetItemCount(); ++i)
        mItems[i].index = i;
    if (mSelection == index)
        mSelection = -1;
    else if (mSelection > index)
        --mSelection;
    mHost.TabStripChanged();
}

// --- Tabs ----------------------------------------------------------------------------

int TabbedWorkspaceTabs::FindTab(const std::string& id) const
{
    for (const TabItem& item : mItems)
        if (item.identifier == id)
            return item.index;
    return -1;
}

std::string TabbedWorkspaceTabs::GetTabWindowIdentifier(int index) const
{
    if (index < 0 || index >= GetItemCount())
        return {};
    return mItems[index].identifier;
}

std::vector<std::string> TabbedWorkspaceTabs::GetTabOrder() const
{
    std::vector<std::string> order;
    order.reserve(mItems.size());
    for (const TabItem& item : mItems)
        order.push_back(item.identifier);
    return order;
}

void TabbedWorkspaceTabs::SetTabOrder(const std::vector<std::string>& ids)
{
    int position = 0;
    for (const std::string& id : ids) {
        const int index = FindTab(id);
        if (index < 0)
            continue;
        if (index != position)
            ReorderTab(index, position);
        ++position;
    }
}

void TabbedWorkspaceTabs::ReorderTab(int from, int to)
{
    if (from == to || from == to - 1 || from < 0 || from >= GetItemCount())
        return;
    const int selection = mSelection;
    const std::string id = mItems[from].identifier;
    RemoveTabItem(id, false);
    // The drag fields keep the last drag's values when the order is set by code.
    const int position = (to != 0 && mDragTarget > mDragSource) ? to - 1 : to;
    AddTabItemAtPos(id, position);

    if (selection == from)
        SetCurSel(position);
    else if (from < to && selection > from && selection < to)
        SetCurSel(selection - 1);
    else if (to < from && selection >= to && selection < from)
        SetCurSel(selection + 1);
    else
        SetCurSel(selection);
    mHost.TabStripChanged();
    mHost.SendSelChange();
}

// --- Selection and activation ------------------------------------------------------------

void TabbedWorkspaceTabs::SetCurSel(int index)
{
    if (index >= GetItemCount())
        index = -1;
    if (index == mSelection)
        return;
    mSelection = index;
    mHost.TabStripChanged();
}

void TabbedWorkspaceTabs::SetActiveTab(int index)
{
    if (index >= GetItemCount())
        return;
    SetActiveTab(GetTabWindowIdentifier(index));
}

void TabbedWorkspaceTabs::SetActiveTab(const std::string& idRef)
{
    if (idRef.empty())
        return;
    const std::string id = idRef;
    const int index = FindTab(id);
    if (index >= 0 && index == mSelection) {
        // Already the selected tab: only the windows of the others go.
    } else if (index < 0 && mSelection < 0) {
        UpdateContents();
    } else {
        SetCurSel(index);
        if (const WorkspaceWindow first = GetFirstChild(id)) {
            if (!mHost.IsVisible(first))
                mHost.ShowNoActivate(first);
            // The windows of the other tabs are about to be hidden: their
            // maximised state must not pass to this one.
            mHost.Activate(first, !mHost.GetHideNonActiveWindows());
        }
        mHost.OnSetActiveTab(id);
    }
    HideNonActiveWindows(id);
}

void TabbedWorkspaceTabs::HideNonActiveWindows(const std::string& id)
{
    if (!mHost.GetHideNonActiveWindows())
        return;
    std::vector<WorkspaceWindow> children;
    mHost.GetChildren(children);
    for (const WorkspaceWindow window : children) {
        const std::string windowId = mHost.GetWindowIdentifier(window);
        if (windowId.empty() || FindTab(windowId) < 0)
            continue;
        if (windowId != id) {
            if (mHost.IsVisible(window)) {
                // Restored first, so that the next window is not maximised by inheritance.
                if (mHost.IsMaximized(window))
                    mHost.Restore(window);
                mHost.Hide(window);
            }
        } else if (!mHost.IsVisible(window)) {
            mHost.ShowNoActivate(window);
        }
    }
}

void TabbedWorkspaceTabs::OnSelChange()
{
    if (mSelection >= 0) {
        const std::string id = mItems[mSelection].identifier;
        {
            // Unlocked however the policy returns.
            struct Lock
            {
                TabbedWorkspaceHost& host;
                explicit Lock(TabbedWorkspaceHost& h) : host(h) { host.LockWindowUpdate(true); }
                ~Lock() { host.LockWindowUpdate(false); }
            } lock(mHost);
            SetActiveTab(id);
            mHost.OnSetActiveTab(id);
        }
        if (const WorkspaceWindow first = GetFirstChild(id))
            mHost.Activate(first, !mHost.GetHideNonActiveWindows());
    }
    mHost.RecalcLayout();
}

WorkspaceWindow TabbedWorkspaceTabs::GetFirstChild(const std::string& id)
{
    std::vector<WorkspaceWindow> children;
    mHost.GetChildren(children);
    for (const WorkspaceWindow window : children)
        if (mHost.GetWindowIdentifier(window) == id)
            return window;
    return nullptr;
}

// --- Mouse -----------------------------------------------------------------------------------

void TabbedWorkspaceTabs::OnDoubleClickTab(int index)
{
    if (index < 0 || index != mSelection || mItems[index].windowCount != 1)
        return;
    const WorkspaceWindow window = GetFirstChild(mItems[index].identifier);
    if (!window)
        return;
    if (window == mHost.GetActiveChild() && mHost.IsMaximized(window))
        mHost.Restore(window);
    else
        mHost.Maximize(window);
}

void TabbedWorkspaceTabs::OnRightClickTab(int index)
{
    if (index < 0 || index >= GetItemCount() || index == mSelection)
        return;
    SetCurSel(index);
    mHost.SendSelChange();
}

void TabbedWorkspaceTabs::OnDragOver(const QPoint& point)
{
    const int index = mHost.HitTest(point);
    if (index < 0 || index >= GetItemCount())
        return;
    if (const WorkspaceWindow window = GetFirstChild(mItems[index].identifier))
        mHost.Activate(window, true);
}

void TabbedWorkspaceTabs::BeginTabDrag(int tab)
{
    mDragging = true;
    mDragSource = mDragTarget = tab;
}

void TabbedWorkspaceTabs::DragTabTo(int x)
{
    if (!mDragging || mItems.empty() || mDragSource < 0 || mDragSource >= GetItemCount())
        return;
    const int y = mHost.GetItemRect(0).center().y();
    const int hit = mHost.HitTest(QPoint(x, y));
    if (hit < 0) {
        if (mDragTarget == GetItemCount())
            --mDragTarget;
    } else {
        mDragTarget = hit;
    }
    if (mDragTarget < 0 || mDragTarget >= GetItemCount())
        return;
    const QRect target = mHost.GetItemRect(mDragTarget);
    const QRect source = mHost.GetItemRect(mDragSource);
    const bool wider = source.width() > target.width();
    // Thresholds that keep a wide tab from swapping back and forth over a narrow one.
    const bool held = wider && target.width() >= Right(source);
    if (mDragTarget > mDragSource) {
        if (!held && x >= (wider ? source.left() : source.left() - Right(source) + Right(target))) {
            ++mDragTarget;
            ReorderTab(mDragSource, mDragTarget);
            ++mDragSource;
        }
    } else if (mDragTarget < mDragSource) {
        if (!held && x <= (wider ? source.left() : target.left() - source.left() + Right(source))) {
            ReorderTab(mDragSource, mDragTarget);
            --mDragSource;
        }
    }
}
