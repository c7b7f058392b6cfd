#pragma once
/// \class TsTabbedWorkspace
/// The strip of tabs around the MDI client: one tab per window identifier of the
/// policy, and one per non-window tab. It lies under the client and frames it;
/// the client sits in its panel. The tab list is rebuilt by comparison with the
/// MDI children whenever the event loop is about to wait (the idle moment), and
/// touches no widget when nothing changed.
///
/// The user selects a tab with the left button; a double click on the selected
/// tab of a single window maximises or restores that window; the right button
/// selects and shows the policy's context menu; with the policy's consent, tabs
/// are dragged into a new order. Outside data dragged over a tab brings that
/// tab's window forward, and the strip itself refuses the drop.

#include <KORVAutlwin/workspace/TabbedWorkspaceHost.h>
#include <KORVAutlwin/workspace/TabbedWorkspaceTabs.h>

#include <QIcon>
#include <QWidget>

#include <memory>
#include <string>
#include <vector>

class QMdiArea;
class QToolButton;
class TsTabbedClientWnd;
class TsTabbedWorkspaceDropTarget;
class TsTabbedWorkspaceWindowIdentifier;

class TsTabbedWorkspace : public QWidget, private TabbedWorkspaceHost
{
    Q_OBJECT

public:
    using TabItem = TabbedWorkspaceTabs::TabItem;

    /// Pixels between the strip's edge and its tabs and panel, by default.
    static constexpr unsigned long kDefaultOffset = 5;
    /// Pixels of the panel's border around the client.
    static constexpr int kPanelBorder = 2;

    /// A strip for the client `owner`, asking `identifier` (not owned; null
    /// for the defaults), with the tab control styles `style`.
    TsTabbedWorkspace(TsTabbedClientWnd* owner, TsTabbedWorkspaceWindowIdentifier* identifier, unsigned long style,
                      QWidget* parent);
    ~TsTabbedWorkspace() override;

    /// Brings the tabs in line with the MDI children now; the idle moment does it anyway.
    void UpdateContents();

    /// The identifiers in tab order; the application keeps them where it likes.
    std::vector<std::string> GetTabOrder() const;
    /// Puts the named tabs first, in this order; unknown identifiers are skipped.
    void SetTabOrder(const std::vector<std::string>& ids);
    /// Activates tab `index`; nothing for an index not below the tab count.
    void SetActiveTab(int index);
    /// Empty for an index out of range.
    std::string GetTabWindowIdentifier(int index) const;
    int GetItemCount() const;
    /// The selected tab, -1 for none.
    int GetCurSel() const;
    const std::vector<TabItem>& GetItems() const;
    /// The rectangle of tab `index`, in this widget's coordinates.
    QRect GetItemRect(int index) override;
    /// The tab under `point`, -1 for none.
    int HitTest(const QPoint& point) override;

    void SetOffset(unsigned long offset, bool recalcLayout);
    unsigned long GetOffset() const { return mOffset; }
    unsigned long GetStyle() const { return mStyle; }
    void SetStyle(unsigned long style);
    /// How deep the row of tabs is, across the strip.
    int GetStripExtent() const;

    /// Fired by an update that added a tab.
    boost::signals2::signal<void()>& GetTabsAddedSignal() { return mTabs.TabsAdded(); }

    /// Shows again every hidden MDI child that has an identifier, so that no
    /// window stays hidden without tabs, and empties the tabs.
    void OnDestroy();

signals:
    /// The user (or a tab drag) selected another tab.
    void SelChange();

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;

private:
    friend class TsTabbedClientWnd;
    friend class TsTabbedWorkspaceDropTarget;

    /// Selects tab `id` and shows its windows (the others' go, if the policy says so).
    void SetActiveTab(const std::string& id);
    void OnSelChange();
    void OnRButtonDown(const QPoint& point, const QPoint& globalPoint);
    void DrawItem(QPainter& painter, int index);
    void LayoutTabs();
    int TabWidth(const TabItem& item) const;
    void ScrollTabs(int delta);
    QMdiArea* Client() const;
    TabbedWorkspaceTabs& Tabs() { return mTabs; }

    // TabbedWorkspaceHost
    std::string GetWindowIdentifier(WorkspaceWindow window) override;
    int GetTabImage(const std::string& id) override;
    int GetTabImage(WorkspaceWindow window) override;
    std::string GetTextForTabItem(const std::string& id) override;
    std::string GetTextForTabItem(WorkspaceWindow window) override;
    bool GetHideNonActiveWindows() override;
    unsigned long GetTabColor(WorkspaceWindow window) override;
    std::string GetNonWindowTabID(int n) override;
    void OnSetActiveTab(const std::string& id) override;
    bool HasFrame() override;
    WorkspaceWindow GetActiveChild() override;
    void GetChildren(std::vector<WorkspaceWindow>& children) override;
    bool IsMDIChild(WorkspaceWindow window) override;
    bool IsVisible(WorkspaceWindow window) override;
    bool IsMaximized(WorkspaceWindow window) override;
    void ShowNoActivate(WorkspaceWindow window) override;
    void Hide(WorkspaceWindow window) override;
    void Activate(WorkspaceWindow window, bool inheritMaximized) override;
    void Maximize(WorkspaceWindow window) override;
    void Restore(WorkspaceWindow window) override;
    void TabStripChanged() override;
    void RecalcLayout() override;
    void LockWindowUpdate(bool lock) override;
    void SendSelChange() override;
    int AddIcon(const QIcon& icon);

    TsTabbedClientWnd* mOwner;
    TsTabbedWorkspaceWindowIdentifier* mIdentifier;
    TabbedWorkspaceTabs mTabs;
    std::vector<QIcon> mIcons;
    std::vector<qint64> mIconKeys;
    TsTabbedWorkspaceDropTarget* mDropTarget;
    unsigned long mOffset = kDefaultOffset;
    unsigned long mStyle;
    std::vector<QRect> mRects;
    bool mRectsValid = false;
    int mFirstVisible = 0;
    // The scroller of a strip whose tabs do not fit; made when first needed.
    QWidget* mSpin = nullptr;
    QToolButton* mSpinBack = nullptr;
    QToolButton* mSpinOn = nullptr;
    QPoint mPressPoint;
    int mPressTab = -1;
    bool mPressed = false;
};
