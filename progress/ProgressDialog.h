#pragma once
/// \class ProgressDialog
/// The modal dialog that ExecuteWithProgress shows while its work runs on a
/// worker thread: a title, an IndeterminateProgressCtrl and, when the caller
/// gave a cancel function, a button that calls it.
///
/// The dialog cannot be ended by the user: Return does nothing, and Escape and
/// the close box close it only once the worker has marked the work finished
/// (SetFinished). The worker then closes it as the close box would, by a queued
/// call of reject() on the dialog's thread. The cancel button (control 13048)
/// calls the cancel function on the dialog's thread and closes nothing: the
/// cancel function is expected to make the work end.
///
/// The dialog releases `dialogReady` once, when it is first shown (its window
/// exists and its modal loop is about to run), so that work too short to be seen
/// still finds a dialog to close.

#include <KORVAutlwin/frame/TsDialog.h>

#include <atomic>
#include <functional>
#include <semaphore>
#include <string>

class IndeterminateProgressCtrl;
class QPushButton;

class ProgressDialog : public TsDialog
{
    Q_OBJECT

public:
    static constexpr unsigned int kTemplateId = 13365;
    /// Control ids: the moving bar and the cancel button.
    static constexpr int kBarCtrlId = 13366;
    static constexpr int kCancelCtrlId = 13048;

    /// `title`: the window title; null or empty gives the application's name.
    /// `dialogReady` (may be null) is released once, when the dialog is first
    /// shown. `cancelFunction` (may be null or empty: no cancel button) is not
    /// copied and must outlive the dialog.
    ProgressDialog(const char* title, std::binary_semaphore* dialogReady,
                   const std::function<void()>* cancelFunction, QWidget* parent);
    ~ProgressDialog() override;

    /// Marks the work finished; from then on Escape and the close box close the
    /// dialog. Any thread.
    void SetFinished() { finished.store(true); }
    bool IsFinished() const { return finished.load(); }

    /// True once `dialogReady` has been released.
    bool IsReadySignalled() const { return readySignalled; }
    /// Releases `dialogReady` unless that happened already. The dialog's thread.
    void SignalReady();

    /// The moving bar, control 13366.
    IndeterminateProgressCtrl* GetBar() const { return bar; }
    /// The cancel button, control 13048; hidden without a cancel function.
    QPushButton* GetCancelButton() const { return cancelButton; }

    /// Does nothing: Return must not end the dialog.
    void accept() override;
    /// Closes only when the work is finished (Escape, the close box, the worker).
    void reject() override;

protected:
    /// Titles the dialog, shows the cancel button when there is a cancel
    /// function (the dialog grows by its height), then releases `dialogReady`.
    virtual void OnInitDialog();
    /// Calls the cancel function.
    virtual void OnCancelButton();

    void showEvent(QShowEvent* event) override;

private:
    IndeterminateProgressCtrl* bar;
    std::string title;
    std::binary_semaphore* dialogReady;
    const std::function<void()>* cancelFunction;
    std::atomic<bool> finished{false};

    QPushButton* cancelButton = nullptr;
    bool initialised = false;
    bool readySignalled = false;
};
