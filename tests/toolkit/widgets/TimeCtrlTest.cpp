#include "WidgetTestSupport.h"

#include <KORVAutlwin/toolkit/RestrictedTimeCtrl.h>
#include <KORVAutlwin/toolkit/TimeSpanCtrl.h>

namespace {

using korva::test::ToolkitWidgetTest;

class TimeCtrlTest : public ToolkitWidgetTest
{
protected:
    /// Steps `section` of `edit` with the arrow `key`, as the user does with the focus in the field.
    static void Step(QDateTimeEdit* edit, QDateTimeEdit::Section section, Qt::Key key)
    {
        edit->setFocus();
        edit->setCurrentSection(section);
        QTest::keyClick(edit, key);
    }

    QWidget window;
};

std::int64_t At(int hours, int minutes, int seconds)
{
    return QDateTime(QDate(2024, 3, 1), QTime(hours, minutes, seconds)).toSecsSinceEpoch();
}

TEST_F(TimeCtrlTest, RestrictedTimeSnapsStepsToTheResolution)
{
    struct Row
    {
        std::int64_t start;
        QDateTimeEdit::Section section;
        Qt::Key key;
        std::int64_t expected;
    } const rows[] = {
        {At(0, 0, 20), QDateTimeEdit::SecondSection, Qt::Key_Up, At(0, 0, 30)},
        {At(0, 0, 20), QDateTimeEdit::SecondSection, Qt::Key_Down, At(0, 0, 10)},
        {At(0, 1, 0), QDateTimeEdit::SecondSection, Qt::Key_Down, At(0, 0, 50)}, // the field wrapped to 59
        {At(0, 0, 20), QDateTimeEdit::MinuteSection, Qt::Key_Up, At(0, 1, 20)},
    };
    auto* ctrl = new RestrictedTimeCtrl(&window);
    window.show();
    for (const Row& row : rows) {
        SCOPED_TRACE(testing::Message() << row.start << " key " << row.key);
        ctrl->SetTimeResolution(10, 0);
        ctrl->SetTime(row.start);
        EXPECT_EQ(ctrl->GetTime(), row.start); // set as given, not snapped
        Step(ctrl, row.section, row.key);
        EXPECT_EQ(ctrl->GetTime(), row.expected);
    }
    EXPECT_EQ(ctrl->GetTimeResolution(), 10);
}

TEST_F(TimeCtrlTest, SpanStepsByFifteenMinutesAndHoldsItsMaximum)
{
    auto* span = new TimeSpanCtrl(&window);
    window.show();
    EXPECT_EQ(span->displayFormat(), "HH:mm:ss");
    span->SetTimeResolution(900);
    span->SetTimeSpan(900);
    EXPECT_EQ(span->text(), "00:15:00");
    Step(span, QDateTimeEdit::MinuteSection, Qt::Key_Up);
    EXPECT_EQ(span->GetTimeSpan(), 1800);
    EXPECT_EQ(span->text(), "00:30:00");
    Step(span, QDateTimeEdit::MinuteSection, Qt::Key_Down);
    EXPECT_EQ(span->text(), "00:15:00");

    span->SetTimeResolution(1);
    span->SetMaxTimeSpan(3600);
    span->SetTimeSpan(7200);
    EXPECT_EQ(span->text(), "01:00:00");
    for (auto section : {QDateTimeEdit::SecondSection, QDateTimeEdit::MinuteSection, QDateTimeEdit::HourSection}) {
        Step(span, section, Qt::Key_Up);
        EXPECT_EQ(span->GetTimeSpan(), 3600) << section;
    }
}

} // namespace
