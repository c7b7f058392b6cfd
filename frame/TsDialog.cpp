#include <KORVAutlwin/frame/TsDialog.h>

#include <KORVAutlwin/frame/CommandAction.h>
#include <KORVAutlwin/frame/InternalErrorDialog.h>
#include <KORVAutlwin/frame/MessageBoxTypes.h>

#include <KORVAutl/Exception.h>

#include <QAbstractEventDispatcher>
#include <QFontMetrics>
#include <QKeyEvent>
#include <QThread>

#include <atomic>

namespace {
std::atomic<int> gDefaultExceptionsHandled{0xF};
std::function<void(unsigned int)> gHelpTopicHandler;
} // namespace

ExceptionGuardedWindow::~ExceptionGuardedWindow() = default;

thread_local TsDialog::ExecFrame* TsDialog::msInnermostExec = nullptr;

TsDialog::TsDialog() : QDialog(nullptr), mExceptionsHandled(GetDefaultExceptionsHandled())
{
    Construct(nullptr, 0);
}

TsDialog::TsDialog(const char* templateName, QWidget* parent, unsigned int helpTopic)
    : QDialog(parent), mExceptionsHandled(GetDefaultExceptionsHandled())
{
    if (templateName)
        setObjectName(QString::fromUtf8(templateName));
    Construct(parent, helpTopic);
}

TsDialog::TsDialog(unsigned int templateId, QWidget* parent, unsigned int helpTopic)
    : QDialog(parent), mExceptionsHandled(GetDefaultExceptionsHandled()), mTemplateId(templateId)
{
    Construct(parent, helpTopic);
}

TsDialog::~TsDialog() = default;

void TsDialog::Construct(QWidget*, unsigned int helpTopic)
{
    mHelpTopicId = helpTopic;
    OnCommand(IDHELP, [this] { OnHelp(); });
    OnUpdateCommand(IDHELP, [this](CCmdUI* cmdUI) { OnUpdateHelp(cmdUI); });
}

void TsDialog::SetDefaultExceptionsHandled(int mask)
{
    gDefaultExceptionsHandled.store(mask);
}

int TsDialog::GetDefaultExceptionsHandled()
{
    return gDefaultExceptionsHandled.load();
}

void TsDialog::ShowHelpTopic(unsigned int topic)
{
    if (gHelpTopicHandler && topic != 0 && topic != static_cast<unsigned int>(-1))
        gHelpTopicHandler(topic);
}

void TsDialog::SetHelpTopicHandler(std::function<void(unsigned int)> handler)
{
    gHelpTopicHandler = std::move(handler);
}

void TsDialog::ShowMaximiseButton()
{
    setWindowFlag(Qt::WindowMaximizeButtonHint, true);
}

namespace {
// The dialog base units of a font, as the framework measures them.
QSize BaseUnits(const QFont& font)
{
    const QFontMetrics metrics(font);
    const int width = metrics.horizontalAdvance(QStringLiteral("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz"));
    return QSize((width / 26 + 1) / 2, metrics.height());
}
} // namespace

int TsDialog::FromDlgX(int x) const
{
    // MapDialogRect of 1000 units, then scaled back: small values are not rounded on their own.
    const long mapped = 1000L * BaseUnits(font()).width() / 4;
    return static_cast<int>(static_cast<long>(x) * mapped / 1000);
}

int TsDialog::FromDlgY(int y) const
{
    const long mapped = 1000L * BaseUnits(font()).height() / 8;
    return static_cast<int>(static_cast<long>(y) * mapped / 1000);
}

bool TsDialog::HandleWindowProcException(int mask, std::exception_ptr error)
{
    // One text for the process, as the dialog shows it; not reentrant by design.
    static std::string text;
    try {
        std::rethrow_exception(error);
    } catch (const Exception& exception) {
        if (!(mask & eHandleException))
            return false;
        text = exception.Why();
    } catch (const std::exception& exception) {
        if (!(mask & eHandleStdException))
            return false;
        text = exception.what();
    } catch (const std::exception* exception) {
        if (!(mask & eHandleStdException))
            return false;
        text = exception ? exception->what() : "";
    } catch (...) {
        if (!(mask & eHandleUnknown))
            return false;
        text = kUnknownWindowProcException;
    }
    ShowInternalErrorDialog(text.c_str());
    return true;
}

int TsDialog::exec()
{
    ExecFrame frame{this, nullptr, msInnermostExec};
    msInnermostExec = &frame;
    int result = QDialog::Rejected;
    try {
        result = QDialog::exec();
    } catch (...) {
        msInnermostExec = frame.previous;
        throw;
    }
    msInnermostExec = frame.previous;
    if (frame.escaped)
        std::rethrow_exception(frame.escaped);
    return result;
}

bool TsDialog::PassToEnclosingExec(std::exception_ptr error)
{
    ExecFrame* frame = msInnermostExec;
    if (!frame)
        return false;
    if (!frame->escaped)
        frame->escaped = error;
    // Not the virtual reject(): the dialog must close whatever a derived class would decide.
    frame->dialog->QDialog::done(QDialog::Rejected);
    return true;
}

void TsDialog::OnKickIdle()
{
    korva::UpdateDialogControls(this, this, false);
    for (QWidget* child : findChildren<QWidget*>())
        if (auto* idle = dynamic_cast<IdleUpdateCmdUI*>(child))
            idle->OnIdleUpdateCmdUI(this, true);
}

void TsDialog::OnHelp()
{
    if (gHelpTopicHandler && mHelpTopicId != 0 && mHelpTopicId != static_cast<unsigned int>(-1))
        gHelpTopicHandler(mHelpTopicId);
}

void TsDialog::OnUpdateHelp(CCmdUI* cmdUI)
{
    cmdUI->Enable(mHelpTopicId != 0 && mHelpTopicId != static_cast<unsigned int>(-1));
}

bool TsDialog::event(QEvent* event)
{
    if (event->type() == QEvent::KeyPress && static_cast<QKeyEvent*>(event)->key() == Qt::Key_F1) {
        ExecuteCommand(IDHELP);
        return true;
    }
    return QDialog::event(event);
}

void TsDialog::showEvent(QShowEvent* event)
{
    QDialog::showEvent(event);
    // The framework updates dialog controls when its loop goes idle; so do we.
    if (!mIdleConnected) {
        if (auto* dispatcher = QAbstractEventDispatcher::instance(thread())) {
            connect(dispatcher, &QAbstractEventDispatcher::aboutToBlock, this, [this] {
                if (isVisible())
                    OnKickIdle();
            });
            mIdleConnected = true;
        }
    }
    OnKickIdle();
}
