// Remembered answers: the box with the "do not show again" check box, the
// information dialog with its stored button, and the details dialog's flag.

#include "../utl/MemorySection.h"
#include "MessageDialogTestSupport.h"

#include <KORVAutlwin/frame/CustomMessageBoxDlg.h>
#include <KORVAutlwin/frame/DetailsDialog.h>
#include <KORVAutlwin/frame/InfoDialog.h>
#include <KORVAutlwin/frame/TsMessageBox.h>

#include <QCheckBox>
#include <QPlainTextEdit>

#include <gtest/gtest.h>

using namespace korva::test;

namespace {

void CheckAndClick(QWidget* dialog, int checkBoxId, int buttonId)
{
    QTest::mouseClick(Control<QCheckBox>(dialog, checkBoxId), Qt::LeftButton);
    Click(dialog, buttonId);
}

} // namespace

TEST_F(MessageDialogTest, StoredAnswerStandsInForTheUser)
{
    EXPECT_TRUE(ShowDontShowAgainMessage("OverwriteFile"));
    ASSERT_TRUE(mApp->WriteProfileInt("DontShowAgainMessages", "OverwriteFile", IDYES));
    EXPECT_FALSE(ShowDontShowAgainMessage("OverwriteFile"));

    DialogSpy spy;
    EXPECT_EQ(TsDontShowAgainMessageBox("OverwriteFile", "Overwrite the file?", MB_YESNO), IDYES);
    EXPECT_EQ(spy.Count(), 0);

    // -1 means ask, as a missing value does.
    ASSERT_TRUE(mApp->WriteProfileInt("DontShowAgainMessages", "OverwriteFile", -1));
    EXPECT_TRUE(ShowDontShowAgainMessage("OverwriteFile"));
    EXPECT_EQ(TsDontShowAgainMessageBox("OverwriteFile", "Overwrite the file?", MB_YESNO), IDCANCEL);
    EXPECT_EQ(spy.Count(), 1) << "asked again";
}

TEST_F(MessageDialogTest, CheckedAnswerIsRememberedButNeverCancel)
{
    const char* key = "SaveBeforeClosing";
    const auto ask = [key] { return TsDontShowAgainMessageBox(key, "Save the project?", MB_YESNOCANCEL, "&Save", "&Discard"); };

    // Checked, then Cancel: nothing stored.
    QString yes;
    Answering(
        [&](QWidget* dialog) {
            yes = Button(dialog, IDYES)->text();
            EXPECT_FALSE(Control<QCheckBox>(dialog, CustomMessageBoxDlg::kCheckBoxCtrlId)->isChecked());
            CheckAndClick(dialog, CustomMessageBoxDlg::kCheckBoxCtrlId, IDCANCEL);
        },
        [&] { EXPECT_EQ(ask(), IDCANCEL); });
    EXPECT_EQ(yes, QStringLiteral("&Save"));
    EXPECT_EQ(Stored(key), "");

    // Escape with the box checked is a Cancel too.
    Answering(
        [&](QWidget* dialog) {
            QTest::mouseClick(Control<QCheckBox>(dialog, CustomMessageBoxDlg::kCheckBoxCtrlId), Qt::LeftButton);
            Press(dialog, Qt::Key_Escape);
        },
        [&] { EXPECT_EQ(ask(), IDCANCEL); });
    EXPECT_EQ(Stored(key), "");

    // Not checked: answered, not stored.
    Answering([&](QWidget* dialog) { Click(dialog, IDYES); }, [&] { EXPECT_EQ(ask(), IDYES); });
    EXPECT_EQ(Stored(key), "");

    // Checked and No: stored in the application's profile, and the next call is answered by it.
    Answering([&](QWidget* dialog) { CheckAndClick(dialog, CustomMessageBoxDlg::kCheckBoxCtrlId, IDNO); },
              [&] { EXPECT_EQ(ask(), IDNO); });
    EXPECT_EQ(Stored(key), "7");
    DialogSpy spy;
    EXPECT_EQ(ask(), IDNO);
    EXPECT_EQ(spy.Count(), 0);
}

