// The question dialogs: the five-button "to all" question (its button sets are
// checked through the user channel), the two three-button "to all" questions
// and yes/no with details.

#include "MdiFrameTestSupport.h"

#include <KORVAutlwin/frame/YesNoCancelAll.h>
#include <KORVAutlwin/frame/YesNoDialog.h>
#include <KORVAutlwin/frame/YesNoToAll.h>
#include <KORVAutlwin/frame/YesYesToAllCancelDialog.h>

#include <KORVAutl/LanguageString.h>

#include <QPlainTextEdit>
#include <QPushButton>

using namespace korva::test;

namespace {

// Question, details and title of a question dialog.
QStringList Texts(QWidget* box, int questionId, int detailsId)
{
    return {Control<QLabel>(box, questionId)->text(), Control<QPlainTextEdit>(box, detailsId)->toPlainText(),
            box->windowTitle()};
}

} // namespace

TEST_F(MessageDialogTest, DefaultAnswerPicksTheButtonAndTheButtonMapsBackToTheAnswer)
{
    // For every answer code of the user channel: made the default, Return presses
    // that button, and the button pressed maps back to the same code.
    const int focusOf[] = {0, YesNoCancelAll::kYesCtrlId, YesNoCancelAll::kYesToAllCtrlId, YesNoCancelAll::kNoCtrlId,
                           YesNoCancelAll::kNoToAllCtrlId, YesNoCancelAll::kCancelCtrlId};
    for (int answer = 1; answer <= 5; ++answer) {
        YesNoCancelAll dialog("Overwrite?", "details", "Export", YesNoCancelAll::ButtonOfAnswer(answer), nullptr);
        WhenModal([&](QWidget* box) {
            EXPECT_EQ(FocusedId(box), focusOf[answer]) << "answer " << answer;
            Press(box, Qt::Key_Return);
        });
        const YesNoCancelAll::ButtonPressed pressed = dialog.DoModal();
        EXPECT_EQ(YesNoCancelAll::AnswerOfButton(pressed), answer);
        EXPECT_EQ(pressed, dialog.GetButtonPressed());
    }
    // The mapping's fallbacks, both ways.
    for (int outside : {0, 6})
        EXPECT_EQ(YesNoCancelAll::ButtonOfAnswer(outside), YesNoCancelAll::eNone);
    EXPECT_EQ(YesNoCancelAll::AnswerOfButton(YesNoCancelAll::eNone), 5);
    EXPECT_EQ(YesNoCancelAll::AnswerOfButton(-1), 5);
}

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
    WhenModal([&](QWidget* box) { Click(box, YesNoCancelAll::kNoToAllCtrlId); });
    EXPECT_EQ(dialog.DoModal(), YesNoCancelAll::eNoToAll);
    WhenModal([&](QWidget* box) { box->close(); });
    EXPECT_EQ(dialog.DoModal(), YesNoCancelAll::eCancel);
    EXPECT_EQ(dialog.GetButtonPressed(), YesNoCancelAll::eCancel);
}

TEST_F(MessageDialogTest, DoModalReplacesOnlyWhatItIsGiven)
{
    YesNoCancelAll dialog("First question?", "line 1\nline 2", "First title", YesNoCancelAll::eNo, nullptr);
    QStringList shown;
    const auto capture = [&](QWidget* box) {
        shown = Texts(box, YesNoCancelAll::kQuestionCtrlId, YesNoCancelAll::kDetailsCtrlId);
        Press(box, Qt::Key_Return);
    };
    // Details are shown in two lines, with no stray carriage return.
    WhenModal(capture);
    EXPECT_EQ(dialog.DoModal(), YesNoCancelAll::eNo);
    EXPECT_EQ(shown, (QStringList{"First question?", "line 1\nline 2", "First title"}));
    WhenModal(capture);
    EXPECT_EQ(dialog.DoModal("Second question?", nullptr, nullptr, YesNoCancelAll::eNone), YesNoCancelAll::eNo)
        << "eNone keeps the constructor's default";
    EXPECT_EQ(shown, (QStringList{"Second question?", "line 1\nline 2", "First title"}));
    WhenModal(capture);
    EXPECT_EQ(dialog.DoModal(nullptr, "other", "Second title", YesNoCancelAll::eYesToAll), YesNoCancelAll::eYesToAll);
    EXPECT_EQ(shown, (QStringList{"Second question?", "other", "Second title"}));
}

