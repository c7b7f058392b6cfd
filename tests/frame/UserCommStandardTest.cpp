// The dialog channel: which dialog each call shows (by the length of the text), default buttons and answers, usage
// counting, the message box helper, the silenced informs in the registry, and the running progress that each dialog
// steps in front of.

#include "../progress/ProgressTestSupport.h"

#include <KORVAutlwin/frame/StandardUserComm.h>
#include <KORVAutlwin/frame/YesNoCancelAll.h>
#include <KORVAutlwin/frame/YesNoDialog.h>

using namespace korva::test;

namespace {

constexpr int kBoxText = CustomMessageBoxDlg::kTextCtrlId;
constexpr int kBoxCheck = CustomMessageBoxDlg::kCheckBoxCtrlId;
constexpr int kScrollText = 10001, kEndNotice = 10000;   // of the scrolling dialog

std::string LinesOf(int count)
{
    std::string text = "Line 1";
    for (int line = 2; line <= count; ++line)
        text += "\nLine " + std::to_string(line);
    return text;
}

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
        mApp.reset();
        mApp = std::make_unique<RecordingApp>();
    }
    RecordingApp& App() { return static_cast<RecordingApp&>(*mApp); }
    static std::string Silence(const char* id) { return TsGetRegKey(HKEY_CURRENT_USER, kSilenceKey, id, ""); }

    static constexpr const char* kSilenceKey = "SOFTWARE\\Tessmark\\Dialogs\\UserCommInformUser";
    StandardUserComm mChannel;
    Shown mShown;
};

TEST(UserCommLineMeasure, CountsLineFeedsBehindTheFirstCharacter)
{
    // A line feed as the first character is not counted; the next one is.
    const std::pair<std::string, int> cases[] = {{"", 2}, {"one line", 2}, {"one line\n", 3}, {"a\nb\nc", 4},
                                                 {"\n", 2}, {"\n\n", 3}, {"\r\n\r\n", 4}, {LinesOf(30), 31}};
    for (const auto& [text, measure] : cases)
        EXPECT_EQ(korva::MeasureLines(text.c_str()), measure) << text;
    EXPECT_EQ(korva::MeasureLines(nullptr), 2);
}

TEST_F(UserCommStandardTest, YesNoQuestionsTakeTheBoxOrTheScrollingDialog)
{
    const std::string thirty = LinesOf(30), twentyNine = LinesOf(29);
    const char* const details = "Sample 17\nSample 18";
    // Default yes: Return answers yes; any other default makes No the default button.
    const struct { const char* question; const char* details; int defaultAnswer; Qt::Key key; int answer;
                   unsigned int type; } cases[] = {
        {"Delete the sample?", nullptr, 1, Qt::Key_Return, 1, 0x34},
        {"Delete the sample?", nullptr, 0, Qt::Key_Return, 3, 0x134},
        {"Delete the sample?", nullptr, 2, Qt::Key_Return, 3, 0x134},
        {twentyNine.c_str(), nullptr, 3, Qt::Key_Return, 3, 0x134},
        // Above 29 lines the question becomes the details of the scrolling dialog, and counts twice.
        {thirty.c_str(), nullptr, 1, Qt::Key_Return, 1, 0},
        {"Leave them out?", details, 1, Qt::Key_Return, 1, 0},
        {"Leave them out?", details, 3, Qt::Key_Return, 3, 0},
        {"Leave them out?", details, 0, Qt::Key_Return, 3, 0},
        {"Leave them out?", details, 1, Qt::Key_Escape, 3, 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << korva::MeasureLines(c.question) << " lines, default " << c.defaultAnswer);
        Answer(mShown, Key(c.key));
        EXPECT_EQ(c.details ? mChannel.AskUserYesNo(c.question, c.details, "Samples", c.defaultAnswer)
                            : mChannel.AskUserYesNo(c.question, "Samples", c.defaultAnswer),
                  c.answer);
        EXPECT_EQ(std::tuple(mShown.type, mShown.title), std::tuple(c.type, "Samples"));
        if (c.type)
            EXPECT_EQ(std::tuple(mShown.kind, mShown.texts[kBoxText], mShown.buttons),
                      std::tuple("CustomMessageBoxDlg", c.question, Ids{IDYES, IDNO}));
        else
            EXPECT_EQ(std::tuple(mShown.kind, mShown.texts[YesNoDialog::kDetailsCtrlId],
                                 mShown.texts[YesNoDialog::kQuestionCtrlId]),
                      std::tuple("YesNoDialog", c.details ? c.details : c.question, c.details ? c.question : ""));
    }
    EXPECT_EQ(mChannel.GetUsage(), 10);
}

