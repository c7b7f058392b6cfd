// The tabbed workspace on a real frame, offscreen, driven by mouse events and
// by the event loop's idle moments.

#include "../frame/TestApplication.h"

#include <KORVAutlwin/frame/TessmaMDIFrame.h>
#include <KORVAutlwin/workspace/TsTabbedClientWnd.h>
#include <KORVAutlwin/workspace/TsTabbedWorkspace.h>
#include <KORVAutlwin/workspace/TsTabbedWorkspaceWindowIdentifier.h>

namespace {

using korva::test::Application;

// Windows group by their view's "tab" property; one tab without a window,
// whose window comes when the tab is chosen.
class Policy : public TsTabbedWorkspaceWindowIdentifier
{
public:
    std::vector<std::string> activated;
    std::function<void()> openStart;
    unsigned int menuId = 0;
    unsigned int GetMenuID() override { return menuId; }
    std::string GetWindowIdentifier(const QWidget* window) override
    {
        const auto* child = qobject_cast<const QMdiSubWindow*>(window);
        return child && child->widget() ? child->widget()->property("tab").toString().toStdString() : std::string();
    }
    std::string GetTextForTabItem(const char* id) override { return std::string("Start ") + id; }
    std::string GetNonWindowTabID(int n) override { return n == 1 ? "start" : ""; }
    bool UseDragAndDrop() override { return true; }
    void OnSetActiveTab(std::string id) override
    {
        activated.push_back(id);
        if (id == "start" && openStart)
            openStart();
    }
};

// Until the loop has gone idle a few times.
void Idle()
{
    QEventLoop loop;
    QTimer::singleShot(30, &loop, &QEventLoop::quit);
    loop.exec();
}

class WorkspaceTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        Application();
        frame = std::make_unique<TessmaMDIFrame>();
        frame->resize(800, 500);
        frame->show();
        ASSERT_EQ(client.Attach(frame.get(), &policy, 0), 1);
        ASSERT_EQ(client.Attach(frame.get(), &policy, 0), 0);
        policy.openStart = [this] { start = Open("start", "Start page"); };
    }
    void TearDown() override
    {
        client.Detach();
        frame.reset();
    }
    QMdiSubWindow* Open(const char* tab, const char* title)
    {
        auto* view = new QWidget;
        view->setProperty("tab", tab);
        view->setWindowTitle(title);
        QMdiSubWindow* child = frame->AddMDIChild(view);
        child->resize(300, 200);
        return child;
    }
    TsTabbedWorkspace& Strip() { return *client.GetTabCtrl(); }
    QPoint Centre(int tab) { return Strip().GetItemRect(tab).center(); }
    int Tab(const char* id)
    {
        const std::vector<std::string> order = Strip().GetTabOrder();
        return static_cast<int>(std::find(order.begin(), order.end(), id) - order.begin());
    }
    std::string Order()
    {
        std::string order;
        for (const std::string& id : Strip().GetTabOrder())
            order += id + " ";
        return order;
    }

    Policy policy;
    std::unique_ptr<TessmaMDIFrame> frame;
    QPointer<QMdiSubWindow> start;
    TsTabbedClientWnd client;
};

