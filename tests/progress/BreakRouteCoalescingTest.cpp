// Progress on the break route leaves out the gauge values that would fill the same width of the window's bar as the
// last one sent: every visible change still goes, and the window ends with the exact last value. Against a window of a
// known width, and against the real companion, which reports its own.

#include "ProgressTestSupport.h"

#include <KORVAutlwin/progress/BreakWindowProcess.h>

using korva::test::BreakMessage;
using korva::test::ProgressFrameFixture;

namespace {

class SizedBreakWindow : public korva::test::RecordingBreakWindow
{
public:
    int GetGaugeResolution() const override { return width; }
    int width = 0;
};

class BreakRouteCoalescingTest : public ProgressFrameFixture
{
protected:
    void SetUp() override
    {
        ProgressFrameFixture::SetUp();
        MakeFrame();
    }
};

} // namespace

TEST_F(BreakRouteCoalescingTest, AValueGoesWhenItMovesTheBarAndTheLastGoesBeforeTheEnd)
{
    SizedBreakWindow window;
    BreakWindowChannel::SetChannel(&window);
    auto progress = std::make_unique<Progress>(nullptr, "Sweep", 0.0f, 1000.0f, false, true, true);
    // On a bar of 100 pixels one pixel is 10 units; 0 is on display.
    struct Row { int width; float set; bool sent; float shown; };
    const Row rows[] = {{100, 5.0f, false, 0.0f},      {100, 9.9f, false, 0.0f},     {100, 10.0f, true, 10.0f},
                        {100, 19.0f, false, 0.0f},     {100, 9.0f, true, 9.0f},      {100, 2000.0f, true, 1000.0f},
                        {100, 1500.0f, false, 0.0f},   {100, 995.0f, true, 995.0f},  {1000, 995.5f, false, 0.0f},
                        {1000, 996.0f, true, 996.0f},  {0, 996.0f, true, 996.0f},    {100, 996.5f, false, 0.0f}};
    for (const Row& row : rows) {
        SCOPED_TRACE(testing::Message() << "width " << row.width << ", Set(" << row.set << ")");
        window.width = row.width;
        window.messages.clear();
        EXPECT_TRUE(progress->Set(row.set));
        const std::vector<BreakMessage> sent{{BreakWindowChannel::eGaugeValue, row.shown}};
        EXPECT_EQ(window.messages, row.sent ? sent : std::vector<BreakMessage>());
    }
    window.messages.clear();
    progress.reset();
    EXPECT_EQ(window.messages, (std::vector<BreakMessage>{{BreakWindowChannel::eGaugeValue, 996.5f},
                                                          {BreakWindowChannel::eFinish}}));
}

TEST_F(BreakRouteCoalescingTest, ASweepSendsTheCompanionOneValuePerPixelOfItsBar)
{
    const std::string trace = mDir.File("trace.txt");
    setenv("KORVA_BREAKWIN_TRACE", trace.c_str(), 1);
    BreakWindowProcess companion;
    BreakWindowChannel::SetChannel(&companion);
    int width = 0;
    {
        Progress progress(nullptr, "Sweep", 0.0f, 1.0f, false, true, true);
        unsetenv("KORVA_BREAKWIN_TRACE");
        width = companion.GetGaugeResolution();
        ASSERT_GT(width, 0);
        for (int i = 0; i <= 100000; ++i)
            progress.Set(static_cast<float>(i) / 200000.0f);
        progress.Set(0.50001f);  // on the pixel of 0.5
    }
    std::vector<std::string> values;
    std::ifstream in(trace);
    for (std::string line; std::getline(in, line);)
        if (line.rfind("value ", 0) == 0 || line == "finish")
            values.push_back(line);
    // The start's 0, one value per pixel up to the middle, the last value, the end.
    ASSERT_EQ(values.size(), static_cast<std::size_t>(width / 2 + 3));
    EXPECT_EQ(values[values.size() - 2], "value 0.50001");
    EXPECT_EQ(values.back(), "finish");
}
