// The two status bars: panes with ids, texts and widths, and hosted windows
// that move along when panes come and go, through the interface work code uses.

#include "TestApplication.h"

#include <KORVAutlwin/frame/TsStatusBar.h>
#include <KORVAutlwin/frame/TsXTPStatusBar.h>

#include <KORVAutl/LanguageString.h>

namespace {

constexpr unsigned int kSpinPane = 1036;
constexpr unsigned int kGaugePane = 1037;
constexpr unsigned int kCapsPane = 59137;

void Settle()
{
    QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
    QCoreApplication::processEvents();
}

// A status bar at the foot of a window of its own, shown, with the pane layout
// of a frame: the message pane and one indicator.
template <class Bar>
struct ShownBar
{
    QApplication* application = korva::test::Application();
    QWidget window;
    Bar* bar = new Bar(&window);

    ShownBar()
    {
        auto* layout = new QVBoxLayout(&window);
        layout->setContentsMargins(0, 0, 0, 0);
        layout->addStretch(1);
        layout->addWidget(bar);
        const unsigned int panes[] = {0, kCapsPane};
        bar->SetIndicators(panes, 2);
        bar->SetPaneInfo(1, kCapsPane, SBPS_NORMAL, 60);
        window.resize(700, 80);
        window.show();
        Settle();
    }
    QPoint At(QWidget* hosted) const { return hosted->mapTo(bar, QPoint(0, 0)); }
};

template <class Bar>
class StatusBarTest : public ::testing::Test
{
};
using Bars = ::testing::Types<TsStatusBar, TsXTPStatusBar>;
TYPED_TEST_SUITE(StatusBarTest, Bars);

TYPED_TEST(StatusBarTest, HostedWindowsFollowTheirPanes)
{
    ShownBar<TypeParam> shown;
    TypeParam& bar = *shown.bar;
    TsStatusAccess& access = bar;
    auto* gauge = new QProgressBar(&bar);
    auto* spin = new QLabel(QStringLiteral("spin"), &bar);

    // The gauge goes behind the message pane, inside its pane.
    ASSERT_TRUE(access.InsertWindow(gauge, 100, 1, kGaugePane));
    gauge->show();
    Settle();
    EXPECT_EQ(access.GetItemID(2), kCapsPane);
    EXPECT_TRUE(bar.GetItemRect(1).adjusted(1, 1, -1, -1).contains(QRect(shown.At(gauge), gauge->size())));

    // The spinner goes in front of it: the gauge moves one pane on and to the right.
    const int gaugeX = shown.At(gauge).x();
    ASSERT_TRUE(access.InsertWindow(spin, 40, 1, kSpinPane));
    spin->show();
    Settle();
    EXPECT_EQ(std::pair(bar.GetWindowIndex(spin), bar.GetWindowIndex(gauge)), std::pair(1, 2));
    EXPECT_EQ(access.CommandToIndex(kCapsPane), 3);
    EXPECT_GT(shown.At(gauge).x(), std::max(gaugeX - 1, shown.At(spin).x()));
    EXPECT_TRUE(bar.GetItemRect(2).contains(shown.At(gauge)));

    // The spinner leaves for good: the gauge moves back.
    access.RemoveWindow(spin, false, kSpinPane);
    Settle();
    EXPECT_EQ(std::tuple(access.GetCount(), bar.GetWindowIndex(gauge)), std::tuple(3, 1));
    EXPECT_TRUE(bar.GetItemRect(1).contains(shown.At(gauge)));

    // Hidden: the pane stays with width 0, the gauge is hidden.
    access.RemoveWindow(gauge, true, kGaugePane);
    Settle();
    EXPECT_EQ(std::tuple(access.GetCount(), access.CommandToIndex(kGaugePane)), std::tuple(3, 1));
    EXPECT_TRUE(gauge->isHidden() && bar.GetItemRect(1).isEmpty());

    // Inserted again, it leaves its hidden pane behind instead of adding another.
    ASSERT_TRUE(access.InsertWindow(gauge, 100, 2, kGaugePane));
    EXPECT_EQ(std::tuple(access.GetCount(), bar.GetWindowIndex(gauge), access.GetItemID(1)),
              std::tuple(3, 2, kCapsPane));

    // A pane without a window is removed by its id.
    access.RemoveWindow(nullptr, false, kCapsPane);
    EXPECT_EQ(std::tuple(access.GetCount(), bar.GetWindowIndex(gauge)), std::tuple(2, 1));
    EXPECT_FALSE(access.InsertWindow(nullptr, 10, 0, 5) || access.SetPaneText(7, "out of range", 1));
}

TYPED_TEST(StatusBarTest, PanesHaveIdsTextsAndAStretchingMessagePane)
{
    ShownBar<TypeParam> shown;
    EXPECT_EQ(TypeParam().GetCount(), 1) << "a new bar has the message pane only";
    TypeParam& bar = *shown.bar;
    const unsigned int panes[] = {0, 13316, 0};
    ASSERT_TRUE(bar.SetIndicators(panes, 3));
    Settle();
    EXPECT_EQ(bar.GetPaneText(bar.CommandToIndex(13316)), LanguageString::Get(13316)) << "the string of its id";
    unsigned int id = 0, style = 0;
    int width = 0;
    ASSERT_TRUE(bar.GetPaneInfo(0, id, style, width));
    EXPECT_TRUE(style & SBPS_STRETCH);
    ASSERT_TRUE(bar.GetPaneInfo(1, id, style, width));
    EXPECT_GT(width, bar.fontMetrics().horizontalAdvance(QString::fromUtf8(LanguageString::Get(13316))));

    // The message pane takes what the others leave, also after a resize.
    const int before = bar.GetItemRect(0).width();
    shown.window.resize(900, 80);
    Settle();
    EXPECT_EQ(bar.GetItemRect(0).width(), before + 200);
}

} // namespace
