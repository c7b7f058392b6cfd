// The question dialogs: yes/no with details, the five-button "to all"
// question, and the two three-button "to all" questions.

#include "MessageDialogTestSupport.h"

#include <KORVAutlwin/frame/MessageBoxTypes.h>
#include <KORVAutlwin/frame/YesNoCancelAll.h>
#include <KORVAutlwin/frame/YesNoDialog.h>
#include <KORVAutlwin/frame/YesNoToAll.h>
#include <KORVAutlwin/frame/YesYesToAllCancelDialog.h>

#include <KORVAutl/LanguageString.h>

#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>

#include <gtest/gtest.h>

using namespace korva::test;

namespace {

using Pressed = YesNoCancelAll::ButtonPressed;

const int kYes = YesNoCancelAll::kYesCtrlId;
const int kYesToAll = YesNoCancelAll::kYesToAllCtrlId;
const int kNo = YesNoCancelAll::kNoCtrlId;
const int kNoToAll = YesNoCancelAll::kNoToAllCtrlId;
const int kCancel = YesNoCancelAll::kCancelCtrlId;

} // namespace

TEST_F(MessageDialogTest, DefaultAnswerPicksTheButtonAndTheButtonMapsBackToTheAnswer)
{
    // For every answer code of the user channel: made the default, Return presses
    // that button, and the button pressed maps back to the same code.
    for (int answer = 1; answer <= 5; ++answer) {
        YesNoCancelAll dialog("Overwrite results.csv?", "Written 2024-03-01\nby the batch run", "Export",
                              YesNoCancelAll::ButtonOfAnswer(answer), nullptr);
        int focused = 0;
        WhenModal([&](QWidget* box) {
            focused = box->focusWidget()->property("ctrlId").toInt();
            Press(box, Qt::Key_Return);
        });
        const Pressed pressed = dialog.DoModal();
        EXPECT_EQ(YesNoCancelAll::AnswerOfButton(pressed), answer);
        EXPECT_EQ(pressed, dialog.GetButtonPressed());
        const int expectedFocus[] = {0, kYes, kYesToAll, kNo, kNoToAll, kCancel};
        EXPECT_EQ(focused, expectedFocus[answer]) << "answer " << answer;
    }
    // The mapping's fallbacks, both ways.
    EXPECT_EQ(YesNoCancelAll::ButtonOfAnswer(0), YesNoCancelAll::eNone);
    EXPECT_EQ(YesNoCancelAll::ButtonOfAnswer(6), YesNoCancelAll::eNone);
    EXPECT_EQ(YesNoCancelAll::AnswerOfButton(YesNoCancelAll::eNone), 5);
    EXPECT_EQ(YesNoCancelAll::AnswerOfButton(-1), 5);
}

TEST_F(MessageDialogTest, FlagsChooseTheButtonsOfTheThreeQuestions)
{
    const struct
    {
        bool yesToAll, no, noToAll;
        Ids shown;
    } forms[] = {
        {true, true, true, {kYes, kYesToAll, kNo, kNoToAll, kCancel}},
        {true, false, false, {kYes, kYesToAll, kCancel}},
        {false, false, false, {kYes, kCancel}},
    };
    for (const auto& form : forms) {
        YesNoCancelAll dialog("Replace?", "details", "Copy", YesNoCancelAll::eYes, nullptr, true, form.yesToAll,
                              form.no, form.noToAll, true);
        Ids shown;
        WhenModal([&](QWidget* box) {
            shown = VisibleButtonIds(box);
            Click(box, kCancel);
        });
        EXPECT_EQ(dialog.DoModal(), YesNoCancelAll::eCancel);
        EXPECT_EQ(shown, form.shown);
    }
}

