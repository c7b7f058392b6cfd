#include "WorkspaceDemos.h"
#include "DemoMenus.h"

#include <KORVAutlwin/frame/TessmaMDIFrame.h>
#include <KORVAutlwin/frame/WinApp.h>
#include <KORVAutlwin/toolkit/ColorRef.h>
#include <KORVAutlwin/workspace/TsTabbedClientWnd.h>
#include <KORVAutlwin/workspace/TsTabbedWorkspace.h>
#include <KORVAutlwin/workspace/TsTabbedWorkspaceWindowIdentifier.h>

#include <QApplication>
#include <QLabel>
#include <QPointer>
#include <QListWidget>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenu>
#include <QPlainTextEdit>
#include <QStyle>
#include <QTreeWidget>

#include <sstream>

namespace {

constexpr const char* kTextTab = "text";
constexpr const char* kDesktopTab = "desktop";
constexpr const char* kSection = "Workspace";

bool IsTextWindow(const QWidget* window)
{
    const auto* child = qobject_cast<const QMdiSubWindow*>(window);
    return child && qobject_cast<const QPlainTextEdit*>(child->widget());
}

bool IsDesktopWindow(const QWidget* window)
{
    const auto* child = qobject_cast<const QMdiSubWindow*>(window);
    return child && child->widget() && child->widget()->property("tab").toString() == kDesktopTab;
}

// Text windows share a tab; every other window has its own, named by its title
// so that a kept tab order still means something at the next start.
class WorkbenchTabPolicy : public TsTabbedWorkspaceWindowIdentifier
{
public:
    explicit WorkbenchTabPolicy(TessmaMDIFrame& frame) : mFrame(frame) {}

    bool mHideOthers = true;

    std::string GetWindowIdentifier(const QWidget* window) override
    {
        if (IsDesktopWindow(window))
            return kDesktopTab;
        return IsTextWindow(window) ? kTextTab : window->windowTitle().toStdString();
    }
    std::string GetTextForTabItem(const QWidget* window) override
    {
        if (IsDesktopWindow(window))
            return "Desktop";
        if (!IsTextWindow(window))
            return window->windowTitle().toStdString();
        int texts = 0;
        for (const QMdiSubWindow* child : mFrame.GetMDIClient()->subWindowList())
            texts += IsTextWindow(child) ? 1 : 0;
        return "Texts (" + std::to_string(texts) + ")";
    }
    std::string GetTextForTabItem(const char* id) override
    {
        return std::string(id) == kDesktopTab ? "Desktop" : std::string();
    }
    QIcon GetTabIcon(const char*) override { return QApplication::style()->standardIcon(QStyle::SP_DesktopIcon); }
    QIcon GetTabIcon(const QWidget* window) override
    {
        const auto* child = qobject_cast<const QMdiSubWindow*>(window);
        const QWidget* view = child ? child->widget() : nullptr;
        QStyle* style = QApplication::style();
        if (qobject_cast<const QPlainTextEdit*>(view))
            return style->standardIcon(QStyle::SP_FileIcon);
        if (qobject_cast<const QTreeWidget*>(view))
            return style->standardIcon(QStyle::SP_DirIcon);
        if (qobject_cast<const QListWidget*>(view))
            return style->standardIcon(QStyle::SP_FileDialogListView);
        return style->standardIcon(QStyle::SP_ComputerIcon);
    }
    COLORREF GetTabColor(const QWidget* window) override
    {
        return IsTextWindow(window) ? RGB(255, 248, 200) : TsTabbedWorkspaceWindowIdentifier::GetTabColor(window);
    }
    unsigned int GetMenuID() override { return kWorkspaceTabMenu; }
    bool GetHideNonActiveWindows() override { return mHideOthers; }
    bool UseDragAndDrop() override { return true; }
    std::string GetNonWindowTabID(int n) override { return n == 1 ? kDesktopTab : std::string(); }
    // The Desktop tab is there without a window; chosen, it gets its page,
    // which joins it until the user closes the page again.
    void OnSetActiveTab(std::string id) override
    {
        if (id != kDesktopTab || mDesktop)
            return;
        auto* page = new QLabel;
        page->setProperty("tab", kDesktopTab);
        page->setWindowTitle("Desktop");
        page->setMargin(16);
        page->setWordWrap(true);
        page->setAlignment(Qt::AlignTop | Qt::AlignLeft);
        page->setText("<h2>Desktop</h2><p>This tab is there without a window of its own: the workbench "
                      "opens this page when the tab is chosen, and the tab stays when the page is closed.</p>"
                      "<p>Text windows share one tab; every other window has its own. Only the active tab's "
                      "windows are shown (Workspace &gt; Hide the windows of other tabs). Drag a tab to give it "
                      "another place; Workspace &gt; Keep the tab order remembers the order for the next start.</p>");
        mDesktop = mFrame.AddMDIChild(page);
        mDesktop->resize(420, 260);
    }

private:
    TessmaMDIFrame& mFrame;
    QPointer<QMdiSubWindow> mDesktop;
};

// The policy and the client window, living as long as the frame.
class WorkspaceDemo : public QObject
{
public:
    explicit WorkspaceDemo(TessmaMDIFrame& frame) : QObject(&frame), mPolicy(frame) {}
    WorkbenchTabPolicy mPolicy;
    TsTabbedClientWnd mClient;
    int mLists = 0;
    int mTrees = 0;
};

std::string JoinOrder(const std::vector<std::string>& ids)
{
    std::string joined;
    for (const std::string& id : ids)
        joined += id + "\n";
    return joined;
}

std::vector<std::string> SplitOrder(const std::string& joined)
{
    std::vector<std::string> ids;
    std::istringstream lines(joined);
    for (std::string id; std::getline(lines, id);)
        if (!id.empty())
            ids.push_back(id);
    return ids;
}

void NewListWindow(TessmaMDIFrame& frame, WorkspaceDemo& demo)
{
    auto* list = new QListWidget;
    for (const char* item : {"Spectrum 1", "Spectrum 2", "Spectrum 3", "Reference", "Blank"})
        list->addItem(item);
    list->setWindowTitle(QString("List %1").arg(++demo.mLists));
    frame.AddMDIChild(list)->resize(260, 200);
}

void NewTreeWindow(TessmaMDIFrame& frame, WorkspaceDemo& demo)
{
    auto* tree = new QTreeWidget;
    tree->setHeaderLabel("Project");
    for (const char* group : {"Data sets", "Models", "Reports"}) {
        auto* item = new QTreeWidgetItem(tree, {group});
        for (int i = 1; i <= 3; ++i)
            new QTreeWidgetItem(item, {QString("%1 %2").arg(group).arg(i)});
    }
    tree->expandAll();
    tree->setWindowTitle(QString("Tree %1").arg(++demo.mTrees));
    frame.AddMDIChild(tree)->resize(260, 240);
}

} // namespace

