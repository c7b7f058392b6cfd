// The frame's safety net for memory and its timers: the memory watch with its
// hysteresis, the new handler on a real failing allocation, the timers that do
// not nest, and the splash that the frame takes down.

#include "MdiFrameTestSupport.h"

#include <KORVAutlwin/frame/CanGarbageCollect.h>
#include <KORVAutlwin/frame/MessageBoxTypes.h>
#include <KORVAutlwin/frame/TsStartWindow.h>

#include <KORVAutl/LanguageString.h>

#include <QElapsedTimer>

#include <cmath>
#include <deque>
#include <limits>
#include <new>

using korva::test::BoxAnswerer;
using korva::test::MdiFrameFixture;
using korva::test::TimerFrame;

namespace {

class Collector : public CanGarbageCollect
{
public:
    void FreeMemoryNow() override { ++calls; }
    int calls = 0;
};

// A collector that leaves the frame while it is asked.
class LeavingCollector : public CanGarbageCollect
{
public:
    explicit LeavingCollector(TessmaMDIFrame& frame) : mFrame(frame) {}
    void FreeMemoryNow() override
    {
        ++calls;
        mFrame.UnregisterCanGarbageCollect(this);
    }
    int calls = 0;

private:
    TessmaMDIFrame& mFrame;
};

class MdiFrameMemoryTest : public MdiFrameFixture
{
protected:
    // The free memory that the next readings of the watch give.
    void Readings(std::deque<double> values)
    {
        mReadings = std::move(values);
        TessmaMDIFrame::msFreeMemoryReader = [this] {
            const double value = mReadings.empty() ? 0.5 : mReadings.front();
            if (!mReadings.empty())
                mReadings.pop_front();
            return value;
        };
    }

    // Runs timer 1 once per reading and gives the number of warnings shown.
    int WarningsFor(std::deque<double> values, Collector* collector = nullptr)
    {
        TimerFrame frame;
        if (collector)
            frame.RegisterCanGarbageCollect(collector);
        BoxAnswerer answerer;
        const std::size_t count = values.size();
        Readings(std::move(values));
        for (std::size_t i = 0; i < count; ++i)
            frame.OnTimer(TessmaMDIFrame::eMemoryTimer);
        mLastTexts = answerer.texts;
        return static_cast<int>(answerer.texts.size());
    }

    std::deque<double> mReadings;
    std::vector<QString> mLastTexts;
};

} // namespace

TEST_F(MdiFrameMemoryTest, TheWarningReturnsOnlyAfterFreeMemoryHasClearlyRisen)
{
    Collector collector;
    EXPECT_EQ(WarningsFor({0.04, 0.07, 0.04}, &collector), 1);
    EXPECT_EQ(collector.calls, 2) << "every low reading asks for memory, warned or not";
    ASSERT_EQ(mLastTexts.size(), 1u);
    const QString expected = (QString::fromUtf8(LanguageString::Get(13291)) + "MdiFrameTest" +
                              QString::fromUtf8(LanguageString::Get(13292)))
                                 .simplified();
    EXPECT_EQ(mLastTexts[0], expected);

    TessmaMDIFrame::SetWarnAboutMemory(true);
    EXPECT_EQ(WarningsFor({0.04, 0.2, 0.04}), 2);
    TessmaMDIFrame::SetWarnAboutMemory(true);
    EXPECT_EQ(WarningsFor({0.04, 0.1, 0.04}), 2) << "0.1 itself arms the warning again";
    TessmaMDIFrame::SetWarnAboutMemory(true);
    EXPECT_EQ(WarningsFor({0.04, 1.5, 0.04}), 1) << "a reading above 1 is nonsense and arms nothing";
    TessmaMDIFrame::SetWarnAboutMemory(true);
    EXPECT_EQ(WarningsFor({std::nan(""), 0.049, 0.05, 0.01}), 1);
    EXPECT_FALSE(TessmaMDIFrame::GetWarnAboutMemory());
}

TEST_F(MdiFrameMemoryTest, FreeMemoryNowAsksEveryRegisteredObjectOnce)
{
    TessmaMDIFrame frame;
    Collector a, b;
    LeavingCollector leaving(frame);
    frame.RegisterCanGarbageCollect(&a);
    frame.RegisterCanGarbageCollect(&leaving);
    frame.RegisterCanGarbageCollect(&b);
    frame.RegisterCanGarbageCollect(&b);
    frame.FreeMemoryNow();
    EXPECT_EQ(a.calls, 1);
    EXPECT_EQ(b.calls, 1);
    EXPECT_EQ(leaving.calls, 1);
    frame.UnregisterCanGarbageCollect(&a);
    frame.FreeMemoryNow();
    EXPECT_EQ(a.calls, 1);
    EXPECT_EQ(b.calls, 2);
    EXPECT_EQ(leaving.calls, 1);
}

