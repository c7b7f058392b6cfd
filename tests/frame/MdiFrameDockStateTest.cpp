// The dock state across sessions: floating bars come back where they were, and a floating bar with nothing to show in
// this session stays hidden although it was shown when the state was saved.

#include "MdiFrameTestSupport.h"

using namespace korva::test;

namespace {

TEST_F(MdiFrameFixture, FloatingBarsGetTheirPositionAndEmptyOnesStayHidden)
{
    enum { eContent, eHiddenContent, eNoContent };   // what a bar holds in the later session
    const struct { const char* name; bool floating; int later; QPoint position; bool shown; } bars[] = {
        {"Navigator", true, eContent, {300, 200}, true},
        {"Output", true, eHiddenContent, {520, 260}, false},
        {"Empty", true, eNoContent, {40, 600}, false},
        {"Docked", false, eHiddenContent, {}, true},   // docked bars are left as the state says
    };
    const auto make = [&](TessmaMDIFrame& frame, bool later) {
        for (const auto& bar : bars) {
            auto* dock = new QDockWidget(QString::fromLatin1(bar.name), &frame);
            dock->setObjectName(QString::fromLatin1(bar.name));
            if (!later || bar.later != eNoContent)
                dock->setWidget(new QLabel(QStringLiteral("content"), dock));
            if (later && bar.later == eHiddenContent)
                dock->widget()->hide();
            frame.addDockWidget(Qt::LeftDockWidgetArea, dock);
            dock->setFloating(bar.floating && !later);
            if (!later)
                dock->move(bar.position);
        }
        frame.show();
    };
    {
        TessmaMDIFrame first;
        make(first, false);
        ASSERT_TRUE(first.SaveBarState("Bars"));
    }
    TessmaMDIFrame later;
    make(later, true);
    ASSERT_TRUE(later.VerifyBarState("Bars") == 1 && later.LoadBarState("Bars"));
    for (const auto& bar : bars) {
        SCOPED_TRACE(bar.name);
        const auto* dock = later.findChild<QDockWidget*>(bar.name);
        EXPECT_EQ(std::tuple(dock->isFloating(), !dock->isHidden()), std::tuple(bar.floating, bar.shown));
        EXPECT_TRUE(!bar.floating || !bar.shown || dock->pos() == bar.position) << dock->pos().x();
    }
}

} // namespace
