#pragma once
/// \class InProcessBreakWindow
/// The break window in the client's own process: the fallback when the break
/// window's companion process cannot be started. It owns one BreakDialog, made
/// at the first Create and kept as long as this object, and hands every message
/// of the protocol straight to it. The main thread is busy with the work, so the
/// dialog lives on what Progress::MessageLoop lets through: paint and timer
/// events always, and its own keyboard and mouse input once it is on the screen.
/// A stop confirmed in the dialog sets the client's break flag at once.
///
///   static InProcessBreakWindow fallback;
///   BreakWindowChannel::SetChannel(&fallback);

#include <KORVAutlwin/progress/BreakDialog.h>
#include <KORVAutlwin/progress/BreakWindowChannel.h>

#include <QPointer>

class InProcessBreakWindow : public BreakWindowChannel
{
public:
    InProcessBreakWindow();
    /// Deletes the dialog while the application still exists.
    ~InProcessBreakWindow() override;

    /// Makes the dialog, hidden, at the first call. False without a
    /// QApplication or off its thread: widgets live on the GUI thread only.
    bool Create() override;
    bool IsWindow() const override;

    void Finish() override;
    void SpinStep() override;
    void SpinRest() override;
    void SetTitle(const char* title) override;
    void SetGaugeValue(float value) override;
    void SetGaugeRange(float low, float high) override;
    void ShowWindow(bool show) override;
    /// Serves `client` from now on, with a copy of its texts and switches.
    void Start(unsigned int delay, Progress* client, const QRect& mainWindow) override;

    /// The dialog.
    QWidget* GetWidget() const override;
    BreakDialog* GetDialog() const { return dialog.data(); }

private:
    void OnStopConfirmed();

    QPointer<BreakDialog> dialog;
    Progress* client = nullptr;  // the one Start named, until Finish
};
