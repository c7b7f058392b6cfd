// The MDI frame: its position across sessions and screen sets, the stored state
// of tool bars and docks, the command route through the active child, and the
// children and dialogs that it closes, counts and disables.

#include "MdiFrameTestSupport.h"

#include <KORVAutlwin/frame/CommandAction.h>
#include <KORVAutlwin/frame/GUIUtilities.h>
#include <KORVAutlwin/frame/MessageBoxTypes.h>
#include <KORVAutlwin/frame/TsStatusBar.h>

#include <QCloseEvent>
#include <QDialog>
#include <QDockWidget>
#include <QLabel>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenu>
#include <QMenuBar>
#include <QToolBar>

#include <set>

using korva::test::BoxAnswerer;
using korva::test::MdiFrameFixture;

namespace {

const QRect kLeftScreen(0, 0, 1920, 1040);
const QRect kRightScreen(1920, 0, 1280, 984);

class MdiFramePositionTest : public MdiFrameFixture
{
protected:
    void UseScreens(std::vector<QRect> screens)
    {
        TessmaMDIFrame::msWorkAreaSource = [screens] { return screens; };
    }
    int Saved(const char* key) { return mApp->GetProfileInt("WindowPos", key, -1); }
};

} // namespace

TEST_F(MdiFramePositionTest, PositionSavedOnAScreenThatIsGoneComesBackInsideTheNearestOne)
{
    UseScreens({kLeftScreen, kRightScreen});
    {
        TessmaMDIFrame frame;
        frame.show();
        frame.setGeometry(2400, 300, 600, 400);
        frame.close();
    }
    EXPECT_EQ((std::vector<int>{Saved("Status"), Saved("Left"), Saved("Top"), Saved("Right"), Saved("Bottom")}),
              (std::vector<int>{1, 2400, 300, 3000, 700}));

    // The right screen is unplugged: the window keeps its size and stands fully on the left one.
    UseScreens({kLeftScreen});
    TessmaMDIFrame frame;
    frame.resize(300, 200);
    frame.show();
    EXPECT_EQ(frame.geometry().size(), QSize(600, 400));
    EXPECT_EQ(frame.geometry().topLeft(), QPoint(kLeftScreen.right() + 1 - 600, 300));
}

TEST_F(MdiFramePositionTest, WithoutASectionOrWithOneValueMissingTheDefaultPlacementStays)
{
    UseScreens({kLeftScreen});
    {
        TessmaMDIFrame frame;
        frame.resize(640, 480);
        frame.show();
        EXPECT_FALSE(frame.LoadWindowPosition());
        EXPECT_EQ(frame.size(), QSize(640, 480));
    }

    mApp->WriteProfileInt("WindowPos", "Status", 1);
    mApp->WriteProfileInt("WindowPos", "Top", 100);
    mApp->WriteProfileInt("WindowPos", "Left", 50);
    mApp->WriteProfileInt("WindowPos", "Bottom", 500);
    {
        TessmaMDIFrame frame;
        frame.resize(640, 480);
        frame.show();
        EXPECT_EQ(frame.size(), QSize(640, 480)) << "a missing Right must void the other values";
    }

    mApp->WriteProfileInt("WindowPos", "Right", 850);
    TessmaMDIFrame frame;
    frame.resize(640, 480);
    frame.show();
    EXPECT_EQ(frame.geometry(), QRect(50, 100, 800, 400));
}

TEST_F(MdiFramePositionTest, MaximizedStatusIsKeptAndTheNormalGeometryIsWhatIsSaved)
{
    UseScreens({kLeftScreen});
    {
        TessmaMDIFrame frame;
        frame.show();
        frame.setGeometry(100, 120, 700, 500);
        frame.showMaximized();
        frame.close();
    }
    EXPECT_EQ(Saved("Status"), 3);
    EXPECT_EQ(Saved("Right"), 800);

    TessmaMDIFrame frame;
    frame.show();
    EXPECT_TRUE(frame.isMaximized());
    EXPECT_EQ(frame.normalGeometry(), QRect(100, 120, 700, 500));
}

