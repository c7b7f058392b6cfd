#pragma once
// The dialog for an error that reached an event handler: the user reads the
// text and chooses to go on (Cancel), to end the application (Finish) or to end
// and start it again (Finish with the check box set).

#include <QWizardPage>

class QCheckBox;
class QPlainTextEdit;

/// Shows `text` in the internal error dialog, modal. Finish ends the process at
/// once with _exit(1), without any clean-up, since its state is in doubt; with the
/// check box set, the application's own executable is started again first, with
/// the same arguments, as a process of its own. Cancel, Escape or closing return.
/// Never throws: a failure inside is logged and the function returns. Without a
/// QApplication, or off the GUI thread, the text is only logged.
void ShowInternalErrorDialog(const char* text);

/// The one page of the internal error dialog: the error text (read-only, ctrlId
/// 13068) and the check box that asks for a restart (ctrlId 13040). Title and
/// subtitle come from language string 13317 (title, a line feed, subtitle).
class HandleExceptionPage : public QWizardPage
{
    Q_OBJECT

public:
    explicit HandleExceptionPage(const char* text, QWidget* parent = nullptr);

    /// True when the user asked for a restart.
    bool IsRestartChecked() const;

protected:
    void initializePage() override;

private:
    void UpdateFinishText();

    QPlainTextEdit* mText;
    QCheckBox* mRestart;
};

namespace korva {

/// Starts the running executable (/proc/self/exe) again with the arguments this
/// process was started with, detached, so the new process outlives this one.
/// False when it could not be started.
bool RestartApplication();

} // namespace korva
