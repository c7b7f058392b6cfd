// The internal error dialog, offscreen, answered with real mouse and keyboard
// input. Finish ends the process, so those cases run in the helper program.

#include "TestApplication.h"
#include "frame/helpers/ChildProcess.h"

#include <KORVAutlwin/frame/InternalErrorDialog.h>

#include <KORVAutl/LanguageString.h>
#include <KORVAutl/TsString.h>
#include <KORVAutl/TsSystemInfo.h>

namespace {

using namespace korva::test;

QString Text(unsigned int id)
{
    return QString::fromUtf8(LanguageString::Get(id));
}

TEST(FailureDialogTest, InternalErrorDialogShowsTheTextEscapeAndCancelGoOn)
{
    Application();
    QStringList captions;
    WhenModal([&](QWidget* modal) {
        auto* wizard = qobject_cast<QWizard*>(modal);
        auto* text = Control<QPlainTextEdit>(wizard, 13068);
        auto* box = Control<QCheckBox>(wizard, 13040);
        EXPECT_EQ(text->toPlainText(), QStringLiteral("Division by zero in the model.\nSecond line."));
        EXPECT_TRUE(text->isReadOnly());
        EXPECT_EQ(box->text().toStdString(), TsString::Format(13318, TsSystemInfo::GetApplicationName().c_str()));
        EXPECT_EQ(wizard->currentPage()->title(), Text(13317).section(QLatin1Char('\n'), 0, 0));
        EXPECT_FALSE(wizard->button(QWizard::BackButton)->isVisible());
        // The Finish caption follows the restart check box.
        QAbstractButton* finish = wizard->button(QWizard::FinishButton);
        captions << finish->text();
        QTest::mouseClick(box, Qt::LeftButton);
        captions << finish->text();
        QTest::keyClick(box, Qt::Key_Space);
        captions << finish->text();
        QTest::keyClick(wizard, Qt::Key_Escape);
    });
    ShowInternalErrorDialog("Division by zero in the model.\nSecond line.");
    EXPECT_EQ(captions, (QStringList{Text(13324), Text(13323), Text(13324)}));
}

TEST(FailureDialogTest, FinishExitsAndWithRestartStartsTheProgramAgain)
{
    for (const bool restart : {true, false}) {
        const std::string mode = restart ? "dialog-restart" : "dialog-finish";
        SCOPED_TRACE(mode);
        TempDir folder;
        const auto end = RunHelper(mode, folder.Path());
        EXPECT_EQ(end.exitCode, 1);
        EXPECT_FALSE(std::filesystem::exists(folder.File("returned"))) << "Finish does not return to the caller";
        // The new process, started with the same arguments, outlives the first one. Without
        // a restart, give a program started anyway time to report.
        const std::string expected = std::string(KORVA_FAILURE_HELPER) + "\n" + mode + "\n" + folder.Path() + "\n";
        EXPECT_EQ(WaitFor([&] { return ReadFile(folder.File("restarted")) == expected; },
                          std::chrono::milliseconds(restart ? 10000 : 300)),
                  restart);
        EXPECT_EQ(std::filesystem::exists(folder.File("restarted")), restart);
    }
}

} // namespace