TEST_F(MessageDialogTest, RememberedAnswerWithoutApplicationObjectUsesTheRegistryBranch)
{
    mApp.reset();
    const std::string branch = std::string(GetRegistryBaseKeyName()) + "\\DontShowAgainMessages";
    Answering([&](QWidget* dialog) { CheckAndClick(dialog, CustomMessageBoxDlg::kCheckBoxCtrlId, IDOK); },
              [&] { EXPECT_EQ(TsDontShowAgainMessageBox("Exported", "The data were exported."), IDOK); });
    EXPECT_EQ(TsGetRegKey(HKEY_CURRENT_USER, branch.c_str(), "Exported", ""), "1");
    EXPECT_FALSE(ShowDontShowAgainMessage("Exported"));
}

TEST_F(MessageDialogTest, RememberedAnswerInAGivenSection)
{
    MemorySection section;
    Answering([&](QWidget* dialog) { CheckAndClick(dialog, CustomMessageBoxDlg::kCheckBoxCtrlId, IDNO); },
              [&] { EXPECT_EQ(TsDontShowAgainMessageBox(&section, "Purge", "Purge the log?", MB_YESNO), IDNO); });
    int stored = 0;
    ASSERT_TRUE(section.ReadInt("Purge", stored));
    EXPECT_EQ(stored, IDNO);
    EXPECT_EQ(Stored("Purge"), "") << "the profile is not touched";

    DialogSpy spy;
    EXPECT_EQ(TsDontShowAgainMessageBox(&section, "Purge", "Purge the log?", MB_YESNO), IDNO);
    EXPECT_EQ(spy.Count(), 0);
}

TEST_F(MessageDialogTest, InfoDialogButtonsStandFromRightToLeftAndAnswerById)
{
    InfoDialog dialog("The calibration was saved with 12 components.", "Calibration");
    dialog.SetButtons(InfoDialog::eYes | InfoDialog::eNo | InfoDialog::eCancel, InfoDialog::eNo);
    Ids shownIds;
    QStringList captions;
    QString title;
    bool noFocused = false;
    WhenModal([&](QWidget* box) {
        shownIds = VisibleButtonIds(box);
        for (int id : shownIds)
            captions << Button(box, id)->text();
        title = box->windowTitle();
        noFocused = box->focusWidget() == Button(box, IDNO);
        Press(box, Qt::Key_Return);
    });
    EXPECT_EQ(dialog.DoModal(), IDNO);
    EXPECT_EQ(shownIds, (Ids{IDYES, IDNO, IDCANCEL}));
    EXPECT_EQ(captions, (QStringList{"Yes", "No", "Cancel"}));
    EXPECT_EQ(title, QStringLiteral("Calibration"));
    EXPECT_TRUE(noFocused);
    EXPECT_EQ(dialog.findChildren<QCheckBox*>().size(), 0) << "no check box without a key";
}