void AddWorkspaceDemos(TessmaMDIFrame& frame)
{
    auto* demo = new WorkspaceDemo(frame);
    demo->mClient.Attach(&frame, &demo->mPolicy, 0);
    TsTabbedWorkspace* strip = demo->mClient.GetTabCtrl();

    // The order kept by the last "Keep the tab order" comes back with the first tabs.
    auto restored = std::make_shared<bool>(false);
    strip->GetTabsAddedSignal().connect([demo, restored] {
        const WinApp* app = WinApp::GetApp();
        if (*restored || !app || !demo->mClient.GetTabCtrl())
            return;
        *restored = true;
        demo->mClient.GetTabCtrl()->SetTabOrder(SplitOrder(app->GetProfileString(kSection, "TabOrder", "")));
    });

    QMenu* menu = SubmenuOf(frame, QObject::tr("&Window"), QObject::tr("W&orkspace"));
    frame.AddCommand(menu, eDemoNewListWindow, QObject::tr("New &list window"));
    frame.AddCommand(menu, eDemoNewTreeWindow, QObject::tr("New &tree window"));
    frame.AddCommand(menu, eDemoDesktopTab, QObject::tr("Show the &desktop tab"));
    menu->addSeparator();
    frame.AddCommand(menu, eDemoHideOtherTabs, QObject::tr("&Hide the windows of other tabs"));
    frame.AddCommand(menu, eDemoSaveTabOrder, QObject::tr("&Keep the tab order"));
    frame.AddCommand(menu, eDemoRestoreTabOrder, QObject::tr("&Restore the kept tab order"));

    TessmaMDIFrame* target = &frame;
    frame.OnCommand(eDemoNewListWindow, [target, demo] { NewListWindow(*target, *demo); });
    frame.OnCommand(eDemoNewTreeWindow, [target, demo] { NewTreeWindow(*target, *demo); });
    frame.OnCommand(eDemoDesktopTab, [demo] { demo->mClient.SetActiveTab(kDesktopTab); });
    frame.OnCommand(eDemoHideOtherTabs, [target, demo] {
        demo->mPolicy.mHideOthers = !demo->mPolicy.mHideOthers;
        if (TsTabbedWorkspace* tabs = demo->mClient.GetTabCtrl()) {
            // Shows every window again, or hides the other tabs' at once.
            if (!demo->mPolicy.mHideOthers)
                for (QMdiSubWindow* child : target->GetMDIClient()->subWindowList())
                    child->show();
            tabs->SetActiveTab(tabs->GetCurSel());
        }
    });
    frame.OnUpdateCommand(eDemoHideOtherTabs, [demo](CCmdUI* cmdUI) { cmdUI->SetCheck(demo->mPolicy.mHideOthers); });
    frame.OnCommand(eDemoSaveTabOrder, [target, demo] {
        if (WinApp* app = WinApp::GetApp(); app && demo->mClient.GetTabCtrl()) {
            app->WriteProfileString(kSection, "TabOrder", JoinOrder(demo->mClient.GetTabCtrl()->GetTabOrder()).c_str());
            target->SetMessageText("The tab order is kept in the profile.");
        }
    });
    frame.OnCommand(eDemoRestoreTabOrder, [demo] {
        if (const WinApp* app = WinApp::GetApp(); app && demo->mClient.GetTabCtrl())
            demo->mClient.GetTabCtrl()->SetTabOrder(SplitOrder(app->GetProfileString(kSection, "TabOrder", "")));
    });

    // A second text window and a list, so that the text tab groups two windows.
    NewListWindow(frame, *demo);
    frame.ExecuteCommand(ID_WINDOW_NEW);
}
