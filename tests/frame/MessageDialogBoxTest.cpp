// The message box itself: buttons, default button, Escape, icon, wrapping,
// check box, custom captions, help; the scrolling box; the line breaker; the
// details dialog and the switch that mutes it.

#include "MdiFrameTestSupport.h"

#include <KORVAutlwin/frame/CustomMessageBoxDlg.h>
#include <KORVAutlwin/frame/DetailsDialog.h>
#include <KORVAutlwin/frame/LimitLineLength.h>
#include <KORVAutlwin/frame/MuteDetailsDialog.h>
#include <KORVAutlwin/frame/ScrollMessageBox.h>
#include <KORVAutlwin/frame/TsMessageBox.h>

#include <KORVAutl/LanguageString.h>

#include <QCheckBox>
#include <QLayout>
#include <QPlainTextEdit>
#include <QStyle>

using namespace korva::test;

namespace {

std::vector<std::string> Lines(const std::string& text)
{
    std::vector<std::string> lines;
    for (std::size_t start = 0;;) {
        const std::size_t end = text.find('\n', start);
        lines.push_back(text.substr(start, end - start));
        if (end == std::string::npos)
            return lines;
        start = end + 1;
    }
}

QString Caption(unsigned int id)
{
    return QString::fromUtf8(LanguageString::Get(id));
}

} // namespace

TEST_F(MessageDialogTest, ButtonSetsFollowTheTypeAndHelpJoinsAtTheEnd)
{
    const struct { unsigned int type; Ids buttons; } cases[] = {
        {MB_OK, {IDOK}},
        {MB_OKCANCEL, {IDOK, IDCANCEL}},
        {MB_YESNOCANCEL, {IDYES, IDNO, IDCANCEL}},
        {MB_YESNO, {IDYES, IDNO}},
        {MB_ABORTRETRYIGNORE, {IDABORT, IDRETRY, IDIGNORE}},
        {MB_RETRYCANCEL, {IDRETRY, IDCANCEL}},
        {MB_CANCELTRYCONTINUE, {IDCANCEL, IDTRYAGAIN, IDCONTINUE}},
    };
    for (const auto& c : cases) {
        CustomMessageBoxDlg box(c.type, 0, nullptr);
        box.show();
        EXPECT_EQ(VisibleButtonIds(&box), c.buttons) << "type " << c.type;
        EXPECT_EQ(box.findChildren<QCheckBox*>().size(), 0) << "no check box unless asked for";
    }

    // Help joins at the end, shows the topic and leaves the box open.
    unsigned int topic = 0;
    TsDialog::SetHelpTopicHandler([&](unsigned int id) { topic = id; });
    CustomMessageBoxDlg box(MB_YESNOCANCEL, 4711, nullptr);
    Ids shown;
    bool openAfterHelp = false;
    WhenModal([&](QWidget* dialog) {
        shown = VisibleButtonIds(dialog);
        Click(dialog, IDHELP);
        openAfterHelp = dialog->isVisible();
        Click(dialog, IDNO);
    });
    EXPECT_EQ(box.exec(), IDNO);
    EXPECT_EQ(shown, (Ids{IDYES, IDNO, IDCANCEL, IDHELP}));
    EXPECT_TRUE(openAfterHelp);
    EXPECT_EQ(topic, 4711u);
    TsDialog::SetHelpTopicHandler(nullptr);
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
        int focused = 0;
        bool stayedOpen = false;
        WhenModal([&](QWidget* dialog) {
            focused = FocusedId(dialog);
            Press(dialog, c.key, c.modifiers);
            if ((stayedOpen = dialog->isVisible()))
                Click(dialog, VisibleButtonIds(dialog).back());
        });
        const int answer = box.exec();
        EXPECT_EQ(stayedOpen ? kStaysOpen : answer, c.answer);
        if (c.key == Qt::Key_Return) {
            EXPECT_EQ(focused, c.answer) << "the default button has the focus";
        }
    }
}

