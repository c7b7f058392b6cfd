#include <KORVAutlwin/frame/InternalErrorDialog.h>

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

#include <cerrno>
#include <string>
#include <vector>

#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
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

// The arguments this process was started with, as the kernel keeps them
// (Qt removes the ones it consumed from its own copy).
std::vector<std::string> CommandLine()
{
    std::vector<std::string> arguments;
    const int fd = open("/proc/self/cmdline", O_RDONLY | O_CLOEXEC);
    if (fd < 0)
        return arguments;
    std::string content;
    char buffer[4096];
    for (;;) {
        const ssize_t got = read(fd, buffer, sizeof(buffer));
        if (got < 0 && errno == EINTR)
            continue;
        if (got <= 0)
            break;
        content.append(buffer, static_cast<std::size_t>(got));
    }
    close(fd);
    std::size_t start = 0;
    while (start < content.size()) {
        const std::size_t end = content.find('\0', start);
        arguments.push_back(content.substr(start, end == std::string::npos ? std::string::npos : end - start));
        if (end == std::string::npos)
            break;
        start = end + 1;
    }
    return arguments;
}

void WriteAll(int fd, const void* data, std::size_t size)
{
    while (write(fd, data, size) < 0 && errno == EINTR) {
    }
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
    std::vector<std::string> arguments = CommandLine();
    if (arguments.empty())
        arguments.push_back(TsSystemInfo::GetExecutablePath());
    std::vector<char*> argv;
    for (std::string& argument : arguments)
        argv.push_back(argument.data());
    argv.push_back(nullptr);

    // The new process reports a failed exec through this pipe; a successful exec closes it.
    int report[2];
    if (pipe2(report, O_CLOEXEC) != 0)
        return false;

    // Two forks: the middle process ends at once, so the new program belongs to
    // no one and outlives us. Only async-signal-safe calls after fork.
    const pid_t middle = fork();
    if (middle == 0) {
        close(report[0]);
        setsid();
        const pid_t program = fork();
        if (program == 0) {
            sigset_t none;
            sigemptyset(&none);
            sigprocmask(SIG_SETMASK, &none, nullptr);
            // Our files are not the new program's business.
            if (close_range(3, ~0U, CLOSE_RANGE_CLOEXEC) != 0)
                for (int fd = 3; fd < 65536; ++fd)
                    fcntl(fd, F_SETFD, FD_CLOEXEC);
            execv("/proc/self/exe", argv.data());
            const int error = errno;
            WriteAll(report[1], &error, sizeof(error));
            _exit(127);
        }
        _exit(program < 0 ? 1 : 0);
    }
    close(report[1]);
    if (middle < 0) {
        close(report[0]);
        return false;
    }
    int status = 0;
    while (waitpid(middle, &status, 0) < 0 && errno == EINTR) {
    }
    int error = 0;
    ssize_t got;
    do
        got = read(report[0], &error, sizeof(error));
    while (got < 0 && errno == EINTR);
    close(report[0]);
    return WIFEXITED(status) && WEXITSTATUS(status) == 0 && got == 0;
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