TEST_F(MessageDialogTest, WithoutDefaultReturnPressesNothingAndEscapeCancels)
{
    YesNoCancelAll dialog("Overwrite?", "old.csv", "Export", YesNoCancelAll::eNone, nullptr);
    int defaults = -1;
    bool openAfterReturn = false;
    WhenModal([&](QWidget* box) {
        defaults = 0;
        for (QPushButton* button : box->findChildren<QPushButton*>())
            defaults += button->isDefault() ? 1 : 0;
        Press(box, Qt::Key_Return);
        openAfterReturn = box->isVisible();
        Press(box, Qt::Key_Escape);
    });
    EXPECT_EQ(dialog.DoModal(), YesNoCancelAll::eCancel);
    EXPECT_EQ(defaults, 0);
    EXPECT_TRUE(openAfterReturn);

    // After a run that ended with a button, the next run starts as cancel again.
    WhenModal([&](QWidget* box) { Click(box, kNoToAll); });
    EXPECT_EQ(dialog.DoModal(), YesNoCancelAll::eNoToAll);
    WhenModal([&](QWidget* box) { box->close(); });
    EXPECT_EQ(dialog.DoModal(), YesNoCancelAll::eCancel);
    EXPECT_EQ(dialog.GetButtonPressed(), YesNoCancelAll::eCancel);
}

TEST_F(MessageDialogTest, DoModalReplacesOnlyWhatItIsGiven)
{
    YesNoCancelAll dialog("First question?", "line 1\nline 2", "First title", YesNoCancelAll::eNo, nullptr);
    QString question, details, title;
    const auto capture = [&](QWidget* box) {
        question = Control<QLabel>(box, YesNoCancelAll::kQuestionCtrlId)->text();
        details = Control<QPlainTextEdit>(box, YesNoCancelAll::kDetailsCtrlId)->toPlainText();
        title = box->windowTitle();
        Press(box, Qt::Key_Return);
    };
    WhenModal(capture);
    EXPECT_EQ(dialog.DoModal(), YesNoCancelAll::eNo);
    EXPECT_EQ(question, QStringLiteral("First question?"));
    EXPECT_EQ(details, QStringLiteral("line 1\nline 2"));   // two lines, no stray carriage return
    EXPECT_EQ(title, QStringLiteral("First title"));

    WhenModal(capture);
    EXPECT_EQ(dialog.DoModal("Second question?", nullptr, nullptr, YesNoCancelAll::eNone), YesNoCancelAll::eNo)
        << "eNone keeps the constructor's default";
    EXPECT_EQ(question, QStringLiteral("Second question?"));
    EXPECT_EQ(details, QStringLiteral("line 1\nline 2"));
    EXPECT_EQ(title, QStringLiteral("First title"));

    WhenModal(capture);
    EXPECT_EQ(dialog.DoModal(nullptr, "other", "Second title", YesNoCancelAll::eYesToAll), YesNoCancelAll::eYesToAll);
    EXPECT_EQ(question, QStringLiteral("Second question?"));
    EXPECT_EQ(details, QStringLiteral("other"));
    EXPECT_EQ(title, QStringLiteral("Second title"));
}

TEST_F(MessageDialogTest, YesNoToAllInBothSenses)
{
    const struct
    {
        bool invert;
        int first, toAll, opposite;
        unsigned int captions;
    } senses[] = {
        {false, YesNoToAll::eYes, YesNoToAll::eYesToAll, YesNoToAll::eNo, 13346},
        {true, YesNoToAll::eNo, YesNoToAll::eNoToAll, YesNoToAll::eYes, 13343},
    };
    for (const auto& sense : senses) {
        SCOPED_TRACE(sense.invert ? "inverted" : "plain");
        const std::pair<int, int> buttons[] = {{YesNoToAll::kFirstCtrlId, sense.first},
                                               {YesNoToAll::kToAllCtrlId, sense.toAll},
                                               {YesNoToAll::kOppositeCtrlId, sense.opposite}};
        QStringList captions;
        QString text;
        for (const auto& [ctrlId, result] : buttons) {
            YesNoToAll dialog(nullptr, sense.invert);
            WhenModal([&, ctrlId = ctrlId](QWidget* box) {
                captions.clear();
                for (int id : {YesNoToAll::kToAllCtrlId, YesNoToAll::kOppositeCtrlId, YesNoToAll::kFirstCtrlId})
                    captions << Button(box, id)->text();
                text = Control<QLabel>(box, YesNoToAll::kTextCtrlId)->text();
                Click(box, ctrlId);
            });
            EXPECT_EQ(dialog.NewDoModal("Skip the locked file data.csv?", "Copy"), result) << "button " << ctrlId;
        }
        EXPECT_EQ(captions, (QStringList{LanguageString::Get(sense.captions), LanguageString::Get(sense.captions + 1),
                                         LanguageString::Get(sense.captions + 2)}));
        EXPECT_EQ(text, QStringLiteral("Skip the locked file data.csv?"));
        // Return answers with the first button; Escape with IDCANCEL.
        YesNoToAll dialog(nullptr, sense.invert);
        WhenModal([&](QWidget* box) { Press(box, Qt::Key_Return); });
        EXPECT_EQ(dialog.NewDoModal("Skip?", nullptr), sense.first);
        YesNoToAll escaped(nullptr, sense.invert);
        WhenModal([&](QWidget* box) { Press(box, Qt::Key_Escape); });
        EXPECT_EQ(escaped.NewDoModal("Skip?", nullptr), IDCANCEL);
    }
    // The captions say what the buttons do.
    EXPECT_STREQ(LanguageString::Get(13346), "Yes to &all");
    EXPECT_STREQ(LanguageString::Get(13343), "No to &all");
}