TEST_F(WorkspaceTest, ChildrenOfOneIdentifierShareATabUntilTheLastCloses)
{
    QMdiSubWindow* text1 = Open("text", "Text 1");
    QMdiSubWindow* text2 = Open("text", "Text 2");
    QPointer<QMdiSubWindow> list = Open("list", "List");
    Idle();
    ASSERT_EQ(Order(), "start list text ");  // the top window's tab first
    EXPECT_EQ(Strip().GetItems()[0].text, "Start start");
    EXPECT_EQ(Strip().GetItems()[Tab("text")].windowCount, 2);
    EXPECT_EQ(client.GetCurrentTab(), Tab("list"));
    EXPECT_TRUE(text1->isHidden() && text2->isHidden());  // not the active tab's

    QTest::mouseClick(&Strip(), Qt::LeftButton, {}, Centre(Tab("text")));
    EXPECT_EQ(client.GetCurrentTab(), Tab("text"));
    EXPECT_TRUE(list->isHidden());
    EXPECT_FALSE(text1->isHidden() || text2->isHidden());
    EXPECT_EQ(policy.activated.back(), "text");
    QTest::mouseDClick(&Strip(), Qt::LeftButton, {}, Centre(Tab("text")));
    EXPECT_FALSE(text1->isMaximized() || text2->isMaximized());  // two windows: nothing

    // The tab without a window gets its window, which joins it.
    QTest::mouseClick(&Strip(), Qt::LeftButton, {}, Centre(0));
    Idle();
    EXPECT_EQ(client.GetCurrentTab(), 0);
    EXPECT_EQ(Strip().GetItems()[0].windowCount, 1);
    EXPECT_TRUE(text1->isHidden() && text2->isHidden() && list->isHidden());
    start->close();
    QTest::mouseClick(&Strip(), Qt::LeftButton, {}, Centre(Tab("text")));

    text2->close();
    Idle();
    ASSERT_EQ(Order(), "start list text ");
    EXPECT_EQ(Strip().GetItems()[Tab("text")].windowCount, 1);
    QTest::mouseDClick(&Strip(), Qt::LeftButton, {}, Centre(Tab("text")));
    EXPECT_TRUE(text1->isMaximized());  // one window: the double click maximises it
    QTest::mouseDClick(&Strip(), Qt::LeftButton, {}, Centre(Tab("text")));
    EXPECT_FALSE(text1->isMaximized());

    text1->close();
    list->close();
    Idle();
    EXPECT_EQ(Order(), "start ");
    EXPECT_EQ(client.GetNumTabs(), 1);
}

TEST_F(WorkspaceTest, SwitchingAwayFromAMaximisedWindowRestoresIt)
{
    QMdiSubWindow* list = Open("list", "List");
    QMdiSubWindow* text = Open("text", "Text");
    Idle();
    text->showMaximized();
    Idle();
    QTest::mouseClick(&Strip(), Qt::LeftButton, {}, Centre(Tab("list")));
    Idle();
    EXPECT_EQ(client.GetCurrentTab(), Tab("list"));
    EXPECT_EQ(frame->MDIGetActive(), list);
    EXPECT_FALSE(list->isMaximized());  // not maximised by inheritance
    EXPECT_TRUE(text->isHidden());
    EXPECT_FALSE(text->isMaximized());

    // The index rules of SetActiveTab and SetTabOrder's unknown names.
    Strip().SetActiveTab(Strip().GetItemCount());
    EXPECT_EQ(client.GetCurrentTab(), Tab("list"));
    Strip().SetTabOrder({"gone", "text", "start"});
    EXPECT_EQ(Order(), "text start list ");
    Strip().SetActiveTab(0);
    Idle();
    EXPECT_EQ(frame->MDIGetActive(), text);
    EXPECT_TRUE(list->isHidden());

    // Closing all closes the hidden windows of the other tabs too.
    QPointer<QMdiSubWindow> gone[] = {list, text};
    frame->CloseAllChildWindows();
    Idle();
    EXPECT_FALSE(gone[0] || gone[1]);
    EXPECT_EQ(Order(), "start ");
}

TEST_F(WorkspaceTest, DraggingATabPastTheLastPlacesItLast)
{
    Open("a", "A");
    Open("b", "B");
    Idle();
    ASSERT_EQ(Order(), "start b a ");
    QTest::mousePress(&Strip(), Qt::LeftButton, {}, Centre(0));
    QTest::mouseMove(&Strip(), Centre(0) + QPoint(8, 0));
    for (int tab : {1, 2})
        QTest::mouseMove(&Strip(), Strip().GetItemRect(tab).topRight() + QPoint(-2, 4));
    QTest::mouseMove(&Strip(), Strip().GetItemRect(2).topRight() + QPoint(60, 4));
    QTest::mouseRelease(&Strip(), Qt::LeftButton, {}, Strip().GetItemRect(2).topRight() + QPoint(60, 4));
    EXPECT_EQ(Order(), "b a start ");
    EXPECT_EQ(Strip().GetCurSel(), 2);
    Idle();
    EXPECT_EQ(Strip().GetItems()[0].text, "B");  // given back by the next update
}