TEST_F(UserCommStandardTest, MultiButtonQuestionsShowTheirButtonsAndAnswerByTheDefault)
{
    using Ask = int (StandardUserComm::*)(const char*, const char*, const char*, int);
    const int yes = YesNoCancelAll::kYesCtrlId, yesToAll = YesNoCancelAll::kYesToAllCtrlId,
              no = YesNoCancelAll::kNoCtrlId, noToAll = YesNoCancelAll::kNoToAllCtrlId,
              cancel = YesNoCancelAll::kCancelCtrlId;
    // Every answer code is the default of one form; the others come through the scopes that remember them.
    const struct { Ask ask; Ids buttons; int defaultAnswer; } forms[] = {
        {&StandardUserComm::AskUserYesYesToAllNoNoToAllCancel, {yes, yesToAll, no, noToAll, cancel}, 3},
        {&StandardUserComm::AskUserYesYesToAllCancel, {yes, yesToAll, cancel}, 1},
        {&StandardUserComm::AskUserYesCancel, {yes, cancel}, 5},
    };
    for (const auto& form : forms) {
        // Return presses the default button, which the default answer chose.
        Answer(mShown, Key(Qt::Key_Return));
        EXPECT_EQ((mChannel.*form.ask)("Replace the file?", "results.csv\nchanged today", "Export", form.defaultAnswer),
                  form.defaultAnswer);
        EXPECT_EQ(std::tuple(mShown.kind, mShown.buttons, mShown.texts[YesNoCancelAll::kDetailsCtrlId], mShown.title),
                  std::tuple("YesNoCancelAll", form.buttons, "results.csv\nchanged today", "Export"));
        // Escape is cancel, whatever the default; a null title is the application's name.
        Answer(mShown, Key(Qt::Key_Escape));
        EXPECT_EQ((mChannel.*form.ask)("Replace the file?", "", nullptr, 1), 5);
        EXPECT_EQ(mShown.title, "Dialogs");
    }
    EXPECT_EQ(mChannel.GetUsage(), 6);
}

TEST_F(UserCommStandardTest, LongFatalErrorsAndInformsGoToTheScrollingDialog)
{
    const std::string nineteen = LinesOf(19), eighteen = LinesOf(18);
    const struct { bool inform; const std::string& text; unsigned int type; bool endNotice; } cases[] = {
        {true, nineteen, 0, false},
        {true, eighteen, MB_ICONASTERISK, false},
        {false, nineteen, 0, true},
        {false, eighteen, MB_ICONHAND, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << (c.inform ? "inform " : "fatal ") << korva::MeasureLines(c.text.c_str()));
        Answer(mShown, Key(Qt::Key_Return));
        c.inform ? mChannel.InformUser(c.text.c_str(), "Report", 0) : mChannel.FatalError(c.text.c_str(), "Report");
        EXPECT_EQ(std::tuple(mShown.kind, mShown.texts[c.type ? kBoxText : kScrollText], mShown.title, mShown.type,
                             mShown.texts.count(kEndNotice), mShown.texts.count(kBoxCheck)),
                  std::tuple(c.type ? "CustomMessageBoxDlg" : "FatalErrorDialog", c.text, "Report", c.type,
                             c.endNotice ? 1u : 0u, 0u));
    }

    // Null and empty texts show nothing but count.
    DialogSpy spy;
    mChannel.FatalError(nullptr, "Report");
    mChannel.InformUser("", "Report", 7);
    EXPECT_EQ(std::tuple(spy.Count(), mChannel.GetUsage()), std::tuple(0, 6));
}

TEST_F(UserCommStandardTest, MessageBoxHelperAddsTheExclamationOnlyWhereItBelongs)
{
    const struct { unsigned int type; unsigned int shown; Qt::Key key; int answer; } cases[] = {
        {MB_OK, MB_OK | MB_ICONEXCLAMATION, Qt::Key_Escape, IDOK},  // a box with only OK always answers OK
        {MB_OKCANCEL, MB_OKCANCEL | MB_ICONEXCLAMATION, Qt::Key_Escape, IDCANCEL},
        {MB_YESNOCANCEL, MB_YESNOCANCEL | MB_ICONEXCLAMATION, Qt::Key_Return, IDYES},
        {MB_YESNO | MB_DEFBUTTON2, MB_YESNO | MB_DEFBUTTON2 | MB_ICONEXCLAMATION, Qt::Key_Return, IDNO},
        {MB_RETRYCANCEL, MB_RETRYCANCEL, Qt::Key_Escape, IDCANCEL},
        {MB_ABORTRETRYIGNORE, MB_ABORTRETRYIGNORE, Qt::Key_Return, IDABORT},
        {MB_OK | MB_ICONASTERISK, MB_OK | MB_ICONASTERISK, Qt::Key_Return, IDOK},
    };
    for (const auto& c : cases) {
        App().calls.clear();
        std::vector<bool> callsWhileShown;
        Answer(mShown, [&](QWidget* dialog) {
            callsWhileShown = App().calls;
            Press(dialog, c.key);
        });
        EXPECT_EQ(korva::UserCommMessageBox("The file is locked.", nullptr, c.type), c.answer) << c.type;
        // Modeless windows are disabled for exactly the time the box is up.
        EXPECT_EQ(std::tuple(mShown.type, mShown.title, callsWhileShown, App().calls),
                  std::tuple(c.shown, "Dialogs", std::vector<bool>{false}, std::vector<bool>{false, true}));
    }
    // Only a null title falls back to the application's name.
    Answer(mShown, Key(Qt::Key_Return));
    korva::UserCommMessageBox("text", "", MB_OK);
    EXPECT_EQ(mShown.title, "");
}