TEST(MdiFrameWorkAreaTest, TheScreenWithTheLargestShareOrTheNearestOneTakesTheWindow)
{
    const std::vector<QRect> screens = {kLeftScreen, kRightScreen};
    // Mostly on the right screen, hanging over its bottom edge.
    EXPECT_EQ(TessmaMDIFrame::FitIntoNearestWorkArea(QRect(1800, 800, 600, 400), screens),
              QRect(1920, 584, 600, 400));
    // Far to the right of everything.
    EXPECT_EQ(TessmaMDIFrame::FitIntoNearestWorkArea(QRect(9000, 100, 400, 300), screens),
              QRect(3200 - 400, 100, 400, 300));
    // Larger than the work area: the size stays, the top-left corner is inside.
    EXPECT_EQ(TessmaMDIFrame::FitIntoNearestWorkArea(QRect(2000, 50, 1500, 1200), screens),
              QRect(1920, 0, 1500, 1200));
    EXPECT_EQ(TessmaMDIFrame::FitIntoNearestWorkArea(QRect(5, 5, 10, 10), {}), QRect(5, 5, 10, 10));
}

// --- Tool bars and docks -----------------------------------------------------------

namespace {

void AddBars(TessmaMDIFrame& frame, const std::vector<QString>& toolBars, const std::vector<QString>& docks)
{
    for (const QString& name : toolBars)
        frame.addToolBar(name)->setObjectName(name);
    for (const QString& name : docks) {
        auto* dock = new QDockWidget(name, &frame);
        dock->setObjectName(name);
        dock->setWidget(new QLabel(name));
        frame.addDockWidget(Qt::LeftDockWidgetArea, dock);
    }
}

} // namespace

TEST_F(MdiFrameFixture, BarStateNamingABarThatIsGoneDoesNotVerify)
{
    {
        TessmaMDIFrame frame;
        EXPECT_EQ(frame.VerifyBarState("Bars"), 1) << "no stored state names no bar";
        AddBars(frame, {"Standard", "Analysis"}, {"Navigator"});
        frame.show();
        frame.findChild<QToolBar*>("Analysis")->hide();
        ASSERT_TRUE(frame.SaveBarState("Bars"));
    }
    EXPECT_EQ(mApp->GetProfileInt("Bars", "BarCount", 0), 3);

    {
        // A later version without the tool bar "Analysis".
        TessmaMDIFrame frame;
        AddBars(frame, {"Standard"}, {"Navigator"});
        EXPECT_EQ(frame.VerifyBarState("Bars"), 0);
    }
    {
        // Without the dock.
        TessmaMDIFrame frame;
        AddBars(frame, {"Standard", "Analysis"}, {});
        EXPECT_EQ(frame.VerifyBarState("Bars"), 0);
    }

    // All bars there, and one more: the state applies.
    TessmaMDIFrame frame;
    AddBars(frame, {"Standard", "Analysis", "Charts"}, {"Navigator"});
    frame.show();
    EXPECT_EQ(frame.VerifyBarState("Bars"), 1);
    ASSERT_TRUE(frame.LoadBarState("Bars"));
    EXPECT_TRUE(frame.findChild<QToolBar*>("Analysis")->isHidden());
    EXPECT_FALSE(frame.findChild<QToolBar*>("Standard")->isHidden());

    // Saving again forgets the names of the first state.
    frame.findChild<QToolBar*>("Analysis")->setObjectName(QString());
    ASSERT_TRUE(frame.SaveBarState("Bars"));
    TessmaMDIFrame other;
    AddBars(other, {"Standard", "Charts"}, {"Navigator"});
    EXPECT_EQ(other.VerifyBarState("Bars"), 1);
    EXPECT_FALSE(other.LoadBarState("Nothing stored"));
}

// --- Children, the command route and dialogs ----------------------------------------

namespace {

// A child view that is a command target of its own.
class CommandView : public QLabel, public CmdTarget
{
public:
    explicit CommandView(int& runs) : QLabel(QStringLiteral("view"))
    {
        OnCommand(4711, [&runs] { ++runs; });
    }
};

// A child view that refuses to close.
class StubbornView : public QLabel
{
public:
    StubbornView() : QLabel(QStringLiteral("stubborn")) {}

protected:
    void closeEvent(QCloseEvent* event) override { event->ignore(); }
};

} // namespace

