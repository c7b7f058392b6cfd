// The dock state of the MDI frame across sessions: floating bars come back where they were, and a floating bar that
// has nothing to show in this session stays hidden even though it was shown when the state was saved.

#include "MdiFrameTestSupport.h"

using namespace korva::test;

namespace {

TEST_F(MdiFrameFixture, FloatingBarsGetTheirPositionAndEmptyOnesStayHidden)
{
    // What each bar holds in the later session.
    enum { eContent, eHiddenContent, eNoContent };
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
        }
    };
    {
        TessmaMDIFrame first;
        make(first, false);
        first.show();
        for (const auto& bar : bars) {
            auto* dock = first.findChild<QDockWidget*>(bar.name);
            dock->setFloating(bar.floating);
            if (bar.floating)
                dock->move(bar.position);
            dock->show();
        }
        ASSERT_TRUE(first.SaveBarState("Bars"));
    }
    EXPECT_EQ(mApp->GetProfileString("Bars", "Bar0Float", ""), "300,200");
    TessmaMDIFrame later;
    make(later, true);
    later.show();
    ASSERT_EQ(later.VerifyBarState("Bars"), 1);
    ASSERT_TRUE(later.LoadBarState("Bars"));
    for (const auto& bar : bars) {
        SCOPED_TRACE(bar.name);
        auto* dock = later.findChild<QDockWidget*>(bar.name);
        EXPECT_EQ(dock->isFloating(), bar.floating);
        EXPECT_EQ(!dock->isHidden(), bar.shown);
        if (bar.floating && bar.shown) {
            EXPECT_EQ(dock->pos(), bar.position);
        }
    }
}

} // namespace
