// The message box: buttons, icon, default button, Escape, wrapping, check box and captions; the line breaker; the
// switch that mutes the details dialog; the "to all" question without a default (button sets and defaults are checked
// through the user channel).

#include "MdiFrameTestSupport.h"

#include <KORVAutlwin/frame/DetailsDialog.h>
#include <KORVAutlwin/frame/LimitLineLength.h>
#include <KORVAutlwin/frame/MuteDetailsDialog.h>
#include <KORVAutlwin/frame/TsMessageBox.h>
#include <KORVAutlwin/frame/YesNoCancelAll.h>

using namespace korva::test;

TEST_F(MessageDialogTest, ButtonsAndIconFollowTheType)
{
    const struct { unsigned int type; Ids buttons; QStyle::StandardPixmap icon; } cases[] = {
        {MB_OK | MB_ICONHAND, {IDOK}, QStyle::SP_MessageBoxCritical},
        {MB_OKCANCEL | MB_ICONQUESTION, {IDOK, IDCANCEL}, QStyle::SP_MessageBoxQuestion},
        {MB_YESNOCANCEL | MB_ICONASTERISK, {IDYES, IDNO, IDCANCEL}, QStyle::SP_MessageBoxInformation},
        {MB_YESNO | MB_ICONEXCLAMATION, {IDYES, IDNO}, QStyle::SP_MessageBoxWarning},
        {MB_ABORTRETRYIGNORE, {IDABORT, IDRETRY, IDIGNORE}, QStyle::SP_MessageBoxWarning},   // no icon bits
        {MB_RETRYCANCEL, {IDRETRY, IDCANCEL}, QStyle::SP_MessageBoxWarning},
        {MB_CANCELTRYCONTINUE, {IDCANCEL, IDTRYAGAIN, IDCONTINUE}, QStyle::SP_MessageBoxWarning},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.type);
        CustomMessageBoxDlg box(c.type, 0, nullptr);
        box.show();
        EXPECT_EQ(VisibleButtonIds(&box), c.buttons);
        EXPECT_EQ(box.findChildren<QCheckBox*>().size(), 0) << "no check box unless asked for";
        const int size = box.style()->pixelMetric(QStyle::PM_MessageBoxIconSize, nullptr, &box);
        EXPECT_EQ(box.findChild<QLabel*>(QStringLiteral("icon"))->pixmap().toImage(),
                  box.style()->standardIcon(c.icon, nullptr, &box).pixmap(size, size).toImage());
    }
}

TEST_F(MessageDialogTest, ReturnPressesTheDefaultButtonAndEscapeCancelsUnlessTheBoxHasNoWayOut)
{
    constexpr int kStaysOpen = -1;
    const struct { unsigned int type; Qt::Key key; Qt::KeyboardModifiers modifiers; int answer; } cases[] = {
        {MB_OK, Qt::Key_Return, {}, IDOK},
        {MB_YESNOCANCEL, Qt::Key_Return, {}, IDYES},
        {MB_YESNOCANCEL | MB_DEFBUTTON2, Qt::Key_Return, {}, IDNO},
        {MB_YESNOCANCEL | MB_DEFBUTTON3, Qt::Key_Return, {}, IDCANCEL},
        {MB_OKCANCEL | MB_DEFBUTTON3, Qt::Key_Return, {}, IDOK},   // no third button: the first stays the default
        {MB_OK, Qt::Key_Escape, {}, IDCANCEL},
        {MB_OK, Qt::Key_C, Qt::ControlModifier, IDCANCEL},       // Ctrl+C counts as Escape
        {MB_YESNO, Qt::Key_Escape, {}, kStaysOpen},
        {MB_YESNO | MB_ICONQUESTION, Qt::Key_C, Qt::ControlModifier, kStaysOpen},
        {MB_ABORTRETRYIGNORE, Qt::Key_Escape, {}, kStaysOpen},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << "type " << c.type << " key " << c.key);
        CustomMessageBoxDlg box(c.type, 0, nullptr);
        Shown shown;
        bool stayedOpen = false;
        Answer(shown, [&](QWidget* dialog) {
            Press(dialog, c.key, c.modifiers);
            if ((stayedOpen = dialog->isVisible()))
                Click(dialog, VisibleButtonIds(dialog).back());
        });
        const int answer = box.exec();
        EXPECT_EQ(stayedOpen ? kStaysOpen : answer, c.answer);
        EXPECT_TRUE(c.key != Qt::Key_Return || shown.focused == c.answer) << "the default button has the focus";
    }
}

