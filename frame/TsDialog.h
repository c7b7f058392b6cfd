#pragma once
/// \class TsDialog
/// The base class of every dialog of the library.
///
/// Safety net: an exception thrown while the dialog or one of its controls
/// handles an event stops at the application's event dispatch and, if its kind
/// is in the dialog's mask, ends in the internal error dialog; otherwise it
/// travels on to the next guard. It never passes through the window system's own
/// loops: the innermost running exec() of a TsDialog closes and rethrows it to
/// its caller (the handler that opened the dialog, under the next guard); with no
/// such loop running, the event dispatch rethrows it to whoever dispatched.
///
/// Idle updates: when the event loop goes idle while the dialog is visible,
/// every child widget with a numeric "ctrlId" property is updated through the
/// command route of the dialog (OnKickIdle), as frames do for menus and tool bars.

#include <KORVAutlwin/frame/CmdTarget.h>

#include <QDialog>

#include <exception>
#include <functional>
#include <string>

/// A window that decides which exceptions its events may end in the internal
/// error dialog: dialogs, property sheets and pages, frames.
class ExceptionGuardedWindow
{
public:
    virtual ~ExceptionGuardedWindow();
    virtual int GetExceptionsHandled() const = 0;
};

class TsDialog : public QDialog, public CmdTarget, public ExceptionGuardedWindow
{
    Q_OBJECT

public:
    /// Bits of the exception mask.
    enum EExceptionBits
    {
        eHandleException = 1,          // Exception by reference
        eHandleStdException = 2,       // std::exception by reference or by pointer
        eHandleFrameworkException = 4, // the window framework's own exception objects
        eHandleUnknown = 8             // anything else
    };

    TsDialog();
    TsDialog(const char* templateName, QWidget* parent, unsigned int helpTopic = 0);
    TsDialog(unsigned int templateId, QWidget* parent, unsigned int helpTopic = 0);
    ~TsDialog() override;

    /// The mask that new dialogs, sheets and pages take; 0xF at start.
    static void SetDefaultExceptionsHandled(int mask);
    static int GetDefaultExceptionsHandled();

    void SetExceptionsHandled(int mask) { mExceptionsHandled = mask; }
    /// The mask of this dialog (the name is the historical one).
    int SetExceptionsHandled() const { return mExceptionsHandled; }
    int GetExceptionsHandled() const override { return mExceptionsHandled; }

    unsigned int GetHelpTopicID() const { return mHelpTopicId; }
    void SetHelpTopicID(unsigned int topic) { mHelpTopicId = topic; }

    /// Adds the maximise button to the title bar.
    void ShowMaximiseButton();

    /// Dialog units to pixels of this dialog's font: 1000 units are mapped and
    /// scaled, so that small values are not rounded on their own.
    int FromDlgX(int x) const;
    int FromDlgY(int y) const;

    /// The template resource this dialog was made from (0 or empty when none).
    unsigned int GetTemplateId() const { return mTemplateId; }

    /// Decides what happens to the exception `error` that reached an event of a
    /// window with `mask`: true when its kind is in the mask and it was shown in
    /// the internal error dialog; false when it must travel on.
    static bool HandleWindowProcException(int mask, std::exception_ptr error);

    /// Runs the dialog modally. An exception that the masks let travel on while
    /// the dialog runs closes it and is rethrown from here.
    int exec() override;

    /// Hands an exception that must travel on to the innermost running exec()
    /// of a TsDialog, which then closes; false when none runs.
    static bool PassToEnclosingExec(std::exception_ptr error);

    /// Runs the idle updates now (the event loop calls it when it goes idle):
    /// the controls with a "ctrlId", then every IdleUpdateCmdUI child.
    virtual void OnKickIdle();

    /// The help system shows topics through this handler (installed by the help
    /// pane); without one, OnHelp shows nothing.
    static void SetHelpTopicHandler(std::function<void(unsigned int)> handler);
    /// Shows `topic` through that handler; nothing without one, or for topic 0 or -1.
    static void ShowHelpTopic(unsigned int topic);

protected:
    /// The help command (id 9): shows the dialog's help topic.
    virtual void OnHelp();
    /// Enabled only when the dialog has a help topic (neither 0 nor -1).
    virtual void OnUpdateHelp(CCmdUI* cmdUI);

    bool event(QEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    void Construct(QWidget* parent, unsigned int helpTopic);

    int mExceptionsHandled;
    unsigned int mHelpTopicId = 0;
    unsigned int mTemplateId = 0;
    bool mIdleConnected = false;

    struct ExecFrame
    {
        TsDialog* dialog;
        std::exception_ptr escaped;
        ExecFrame* previous;
    };
    static thread_local ExecFrame* msInnermostExec;
};

/// The text that HandleWindowProcException shows for an exception of no known kind.
inline constexpr const char* kUnknownWindowProcException = "An unknown exception was caught in WindowProc().";