TEST_F(MessageDialogTest, IconFollowsTheIconBits)
{
    const std::pair<unsigned int, QStyle::StandardPixmap> cases[] = {
        {MB_ICONHAND, QStyle::SP_MessageBoxCritical},
        {MB_ICONQUESTION, QStyle::SP_MessageBoxQuestion},
        {MB_ICONASTERISK, QStyle::SP_MessageBoxInformation},
        {MB_ICONEXCLAMATION, QStyle::SP_MessageBoxWarning},
        {MB_OK, QStyle::SP_MessageBoxWarning},   // no icon bits: the exclamation mark
    };
    for (const auto& [type, kind] : cases) {
        CustomMessageBoxDlg box(type | MB_OKCANCEL, 0, nullptr);
        box.show();
        const QImage icon = box.findChild<QLabel*>(QStringLiteral("icon"))->pixmap().toImage();
        const int size = box.style()->pixelMetric(QStyle::PM_MessageBoxIconSize, nullptr, &box);
        ASSERT_FALSE(icon.isNull());
        EXPECT_EQ(icon, box.style()->standardIcon(kind, nullptr, &box).pixmap(size, size).toImage()) << type;
    }
}

TEST_F(MessageDialogTest, LongTextIsWrappedAt140CharactersAndTheBoxFitsIt)
{
    std::string text;
    for (int i = 0; text.size() < 700; ++i)
        text += "measurement" + std::to_string(i) + " ";
    text += "\nA second paragraph stays a paragraph of its own.";
    CustomMessageBoxDlg box(MB_OK, 0, nullptr);
    box.SetText(text.c_str());
    box.show();
    auto* label = Control<QLabel>(&box, CustomMessageBoxDlg::kTextCtrlId);
    const std::string shown = label->text().toStdString();
    const std::vector<std::string> lines = Lines(shown);
    ASSERT_GE(lines.size(), 6u);
    for (const std::string& line : lines)
        EXPECT_LE(line.size(), 140u) << line;
    EXPECT_GT(lines.front().size(), 120u) << "lines are filled";
    EXPECT_EQ(lines.back(), "A second paragraph stays a paragraph of its own.");
    // The text is not cut off: the label is at least as large as the text's bounds.
    const QRect bounds = LimitLineLength::GetBoundsRect(label->fontMetrics(), shown);
    EXPECT_GE(label->width(), bounds.width());
    EXPECT_GE(label->height(), bounds.height());
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

    korva::test::Application();
    const QFontMetrics metrics(QApplication::font());
    std::string text = "The stop was requested while the model was being fitted to the calibration data";
    const int width = metrics.horizontalAdvance(QStringLiteral("The stop was requested"));
    LimitLineLength::ByPixels(text, metrics, width);
    const std::vector<std::string> lines = Lines(text);
    ASSERT_GT(lines.size(), 2u);
    for (const std::string& line : lines)
        EXPECT_LE(metrics.horizontalAdvance(QString::fromStdString(line)), width) << line;
    EXPECT_EQ(lines.front(), "The stop was requested");
}

TEST_F(MessageDialogTest, TsMessageBoxTitlesAndCustomCaptions)
{
    QString title, yes, no, ok;
    WhenModal([&](QWidget* dialog) { title = dialog->windowTitle(); Click(dialog, IDCANCEL); });
    EXPECT_EQ(TsMessageBox("Export", "The file exists.", MB_OKCANCEL), IDCANCEL);
    EXPECT_EQ(title, QStringLiteral("Export"));
    WhenModal([&](QWidget* dialog) { title = dialog->windowTitle(); Click(dialog, IDOK); });
    EXPECT_EQ(TsMessageBox("Saved."), IDOK);
    EXPECT_EQ(title, QStringLiteral("Dialogs")) << "without a title, the application's name";

    // By string id: an id without text keeps the standard caption.
    WhenModal([&](QWidget* dialog) {
        yes = Button(dialog, IDYES)->text();
        no = Button(dialog, IDNO)->text();
        Click(dialog, IDYES);
    });
    EXPECT_EQ(TsMessageBox(13199u, MB_YESNOCANCEL, 13346u, 99999u), IDYES);
    EXPECT_EQ(yes, Caption(13346));
    EXPECT_EQ(no, QStringLiteral("&No"));

    // Captions replace only Yes and No, and only in the forms that have them.
    WhenModal([&](QWidget* dialog) { ok = Button(dialog, IDOK)->text(); Click(dialog, IDOK); });
    TsMessageBox("Done.", MB_OKCANCEL, "&Save", "&Discard");
    EXPECT_EQ(ok, QStringLiteral("OK"));
}

