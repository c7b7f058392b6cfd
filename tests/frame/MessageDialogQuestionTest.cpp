// The question dialogs: the five-button "to all" question (its button sets,
// defaults and the yes/no question with details are checked through the user
// channel) and the two three-button "to all" questions.

#include "MdiFrameTestSupport.h"

#include <KORVAutlwin/frame/YesNoCancelAll.h>
#include <KORVAutlwin/frame/YesNoToAll.h>
#include <KORVAutlwin/frame/YesYesToAllCancelDialog.h>

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

TEST_F(MessageDialogTest, DoModalReplacesOnlyWhatItIsGiven)
{
    YesNoCancelAll dialog("First question?", "line 1\nline 2", "First title", YesNoCancelAll::eNo, nullptr);
    Shown shown;
    const auto texts = [&] {
        return std::vector<std::string>{shown.texts[YesNoCancelAll::kQuestionCtrlId],
                                        shown.texts[YesNoCancelAll::kDetailsCtrlId], shown.title};
    };
    // Details are shown in two lines, with no stray carriage return.
    Answer(shown, Key(Qt::Key_Return));
    EXPECT_EQ(dialog.DoModal(), YesNoCancelAll::eNo);
    EXPECT_EQ(texts(), (std::vector<std::string>{"First question?", "line 1\nline 2", "First title"}));
    Answer(shown, Key(Qt::Key_Return));
    EXPECT_EQ(dialog.DoModal("Second question?", nullptr, nullptr, YesNoCancelAll::eNone), YesNoCancelAll::eNo)
        << "eNone keeps the constructor's default";
    EXPECT_EQ(texts(), (std::vector<std::string>{"Second question?", "line 1\nline 2", "First title"}));
    Answer(shown, Key(Qt::Key_Return));
    EXPECT_EQ(dialog.DoModal(nullptr, "other", "Second title", YesNoCancelAll::eYesToAll), YesNoCancelAll::eYesToAll);
    EXPECT_EQ(texts(), (std::vector<std::string>{"Second question?", "other", "Second title"}));
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

TEST_F(MessageDialogTest, YesYesToAllCancelAnswersAndCaption)
{
    const std::pair<std::function<void(QWidget*)>, int> answers[] = {
        {ClickOn(YesYesToAllCancelDialog::kYesCtrlId), YesYesToAllCancelDialog::eYes},
        {ClickOn(YesYesToAllCancelDialog::kYesToAllCtrlId), YesYesToAllCancelDialog::eYesToAll},
        {ClickOn(YesYesToAllCancelDialog::kCancelCtrlId), IDCANCEL}, {Key(Qt::Key_Escape), IDCANCEL}};
    for (const auto& [answer, result] : answers) {
        YesYesToAllCancelDialog dialog;
        Shown shown;
        Answer(shown, answer);
        EXPECT_EQ(dialog.NewDoModal("Convert sample 1 of 40?", "Convert", "Convert &all"), result);
        EXPECT_EQ(shown.texts[YesYesToAllCancelDialog::kYesToAllCtrlId], "Convert &all");
    }
    // Without a caption of its own, the standard one.
    YesYesToAllCancelDialog standard;
    Shown shown;
    Answer(shown, Key(Qt::Key_Return));
    EXPECT_EQ(standard.NewDoModal("Convert?", nullptr, ""), YesYesToAllCancelDialog::eYes);
    EXPECT_EQ(shown.texts[YesYesToAllCancelDialog::kYesToAllCtrlId], "Yes to &All");
}
