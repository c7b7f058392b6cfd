#include <KORVAutlwin/frame/InternalErrorDialog.h>

#include <KORVAutlwin/platform/ChildProcess.h>

#include <KORVAutl/LanguageString.h>
#include <KORVAutl/Log.h>
#include <KORVAutl/TsString.h>
#include <KORVAutl/TsSystemInfo.h>

#include <QApplication>
#include <QCheckBox>
#include <QPlainTextEdit>
#include <QThread>
#include <QVBoxLayout>
#include <QWizard>

#include <string>
#include <vector>

#include <unistd.h>

namespace {

constexpr unsigned int kHeaderText = 13317;  // title, line feed, subtitle
constexpr unsigned int kRestartText = 13318; // with the application name
constexpr unsigned int kFinishRestart = 13323;
constexpr unsigned int kFinishEnd = 13324;
constexpr int kTextCtrlId = 13068;
constexpr int kRestartCtrlId = 13040;

QString Text(unsigned int id)
{
    return QString::fromUtf8(LanguageString::Get(id));
}

} // namespace

HandleExceptionPage::HandleExceptionPage(const char* text, QWidget* parent) : QWizardPage(parent)
{
    const QString header = Text(kHeaderText);
    const qsizetype lineFeed = header.indexOf(QLatin1Char('\n'));
    setTitle(lineFeed < 0 ? header : header.left(lineFeed));
    if (lineFeed >= 0)
        setSubTitle(header.mid(lineFeed + 1));

    mText = new QPlainTextEdit(this);
    mText->setReadOnly(true);
    mText->setPlainText(QString::fromUtf8(text ? text : ""));
    mText->setProperty("ctrlId", kTextCtrlId);

    const std::string restart = TsString::Format(kRestartText, TsSystemInfo::GetApplicationName().c_str());
    mRestart = new QCheckBox(QString::fromStdString(restart), this);
    mRestart->setProperty("ctrlId", kRestartCtrlId);
    connect(mRestart, &QCheckBox::toggled, this, [this] { UpdateFinishText(); });

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(mText, 1);
    layout->addWidget(mRestart);
    setFinalPage(true);
    UpdateFinishText();
}

bool HandleExceptionPage::IsRestartChecked() const
{
    return mRestart->isChecked();
}

void HandleExceptionPage::initializePage()
{
    UpdateFinishText();
}

void HandleExceptionPage::UpdateFinishText()
{
    setButtonText(QWizard::FinishButton, Text(mRestart->isChecked() ? kFinishRestart : kFinishEnd));
}

namespace korva {

bool RestartApplication()
{
    std::vector<std::string> arguments = ChildProcess::OwnCommandLine();
    if (arguments.empty())
        arguments.push_back(TsSystemInfo::GetExecutablePath());
    // Detached: the new program belongs to no one and outlives us.
    return ChildProcess::SpawnDetached(ChildProcess::OwnProgram(), arguments) == 0;
}

} // namespace korva

void ShowInternalErrorDialog(const char* text)
{
    // Set while the dialog is up: an error in the events behind it is only logged,
    // so that a handler failing on every paint does not stack dialogs.
    static bool showing = false;
    try {
        Log::WriteMessage("InternalErrorDialog", "ShowInternalErrorDialog", text ? text : "", Log::eLogicFailure);
        if (showing || !qobject_cast<QApplication*>(QCoreApplication::instance()) ||
            QThread::currentThread() != QCoreApplication::instance()->thread())
            return;
        showing = true;
        struct Reset
        {
            ~Reset() { showing = false; }
        } reset;

        QWizard wizard;
        wizard.setWizardStyle(QWizard::ModernStyle);
        wizard.setOptions(QWizard::NoBackButtonOnStartPage | QWizard::NoBackButtonOnLastPage);
        wizard.setWindowTitle(QString::fromStdString(TsSystemInfo::GetApplicationName()));
        wizard.setWindowModality(Qt::ApplicationModal);
        auto* page = new HandleExceptionPage(text, &wizard);
        wizard.addPage(page);
        if (wizard.exec() != QDialog::Accepted)
            return;
        if (page->IsRestartChecked() && !korva::RestartApplication())
            Log::WriteMessage("InternalErrorDialog", "ShowInternalErrorDialog", "The application could not be started again.",
                              Log::eSystemCallFailed);
        // The state of the process is in doubt: no clean-up at all.
        _exit(1);
    } catch (...) {
        // Nothing may leave here: the caller is an error handler already.
    }
}
