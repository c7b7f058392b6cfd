// The message box itself: buttons, default button, Escape, icon, wrapping,
// check box, custom captions, help; the scrolling box; the line breaker.

#include "MessageDialogTestSupport.h"

#include <KORVAutlwin/frame/CustomMessageBoxDlg.h>
#include <KORVAutlwin/frame/LimitLineLength.h>
#include <KORVAutlwin/frame/MessageBoxTypes.h>
#include <KORVAutlwin/frame/ScrollMessageBox.h>
#include <KORVAutlwin/frame/TsMessageBox.h>

#include <KORVAutl/LanguageString.h>

#include <QCheckBox>
#include <QFontMetrics>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRect>
#include <QStyle>

#include <gtest/gtest.h>

using namespace korva::test;

namespace {

std::vector<std::string> Lines(const std::string& text)
{
    std::vector<std::string> lines;
    std::size_t start = 0;
    for (;;) {
        const std::size_t end = text.find('\n', start);
        lines.push_back(text.substr(start, end - start));
        if (end == std::string::npos)
            return lines;
        start = end + 1;
    }
}

// The text without line feeds and blanks: what wrapping must never change.
std::string Letters(std::string text)
{
    std::erase_if(text, [](char c) { return c == ' ' || c == '\n'; });
    return text;
}

QImage IconOf(QWidget* box)
{
    auto* icon = box->findChild<QLabel*>(QStringLiteral("icon"));
    return icon ? icon->pixmap().toImage() : QImage();
}

QImage StandardIcon(QWidget* box, QStyle::StandardPixmap kind)
{
    const int size = box->style()->pixelMetric(QStyle::PM_MessageBoxIconSize, nullptr, box);
    return box->style()->standardIcon(kind, nullptr, box).pixmap(size, size).toImage();
}

// Runs a box of `type` and presses `key` in it; the box's answer (-1 if it stayed open, then No or OK ends it).
int AnswerWithKey(unsigned int type, Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
{
    CustomMessageBoxDlg box(type, 0, nullptr);
    bool stayedOpen = false;
    WhenModal([&](QWidget* dialog) {
        Press(dialog, key, modifiers);
        if (dialog->isVisible()) {
            stayedOpen = true;
            Click(dialog, (type & MB_TYPEMASK) == MB_YESNO ? IDNO : IDOK);
        }
    });
    const int answer = box.exec();
    return stayedOpen ? -1 : answer;
}

} // namespace

TEST_F(MessageDialogTest, ButtonSetsFollowTheTypeAndHelpJoinsAtTheEnd)
{
    const struct
    {
        unsigned int type;
        Ids buttons;
    } cases[] = {
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
    CustomMessageBoxDlg withHelp(MB_YESNOCANCEL, 4711, nullptr);
    withHelp.show();
    EXPECT_EQ(VisibleButtonIds(&withHelp), (Ids{IDYES, IDNO, IDCANCEL, IDHELP}));
    EXPECT_EQ(Button(&withHelp, IDYES)->text(), QStringLiteral("&Yes"));
    EXPECT_EQ(Button(&withHelp, IDCANCEL)->text(), QStringLiteral("Cancel"));
}

TEST_F(MessageDialogTest, HelpShowsTheTopicAndLeavesTheBoxOpen)
{
    unsigned int topic = 0;
    TsDialog::SetHelpTopicHandler([&](unsigned int id) { topic = id; });
    CustomMessageBoxDlg box(MB_OK, 4711, nullptr);
    bool openAfterHelp = false;
    WhenModal([&](QWidget* dialog) {
        Click(dialog, IDHELP);
        openAfterHelp = dialog->isVisible();
        Click(dialog, IDOK);
    });
    EXPECT_EQ(box.exec(), IDOK);
    EXPECT_TRUE(openAfterHelp);
    EXPECT_EQ(topic, 4711u);
    TsDialog::SetHelpTopicHandler(nullptr);
}

TEST_F(MessageDialogTest, ReturnPressesTheDefaultButtonAndEscapeCancelsUnlessTheBoxOnlyAsksYesOrNo)
{
    const struct
    {
        unsigned int type;
        int answer;
    } cases[] = {
        {MB_OK, IDOK},
        {MB_YESNOCANCEL, IDYES},
        {MB_YESNOCANCEL | MB_DEFBUTTON2, IDNO},
        {MB_YESNOCANCEL | MB_DEFBUTTON3, IDCANCEL},
        {MB_OKCANCEL | MB_DEFBUTTON3, IDOK},   // no third button: the first stays the default
    };
    for (const auto& c : cases) {
        CustomMessageBoxDlg box(c.type, 0, nullptr);
        bool focused = false;
        WhenModal([&](QWidget* dialog) {
            focused = dialog->focusWidget() == Button(dialog, c.answer);
            Press(dialog, Qt::Key_Return);
        });
        EXPECT_EQ(box.exec(), c.answer) << "type " << c.type;
        EXPECT_TRUE(focused) << "the default button has the focus, type " << c.type;
    }

    EXPECT_EQ(AnswerWithKey(MB_OK, Qt::Key_Escape), IDCANCEL);
    EXPECT_EQ(AnswerWithKey(MB_YESNOCANCEL, Qt::Key_Escape), IDCANCEL);
    EXPECT_EQ(AnswerWithKey(MB_OK, Qt::Key_C, Qt::ControlModifier), IDCANCEL);
    // Yes/No: neither Escape nor Ctrl+C answers; the box waits for a button.
    EXPECT_EQ(AnswerWithKey(MB_YESNO, Qt::Key_Escape), -1);
    EXPECT_EQ(AnswerWithKey(MB_YESNO | MB_ICONQUESTION, Qt::Key_C, Qt::ControlModifier), -1);
}

TEST_F(MessageDialogTest, IconFollowsTheIconBits)
{
    const struct
    {
        unsigned int type;
        QStyle::StandardPixmap icon;
    } cases[] = {
        {MB_ICONHAND, QStyle::SP_MessageBoxCritical},
        {MB_ICONQUESTION, QStyle::SP_MessageBoxQuestion},
        {MB_ICONASTERISK, QStyle::SP_MessageBoxInformation},
        {MB_ICONEXCLAMATION, QStyle::SP_MessageBoxWarning},
        {MB_OK, QStyle::SP_MessageBoxWarning},   // no icon bits: the exclamation mark
    };
    for (const auto& c : cases) {
        CustomMessageBoxDlg box(c.type | MB_OKCANCEL, 0, nullptr);
        box.show();
        ASSERT_FALSE(IconOf(&box).isNull());
        EXPECT_EQ(IconOf(&box), StandardIcon(&box, c.icon)) << "type " << c.type;
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
    ASSERT_NE(label, nullptr);
    const std::string shown = label->text().toStdString();
    const std::vector<std::string> lines = Lines(shown);
    ASSERT_GE(lines.size(), 6u);
    for (const std::string& line : lines)
        EXPECT_LE(line.size(), 140u) << line;
    // Lines are filled: each broken line would not take the next word as well.
    EXPECT_GT(lines.front().size(), 120u);
    EXPECT_EQ(lines.back(), "A second paragraph stays a paragraph of its own.");
    EXPECT_EQ(Letters(shown), Letters(text));
    // The text is not cut off: the label is at least as large as the text's bounds.
    const QRect bounds = LimitLineLength::GetBoundsRect(label->fontMetrics(), shown);
    EXPECT_GE(label->width(), bounds.width());
    EXPECT_GE(label->height(), bounds.height());
    EXPECT_GE(box.width(), bounds.width());
}

TEST(LimitLineLength, ByCharactersBreaksAtBlanksAndCutsOnlyOverlongWords)
{
    const struct
    {
        std::string text;
        unsigned int limit;
        std::string broken;
    } cases[] = {
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

TEST(LimitLineLength, ByPixelsKeepsEveryLineWithinTheWidth)
{
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

    // Without a title the box is titled with the application's name.
    WhenModal([&](QWidget* dialog) { title = dialog->windowTitle(); Click(dialog, IDOK); });
    EXPECT_EQ(TsMessageBox("Saved."), IDOK);
    EXPECT_EQ(title, QStringLiteral("Dialogs"));

    // By string id: an id without text keeps the standard caption.
    WhenModal([&](QWidget* dialog) {
        yes = Button(dialog, IDYES)->text();
        no = Button(dialog, IDNO)->text();
        Click(dialog, IDYES);
    });
    EXPECT_EQ(TsMessageBox(13199u, MB_YESNOCANCEL, 13346u, 99999u), IDYES);
    EXPECT_EQ(yes, QString::fromUtf8(LanguageString::Get(13346)));
    EXPECT_EQ(no, QStringLiteral("&No"));

    // Captions replace only Yes and No, and only in the forms that have them.
    WhenModal([&](QWidget* dialog) { ok = Button(dialog, IDOK)->text(); Click(dialog, IDOK); });
    TsMessageBox("Done.", MB_OKCANCEL, "&Save", "&Discard");
    EXPECT_EQ(ok, QStringLiteral("OK"));
}

TEST_F(MessageDialogTest, CheckBoxMessageBoxKeepsTheStateOnlyWhenNotCancelled)
{
    bool checked = true;
    bool checkedAtStart = false;
    QString caption;
    // Toggles the box and answers with `button`.
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
    EXPECT_EQ(caption, QString::fromUtf8(LanguageString::Get(13199)));

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