TEST_F(MessageDialogTest, InfoDialogRemembersTheCheckedButtonAndForgetsItWhenUnchecked)
{
    const char* key = "NewFeatures";
    EXPECT_TRUE(InfoDialog::WillShow(""));
    EXPECT_TRUE(InfoDialog::WillShow(key));

    const auto run = [key](int buttons, InfoDialog::Buttons defaultButton) {
        InfoDialog dialog("Version 7 reads the new file format.");
        dialog.EnableDontShowAgain(key);
        dialog.SetButtons(buttons, defaultButton);
        return dialog.DoModal();
    };

    // Checked and Yes: stored as the button's bit, and answered from then on.
    Answering([&](QWidget* box) { CheckAndClick(box, InfoDialog::kCheckBoxCtrlId, IDYES); },
              [&] { EXPECT_EQ(run(InfoDialog::eYes | InfoDialog::eNo, InfoDialog::eYes), IDYES); });
    EXPECT_EQ(Stored(key), "8");
    EXPECT_FALSE(InfoDialog::WillShow(key));
    {
        DialogSpy spy;
        EXPECT_EQ(run(InfoDialog::eYes | InfoDialog::eNo, InfoDialog::eYes), IDYES);
        EXPECT_EQ(spy.Count(), 0);
    }

    // Each stored button stands for its answer; Close and Cancel for IDCANCEL.
    const struct
    {
        int stored;
        int answer;
    } choices[] = {{1, IDCANCEL}, {2, IDOK}, {4, IDCANCEL}, {8, IDYES}, {16, IDNO}};
    for (const auto& choice : choices) {
        mApp->WriteProfileInt("DontShowAgainMessages", key, choice.stored);
        DialogSpy spy;
        EXPECT_EQ(run(InfoDialog::eOK, InfoDialog::eOK), choice.answer) << choice.stored;
        EXPECT_EQ(spy.Count(), 0);
    }

    // Not a button (3): shown. Unchecked OK writes 0, which takes a former choice back.
    mApp->WriteProfileInt("DontShowAgainMessages", key, 3);
    EXPECT_TRUE(InfoDialog::WillShow(key));
    Answering([&](QWidget* box) { Click(box, IDOK); }, [&] { EXPECT_EQ(run(InfoDialog::eOK, InfoDialog::eOK), IDOK); });
    EXPECT_EQ(Stored(key), "0");

    // Escape is no button: nothing is written, even with the box checked.
    mApp->WriteProfileInt("DontShowAgainMessages", key, 0);
    Answering(
        [&](QWidget* box) {
            QTest::mouseClick(Control<QCheckBox>(box, InfoDialog::kCheckBoxCtrlId), Qt::LeftButton);
            Press(box, Qt::Key_Escape);
        },
        [&] { EXPECT_EQ(run(InfoDialog::eOK | InfoDialog::eClose, InfoDialog::eOK), IDCANCEL); });
    EXPECT_EQ(Stored(key), "0");

    // Close is stored as 1 and answers IDCANCEL.
    Answering([&](QWidget* box) { CheckAndClick(box, InfoDialog::kCheckBoxCtrlId, IDCLOSE); },
              [&] { EXPECT_EQ(run(InfoDialog::eOK | InfoDialog::eClose, InfoDialog::eOK), IDCANCEL); });
    EXPECT_EQ(Stored(key), "1");
}

TEST_F(MessageDialogTest, InfoDialogShowsPlainTextAsItStands)
{
    const std::string text = "<b>not bold</b>\nsecond line";
    InfoDialog dialog(text.c_str(), InfoDialog::ePlainText);
    QString shown;
    Answering(
        [&](QWidget* box) {
            shown = Control<QPlainTextEdit>(box, InfoDialog::kTextCtrlId)->toPlainText();
            Click(box, IDOK);
        },
        [&] { EXPECT_EQ(dialog.DoModal(), IDOK); });
    EXPECT_EQ(shown.toStdString(), text);
}

TEST_F(MessageDialogTest, DetailsDialogDontShowAgainWritesOneOnCheckedOk)
{
    const char* key = "ImportFailures";
    // Checked but closed with Escape: not remembered.
    Answering(
        [&](QWidget* box) {
            QTest::mouseClick(Control<QCheckBox>(box, DetailsDialogClass::kCheckBoxCtrlId), Qt::LeftButton);
            Press(box, Qt::Key_Escape);
        },
        [&] { DetailsDialogDontShowAgain(key, "2 files could not be imported.", "a.csv: locked\nb.csv: empty", "Import"); });
    EXPECT_EQ(Stored(key), "");

    Answering([&](QWidget* box) { CheckAndClick(box, DetailsDialogClass::kCheckBoxCtrlId, IDOK); },
              [&] { DetailsDialogDontShowAgain(key, "2 files could not be imported.", "a.csv: locked", "Import"); });
    EXPECT_EQ(Stored(key), "1");

    DialogSpy spy;
    DetailsDialogDontShowAgain(key, "2 files could not be imported.", "a.csv: locked", "Import");
    EXPECT_EQ(spy.Count(), 0);
}
