#include <KORVAutlwin/progress/ExecuteWithProgress.h>

#include <KORVAutlwin/progress/ProgressDialog.h>

#include <KORVAutl/LanguageString.h>

#include <QMetaObject>

#include <exception>

namespace {

constexpr unsigned int kUnknownExceptionText = 32340;

} // namespace

namespace korva {

// The worker: runs the work, keeps what it threw, and closes the dialog once
// the dialog is up, whatever happened.
void RunProgressWork(ProgressInfo* info)
{
    try {
        (*info->work)();
    } catch (const Exception& exception) {
        info->errorState = ProgressInfo::eException;
        info->errorText = exception.Why();
    } catch (...) {
        info->errorState = ProgressInfo::eUnknownError;
    }
    info->dialogReady.acquire();
    ProgressDialog* dialog = info->dialog.get();
    dialog->SetFinished();
    // As the close box would: reject() on the dialog's thread, which now lets it close.
    QMetaObject::invokeMethod(dialog, [dialog] { dialog->reject(); }, Qt::QueuedConnection);
}

void ExecuteWithProgress(const std::function<void()>& work, const std::function<void()>* cancel, const char* title,
                         QWidget* parent)
{
    ProgressInfo info;
    info.work = &work;
    info.dialog = std::make_unique<ProgressDialog>(title, &info.dialogReady, cancel, parent);
    info.thread = std::make_unique<std::thread>(RunProgressWork, &info);

    std::exception_ptr escaped;
    try {
        info.dialog->exec();
    } catch (...) {
        // Something of the dialog's own let an exception travel on; it goes on
        // after the worker, which still uses the dialog.
        escaped = std::current_exception();
    }
    // A dialog that never came up must not keep the worker waiting.
    info.dialog->SignalReady();
    info.thread->join();
    info.thread.reset();

    if (escaped)
        std::rethrow_exception(escaped);
    if (info.errorState == ProgressInfo::eException)
        throw Exception(info.errorText);
    if (info.errorState == ProgressInfo::eUnknownError)
        throw ProgressInfo::UnknownException();
}

} // namespace korva

ProgressInfo::UnknownException::UnknownException() : Exception(LanguageString::Get(kUnknownExceptionText)) {}

ProgressInfo::ProgressInfo() = default;

ProgressInfo::~ProgressInfo() = default;

void ExecuteWithProgress(const std::function<void()>& work, const char* title, QWidget* parent)
{
    korva::ExecuteWithProgress(work, nullptr, title, parent);
}

void ExecuteWithProgress(const std::function<void()>& work, const std::function<void()>& cancel, const char* title,
                         QWidget* parent)
{
    korva::ExecuteWithProgress(work, &cancel, title, parent);
}
