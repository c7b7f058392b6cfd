// The question dialogs: the five-button "to all" question (its button sets,
// defaults and the yes/no question with details are checked through the user
// channel) and the two three-button "to all" questions.

#include "MdiFrameTestSupport.h"

#include <KORVAutlwin/frame/YesNoCancelAll.h>
#include <KORVAutlwin/frame/YesNoToAll.h>

using namespace korva::test;

TEST_F(MessageDialogTest, WithoutDefaultReturnPressesNothingAndEscapeCancels)
{
    YesNoCancelAll dialog("Overwrite?", "old.csv", "Export", YesNoCancelAll::eNone, nullptr);
    bool openAfterReturn = false;
    WhenModal([&](QWidget* box) {
        for (QPushButton* button : box->findChildren<QPushButton*>())
            EXPECT_FALSE(button->isDefault());
        Press(box, Qt::Key_Return);
        openAfterReturn = box->isVisible();
        Press(box, Qt::Key_Escape);
    });
    EXPECT_EQ(dialog.DoModal(), YesNoCancelAll::eCancel);
    EXPECT_TRUE(openAfterReturn);

    // After a run that ended with a button, the next run starts as cancel again.
    WhenModal(ClickOn(YesNoCancelAll::kNoToAllCtrlId));
    EXPECT_EQ(dialog.DoModal(), YesNoCancelAll::eNoToAll);
    WhenModal([](QWidget* box) { box->close(); });
    EXPECT_EQ(dialog.DoModal(), YesNoCancelAll::eCancel);
    EXPECT_EQ(dialog.GetButtonPressed(), YesNoCancelAll::eCancel);

    // Answer codes outside 1 to 5 choose no button; anything but a button pressed is cancel (5).
    for (int outside : {0, 6})
        EXPECT_EQ(YesNoCancelAll::ButtonOfAnswer(outside), YesNoCancelAll::eNone);
    EXPECT_EQ(YesNoCancelAll::AnswerOfButton(YesNoCancelAll::eNone), 5);
    EXPECT_EQ(YesNoCancelAll::AnswerOfButton(-1), 5);
}

TEST_F(MessageDialogTest, YesNoToAllInBothSenses)
{
    const struct { bool invert; int first, toAll, opposite; unsigned int captions; } senses[] = {
        {false, YesNoToAll::eYes, YesNoToAll::eYesToAll, YesNoToAll::eNo, 13346},   // "Yes to &all", ...
        {true, YesNoToAll::eNo, YesNoToAll::eNoToAll, YesNoToAll::eYes, 13343},     // "No to &all", ...
    };
    for (const auto& sense : senses) {
        SCOPED_TRACE(sense.invert ? "inverted" : "plain");
        const std::pair<std::function<void(QWidget*)>, int> answers[] = {
            {ClickOn(YesNoToAll::kFirstCtrlId), sense.first}, {ClickOn(YesNoToAll::kToAllCtrlId), sense.toAll},
            {ClickOn(YesNoToAll::kOppositeCtrlId), sense.opposite}, {Key(Qt::Key_Return), sense.first},
            {Key(Qt::Key_Escape), IDCANCEL}};
        for (const auto& [answer, result] : answers) {
            YesNoToAll dialog(nullptr, sense.invert);
            Shown shown;
            Answer(shown, answer);
            EXPECT_EQ(dialog.NewDoModal("Skip data.csv?", "Copy"), result);
            EXPECT_EQ(shown.texts[YesNoToAll::kTextCtrlId], "Skip data.csv?");
            EXPECT_EQ(shown.title, "Copy");
            EXPECT_EQ(shown.texts[YesNoToAll::kToAllCtrlId], LanguageString::Get(sense.captions));
            EXPECT_EQ(shown.texts[YesNoToAll::kOppositeCtrlId], LanguageString::Get(sense.captions + 1));
            EXPECT_EQ(shown.texts[YesNoToAll::kFirstCtrlId], LanguageString::Get(sense.captions + 2));
        }
    }
    EXPECT_STREQ(LanguageString::Get(13343), "No to &all");
}