TEST_F(MdiFrameFixture, CommandsReachTheActiveChildFirst)
{
    TessmaMDIFrame frame;
    int viewRuns = 0;
    int frameRuns = 0;
    frame.OnCommand(4711, [&frameRuns] { ++frameRuns; });
    QMdiSubWindow* view = frame.AddMDIChild(new CommandView(viewRuns));
    QMdiSubWindow* plain = frame.AddMDIChild(new QLabel(QStringLiteral("plain")));
    frame.show();
    mApp->SetMainWnd(&frame);

    frame.MDIActivate(view);
    EXPECT_TRUE(korva::RouteCommand(4711));
    frame.MDIActivate(plain);
    EXPECT_TRUE(korva::RouteCommand(4711));
    EXPECT_EQ(viewRuns, 1);
    EXPECT_EQ(frameRuns, 1);

    // The Window menu's commands are the frame's, enabled while there is a child.
    QMenu* window = frame.AddCommandMenu(QStringLiteral("Window"));
    QAction* cascade = frame.AddCommand(window, ID_WINDOW_CASCADE, QStringLiteral("Cascade"));
    GUIUtilities::EnableMenu(&frame, window);
    EXPECT_TRUE(cascade->isEnabled());
    frame.CloseAllChildWindows();
    GUIUtilities::EnableMenu(&frame, window);
    EXPECT_FALSE(cascade->isEnabled());
    mApp->SetMainWnd(nullptr);
}

TEST_F(MdiFrameFixture, CloseAllChildWindowsStopsAtAChildThatRefuses)
{
    TessmaMDIFrame frame;
    frame.show();
    frame.AddMDIChild(new QLabel(QStringLiteral("one")));
    QMdiSubWindow* stubborn = frame.AddMDIChild(new StubbornView);
    frame.AddMDIChild(new QLabel(QStringLiteral("three")));
    frame.CloseAllChildWindows();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    const QList<QMdiSubWindow*> left = frame.GetMDIClient()->subWindowList();
    ASSERT_GE(left.size(), 1);
    EXPECT_TRUE(left.contains(stubborn));
    for (QMdiSubWindow* child : left)
        EXPECT_TRUE(child == stubborn || child->isHidden());

    stubborn->widget()->deleteLater();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    frame.AddMDIChild(new QLabel(QStringLiteral("four")));
    frame.CloseAllChildWindows();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(frame.MDIGetActive(), nullptr);
    for (QMdiSubWindow* child : frame.GetMDIClient()->subWindowList())
        EXPECT_TRUE(child->isHidden());
}

TEST_F(MdiFrameFixture, GetMDIChildWndsCountsTheMainFramesChildrenTopmostFirst)
{
    TessmaMDIFrame frame;
    frame.show();
    EXPECT_EQ(GUIUtilities::GetMDIChildWnds(nullptr, false), 0) << "no main window yet";
    mApp->SetMainWnd(&frame);
    EXPECT_EQ(GUIUtilities::GetMDIChildWnds(nullptr, false), 0) << "no child yet";

    QMdiSubWindow* first = frame.AddMDIChild(new QLabel(QStringLiteral("1")));
    QMdiSubWindow* second = frame.AddMDIChild(new QLabel(QStringLiteral("2")));
    QMdiSubWindow* third = frame.AddMDIChild(new QLabel(QStringLiteral("3")));
    frame.MDIActivate(first);
    second->hide();

    std::vector<QMdiSubWindow*> all{nullptr};
    EXPECT_EQ(GUIUtilities::GetMDIChildWnds(&all, false), 3);
    ASSERT_EQ(all.size(), 4u) << "children are appended";
    EXPECT_EQ(all[1], first) << "the active child is on top";
    EXPECT_EQ(std::set<QMdiSubWindow*>(all.begin() + 1, all.end()),
              (std::set<QMdiSubWindow*>{first, second, third}));

    std::vector<QMdiSubWindow*> visible;
    EXPECT_EQ(GUIUtilities::GetMDIChildWnds(&visible, true), 2);
    EXPECT_EQ(std::set<QMdiSubWindow*>(visible.begin(), visible.end()), (std::set<QMdiSubWindow*>{first, third}));

    // A main window that is no MDI frame.
    QLabel label(QStringLiteral("no frame"));
    mApp->SetMainWnd(&label);
    EXPECT_EQ(GUIUtilities::GetMDIChildWnds(nullptr, false), 0);
    mApp->SetMainWnd(nullptr);
}