TEST_F(MessageDialogTest, YesNoToAllInBothSenses)
{
    const struct { bool invert; int first, toAll, opposite; unsigned int captions; } senses[] = {
        {false, YesNoToAll::eYes, YesNoToAll::eYesToAll, YesNoToAll::eNo, 13346},
        {true, YesNoToAll::eNo, YesNoToAll::eNoToAll, YesNoToAll::eYes, 13343},
    };
    EXPECT_STREQ(LanguageString::Get(13346), "Yes to &all");
    EXPECT_STREQ(LanguageString::Get(13343), "No to &all");
    for (const auto& sense : senses) {
        SCOPED_TRACE(sense.invert ? "inverted" : "plain");
        const std::pair<int, int> buttons[] = {{YesNoToAll::kFirstCtrlId, sense.first},
                                               {YesNoToAll::kToAllCtrlId, sense.toAll},
                                               {YesNoToAll::kOppositeCtrlId, sense.opposite}};
        for (const auto& [ctrlId, result] : buttons) {
            YesNoToAll dialog(nullptr, sense.invert);
            WhenModal([&, ctrlId = ctrlId](QWidget* box) {
                QStringList captions;
                for (int id : {YesNoToAll::kToAllCtrlId, YesNoToAll::kOppositeCtrlId, YesNoToAll::kFirstCtrlId})
                    captions << Button(box, id)->text();
                EXPECT_EQ(captions, (QStringList{LanguageString::Get(sense.captions),
                                                 LanguageString::Get(sense.captions + 1),
                                                 LanguageString::Get(sense.captions + 2)}));
                EXPECT_EQ(Control<QLabel>(box, YesNoToAll::kTextCtrlId)->text(), QStringLiteral("Skip data.csv?"));
                Click(box, ctrlId);
            });
            EXPECT_EQ(dialog.NewDoModal("Skip data.csv?", "Copy"), result) << "button " << ctrlId;
        }
        // Return answers with the first button; Escape with IDCANCEL.
        for (const auto& [key, result] : {std::pair{Qt::Key_Return, sense.first}, {Qt::Key_Escape, IDCANCEL}}) {
            YesNoToAll dialog(nullptr, sense.invert);
            WhenModal([key = key](QWidget* box) { Press(box, key); });
            EXPECT_EQ(dialog.NewDoModal("Skip?", nullptr), result);
        }
    }
}

TEST_F(MessageDialogTest, YesYesToAllCancelAnswersAndCaption)
{
    const std::pair<int, int> cases[] = {{YesYesToAllCancelDialog::kYesCtrlId, YesYesToAllCancelDialog::eYes},
                                         {YesYesToAllCancelDialog::kYesToAllCtrlId, YesYesToAllCancelDialog::eYesToAll},
                                         {YesYesToAllCancelDialog::kCancelCtrlId, IDCANCEL}};
    QString caption;
    const auto answer = [&](int ctrlId) {
        WhenModal([&caption, ctrlId](QWidget* box) {
            caption = Button(box, YesYesToAllCancelDialog::kYesToAllCtrlId)->text();
            if (ctrlId)
                Click(box, ctrlId);
            else
                Press(box, Qt::Key_Escape);
        });
    };
    for (const auto& [ctrlId, result] : cases) {
        YesYesToAllCancelDialog dialog;
        answer(ctrlId);
        EXPECT_EQ(dialog.NewDoModal("Convert sample 1 of 40?", "Convert", "Convert &all"), result);
        EXPECT_EQ(caption, QStringLiteral("Convert &all"));
    }
    YesYesToAllCancelDialog standard;
    answer(0);
    EXPECT_EQ(standard.NewDoModal("Convert?", nullptr, ""), IDCANCEL);
    EXPECT_EQ(caption, QStringLiteral("Yes to &All"));
}

TEST_F(MessageDialogTest, YesNoDialogDefaultsToNoUnlessTheDefaultIsYes)
{
    for (const auto& [defaultAnswer, result] : {std::pair{1, IDOK}, {3, IDCANCEL}, {0, IDCANCEL}}) {
        YesNoDialog dialog("Stop the computation?", "Model 4 of 9\nIteration 120", "Stop", defaultAnswer, nullptr);
        QStringList shown;
        WhenModal([&](QWidget* box) {
            shown = Texts(box, YesNoDialog::kQuestionCtrlId, YesNoDialog::kDetailsCtrlId);
            Press(box, Qt::Key_Return);
        });
        EXPECT_EQ(dialog.exec(), result) << "default " << defaultAnswer;
        EXPECT_EQ(shown, (QStringList{"Stop the computation?", "Model 4 of 9\nIteration 120", "Stop"}));
    }
    YesNoDialog dialog("Stop?", "", nullptr, 1, nullptr);
    WhenModal([&](QWidget* box) { Press(box, Qt::Key_Escape); });
    EXPECT_EQ(dialog.exec(), IDCANCEL);
    WhenModal([&](QWidget* box) { Click(box, YesNoDialog::kYesCtrlId); });
    EXPECT_EQ(dialog.exec(), IDOK);
}
