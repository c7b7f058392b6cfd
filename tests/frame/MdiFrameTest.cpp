// The MDI frame: its position across sessions and screens, bar state, command
// route, children and dialogs, its safety net for memory and its timers.

#include "MdiFrameTestSupport.h"

#include <KORVAutlwin/frame/CanGarbageCollect.h>
#include <KORVAutlwin/frame/CommandAction.h>
#include <KORVAutlwin/frame/GUIUtilities.h>
#include <KORVAutlwin/frame/TsStartWindow.h>

#include <cmath>
#include <deque>
#include <new>

using namespace korva::test;

namespace {

const QRect kLeftScreen(0, 0, 1920, 1040);
const QRect kRightScreen(1920, 0, 1280, 984);

class MdiFramePositionTest : public MdiFrameFixture
{
protected:
    void UseScreens(std::vector<QRect> screens) { TessmaMDIFrame::msWorkAreaSource = [screens] { return screens; }; }
    int Saved(const char* key) { return mApp->GetProfileInt("WindowPos", key, -1); }
    // The geometry of a frame shown after a first placement of 640 x 480; `end` may close it.
    QRect ShownGeometry(const std::function<void(TessmaMDIFrame&)>& end = nullptr)
    {
        TessmaMDIFrame frame;
        frame.resize(640, 480);
        frame.show();
        const QRect shown = frame.geometry();
        if (end)
            end(frame);
        return shown;
    }
};

TEST_F(MdiFramePositionTest, PositionComesBackInsideTheScreensAndMaximizedAsItWas)
{
    // Saved on a screen that is gone: the window keeps its size and stands fully on the nearest one.
    UseScreens({kLeftScreen, kRightScreen});
    ShownGeometry([](TessmaMDIFrame& frame) {
        frame.setGeometry(2400, 300, 600, 400);
        frame.close();
    });
    EXPECT_EQ((std::vector<int>{Saved("Status"), Saved("Left"), Saved("Top"), Saved("Right"), Saved("Bottom")}),
              (std::vector<int>{1, 2400, 300, 3000, 700}));
    UseScreens({kLeftScreen});
    EXPECT_EQ(ShownGeometry(), QRect(kLeftScreen.right() + 1 - 600, 300, 600, 400));

    // Maximized: the status is kept, and the normal geometry is what is saved.
    ShownGeometry([](TessmaMDIFrame& frame) {
        frame.setGeometry(100, 120, 700, 500);
        frame.showMaximized();
        frame.close();
    });
    EXPECT_EQ(Saved("Status"), 3);
    ShownGeometry([](TessmaMDIFrame& frame) {
        EXPECT_EQ(std::tuple(frame.isMaximized(), frame.normalGeometry()), std::tuple(true, QRect(100, 120, 700, 500)));
    });

    // The screen with the largest share of the window takes it, else the nearest one.
    const std::pair<QRect, QRect> cases[] = {
        {QRect(1800, 800, 600, 400), QRect(1920, 584, 600, 400)},       // mostly right, over its bottom edge
        {QRect(9000, 100, 400, 300), QRect(3200 - 400, 100, 400, 300)},   // far to the right of everything
        {QRect(2000, 50, 1500, 1200), QRect(1920, 0, 1500, 1200)},      // too large: the top-left corner is inside
    };
    for (const auto& [rect, fitted] : cases)
        EXPECT_EQ(TessmaMDIFrame::FitIntoNearestWorkArea(rect, {kLeftScreen, kRightScreen}), fitted) << rect.x();
    EXPECT_EQ(TessmaMDIFrame::FitIntoNearestWorkArea(QRect(5, 5, 10, 10), {}), QRect(5, 5, 10, 10));
}

TEST_F(MdiFramePositionTest, WithoutASectionOrWithOneValueMissingTheDefaultPlacementStays)
{
    UseScreens({kLeftScreen});
    // CleanupWindow ends a frame without the closing steps: no position is saved.
    auto* ending = new TessmaMDIFrame;
    QPointer<TessmaMDIFrame> alive(ending);
    ending->setAttribute(Qt::WA_DeleteOnClose);
    ending->show();
    ending->CleanupWindow();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(alive.isNull() && Saved("Status") == -1);
    EXPECT_EQ(ShownGeometry().size(), QSize(640, 480));
    for (const auto& [key, value] : {std::pair{"Status", 1}, {"Top", 100}, {"Left", 50}, {"Bottom", 500}})
        mApp->WriteProfileInt("WindowPos", key, value);
    EXPECT_EQ(ShownGeometry().size(), QSize(640, 480)) << "a missing Right must void the other values";
    mApp->WriteProfileInt("WindowPos", "Right", 850);
    EXPECT_EQ(ShownGeometry(), QRect(50, 100, 800, 400));
}

TEST_F(MdiFrameFixture, BarStateNamingABarThatIsGoneDoesNotVerify)
{
    const auto addBars = [](TessmaMDIFrame& frame, std::vector<QString> toolBars) {
        for (const QString& name : toolBars)
            frame.addToolBar(name)->setObjectName(name);
        auto* dock = new QDockWidget(QStringLiteral("Navigator"), &frame);
        dock->setObjectName(QStringLiteral("Navigator"));
        frame.addDockWidget(Qt::LeftDockWidgetArea, dock);
    };
    {
        TessmaMDIFrame first;
        addBars(first, {"Standard", "Analysis"});
        first.show();
        first.findChild<QToolBar*>("Analysis")->hide();
        ASSERT_TRUE(first.SaveBarState("Bars"));
    }
    EXPECT_EQ(mApp->GetProfileInt("Bars", "BarCount", 0), 3);
    {
        TessmaMDIFrame later;   // a later version without the tool bar "Analysis"
        addBars(later, {"Standard"});
        EXPECT_EQ(later.VerifyBarState("Bars"), 0);
    }
    // All bars there, and one more: the state applies.
    TessmaMDIFrame frame;
    addBars(frame, {"Standard", "Analysis", "Charts"});
    frame.show();
    EXPECT_EQ(frame.VerifyBarState("Bars"), 1);
    ASSERT_TRUE(frame.LoadBarState("Bars"));
    EXPECT_TRUE(frame.findChild<QToolBar*>("Analysis")->isHidden() && !frame.findChild<QToolBar*>("Standard")->isHidden());

    // Saving again forgets the names of the first state; nothing stored names no bar.
    for (const char* name : {"Analysis", "Charts"})
        frame.findChild<QToolBar*>(name)->setObjectName(QString());
    ASSERT_TRUE(frame.SaveBarState("Bars"));
    EXPECT_EQ(mApp->GetProfileString("Bars", "Bar2", "gone"), "gone");
    EXPECT_EQ(frame.VerifyBarState("Nothing stored"), 1);
    EXPECT_FALSE(frame.LoadBarState("Nothing stored"));
}

class CommandView : public QLabel, public CmdTarget
{
public:
    explicit CommandView(int& runs) { OnCommand(4711, [&runs] { ++runs; }); }
};

class StubbornView : public QLabel
{
protected:
    void closeEvent(QCloseEvent* event) override { event->ignore(); }
};

TEST_F(MdiFrameFixture, CommandsReachTheActiveChildFirstAndTheChildrenAreCountedAndClosed)
{
    TessmaMDIFrame frame;
    int viewRuns = 0, frameRuns = 0;
    frame.OnCommand(4711, [&frameRuns] { ++frameRuns; });
    frame.show();
    mApp->SetMainWnd(&frame);
    QMdiSubWindow* view = frame.AddMDIChild(new CommandView(viewRuns));
    QMdiSubWindow* plain = frame.AddMDIChild(new QLabel);
    QMdiSubWindow* stubborn = frame.AddMDIChild(new StubbornView);
    for (QMdiSubWindow* active : {view, plain}) {
        frame.MDIActivate(active);
        EXPECT_TRUE(korva::RouteCommand(4711));
    }
    EXPECT_EQ(std::pair(viewRuns, frameRuns), std::pair(1, 1));

    // The active child is on top, and children are appended; hidden ones count only when asked.
    plain->hide();
    frame.MDIActivate(view);
    std::vector<QMdiSubWindow*> all{nullptr}, visible;
    EXPECT_EQ(GUIUtilities::GetMDIChildWnds(&all, false), 3);
    ASSERT_EQ(all.size(), 4u);
    EXPECT_EQ(all[1], view);
    EXPECT_EQ(GUIUtilities::GetMDIChildWnds(&visible, true), 2);
    EXPECT_EQ(std::count(visible.begin(), visible.end(), plain), 0);

    // The Window menu's commands are the frame's, enabled while there is a child.
    QMenu* window = frame.AddCommandMenu(QStringLiteral("Window"));
    QAction* cascade = frame.AddCommand(window, ID_WINDOW_CASCADE, QStringLiteral("Cascade"));
    GUIUtilities::EnableMenu(&frame, window);
    EXPECT_TRUE(cascade->isEnabled());

    // Closing stops at a child that refuses; without one, every child goes.
    plain->show();
    frame.MDIActivate(stubborn);
    frame.CloseAllChildWindows();
    EXPECT_FALSE(stubborn->isHidden() || view->isHidden());
    delete stubborn->widget();
    frame.CloseAllChildWindows();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(frame.MDIGetActive(), nullptr);
    for (QMdiSubWindow* child : frame.GetMDIClient()->subWindowList())
        EXPECT_TRUE(child->isHidden());
    GUIUtilities::EnableMenu(&frame, window);
    EXPECT_FALSE(cascade->isEnabled());

    mApp->SetMainWnd(nullptr);
}

TEST_F(MdiFrameFixture, TheFramesDialogsAreClosedAndDisabledButNotThoseOfOthers)
{
    TessmaMDIFrame frame;
    frame.show();
    mApp->SetMainWnd(&frame);
    QMdiSubWindow* child = frame.AddMDIChild(new QLabel);
    QDialog ofFrame(&frame), ofChild(child->widget()), nested(&ofChild);
    QWidget stranger;
    QDialog ofStranger(&stranger);
    const auto states = [&](bool (QWidget::*state)() const) {
        std::vector<bool> result;
        for (QDialog* dialog : {&ofFrame, &ofChild, &nested, &ofStranger})
            result.push_back((dialog->*state)());
        return result;
    };
    for (QDialog* dialog : {&ofFrame, &ofChild, &nested, &ofStranger})
        dialog->show();

    // While a box of the application is up, the frame's dialogs are disabled.
    std::vector<bool> enabledDuringBox;
    BoxAnswerer answerer(Qt::Key_Return, [&] { enabledDuringBox = states(&QWidget::isEnabled); });
    EXPECT_EQ(mApp->DoMessageBox("Look", MB_OK, 0), IDOK);
    EXPECT_EQ(enabledDuringBox, (std::vector<bool>{false, false, false, true}));
    EXPECT_EQ(states(&QWidget::isEnabled), (std::vector<bool>{true, true, true, true}));
    EXPECT_TRUE(frame.CancelAllMyDialogs());
    EXPECT_EQ(states(&QWidget::isVisible), (std::vector<bool>{false, false, false, true}));
    mApp->SetMainWnd(nullptr);
    EXPECT_EQ(frame.windowTitle(), QStringLiteral("MdiFrameTest")) << "the application's name";
}

// Counts the requests to free memory; one that is `leaving` leaves the frame while it is asked.
struct Collector : CanGarbageCollect
{
    void FreeMemoryNow() override
    {
        ++calls;
        if (leaving)
            leaving->UnregisterCanGarbageCollect(this);
    }
    TessmaMDIFrame* leaving = nullptr;
    int calls = 0;
};

// A frame whose timer handler the test may call, as the window system would.
class TimerFrame : public TessmaMDIFrame
{
public:
    using TessmaMDIFrame::OnTimer;
};

class MdiFrameMemoryTest : public MdiFrameFixture
{
protected:
    // The free memory that the next readings of the watch give (0.5 after them).
    void Readings(std::deque<double> values)
    {
        mReadings = std::move(values);
        mReadings.push_back(0.5);
        TessmaMDIFrame::msFreeMemoryReader = [this] {
            const double value = mReadings.front();
            if (mReadings.size() > 1)
                mReadings.pop_front();
            return value;
        };
    }
    // Runs timer 1 once per reading; the texts of the warnings shown.
    std::vector<QString> WarningsFor(std::deque<double> values, Collector* collector = nullptr)
    {
        TessmaMDIFrame::SetWarnAboutMemory(true);
        TimerFrame frame;
        frame.RegisterCanGarbageCollect(collector);
        BoxAnswerer answerer;
        const std::size_t count = values.size();
        Readings(std::move(values));
        for (std::size_t i = 0; i < count; ++i)
            frame.OnTimer(TessmaMDIFrame::eMemoryTimer);
        return answerer.texts;
    }
    static QString Text(unsigned int first, unsigned int second)
    {
        return (LanguageString::Get(first) + QStringLiteral("MdiFrameTest") + LanguageString::Get(second)).simplified();
    }