TEST_F(MessageDialogTest, LongTextIsWrappedAt140Characters)
{
    std::string text;
    for (int i = 0; text.size() < 700; ++i)
        text += "measurement" + std::to_string(i) + " ";
    text += "\nA second paragraph stays a paragraph of its own.";
    CustomMessageBoxDlg box(MB_OK, 0, nullptr);
    box.SetText(text.c_str());
    box.show();
    const QStringList lines = QString::fromStdString(Look(&box).texts[CustomMessageBoxDlg::kTextCtrlId]).split('\n');
    ASSERT_GE(lines.size(), 6);
    for (const QString& line : lines)
        EXPECT_LE(line.size(), 140) << line.toStdString();
    EXPECT_GT(lines.front().size(), 120) << "lines are filled";
    EXPECT_EQ(lines.back(), "A second paragraph stays a paragraph of its own.");
}

TEST(LimitLineLength, BreaksAtBlanksAndCutsOnlyOverlongWords)
{
    const struct { std::string text; unsigned int limit; std::string broken; } cases[] = {
        {std::string(140, 'x'), 140, std::string(140, 'x')},
        {std::string(141, 'x'), 140, std::string(140, 'x') + "\nx"},
        {"alpha beta   gamma delta", 10, "alpha beta\ngamma\ndelta"},
        {"one\n\ntwo three", 5, "one\n\ntwo\nthree"},
        {"abc     ", 3, "abc"},
        // Letters beyond ASCII count once and are never cut in two.
        {"Größe Maße Übermaß", 5, "Größe\nMaße\nÜberm\naß"},
        {"no limit", 0, "no limit"},
    };
    for (const auto& c : cases) {
        std::string text = c.text;
        LimitLineLength::ByCharacters(text, c.limit);
        EXPECT_EQ(text, c.broken) << c.text;
    }
}

TEST_F(MessageDialogTest, CheckBoxMessageBoxKeepsTheStateOnlyWhenNotCancelled)
{
    constexpr int kCheck = CustomMessageBoxDlg::kCheckBoxCtrlId;
    bool checked = true;
    Shown shown;
    Answer(shown, ClickOn(IDOK, kCheck));
    EXPECT_EQ(CheckBoxMessageBox("The import skipped 3 rows.", checked, MB_OKCANCEL), IDOK);
    EXPECT_FALSE(checked) << "the state came from the caller and was toggled";
    EXPECT_EQ(shown.texts[kCheck], LanguageString::Get(13199));

    Answer(shown, ClickOn(IDCANCEL, kCheck));
    EXPECT_EQ(CheckBoxMessageBox("Text", checked, MB_OKCANCEL, "&Remember"), IDCANCEL);
    EXPECT_FALSE(checked) << "Cancel leaves the state as it was";
    EXPECT_EQ(shown.texts[kCheck], "&Remember");

    Answer(shown, ClickOn(IDNO, kCheck));
    EXPECT_EQ(CheckBoxMessageBox("Text", checked, MB_YESNO), IDNO);
    EXPECT_TRUE(checked) << "No is an answer like any other";
}

TEST_F(MessageDialogTest, MutedDetailsDialogsCollectInsteadOfShowing)
{
    MuteDetailsDialog* mute = MuteDetailsDialog::Instance();
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
    const MuteDetailsDialog::Message& first = mute->GetMessages()[0];
    EXPECT_EQ(std::tuple(first.text, first.details, first.title, first.nType),
              std::tuple("Three samples were skipped.", "s1\ns2\ns3", "Import", unsigned(MB_ICONEXCLAMATION)));
    EXPECT_EQ(mute->GetMessages()[1].details, "");
    EXPECT_EQ(Stored("Skipped"), "") << "muted, nobody checked anything";

    // Unmuted, the dialogs show again and nothing more is collected.
    mute->Mute(false);
    mute->Clear();
    DialogSpy spy;
    DetailsDialog("Done.", "Export");
    EXPECT_TRUE(spy.Count() == 1 && mute->GetMessages().empty());
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
    WhenModal(ClickOn(YesNoCancelAll::kNoToAllCtrlId));
    EXPECT_EQ(dialog.DoModal(), YesNoCancelAll::eNoToAll);
    WhenModal([](QWidget* box) { box->close(); });
    EXPECT_EQ(dialog.DoModal(), YesNoCancelAll::eCancel);
    EXPECT_EQ(dialog.GetButtonPressed(), YesNoCancelAll::eCancel);

    // Answer codes outside 1 to 5 choose no button; anything but a button pressed is cancel (5).
    EXPECT_EQ(std::tuple(YesNoCancelAll::ButtonOfAnswer(0), YesNoCancelAll::ButtonOfAnswer(6),
                         YesNoCancelAll::AnswerOfButton(YesNoCancelAll::eNone), YesNoCancelAll::AnswerOfButton(-1)),
              std::tuple(YesNoCancelAll::eNone, YesNoCancelAll::eNone, 5, 5));
}
