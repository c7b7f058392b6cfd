// A small program built against the installed KORVAutlwin: an application object
// that reports progress, reads its settings and asks the user a question.
//   korva-consumer [--answer-with-key]
// With --answer-with-key the question is answered by pressing Return on its
// default button, No, so the program runs to its end without anybody at the keyboard.

#include <KORVAutlwin/frame/MessageBoxTypes.h>
#include <KORVAutlwin/frame/TsApp.h>
#include <KORVAutlwin/frame/TsMessageBox.h>
#include <KORVAutlwin/progress/Progress.h>

#include <KORVAutl/ConfigurationSection.h>
#include <KORVAutl/TsFileUtl.h>
#include <KORVAutl/TsSystemInfo.h>

#include <QApplication>
#include <QKeyEvent>
#include <QTimer>
#include <QWidget>

#include <cstdio>
#include <cstring>

KORVA_DECLARE_VERSION(1, 0, 0, 0);

namespace {

bool gAnswerWithKey = false;

class ConsumerApp : public TsApp
{
public:
    ConsumerApp() : TsApp("KorvaConsumer") {}

    bool InitInstance() override
    {
        SetRegistryLocation();
        Progress::InitProgress();
        {
            Progress progress(nullptr, "Counting", 0, 10, false, false);
            for (int step = 0; step <= 10; ++step)
                progress.Set(static_cast<float>(step));
            std::printf("progress: %g of 10\n", progress.GetValue());
        }

        int runs = 0;
        appSettings->ReadInt("Runs", runs);
        appSettings->WriteInt("Runs", runs + 1);
        appSettings->Flush();
        std::printf("setting Runs: %d\n", runs);
        std::printf("break window program: %s\n", TsGetCompanionProgramPath("breakwin").c_str());

        if (gAnswerWithKey)
            QTimer::singleShot(200, [] { PressOnActiveWindow(Qt::Key_Return); });
        const int answer = TsMessageBox("Go on with the example?", MB_YESNO | MB_ICONQUESTION | MB_DEFBUTTON2);
        std::printf("answer: %s\n", answer == IDYES ? "yes" : answer == IDNO ? "no" : "other");
        mExitCode = answer == IDNO ? 0 : 1;
        return false;
    }

    int ExitInstance() override { return mExitCode; }

private:
    static void PressOnActiveWindow(Qt::Key key)
    {
        QWidget* box = QApplication::activeModalWidget();
        if (!box) {
            QTimer::singleShot(100, [key] { PressOnActiveWindow(key); });
            return;
        }
        const QString text = key == Qt::Key_Return ? QStringLiteral("\r") : QString();
        QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier, text);
        QKeyEvent release(QEvent::KeyRelease, key, Qt::NoModifier, text);
        QWidget* target = box->focusWidget() ? box->focusWidget() : box;
        QApplication::sendEvent(target, &press);
        QApplication::sendEvent(target, &release);
    }

    int mExitCode = 1;
};

} // namespace

int main(int argc, char** argv)
{
    for (int i = 1; i < argc; ++i)
        gAnswerWithKey = gAnswerWithKey || std::strcmp(argv[i], "--answer-with-key") == 0;
    ConsumerApp app;
    return app.Run(argc, argv);
}