    std::deque<double> mReadings;
};

TEST_F(MdiFrameMemoryTest, TheWarningReturnsOnlyAfterFreeMemoryHasClearlyRisen)
{
    Collector collector;
    EXPECT_EQ(WarningsFor({0.04, 0.07, 0.04}, &collector), std::vector<QString>{Text(13291, 13292)});
    EXPECT_EQ(collector.calls, 2) << "every low reading asks for memory, warned or not";
    const std::pair<std::deque<double>, std::size_t> cases[] = {
        {{0.04, 0.2, 0.04}, 2},
        {{0.04, 0.1, 0.04}, 2},   // 0.1 itself arms the warning again
        {{0.04, 1.5, 0.04}, 1},   // a reading above 1 is nonsense and arms nothing
        {{std::nan(""), 0.049, 0.05, 0.01}, 1},
    };
    for (const auto& [readings, warnings] : cases)
        EXPECT_EQ(WarningsFor(readings).size(), warnings) << readings[1];
    const double free = TessmaMDIFrame::ReadFreeMemory();
    EXPECT_TRUE(free > 0.0 && free <= 1.0) << "from /proc/meminfo: " << free;
}

TEST_F(MdiFrameMemoryTest, EveryCollectorIsAskedOnceAndASecondTimerDuringTheBoxOfTheFirstIsIgnored)
{
    TimerFrame frame;
    Collector a, b, leaving;
    leaving.leaving = &frame;
    for (Collector* collector : {&a, &leaving, &b, &b})
        frame.RegisterCanGarbageCollect(collector);
    frame.FreeMemoryNow();
    frame.UnregisterCanGarbageCollect(&a);
    frame.FreeMemoryNow();
    EXPECT_EQ((std::vector<int>{a.calls, b.calls, leaving.calls}), (std::vector<int>{1, 2, 1}));

    TsStartWindow(QImage(), {"Splash"});
    Readings({0.01, 0.01, 0.01});
    BoxAnswerer answerer(Qt::Key_Return, [&frame] {
        frame.OnTimer(TessmaMDIFrame::eMemoryTimer);
        frame.OnTimer(TessmaMDIFrame::eSplashTimer);
    });
    frame.OnTimer(TessmaMDIFrame::eMemoryTimer);
    // The timers inside the box read nothing and left the splash window.
    EXPECT_EQ(std::tuple(answerer.texts.size(), b.calls, mReadings.size()), std::tuple(1u, 3, 3u));
    EXPECT_NE(TsStartWindow::Instance(), nullptr);
    frame.OnTimer(TessmaMDIFrame::eSplashTimer);
    EXPECT_EQ(TsStartWindow::Instance(), nullptr);
    frame.OnTimer(TessmaMDIFrame::eMemoryTimer);
    EXPECT_EQ(b.calls, 4);
}

TEST_F(MdiFrameMemoryTest, AFailingAllocationAsksTheUserAndFailsOnOkAndEndsTheProcessOnCancel)
{
#if defined(__SANITIZE_ADDRESS__)
    GTEST_SKIP() << "AddressSanitizer ends the process on a failed allocation instead of calling the new handler";
#endif
    std::set_new_handler(nullptr);   // a frame installs its handler and puts back the one before
    {
        TessmaMDIFrame frame;
        ASSERT_EQ(std::get_new_handler(), &TessmaMDIFrame::NewHandler);
        Collector collector;
        frame.RegisterCanGarbageCollect(&collector);
        int readings = 0;
        TessmaMDIFrame::msFreeMemoryReader = [&readings] { return ++readings, 0.5; };
        BoxAnswerer answerer(Qt::Key_Return);
        // More than the address space: the allocation fails for certain.
        EXPECT_THROW(static_cast<void>(::operator new(std::size_t(1) << 50)), std::bad_alloc);
        EXPECT_EQ(std::tuple(answerer.texts, collector.calls, readings),
                  std::tuple(std::vector<QString>{Text(13289, 13290)}, 1, 0));
        QTest::qWait(50);   // OK has the memory watch run soon
        EXPECT_EQ(readings, 1);
    }
    EXPECT_EQ(std::get_new_handler(), nullptr);

    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            TessmaMDIFrame frame;
            BoxAnswerer answerer(Qt::Key_Escape);
            TessmaMDIFrame::NewHandler();
        },
        ::testing::ExitedWithCode(1), "");
}

} // namespace
