// The workbench: the suite shell that shows every part of the library at work,
// in an MDI frame with a splash at start.
//   Workbench [--screenshot FILE [--command ID [--window [--wait MS]]]]
// With --screenshot the main window is saved as a picture once it has been
// shown, and the program ends (run it with QT_QPA_PLATFORM=offscreen to need no
// display). With --command as well, command ID runs first and the picture is of
// the dialog (or drop-down) it opens, which is then closed; with --window, of
// the main window once the command has shown its document.

#include "WorkbenchFrame.h"

#include <KORVAutlwin/frame/GUIUtilities.h>
#include <KORVAutlwin/frame/StandardUserComm.h>
#include <KORVAutlwin/frame/TsApp.h>
#include <KORVAutlwin/frame/TsStartWindow.h>
#include <KORVAutlwin/progress/Progress.h>

#include <KORVAutl/ConfigurationSection.h>
#include <KORVAutl/Log.h>
#include <KORVAutl/TsSystemInfo.h>

#include <QApplication>
#include <QDialog>
#include <QDateTime>
#include <QPixmap>
#include <QTimer>
#include <QWidget>

#include <cstdio>

KORVA_DECLARE_VERSION(1, 0, 0, 0);

namespace {

class WorkbenchApp : public TsApp
{
public:
    WorkbenchApp() : TsApp("Workbench") {}

    bool InitInstance() override
    {
        SetRegistryLocation();
        RecordStart();
        QApplication::setWindowIcon(QPixmap::fromImage(GUIUtilities::LoadPicture(GetAboutBitmap())));
        // Code below the windows asks and informs the user through dialogs.
        UserComm::SetUserComm(&mUserComm);
        // The frame takes the splash down two seconds after it is made.
        TsStartWindow(GetAboutBitmap(),
                      {GetAppName(), "Version " + TsSystemInfo::GetApplicationVersion(TsSystemInfo::eVersionLong),
                       "Starting ..."});

        auto* frame = new WorkbenchFrame(*this);
        frame->setAttribute(Qt::WA_DeleteOnClose);
        SetMainWnd(frame);
        Progress::InitProgress();
        frame->show();

        const QStringList arguments = QCoreApplication::arguments();
        const int at = arguments.indexOf(QStringLiteral("--screenshot"));
        if (at >= 0) {
            if (at + 1 >= arguments.size()) {
                std::fprintf(stderr, "Workbench: --screenshot needs a file name\n");
                return false;
            }
            mScreenshot = arguments[at + 1];
            const int command = arguments.indexOf(QStringLiteral("--command"));
            if (command >= 0 && command + 1 < arguments.size()) {
                const unsigned int id = arguments[command + 1].toUInt();
                // A window that renders a web page needs longer than 700 ms: --wait gives the time.
                const int wait = arguments.indexOf(QStringLiteral("--wait"));
                const int delay = wait >= 0 && wait + 1 < arguments.size() ? arguments[wait + 1].toInt() : 700;
                if (arguments.contains(QStringLiteral("--window")))
                    QTimer::singleShot(delay, frame, [this, frame] { SaveScreenshot(frame); });
                else
                    QTimer::singleShot(300, frame, [this, id] { ScreenshotOfDialog(id); });
                QTimer::singleShot(200, frame, [frame, id] { frame->ExecuteCommand(id); });
            } else {
                QTimer::singleShot(500, frame, [this, frame] { SaveScreenshot(frame); });
            }
        }
        return true;
    }

    int ExitInstance() override
    {
        UserComm::SetUserComm(nullptr);
        Log::WriteMessage("WorkbenchApp", "ExitInstance", "Workbench ends.", Log::eMilestone);
        return mExitCode;
    }

private:
    void RecordStart()
    {
        int starts = 0;
        appSettings->ReadInt("StartCount", starts);
        appSettings->WriteInt("StartCount", starts + 1);
        appSettings->WriteKey("LastStart", QDateTime::currentDateTime().toString(Qt::ISODate).toStdString());
        appSettings->Flush();
        WriteProfileInt("Workbench", "Starts", GetProfileInt("Workbench", "Starts", 0) + 1);
        Log::WriteMessage("WorkbenchApp", "InitInstance", "Workbench starts.", Log::eMilestone);
    }

    void SaveScreenshot(QWidget* frame)
    {
        if (!frame->grab().save(mScreenshot)) {
            std::fprintf(stderr, "Workbench: cannot write %s\n", mScreenshot.toLocal8Bit().constData());
            mExitCode = 1;
        }
        frame->close();
    }

    // Waits for the dialog of the command, takes its picture, closes it and ends.
    void ScreenshotOfDialog(unsigned int id)
    {
        QWidget* dialog = QApplication::activeModalWidget();
        if (!dialog)
            dialog = QApplication::activePopupWidget(); // a drop-down that the command opened
        if (!dialog)
            dialog = qobject_cast<QDialog*>(QApplication::activeWindow()); // a modeless dialog
        if (!dialog) {
            if (++mTries > 50) {
                std::fprintf(stderr, "Workbench: command %u opened no dialog\n", id);
                mExitCode = 1;
                GetMainWnd()->close();
                return;
            }
            QTimer::singleShot(100, GetMainWnd(), [this, id] { ScreenshotOfDialog(id); });
            return;
        }
        if (!dialog->grab().save(mScreenshot))
            mExitCode = 1;
        CloseWhenIdle();
    }

    // Answers every dialog the command still shows (with its Escape or close
    // answer) and closes the main window only once the command has returned:
    // closing it under a running command would delete the dialogs it owns.
    void CloseWhenIdle()
    {
        QWidget* dialog = QApplication::activeModalWidget();
        if (!dialog)
            dialog = QApplication::activePopupWidget();
        if (dialog) {
            dialog->close();
            QTimer::singleShot(100, GetMainWnd(), [this] { CloseWhenIdle(); });
            return;
        }
        GetMainWnd()->close();
    }

    StandardUserComm mUserComm;
    QString mScreenshot;
    int mTries = 0;
    int mExitCode = 0;
};

} // namespace

int main(int argc, char** argv)
{
    WorkbenchApp app;
    return app.Run(argc, argv);
}