TEST_F(MessageDialogTest, YesYesToAllCancelAnswersAndCaption)
{
    const std::pair<int, int> cases[] = {{YesYesToAllCancelDialog::kYesCtrlId, YesYesToAllCancelDialog::eYes},
                                         {YesYesToAllCancelDialog::kYesToAllCtrlId, YesYesToAllCancelDialog::eYesToAll},
                                         {YesYesToAllCancelDialog::kCancelCtrlId, IDCANCEL}};
    QString caption;
    for (const auto& [ctrlId, result] : cases) {
        YesYesToAllCancelDialog dialog;
        WhenModal([&, ctrlId = ctrlId](QWidget* box) {
            caption = Button(box, YesYesToAllCancelDialog::kYesToAllCtrlId)->text();
            Click(box, ctrlId);
        });
        EXPECT_EQ(dialog.NewDoModal("Convert sample 1 of 40?", "Convert", "Convert &all"), result);
        EXPECT_EQ(caption, QStringLiteral("Convert &all"));
    }
    YesYesToAllCancelDialog standard;
    WhenModal([&](QWidget* box) {
        caption = Button(box, YesYesToAllCancelDialog::kYesToAllCtrlId)->text();
        Press(box, Qt::Key_Escape);
    });
    EXPECT_EQ(standard.NewDoModal("Convert?", nullptr, ""), IDCANCEL);
    EXPECT_EQ(caption, QStringLiteral("Yes to &All"));
}

TEST_F(MessageDialogTest, YesNoDialogDefaultsToNoUnlessTheDefaultIsYes)
{
    for (const auto& [defaultAnswer, result] : {std::pair{1, IDOK}, {3, IDCANCEL}, {0, IDCANCEL}}) {
        YesNoDialog dialog("Stop the computation?", "Model 4 of 9\nIteration 120", "Stop", defaultAnswer, nullptr);
        QString question, details;
        WhenModal([&](QWidget* box) {
            question = Control<QLabel>(box, YesNoDialog::kQuestionCtrlId)->text();
            details = Control<QPlainTextEdit>(box, YesNoDialog::kDetailsCtrlId)->toPlainText();
            Press(box, Qt::Key_Return);
        });
        EXPECT_EQ(dialog.exec(), result) << "default " << defaultAnswer;
        EXPECT_EQ(question, QStringLiteral("Stop the computation?"));
        EXPECT_EQ(details, QStringLiteral("Model 4 of 9\nIteration 120"));
    }
    YesNoDialog dialog("Stop?", "", nullptr, 1, nullptr);
    WhenModal([&](QWidget* box) { Press(box, Qt::Key_Escape); });
    EXPECT_EQ(dialog.exec(), IDCANCEL);
    WhenModal([&](QWidget* box) { Click(box, YesNoDialog::kYesCtrlId); });
    EXPECT_EQ(dialog.exec(), IDOK);
}