TEST_F(MdiFrameMemoryTest, ASecondTimerDuringTheBoxOfTheFirstIsIgnored)
{
    TimerFrame frame;
    Collector collector;
    frame.RegisterCanGarbageCollect(&collector);
    TsStartWindow(QImage(), {"Splash"});
    ASSERT_NE(TsStartWindow::Instance(), nullptr);

    Readings({0.01, 0.01, 0.01});
    BoxAnswerer answerer(Qt::Key_Return, [&frame] {
        frame.OnTimer(TessmaMDIFrame::eMemoryTimer);
        frame.OnTimer(TessmaMDIFrame::eSplashTimer);
    });
    frame.OnTimer(TessmaMDIFrame::eMemoryTimer);
    EXPECT_EQ(answerer.texts.size(), 1u);
    EXPECT_EQ(collector.calls, 1) << "the memory timer inside the box ran";
    EXPECT_EQ(mReadings.size(), 2u);
    EXPECT_NE(TsStartWindow::Instance(), nullptr) << "the splash timer inside the box ran";

    // Once the box is gone, timers run again.
    frame.OnTimer(TessmaMDIFrame::eSplashTimer);
    EXPECT_EQ(TsStartWindow::Instance(), nullptr);
    frame.OnTimer(TessmaMDIFrame::eMemoryTimer);
    EXPECT_EQ(collector.calls, 2);
}

TEST_F(MdiFrameMemoryTest, AFailingAllocationAsksTheUserAndFailsOnOk)
{
#if defined(__SANITIZE_ADDRESS__)
    GTEST_SKIP() << "AddressSanitizer ends the process on a failed allocation instead of calling the new handler";
#endif
    EXPECT_NE(std::get_new_handler(), &TessmaMDIFrame::NewHandler);
    {
        TessmaMDIFrame frame;
        ASSERT_EQ(std::get_new_handler(), &TessmaMDIFrame::NewHandler);
        EXPECT_EQ(TessmaMDIFrame::GetFrameInstance(), &frame);
        Collector collector;
        frame.RegisterCanGarbageCollect(&collector);
        int readings = 0;
        TessmaMDIFrame::msFreeMemoryReader = [&readings] {
            ++readings;
            return 0.5;
        };

        BoxAnswerer answerer(Qt::Key_Return);
        // More than the address space: the allocation fails for certain.
        const std::size_t tooMuch = std::size_t(1) << 50;
        void* volatile block = nullptr;
        EXPECT_THROW(block = ::operator new(tooMuch), std::bad_alloc);
        EXPECT_EQ(block, nullptr);
        ASSERT_EQ(answerer.texts.size(), 1u);
        EXPECT_EQ(answerer.texts[0], (QString::fromUtf8(LanguageString::Get(13289)) + "MdiFrameTest" +
                                      QString::fromUtf8(LanguageString::Get(13290)))
                                         .simplified());
        EXPECT_EQ(collector.calls, 1);

        // OK has the memory watch run soon.
        EXPECT_EQ(readings, 0);
        QTest::qWait(50);
        EXPECT_EQ(readings, 1);
    }
    EXPECT_NE(std::get_new_handler(), &TessmaMDIFrame::NewHandler);
    EXPECT_EQ(TessmaMDIFrame::GetFrameInstance(), nullptr);
}

TEST_F(MdiFrameMemoryTest, CancelInTheLowMemoryBoxEndsTheProcess)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            TessmaMDIFrame frame;
            BoxAnswerer answerer(Qt::Key_Escape);
            TessmaMDIFrame::NewHandler();
        },
        ::testing::ExitedWithCode(1), "");
}

TEST_F(MdiFrameMemoryTest, FreeMemoryComesFromProcMeminfo)
{
    const double free = TessmaMDIFrame::ReadFreeMemory();
    EXPECT_TRUE(free > 0.0 && free <= 1.0) << free;
}

// --- Splash ---------------------------------------------------------------------------

TEST_F(MdiFrameFixture, TheSplashGoesTwoSecondsAfterTheFrameIsMade)
{
    const QPoint at(40, 30);
    TsStartWindow(13024, {"Analyst", "Version 1.0", "Starting ..."}, &at, 0x00FFFFFF);
    TsSplashWindow* splash = TsStartWindow::Instance();
    ASSERT_NE(splash, nullptr);
    EXPECT_TRUE(splash->isVisible());
    EXPECT_EQ(splash->pos(), at);
    EXPECT_EQ(splash->GetTexts().size(), 3u);
    EXPECT_GE(splash->width(), 420) << "the small about picture stands on a panel";

    // A second splash replaces the first.
    QPointer<TsSplashWindow> first(splash);
    TsStartWindow(QImage(400, 260, QImage::Format_RGB32), {"Big"});
    EXPECT_TRUE(first.isNull());
    EXPECT_EQ(TsStartWindow::Instance()->size(), QSize(400, 260)) << "a large picture is the window";

    QElapsedTimer clock;
    clock.start();
    TessmaMDIFrame frame;
    frame.show();
    QTest::qWait(1000);
    EXPECT_NE(TsStartWindow::Instance(), nullptr);
    EXPECT_TRUE(QTest::qWaitFor([] { return TsStartWindow::Instance() == nullptr; }, 5000));
    EXPECT_GE(clock.elapsed(), TessmaMDIFrame::kSplashDelay - 50);
}

TEST_F(MdiFrameFixture, TheSplashGoesWithItsOwner)
{
    auto* owner = new QWidget;
    TsStartWindow(QImage(), {"Owned"}, nullptr, 0, owner);
    EXPECT_NE(TsStartWindow::Instance(), nullptr);
    delete owner;
    EXPECT_EQ(TsStartWindow::Instance(), nullptr);
}