TEST_F(MessageDialogTest, CheckBoxMessageBoxKeepsTheStateOnlyWhenNotCancelled)
{
    bool checked = true, checkedAtStart = false;
    QString caption;
    const auto toggleAnd = [&](int button) {
        WhenModal([&, button](QWidget* dialog) {
            auto* box = Control<QCheckBox>(dialog, CustomMessageBoxDlg::kCheckBoxCtrlId);
            caption = box->text();
            checkedAtStart = box->isChecked();
            QTest::mouseClick(box, Qt::LeftButton);
            Click(dialog, button);
        });
    };
    toggleAnd(IDOK);
    EXPECT_EQ(CheckBoxMessageBox("The import skipped 3 rows.", checked, MB_OKCANCEL), IDOK);
    EXPECT_TRUE(checkedAtStart) << "the state comes from the caller";
    EXPECT_FALSE(checked);
    EXPECT_EQ(caption, Caption(13199));

    toggleAnd(IDCANCEL);
    EXPECT_EQ(CheckBoxMessageBox("Text", checked, MB_OKCANCEL, "&Remember"), IDCANCEL);
    EXPECT_FALSE(checked) << "Cancel leaves the state as it was";
    EXPECT_EQ(caption, QStringLiteral("&Remember"));

    toggleAnd(IDNO);
    EXPECT_EQ(CheckBoxMessageBox("Text", checked, MB_YESNO), IDNO);
    EXPECT_TRUE(checked) << "No is an answer like any other";
}

TEST_F(MessageDialogTest, ScrollMessageBoxShowsTheWholeTextWithTheTypesButtons)
{
    std::string text;
    for (int i = 1; i <= 20; ++i)
        text += "Row " + std::to_string(i) + " could not be read.\n";
    QString shown, title;
    Ids buttons;
    WhenModal([&](QWidget* dialog) {
        shown = Control<QPlainTextEdit>(dialog, ScrollMessageBox::kTextCtrlId)->toPlainText();
        title = dialog->windowTitle();
        buttons = VisibleButtonIds(dialog);
        Press(dialog, Qt::Key_Escape);
    });
    EXPECT_EQ(TsScrollMessageBox(text.c_str(), MB_YESNOCANCEL, "Import"), IDCANCEL);
    EXPECT_EQ(shown.toStdString(), text);
    EXPECT_EQ(title, QStringLiteral("Import"));
    EXPECT_EQ(buttons, (Ids{IDYES, IDNO, IDCANCEL}));

    bool stayedOpen = false;
    WhenModal([&](QWidget* dialog) {
        Press(dialog, Qt::Key_Escape);
        stayedOpen = dialog->isVisible();
        Press(dialog, Qt::Key_Return);
    });
    EXPECT_EQ(TsScrollMessageBox(13199u, MB_YESNO), IDYES);
    EXPECT_TRUE(stayedOpen);
}

TEST_F(MessageDialogTest, DetailsButtonOpensAndClosesTheDetailsBelowTheButtons)
{
    std::vector<bool> detailsShown;
    bool belowButtons = false, grew = false;
    QString text, details, caption;
    WhenModal([&](QWidget* box) {
        auto* detailsControl = Control<QPlainTextEdit>(box, DetailsDialogClass::kDetailsCtrlId);
        text = Control<QLabel>(box, DetailsDialogClass::kTextCtrlId)->text();
        details = detailsControl->toPlainText();
        caption = Button(box, DetailsDialogClass::kDetailsButtonCtrlId)->text();
        const int heightBefore = box->height();
        for (int i = 0; i < 2; ++i) {
            detailsShown.push_back(detailsControl->isVisible());
            Click(box, DetailsDialogClass::kDetailsButtonCtrlId);
            if (i == 0) {
                grew = box->height() > heightBefore;
                box->layout()->activate();
                belowButtons = detailsControl->y() > Button(box, IDOK)->mapTo(box, QPoint()).y();
            }
        }
        detailsShown.push_back(detailsControl->isVisible());
        Click(box, IDOK);
    });
    DetailsDialog("2 of 5 files could not be opened.", "a.csv: locked\nb.csv: missing", "Open", MB_ICONERROR);
    EXPECT_EQ(detailsShown, (std::vector<bool>{false, true, false}));
    EXPECT_TRUE(grew);
    EXPECT_TRUE(belowButtons);
    EXPECT_EQ(text, QStringLiteral("2 of 5 files could not be opened."));
    EXPECT_EQ(details, QStringLiteral("a.csv: locked\nb.csv: missing"));
    EXPECT_EQ(caption, Caption(13181));

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
