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

void Check(QWidget* dialog, int checkBoxId)
{
    QTest::mouseClick(Control<QCheckBox>(dialog, checkBoxId), Qt::LeftButton);
}

// Answers the next dialog: ticks its check box `checkBoxId` (0: none), then clicks `buttonId`.
void CheckAndClick(int checkBoxId, int buttonId)
{
    WhenModal([=](QWidget* dialog) {
        if (checkBoxId)
            Check(dialog, checkBoxId);
        Click(dialog, buttonId);
    });
}

void CheckAndEscape(int checkBoxId)
{
    WhenModal([=](QWidget* dialog) {
        Check(dialog, checkBoxId);
        Press(dialog, Qt::Key_Escape);
    });
}

constexpr int kBoxCheck = CustomMessageBoxDlg::kCheckBoxCtrlId;

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
    bool checkedAtStart = true;
    WhenModal([&](QWidget* dialog) {
        yes = Button(dialog, IDYES)->text();
        checkedAtStart = Control<QCheckBox>(dialog, kBoxCheck)->isChecked();
        Check(dialog, kBoxCheck);
        Click(dialog, IDCANCEL);
    });
    EXPECT_EQ(ask(), IDCANCEL);
    EXPECT_EQ(yes, QStringLiteral("&Save"));
    EXPECT_FALSE(checkedAtStart);
    EXPECT_EQ(Stored(key), "");

    // Escape with the box checked is a Cancel too; unchecked, an answer is not stored.
    CheckAndEscape(kBoxCheck);
    EXPECT_EQ(ask(), IDCANCEL);
    CheckAndClick(0, IDYES);
    EXPECT_EQ(ask(), IDYES);
    EXPECT_EQ(Stored(key), "");

    // Checked and No: stored in the application's profile, and the next call is answered by it.
    CheckAndClick(kBoxCheck, IDNO);
    EXPECT_EQ(ask(), IDNO);
    EXPECT_EQ(Stored(key), "7");
    EXPECT_FALSE(ShowDontShowAgainMessage(key));
}

TEST_F(MessageDialogTest, RememberedAnswerWithoutApplicationObjectUsesTheRegistryBranch)
{
    mApp.reset();
    const std::string branch = std::string(GetRegistryBaseKeyName()) + "\\DontShowAgainMessages";
    CheckAndClick(kBoxCheck, IDOK);
    EXPECT_EQ(TsDontShowAgainMessageBox("Exported", "The data were exported."), IDOK);
    EXPECT_EQ(TsGetRegKey(HKEY_CURRENT_USER, branch.c_str(), "Exported", ""), "1");
    EXPECT_FALSE(ShowDontShowAgainMessage("Exported"));
}

TEST_F(MessageDialogTest, RememberedAnswerInAGivenSection)
{
    MemorySection section;
    CheckAndClick(kBoxCheck, IDNO);
    EXPECT_EQ(TsDontShowAgainMessageBox(&section, "Purge", "Purge the log?", MB_YESNO), IDNO);
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
    bool noFocused = false;
    WhenModal([&](QWidget* box) {
        shownIds = VisibleButtonIds(box);
        noFocused = box->focusWidget() == Button(box, IDNO);
        Press(box, Qt::Key_Return);
    });
    EXPECT_EQ(dialog.DoModal(), IDNO);
    EXPECT_EQ(shownIds, (Ids{IDYES, IDNO, IDCANCEL}));
    EXPECT_TRUE(noFocused);
    EXPECT_EQ(dialog.findChildren<QCheckBox*>().size(), 0) << "no check box without a key";
}

TEST_F(MessageDialogTest, InfoDialogRemembersTheCheckedButtonAndForgetsItWhenUnchecked)
{
    const char* key = "NewFeatures";
    EXPECT_TRUE(InfoDialog::WillShow(""));
    EXPECT_TRUE(InfoDialog::WillShow(key));
    const auto run = [key](int buttons, InfoDialog::Buttons defaultButton = InfoDialog::eOK) {
        InfoDialog dialog("Version 7 reads the new file format.");
        dialog.EnableDontShowAgain(key);
        dialog.SetButtons(buttons, defaultButton);
        return dialog.DoModal();
    };
    constexpr int kCheck = InfoDialog::kCheckBoxCtrlId;

    // Checked and Yes: stored as the button's bit.
    CheckAndClick(kCheck, IDYES);
    EXPECT_EQ(run(InfoDialog::eYes | InfoDialog::eNo, InfoDialog::eYes), IDYES);
    EXPECT_EQ(Stored(key), "8");
    EXPECT_FALSE(InfoDialog::WillShow(key));

    // Each stored button stands for its answer; Close and Cancel for IDCANCEL.
    const struct
    {
        int stored;
        int answer;
    } choices[] = {{1, IDCANCEL}, {2, IDOK}, {4, IDCANCEL}, {8, IDYES}, {16, IDNO}};
    for (const auto& choice : choices) {
        mApp->WriteProfileInt("DontShowAgainMessages", key, choice.stored);
        DialogSpy spy;
        EXPECT_EQ(run(InfoDialog::eOK), choice.answer) << choice.stored;
        EXPECT_EQ(spy.Count(), 0);
    }

    // Not a button (3): shown. Unchecked OK writes 0, which takes a former choice back.
    mApp->WriteProfileInt("DontShowAgainMessages", key, 3);
    EXPECT_TRUE(InfoDialog::WillShow(key));
    CheckAndClick(0, IDOK);
    EXPECT_EQ(run(InfoDialog::eOK), IDOK);
    EXPECT_EQ(Stored(key), "0");

    // Escape is no button: nothing is written, even with the box checked.
    CheckAndEscape(kCheck);
    EXPECT_EQ(run(InfoDialog::eOK | InfoDialog::eClose), IDCANCEL);
    EXPECT_EQ(Stored(key), "0");

    // Close is stored as 1 and answers IDCANCEL.
    CheckAndClick(kCheck, IDCLOSE);
    EXPECT_EQ(run(InfoDialog::eOK | InfoDialog::eClose), IDCANCEL);
    EXPECT_EQ(Stored(key), "1");
}

TEST_F(MessageDialogTest, InfoDialogShowsPlainTextAsItStands)
{
    const std::string text = "<b>not bold</b>\nsecond line";
    InfoDialog dialog(text.c_str(), InfoDialog::ePlainText);
    QString shown;
    WhenModal([&](QWidget* box) {
        shown = Control<QPlainTextEdit>(box, InfoDialog::kTextCtrlId)->toPlainText();
        Click(box, IDOK);
    });
    EXPECT_EQ(dialog.DoModal(), IDOK);
    EXPECT_EQ(shown.toStdString(), text);
}

TEST_F(MessageDialogTest, DetailsDialogDontShowAgainWritesOneOnCheckedOk)
{
    const char* key = "ImportFailures";
    const auto show = [key] { DetailsDialogDontShowAgain(key, "2 files could not be imported.", "a.csv: locked", "Import"); };
    // Checked but closed with Escape: not remembered.
    CheckAndEscape(DetailsDialogClass::kCheckBoxCtrlId);
    show();
    EXPECT_EQ(Stored(key), "");

    CheckAndClick(DetailsDialogClass::kCheckBoxCtrlId, IDOK);
    show();
    EXPECT_EQ(Stored(key), "1");
    DialogSpy spy;
    show();
    EXPECT_EQ(spy.Count(), 0);
}
