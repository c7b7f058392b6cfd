#pragma once
/// \class korva::GuardedApplication
/// The QApplication of a GUI application of the suite. Its event dispatch is the
/// safety net of every window: each event is delivered with processor faults
/// translated into TsSystemException (unwound up to here, see FaultTranslation.h),
/// and an exception that comes out of a handler is decided by the exception mask
/// of the event's window (see TsDialog).

#include <QApplication>

class QObject;

namespace korva {

class GuardedApplication : public QApplication
{
public:
    GuardedApplication(int& argc, char** argv);
    bool notify(QObject* receiver, QEvent* event) override;

    /// The exception mask that decides for events of `receiver`: that of the
    /// nearest guarded window it belongs to (a TsDialog, a frame), else of the
    /// main window, else TsDialog's default.
    static int ExceptionMaskFor(QObject* receiver);
};

} // namespace korva
