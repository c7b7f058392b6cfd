// The tab list's rules over windows that are plain records: grouping, the idle
// rebuild, activation with hidden windows, the drag order, SetTabOrder.

#include <KORVAutlwin/workspace/TabbedWorkspaceLayout.h>
#include <KORVAutlwin/workspace/TabbedWorkspaceTabs.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <map>

namespace {

constexpr unsigned long kFace = 0xC0C0C0;

struct Window
{
    std::string id;
    std::string text;
    unsigned long colour = kFace;
    bool visible = true;
    bool maximized = false;
};

// Children in window order (top first); activation raises and, as the MDI
// client does, passes a maximised state on when asked to.
class Host : public TabbedWorkspaceHost
{
public:
    std::vector<Window*> children;
    Window* active = nullptr;
    std::vector<std::string> nonWindowTabs;
    std::map<std::string, int> widths;
    TabbedWorkspaceTabs* tabs = nullptr;
    int stripChanges = 0;
    int layouts = 0;
    std::vector<std::string> activated;

    static Window* W(WorkspaceWindow window) { return const_cast<Window*>(static_cast<const Window*>(window)); }
    void Open(Window& window)
    {
        children.insert(children.begin(), &window);
        active = &window;
    }
    void Close(Window& window)
    {
        tabs->RemoveTabItem(&window);
        children.erase(std::find(children.begin(), children.end(), &window));
        active = children.empty() ? nullptr : children.front();
    }

