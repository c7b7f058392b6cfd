// The dialog channel: which dialog each call shows (by the length of the text),
// default buttons and answers, usage counting, the message box helper, the
// silenced informs in the registry, and the hour glass.

#include "MessageDialogTestSupport.h"

#include <KORVAutlwin/frame/CustomMessageBoxDlg.h>
#include <KORVAutlwin/frame/FatalErrorDialog.h>
#include <KORVAutlwin/frame/MessageBoxTypes.h>
#include <KORVAutlwin/frame/StandardUserComm.h>
#include <KORVAutlwin/frame/YesNoCancelAll.h>
#include <KORVAutlwin/frame/YesNoDialog.h>

#include <QCheckBox>
#include <QCursor>
#include <QGuiApplication>
#include <QLabel>
#include <QPlainTextEdit>

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace korva::test;

namespace {

// `count` lines "Line 1" ... without a final line feed.
std::string LinesOf(int count)
{
    std::string text;
    for (int line = 1; line <= count; ++line)
        text += (line > 1 ? "\n" : "") + std::string("Line ") + std::to_string(line);
    return text;
}

// What a call put in front of the user.
struct Shown
{
    enum EKind { eNothing, eMessageBox, eYesNoDialog, eToAllDialog, eScrollDialog } kind = eNothing;
    unsigned int type = 0;       // of a message box
    bool checkBox = false;       // of a message box
    bool endNotice = false;      // of the scrolling dialog: the line that the application must end
    std::string title;
    std::string text;            // message box text, details of the question dialogs, scrolling text
    std::vector<int> buttons;    // the visible buttons, left to right
};

// Records the next modal dialog into `shown`, then lets `answer` answer it.
void RecordAndAnswer(Shown& shown, std::function<void(QWidget*)> answer)
{
    WhenModal([&shown, answer](QWidget* dialog) {
        shown.title = dialog->windowTitle().toStdString();
        shown.buttons = VisibleButtonIds(dialog);
        if (auto* box = qobject_cast<CustomMessageBoxDlg*>(dialog)) {
            shown.kind = Shown::eMessageBox;
            shown.type = box->GetType();
            shown.text = box->GetText();
            shown.checkBox = Control<QCheckBox>(dialog, CustomMessageBoxDlg::kCheckBoxCtrlId) != nullptr;
        } else if (qobject_cast<YesNoDialog*>(dialog)) {
            shown.kind = Shown::eYesNoDialog;
            shown.text = Control<QPlainTextEdit>(dialog, YesNoDialog::kDetailsCtrlId)->toPlainText().toStdString();
        } else if (qobject_cast<YesNoCancelAll*>(dialog)) {
            shown.kind = Shown::eToAllDialog;
            shown.text = Control<QPlainTextEdit>(dialog, YesNoCancelAll::kDetailsCtrlId)->toPlainText().toStdString();
        } else if (qobject_cast<FatalErrorDialog*>(dialog)) {
            shown.kind = Shown::eScrollDialog;
            shown.text = Control<QPlainTextEdit>(dialog, 10001)->toPlainText().toStdString();
            shown.endNotice = !Control<QLabel>(dialog, 10000)->isHidden();
        }
        answer(dialog);
    });
}

auto PressKey(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
{
    return [key, modifiers](QWidget* dialog) { Press(dialog, key, modifiers); };
}

// The application object that counts how the channel disables its modeless windows.
class RecordingApp : public WinApp
{
public:
    RecordingApp() : WinApp("Dialogs") { SetRegistryKey("Tessmark"); }
    void EnableModeless(bool enable) override
    {
        calls.push_back(enable);
        WinApp::EnableModeless(enable);
    }
    std::vector<bool> calls;
};

class UserCommStandardTest : public MessageDialogTest
{
protected:
    void SetUp() override
    {
        MessageDialogTest::SetUp();
        auto app = std::make_unique<RecordingApp>();
        mRecordingApp = app.get();
        mApp = std::move(app);
    }

    static std::string Silence(const char* id)
    {
        return TsGetRegKey(HKEY_CURRENT_USER, "SOFTWARE\\Tessmark\\Dialogs\\UserCommInformUser", id, "");
    }

    StandardUserComm mChannel;
    RecordingApp* mRecordingApp = nullptr;
};

} // namespace

TEST(UserCommLineMeasure, CountsLineFeedsBehindTheFirstCharacter)
{
    EXPECT_EQ(korva::MeasureLines(nullptr), 2);
    EXPECT_EQ(korva::MeasureLines(""), 2);
    EXPECT_EQ(korva::MeasureLines("one line"), 2);
    EXPECT_EQ(korva::MeasureLines("one line\n"), 3);
    EXPECT_EQ(korva::MeasureLines("a\nb\nc"), 4);
    // A line feed as the first character is not counted; the next one is.
    EXPECT_EQ(korva::MeasureLines("\n"), 2);
    EXPECT_EQ(korva::MeasureLines("\n\n"), 3);
    EXPECT_EQ(korva::MeasureLines("\r\n\r\n"), 4);
    EXPECT_EQ(korva::MeasureLines(LinesOf(30).c_str()), 31);
    EXPECT_EQ(korva::MeasureLines(LinesOf(19).c_str()), 20);
}

TEST_F(UserCommStandardTest, ShortYesNoQuestionIsAMessageBoxWithItsDefault)
{
    // Default yes: Return answers yes; any other default makes No the default button.
    const struct
    {
        int defaultAnswer;
        unsigned int type;
        int answer;
    } cases[] = {{1, 0x34, 1}, {0, 0x134, 3}, {3, 0x134, 3}, {2, 0x134, 3}};
    for (const auto& c : cases) {
        Shown shown;
        RecordAndAnswer(shown, PressKey(Qt::Key_Return));
        EXPECT_EQ(mChannel.AskUserYesNo("Delete the sample?", "Samples", c.defaultAnswer), c.answer)
            << "default " << c.defaultAnswer;
        EXPECT_EQ(shown.kind, Shown::eMessageBox);
        EXPECT_EQ(shown.type, c.type);
        EXPECT_EQ(shown.text, "Delete the sample?");
        EXPECT_EQ(shown.title, "Samples");
        EXPECT_EQ(shown.buttons, (Ids{IDYES, IDNO}));
    }
    // Yes against the default No, through the button's mnemonic.
    Shown shown;
    RecordAndAnswer(shown, PressKey(Qt::Key_Y, Qt::AltModifier));
    EXPECT_EQ(mChannel.AskUserYesNo("Delete the sample?", nullptr, 3), 1);
    EXPECT_EQ(shown.title, "Dialogs") << "a null title is the application's name";
    EXPECT_EQ(mChannel.GetUsage(), 5);
}

TEST_F(UserCommStandardTest, QuestionOfThirtyLinesGoesToTheScrollingDialogAndCountsTwice)
{
    const std::string longQuestion = LinesOf(30);
    Shown shown;
    RecordAndAnswer(shown, PressKey(Qt::Key_Return));
    EXPECT_EQ(mChannel.AskUserYesNo(longQuestion.c_str(), "Import", 1), 1);
    EXPECT_EQ(shown.kind, Shown::eYesNoDialog);
    EXPECT_EQ(shown.text, longQuestion) << "the question becomes the details";
    EXPECT_EQ(shown.title, "Import");
    EXPECT_EQ(mChannel.GetUsage(), 2);

    mChannel.ResetUsage();
    const std::string shorter = LinesOf(29);
    RecordAndAnswer(shown, PressKey(Qt::Key_Return));
    EXPECT_EQ(mChannel.AskUserYesNo(shorter.c_str(), "Import", 3), 3);
    EXPECT_EQ(shown.kind, Shown::eMessageBox);
    EXPECT_EQ(shown.text, shorter);
    EXPECT_EQ(mChannel.GetUsage(), 1);
}

TEST_F(UserCommStandardTest, YesNoWithDetailsAnswersYesOnlyForYes)
{
    const struct
    {
        int defaultAnswer;
        Qt::Key key;
        int answer;
    } cases[] = {{1, Qt::Key_Return, 1}, {3, Qt::Key_Return, 3}, {0, Qt::Key_Return, 3}, {1, Qt::Key_Escape, 3}};
    for (const auto& c : cases) {
        Shown shown;
        RecordAndAnswer(shown, PressKey(c.key));
        EXPECT_EQ(mChannel.AskUserYesNo("Leave them out?", "Sample 17\nSample 18", nullptr, c.defaultAnswer), c.answer);
        EXPECT_EQ(shown.kind, Shown::eYesNoDialog);
        EXPECT_EQ(shown.text, "Sample 17\nSample 18");
        EXPECT_EQ(shown.title, "Dialogs");
    }
    EXPECT_EQ(mChannel.GetUsage(), 4);
}

TEST_F(UserCommStandardTest, MultiButtonQuestionsShowTheirButtonsAndAnswerByTheDefault)
{
    using Ask = int (StandardUserComm::*)(const char*, const char*, const char*, int);
    const int yes = YesNoCancelAll::kYesCtrlId, yesToAll = YesNoCancelAll::kYesToAllCtrlId,
              no = YesNoCancelAll::kNoCtrlId, noToAll = YesNoCancelAll::kNoToAllCtrlId,
              cancel = YesNoCancelAll::kCancelCtrlId;
    const struct
    {
        Ask ask;
        Ids buttons;
        std::vector<int> answers;  // the answer codes whose button is shown
    } forms[] = {
        {&StandardUserComm::AskUserYesYesToAllNoNoToAllCancel, {yes, yesToAll, no, noToAll, cancel}, {1, 2, 3, 4, 5}},
        {&StandardUserComm::AskUserYesYesToAllCancel, {yes, yesToAll, cancel}, {1, 2, 5}},
        {&StandardUserComm::AskUserYesCancel, {yes, cancel}, {1, 5}},
    };
    int asked = 0;
    for (const auto& form : forms) {
        // Return presses the default button, which the default answer chose.
        for (int answer : form.answers) {
            Shown shown;
            RecordAndAnswer(shown, PressKey(Qt::Key_Return));
            EXPECT_EQ((mChannel.*form.ask)("Replace the file?", "results.csv\nchanged today", "Export", answer), answer);
            EXPECT_EQ(shown.kind, Shown::eToAllDialog);
            EXPECT_EQ(shown.buttons, form.buttons);
            EXPECT_EQ(shown.title, "Export");
            ++asked;
        }
        // Escape is cancel, whatever the default.
        Shown shown;
        RecordAndAnswer(shown, PressKey(Qt::Key_Escape));
        EXPECT_EQ((mChannel.*form.ask)("Replace the file?", "", nullptr, 1), 5);
        EXPECT_EQ(shown.title, "Dialogs");
        ++asked;
    }
    EXPECT_EQ(mChannel.GetUsage(), asked);
}

TEST_F(UserCommStandardTest, LongFatalErrorsAndInformsGoToTheScrollingDialog)
{
    const std::string nineteen = LinesOf(19);
    const std::string eighteen = LinesOf(18);
    const struct
    {
        bool inform;
        const std::string& text;
        Shown::EKind kind;
        unsigned int type;
        bool endNotice;
    } cases[] = {
        {true, nineteen, Shown::eScrollDialog, 0, false},
        {true, eighteen, Shown::eMessageBox, MB_ICONASTERISK, false},
        {false, nineteen, Shown::eScrollDialog, 0, true},
        {false, eighteen, Shown::eMessageBox, MB_ICONHAND, false},
    };
    for (const auto& c : cases) {
        Shown shown;
        RecordAndAnswer(shown, PressKey(Qt::Key_Return));
        if (c.inform)
            mChannel.InformUser(c.text.c_str(), "Report", 0);
        else
            mChannel.FatalError(c.text.c_str(), "Report");
        EXPECT_EQ(shown.kind, c.kind) << (c.inform ? "inform " : "fatal ") << korva::MeasureLines(c.text.c_str());
        EXPECT_EQ(shown.text, c.text);
        EXPECT_EQ(shown.title, "Report");
        if (c.kind == Shown::eMessageBox) {
            EXPECT_EQ(shown.type, c.type);
            EXPECT_FALSE(shown.checkBox);
        } else {
            EXPECT_EQ(shown.endNotice, c.endNotice);
        }
    }
    EXPECT_EQ(mChannel.GetUsage(), 4);
}

TEST_F(UserCommStandardTest, NullAndEmptyTextsShowNothingButCount)
{
    DialogSpy spy;
    mChannel.FatalError(nullptr, "Report");
    mChannel.FatalError("", "Report");
    mChannel.InformUser(nullptr, "Report", 0);
    mChannel.InformUser("", "Report", 0);
    // Not even the silence key is touched for an empty text.
    mChannel.InformUser("", "Report", 7);
    EXPECT_EQ(spy.Count(), 0);
    EXPECT_EQ(mChannel.GetUsage(), 5);
    std::vector<std::string> children;
    EXPECT_FALSE(TsGetRegSubKeys(HKEY_CURRENT_USER, "SOFTWARE\\Tessmark\\Dialogs\\UserCommInformUser", children));
    mChannel.ResetUsage();
    EXPECT_EQ(mChannel.GetUsage(), 0);
}

TEST_F(UserCommStandardTest, CopyTakesTheUsageCount)
{
    DialogSpy spy;
    mChannel.InformUser(nullptr, nullptr, 0);
    mChannel.InformUser(nullptr, nullptr, 0);
    StandardUserComm copy(mChannel);
    EXPECT_EQ(copy.GetUsage(), 2);
    copy.FatalError("", nullptr);
    EXPECT_EQ(copy.GetUsage(), 3);
    EXPECT_EQ(mChannel.GetUsage(), 2);
    mChannel = copy;
    EXPECT_EQ(mChannel.GetUsage(), 3);
}

TEST_F(UserCommStandardTest, MessageBoxHelperAddsTheExclamationOnlyWhereItBelongs)
{
    const struct
    {
        unsigned int type;
        unsigned int shown;
        Qt::Key key;
        int answer;
    } cases[] = {
        {MB_OK, MB_OK | MB_ICONEXCLAMATION, Qt::Key_Escape, IDOK},  // a box with only OK always answers OK
        {MB_OKCANCEL, MB_OKCANCEL | MB_ICONEXCLAMATION, Qt::Key_Escape, IDCANCEL},
        {MB_YESNOCANCEL, MB_YESNOCANCEL | MB_ICONEXCLAMATION, Qt::Key_Return, IDYES},
        {MB_YESNO | MB_DEFBUTTON2, MB_YESNO | MB_DEFBUTTON2 | MB_ICONEXCLAMATION, Qt::Key_Return, IDNO},
        {MB_RETRYCANCEL, MB_RETRYCANCEL, Qt::Key_Escape, IDCANCEL},
        {MB_ABORTRETRYIGNORE, MB_ABORTRETRYIGNORE, Qt::Key_Return, IDABORT},
        {MB_OK | MB_ICONASTERISK, MB_OK | MB_ICONASTERISK, Qt::Key_Return, IDOK},
        {MB_YESNO | MB_ICONQUESTION, MB_YESNO | MB_ICONQUESTION, Qt::Key_Return, IDYES},
    };
    for (const auto& c : cases) {
        mRecordingApp->calls.clear();
        std::vector<bool> callsWhileShown;
        Shown shown;
        RecordAndAnswer(shown, [&](QWidget* dialog) {
            callsWhileShown = mRecordingApp->calls;
            Press(dialog, c.key);
        });
        EXPECT_EQ(korva::UserCommMessageBox("The file is locked.", nullptr, c.type), c.answer) << c.type;
        EXPECT_EQ(shown.type, c.shown) << c.type;
        EXPECT_EQ(shown.title, "Dialogs");
        // Modeless windows are disabled for exactly the time the box is up.
        EXPECT_EQ(callsWhileShown, std::vector<bool>{false});
        EXPECT_EQ(mRecordingApp->calls, (std::vector<bool>{false, true}));
    }
    // Only a null title falls back to the application's name.
    Shown shown;
    RecordAndAnswer(shown, PressKey(Qt::Key_Return));
    korva::UserCommMessageBox("text", "", MB_OK);
    EXPECT_EQ(shown.title, "");
}

TEST_F(UserCommStandardTest, SilencedInformIsReadFromAndWrittenToTheRegistry)
{
    // Not checked: shown, nothing stored.
    Shown shown;
    RecordAndAnswer(shown, PressKey(Qt::Key_Return));
    mChannel.InformUser("The audit trail was saved.", "Audit trail", 42);
    EXPECT_EQ(shown.kind, Shown::eMessageBox);
    EXPECT_TRUE(shown.checkBox);
    EXPECT_EQ(shown.type, 0u);
    EXPECT_EQ(shown.text, "The audit trail was saved.");
    EXPECT_EQ(shown.title, "Dialogs") << "the title is not used with a silence id";
    EXPECT_EQ(Silence("42"), "");

    // Checked: shown once more, then silenced for good.
    RecordAndAnswer(shown, [](QWidget* dialog) {
        QTest::mouseClick(Control<QCheckBox>(dialog, CustomMessageBoxDlg::kCheckBoxCtrlId), Qt::LeftButton);
        Press(dialog, Qt::Key_Return);
    });
    mChannel.InformUser("The audit trail was saved.", "Audit trail", 42);
    EXPECT_EQ(Silence("42"), "0");

    {
        DialogSpy spy;
        mChannel.InformUser("The audit trail was saved.", "Audit trail", 42);
        // A long text with the silence id stays silent as well.
        mChannel.InformUser(LinesOf(25).c_str(), "Audit trail", 42);
        EXPECT_EQ(spy.Count(), 0);
    }
    EXPECT_EQ(mChannel.GetUsage(), 4);

    // Checked and cancelled with the window's close: the box has no Cancel, so
    // the state is not taken.
    RecordAndAnswer(shown, [](QWidget* dialog) {
        QTest::mouseClick(Control<QCheckBox>(dialog, CustomMessageBoxDlg::kCheckBoxCtrlId), Qt::LeftButton);
        dialog->close();
    });
    mChannel.InformUser("Another one.", nullptr, 43);
    EXPECT_EQ(Silence("43"), "");
}

TEST_F(UserCommStandardTest, OnlyADwordZeroSilences)
{
    const std::string key = "SOFTWARE\\Tessmark\\Dialogs\\UserCommInformUser";
    {
        RegistrySection section(HKEY_CURRENT_USER, key.c_str(), KEY_ALL_ACCESS, true);
        ASSERT_TRUE(section.WriteInt("1", 1));
        ASSERT_TRUE(section.WriteInt("2", -1));
        ASSERT_TRUE(section.WriteKey("3", "0"));  // a text, not a number
        ASSERT_TRUE(section.WriteInt("4", 0));
    }
    for (unsigned long id : {1ul, 2ul, 3ul, 5ul}) {
        Shown shown;
        RecordAndAnswer(shown, PressKey(Qt::Key_Return));
        mChannel.InformUser("Shown.", nullptr, id);
        EXPECT_EQ(shown.kind, Shown::eMessageBox) << "id " << id;
        EXPECT_TRUE(shown.checkBox) << "id " << id;
    }
    DialogSpy spy;
    mChannel.InformUser("Silenced.", nullptr, 4);
    EXPECT_EQ(spy.Count(), 0);
    EXPECT_EQ(korva::GetInformSilenceKeyName(), key);
}

TEST_F(UserCommStandardTest, SilenceKeyIsCreatedWithReadAndWriteAccess)
{
    {
        RegistrySection key = korva::OpenInformSilenceKey();
        EXPECT_EQ(key.GetAccess(), 0x2001Fu);
        EXPECT_EQ(key.GetPath(), "SOFTWARE\\Tessmark\\Dialogs\\UserCommInformUser");
        EXPECT_FALSE(korva::IsInformSilenced(key, 9));
        EXPECT_TRUE(korva::SilenceInform(key, 9));
        EXPECT_TRUE(korva::IsInformSilenced(key, 9));
    }
    EXPECT_EQ(Silence("9"), "0");
    EXPECT_EQ(korva::GetInformSilenceValueName(4000000000ul), "4000000000");
}

TEST_F(UserCommStandardTest, HourGlassStaysUntilTheMouseMoves)
{
    QWidget window;
    window.resize(200, 100);
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    ASSERT_EQ(QGuiApplication::overrideCursor(), nullptr);

    mChannel.HourGlassOn();
    mChannel.HourGlassOn();  // a second call does not stack a second cursor
    ASSERT_NE(QGuiApplication::overrideCursor(), nullptr);
    EXPECT_EQ(QGuiApplication::overrideCursor()->shape(), Qt::WaitCursor);
    mChannel.HourGlassOff();
    QCoreApplication::processEvents();
    ASSERT_NE(QGuiApplication::overrideCursor(), nullptr) << "HourGlassOff leaves the cursor to the mouse";

    QTest::mouseMove(&window, QPoint(50, 50));
    QTest::mouseMove(&window, QPoint(60, 50));
    QCoreApplication::processEvents();
    EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);

    // And it can be switched on again after that.
    mChannel.HourGlassOn();
    EXPECT_NE(QGuiApplication::overrideCursor(), nullptr);
    QTest::mouseMove(&window, QPoint(70, 50));
    QCoreApplication::processEvents();
    EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
    EXPECT_EQ(mChannel.GetUsage(), 0) << "the hour glass does not address the user";
}
