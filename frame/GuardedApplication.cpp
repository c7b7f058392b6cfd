#include <KORVAutlwin/frame/GuardedApplication.h>

#include <KORVAutlwin/frame/FaultTranslation.h>
#include <KORVAutlwin/frame/TsDialog.h>
#include <KORVAutlwin/frame/WinApp.h>

#include <QWidget>

namespace korva {

GuardedApplication::GuardedApplication(int& argc, char** argv) : QApplication(argc, argv) {}

bool GuardedApplication::notify(QObject* receiver, QEvent* event)
{
    bool result = false;
    try {
        RunWithFaultTranslation([&] { result = QApplication::notify(receiver, event); });
    } catch (...) {
        const std::exception_ptr error = std::current_exception();
        if (!TsDialog::HandleWindowProcException(ExceptionMaskFor(receiver), error) &&
            !TsDialog::PassToEnclosingExec(error))
            throw;
    }
    return result;
}

int GuardedApplication::ExceptionMaskFor(QObject* receiver)
{
    QObject* object = receiver;
    while (object && !object->isWidgetType())
        object = object->parent();
    // Popups and tool windows belong to the window that opened them: climb through parents.
    for (auto* widget = static_cast<QWidget*>(object); widget; widget = widget->parentWidget())
        if (const auto* guarded = dynamic_cast<const ExceptionGuardedWindow*>(widget))
            return guarded->GetExceptionsHandled();
    if (const WinApp* app = WinApp::GetApp())
        if (const auto* guarded = dynamic_cast<const ExceptionGuardedWindow*>(app->GetMainWnd()))
            return guarded->GetExceptionsHandled();
    return TsDialog::GetDefaultExceptionsHandled();
}

} // namespace korva