TEST_F(WorkspaceTest, AFileDraggedOverATabBringsItsWindowButIsRefused)
{
    QMdiSubWindow* list = Open("list", "List");
    Open("text", "Text");
    Idle();
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile("/tmp/data.csv")});
    const QPoint over = Centre(Tab("list"));
    QDragEnterEvent enter(over, Qt::CopyAction, &data, Qt::LeftButton, {});
    QApplication::sendEvent(&Strip(), &enter);
    QDragMoveEvent move(over, Qt::CopyAction, &data, Qt::LeftButton, {});
    QApplication::sendEvent(&Strip(), &move);
    EXPECT_FALSE(move.isAccepted());
    EXPECT_EQ(frame->MDIGetActive(), list);
    Idle();
    EXPECT_EQ(client.GetCurrentTab(), Tab("list"));
    EXPECT_FALSE(list->isHidden());
}

TEST_F(WorkspaceTest, DetachShowsEveryWindowAndGivesTheClientBack)
{
    QMdiSubWindow* list = Open("list", "List");
    Open("text", "Text");
    Idle();
    ASSERT_TRUE(list->isHidden());
    const QRect inside = frame->GetMDIClient()->geometry();
    EXPECT_GT(inside.top(), Strip().GetStripExtent());
    // The strip follows the client's own visibility; without it the client takes all.
    frame->GetMDIClient()->hide();
    EXPECT_TRUE(Strip().isHidden());
    EXPECT_EQ(frame->GetMDIClient()->geometry(), frame->centralWidget()->rect());
    frame->GetMDIClient()->show();
    EXPECT_FALSE(Strip().isHidden());
    EXPECT_EQ(frame->GetMDIClient()->geometry(), inside);
    EXPECT_EQ(client.Detach(), 1);
    EXPECT_EQ(client.Detach(), 0);
    EXPECT_FALSE(list->isHidden());
    EXPECT_EQ(frame->centralWidget(), frame->GetMDIClient());
    EXPECT_EQ(client.GetNumTabs(), 0);
    EXPECT_EQ(client.GetCurrentTab(), -1);
    // The frame may go first: the strip goes with it, quietly.
    ASSERT_EQ(client.Attach(frame.get(), &policy, 0), 1);
    frame.reset();
    EXPECT_FALSE(client.IsAttached());
}

TEST_F(WorkspaceTest, RightButtonSelectsAndShowsTheFirstPopupOfThePolicysMenu)
{
    Open("list", "List");
    Open("text", "Text");
    Idle();
    policy.menuId = 30620;  // the edit context menu of the English module
    QString firstItem;
    korva::test::WhenModal([&firstItem](QWidget* popup) {
        firstItem = popup->actions().value(0) ? popup->actions().value(0)->text() : QString();
        popup->close();
    });
    QTest::mouseClick(&Strip(), Qt::RightButton, {}, Centre(Tab("list")));
    EXPECT_EQ(client.GetCurrentTab(), Tab("list"));
    EXPECT_TRUE(firstItem.startsWith("&Undo")) << firstItem.toStdString();
}

TEST(WorkspaceDefaults, EveryWindowHasATabNamedByItsTitle)
{
    Application();
    TessmaMDIFrame frame;
    frame.show();
    TsTabbedWorkspaceWindowIdentifier defaults;
    TsTabbedClientWnd client;
    ASSERT_EQ(client.Attach(&frame, &defaults, 0), 1);
    for (const char* title : {"One", "Two"}) {
        auto* view = new QWidget;
        view->setWindowTitle(title);
        frame.AddMDIChild(view);
    }
    Idle();
    ASSERT_EQ(client.GetNumTabs(), 2);
    const auto& items = client.GetTabCtrl()->GetItems();
    EXPECT_EQ(items[0].text + items[1].text, "TwoOne");
    EXPECT_EQ(items[0].identifier.substr(0, 2), "0x");  // the window's address
    EXPECT_NE(items[0].identifier, items[1].identifier);
}

} // namespace
