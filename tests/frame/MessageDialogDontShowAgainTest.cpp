// Remembered answers: the box with the "do not show again" check box, the
// information dialog with its stored button, and the details dialog's flag.

#include "../utl/MemorySection.h"
#include "MdiFrameTestSupport.h"

#include <KORVAutlwin/frame/DetailsDialog.h>
#include <KORVAutlwin/frame/InfoDialog.h>
#include <KORVAutlwin/frame/TsMessageBox.h>

using namespace korva::test;

namespace {

constexpr int kBoxCheck = CustomMessageBoxDlg::kCheckBoxCtrlId;
constexpr int kEscape = 0;

// Answers the next dialog: ticks its check box `checkBoxId` (0: none), then
// clicks `buttonId` (kEscape: presses Escape).
void CheckAnd(int checkBoxId, int buttonId)
{
    WhenModal(buttonId != kEscape ? ClickOn(buttonId, checkBoxId) : [checkBoxId](QWidget* dialog) {
        Click(dialog, checkBoxId);
        Press(dialog, Qt::Key_Escape);
    });
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
}

TEST_F(MessageDialogTest, CheckedAnswerIsRememberedButNeverCancel)
{
    const char* key = "SaveBeforeClosing";
    const auto ask = [key] { return TsDontShowAgainMessageBox(key, "Save?", MB_YESNOCANCEL, "&Save", "&Discard"); };
    // Checked, then Cancel or Escape: nothing stored; unchecked, an answer is not stored either.
    Shown shown;
    Answer(shown, ClickOn(IDCANCEL, kBoxCheck));
    EXPECT_EQ(ask(), IDCANCEL);
    EXPECT_EQ(shown.texts[IDYES], "&Save");
    CheckAnd(kBoxCheck, kEscape);
    EXPECT_EQ(ask(), IDCANCEL);
    CheckAnd(0, IDYES);
    EXPECT_EQ(ask(), IDYES);
    EXPECT_EQ(Stored(key), "");

    // Checked and No: stored in the application's profile, and the next call is answered by it.
    CheckAnd(kBoxCheck, IDNO);
    EXPECT_EQ(ask(), IDNO);
    EXPECT_EQ(std::tuple(Stored(key), ShowDontShowAgainMessage(key)), std::tuple("7", false));
}

TEST_F(MessageDialogTest, RememberedAnswerInAGivenSection)
{
    MemorySection section;
    CheckAnd(kBoxCheck, IDNO);
    EXPECT_EQ(TsDontShowAgainMessageBox(&section, "Purge", "Purge the log?", MB_YESNO), IDNO);
    int stored = 0;
    EXPECT_TRUE(section.ReadInt("Purge", stored) && stored == IDNO);
    EXPECT_EQ(Stored("Purge"), "") << "the profile is not touched";
    DialogSpy spy;
    EXPECT_EQ(TsDontShowAgainMessageBox(&section, "Purge", "Purge the log?", MB_YESNO), IDNO);
    EXPECT_EQ(spy.Count(), 0);
}

TEST_F(MessageDialogTest, InfoDialogRemembersTheCheckedButtonAndForgetsItWhenUnchecked)
{
    const char* key = "NewFeatures";
    EXPECT_TRUE(InfoDialog::WillShow("") && InfoDialog::WillShow(key));
    const auto run = [key](int buttons, InfoDialog::Buttons defaultButton = InfoDialog::eOK) {
        InfoDialog dialog("Version 7 reads the new file format.");
        dialog.EnableDontShowAgain(key);
        dialog.SetButtons(buttons, defaultButton);
        return dialog.DoModal();
    };
    constexpr int kCheck = InfoDialog::kCheckBoxCtrlId;

    // Checked and Yes: stored as the button's bit.
    CheckAnd(kCheck, IDYES);
    EXPECT_EQ(run(InfoDialog::eYes | InfoDialog::eNo, InfoDialog::eYes), IDYES);
    EXPECT_EQ(std::tuple(Stored(key), InfoDialog::WillShow(key)), std::tuple("8", false));

    // Each stored button stands for its answer; Close and Cancel for IDCANCEL.
    for (const auto& [stored, answer] : {std::pair{1, IDCANCEL}, {2, IDOK}, {4, IDCANCEL}, {8, IDYES}, {16, IDNO}}) {
        mApp->WriteProfileInt("DontShowAgainMessages", key, stored);
        DialogSpy spy;
        EXPECT_EQ(run(InfoDialog::eOK), answer) << stored;
        EXPECT_EQ(spy.Count(), 0);
    }

    // Not a button (3): shown. Unchecked OK writes 0, which takes a former choice back.
    mApp->WriteProfileInt("DontShowAgainMessages", key, 3);
    EXPECT_TRUE(InfoDialog::WillShow(key));
    CheckAnd(0, IDOK);
    EXPECT_EQ(run(InfoDialog::eOK), IDOK);
    EXPECT_EQ(Stored(key), "0");

    // Escape is no button: nothing is written, even with the box checked.
    CheckAnd(kCheck, kEscape);
    EXPECT_EQ(run(InfoDialog::eOK | InfoDialog::eClose), IDCANCEL);
    EXPECT_EQ(Stored(key), "0");

}

TEST_F(MessageDialogTest, DetailsDialogDontShowAgainWritesOneOnCheckedOk)
{
    const char* key = "ImportFailures";
    const auto show = [key] { DetailsDialogDontShowAgain(key, "2 files could not be imported.", "a.csv", "Import"); };
    CheckAnd(DetailsDialogClass::kCheckBoxCtrlId, kEscape);
    show();
    EXPECT_EQ(Stored(key), "") << "checked but closed with Escape: not remembered";
    CheckAnd(DetailsDialogClass::kCheckBoxCtrlId, IDOK);
    show();
    EXPECT_EQ(Stored(key), "1");
    DialogSpy spy;
    show();
    EXPECT_EQ(spy.Count(), 0);
}