TEST_F(UserCommStandardTest, SilencedInformIsReadFromAndWrittenToTheRegistry)
{
    // Not checked: shown in a plain box with a check box, without the title; nothing stored.
    Answer(mShown, Key(Qt::Key_Return));
    mChannel.InformUser("The audit trail was saved.", "Audit trail", 42);
    EXPECT_EQ(std::tuple(mShown.kind, mShown.texts.count(kBoxCheck), mShown.type, mShown.title),
              std::tuple("CustomMessageBoxDlg", 1u, 0u, "Dialogs"));
    EXPECT_EQ(Silence("42"), "");

    // Checked: silenced for good, long texts as well. Checked and closed with the
    // window's close, the box has no Cancel: nothing is taken.
    Answer(mShown, ClickOn(IDOK, kBoxCheck));
    mChannel.InformUser("The audit trail was saved.", "Audit trail", 42);
    Answer(mShown, [](QWidget* dialog) {
        Click(dialog, kBoxCheck);
        dialog->close();
    });
    mChannel.InformUser("Another one.", nullptr, 43);
    EXPECT_EQ(Silence("42") + "|" + Silence("43"), "0|");
    {
        DialogSpy spy;
        mChannel.InformUser("The audit trail was saved.", "Audit trail", 42);
        mChannel.InformUser(LinesOf(25).c_str(), "Audit trail", 42);
        EXPECT_EQ(std::tuple(spy.Count(), mChannel.GetUsage()), std::tuple(0, 5));
    }

    // Only a DWORD 0 silences; the key is opened for reading and writing, and
    // the value names keep the 32-bit form of the ids.
    RegistrySection key = korva::OpenInformSilenceKey();
    ASSERT_TRUE(key.WriteInt("1", 1) && key.WriteInt("2", -1) && key.WriteKey("3", "0"));
    for (unsigned long id : {1ul, 2ul, 3ul, 5ul})
        EXPECT_FALSE(korva::IsInformSilenced(key, id)) << id;
    EXPECT_TRUE(korva::SilenceInform(key, 9) && korva::IsInformSilenced(key, 9) && Silence("9") == "0");
    EXPECT_EQ(korva::GetInformSilenceValueName(4000000000ul), "4000000000");
}

const BreakMessage kHide{BreakWindowChannel::eShowWindow, 0.0f};
const BreakMessage kShow{BreakWindowChannel::eShowWindow, 1.0f};

class UserCommProgressTest : public korva::test::ProgressFrameFixture
{
protected:
    void SetUp() override
    {
        ProgressFrameFixture::SetUp();
        MakeFrame();
        BreakWindowChannel::SetChannel(&mWindow);
        mProgress = std::make_unique<Progress>(nullptr, "Import", 0.0f, 1.0f, false, true, true);
        mWindow.messages.clear();
    }
    void TearDown() override
    {
        mProgress.reset();
        ProgressFrameFixture::TearDown();
    }

    korva::test::RecordingBreakWindow mWindow;
    std::unique_ptr<Progress> mProgress;
    StandardUserComm mChannel;
};

TEST_F(UserCommProgressTest, EveryDialogIsBracketedByHideAndShow)
{
    // One call for each way to a dialog: the three "to all" questions share one, and
    // fatal errors and informs step in front before they choose their dialog.
    const std::string longText(40, '\n');
    const std::vector<std::function<void()>> calls = {
        [&] { mChannel.AskUserYesNo("Stop the import?", nullptr, 1); },
        [&] { mChannel.AskUserYesNo(longText.c_str(), nullptr, 1); },
        [&] { mChannel.AskUserYesNo("Stop?", "details", nullptr, 1); },
        [&] { mChannel.AskUserYesCancel("Replace?", "", nullptr, 1); },
        [&] { mChannel.FatalError("Disk full.", nullptr); },
        [&] { mChannel.InformUser(longText.c_str(), nullptr, 0); },
    };
    for (std::size_t i = 0; i < calls.size(); ++i) {
        mWindow.messages.clear();
        std::vector<BreakMessage> whileShown;
        korva::test::WhenModal([&](QWidget* dialog) {
            whileShown = mWindow.messages;
            korva::test::Press(dialog, Qt::Key_Return);
        });
        calls[i]();
        EXPECT_EQ(whileShown, std::vector<BreakMessage>{kHide}) << "call " << i;
        EXPECT_EQ(mWindow.messages, (std::vector<BreakMessage>{kHide, kShow})) << "call " << i;
    }
}

} // namespace