TEST_F(MdiFrameFixture, TheFramesDialogsAreClosedAndDisabledButNotThoseOfOthers)
{
    TessmaMDIFrame frame;
    frame.show();
    mApp->SetMainWnd(&frame);
    QMdiSubWindow* child = frame.AddMDIChild(new QLabel(QStringLiteral("child")));
    QDialog ofFrame(&frame);
    QDialog ofChild(child->widget());
    QDialog nested(&ofChild);
    QWidget stranger;
    QDialog ofStranger(&stranger);
    for (QDialog* dialog : {&ofFrame, &ofChild, &nested, &ofStranger})
        dialog->show();

    // While a box of the application is up, the frame's dialogs are disabled.
    std::vector<bool> enabledDuringBox;
    BoxAnswerer answerer(Qt::Key_Return, [&] {
        for (QDialog* dialog : {&ofFrame, &ofChild, &nested, &ofStranger})
            enabledDuringBox.push_back(dialog->isEnabled());
    });
    EXPECT_EQ(mApp->DoMessageBox("Look", MB_OK, 0), IDOK);
    EXPECT_EQ(enabledDuringBox, (std::vector<bool>{false, false, false, true}));
    for (QDialog* dialog : {&ofFrame, &ofChild, &nested, &ofStranger})
        EXPECT_TRUE(dialog->isEnabled());

    EXPECT_TRUE(frame.CancelAllMyDialogs());
    EXPECT_FALSE(ofFrame.isVisible());
    EXPECT_FALSE(ofChild.isVisible());
    EXPECT_FALSE(nested.isVisible());
    EXPECT_TRUE(ofStranger.isVisible());
    EXPECT_EQ(ofFrame.result(), QDialog::Rejected);
    mApp->SetMainWnd(nullptr);
}

TEST_F(MdiFrameFixture, TheMessageBarIsATsStatusBarMadeOnceAndInstalled)
{
    TessmaMDIFrame frame;
    QWidget* bar = frame.GetMessageBar();
    ASSERT_NE(dynamic_cast<TsStatusBar*>(bar), nullptr);
    EXPECT_EQ(frame.GetMessageBar(), bar);
    EXPECT_EQ(frame.statusBar(), bar);
    frame.SetMessageText("Computing");
    auto* access = dynamic_cast<TsStatusAccess*>(bar);
    EXPECT_EQ(static_cast<TsStatusBar*>(bar)->GetPaneText(access->CommandToIndex(0)), "Computing");
    EXPECT_EQ(frame.windowTitle(), QStringLiteral("MdiFrameTest"));
}

TEST_F(MdiFrameFixture, CleanupWindowEndsTheFrameWithoutTheClosingSteps)
{
    TessmaMDIFrame::msWorkAreaSource = [] { return std::vector<QRect>{kLeftScreen}; };
    auto* frame = new TessmaMDIFrame;
    frame->setAttribute(Qt::WA_DeleteOnClose);
    QPointer<TessmaMDIFrame> alive(frame);
    frame->show();
    frame->CleanupWindow();
    EXPECT_TRUE(frame->isHidden());
    EXPECT_EQ(mApp->GetProfileInt("WindowPos", "Status", -1), -1) << "no position is saved";
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(alive.isNull());

    // A frame that closes keeps its position.
    TessmaMDIFrame closing;
    closing.show();
    closing.close();
    EXPECT_EQ(mApp->GetProfileInt("WindowPos", "Status", -1), 1);
}
