// The details dialog: details on demand, and the switch that mutes it.

#include "MessageDialogTestSupport.h"

#include <KORVAutlwin/frame/DetailsDialog.h>
#include <KORVAutlwin/frame/MuteDetailsDialog.h>

#include <KORVAutl/LanguageString.h>

#include <QCheckBox>
#include <QLabel>
#include <QLayout>
#include <QPlainTextEdit>

#include <gtest/gtest.h>

using namespace korva::test;

TEST_F(MessageDialogTest, DetailsButtonOpensAndClosesTheDetailsBelowTheButtons)
{
    bool hiddenAtStart = false, shownAfterClick = false, hiddenAgain = false, belowButtons = false, grew = false;
    QString text, details, caption;
    WhenModal([&](QWidget* box) {
        auto* detailsControl = Control<QPlainTextEdit>(box, DetailsDialogClass::kDetailsCtrlId);
        hiddenAtStart = !detailsControl->isVisible();
        text = Control<QLabel>(box, DetailsDialogClass::kTextCtrlId)->text();
        details = detailsControl->toPlainText();
        caption = Button(box, DetailsDialogClass::kDetailsButtonCtrlId)->text();
        const int heightBefore = box->height();
        Click(box, DetailsDialogClass::kDetailsButtonCtrlId);
        shownAfterClick = detailsControl->isVisible();
        grew = box->height() > heightBefore;
        box->layout()->activate();
        belowButtons = detailsControl->y() > Button(box, IDOK)->mapTo(box, QPoint()).y();
        Click(box, DetailsDialogClass::kDetailsButtonCtrlId);
        hiddenAgain = !detailsControl->isVisible();
        Click(box, IDOK);
    });
    DetailsDialog("2 of 5 files could not be opened.", "a.csv: locked\nb.csv: missing", "Open", MB_ICONERROR);
    EXPECT_TRUE(hiddenAtStart);
    EXPECT_TRUE(shownAfterClick);
    EXPECT_TRUE(grew);
    EXPECT_TRUE(belowButtons);
    EXPECT_TRUE(hiddenAgain);
    EXPECT_EQ(text, QStringLiteral("2 of 5 files could not be opened."));
    EXPECT_EQ(details, QStringLiteral("a.csv: locked\nb.csv: missing"));
    EXPECT_EQ(caption, QString::fromUtf8(LanguageString::Get(13181)));

    // Opened from the start when asked; without details there is no details button.
    bool openAtStart = false;
    WhenModal([&](QWidget* box) {
        openAtStart = Control<QPlainTextEdit>(box, DetailsDialogClass::kDetailsCtrlId)->isVisible();
        Press(box, Qt::Key_Return);
    });
    DetailsDialog(nullptr, "Text", "Details", "Title", MB_ICONASTERISK, true);
    EXPECT_TRUE(openAtStart);

    bool buttonShown = true, checkBox = true;
    WhenModal([&](QWidget* box) {
        buttonShown = Button(box, DetailsDialogClass::kDetailsButtonCtrlId)->isVisible();
        checkBox = box->findChild<QCheckBox*>() != nullptr;
        Press(box, Qt::Key_Escape);
    });
    DetailsDialog("Nothing more to say.", "Title", MB_ICONASTERISK, true);
    EXPECT_FALSE(buttonShown);
    EXPECT_FALSE(checkBox) << "a check box only with a key";
}

TEST_F(MessageDialogTest, MutedDetailsDialogsCollectInsteadOfShowing)
{
    MuteDetailsDialog* mute = MuteDetailsDialog::Instance();
    ASSERT_EQ(mute, MuteDetailsDialog::Instance());
    EXPECT_FALSE(mute->IsMuted()) << "starts unmuted";
    mute->Mute(true);
    {
        DialogSpy spy;
        DetailsDialog("Three samples were skipped.", "s1\ns2\ns3", "Import", MB_ICONEXCLAMATION);
        DetailsDialog("Done.", "Export");
        DetailsDialogDontShowAgain("Skipped", "Skipped again.", "s4", "Import");
        EXPECT_EQ(spy.Count(), 0);
    }
    ASSERT_EQ(mute->GetMessages().size(), 3u);
    EXPECT_EQ(mute->GetMessages()[0].text, "Three samples were skipped.");
    EXPECT_EQ(mute->GetMessages()[0].details, "s1\ns2\ns3");
    EXPECT_EQ(mute->GetMessages()[0].nType, static_cast<unsigned int>(MB_ICONEXCLAMATION));
    EXPECT_EQ(mute->GetMessages()[1].details, "");
    EXPECT_EQ(Stored("Skipped"), "") << "muted, nobody checked anything";

    // Unmuted, the dialogs show again and nothing more is collected.
    mute->Mute(false);
    mute->Clear();
    DialogSpy spy;
    DetailsDialog("Done.", "Export");
    EXPECT_EQ(spy.Count(), 1);
    EXPECT_TRUE(mute->GetMessages().empty());
}
