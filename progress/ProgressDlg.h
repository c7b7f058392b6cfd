#pragma once
/// \class ProgressDlg
/// A small window with one progress bar, for applications that step through
/// known work themselves: made and shown by the constructor, modeless and above
/// the other windows, gone with the object. Nothing in the library uses it.
///
///   ProgressDlg dlg("Importing", mainWindow);
///   dlg.SetRange(0, static_cast<short>(files.size()));
///   dlg.SetStep(1);
///   for (const auto& file : files) { Import(file); dlg.StepIt(); QCoreApplication::processEvents(); }
///
/// The operations behave as those of the platform's progress control: the
/// position stays within the range, and a step past the upper end starts over
/// from the lower end. GUI thread only.
///
/// With a parent, Qt deletes the window with its parent: keep the object's life
/// inside the parent's, or make it with `new` and no further owner.

#include <KORVAutlwin/frame/TsDialog.h>

class QProgressBar;

class ProgressDlg : public TsDialog
{
    Q_OBJECT

public:
    /// The dialog template and the progress bar's control id.
    static constexpr unsigned int kTemplateId = 13112;
    static constexpr int kProgressCtrlId = 13350;

    /// Creates, titles, raises above other windows and shows the dialog. A null
    /// or empty `title` gives the application's name, so the title is never empty.
    ProgressDlg(const char* title, QWidget* parent);
    ~ProgressDlg() override;

    /// Sets the range (0 to 100 at start); the position is kept inside it.
    /// An upper end below the lower one is taken as equal to it.
    void SetRange(short lower, short upper);
    /// Moves to `position`, held within the range; returns the previous position.
    int SetPos(int position);
    /// Sets the amount of StepIt (10 at start); returns the previous amount.
    int SetStep(int step);
    /// Moves on by the step; past the upper end it starts over from the lower
    /// end, before the lower end it comes back from the upper end. Returns the
    /// previous position.
    int StepIt();

    int GetPos() const;
    /// The progress bar, control 13350.
    QProgressBar* GetProgressCtrl() const { return bar; }

    /// Where StepIt lands from `position` with `step` in the range `lower` to `upper`.
    static int SteppedPosition(int position, int step, int lower, int upper);

protected:
    /// Adds nothing to the dialog.
    virtual void OnInitDialog();

private:
    QProgressBar* bar;
    int stepAmount = 10;
};