    std::string GetWindowIdentifier(WorkspaceWindow w) override { return W(w)->id; }
    int GetTabImage(const std::string&) override { return -1; }
    int GetTabImage(WorkspaceWindow) override { return -1; }
    std::string GetTextForTabItem(const std::string& id) override { return "[" + id + "]"; }
    std::string GetTextForTabItem(WorkspaceWindow w) override { return W(w)->text; }
    bool GetHideNonActiveWindows() override { return true; }
    unsigned long GetTabColor(WorkspaceWindow w) override { return W(w)->colour; }
    std::string GetNonWindowTabID(int n) override
    {
        return n <= static_cast<int>(nonWindowTabs.size()) ? nonWindowTabs[n - 1] : std::string();
    }
    void OnSetActiveTab(const std::string& id) override { activated.push_back(id); }
    bool HasFrame() override { return true; }
    WorkspaceWindow GetActiveChild() override { return active; }
    void GetChildren(std::vector<WorkspaceWindow>& out) override { out.assign(children.begin(), children.end()); }
    bool IsMDIChild(WorkspaceWindow) override { return true; }
    bool IsVisible(WorkspaceWindow w) override { return W(w)->visible; }
    bool IsMaximized(WorkspaceWindow w) override { return W(w)->maximized; }
    void ShowNoActivate(WorkspaceWindow w) override { W(w)->visible = true; }
    void Hide(WorkspaceWindow w) override { W(w)->visible = false; }
    void Activate(WorkspaceWindow w, bool inheritMaximized) override
    {
        Window* window = W(w);
        if (inheritMaximized && active && active != window && active->maximized) {
            active->maximized = false;
            window->maximized = true;
        }
        children.erase(std::find(children.begin(), children.end(), window));
        children.insert(children.begin(), window);
        active = window;
    }
    void Maximize(WorkspaceWindow w) override { W(w)->maximized = true; }
    void Restore(WorkspaceWindow w) override { W(w)->maximized = false; }
    void TabStripChanged() override { ++stripChanges; }
    void RecalcLayout() override { ++layouts; }
    void LockWindowUpdate(bool) override {}
    void SendSelChange() override { tabs->OnSelChange(); }
    // Tabs side by side, each as wide as `widths` says (50 by default).
    QRect GetItemRect(int index) override
    {
        int left = 0;
        for (int i = 0; i < index; ++i)
            left += Width(i);
        return QRect(left, 0, Width(index), 20);
    }
    int HitTest(const QPoint& point) override
    {
        for (int i = 0, left = 0; i < tabs->GetItemCount(); left += Width(i++))
            if (point.x() >= left && point.x() < left + Width(i))
                return i;
        return -1;
    }
    int Width(int index)
    {
        const auto found = widths.find(tabs->GetTabWindowIdentifier(index));
        return found == widths.end() ? 50 : found->second;
    }
};

class TabsTest : public ::testing::Test
{
protected:
    TabsTest() { host.tabs = &tabs; }
    std::string Order() const
    {
        std::string order;
        for (const std::string& id : tabs.GetTabOrder())
            order += id;
        return order;
    }
    Host host;
    TabbedWorkspaceTabs tabs{host, kFace};
};

TEST_F(TabsTest, WindowsOfOneIdentifierShareATabThatGoesWithTheLast)
{
    host.nonWindowTabs = {"S"};
    Window a1{"A", "a1"}, a2{"A", "a2"}, b{"B", "b"};
    host.Open(a1);
    host.Open(b);
    host.Open(a2);
    int added = 0;
    tabs.TabsAdded().connect([&added] { ++added; });
    tabs.UpdateContents();
    ASSERT_EQ(Order(), "SAB");  // the walk goes from the top window down
    EXPECT_EQ(added, 1);
    EXPECT_EQ(tabs.GetItems()[1].windowCount, 2);
    EXPECT_EQ(tabs.GetItems()[0].text, "[S]");
    EXPECT_EQ(tabs.GetItems()[1].text, "a1");  // the last window of the walk names it
    EXPECT_EQ(tabs.GetCurSel(), -1);            // a tab made in this update is not yet followed
    tabs.UpdateContents();
    EXPECT_EQ(tabs.GetCurSel(), 1);
    EXPECT_FALSE(b.visible);

    host.Close(a2);
    EXPECT_EQ(Order(), "SAB");
    tabs.UpdateContents();
    EXPECT_EQ(tabs.GetItems()[1].windowCount, 1);

    host.Close(a1);
    EXPECT_EQ(Order(), "SB");
    EXPECT_EQ(host.activated.back(), "S");  // the tab before the one that went
    host.Close(b);
    tabs.UpdateContents();
    EXPECT_EQ(Order(), "S");
}

TEST_F(TabsTest, IdleRebuildFollowsWindowsThatWentUnannounced)
{
    host.nonWindowTabs = {"S"};
    Window a{"A", "a", 0x0000FF}, b{"B", "b"};
    host.Open(b);
    host.Open(a);
    tabs.UpdateContents();
    EXPECT_EQ(tabs.GetItems()[1].colour, kFace);  // a new tab's colour until the next update
    tabs.UpdateContents();
    EXPECT_EQ(tabs.GetItems()[1].colour, 0x0000FFu);

    const int changes = host.stripChanges, layouts = host.layouts;
    tabs.UpdateContents();
    EXPECT_EQ(host.stripChanges, changes);  // nothing changed: the strip is left alone
    EXPECT_EQ(host.layouts, layouts);

    b.text = "b renamed";
    tabs.UpdateContents();
    EXPECT_EQ(tabs.GetItems()[2].text, "b renamed");
    EXPECT_EQ(host.layouts, layouts + 1);

    host.children.clear();
    host.active = nullptr;
    tabs.UpdateContents();
    EXPECT_EQ(Order(), "S");
}

TEST_F(TabsTest, SwitchingAwayFromAMaximisedWindowRestoresAndHidesIt)
{
    Window a{"A", "a"}, b{"B", "b"};
    host.Open(b);
    host.Open(a);
    tabs.UpdateContents();
    a.maximized = true;
    ASSERT_EQ(Order(), "AB");

    tabs.SetActiveTab(1);
    EXPECT_EQ(tabs.GetCurSel(), 1);
    EXPECT_EQ(host.active, &b);
    EXPECT_FALSE(b.maximized);
    EXPECT_FALSE(a.maximized);
    EXPECT_FALSE(a.visible);
    EXPECT_TRUE(b.visible);

    // Index rules: the tab count and negative indices do nothing.
    for (int index : {2, -1}) {
        tabs.SetActiveTab(index);
        EXPECT_EQ(tabs.GetCurSel(), 1) << index;
    }
    // The active child changed elsewhere: the next update follows it.
    host.Activate(&a, false);
    tabs.UpdateContents();
    EXPECT_EQ(tabs.GetCurSel(), 0);
    EXPECT_TRUE(a.visible);
    EXPECT_FALSE(b.visible);
}

TEST_F(TabsTest, MouseRulesOnATab)
{
    struct Row
    {
        const char* name;
        bool secondWindow;
        bool selectTab;
        bool activeMaximized;
        bool expectMaximized;
    };
    const Row rows[] = {
        {"two windows: nothing", true, true, false, false},
        {"not selected: nothing", false, false, false, false},
        {"one window: maximise", false, true, false, true},
        {"active and maximised: restore", false, true, true, false},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        Host h;
        TabbedWorkspaceTabs t(h, kFace);
        h.tabs = &t;
        Window a1{"A", "a"}, a2{"A", "a"}, b{"B", "b"};
        h.Open(b);
        if (row.secondWindow)
            h.Open(a2);
        h.Open(a1);
        a1.maximized = row.activeMaximized;
        t.UpdateContents();
        t.UpdateContents();
        if (!row.selectTab)
            t.SetCurSel(1);
        t.OnDoubleClickTab(0);
        EXPECT_EQ(a1.maximized, row.expectMaximized);
    }

    // Outside data over a tab brings its window up.
    Window a{"A", "a"}, b{"B", "b"};
    host.Open(a);
    host.Open(b);
    tabs.UpdateContents();
    tabs.OnDragOver(QPoint(60, 5));
    EXPECT_EQ(host.active, &a);
    tabs.UpdateContents();
    EXPECT_EQ(tabs.GetCurSel(), 1);
    // A right click selects its tab as the user's choice does.
    tabs.OnRightClickTab(0);
    EXPECT_EQ(tabs.GetCurSel(), 0);
    EXPECT_EQ(host.active, &b);
    EXPECT_FALSE(a.visible);
    EXPECT_EQ(host.activated, std::vector<std::string>({"B"}));  // following the active child tells nobody
}

TEST_F(TabsTest, DraggingATabMovesItPastItsNeighbours)
{
    struct Row
    {
        const char* name;
        int source;
        std::vector<int> xs;
        const char* order;
    };
    const Row rows[] = {
        {"over each tab and past the last", 0, {75, 125, 200}, "BCA"},
        {"straight past the last", 0, {200}, "ABC"},
        {"backwards to the front", 2, {75, 25}, "CAB"},
        {"within its own tab", 1, {60, 90}, "ABC"},
        {"the wide tab needs the narrow one's far edge", 0, {95, 115}, "BAC"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        Host h;
        TabbedWorkspaceTabs t(h, kFace);
        h.tabs = &t;
        h.nonWindowTabs = {"A", "B", "C"};
        if (row.name[1] == 'h')
            h.widths = {{"A", 80}, {"B", 40}};
        t.UpdateContents();
        t.BeginTabDrag(row.source);
        for (int x : row.xs)
            t.DragTabTo(x);
        t.EndTabDrag();
        std::string order;
        for (const std::string& id : t.GetTabOrder())
            order += id;
        EXPECT_EQ(order, row.order);
    }
}

TEST_F(TabsTest, SetTabOrderSkipsIdentifiersThatAreGone)
{
    struct Row
    {
        std::vector<std::string> ids;
        const char* order;
    };
    const Row rows[] = {
        {{"C", "A"}, "CAB"},
        {{"X", "C", "Y", "B", "A"}, "CBA"},
        {{}, "ABC"},
        {{"Z"}, "ABC"},
    };
    for (const Row& row : rows) {
        Host h;
        TabbedWorkspaceTabs t(h, kFace);
        h.tabs = &t;
        h.nonWindowTabs = {"A", "B", "C"};
        t.UpdateContents();
        t.SetTabOrder(row.ids);
        std::string order;
        for (const std::string& id : t.GetTabOrder())
            order += id;
        EXPECT_EQ(order, row.order) << row.ids.size();
        for (int i = 0; i < t.GetItemCount(); ++i)
            EXPECT_EQ(t.GetItems()[i].index, i);
    }
}

TEST(TabbedWorkspaceLayout, ClientRectangle)
{
    using L = TabbedWorkspaceLayout;
    struct Row
    {
        QRect whole;
        int strip;
        L::EStripSide side;
        QRect client;
    };
    const Row rows[] = {
        {QRect(0, 0, 200, 100), 20, L::eTop, QRect(7, 27, 186, 66)},
        {QRect(0, 0, 200, 100), 20, L::eBottom, QRect(7, 7, 186, 66)},
        {QRect(0, 0, 200, 100), 30, L::eLeft, QRect(37, 7, 156, 86)},
        {QRect(0, 0, 10, 100), 20, L::eTop, QRect(2, 27, 0, 0)},  // too narrow: nothing left
        {QRect(0, 0, 200, 30), 20, L::eTop, QRect(7, 27, 0, 0)},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.side);
        const QRect client = L::CalcClientRect(row.whole, 5, row.strip, 2, row.side);
        EXPECT_EQ(client.isEmpty() ? QRect(client.topLeft(), QSize(0, 0)) : client, row.client);
    }
    EXPECT_EQ(L::SideOfStyle(0x0002), L::eBottom);
    EXPECT_EQ(L::SideOfStyle(0x0182), L::eRight);
}

} // namespace
