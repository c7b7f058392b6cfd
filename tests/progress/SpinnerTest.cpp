// Spinner: the 250 ms rule of its steps, the way round its six turning frames
// and back from rest, and the pictures it draws. Offscreen.

#include "../frame/TestApplication.h"

#include <KORVAutlwin/progress/Spinner.h>

#include <QImage>
#include <QTest>

#include <gtest/gtest.h>

#include <set>
#include <thread>

namespace {

TEST(SpinnerArithmeticTest, StepsAfterMoreThan250MillisecondsRoundSixFramesFromRest)
{
    int frame = Spinner::kRestFrame;
    std::uint32_t lastTick = 1000;
    EXPECT_FALSE(Spinner::StepFrame(frame, lastTick, 1250));
    EXPECT_EQ(frame, Spinner::kRestFrame);
    EXPECT_EQ(lastTick, 1000u);

    // From rest the turning starts at 0; the rest frame never comes by turning.
    std::vector<int> seen;
    for (std::uint32_t now = 1251; seen.size() < 8; now += 251) {
        ASSERT_TRUE(Spinner::StepFrame(frame, lastTick, now));
        EXPECT_EQ(lastTick, now);
        seen.push_back(frame);
    }
    EXPECT_EQ(seen, (std::vector<int>{0, 1, 2, 3, 4, 5, 0, 1}));

    // Across the wrap of the 32-bit clock.
    lastTick = 0xFFFFFF80u;
    EXPECT_FALSE(Spinner::StepFrame(frame, lastTick, 0x70u));  // 240 ms later
    EXPECT_TRUE(Spinner::StepFrame(frame, lastTick, 0x80u));   // 256 ms later
}

TEST(SpinnerTest, StepAndRestOnTheWidget)
{
    korva::test::Application();
    Spinner spinner;
    EXPECT_EQ(spinner.GetFrame(), Spinner::kRestFrame);

    // Rest counts as a move: a step right after it stays put.
    spinner.Rest();
    spinner.Step();
    EXPECT_EQ(spinner.GetFrame(), Spinner::kRestFrame);

    std::this_thread::sleep_for(std::chrono::milliseconds(Spinner::kStepInterval + 20));
    spinner.Step();
    spinner.Step();  // too soon after the first
    EXPECT_EQ(spinner.GetFrame(), 0);

    spinner.Rest();
    EXPECT_EQ(spinner.GetFrame(), Spinner::kRestFrame);
}

TEST(SpinnerTest, DrawsSevenDifferentFramesAndPaintsTheCurrentOne)
{
    korva::test::Application();
    std::set<QByteArray> pictures;
    for (int index = 0; index < Spinner::kFrameCount; ++index) {
        const QImage& image = Spinner::FrameImage(index);
        ASSERT_EQ(image.size(), QSize(Spinner::kFrameSize, Spinner::kFrameSize));
        pictures.insert(QByteArray(reinterpret_cast<const char*>(image.constBits()), image.sizeInBytes()));
    }
    EXPECT_EQ(pictures.size(), std::size_t(Spinner::kFrameCount));

    Spinner spinner;
    spinner.setContentsMargins(2, 3, 2, 3);
    EXPECT_EQ(spinner.sizeHint(), QSize(Spinner::kFrameSize + 4, Spinner::kFrameSize + 6));
    spinner.resize(spinner.sizeHint());
    // What is on the widget is the frame's picture, inside the margins.
    const QImage grabbed = spinner.grab().toImage().convertToFormat(QImage::Format_ARGB32_Premultiplied);
    const QImage expected = Spinner::FrameImage(Spinner::kRestFrame);
    int differing = 0;
    for (int y = 0; y < Spinner::kFrameSize; ++y)
        for (int x = 0; x < Spinner::kFrameSize; ++x)
            if (qAlpha(expected.pixel(x, y)) == 255 && grabbed.pixel(x + 2, y + 3) != expected.pixel(x, y))
                ++differing;
    EXPECT_EQ(differing, 0);
}

} // namespace
