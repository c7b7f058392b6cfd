#include <KORVAutlwin/progress/InProcessBreakWindow.h>

#include <KORVAutlwin/progress/BreakDialog.h>
#include <KORVAutlwin/progress/BreakStartInfo.h>

#include <QApplication>
#include <QThread>

InProcessBreakWindow::InProcessBreakWindow() = default;

InProcessBreakWindow::~InProcessBreakWindow()
{
    // After the application is gone its widgets must not be touched any more.
    if (dialog && QCoreApplication::instance())
        delete dialog.data();
}

bool InProcessBreakWindow::Create()
{
    if (dialog)
        return true;
    auto* application = qobject_cast<QApplication*>(QCoreApplication::instance());
    if (!application || QThread::currentThread() != application->thread())
        return false;
    dialog = new BreakDialog([this] { OnStopConfirmed(); });
    return true;
}

bool InProcessBreakWindow::IsWindow() const
{
    return !dialog.isNull();
}

void InProcessBreakWindow::Finish()
{
    client = nullptr;
    if (dialog)
        dialog->Finish();
}

void InProcessBreakWindow::SpinStep()
{
    if (dialog)
        dialog->SpinStep();
}

void InProcessBreakWindow::SpinRest()
{
    if (dialog)
        dialog->SpinRest();
}

void InProcessBreakWindow::SetTitle(const char* title)
{
    if (dialog)
        dialog->SetTitle(QString::fromUtf8(title ? title : ""));
}

void InProcessBreakWindow::SetGaugeValue(float value)
{
    if (dialog)
        dialog->SetGaugeValue(value);
}

void InProcessBreakWindow::SetGaugeRange(float low, float high)
{
    if (dialog)
        dialog->SetGaugeRange(low, high);
}

void InProcessBreakWindow::ShowWindow(bool show)
{
    if (dialog)
        dialog->ShowWindow(show);
}

void InProcessBreakWindow::Start(unsigned int delay, Progress* progress, const QRect& mainWindow)
{
    client = progress;
    if (dialog && progress)
        dialog->Start(StartInfo(*progress, delay, mainWindow));
}

QWidget* InProcessBreakWindow::GetWidget() const
{
    return dialog.data();
}

void InProcessBreakWindow::OnStopConfirmed()
{
    if (client)
        SetBreakPressed(*client);
}
