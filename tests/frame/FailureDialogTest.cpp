// The internal error dialog and the fatal error dialog, offscreen, answered
// with real mouse and keyboard input. Finish ends the process, so those cases
// run in the helper program as a child.

#include "TestApplication.h"
#include "frame/helpers/ChildProcess.h"

#include <KORVAutlwin/frame/FatalErrorDialog.h>
#include <KORVAutlwin/frame/InternalErrorDialog.h>

#include <KORVAutl/LanguageString.h>
#include <KORVAutl/TsString.h>
#include <KORVAutl/TsSystemInfo.h>

#include <QAbstractButton>
#include <QCheckBox>
#include <QDialogButtonBox>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <QWizard>

#include <gtest/gtest.h>

#include <string>

namespace {

using korva::test::ReadWholeFile;
using korva::test::RunHelper;
using korva::test::TempFolder;
using korva::test::WaitForFile;

template <typename Widget>
Widget* Control(QWidget* dialog, int ctrlId)
{
    for (Widget* child : dialog->findChildren<Widget*>())
        if (child->property("ctrlId").toInt() == ctrlId)
            return child;
    return nullptr;
}

QString Text(unsigned int id)
{
    return QString::fromUtf8(LanguageString::Get(id));
}

// Closes whatever modal window is still up after `seconds`, so that a test that
// failed to answer a dialog fails instead of hanging.
class Watchdog
{
public:
    explicit Watchdog(int seconds)
    {
        mTimer.setSingleShot(true);
        QObject::connect(&mTimer, &QTimer::timeout, [] {
            while (QWidget* modal = QApplication::activeModalWidget())
                modal->close();
        });
        mTimer.start(seconds * 1000);
    }

private:
    QTimer mTimer;
};

class FailureDialogTest : public ::testing::Test
{
protected:
    void SetUp() override { korva::test::Application(); }
};

TEST_F(FailureDialogTest, EscapeAndCancelGoOn)
{
    Watchdog watchdog(15);
    int answered = 0;
    QString shownText;
    QString restartText;
    korva::test::WhenModal([&](QWidget* modal) {
        ++answered;
        auto* wizard = qobject_cast<QWizard*>(modal);
        ASSERT_NE(wizard, nullptr);
        if (auto* text = Control<QPlainTextEdit>(wizard, 13068)) {
            shownText = text->toPlainText();
            EXPECT_TRUE(text->isReadOnly());
        }
        if (auto* box = Control<QCheckBox>(wizard, 13040))
            restartText = box->text();
        QTest::keyClick(wizard, Qt::Key_Escape);
    });
    ShowInternalErrorDialog("Division by zero in the model.\nSecond line.");
    EXPECT_EQ(answered, 1);
    EXPECT_EQ(shownText, QStringLiteral("Division by zero in the model.\nSecond line."));
    EXPECT_EQ(restartText.toStdString(), TsString::Format(13318, TsSystemInfo::GetApplicationName().c_str()));

    // The dialog can be shown again, and Cancel goes on too.
    korva::test::WhenModal([&](QWidget* modal) {
        ++answered;
        QTest::mouseClick(static_cast<QWizard*>(modal)->button(QWizard::CancelButton), Qt::LeftButton);
    });
    ShowInternalErrorDialog("Again.");
    EXPECT_EQ(answered, 2);
}

TEST_F(FailureDialogTest, FinishCaptionFollowsTheCheckBox)
{
    Watchdog watchdog(15);
    QStringList captions;
    QString title;
    korva::test::WhenModal([&](QWidget* modal) {
        auto* wizard = qobject_cast<QWizard*>(modal);
        ASSERT_NE(wizard, nullptr);
        title = wizard->currentPage()->title();
        QAbstractButton* finish = wizard->button(QWizard::FinishButton);
        auto* box = Control<QCheckBox>(wizard, 13040);
        ASSERT_NE(box, nullptr);
        EXPECT_FALSE(wizard->button(QWizard::BackButton)->isVisible());
        captions << finish->text();
        QTest::mouseClick(box, Qt::LeftButton);
        captions << finish->text();
        QTest::keyClick(box, Qt::Key_Space);
        captions << finish->text();
        QTest::keyClick(wizard, Qt::Key_Escape);
    });
    ShowInternalErrorDialog("text");
    EXPECT_EQ(captions, (QStringList{Text(13324), Text(13323), Text(13324)}));
    EXPECT_NE(Text(13323), Text(13324));
    EXPECT_EQ(title, Text(13317).section(QLatin1Char('\n'), 0, 0));
}

TEST_F(FailureDialogTest, FinishWithRestartStartsTheProgramAgainAndExits)
{
    TempFolder folder;
    const auto end = RunHelper("dialog-restart", folder.Path());
    ASSERT_TRUE(end.started && !end.timedOut);
    EXPECT_TRUE(end.exited);
    EXPECT_EQ(end.exitCode, 1);
    // Finish does not return to the caller.
    EXPECT_FALSE(std::filesystem::exists(folder.File("returned")));
    // The new process, started with the same arguments, outlives the first one.
    ASSERT_TRUE(WaitForFile(folder.File("restarted"), std::chrono::seconds(10)));
    const std::string expected =
        std::string(KORVA_FAILURE_HELPER) + "\ndialog-restart\n" + folder.Path() + "\n";
    std::string arguments;
    for (int i = 0; i < 200 && arguments != expected; ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
        arguments = ReadWholeFile(folder.File("restarted"));
    }
    EXPECT_EQ(arguments, expected);
}

TEST_F(FailureDialogTest, FinishWithoutRestartOnlyExits)
{
    TempFolder folder;
    const auto end = RunHelper("dialog-finish", folder.Path());
    ASSERT_FALSE(end.timedOut);
    EXPECT_TRUE(end.exited);
    EXPECT_EQ(end.exitCode, 1);
    EXPECT_FALSE(std::filesystem::exists(folder.File("returned")));
    // A restart would have run before the exit; give a started program time to report anyway.
    EXPECT_FALSE(WaitForFile(folder.File("restarted"), std::chrono::milliseconds(300)));
}

TEST_F(FailureDialogTest, FatalErrorDialog)
{
    Watchdog watchdog(15);
    const std::string longText = "Line 1 of the report\nLine 2 of the report\n";

    for (const bool inform : {false, true}) {
        FatalErrorDialog dialog(longText.c_str(), inform ? "Report" : nullptr, nullptr, inform);
        bool noticeVisible = !inform;
        QString shown;
        bool readOnly = false;
        korva::test::WhenModal([&](QWidget* modal) {
            auto* notice = Control<QLabel>(modal, 10000);
            auto* text = Control<QPlainTextEdit>(modal, 10001);
            ASSERT_NE(notice, nullptr);
            ASSERT_NE(text, nullptr);
            noticeVisible = notice->isVisible();
            shown = text->toPlainText();
            readOnly = text->isReadOnly();
            auto* buttons = modal->findChild<QDialogButtonBox*>();
            ASSERT_NE(buttons, nullptr);
            QTest::mouseClick(buttons->button(QDialogButtonBox::Ok), Qt::LeftButton);
        });
        EXPECT_EQ(dialog.exec(), QDialog::Accepted);
        EXPECT_EQ(noticeVisible, !inform);
        EXPECT_EQ(shown.toStdString(), longText);
        EXPECT_TRUE(readOnly);
        EXPECT_EQ(dialog.windowTitle().toStdString(), inform ? "Report" : TsSystemInfo::GetApplicationName());
    }
}

} // namespace
